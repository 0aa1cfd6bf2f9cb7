// Host code that throws C++ exceptions while a script runs.

#include "support/LogCapture.h"
#include "support/PluginHost.h"
#include "support/TestSettings.h"

#include <QtCore/QRegularExpression>

#include <stdexcept>

namespace {

constexpr const char* raised = "Python rasied exception";

/// Throws from the operation that it is told.
class ThrowingEnvironment : public FakeEnvironment
{
public:
    QList<SxApiParamDef>& apiParamDefs() override
    {
        may("apiParamDefs");
        return FakeEnvironment::apiParamDefs();
    }
    QList<SxApiParamEnumVal>& apiParamEnumVals() override
    {
        may("apiParamEnumVals");
        return FakeEnvironment::apiParamEnumVals();
    }
    bool isMainThread() override
    {
        may("isMainThread");
        return FakeEnvironment::isMainThread();
    }
    QString resolveFilePath(const QString& path) override
    {
        may("resolveFilePath");
        return FakeEnvironment::resolveFilePath(path);
    }
    void wait(double time) override
    {
        may("wait");
        FakeEnvironment::wait(time);
    }
    bool waitForNextFrame(CxMdiView* view, double timeout) override
    {
        may("waitForNextFrame");
        return FakeEnvironment::waitForNextFrame(view, timeout);
    }
    const char* functionHelp(const char* moduleName, const char* functionName) override
    {
        may("functionHelp");
        return FakeEnvironment::functionHelp(moduleName, functionName);
    }
    const char* methodHelp(const char* objectName, const char* methodName) override
    {
        may("methodHelp");
        return FakeEnvironment::functionHelp(objectName, methodName);
    }

    std::string culprit;

private:
    void may(const char* operation) const
    {
        if (culprit == operation)
            throw std::runtime_error(operation);
    }
};

class NativeException : public PluginTest
{
protected:
    QString run(const QString& script)
    {
        PluginHost::output.clear();
        return host.plugin->runScript(script, &environment, TestSettings::pythonHome, nullptr, nullptr,
                                      [](const QString& text, bool) {
                                          PluginHost::output.append(text);
                                          if (PluginHost::onOutput)
                                              PluginHost::onOutput(text, false);
                                      });
    }
    QString run(const char* script) { return run(QString::fromUtf8(script)); }

    void expectNextRunWorks()
    {
        environment.culprit.clear();
        host.delegate.onCall = nullptr;
        PluginHost::onOutput = nullptr;
        EXPECT_EQ(run("img = vantrel.Image()\nimg.alloc(2, 2, 1, 8)\nprint(img.width)\nmade_next = 1").toStdString(),
                  "");
        EXPECT_EQ(host.printed().toStdString(), "2\n");
        EXPECT_TRUE(run("raise ValueError('seen')").endsWith(QStringLiteral("ValueError: seen\n")));
        EXPECT_EQ(run("import sys\nassert 'made_next' not in globals()\nvantrel.tile_views()\n"
                      "vantrel.wait(0)")
                      .toStdString(),
                  "");
    }

    /// The run's result and the one log line that goes with it.
    void expectRaised(const QString& result, const LogCapture& log)
    {
        EXPECT_EQ(result.toStdString(), raised);
        const QStringList lines = log.criticals();
        ASSERT_EQ(lines.size(), 1) << lines.join(u'\n').toStdString();
        const QRegularExpression form(
            QStringLiteral("^0x[0-9a-f]+ .*CxPythonScriptPlugin\\.cpp L [0-9]+ :  +"
                           "\"CxPythonScriptPlugin::runScript\\(\\): Python rasied exception\"$"));
        EXPECT_TRUE(form.match(lines.first()).hasMatch()) << lines.first().toStdString();
    }

