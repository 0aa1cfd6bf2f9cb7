// The module as scripts see it, and which of its functions refuse to work off the GUI thread.

#include "support/PluginHost.h"

#include <string_view>

namespace {

struct Function {
    const char* name;
    int fewestArguments;
    int mostArguments;
    bool guarded;

    constexpr bool takesNothing() const { return mostArguments == 0; }
};

void PrintTo(const Function& function, std::ostream* out)
{
    *out << function.name;
}

// In the order of the module's table.
constexpr Function functions[] = {
    {"get_number_devices", 0, 0, false},
    {"open_file", 1, 1, true},
    {"save_to_file", 1, 1, true},
    {"duplicate_view", 0, 1, true},
    {"get_active_view_id", 0, 0, true},
    {"activate_view", 0, 1, true},
    {"close_view", 0, 1, true},
    {"tile_views", 0, 0, true},
    {"switch_full_screen", 1, 1, true},
    {"add_chain_object", 1, 2, true},
    {"wait_for_next_frame", 0, 2, true},
    {"wait", 1, 1, true},
    {"get_view_image", 0, 1, false},
    {"set_view_image", 1, 2, true},
    {"new_view_with_image", 1, 2, true},
    {"record_video_to_file", 1, 2, true},
    {"stop_video_recording", 0, 1, true},
    {"message_box", 2, 5, true},
    {"show_notification", 1, 1, true},
    {"print_to_error_log", 1, 1, false},
    {"ask_user_for_string", 2, 2, true},
    {"add_menu_item", 2, 4, true},
    {"run_script", 1, 1, false},
    {"get_working_directory", 0, 0, false},
    {"play_sound", 1, 1, false},
    {"set_global_variable_img", 2, 2, false},
    {"get_global_variable_img", 1, 1, false},
    {"set_global_variable_int", 2, 2, false},
    {"get_global_variable_int", 1, 1, false},
    {"set_global_variable_string", 2, 2, false},
    {"get_global_variable_string", 1, 1, false},
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
                 function.takesNothing() ? QString() : QStringLiteral("*[object()] * 9"));
    }

    OffTheGuiThread environment;
};

TEST_P(ModuleFunction, AnswersBeforeArgumentsAreLookedAt)
{
    const Function& function = GetParam();
    EXPECT_EQ(run(call()).toStdString(), "");
    if (!function.guarded) {
        if (function.takesNothing())
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
    if (!GetParam().takesNothing()) {
        EXPECT_TRUE(host.printed().startsWith(QStringLiteral("TypeError: "))) << host.printed().toStdString();
    }
}

TEST_P(ModuleFunction, TakesNeitherFewerNorMoreArgumentsThanItKnows)
{
    environment.answer = true;
    const Function& function = GetParam();
    // A wrong number is told by the text of the error; arguments of a right number are of a wrong type.
    EXPECT_EQ(run(QStringLiteral("right = []\n"
                                 "for number in range(9):\n"
                                 "    try: vantrel.%1(*[object()] * number)\n"
                                 "    except TypeError as error:\n"
                                 "        if str(error).endswith(' given)'): continue\n"
                                 "    except BaseException: pass\n"
                                 "    right.append(number)\n"
                                 "print(*right)\n")
                      .arg(QString::fromLatin1(function.name)))
                  .toStdString(),
              "");
    QStringList right;
    for (int number = function.fewestArguments; number <= function.mostArguments; ++number)
        right.append(QString::number(number));
    EXPECT_EQ(host.printed().trimmed().toStdString(), right.join(u' ').toStdString());
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
