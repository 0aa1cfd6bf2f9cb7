// A C++ exception of the host ends the script: what the script would do with the error does not count.

#include "plugins/support/CameraScriptTest.h"
#include "support/LogCapture.h"
#include "support/TestSettings.h"

#include <QtCore/QTemporaryDir>

#include <stdexcept>
#include <thread>

namespace {

constexpr const char* raised = "Python rasied exception";

/// Counts what reaches it, and throws from each operation until it is told to stop.
class WatchedEnvironment : public FakeEnvironment
{
public:
    bool isCameraParameter(const QString& name) override
    {
        reach();
        return FakeEnvironment::isCameraParameter(name);
    }
    QString workingDirectory() override
    {
        reach();
        return FakeEnvironment::workingDirectory();
    }
    QString resolveFilePath(const QString& path) override
    {
        reach();
        return FakeEnvironment::resolveFilePath(path);
    }
    bool isMainThread() override { return true; } // asked before each call: the call itself is counted
    void wait(double time) override
    {
        reach();
        if (throws)
            throw std::runtime_error("wait");
        FakeEnvironment::wait(time);
    }

    void reach() { ++reached; }

    int reached = 0;
    bool throws = true;
};

class EndOfScript : public CameraScriptTest
{
protected:
    EndOfScript()
    {
        environment.directory = folder.path();
        environment.cameraParameters = host.environment.cameraParameters;
        host.delegate.onCall = [this] { environment.reach(); };
        PluginHost::onOutput = [this](const QString&, bool) { environment.reach(); };
        host.run("import builtins\nbuiltins.marks = []"); // what a script puts there is seen by the next one
        environment.reached = 0;
    }
    ~EndOfScript() override { PluginHost::onOutput = nullptr; }

    std::string run(const std::string& script)
    {
        return host.plugin
            ->runScript(QString::fromStdString(script), &environment, TestSettings::pythonHome, nullptr, nullptr,
                        [](const QString& text, bool) { PluginHost::onOutput(text, false); })
            .toStdString();
    }
    std::string runElsewhere(const std::string& script)
    {
        std::string result;
        std::thread([&] { result = run(script); }).join();
        return result;
    }

    /// The expression in a run of its own.
    std::string told(const std::string& expression)
    {
        const QString result =
            host.run(QString::fromStdString("import sys, threading\nprint(" + expression + ", end='')"));
        return (host.printed() + result).toStdString();
    }

    void expectNormalRuns()
    {
        environment.throws = false;
        environment.calls.clear();
        const char* script = "import sys, threading\n"
                             "assert sys.gettrace() is None\n"
                             "assert not [t for t in threading.enumerate() if type(t) is threading.Thread]\n"
                             "try:\n"
                             "    raise BaseException\n"
                             "except BaseException:\n"
                             "    total = 0\n"
                             "for i in range(1000): total += i\n"
                             "vantrel.wait(1)\n"
                             "thread = threading.Thread(target=vantrel.wait, args=(2,))\n"
                             "thread.start()\n"
                             "thread.join()\n"
                             "assert total == 499500\n";
        EXPECT_EQ(run(script), "");
        EXPECT_EQ(runElsewhere(script), "");
        EXPECT_EQ(run(script), "");
        EXPECT_EQ(environment.calls.join(u' ').toStdString(), "wait(1) wait(2) wait(1) wait(2) wait(1) wait(2)");
    }

