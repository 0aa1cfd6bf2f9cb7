// Runs on several threads.

#include "support/PluginHost.h"
#include "support/TestSettings.h"

#include <array>
#include <atomic>
#include <chrono>
#include <thread>
#include <vector>

namespace {

class Threads : public PluginTest
{
protected:
    QString runOn(IxScriptEnvironment& environment, const char* script)
    {
        return host.plugin->runScript(QString::fromUtf8(script), &environment, TestSettings::pythonHome, nullptr,
                                      nullptr, nullptr);
    }

    /// Runs a script on a new thread and waits for it.
    QString runElsewhere(const char* script)
    {
        QString result;
        std::thread([&] { result = runOn(host.environment, script); }).join();
        return result;
    }
};

TEST_F(Threads, RunOneAfterAnother)
{
    EXPECT_CLEAN_RUN("import builtins\nbuiltins.total = 1");
    for (int i = 0; i < 5; ++i)
        EXPECT_EQ(runElsewhere("import builtins\nbuiltins.total += 1\nx = [n for n in range(1000)]").toStdString(), "");
    EXPECT_CLEAN_RUN("import builtins\nprint(builtins.total)");
    EXPECT_EQ(host.printed().toStdString(), "6\n");
}

TEST_F(Threads, FirstRunMayBeOffTheGuiThread)
{
    EXPECT_EQ(runElsewhere("import json, threading\nassert json.dumps([1]) == '[1]'").toStdString(), "");
    EXPECT_CLEAN_RUN("import threading\nt = threading.Thread(target=print, args=('thread',))\nt.start()\nt.join()");
    EXPECT_EQ(host.printed().toStdString(), "thread\n");
    EXPECT_EQ(runElsewhere("vantrel.Image().alloc(2, 2, 1, 8)").toStdString(), "");
    host.restart();
    EXPECT_EQ(runElsewhere("pass").toStdString(), "");
}

TEST_F(Threads, GuardRefusesOffTheGuiThreadAndLeavesTheViewsAlone)
{
    EXPECT_EQ(runElsewhere("vantrel.tile_views()").section(u'\n', -2).toStdString(),
              "Exception: running GUI function from non-main thread\n");
    EXPECT_EQ(runElsewhere("vantrel.open_file('x')").section(u'\n', -2).toStdString(),
              "Exception: vantrel.open_file: running GUI function from non-main thread\n");
    EXPECT_EQ(host.delegate.calls, QStringList());
    EXPECT_CLEAN_RUN("vantrel.tile_views()");
    EXPECT_EQ(host.delegate.calls, QStringList(QStringLiteral("tileViews()")));
}

TEST_F(Threads, OutputComesOnTheRunningThread)
{
    static std::thread::id seen;
    std::thread::id expected;
    std::thread([&] {
        expected = std::this_thread::get_id();
        host.plugin->runScript(QStringLiteral("print('x')"), &host.environment, TestSettings::pythonHome, nullptr,
                               nullptr, [](const QString&, bool) { seen = std::this_thread::get_id(); });
    }).join();
    EXPECT_EQ(seen, expected);
}

TEST_F(Threads, TwoAtOnceRunOneAfterAnother)
{
    EXPECT_CLEAN_RUN("import builtins\nbuiltins.inside = 0");
    const char* script = "import builtins, time\n"
                         "for i in range(20):\n"
                         "    assert builtins.inside == 0\n"
                         "    builtins.inside = 1\n"
                         "    time.sleep(0.001)\n" // lets any other thread of the interpreter run
                         "    builtins.inside = 0\n";
    std::array<QString, 4> results;
    std::vector<std::thread> threads;
    for (QString& result : results) {
        threads.emplace_back([&] {
            for (int i = 0; i < 5; ++i)
                result += runOn(host.environment, script);
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    for (const QString& result : results)
        EXPECT_EQ(result.toStdString(), "");
    EXPECT_CLEAN_RUN("import builtins\nassert builtins.inside == 0");
}

// The second run's environment is in use from the moment that it is handed over, before its turn comes.
TEST_F(Threads, ARunThatWaitsAlreadyLendsItsEnvironmentToTheRunningScript)
{
    EXPECT_CLEAN_RUN("pass");
    FakeEnvironment first;
    FakeEnvironment second;
    host.delegate.active = 1;
    std::thread waiting;
    std::atomic<bool> ran = false;
    first.onWait = [&](double) {
        if (!waiting.joinable()) {
            waiting = std::thread([&] {
                runOn(second, "import builtins\nbuiltins.second = 1");
                ran = true;
            });
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(1)); // the pace of the script's loop, no more
    };
    second.onWait = [&](double) {
        EXPECT_FALSE(ran);
        host.delegate.active = 2;
    };
    EXPECT_EQ(runOn(first, "import builtins\nbuiltins.second = 0\n"
                           "for i in range(30000):\n"
                           "    vantrel.wait(0)\n"
                           "    if vantrel.get_active_view_id() == 2: break\n"
                           "else:\n"
                           "    raise AssertionError('the first environment is still in use')\n"
                           "assert builtins.second == 0\n")
                  .toStdString(),
              "");
    waiting.join();
    EXPECT_TRUE(ran);
    EXPECT_EQ(second.calls.size(), 1);
    EXPECT_CLEAN_RUN("import builtins\nassert builtins.second == 1");
}

TEST_F(Threads, ExceptionsAndRecursionAreReportedOnEveryThread)
{
    EXPECT_CLEAN_RUN("pass");
    EXPECT_TRUE(runElsewhere("raise ValueError('x')").endsWith(QStringLiteral("ValueError: x\n")));
    EXPECT_TRUE(runElsewhere("def f(): f()\nf()").contains(QStringLiteral("RecursionError")));
    EXPECT_CLEAN_RUN("print(1)");
}

TEST_F(Threads, ThreadsOfTheScriptUseTheModule)
{
    EXPECT_CLEAN_RUN("import threading\n"
                     "sizes = []\n"
                     "def work(n):\n"
                     "    img = vantrel.Image()\n"
                     "    img.alloc(n, 2, 1, 8)\n"
                     "    sizes.append(img.width)\n"
                     "threads = [threading.Thread(target=work, args=(n,)) for n in range(1, 9)]\n"
                     "for t in threads: t.start()\n"
                     "for t in threads: t.join()\n"
                     "print(sorted(sizes))");
    EXPECT_EQ(host.printed().toStdString(), "[1, 2, 3, 4, 5, 6, 7, 8]\n");
}

TEST_F(Threads, ThreadsOfTheScriptAreRefusedByTheGuardToo)
{
    EXPECT_CLEAN_RUN("import threading\n"
                     "def work():\n"
                     "    try: vantrel.tile_views()\n"
                     "    except Exception as error: print(error, end='')\n"
                     "t = threading.Thread(target=work)\nt.start()\nt.join()");
    EXPECT_EQ(host.printed().toStdString(), "running GUI function from non-main thread");
    EXPECT_EQ(host.delegate.calls, QStringList());
}

} // namespace
