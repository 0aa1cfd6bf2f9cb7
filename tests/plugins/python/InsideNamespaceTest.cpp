// The plugin's helpers around __main__ and the method tables, called directly.

#include "plugins/support/InsideTest.h"
#include "support/LogCapture.h"
#include "support/PyRef.h"

#include <algorithm>

namespace {

class InsideNamespace : public InsideTest
{
protected:
    InsideNamespace() { run("pass"); }

    bool has(const char* name)
    {
        const std::list<std::string> names = plugin->listLocalVariables();
        return std::find(names.begin(), names.end(), name) != names.end();
    }
};

TEST_F(InsideNamespace, ListsTheNamesInTheirOrder)
{
    const std::list<std::string> names = plugin->listLocalVariables();
    ASSERT_FALSE(names.empty());
    EXPECT_EQ(names.front(), "__name__");
    EXPECT_EQ(names.back(), "vantrel");
}

TEST_F(InsideNamespace, DeletesWhatWasNotThereBefore)
{
    const std::list<std::string> before = plugin->listLocalVariables();
    fx_pyapp_RunPythonString("first = 1\nsecond = 2\nglobals()[''] = 3\nglobals()[4] = 4");
    EXPECT_TRUE(has("first"));
    plugin->deleteNewLocalVariables(before);
    EXPECT_FALSE(has("first"));
    EXPECT_FALSE(has("second"));
    EXPECT_FALSE(has(""));
    EXPECT_EQ(plugin->listLocalVariables(), before);
    fx_pyapp_RunPythonString("assert globals().pop(4) == 4");
    EXPECT_EQ(PyErr_Occurred(), nullptr);
}

TEST_F(InsideNamespace, FindsNamesWhateverTheOrderOfTheList)
{
    fx_pyapp_RunPythonString("a = b = c = 1");
    std::list<std::string> before = plugin->listLocalVariables();
    before.reverse();
    before.push_front("not there any more");
    plugin->deleteNewLocalVariables(before);
    EXPECT_TRUE(has("a") && has("b") && has("c") && has("vantrel"));
    before.remove("b");
    plugin->deleteNewLocalVariables(before);
    EXPECT_TRUE(has("a") && !has("b") && has("c"));
}

TEST_F(InsideNamespace, DeletesEverythingWhenNothingWasThereBefore)
{
    plugin->deleteNewLocalVariables({});
    EXPECT_TRUE(plugin->listLocalVariables().empty());
}

TEST_F(InsideNamespace, IsDumpedToTheLogOneLineForEachName)
{
    fx_pyapp_RunPythonString("number = 42\ntext = 'größe'\nglobals()[7] = 'seven'");
    LogCapture log;
    plugin->dumpLocalVariables();
    const QList<LogCapture::Record> records = log.records();
    EXPECT_EQ(records.size(), qsizetype(plugin->listLocalVariables().size()) + 1);
    QStringList texts;
    for (const LogCapture::Record& record : records) {
        EXPECT_EQ(record.type, QtCriticalMsg);
        EXPECT_EQ(record.category.toStdString(), "default");
        texts.append(record.text);
    }
    const auto shown = [&texts](const QString& line) {
        return texts.contains(line) || texts.contains(u'"' + line + u'"');
    };
    EXPECT_TRUE(shown(QStringLiteral("number: 42"))) << texts.join(u'\n').toStdString();
    EXPECT_TRUE(shown(QStringLiteral("text: größe")));
    EXPECT_TRUE(shown(QStringLiteral("7: seven")));
    EXPECT_TRUE(shown(QStringLiteral("__name__: __main__")));
}

TEST_F(InsideNamespace, DumpLeavesOutWhatHasNoText)
{
    fx_pyapp_RunPythonString("class Bad:\n    def __str__(self): raise ValueError\n"
                             "bad = Bad()\nsurrogate = '\\ud800'\nafter = 1");
    LogCapture log;
    plugin->dumpLocalVariables();
    const QString all = log.criticals().join(u'\n');
    EXPECT_FALSE(all.contains(QStringLiteral("bad: ")));
    EXPECT_TRUE(all.contains(QStringLiteral("after: 1")));
    EXPECT_EQ(PyErr_Occurred(), nullptr);
}

TEST_F(InsideNamespace, DumpSurvivesTextsThatDeleteTheirOwnName)
{
    fx_pyapp_RunPythonString("class Gone:\n    def __str__(self):\n        globals().pop('gone', None)\n"
                             "        globals().pop('later', None)\n        return 'went'\n"
                             "gone = Gone()\nlater = Gone()");
    LogCapture log;
    plugin->dumpLocalVariables();
    EXPECT_TRUE(log.criticals().join(u'\n').contains(QStringLiteral("gone: went")));
}

TEST_F(InsideNamespace, DumpMayBeTakenWhileAScriptRuns)
{
    LogCapture log;
    environment.onWait = [this](double) { plugin->dumpLocalVariables(); };
    EXPECT_EQ(run("mine = 'of the run'\nvantrel.wait(0)").toStdString(), "");
    EXPECT_TRUE(log.criticals().join(u'\n').contains(QStringLiteral("mine: of the run")));
}

TEST_F(InsideNamespace, SourceTextWithASyntaxErrorIsPrintedAndReturnsNormally)
{
    testing::internal::CaptureStderr();
    fx_pyapp_RunPythonString("if x\n");
    EXPECT_EQ(PyErr_Occurred(), nullptr);
    fx_pyapp_RunPythonString("import sys\nsys.stderr.flush()");
    const std::string text = testing::internal::GetCapturedStderr();
    EXPECT_NE(text.find("File \"<string>\", line 1"), std::string::npos) << text;
    EXPECT_NE(text.find("SyntaxError"), std::string::npos) << text;
}

TEST_F(InsideNamespace, SourceTextThatRaisesIsPrintedAndItsNamesStay)
{
    testing::internal::CaptureStderr();
    fx_pyapp_RunPythonString("made = 1\nraise ValueError('no')\n");
    EXPECT_EQ(PyErr_Occurred(), nullptr);
    fx_pyapp_RunPythonString("import sys\nsys.stderr.flush()");
    EXPECT_NE(testing::internal::GetCapturedStderr().find("ValueError: no\n"), std::string::npos);
    EXPECT_TRUE(has("made"));
}

TEST_F(InsideNamespace, EveryModuleMadeHasTypesOfItsOwn)
{
    const PyRef first = PyRef::take(py_app_moduleInit());
    const PyRef second = PyRef::take(py_app_moduleInit());
    ASSERT_TRUE(first && second);
    for (const char* name : {"Camera", "Graph", "Image"}) {
        const PyRef before = PyRef::take(PyObject_GetAttrString(first.get(), name));
        const PyRef after = PyRef::take(PyObject_GetAttrString(second.get(), name));
        EXPECT_TRUE(before && after && before.get() != after.get()) << name;
    }
}

TEST_F(InsideNamespace, ImageThatCannotBePublishedIsLeftOut)
{
    const auto image = makeTestImage(4, 3);
    plugin->addImageVariable(QString(), image.get()); // a name like any other
    EXPECT_TRUE(has(""));
    plugin->addImageVariable(QStringLiteral("none"), nullptr);
    EXPECT_EQ(run("print(none)").toStdString(), "");
    EXPECT_EQ(output.toStdString(), "Vantrel image object is empty\n");
    EXPECT_TRUE(has("")) << "known by the next run";
    EXPECT_EQ(PyErr_Occurred(), nullptr);
}

// ---- help texts ----

PyMethodDef functions[] = {{"f", nullptr, 0, nullptr}, {"g", nullptr, 0, "old"}, {nullptr, nullptr, 0, nullptr}};
PyMethodDef methods[] = {{"m", nullptr, 0, nullptr}, {nullptr, nullptr, 0, nullptr}};

class HelpTables : public testing::Test
{
protected:
    HelpTables()
    {
        functions[0].ml_doc = nullptr;
        functions[1].ml_doc = "old";
        methods[0].ml_doc = "old";
        environment.help["mod.f"] = "help of f";
        environment.help["obj.m"] = "help of m";
        g_pScriptPlugin = &environment;
    }
    ~HelpTables() override { g_pScriptPlugin = nullptr; }
    HelpTables(const HelpTables&) = delete;
    HelpTables& operator=(const HelpTables&) = delete;