    QTemporaryDir folder;
    WatchedEnvironment environment;
};

struct Swallowing {
    const char* name;
    const char* script; ///< reaches the host once, and would go on if it could
};

void PrintTo(const Swallowing& row, std::ostream* stream)
{
    *stream << row.script;
}

class ScriptThatSwallows : public EndOfScript, public testing::WithParamInterface<Swallowing>
{
};

TEST_P(ScriptThatSwallows, EndsAtOnce)
{
    const LogCapture log;
    testing::internal::CaptureStderr();
    EXPECT_EQ(run(GetParam().script), raised);
    testing::internal::GetCapturedStderr();
    EXPECT_EQ(environment.reached, 1);
    EXPECT_EQ(told("marks"), "[]");
    EXPECT_EQ(log.criticals().size(), 1);
    expectNormalRuns();
}

TEST_P(ScriptThatSwallows, EndsAtOnceOnAnotherThread)
{
    testing::internal::CaptureStderr();
    EXPECT_EQ(runElsewhere(GetParam().script), raised);
    testing::internal::GetCapturedStderr();
    EXPECT_EQ(environment.reached, 1);
    EXPECT_EQ(told("marks"), "[]");
    expectNormalRuns();
}

INSTANTIATE_TEST_SUITE_P(
    Scripts, ScriptThatSwallows,
    testing::Values(
        Swallowing{"InAHandler",
                   "try:\n    vantrel.wait(1)\nexcept BaseException:\n    marks.append(1)\nmarks.append(2)\n"
                   "vantrel.tile_views()\nprint('on')"},
        Swallowing{"InALoop", "while True:\n    try: vantrel.wait(1)\n    except: continue"},
        Swallowing{"InALoopOfAHandler", "try: vantrel.wait(1)\nexcept:\n    while True:\n        try:\n"
                                        "            while True: pass\n        except: pass"},
        Swallowing{"InAFinally", "try: vantrel.wait(1)\nfinally:\n    marks.append(1)\n    while True: pass"},
        Swallowing{"ByReturningFromAFinally", "def f():\n    try: vantrel.wait(1)\n    finally: return 1\n"
                                              "while True: marks.append(f())"},
        Swallowing{"BySuppress", "import contextlib\nwhile True:\n    with contextlib.suppress(BaseException):\n"
                                 "        vantrel.wait(1)\n    marks.append(1)"},
        Swallowing{"BySuppressInOneLine", "import contextlib\nwhile True:\n"
                                          "    with contextlib.suppress(BaseException): vantrel.wait(1)"},
        Swallowing{"ByAnExit", "class C:\n    def __enter__(self): pass\n    def __exit__(self, *error):\n"
                               "        marks.append(1)\n        return True\n"
                               "while True:\n    with C():\n        vantrel.wait(1)\n    marks.append(2)"},
        Swallowing{"InAFinaliser",
                   "class C:\n    def __del__(self):\n        marks.append(1)\n        while True: pass\n"
                   "def f():\n    c = C()\n    vantrel.wait(1)\ntry: f()\nexcept: pass"},
        Swallowing{"InTheFinaliserThatBegan", "class C:\n    def __del__(self):\n        while True:\n"
                                              "            try: vantrel.wait(1)\n            except: pass\n"
                                              "c = C()\ndel c\nmarks.append(1)\nwhile True: pass"},
        Swallowing{"InAWeakReferencesCallback", "import weakref, sys\nclass C: pass\ndef callback(reference):\n"
                                                "    marks.append(1)\n    while True: pass\n"
                                                "def f():\n    c = C()\n    sys.kept = weakref.ref(c, callback)\n"
                                                "    vantrel.wait(1)\nf()"},
        Swallowing{"InAGenerator", "def g():\n    while True:\n        try: yield vantrel.wait(1)\n"
                                   "        except: marks.append(1)\nfor x in g(): marks.append(2)"},
        Swallowing{"InAComprehension", "def f(i):\n    try: vantrel.wait(1)\n    except: pass\n"
                                       "[f(i) for i in iter(int, 1)]"},
        Swallowing{"InALambda",
                   "def f():\n    try: vantrel.wait(1)\n    except: pass\nfor i in iter(lambda: f(), 1): pass"},
        Swallowing{"InATask", "import asyncio\nasync def task():\n    while True:\n        try:\n"
                              "            vantrel.wait(1)\n            await asyncio.sleep(0)\n"
                              "        except: await asyncio.sleep(0)\n"
                              "async def main():\n"
                              "    await asyncio.gather(task(), task(), return_exceptions=True)\n    marks.append(1)\n"
                              "while True:\n    try: asyncio.run(main())\n    except: pass"},
        Swallowing{"OnAThread", "import threading\ndef work():\n    while True:\n        try: vantrel.wait(1)\n"
                                "        except: pass\nthread = threading.Thread(target=work)\nthread.start()\n"
                                "thread.join()\nvantrel.tile_views()"},
        Swallowing{"InAPool", "from concurrent.futures import ThreadPoolExecutor\n"
                              "with ThreadPoolExecutor(1) as pool:\n    future = pool.submit(vantrel.wait, 1)\n"
                              "    try: future.result()\n    except: pass\n    vantrel.tile_views()"},
        Swallowing{"InAHook", "import sys\ndef hook(what):\n    marks.append(1)\n    while True: pass\n"
                              "class C:\n    def __del__(self): vantrel.wait(1)\n"
                              "sys.unraisablehook = hook\nc = C()\ndel c"},
        Swallowing{"InCodeWithAllItsLinesInOne",
                   "import ast\ntree = ast.parse('while True:\\n try:\\n  vantrel.wait(1)\\n except: continue\\n')\n"
                   "for node in ast.walk(tree):\n"
                   "    for name in ('lineno', 'end_lineno'):\n"
                   "        if hasattr(node, name): setattr(node, name, 1)\n"
                   "exec(compile(tree, 'generated', 'exec'))"}),
    [](const auto& row) { return std::string(row.param.name); });

TEST_F(EndOfScript, ComesWithAllScriptsThatItHasStarted)
{
    QFile inner(folder.filePath(QStringLiteral("inner.py")));
    ASSERT_TRUE(inner.open(QIODevice::WriteOnly));
    inner.write("try: vantrel.wait(1)\nexcept: marks.append('inner')\nwhile True: pass\n");
    inner.close();
    const std::string call = "vantrel.run_script('" + inner.fileName().toStdString() + "')";
    EXPECT_EQ(run("while True:\n    try: " + call + "\n    except: marks.append('outer')"), raised);
    EXPECT_EQ(environment.reached, 2) << "for the path, and to wait";
    EXPECT_EQ(told("marks"), "[]");
    expectNormalRuns();
}

TEST_F(EndOfScript, ComesWhenTheScriptsTracingSwallows)
{
    EXPECT_EQ(run("import sys\n"
                  "def trace(frame, event, detail):\n"
                  "    try: vantrel.wait(1)\n"
                  "    except: pass\n"
                  "    return trace\n"
                  "def f():\n"
                  "    marks.append(1)\n"
                  "    while True: pass\n"
                  "sys.settrace(trace)\n"
                  "f()"),
              raised);
    EXPECT_EQ(environment.reached, 1);
    EXPECT_EQ(told("sys.settrace(None)"), "None");
    EXPECT_EQ(told("marks"), "[]");
    expectNormalRuns();
}

TEST_F(EndOfScript, GivesTheScriptsTracingBack)
{
    EXPECT_EQ(run("import sys\n"
                  "def trace(frame, event, detail):\n"
                  "    if frame.f_code.co_filename == '<string>': marks.append(frame.f_code.co_name)\n"
                  "    return trace\n"
                  "sys.trace = trace\n"
                  "def f():\n"
                  "    try: vantrel.wait(1)\n"
                  "    except: pass\n"
                  "    g()\n"
                  "def g(): pass\n"
                  "sys.settrace(trace)\n"
                  "f()"),
              raised);
    EXPECT_EQ(told("sys.gettrace() is sys.trace, sys.settrace(None), sorted(set(marks))"),
              "True None ['<module>', 'f']");
    expectNormalRuns();
}

TEST_F(EndOfScript, FreesTheLocksOfWithStatements)
{
    EXPECT_EQ(run("import sys, threading\n"
                  "sys.locks = [threading.Lock(), threading.Condition(threading.Lock())]\n"
                  "with sys.locks[0]:\n"
                  "    with sys.locks[1]:\n"
                  "        x = 1\n"
                  "        vantrel.wait(1)\n"),
              raised);
    EXPECT_EQ(told("[lock.acquire(False) for lock in sys.locks]"), "[True, True]");
    expectNormalRuns();
}

// The function's frame began before the exception, so it is traced from its middle on.
TEST_F(EndOfScript, RunsTheExitOfAWithStatementInTheMiddleOfItsFunction)
{
    EXPECT_EQ(run("pool = __import__('concurrent.futures').futures.ThreadPoolExecutor(1)\n"
                  "def f():\n"
                  "    with pool:\n"
                  "        pool.submit(vantrel.wait, 1)\n"
                  "        x = 1\n"
                  "        y = 2\n"
                  "f()"),
              raised);
    expectNormalRuns();
}

TEST_F(EndOfScript, LeavesNoModuleHalfImported)
{
    QFile module(folder.filePath(QStringLiteral("half_imported.py")));
    ASSERT_TRUE(module.open(QIODevice::WriteOnly));
    module.write("import vantrel\nvantrel.wait(1)\n");
    module.close();
    EXPECT_EQ(run("import sys\nsys.path.insert(0, '" + folder.path().toStdString() +
                  "')\ntry: import half_imported\nexcept: pass"),
              raised);
    EXPECT_EQ(told("'half_imported' in sys.modules"), "False");
    environment.throws = false;
    EXPECT_EQ(run("import half_imported"), "");
}

TEST_F(EndOfScript, ComesBeforeTheInterpretersOwnEndOfTheProcess)
{
    EXPECT_EQ(run("import sys\ntry: vantrel.wait(1)\nfinally: sys.exit(3)"), raised);
    expectNormalRuns();
}

TEST_F(EndOfScript, ComesForALoopThatWaitsForAThread)
{
    testing::internal::CaptureStderr();
    EXPECT_EQ(run("import threading\n"
                  "done = []\n"
                  "def work():\n"
                  "    vantrel.wait(1)\n"
                  "    done.append(1)\n"
                  "thread = threading.Thread(target=work)\n"
                  "thread.start()\n"
                  "while not done:\n"
                  "    try: pass\n"
                  "    except: pass\n"),
              raised);
    testing::internal::GetCapturedStderr();
    EXPECT_EQ(environment.reached, 1);
    expectNormalRuns();
}

struct Call {
    const char* name;
    const char* function; ///< and its arguments, as functools.partial takes them
};

void PrintTo(const Call& row, std::ostream* stream)
{
    *stream << row.function;
}

class RefusedCall : public EndOfScript, public testing::WithParamInterface<Call>
{
protected:
    /// How often a script reaches the host that makes an object, calls wait, and gives the object up, whose finaliser
    /// is the call, or nothing. The interpreter calls it without running a line of the script.
    qsizetype contacts(bool throws, bool calling, const char* result)
    {
        const LogCapture log;
        environment.throws = throws;
        environment.reached = 0;
        device.written.clear();
        testing::internal::CaptureStderr();
        EXPECT_EQ(
            run(std::string("import functools, sys\n"
                            "cam = vantrel.Camera()\n"
                            "cam.open_device()\n"
                            "img = vantrel.Image()\n"
                            "img.alloc(2, 2, 1, 8)\n"
                            "set_exposure = cam.set_exposure\n"
                            "class C: pass\n"
                            "if " +
                            std::string(calling ? "True" : "False") + ": C.__del__ = staticmethod(functools.partial(") +
                GetParam().function +
                "))\n"
                "def f():\n"
                "    c = C()\n"
                "    vantrel.wait(1)\n"
                "f()"),
            result);
        testing::internal::GetCapturedStderr();
        return environment.reached + device.written.size() + log.criticals().size();
    }
};

TEST_P(RefusedCall, DoesNotReachTheHost)
{
    host.delegate.addView(makeTestImage(4, 3));
    EXPECT_GT(contacts(false, true, ""), contacts(false, false, "")) << "the call is one that reaches the host";
    EXPECT_EQ(contacts(true, true, raised), contacts(true, false, raised));
    expectNormalRuns();
}

INSTANTIATE_TEST_SUITE_P(
    Functions, RefusedCall,
    testing::Values(Call{"ModuleFunction", "vantrel.tile_views"}, Call{"Path", "vantrel.play_sound, 'a.wav'"},
                    Call{"Log", "vantrel.print_to_error_log, 'text'"},
                    Call{"RunScript", "vantrel.run_script, '/dev/null'"}, Call{"Method", "cam.start_acquisition"},
                    Call{"Look_up", "getattr, cam, 'get_exposure'"}, Call{"CameraParameter", "set_exposure, 50"},
                    Call{"ImageMethod", "img.save_to_file, 'a.png'"}, Call{"Output", "sys.stdout.write, 'text'"}),
    [](const auto& row) { return std::string(row.param.name); });

} // namespace
