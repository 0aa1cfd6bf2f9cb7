#include "RatioTable.h"

#include <cstdio>

namespace {

void print(const QString& name, const QString& measured, const QString& peer, const QString& ratio, const QString& goal)
{
    const QString line =
        QStringLiteral("%1 %2 %3 %4   %5\n").arg(name, -58).arg(measured, 12).arg(peer, 12).arg(ratio, 8).arg(goal);
    std::fputs(line.toUtf8().constData(), stdout);
    std::fflush(stdout);
}

} // namespace

void RatioTable::begin(const QString& title)
{
    std::fputs("\n", stdout);
    print(title, QStringLiteral("measured"), QStringLiteral("peer"), QStringLiteral("ratio"), QStringLiteral("goal"));
}

void RatioTable::timeRow(const QString& name, double ours, double peers, const QString& goal)
{
    print(name, readable(ours), readable(peers), QString::number(ours / peers, 'f', 2), goal);
}

void RatioTable::row(const QString& name, const QString& measured, const QString& goal)
{
    print(name, measured, QString(), QString(), goal);
}

QString RatioTable::readable(double seconds)
{
    struct Unit {
        double size;
        const char* name;
    };
    static constexpr Unit units[] = {{1.0, "s"}, {1e-3, "ms"}, {1e-6, "us"}};
    for (const Unit& unit : units) {
        if (seconds >= unit.size)
            return QStringLiteral("%1 %2").arg(seconds / unit.size, 0, 'f', 2).arg(QLatin1StringView(unit.name));
    }
    return QStringLiteral("%1 ns").arg(seconds * 1e9, 0, 'f', 1);
}