    ThrowingEnvironment environment;
};

TEST_F(NativeException, InTheOutputCallbackEndsTheRun)
{
    PluginHost::onOutput = [](const QString&, bool) { throw std::runtime_error("output"); };
    LogCapture log;
    expectRaised(run("print('x')\nvantrel.wait(1)"), log);
    EXPECT_EQ(host.printed().toStdString(), "x");
    EXPECT_EQ(environment.calls, QStringList()) << "nothing runs after it";
    expectNextRunWorks();
}

TEST_F(NativeException, OfATypeThatIsNoStandardExceptionEndsTheRunToo)
{
    PluginHost::onOutput = [](const QString&, bool) { throw 42; };
    LogCapture log;
    expectRaised(run("print('x')"), log);
    expectNextRunWorks();
}

TEST_F(NativeException, InTheStartNotificationEndsTheRunBeforeTheScript)
{
    LogCapture log;
    expectRaised(host.plugin->runScript(
                     QStringLiteral("vantrel.wait(1)"), &environment, TestSettings::pythonHome,
                     [](void*, void*) { throw std::runtime_error("started"); }, nullptr, nullptr),
                 log);
    EXPECT_EQ(environment.calls, QStringList());
    expectNextRunWorks();
}

struct Case {
    const char* name;
    const char* script;
};

class NativeExceptionFrom : public NativeException, public testing::WithParamInterface<Case>
{
};

TEST_P(NativeExceptionFrom, TheEnvironmentEndsTheRun)
{
    host.delegate.addView(makeTestImage(4, 3));
    environment.culprit = GetParam().name;
    LogCapture log;
    expectRaised(run(GetParam().script), log);
    expectNextRunWorks();
}

INSTANTIATE_TEST_SUITE_P(Operations, NativeExceptionFrom,
                         testing::Values(Case{"apiParamDefs", "pass"}, Case{"apiParamEnumVals", "pass"},
                                         Case{"functionHelp", "pass"}, Case{"methodHelp", "pass"},
                                         Case{"isMainThread", "vantrel.tile_views()"}, Case{"wait", "vantrel.wait(1)"},
                                         Case{"waitForNextFrame", "vantrel.wait_for_next_frame(1)"},
                                         Case{"resolveFilePath", "vantrel.open_file('x.png')"}),
                         [](const auto& row) { return std::string(row.param.name); });

TEST_F(NativeException, InAnOperationOfTheApplicationEndsTheRun)
{
    host.delegate.onCall = [] { throw std::runtime_error("delegate"); };
    LogCapture log;
    expectRaised(run("vantrel.tile_views()\nprint('never')"), log);
    EXPECT_EQ(host.printed().toStdString(), "");
    expectNextRunWorks();
}

TEST_F(NativeException, DeepInTheScriptsFunctionsEndsTheRun)
{
    environment.culprit = "wait";
    LogCapture log;
    expectRaised(run("def f(n):\n"
                     "    if n == 0: vantrel.wait(1)\n"
                     "    list(map(f, [n - 1]))\n"
                     "f(20)"),
                 log);
    expectNextRunWorks();
}

TEST_F(NativeException, IsNotAnExceptionThatScriptsCatchByHabit)
{
    environment.culprit = "wait";
    LogCapture log;
    expectRaised(run("try:\n    vantrel.wait(1)\nexcept Exception:\n    print('caught')"), log);
    EXPECT_EQ(host.printed().toStdString(), "");
    expectNextRunWorks();
}

TEST_F(NativeException, EndsTheRunEvenWhenTheScriptCatchesEverything)
{
    environment.culprit = "wait";
    LogCapture log;
    expectRaised(run("try:\n    vantrel.wait(1)\nexcept:\n    print('caught')"), log);
    expectNextRunWorks();
}

TEST_F(NativeException, DropsTheErrorTextCollectedSoFar)
{
    environment.culprit = "wait";
    LogCapture log;
    expectRaised(run("import sys\nsys.stderr.write('collected')\nvantrel.wait(1)"), log);
    environment.culprit.clear();
    EXPECT_EQ(run("pass").toStdString(), "");
}

TEST_F(NativeException, LeavesTheNamesMadeSoFar)
{
    environment.culprit = "wait";
    run("early = 1\nvantrel.wait(1)\nlate = 2");
    environment.culprit.clear();
    EXPECT_EQ(run("print(early, 'late' in globals())\nown = 3").toStdString(), "");
    EXPECT_EQ(host.printed().toStdString(), "1 False\n");
    EXPECT_EQ(run("print('early' in globals(), 'own' in globals())").toStdString(), "");
    EXPECT_EQ(host.printed().toStdString(), "True False\n");
}

void writeThroughTheStreams(void*, void* data)
{
    auto& host = *static_cast<PluginHost*>(data);
    // An image that is replaced is the host's only way to make code of the script run outside a run.
    host.plugin->addImageVariable(QStringLiteral("trap"), nullptr);
}

TEST_F(NativeException, LeavesTheStreamsInPlaceWithoutFunctions)
{
    EXPECT_EQ(run("import builtins\n"
                  "class Trap:\n"
                  "    def __del__(self):\n"
                  "        import sys, emb, builtins\n"
                  "        builtins.seen = (type(sys.stdout) is emb.stdout_object,\n"
                  "                         type(sys.stderr) is emb.stdout_object,\n"
                  "                         sys.stdout.write('abc'), sys.stderr.write('abc'), sys.stdout.write(1))\n"
                  "builtins.Trap = Trap\n")
                  .toStdString(),
              "");
    environment.culprit = "wait";
    EXPECT_EQ(run("trap = Trap()\nvantrel.wait(1)").toStdString(), raised);
    PluginHost::output.clear();
    writeThroughTheStreams(nullptr, &host);
    EXPECT_EQ(host.printed().toStdString(), "");
    environment.culprit.clear();
    EXPECT_EQ(run("import builtins\nprint(builtins.seen)").toStdString(), "");
    EXPECT_EQ(host.printed().toStdString(), "(True, True, 0, 0, 0)\n");
    expectNextRunWorks();
}

TEST_F(NativeException, NextRunPutsTheOldStreamsBack)
{
    environment.culprit = "wait";
    run("vantrel.wait(1)");
    environment.culprit.clear();
    EXPECT_EQ(run("pass").toStdString(), "");
    EXPECT_EQ(host.plugin
                  ->runScript(QStringLiteral("import sys\nassert sys.stdout is sys.__stdout__"), &environment,
                              QString(), nullptr, nullptr, nullptr)
                  .toStdString(),
              "");
}

TEST_F(NativeException, InAFinaliserDuringTheCleanUpLeavesTheNamesThatWereStillToGo)
{
    environment.culprit = "wait";
    LogCapture log;
    expectRaised(run("class Last:\n    def __del__(self): vantrel.wait(1)\nlast = Last()\nafter = 1"), log);
    environment.culprit.clear();
    EXPECT_EQ(run("print('last' in globals(), 'after' in globals())").toStdString(), "");
    EXPECT_EQ(host.printed().toStdString(), "False True\n");
    expectNextRunWorks();
}

TEST_F(NativeException, InAFinaliserOfAReplacedStreamEndsTheRun)
{
    environment.culprit = "wait";
    LogCapture log;
    expectRaised(run("import sys\nclass S:\n    def __del__(self): vantrel.wait(1)\nsys.stdout = S()\nafter = 1"), log);
    environment.culprit.clear();
    EXPECT_EQ(run("print('after' in globals())").toStdString(), "");
    EXPECT_EQ(host.printed().toStdString(), "True\n");
    expectNextRunWorks();
}

TEST_F(NativeException, WhileTheInterpreterIsFinalisedIsLogged)
{
    EXPECT_EQ(run("import sys\nclass Last:\n"
                  "    def __init__(self): self.wait = vantrel.wait\n"
                  "    def __del__(self): self.wait(1)\n"
                  "sys.last_words = Last()\n")
                  .toStdString(),
              "");
    environment.culprit = "wait";
    LogCapture log;
    testing::internal::CaptureStderr();
    host.restart();
    testing::internal::GetCapturedStderr();
    const QStringList lines = log.criticals();
    ASSERT_EQ(lines.size(), 1) << lines.join(u'\n').toStdString();
    EXPECT_TRUE(
        lines.first().endsWith(QStringLiteral("\"CxPythonScriptPlugin::runScript(): Python crashed in Finalize\"")))
        << lines.first().toStdString();
    expectNextRunWorks();
}

TEST_F(NativeException, ReleasesTheRunLock)
{
    environment.culprit = "wait";
    for (int i = 0; i < 20; ++i)
        EXPECT_EQ(run("vantrel.wait(1)").toStdString(), raised);
    expectNextRunWorks();
}

TEST_F(NativeException, LeavesNoImageBehind)
{
    environment.culprit = "wait";
    run("def f():\n    img = vantrel.Image()\n    img.alloc(100, 100, 3, 8)\n    vantrel.wait(1)\nf()");
    expectNextRunWorks();
    EXPECT_EQ(CxImageData::liveCount(), 0);
}

} // namespace
