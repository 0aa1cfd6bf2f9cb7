// Help texts come from the environment of the run that starts the interpreter.

#include "support/PluginHost.h"

#include "support/TestSettings.h"

namespace {

class AskedEnvironment : public FakeEnvironment
{
public:
    const char* functionHelp(const char* moduleName, const char* functionName) override
    {
        functions.append(QByteArray(moduleName) + '.' + functionName);
        return FakeEnvironment::functionHelp(moduleName, functionName);
    }
    const char* methodHelp(const char* objectName, const char* methodName) override
    {
        methods.append(QByteArray(objectName) + '.' + methodName);
        return FakeEnvironment::functionHelp(objectName, methodName);
    }

    QList<QByteArray> functions;
    QList<QByteArray> methods;
};

class HelpText : public PluginTest
{
protected:
    QString run(IxScriptEnvironment& environment, const char* script)
    {
        PluginHost::output.clear();
        return host.plugin->runScript(QString::fromUtf8(script), &environment, TestSettings::pythonHome, nullptr,
                                      nullptr, [](const QString& text, bool) { PluginHost::output.append(text); });
    }
};

TEST_F(HelpText, IsTheDocumentationOfFunctionsAndMethods)
{
    host.environment.help["vantrel.wait"] = "Waits – for a while.";
    host.environment.help["imgObj.alloc"] = "Allocates.";
    EXPECT_CLEAN_RUN("print(vantrel.wait.__doc__, vantrel.Image.alloc.__doc__,\n"
                     "      vantrel.Image().alloc.__doc__)");
    EXPECT_EQ(host.printed().toStdString(), "Waits – for a while. Allocates. Allocates.\n");
}

TEST_F(HelpText, IsNoneWhereTheEnvironmentHasNone)
{
    EXPECT_CLEAN_RUN("print(vantrel.wait.__doc__, vantrel.Image.alloc.__doc__)\nhelp_text = repr(vantrel.wait)");
    EXPECT_EQ(host.printed().toStdString(), "None None\n");
}

TEST_F(HelpText, IsAskedOncePerFunctionInTableOrder)
{
    AskedEnvironment environment;
    EXPECT_EQ(run(environment, "print(*['vantrel.' + n for n, v in vars(vantrel).items()\n"
                               "        if type(v).__name__ == 'builtin_function_or_method'\n"
                               "        and not n.startswith('_')])")
                  .toStdString(),
              "");
    EXPECT_EQ(environment.functions.join(' ') + '\n', host.printed().toUtf8());
    const QList<QByteArray> asked = environment.functions;
    EXPECT_EQ(run(environment, "pass").toStdString(), "");
    EXPECT_EQ(environment.functions, asked);
}

TEST_F(HelpText, IsAskedForTheMethodsOfTheTypes)
{
    AskedEnvironment environment;
    EXPECT_EQ(run(environment, "print(*[n for n, v in vars(vantrel.Image).items()\n"
                               "        if type(v).__name__ == 'method_descriptor'])")
                  .toStdString(),
              "");
    QByteArrayList image;
    for (const QByteArray& method : environment.methods) {
        if (method.startsWith("imgObj."))
            image.append(method.mid(7));
    }
    EXPECT_EQ(image.join(' ') + '\n', host.printed().toUtf8());
    for (const QByteArray& method : environment.methods) {
        EXPECT_TRUE(method.startsWith("imgObj.") || method.startsWith("cameraObj.") || method.startsWith("graphObj."))
            << method.toStdString();
    }
}

TEST_F(HelpText, StaysThatOfTheFirstRunsEnvironment)
{
    AskedEnvironment second;
    second.help["vantrel.wait"] = "second";
    host.environment.help["vantrel.wait"] = "first";
    EXPECT_CLEAN_RUN("pass");
    EXPECT_EQ(run(second, "print(vantrel.wait.__doc__)").toStdString(), "");
    EXPECT_EQ(host.printed().toStdString(), "first\n");
    EXPECT_TRUE(second.functions.isEmpty());
}

// The pointers are kept: the host keeps the texts.
TEST_F(HelpText, IsReadWhereTheHostKeepsIt)
{
    QByteArray& text = host.environment.help["vantrel.wait"];
    text = "before";
    EXPECT_CLEAN_RUN("print(vantrel.wait.__doc__)");
    text.data()[0] = 'B';
    EXPECT_CLEAN_RUN("print(vantrel.wait.__doc__)");
    EXPECT_EQ(host.printed().toStdString(), "Before\n");
}

TEST_F(HelpText, IsThatOfTheNewEnvironmentAfterANewStart)
{
    host.environment.help["vantrel.wait"] = "first";
    EXPECT_CLEAN_RUN("pass");
    host.restart();
    FakeEnvironment second;
    EXPECT_EQ(run(second, "print(vantrel.wait.__doc__)").toStdString(), "");
    EXPECT_EQ(host.printed().toStdString(), "None\n");
}

} // namespace
