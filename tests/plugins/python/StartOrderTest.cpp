// The order of the interpreter's start, its failures, and its end.

#include "plugins/support/InsideTest.h"
#include "support/LogCapture.h"

#include <QtCore/QCoreApplication>

namespace {

class NotingEnvironment : public FakeEnvironment
{
public:
    QList<SxApiParamDef>& apiParamDefs() override
    {
        InterpreterSpy::calls.append(QStringLiteral("apiParamDefs"));
        return defs;
    }
    QList<SxApiParamEnumVal>& apiParamEnumVals() override
    {
        InterpreterSpy::calls.append(QStringLiteral("apiParamEnumVals"));
        return enumVals;
    }
    const char* functionHelp(const char* /*moduleName*/, const char* /*functionName*/) override
    {
        const QString call = QStringLiteral("functionHelp");
        if (InterpreterSpy::calls.last() != call)
            InterpreterSpy::calls.append(call);
        return nullptr;
    }
    const char* methodHelp(const char* objectName, const char* /*methodName*/) override
    {
        const QString call = QStringLiteral("methodHelp %1").arg(QString::fromUtf8(objectName));
        if (InterpreterSpy::calls.last() != call)
            InterpreterSpy::calls.append(call);
        return nullptr;
    }
};

class StartOrder : public InsideTest
{
protected:
    StartOrder()
    {
        noting.defs = {{QStringLiteral("A"), QStringLiteral("a")}, {QStringLiteral("B"), QStringLiteral("b")}};
        noting.enumVals = {{QStringLiteral("C"), -3}};
    }

    QString runNoted(const char* script)
    {
        return plugin->runScript(
            QString::fromUtf8(script), &noting, TestSettings::pythonHome,
            [](void*, void*) { InterpreterSpy::calls.append(QStringLiteral("started")); }, nullptr, nullptr);
    }

    QStringList start() const
    {
        return {QStringLiteral("Py_SetProgramName(%1)").arg(QCoreApplication::applicationFilePath()),
                QStringLiteral("Py_SetPythonHome(%1)").arg(TestSettings::pythonHome),
                QStringLiteral("PyImport_AppendInittab(emb)"),
                QStringLiteral("PyImport_AppendInittab(vantrel)"),
                QStringLiteral("Py_Initialize()"),
                QStringLiteral("apiParamDefs"),
                QStringLiteral("PyModule_AddStringConstant(A, a)"),
                QStringLiteral("PyModule_AddStringConstant(B, b)"),
                QStringLiteral("apiParamEnumVals"),
                QStringLiteral("PyModule_AddIntConstant(C, -3)"),
                QStringLiteral("PyImport_ImportModule(emb)"),
                QStringLiteral("Py_CompileString(import vantrel, <string>, 257)")};
    }
    QStringList moduleMade() const
    {
        return {QStringLiteral("functionHelp"), QStringLiteral("methodHelp cameraObj"),
                QStringLiteral("methodHelp graphObj"), QStringLiteral("methodHelp imgObj"),
                QStringLiteral("PyModule_Create2(vantrel, 3)")};
    }
    QStringList script(const char* text) const
    {
        return {QStringLiteral("started"),
                QStringLiteral("Py_CompileString(%1, <string>, 257)").arg(QString::fromUtf8(text))};
    }

