#include "Row.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>

#include <algorithm>
#include <cstdio>

bool isWanted(const char* group, const char* task)
{
    const auto contains = [](const char* name, const QString& text) {
        return QString::fromUtf8(name).contains(text, Qt::CaseInsensitive);
    };
    const QString option = QStringLiteral("--filter=");
    const QStringList arguments = QCoreApplication::arguments();
    return std::all_of(arguments.begin(), arguments.end(), [&](const QString& argument) {
        const QString text = argument.mid(option.size());
        return !argument.startsWith(option) || contains(group, text) || contains(task, text);
    });
}

void printRow(const Row& row)
{
    printRow(row, {row.ours / row.peers});
}

void printRow(const Row& row, std::vector<double> ratios)
{
    std::sort(ratios.begin(), ratios.end());
    const auto text = [](const char* bytes) { return QString::fromUtf8(bytes); };
    const QJsonObject object{
        {text("group"), text(row.group)}, {text("task"), text(row.task)},
        {text("peer"), text(row.peer)},   {text("goal"), row.goal},
        {text("ours"), row.ours},         {text("peers"), row.peers},
        {text("unit"), text(row.unit)},   {text("ratio"), ratios[ratios.size() / 2]},
        {text("least"), ratios.front()},  {text("most"), ratios.back()},
    };
    std::printf("ROW\t%s\n", QJsonDocument(object).toJson(QJsonDocument::Compact).constData());
    std::fflush(stdout);
}
