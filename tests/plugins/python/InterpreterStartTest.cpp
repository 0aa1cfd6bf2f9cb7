// The first run starts the interpreter; destruction ends it.

#include "support/PluginHost.h"
#include "support/TestSettings.h"

#include <QtCore/QCoreApplication>

#include <limits>

namespace {

class CountingEnvironment : public FakeEnvironment
{
public:
    QList<SxApiParamDef>& apiParamDefs() override
    {
        order.append(QStringLiteral("defs"));
        return defs;
    }
    QList<SxApiParamEnumVal>& apiParamEnumVals() override
    {
        order.append(QStringLiteral("enums"));
        return enumVals;
    }
    const char* functionHelp(const char* moduleName, const char* functionName) override
    {
        if (!order.contains(QStringLiteral("help")))
            order.append(QStringLiteral("help"));
        return FakeEnvironment::functionHelp(moduleName, functionName);
    }

    QStringList order;
};

class InterpreterStart : public PluginTest
{
protected:
    QString run(IxScriptEnvironment& environment, const char* script)
    {
        PluginHost::output.clear();
        return host.plugin->runScript(QString::fromUtf8(script), &environment, TestSettings::pythonHome, nullptr,
                                      nullptr, [](const QString& text, bool) { PluginHost::output.append(text); });
    }
};

TEST_F(InterpreterStart, AsksTheEnvironmentForConstantsAndThenForHelpTexts)
{
    CountingEnvironment environment;
    EXPECT_EQ(run(environment, "").toStdString(), "");
    EXPECT_EQ(environment.order,
              QStringList({QStringLiteral("defs"), QStringLiteral("enums"), QStringLiteral("help")}));
}

TEST_F(InterpreterStart, HappensOnceForAllRuns)
{
    CountingEnvironment first;
    CountingEnvironment second;
    second.defs = {{QStringLiteral("LATE"), QStringLiteral("x")}};
    EXPECT_EQ(run(first, "").toStdString(), "");
    EXPECT_EQ(run(second, "print('LATE' in globals())").toStdString(), "");
    EXPECT_EQ(host.printed().toStdString(), "False\n");
    EXPECT_TRUE(second.order.isEmpty());
}

TEST_F(InterpreterStart, PublishesStringConstants)
{
    host.environment.defs = {{QStringLiteral("PARAM_EXPOSURE"), QStringLiteral("exposure")},
                             {QStringLiteral("EMPTY"), QString()},
                             {QStringLiteral("Größe"), QStringLiteral("µm ☃ 𝄞")}};
    EXPECT_CLEAN_RUN("print(repr(PARAM_EXPOSURE), repr(EMPTY), Größe, type(EMPTY).__name__)");
    EXPECT_EQ(host.printed().toStdString(), "'exposure' '' µm ☃ 𝄞 str\n");
}

TEST_F(InterpreterStart, PublishesIntegerConstantsWithTheirSign)
{
    host.environment.enumVals = {{QStringLiteral("ONE"), 1},
                                 {QStringLiteral("MINUS"), -1},
                                 {QStringLiteral("LOWEST"), std::numeric_limits<int>::min()},
                                 {QStringLiteral("HIGHEST"), std::numeric_limits<int>::max()}};
    EXPECT_CLEAN_RUN("print(ONE, MINUS, LOWEST, HIGHEST)");
    EXPECT_EQ(host.printed().toStdString(), "1 -1 -2147483648 2147483647\n");
}

TEST_F(InterpreterStart, PublishesInListOrderSoTheLastOfEqualNamesStays)
{
    host.environment.defs = {{QStringLiteral("A"), QStringLiteral("first")},
                             {QStringLiteral("B"), QStringLiteral("b")},
                             {QStringLiteral("A"), QStringLiteral("second")}};
    host.environment.enumVals = {{QStringLiteral("B"), 5}};
    EXPECT_CLEAN_RUN("print(A, B, [n for n in globals() if n in ('A', 'B')])");
    EXPECT_EQ(host.printed().toStdString(), "second 5 ['A', 'B']\n");
}

TEST_F(InterpreterStart, BindsTheModuleAndImportsTheRedirection)
{
    EXPECT_CLEAN_RUN("import sys\n"
                     "print(vantrel.__name__, 'emb' in sys.modules, 'emb' in globals())\n"
                     "print([n for n in ('emb', 'vantrel') if n in sys.builtin_module_names])\n");
    EXPECT_EQ(host.printed().toStdString(), "vantrel True False\n['emb', 'vantrel']\n");
}

// Not counted: the reference of the call's argument.
TEST_F(InterpreterStart, KeepsAReferenceToTheRedirectionModuleForItself)
{
    EXPECT_CLEAN_RUN("import sys, gc\n"
                     "emb = sys.modules['emb']\n"
                     "print(sys.getrefcount(emb) - 1 - len(gc.get_referrers(emb)))");
    EXPECT_EQ(host.printed().toStdString(), "1\n");
}

TEST_F(InterpreterStart, TakesTheProgramNameAndTheHomeDirectory)
{
    EXPECT_CLEAN_RUN("import sys\nprint(sys.executable)\nprint(sys.prefix)\n");
    EXPECT_EQ(host.printed(), QCoreApplication::applicationFilePath() + u'\n' + TestSettings::pythonHome + u'\n');
}

TEST_F(InterpreterStart, IsRepeatedAfterInitAndRestoresReboundConstants)
{
    CountingEnvironment environment;
    environment.defs = {{QStringLiteral("NAME"), QStringLiteral("value")}};
    environment.enumVals = {{QStringLiteral("NUMBER"), 3}};
    EXPECT_EQ(run(environment, "NAME = 1; NUMBER = 2; vantrel = 0; import json; json.mark = 1").toStdString(), "");
    EXPECT_EQ(run(environment, "print(NAME, NUMBER, vantrel)").toStdString(), "");
    EXPECT_EQ(host.printed().toStdString(), "1 2 0\n");

    EXPECT_TRUE(host.plugin->init());
    environment.order.clear();
    EXPECT_EQ(run(environment, "import json; print(NAME, NUMBER, vantrel.__name__, json.mark)").toStdString(), "");
    EXPECT_EQ(host.printed().toStdString(), "value 3 vantrel 1\n");
    EXPECT_TRUE(environment.order.contains(QStringLiteral("defs")));
    EXPECT_TRUE(environment.order.contains(QStringLiteral("enums")));
}

TEST_F(InterpreterStart, IsMadeAnewByANewObject)
{
    host.environment.defs = {{QStringLiteral("NAME"), QStringLiteral("value")}};
    EXPECT_CLEAN_RUN("import json; json.mark = 1; NAME = 0; img = vantrel.Image(); img.alloc(4, 4, 1, 8)");
    host.restart();
    EXPECT_CLEAN_RUN("import json; print(NAME, hasattr(json, 'mark'), str(vantrel.Image())[-5:])");
    EXPECT_EQ(host.printed().toStdString(), "value False empty\n");
    EXPECT_EQ(host.run("raise ValueError('x')").section(u'\n', -2).toStdString(), "ValueError: x\n");
}

TEST_F(InterpreterStart, WorksWithoutAnEnvironment)
{
    EXPECT_EQ(host.plugin
                  ->runScript(QStringLiteral("print(1)\nvantrel.tile_views()"), nullptr, TestSettings::pythonHome,
                              nullptr, nullptr, [](const QString&, bool) {})
                  .section(u'\n', -2)
                  .toStdString(),
              "Exception: running GUI function from non-main thread\n");
    EXPECT_CLEAN_RUN("print(1)");
}

} // namespace