    FakeEnvironment environment;
};

TEST_F(HelpTables, AreFilledUpToTheirEnd)
{
    CxPythonScriptPlugin::addHelpToPythonFunctions("mod", functions, "obj", methods);
    EXPECT_STREQ(functions[0].ml_doc, "help of f");
    EXPECT_EQ(functions[1].ml_doc, nullptr) << "no help replaces an old text too";
    EXPECT_EQ(functions[2].ml_doc, nullptr);
    EXPECT_STREQ(methods[0].ml_doc, "help of m");
}

TEST_F(HelpTables, KeepThePointersNotCopies)
{
    CxPythonScriptPlugin::addHelpToPythonFunctions("mod", functions, nullptr, nullptr);
    EXPECT_EQ(functions[0].ml_doc, environment.help["mod.f"].constData());
}

TEST_F(HelpTables, AreLeftAloneWithoutAnEnvironment)
{
    g_pScriptPlugin = nullptr;
    CxPythonScriptPlugin::addHelpToPythonFunctions("mod", functions, "obj", methods);
    EXPECT_STREQ(functions[1].ml_doc, "old");
    EXPECT_STREQ(methods[0].ml_doc, "old");
}

TEST_F(HelpTables, AreLeftAloneWhenTheirNameOrTheTableIsNull)
{
    CxPythonScriptPlugin::addHelpToPythonFunctions(nullptr, functions, nullptr, methods);
    EXPECT_STREQ(functions[1].ml_doc, "old");
    EXPECT_STREQ(methods[0].ml_doc, "old");
    CxPythonScriptPlugin::addHelpToPythonFunctions("mod", nullptr, "obj", nullptr);
    CxPythonScriptPlugin::addHelpToPythonFunctions("vantrel", nullptr, "obj", methods);
    EXPECT_STREQ(functions[1].ml_doc, "old");
    EXPECT_STREQ(methods[0].ml_doc, "help of m");
}

} // namespace
