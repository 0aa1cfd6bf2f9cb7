// The module functions on views: opening, duplicating, activating, closing, tiling, waiting.

#include "support/ScriptTest.h"

namespace {

class Views : public ScriptTest
{
};

// ---- open_file ----

TEST_F(Views, OpenFileHandsTheResolvedPathAndTrueToTheHostAndReturnsTheActiveView)
{
    host.environment.directory = QStringLiteral("/some/where");
    EXPECT_CLEAN_RUN("print(vantrel.open_file('pictures/\\u00e4.tif'))");
    EXPECT_EQ(host.environment.resolved, QStringList(QStringLiteral("pictures/ä.tif")));
    EXPECT_EQ(host.delegate.calls, QStringList(QStringLiteral("openFile(/some/where/pictures/ä.tif, 1)")));
    EXPECT_EQ(host.printed().trimmed(), QString::number(host.delegate.active));
}

TEST_F(Views, OpenFileFailsWithoutAnExceptionWhenTheHostCannotOpen)
{
    host.delegate.accepts = false;
    EXPECT_EQ(value("vantrel.open_file('missing.tif')"), "SystemError");
    EXPECT_TRUE(host.delegate.views.empty());
}

TEST_F(Views, OpenFileTakesOneText)
{
    EXPECT_EQ(value("vantrel.open_file()").substr(0, 10), "TypeError:");
    EXPECT_EQ(value("vantrel.open_file(3)").substr(0, 10), "TypeError:");
    EXPECT_EQ(value("vantrel.open_file(b'a')").substr(0, 10), "TypeError:");
    EXPECT_EQ(value("vantrel.open_file('a\\0b')"), "ValueError: embedded null character");
    EXPECT_EQ(value("vantrel.open_file('\\ud800')").substr(0, 19), "UnicodeEncodeError:");
    EXPECT_TRUE(host.delegate.calls.empty());
}

// ---- duplicate_view ----

TEST_F(Views, DuplicateViewHandsTheIdentifierOnUnchangedAndReturnsTheActiveView)
{
    const int first = host.delegate.addView(makeTestImage(4, 3));
    EXPECT_EQ(value("vantrel.duplicate_view()"), std::to_string(first + 1));
    EXPECT_EQ(value("vantrel.duplicate_view(-7)"), std::to_string(first + 2));
    EXPECT_EQ(value("vantrel.duplicate_view(" + std::to_string(first) + ")"), std::to_string(first + 3));
    EXPECT_EQ(host.delegate.calls,
              QStringList({QStringLiteral("duplicateView(-1)"), QStringLiteral("duplicateView(-7)"),
                           QStringLiteral("duplicateView(%1)").arg(first)}));
}

TEST_F(Views, DuplicateViewReturnsMinusOneWhenTheHostRefuses)
{
    host.delegate.addView(makeTestImage(4, 3));
    host.delegate.accepts = false;
    EXPECT_EQ(value("vantrel.duplicate_view()"), "-1");
    EXPECT_EQ(host.delegate.views.size(), 1U);
}

// ---- get_active_view_id ----

TEST_F(Views, GetActiveViewIdWithNoViewOpenReturnsWhateverNegativeIdTheHostReports)
{
    EXPECT_EQ(value("vantrel.get_active_view_id()"), "-1");
    host.delegate.active = -23;
    EXPECT_EQ(value("vantrel.get_active_view_id()"), "-23");
}

TEST_F(Views, GetActiveViewIdReturnsTheActiveView)
{
    const int id = host.delegate.addView(makeTestImage(4, 3));
    EXPECT_EQ(value("vantrel.get_active_view_id()"), std::to_string(id));
}

// ---- activate_view ----

TEST_F(Views, ActivateViewHandsTheIdentifierOnUnchanged)
{
    expectValues({
        {"vantrel.activate_view()", "None"},
        {"vantrel.activate_view(-5)", "None"},
        {"vantrel.activate_view(12)", "None"},
    });
    EXPECT_EQ(host.delegate.calls, QStringList({QStringLiteral("activateView(-1)"), QStringLiteral("activateView(-5)"),
                                                QStringLiteral("activateView(12)")}));
    EXPECT_TRUE(host.delegate.lookups.empty());
}

// ---- close_view ----

TEST_F(Views, CloseViewClosesTheViewOfThatIdentifier)
{
    const int first = host.delegate.addView(makeTestImage(4, 3));
    const int second = host.delegate.addView(makeTestImage(4, 3));
    EXPECT_EQ(value("vantrel.close_view(" + std::to_string(first) + ")"), "None");
    EXPECT_EQ(host.delegate.calls, QStringList(QStringLiteral("closeMdiView(%1)").arg(first)));
    EXPECT_EQ(host.delegate.views.count(second), 1U);
}

TEST_F(Views, CloseViewWithoutAnIdentifierOrWithANegativeOneClosesTheActiveView)
{
    const int first = host.delegate.addView(makeTestImage(4, 3));
    const int second = host.delegate.addView(makeTestImage(4, 3));
    EXPECT_EQ(value("vantrel.close_view()"), "None");
    EXPECT_EQ(value("vantrel.close_view(-9)"), "None");
    EXPECT_EQ(host.delegate.calls, QStringList({QStringLiteral("closeMdiView(%1)").arg(second),
                                                QStringLiteral("closeMdiView(%1)").arg(first)}));
}

TEST_F(Views, CloseViewWithAnIdThatNoViewHasReturnsNoneAndClosesNothing)
{
    host.delegate.addView(makeTestImage(4, 3));
    EXPECT_EQ(value("vantrel.close_view(987654)"), "None");
    EXPECT_TRUE(host.delegate.calls.empty());
    EXPECT_EQ(host.delegate.views.size(), 1U);
}

TEST_F(Views, CloseViewWithNoViewOpenReturnsNone)
{
    EXPECT_EQ(value("vantrel.close_view()"), "None");
    EXPECT_EQ(host.delegate.lookups, QStringList({QStringLiteral("activeViewId()"), QStringLiteral("view(-1)")}));
}

TEST_F(Views, AScriptThatClosesTheViewItWorksOnKeepsItsCopyOfTheImage)
{
    host.delegate.addView(makeTestImage(4, 3));
    EXPECT_CLEAN_RUN("img = vantrel.get_view_image()\n"
                     "vantrel.close_view()\n"
                     "print(img.width, len(bytes(img)) > 0)\n"
                     "print(vantrel.get_active_view_id())\n");
    EXPECT_EQ(host.printed().toStdString(), "4 True\n-1\n");
    EXPECT_EQ(value("vantrel.get_view_image()"), "Exception: no view or view contains no image");
}

// ---- tile_views, switch_full_screen ----

TEST_F(Views, TileViewsTilesAndTakesNoArguments)
{
    EXPECT_EQ(value("vantrel.tile_views()"), "None");
    EXPECT_EQ(value("vantrel.tile_views(1)").substr(0, 10), "TypeError:");
    EXPECT_EQ(host.delegate.calls, QStringList(QStringLiteral("tileViews()")));
}

TEST_F(Views, SwitchFullScreenTakesTheTruthOfItsArgument)
{
    expectValues({
        {"vantrel.switch_full_screen(True)", "None"},
        {"vantrel.switch_full_screen([])", "None"},
        {"vantrel.switch_full_screen('no')", "None"},
    });
    EXPECT_EQ(value("vantrel.switch_full_screen()").substr(0, 10), "TypeError:");
    EXPECT_EQ(host.delegate.calls,
              QStringList({QStringLiteral("setFullScreen(true)"), QStringLiteral("setFullScreen(false)"),
                           QStringLiteral("setFullScreen(true)")}));
}

// ---- waiting ----

TEST_F(Views, WaitHandsTheTimeOnUnchanged)
{
    EXPECT_EQ(value("vantrel.wait(0.25)"), "None");
    EXPECT_EQ(value("vantrel.wait(-3)"), "None");
    EXPECT_EQ(value("vantrel.wait()").substr(0, 10), "TypeError:");
    EXPECT_EQ(host.environment.calls, QStringList({QStringLiteral("wait(0.25)"), QStringLiteral("wait(-3)")}));
}

TEST_F(Views, WaitForNextFrameWaitsOnTheActiveViewWithoutATimeOutByDefault)
{
    host.delegate.addView(makeTestImage(4, 3));
    EXPECT_EQ(value("vantrel.wait_for_next_frame()"), "True");
    EXPECT_EQ(host.environment.calls, QStringList(QStringLiteral("waitForNextFrame(-1)")));
    EXPECT_EQ(host.environment.waitedFor, host.delegate.view(host.delegate.active));
}

TEST_F(Views, WaitForNextFrameTakesTheTimeOutFirstAndThenTheView)
{
    const int first = host.delegate.addView(makeTestImage(4, 3));
    host.delegate.addView(makeTestImage(4, 3));
    EXPECT_EQ(value("vantrel.wait_for_next_frame(1.5, " + std::to_string(first) + ")"), "True");
    EXPECT_EQ(host.environment.calls, QStringList(QStringLiteral("waitForNextFrame(1.5)")));
    EXPECT_EQ(host.environment.waitedFor, host.delegate.view(first));
}

TEST_F(Views, WaitForNextFrameReturnsFalseWhenNoFrameCame)
{
    host.delegate.addView(makeTestImage(4, 3));
    host.environment.frameComes = false;
    EXPECT_EQ(value("vantrel.wait_for_next_frame(0)"), "False");
}

TEST_F(Views, WaitForNextFrameWithNoActiveViewRaisesViewNotFound)
{
    EXPECT_EQ(value("vantrel.wait_for_next_frame()"), "Exception: vantrel.WaitForNextFrame: view not found");
    EXPECT_TRUE(host.environment.calls.empty());
}

TEST_F(Views, WaitForNextFrameOfAnIdThatNoViewHasRaisesViewNotFound)
{
    host.delegate.addView(makeTestImage(4, 3));
    EXPECT_EQ(value("vantrel.wait_for_next_frame(1.0, 987654)"), "Exception: vantrel.WaitForNextFrame: view not found");
    EXPECT_TRUE(host.environment.calls.empty());
}

// ---- recording ----

TEST_F(Views, RecordVideoStartsTheActiveViewsRecordingUnderTheResolvedPath)
{
    host.environment.directory = QStringLiteral("/some/where");
    const int id = host.delegate.addView(makeTestImage(4, 3));
    EXPECT_EQ(value("vantrel.record_video_to_file('film.avi')"), "True");
    EXPECT_EQ(host.delegate.views[id]->recordedTo, QStringLiteral("/some/where/film.avi"));
    EXPECT_EQ(host.environment.resolved, QStringList(QStringLiteral("film.avi")));
}

TEST_F(Views, RecordVideoTakesAView)
{
    const int first = host.delegate.addView(makeTestImage(4, 3));
    const int second = host.delegate.addView(makeTestImage(4, 3));
    EXPECT_EQ(value("vantrel.record_video_to_file('/film.avi', " + std::to_string(first) + ")"), "True");
    EXPECT_EQ(host.delegate.views[first]->recordedTo, QStringLiteral("/film.avi"));
    EXPECT_EQ(host.delegate.views[second]->recordedTo, QString());
}

TEST_F(Views, RecordVideoReturnsFalseWhenTheViewCannotRecord)
{
    const int id = host.delegate.addView(makeTestImage(4, 3));
    host.delegate.views[id]->canRecord = false;
    EXPECT_EQ(value("vantrel.record_video_to_file('film.avi')"), "False");
}

TEST_F(Views, RecordVideoForAnIdThatNoViewHasReturnsFalse)
{
    host.delegate.addView(makeTestImage(4, 3));
    EXPECT_EQ(value("vantrel.record_video_to_file('film.avi', 987654)"), "False");
    EXPECT_EQ(host.environment.resolved, QStringList(QStringLiteral("film.avi")));
}

TEST_F(Views, RecordVideoWithNoViewOpenReturnsFalse)
{
    EXPECT_EQ(value("vantrel.record_video_to_file('film.avi')"), "False");
}

TEST_F(Views, StopVideoRecordingStopsTheViewsRecording)
{
    const int first = host.delegate.addView(makeTestImage(4, 3));
    const int second = host.delegate.addView(makeTestImage(4, 3));
    EXPECT_EQ(value("vantrel.stop_video_recording()"), "None");
    EXPECT_EQ(host.delegate.views[second]->recordingsStopped, 1);
    EXPECT_EQ(value("vantrel.stop_video_recording(" + std::to_string(first) + ")"), "None");
    EXPECT_EQ(host.delegate.views[first]->recordingsStopped, 1);
    EXPECT_EQ(host.delegate.views[second]->recordingsStopped, 1);
}

TEST_F(Views, StopVideoRecordingReturnsNoneWhenNoViewIsFound)
{
    EXPECT_EQ(value("vantrel.stop_video_recording()"), "None");
    EXPECT_EQ(value("vantrel.stop_video_recording(987654)"), "None");
}

TEST_F(Views, EveryNegativeIdentifierStandsForTheActiveView)
{
    const std::string active = std::to_string(host.delegate.addView(makeTestImage(4, 3)));
    struct Call {
        const char* text;
        std::string lookup;
    };
    for (const Call& call :
         {Call{"wait_for_next_frame(0, -7)", "view(" + active + ")"},
          Call{"record_video_to_file('/film.avi', -7)", "view(" + active + ")"},
          Call{"stop_video_recording(-7)", "view(" + active + ")"},
          Call{"get_view_image(-7)", "viewImage(" + active + ")"}, Call{"close_view(-7)", "view(" + active + ")"}}) {
        host.delegate.lookups.clear();
        value(std::string("vantrel.") + call.text);
        EXPECT_EQ(host.delegate.lookups.join(u' ').toStdString(), "activeViewId() " + call.lookup) << call.text;
    }
}

TEST_F(Views, IdentifiersAreWholeNumbersOf32Bits)
{
    host.delegate.addView(makeTestImage(4, 3));
    EXPECT_EQ(value("vantrel.close_view('1')").substr(0, 10), "TypeError:");
    EXPECT_EQ(value("vantrel.close_view(1.5)").substr(0, 10), "TypeError:");
    EXPECT_EQ(value("vantrel.close_view(2**40)").substr(0, 14), "OverflowError:");
    EXPECT_EQ(value("vantrel.close_view(1, 2)").substr(0, 10), "TypeError:");
    EXPECT_EQ(value("vantrel.close_view(id=1)").substr(0, 10), "TypeError:");
    EXPECT_EQ(host.delegate.views.size(), 1U);
}

} // namespace
