// What a run costs beside the interpreter's own way to do the same, and what runs and images leave in memory.
//
//   runs_bench --plugin=FILE --python-home=DIR [--filter=TEXT]

#include "BenchHost.h"
#include "CxImageData.h"
#include "Row.h"
#include "support/TestSettings.h"

#include <QtCore/QFile>
#include <QtWidgets/QApplication>

#include <algorithm>
#include <ctime>
#include <unistd.h>

namespace {

constexpr const char* runs = "Runs in a host";
constexpr const char* memory = "Memory";
constexpr int turns = 15;
constexpr int runsPerTurn = 2000;
constexpr int repetitions = 100000;

double processorSeconds()
{
    timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return double(time.tv_sec) + double(time.tv_nsec) * 1e-9;
}

double median(std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

/// The processor time of one run of a text, without that of the work that a script does itself.
double timeOfRun(const QString& text)
{
    const double before = processorSeconds();
    for (int i = 0; i < runsPerTurn; ++i)
        BenchHost::instance().run(text);
    return (processorSeconds() - before) / runsPerTurn;
}

/// The processor time of exec(compile(...)) of a text.
double timeOfExec(const QString& text)
{
    const QString script = QStringLiteral("import sys, time\n"
                                          "def loop(names):\n"
                                          "    before = time.thread_time()\n"
                                          "    for i in range(%2):\n"
                                          "        exec(compile('%1', '<string>', 'exec'), names)\n"
                                          "    return time.thread_time() - before\n"
                                          "sys.stderr.write(str(loop({})))\n")
                               .arg(text)
                               .arg(runsPerTurn);
    bool isNumber = false;
    const QString written = BenchHost::instance().errorTextOf(script);
    const double seconds = written.toDouble(&isNumber);
    if (!isNumber)
        qFatal("the script did not write a time: %s", qPrintable(written));
    return seconds / runsPerTurn;
}

void compareRuns(const char* task, const QString& text)
{
    if (!isWanted(runs, task))
        return;
    std::vector<double> ours;
    std::vector<double> peers;
    std::vector<double> ratios;
    for (int i = 0; i < turns; ++i) {
        ours.push_back(timeOfRun(text));
        peers.push_back(timeOfExec(text));
        ratios.push_back(ours.back() / peers.back());
    }
    const double peer = median(peers);
    // A run does more than exec does: it makes the output streams and takes the names away afterwards.
    const double goal = 1.2 + 5e-6 / peer;
    printRow({runs, task, "exec(compile(...))", goal, median(ours), peer, "s"}, ratios);
}

/// Resident memory of this process in bytes; 0 if it cannot be read.
qint64 residentBytes()
{
    QFile file(QStringLiteral("/proc/self/statm"));
    if (!file.open(QIODevice::ReadOnly))
        return 0;
    return file.readAll().split(' ').value(1).toLongLong() * sysconf(_SC_PAGESIZE);
}

/// How many bytes one of `repetitions` of work adds to the memory, after a warm-up for what is created only once.
template<typename Work>
double growthOf(Work work)
{
    work(repetitions / 20);
    const qint64 before = residentBytes();
    work(repetitions);
    return double(residentBytes() - before) / repetitions;
}

/// Prints how much memory the repetitions of a task leave, beside what they may leave, both in bytes each.
template<typename Work>
void measureGrowth(const char* task, const char* peer, double limit, Work work)
{
    if (isWanted(memory, task))
        printRow({memory, task, peer, 1.05, growthOf(work), limit, "B"});
}

void measureMemory()
{
    BenchHost& host = BenchHost::instance();
    measureGrowth("left after a run", "1 byte", 1.0, [&host](int count) {
        for (int i = 0; i < count; ++i)
            host.run(QStringLiteral("import math\nx = [math.pi]\nprint(x)\n"));
    });

    // The objects of images are kept, for scripts that look at an image that is gone.
    const double object =
        host.printedBy(QStringLiteral("import sys\nprint(sys.getsizeof(vantrel.Image()), end='')")).toDouble();
    const auto makeImages = [&host](const char* text) {
        return [&host, text](int count) {
            host.run(QStringLiteral("def make():\n"
                                    "    img = vantrel.Image()\n"
                                    "    %2\n"
                                    "for i in range(%1):\n"
                                    "    make()\n")
                         .arg(count)
                         .arg(QString::fromUtf8(text)));
        };
    };
    measureGrowth("left of a filled image", "the object's size", object, makeImages("img.alloc(64, 48, 3, 8)"));
    measureGrowth("left of an empty image", "the object's size", object, makeImages("pass"));
}

} // namespace

int main(int argc, char** argv)
{
    QApplication application(argc, argv);
    TestSettings::read(application.arguments());
    BenchHost host(TestSettings::pluginFile, TestSettings::pythonHome);
    host.run(QString()); // starts the interpreter
    compareRuns("run of an empty text", QString());
    compareRuns("run of `pass`", QStringLiteral("pass"));
    measureMemory();
    return 0;
}
