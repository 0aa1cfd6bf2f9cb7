// Runs the benchmarks: in C++, in Python in the plugin's interpreter, and of memory.
//
//   vantrel_bench --plugin=FILE --python-home=DIR --script=FILE [options of the benchmark library]

#include "BenchHost.h"
#include "MemoryBench.h"
#include "RatioTable.h"
#include "support/TestSettings.h"

#include <QtCore/QFile>
#include <QtWidgets/QApplication>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <map>
#include <string>

namespace {

/// Prints and keeps the fastest repetition of each benchmark, since other work of the machine slows the others down.
class FastestReporter : public benchmark::ConsoleReporter
{
public:
    void ReportRuns(const std::vector<Run>& runs) override
    {
        const auto fastest = std::min_element(runs.begin(), runs.end(),
                                              [](const Run& a, const Run& b) { return secondsOf(a) < secondsOf(b); });
        if (fastest == runs.end() || fastest->run_type != Run::RT_Iteration)
            return;
        ConsoleReporter::ReportRuns({*fastest});
        seconds[fastest->run_name.function_name] = secondsOf(*fastest);
    }

    // Processor time, which leaves other programs out. The library reports a time that a benchmark measured itself as
    // "real" time.
    static double secondsOf(const Run& run)
    {
        const bool timedItself = run.benchmark_name().find("manual_time") != std::string::npos;
        const double time = timedItself ? run.GetAdjustedRealTime() : run.GetAdjustedCPUTime();
        return time / benchmark::GetTimeUnitMultiplier(run.time_unit);
    }

    std::map<std::string, double> seconds;
};

void printRunRatios(const std::map<std::string, double>& seconds)
{
    const auto time = [&seconds](const char* name) {
        const auto found = seconds.find(name);
        return found == seconds.end() ? 0.0 : found->second;
    };
    const auto row = [&time](const char* name, const char* ours, const char* peers, const QString& goal) {
        if (time(ours) > 0.0 && time(peers) > 0.0)
            RatioTable::timeRow(QString::fromUtf8(name), time(ours), time(peers), goal);
    };
    const auto runGoal = [&time](const char* peers) {
        return QStringLiteral("below 1.2 times + 5 us = ") + RatioTable::readable(1.2 * time(peers) + 5e-6);
    };
    RatioTable::begin(QStringLiteral("runs"));
    row("run of an empty text / exec(compile(...))", "runOf/empty", "execOf/empty", runGoal("execOf/empty"));
    row("run of `pass` / exec(compile(...))", "runOf/pass", "execOf/pass", runGoal("execOf/pass"));
    row("100,000 prints of one character / into io.StringIO", "prints/callback", "prints/StringIO",
        QStringLiteral("below 2"));
}

/// Runs a script and turns its lines "ROW<tab>name<tab>seconds<tab>peer's seconds or None<tab>goal" into rows.
void runScriptBench(const QString& fileName)
{
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly))
        qFatal("cannot read %s", qPrintable(fileName));
    const QString printed = BenchHost::instance().printedBy(QString::fromUtf8(file.readAll()));
    RatioTable::begin(QStringLiteral("scripts"));
    for (const QString& line : printed.split(QLatin1Char('\n'), Qt::SkipEmptyParts)) {
        const QStringList cells = line.split(QLatin1Char('\t'));
        if (cells.size() != 5 || cells.at(0) != QStringLiteral("ROW"))
            std::puts(qPrintable(line));
        else if (cells.at(3) == QStringLiteral("None"))
            RatioTable::row(cells.at(1), RatioTable::readable(cells.at(2).toDouble()), cells.at(4));
        else
            RatioTable::timeRow(cells.at(1), cells.at(2).toDouble(), cells.at(3).toDouble(), cells.at(4));
    }
}

} // namespace

int main(int argc, char** argv)
{
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    TestSettings::read(application.arguments());
    QString script;
    for (const QString& argument : application.arguments()) {
        if (argument.startsWith(QStringLiteral("--script=")))
            script = argument.mid(9);
    }

    BenchHost host(TestSettings::pluginFile, TestSettings::pythonHome);
    std::printf("%s\n", qPrintable(host.plugin().languageVersion()));
    host.run(QString()); // starts the interpreter
    FastestReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    printRunRatios(reporter.seconds);
    if (!script.isEmpty())
        runScriptBench(script);
    measureMemory();
    return 0;
}
