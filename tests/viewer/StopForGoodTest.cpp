// Stops that come at a bad moment of a script, on the GUI thread and on a thread of the scripts' own.

#include "ViewerTest.h"
#include "stopping/RunState.h"

#include <QtTest/QTest>

#include <cerrno>
#include <sys/wait.h>

namespace {

constexpr int patience = 60000;

class StopsAtBadMoments : public ViewerTest, public testing::WithParamInterface<bool>
{
protected:
    void SetUp() override
    {
        qputenv("VANTREL_PLUGIN", QFile::encodeName(TestSettings::pluginFile));
        QApplication::setQuitOnLastWindowClosed(false);
        Viewer::Settings settings;
        settings.scriptsOnOwnThread = GetParam();
        settings.pythonHome = TestSettings::pythonHome;
        settings.showsOutput = true;
        viewer = std::make_unique<Viewer>(settings);
        ASSERT_EQ(viewer->loadScripting(), QString());
        QObject::connect(&viewer->scripts(), &ScriptQueue::runEnded,
                         [this](const QString& result) { results += result; });
        viewer->window().show();
    }

    /// Presses Stop once the script has printed "begun", and "Stop for good" a moment later if asked to.
    void stopOnceBegun(bool forGood = false)
    {
        once([this, before = console().count(
                        QStringLiteral("begun"))] { return console().count(QStringLiteral("begun")) > before; },
             [this, forGood] {
                 viewer->runState().stop();
                 if (forGood)
                     QTimer::singleShot(300, &viewer->window(), [this] { viewer->runState().stopForGood(); });
             });
    }

    /// Runs a script to its end, which is an interrupt.
    void runUntilStopped(const QByteArray& script, bool forGood = false)
    {
        const auto ended = results.size();
        stopOnceBegun(forGood);
        run(script);
        ASSERT_TRUE(QTest::qWaitFor([&] { return results.size() > ended; }, patience)) << script.toStdString();
        EXPECT_TRUE(results.last().endsWith(QStringLiteral("\nKeyboardInterrupt\n"))) << results.last().toStdString();
    }

    /// A program that the language's library has killed may wait to be reaped. Returns false if one runs on.
    static bool waitForEndOfChildren()
    {
        const auto areGone = [] {
            pid_t child = 0;
            do
                child = waitpid(-1, nullptr, WNOHANG);
            while (child > 0);
            return child < 0 && errno == ECHILD;
        };
        return QTest::qWaitFor(areGone, 5000);
    }

    void expectNextRuns(const QByteArray& script)
    {
        const auto ended = results.size();
        run(script);
        ASSERT_TRUE(QTest::qWaitFor([&] { return results.size() > ended; }, patience));
        EXPECT_EQ(results.last().toStdString(), "");
    }
};

INSTANTIATE_TEST_SUITE_P(Thread, StopsAtBadMoments, testing::Bool(),
                         [](const auto& thread) { return thread.param ? "Worker" : "Gui"; });

TEST_P(StopsAtBadMoments, WaitForAFinaliser)
{
    runUntilStopped("import time\n"
                    "class Thing:\n"
                    "    def __del__(self):\n"
                    "        print('begun')\n"
                    "        end = time.monotonic() + 0.5\n"
                    "        while time.monotonic() < end: pass\n"
                    "        print('complete')\n"
                    "Thing()\n"
                    "time.sleep(600)\n");
    EXPECT_EQ(results[0].count(QStringLiteral("Traceback")), 1) << results[0].toStdString();
    EXPECT_TRUE(QTest::qWaitFor([this] { return console().contains(QStringLiteral("complete")); }, patience));
}

TEST_P(StopsAtBadMoments, WaitForTheStartOfAProgram)
{
    runUntilStopped("import subprocess, time\n"
                    "print('begun')\n"
                    "subprocess.run(['sleep', '600'], preexec_fn=lambda: time.sleep(0.5))\n");
    EXPECT_EQ(results[0].count(QStringLiteral("Traceback")), 1) << results[0].toStdString();
    EXPECT_TRUE(waitForEndOfChildren()) << "the program runs on";
}

TEST_P(StopsAtBadMoments, ForGoodEndThePrograms)
{
    const char* const programs[] = {
        "subprocess.run(['sleep', '600'])", "subprocess.call(['sleep', '600'])",
        "subprocess.check_output(['sleep', '600'])",
        "subprocess.run(['sleep', '600'], preexec_fn=lambda: time.sleep(0.2))", // mostly stopped at its start
    };
    for (const char* program : programs) {
        runUntilStopped(QByteArray("import subprocess, time\n"
                                   "print('begun')\n"
                                   "while True:\n"
                                   "    try:\n"
                                   "        ") +
                            program +
                            "\n"
                            "    except BaseException:\n"
                            "        pass\n",
                        true);
        EXPECT_TRUE(waitForEndOfChildren()) << program << " runs on";
        expectNextRuns("print('next')\n");
    }
}

TEST_P(StopsAtBadMoments, ForGoodEndAFinaliserThatSwallowsThem)
{
    for (const char* work : {"x = 1; time.sleep(0)\n                while x: x += 1", "time.sleep(600)"}) {
        runUntilStopped(QByteArray("import time\n"
                                   "class Thing:\n"
                                   "    def __del__(self):\n"
                                   "        print('begun')\n"
                                   "        while True:\n"
                                   "            try:\n"
                                   "                ") +
                            work +
                            "\n"
                            "            except BaseException:\n"
                            "                pass\n"
                            "Thing()\n"
                            "time.sleep(600)\n",
                        true);
        expectNextRuns("print('next')\n");
    }
}

TEST_P(StopsAtBadMoments, ForGoodEndAFinaliserThatTheyHaveCaused)
{
    runUntilStopped("import time\n"
                    "class Thing:\n"
                    "    def __del__(self):\n"
                    "        time.sleep(600)\n"
                    "def work():\n"
                    "    thing = Thing()\n"
                    "    print('begun')\n"
                    "    while True:\n"
                    "        try:\n"
                    "            x = 0\n"
                    "            while True: x += 1\n"
                    "        except BaseException:\n"
                    "            pass\n"
                    "work()\n",
                    true);
    expectNextRuns("print('next')\n");
}

TEST_P(StopsAtBadMoments, ForGoodCallTheExitsOfWithStatements)
{
    const char* const bodies[] = {
        // The last line of each `with` statement comes after the line that fails.
        "        while True:\n            try:\n                time.sleep(600)\n"
        "            except BaseException:\n                pass\n        last = 1\n",
        "        if True:\n            while True:\n                try:\n                    time.sleep(600)\n"
        "                except BaseException: pass\n        else:\n            last = 1\n",
        "        with open('/dev/null') as null:\n            while True:\n                try:\n"
        "                    time.sleep(600)\n                except BaseException:\n                    pass\n"
        "            last = (1,\n                2)\n        last = 3\n",
    };
    for (const char* body : bodies) {
        runUntilStopped(QByteArray("import sys, threading, time\n"
                                   "sys.the_lock = threading.Lock()\n"
                                   "print('begun')\n"
                                   "def work():\n"
                                   "    with sys.the_lock:\n") +
                            body + "work()\n",
                        true);
        expectNextRuns("import sys\nassert not sys.the_lock.locked()\n");
    }
}

} // namespace