    NotingEnvironment noting;
};

TEST_F(StartOrder, IsFixed)
{
    EXPECT_EQ(runNoted("pass").toStdString(), "");
    EXPECT_EQ(InterpreterSpy::calls, start() + moduleMade() + script("pass"))
        << InterpreterSpy::calls.join(u'\n').toStdString();
}

TEST_F(StartOrder, IsNotRepeatedByTheNextRun)
{
    EXPECT_EQ(runNoted("pass").toStdString(), "");
    InterpreterSpy::calls.clear();
    EXPECT_EQ(runNoted("x = 1").toStdString(), "");
    EXPECT_EQ(InterpreterSpy::calls, script("x = 1")) << InterpreterSpy::calls.join(u'\n').toStdString();
}

TEST_F(StartOrder, IsRepeatedByTheNextRunAfterInit)
{
    EXPECT_EQ(runNoted("pass").toStdString(), "");
    EXPECT_TRUE(plugin->init());
    InterpreterSpy::calls.clear();
    EXPECT_EQ(runNoted("x = 1").toStdString(), "");
    QStringList expected = start();
    // From 3.12 on the table of modules cannot grow while there is an interpreter. It has the modules already.
    if (TestSettings::isPythonAtLeast3(12))
        expected.removeIf(
            [](const QString& call) { return call.startsWith(QStringLiteral("PyImport_AppendInittab")); });
    EXPECT_EQ(InterpreterSpy::calls, expected + script("x = 1")) << InterpreterSpy::calls.join(u'\n').toStdString();
}

TEST_F(StartOrder, TouchesNothingBeforeTheFirstRun)
{
    plugin->init();
    plugin->languageVersion();
    plugin.reset();
    EXPECT_EQ(InterpreterSpy::calls, QStringList()) << "not even Py_Finalize";
}

TEST_F(StartOrder, EmptyHomeIsPassedAsItIs)
{
    InterpreterSpy::home = TestSettings::pythonHome.toStdWString(); // so that this Python finds its library
    EXPECT_EQ(run("pass", QString()).toStdString(), "");
    EXPECT_TRUE(InterpreterSpy::calls.contains(QStringLiteral("Py_SetPythonHome()")));
}

TEST_F(StartOrder, HomeBeyondTheBasicPlaneReachesTheInterpreterWhole)
{
    InterpreterSpy::home = TestSettings::pythonHome.toStdWString();
    EXPECT_EQ(run("pass", QStringLiteral("/ö/𝄞")).toStdString(), "");
    EXPECT_TRUE(InterpreterSpy::calls.contains(QStringLiteral("Py_SetPythonHome(/ö/𝄞)")));
}

TEST_F(StartOrder, ConstantThatCannotBePublishedIsLeftOutAlone)
{
    for (const char* refused : {"A", "C"}) {
        InterpreterSpy::reset();
        InterpreterSpy::refusedConstant = refused;
        EXPECT_EQ(runNoted("import sys\n"
                           "sys.stderr.write(' '.join(n for n in ('A', 'B', 'C', 'vantrel') if n in globals()))")
                      .toStdString(),
                  QByteArray("A B C vantrel").replace(QByteArray(refused) + ' ', "").toStdString());
        plugin = std::make_unique<CxPythonScriptPlugin>();
        plugin->init();
    }
}

TEST_F(StartOrder, RegistrationThatFailsIsWrittenToTheProcessAndTheModuleIsMissing)
{
    if (InterpreterSpy::everStarted)
        GTEST_SKIP() << "needs a process of its own: what was registered stays";
    InterpreterSpy::refusedModule = "vantrel";
    testing::internal::CaptureStderr();
    EXPECT_EQ(run("pass").toStdString(), "");
    const std::string text = testing::internal::GetCapturedStderr();
    const std::string message = "Error: could not extend in-built modules table\n";
    EXPECT_EQ(text.substr(0, message.size()), message);
    EXPECT_NE(text.find("ModuleNotFoundError: No module named 'vantrel'\n"), std::string::npos) << text;

    // The start counts as done.
    InterpreterSpy::calls.clear();
    EXPECT_EQ(run("import vantrel").section(u'\n', -2).toStdString(),
              "ModuleNotFoundError: No module named 'vantrel'\n");
    EXPECT_EQ(InterpreterSpy::calls.size(), 1) << InterpreterSpy::calls.join(u'\n').toStdString();
}

TEST_F(StartOrder, WithoutTheRedirectionScriptsWriteToTheProcessAndTheResultIsEmpty)
{
    if (InterpreterSpy::everStarted)
        GTEST_SKIP() << "needs a process of its own: what was registered stays";
    InterpreterSpy::refusedModule = "emb";
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    EXPECT_EQ(run("print('out', flush=True)\nraise ValueError('err')").toStdString(), "");
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "out\n");
    const std::string errors = testing::internal::GetCapturedStderr();
    EXPECT_NE(errors.find("ValueError: err\n"), std::string::npos) << errors;
    EXPECT_EQ(output.toStdString(), "");
}

class End : public InsideTest
{
};

TEST_F(End, FinalisesAStartedInterpreterOnce)
{
    EXPECT_EQ(run("pass").toStdString(), "");
    plugin.reset();
    EXPECT_EQ(InterpreterSpy::calls.count(QStringLiteral("Py_Finalize()")), 1);
}

TEST_F(End, DoesNotFinaliseAnInterpreterThatNeverRan)
{
    plugin.reset();
    EXPECT_EQ(InterpreterSpy::calls.count(QStringLiteral("Py_Finalize()")), 0);
}

TEST_F(End, LogsAFinaliseThatThrowsUnderTheNameOfTheRun)
{
    EXPECT_EQ(run("pass").toStdString(), "");
    InterpreterSpy::finalizeThrows = true;
    const LogCapture log;
    plugin.reset();
    ASSERT_EQ(log.criticals().size(), 1);
    EXPECT_TRUE(log.criticals().first().endsWith(
        QStringLiteral("\"CxPythonScriptPlugin::runScript(): Python crashed in Finalize\"")))
        << log.criticals().first().toStdString();
}

TEST_F(End, LeavesTheEnvironmentPointerAsItIs)
{
    EXPECT_EQ(run("pass").toStdString(), "");
    EXPECT_EQ(g_pScriptPlugin, &environment);
    plugin.reset();
    EXPECT_EQ(g_pScriptPlugin, &environment);
}

// ---- the version text ----

class LanguageVersion : public InsideTest
{
};

TEST_F(LanguageVersion, EndsAtTheFirstBlank)
{
    InterpreterSpy::version = "3.8.10 (default, Jun  2 2021, 10:49:15) \n[GCC 9.4.0]";
    EXPECT_EQ(plugin->languageVersion().toStdString(), "Python 3.8.10");
}

TEST_F(LanguageVersion, WithoutABlankIsWhole)
{
    InterpreterSpy::version = "3.8.10+custom\tbuild";
    EXPECT_EQ(plugin->languageVersion().toStdString(), "Python 3.8.10+custom\tbuild");
}

TEST_F(LanguageVersion, ThatBeginsWithABlankIsWhole)
{
    InterpreterSpy::version = " 3.8.10 (x)";
    EXPECT_EQ(plugin->languageVersion().toStdString(), "Python  3.8.10 (x)");
}

TEST_F(LanguageVersion, MayBeMissingOrEmptyOrOutsideAscii)
{
    InterpreterSpy::versionIsNull = true;
    EXPECT_EQ(plugin->languageVersion().toStdString(), "Python ");
    InterpreterSpy::versionIsNull = false;
    InterpreterSpy::version = "";
    EXPECT_EQ(plugin->languageVersion().toStdString(), "Python ");
    InterpreterSpy::version = "ä x";
    EXPECT_EQ(plugin->languageVersion().toStdString(), "Python ä");
}

} // namespace
