#include "ScriptsTest.h"
#include "stopping/RunState.h"
#include "stopping/ScriptPulse.h"

#include <QtCore/QElapsedTimer>
#include <QtCore/QTimer>
#include <QtTest/QSignalSpy>

#include <atomic>
#include <csignal>
#include <thread>

namespace {

using ScriptStop = ScriptsTest;

INSTANTIATE_TEST_SUITE_P(On, ScriptStop, testing::Bool(), threadName);

TEST_P(ScriptStop, EndsAWaitThatTheHostDoesForTheScript)
{
    // The event loop that stops the script also runs it, or runs beside it.
    const auto stop = [this] {
        if (printed() == "waiting")
            interrupt.interruptScript();
    };
    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout, stop);
    timer.start(1);
    QElapsedTimer clock;
    clock.start();
    add("print waiting\npause 600\nprint never");
    add("print next");
    QObject::connect(queue.get(), &ScriptQueue::runEnded, &timer, &QTimer::stop);
    runAll();
    EXPECT_LT(clock.elapsed(), patience);
    EXPECT_EQ(printed(), "waiting next");
    EXPECT_EQ(ended(), "interrupted|");
}

TEST_P(ScriptStop, ComesFromAnyThread)
{
    std::atomic<bool> ended = false;
    add("print computing\ncompute");
    std::thread terminal([&] {
        while (printed() != "computing")
            std::this_thread::yield();
        raise(SIGINT);
        ended = true;
    });
    runAll();
    terminal.join();
    EXPECT_TRUE(ended);
    EXPECT_EQ(results, QStringList(QStringLiteral("interrupted")));
}

TEST_P(ScriptStop, IsReportedToTheEventLoopAsWhatItIs)
{
    QSignalSpy stopped(&interrupt, &ScriptInterrupt::interrupted);
    QSignalSpy idle(&interrupt, &ScriptInterrupt::interruptedWhileIdle);
    interrupt.interruptScript(); // nothing runs
    add("print first");
    runAll();
    interrupt.interruptScript();
    EXPECT_EQ(stopped.count() + idle.count(), 0);
    raise(SIGINT);
    EXPECT_TRUE(idle.wait(patience));
    EXPECT_EQ(stopped.count(), 0);
    EXPECT_EQ(ended(), "");
}

TEST_P(ScriptStop, DoesNoHarmWhileRunsBeginAndEnd)
{
    std::atomic<bool> done = false;
    add("print first"); // the language takes the signal over
    runAll();
    std::thread terminal([&] {
        for (int i = 0; i < 200 || !done; ++i)
            raise(SIGINT);
    });
    for (int i = 0; i < 50; ++i)
        add("look 0");
    runAll();
    done = true;
    terminal.join();
    EXPECT_EQ(results.size(), 51);
}

using ScriptStopFromTheGuiThread = ScriptsTest;

INSTANTIATE_TEST_SUITE_P(On, ScriptStopFromTheGuiThread, testing::Values(true), threadName);

TEST_P(ScriptStopFromTheGuiThread, EndsAComputation)
{
    for (int i = 0; i < 20; ++i) {
        makeQueue();
        results.clear();
        const std::string before = printed();
        add("print computing\ncompute\nprint never");
        ASSERT_TRUE(QTest::qWaitFor([&] { return printed() != before; }, patience));
        interrupt.interruptScript();
        runAll();
        ASSERT_EQ(ended(), "interrupted");
    }
    EXPECT_EQ(printed().find("never"), std::string::npos);
}

TEST_P(ScriptStopFromTheGuiThread, DoesNoHarmWhileRunsBeginAndEnd)
{
    ScriptPulse pulse(false);
    RunState state(interrupt);
    QObject::connect(queue.get(), &ScriptQueue::runStarted, &state, &RunState::begin);
    QObject::connect(queue.get(), &ScriptQueue::runEnded, &state, [&state](const QString&, ScriptOutcome outcome) {
        state.end(outcome == ScriptOutcome::Interrupted ? ScriptState::Stopped : ScriptState::Finished);
    });
    add("print first"); // the language takes the signal over
    runAll();
    pulse.prepared();
    ASSERT_TRUE(ScriptPulse::send());
    results.clear();
    QTimer hand;
    bool forGood = false;
    QObject::connect(&hand, &QTimer::timeout, [&] { (forGood = !forGood) ? state.stopForGood() : state.stop(); });
    hand.start(1);
    constexpr int count = 50;
    for (int i = 0; i < count; ++i) {
        add("compute");
        add("look 0"); // may end before the stop comes
    }
    runAll();
    ASSERT_EQ(results.size(), 2 * count);
    for (int i = 0; i < count; ++i)
        EXPECT_EQ(results[2 * i].toStdString(), "interrupted") << i;
}

} // namespace
