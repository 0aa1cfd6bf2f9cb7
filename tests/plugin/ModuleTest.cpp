// The module as scripts see it, and which of its functions refuse to work off the GUI thread.

#include "support/PluginHost.h"

#include <string_view>

namespace {

struct Function {
    const char* name;
    bool takesNothing;
    bool guarded;
};

// In the order of the module's table.
constexpr Function functions[] = {
    {"get_number_devices", true, false},
    {"open_file", false, true},
    {"save_to_file", false, true},
    {"duplicate_view", false, true},
    {"get_active_view_id", true, true},
    {"activate_view", false, true},
    {"close_view", false, true},
    {"tile_views", true, true},
    {"switch_full_screen", false, true},
    {"add_chain_object", false, true},
    {"wait_for_next_frame", false, true},
    {"wait", false, true},
    {"get_view_image", false, false},
    {"set_view_image", false, true},
    {"new_view_with_image", false, true},
    {"record_video_to_file", false, true},
    {"stop_video_recording", false, true},
    {"message_box", false, true},
    {"show_notification", false, true},
    {"print_to_error_log", false, false},
    {"ask_user_for_string", false, true},
    {"add_menu_item", false, true},
    {"run_script", false, false},
    {"get_working_directory", true, false},
    {"play_sound", false, false},
    {"set_global_variable_img", false, false},
    {"get_global_variable_img", false, false},
    {"set_global_variable_int", false, false},
    {"get_global_variable_int", false, false},
    {"set_global_variable_string", false, false},
    {"get_global_variable_string", false, false},
};
constexpr const char* types[] = {"Camera", "Graph", "Image"};

class OffTheGuiThread : public FakeEnvironment
{
public:
    bool isMainThread() override
    {
        ++asked;
        return answer;
    }
    bool answer = false;
    int asked = 0;
};

class ModuleFunction : public PluginTest, public testing::WithParamInterface<Function>
{
protected:
    QString run(const QString& script)
    {
        PluginHost::output.clear();
        EXPECT_CLEAN_RUN("pass"); // starts the interpreter
        return host.plugin->runScript(script, &environment, QString(), nullptr, nullptr,
                                      [](const QString& text, bool) { PluginHost::output.append(text); });
    }

    /// Calls the function with arguments that no function takes (but for those that take none).
    QString call()
    {
        const Function& function = GetParam();
        return QStringLiteral("try:\n"
                              "    vantrel.%1(%2)\n"
                              "except BaseException as error:\n"
                              "    print(type(error).__name__, error, sep=': ', end='')\n")
            .arg(QString::fromLatin1(function.name),
                 function.takesNothing ? QString() : QStringLiteral("*[object()] * 9"));
    }

    OffTheGuiThread environment;
};

TEST_P(ModuleFunction, AnswersBeforeArgumentsAreLookedAt)
{
    const Function& function = GetParam();
    EXPECT_EQ(run(call()).toStdString(), "");
    if (!function.guarded) {
        if (function.takesNothing)
            EXPECT_EQ(host.printed().toStdString(), "");
        else
            EXPECT_TRUE(host.printed().startsWith(QStringLiteral("TypeError: "))) << host.printed().toStdString();
        EXPECT_EQ(environment.asked, 0);
        return;
    }
    const bool ownText = std::string_view(function.name) == "open_file";
    EXPECT_EQ(host.printed().toStdString(), ownText ? "Exception: vantrel.open_file: running GUI function from "
                                                      "non-main thread"
                                                    : "Exception: running GUI function from non-main thread");
    EXPECT_EQ(environment.asked, 1);
    EXPECT_EQ(host.delegate.calls, QStringList());
}

TEST_P(ModuleFunction, LetsTheGuiThreadPass)
{
    environment.answer = true;
    EXPECT_EQ(run(call()).toStdString(), "");
    EXPECT_FALSE(host.printed().contains(QStringLiteral("non-main thread"))) << host.printed().toStdString();
    if (!GetParam().takesNothing) {
        EXPECT_TRUE(host.printed().startsWith(QStringLiteral("TypeError: "))) << host.printed().toStdString();
    }
}

TEST_P(ModuleFunction, FunctionsTakeArgumentsByPositionOnly)
{
    environment.answer = true;
    EXPECT_EQ(run(QStringLiteral("try: vantrel.%1(name=1)\nexcept TypeError: print('refused', end='')")
                      .arg(QString::fromLatin1(GetParam().name)))
                  .toStdString(),
              "");
    EXPECT_EQ(host.printed().toStdString(), "refused");
}

INSTANTIATE_TEST_SUITE_P(Functions, ModuleFunction, testing::ValuesIn(functions),
                         [](const auto& row) { return std::string(row.param.name); });

class Module : public PluginTest
{
};

TEST_F(Module, OffersItsFunctionsInOrderAndItsTypesAndNothingElse)
{
    EXPECT_CLEAN_RUN("print(*[n for n in vars(vantrel) if not n.startswith('_')])");
    QStringList expected;
    for (const Function& function : functions)
        expected.append(QString::fromLatin1(function.name));
    for (const char* type : types)
        expected.append(QString::fromLatin1(type));
    EXPECT_EQ(host.printed(), expected.join(u' ') + u'\n');
}

TEST_F(Module, HoldsOnlyFunctionsAndTypes)
{
    EXPECT_CLEAN_RUN("for name, value in vars(vantrel).items():\n"
                     "    if not name.startswith('_'):\n"
                     "        assert type(value).__name__ in ('builtin_function_or_method', 'type'), name\n"
                     "print(vantrel.__name__, vantrel.__doc__)\n"
                     "assert vantrel.wait.__module__ == 'vantrel' and vantrel.wait.__self__ is vantrel\n");
    EXPECT_EQ(host.printed().toStdString(), "vantrel None\n");
}

TEST_F(Module, IsTheSameOnEveryImport)
{
    EXPECT_CLEAN_RUN("import sys\nold = vantrel\nimport vantrel\nassert vantrel is old is sys.modules['vantrel']");
}

TEST_F(Module, MayBeThrownOutAndImportedAgain)
{
    for (int start = 0; start < 3; ++start) {
        EXPECT_CLEAN_RUN("import sys\nold = vantrel.Image()\nold.alloc(3, 2, 1, 8)\n"
                         "del sys.modules['vantrel'], sys.modules['emb']\nimport vantrel as again, emb\n"
                         "new = again.Image()\nnew.alloc(4, 2, 1, 8)\nprint(old.width, new.width)\n"
                         "sys.modules['vantrel'] = vantrel\n");
        EXPECT_EQ(host.printed().toStdString(), "3 4\n");
        EXPECT_CLEAN_RUN("import emb, vantrel\nprint(emb.stdout_object, vantrel.Image)");
        host.restart();
    }
}

} // namespace
