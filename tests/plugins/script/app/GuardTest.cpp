// Functions that touch windows run on the GUI thread only, and say so before they look at their arguments.

#include "support/ScriptTest.h"

#include <thread>

namespace {

const char* const usualText = "Exception: running GUI function from non-main thread";
const char* const openFileText = "Exception: vantrel.open_file: running GUI function from non-main thread";

class MainThreadGuard : public ScriptTest
{
protected:
    void runOnAnotherThread(const char* script)
    {
        std::thread([this, script] { result = host.run(script).toStdString(); }).join();
    }

    std::string result;
};

struct GuardedCall {
    const char* name;
    const char* call;
    const char* wrongCall; // arguments that the parser refuses
};

void PrintTo(const GuardedCall& call, std::ostream* stream)
{
    *stream << call.name;
}

class GuardedFunction : public MainThreadGuard, public testing::WithParamInterface<GuardedCall>
{
};

TEST_P(GuardedFunction, RefusesOnAnotherThreadBeforeItParsesItsArguments)
{
    const int id = host.delegate.addView(makeTestImage(4, 3));
    host.environment.otherThread = true;
    const char* const text = GetParam().name == std::string("open_file") ? openFileText : usualText;
    for (const std::string call : {GetParam().call, GetParam().wrongCall}) {
        host.environment.threadQuestions = 0;
        EXPECT_EQ(value("vantrel." + call), text);
        EXPECT_EQ(host.environment.threadQuestions, 1);
    }
    EXPECT_TRUE(host.delegate.calls.empty());
    EXPECT_TRUE(host.delegate.lookups.empty());
    EXPECT_TRUE(host.environment.calls.empty());
    EXPECT_TRUE(host.environment.resolved.empty());
    EXPECT_EQ(host.delegate.views[id]->recordedTo, QString());
    EXPECT_EQ(host.delegate.views[id]->recordingsStopped, 0);
}

TEST_P(GuardedFunction, AsksOnceWhenItMayRun)
{
    host.delegate.addView(makeTestImage(4, 3));
    host.environment.threadQuestions = 0;
    value(std::string("vantrel.") + GetParam().call);
    EXPECT_EQ(host.environment.threadQuestions, 1);
}

// Functions without arguments are refused wrong ones by the interpreter itself, so theirs are right twice.
INSTANTIATE_TEST_SUITE_P(
    Views, GuardedFunction,
    testing::Values(GuardedCall{"open_file", "open_file('a')", "open_file(1)"},
                    GuardedCall{"save_to_file", "save_to_file('a.unknown')", "save_to_file()"},
                    GuardedCall{"duplicate_view", "duplicate_view()", "duplicate_view('a')"},
                    GuardedCall{"get_active_view_id", "get_active_view_id()", "get_active_view_id()"},
                    GuardedCall{"activate_view", "activate_view()", "activate_view('a')"},
                    GuardedCall{"close_view", "close_view()", "close_view('a')"},
                    GuardedCall{"tile_views", "tile_views()", "tile_views()"},
                    GuardedCall{"switch_full_screen", "switch_full_screen(True)", "switch_full_screen()"},
                    GuardedCall{"wait_for_next_frame", "wait_for_next_frame()", "wait_for_next_frame('a')"},
                    GuardedCall{"wait", "wait(0)", "wait('a')"},
                    GuardedCall{"set_view_image", "set_view_image(vantrel.get_view_image)", "set_view_image()"},
                    GuardedCall{"new_view_with_image", "new_view_with_image(1)", "new_view_with_image()"},
                    GuardedCall{"record_video_to_file", "record_video_to_file('a')", "record_video_to_file()"},
                    GuardedCall{"stop_video_recording", "stop_video_recording()", "stop_video_recording('a')"}),
    [](const auto& row) { return std::string(row.param.name); });

TEST_F(MainThreadGuard, TileViewsFromAScriptOnANonGuiThreadRaisesAndLeavesTheViewsUntouched)
{
    runOnAnotherThread("try:\n    vantrel.tile_views()\nexcept Exception as error:\n    print(type(error), error)\n");
    EXPECT_EQ(result, "");
    EXPECT_EQ(host.printed().toStdString(), "<class 'Exception'> running GUI function from non-main thread\n");
    EXPECT_TRUE(host.delegate.calls.empty());
}

TEST_F(MainThreadGuard, OpenFileFromAScriptOnANonGuiThreadRaisesWithItsOwnText)
{
    runOnAnotherThread("try:\n    vantrel.open_file('a')\nexcept Exception as error:\n    print(type(error), error)\n");
    EXPECT_EQ(result, "");
    EXPECT_EQ(host.printed().toStdString(),
              "<class 'Exception'> vantrel.open_file: running GUI function from non-main thread\n");
    EXPECT_TRUE(host.delegate.calls.empty());
}

TEST_F(MainThreadGuard, GetViewImageAsksNoThreadQuestionAndWorksOnAnyThread)
{
    host.delegate.addView(makeTestImage(6, 3));
    host.environment.threadQuestions = 0;
    runOnAnotherThread("print(vantrel.get_view_image().width)");
    EXPECT_EQ(result, "");
    EXPECT_EQ(host.printed().toStdString(), "6\n");
    EXPECT_EQ(host.environment.threadQuestions, 0);
}

} // namespace
