#include "MemoryBench.h"

#include "BenchHost.h"
#include "CxImageData.h"
#include "RatioTable.h"

#include <QtCore/QFile>

#include <unistd.h>

namespace {

constexpr int repetitions = 100000;

/// Resident memory of this process in bytes; 0 if it cannot be read.
qint64 residentBytes()
{
    QFile file(QStringLiteral("/proc/self/statm"));
    if (!file.open(QIODevice::ReadOnly))
        return 0;
    return file.readAll().split(' ').value(1).toLongLong() * sysconf(_SC_PAGESIZE);
}

/// How many bytes `repetitions` of work add to the memory, after a warm-up for everything that is created only once.
template<typename Work>
qint64 growthOver(Work work)
{
    work(repetitions / 20);
    const qint64 before = residentBytes();
    work(repetitions);
    return residentBytes() - before;
}

QString perItem(qint64 bytes)
{
    return QStringLiteral("%1 B each").arg(double(bytes) / repetitions, 0, 'f', 1);
}

} // namespace

void measureMemory()
{
    BenchHost& host = BenchHost::instance();
    RatioTable::begin(QStringLiteral("memory left after 100,000 repetitions"));

    const QString script = QStringLiteral("import math\nx = [math.pi]\nprint(x)\n");
    const qint64 runs = growthOver([&host, &script](int count) {
        for (int i = 0; i < count; ++i)
            host.run(script);
    });
    RatioTable::row(QStringLiteral("runs"), perItem(runs), QStringLiteral("0 B"));

    const int imagesBefore = CxImageData::liveCount();
    const auto makeImages = [&host](const char* text, int count) {
        host.run(QStringLiteral("def make():\n"
                                "    img = vantrel.Image()\n"
                                "    %2\n"
                                "for i in range(%1):\n"
                                "    make()\n")
                     .arg(count)
                     .arg(QString::fromUtf8(text)));
    };
    const qint64 filled = growthOver([&makeImages](int count) { makeImages("img.alloc(64, 48, 3, 8)", count); });
    const qint64 empty = growthOver([&makeImages](int count) { makeImages("pass", count); });
    const QString header = host.printedBy(QStringLiteral("import sys\nprint(sys.getsizeof(vantrel.Image()), end='')"));
    const QString goal = header + QStringLiteral(" B, the size of the object");
    RatioTable::row(QStringLiteral("images of 64 x 48 x 3, created and freed"), perItem(filled), goal);
    RatioTable::row(QStringLiteral("empty images, created and freed"), perItem(empty), goal);
    RatioTable::row(QStringLiteral("host images left"), QString::number(CxImageData::liveCount() - imagesBefore),
                    QStringLiteral("0"));
}
