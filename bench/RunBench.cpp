// The cost of a run and of its output, beside the interpreter's own ways to do the same.

#include "BenchHost.h"

#include <benchmark/benchmark.h>

namespace {

/// Runs a script that measures a time and writes it to its error stream. Returns the time in seconds.
double measuredBy(const QString& script)
{
    bool ok = false;
    const QString written = BenchHost::instance().errorTextOf(script);
    const double seconds = written.toDouble(&ok);
    if (!ok)
        qFatal("the script did not write a time: %s", qPrintable(written));
    return seconds;
}

/// A script that runs `body` `count` times and writes the processor time of the loop, in seconds.
QString timedLoop(const QString& setUp, const QString& body, int count)
{
    return QStringLiteral("import io, sys, time\n"
                          "%1\n"
                          "def loop():\n"
                          "    before = time.process_time()\n"
                          "    for i in range(%3):\n"
                          "        %2\n"
                          "    return time.process_time() - before\n"
                          "elapsed = loop()\n"
                          "sys.stdout = standard\n"
                          "sys.stderr.write(str(elapsed))\n")
        .arg(setUp, body)
        .arg(count);
}

void runOf(benchmark::State& state, const char* text)
{
    const QString script = QString::fromUtf8(text);
    BenchHost& host = BenchHost::instance();
    for ([[maybe_unused]] auto _ : state)
        host.run(script);
}

void execOf(benchmark::State& state, const char* text)
{
    constexpr int count = 1000;
    const QString script =
        timedLoop(QStringLiteral("standard, names = sys.stdout, {}"),
                  QStringLiteral("exec(compile('%1', '<string>', 'exec'), names)").arg(QString::fromUtf8(text)), count);
    for ([[maybe_unused]] auto _ : state)
        state.SetIterationTime(measuredBy(script) / count);
}

void prints(benchmark::State& state, const char* setUp)
{
    const QString script = timedLoop(QString::fromUtf8(setUp), QStringLiteral("print('x')"), 100000);
    for ([[maybe_unused]] auto _ : state)
        state.SetIterationTime(measuredBy(script));
}

} // namespace

// Scripts that time themselves run a fixed number of times, because the library cannot tell how long they really take.
BENCHMARK_CAPTURE(runOf, empty, "")->MinTime(0.2)->Repetitions(5);
BENCHMARK_CAPTURE(execOf, empty, "")->UseManualTime()->Iterations(30)->Repetitions(5);
BENCHMARK_CAPTURE(runOf, pass, "pass")->MinTime(0.2)->Repetitions(5);
BENCHMARK_CAPTURE(execOf, pass, "pass")->UseManualTime()->Iterations(30)->Repetitions(5);
BENCHMARK_CAPTURE(prints, callback, "standard = sys.stdout")
    ->UseManualTime()
    ->Iterations(3)
    ->Repetitions(5)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(prints, StringIO, "standard, sys.stdout = sys.stdout, io.StringIO()")
    ->UseManualTime()
    ->Iterations(3)
    ->Repetitions(5)
    ->Unit(benchmark::kMillisecond);
