// Scripts on a thread of their own beside the GUI thread, which shows what cameras see.

#include "CxCameraManager.h"
#include "ScriptsTest.h"
#include "scripting/ApplicationDelegate.h"
#include "views/ImageView.h"
#include "window/MainWindow.h"

#include <QtTest/QSignalSpy>

namespace {

class LiveViewThreads : public ScriptsTest
{
protected:
    LiveViewThreads() { delegate.cameras().openSimulated(2); }
    ~LiveViewThreads() override { runAll(); } // scripts use the members here

    MainWindow window;
    ApplicationDelegate delegate{window};
};

INSTANTIATE_TEST_SUITE_P(Scripts, LiveViewThreads, testing::Values(true), threadName);

TEST_P(LiveViewThreads, StartAndStopCameras)
{
    add("start 0\nstart 1\nstop 0\nstart 0\nstop 1\nstop 0\n");
    runAll();
    EXPECT_EQ(ended(), "");
    EXPECT_EQ(window.views().ids().size(), 2U);
}

TEST_P(LiveViewThreads, ReadFramesThatAreReplacedMeanwhile)
{
    add("start 0\nprint running\nlook 200\nexpose 200\nlook 200\nstop 0\n");
    ASSERT_TRUE(waitForPrinted("running"));
    ImageView* view = window.views().active();
    ASSERT_NE(view, nullptr);
    runAll();
    EXPECT_EQ(ended(), "");
    EXPECT_FALSE(view->isLive());
}

TEST_P(LiveViewThreads, SetParametersWhileFramesAreMade)
{
    add("start 0\nprint running\nexpose 2000\n");
    ASSERT_TRUE(waitForPrinted("running"));
    QSignalSpy frames(window.views().active(), &ImageView::imageShown);
    EXPECT_TRUE(QTest::qWaitFor([&] { return frames.count() >= 5 && !queue->isBusy(); }, patience));
    EXPECT_EQ(ended(), "");
}

TEST_P(LiveViewThreads, SurviveTheClosingOfTheirView)
{
    add("start 0\nprint running\nstare\nprint closed\n");
    ASSERT_TRUE(waitForPrinted("running"));
    ImageView* view = window.views().active();
    QSignalSpy frames(view, &ImageView::imageShown);
    ASSERT_TRUE(frames.wait(patience));
    view->closeMdiView();
    runAll();
    EXPECT_EQ(ended(), "");
    EXPECT_EQ(printed(), "running closed");
}

TEST_P(LiveViewThreads, ReadTheStoreOfACameraThatIsRestarted)
{
    add("start 0\nprint running\nwatch 3000\nprint done\n");
    ASSERT_TRUE(waitForPrinted("running"));
    delegate.restartCameraWithDefaults(CxCameraManager::instance()->openedCameras().constFirst());
    EXPECT_TRUE(QTest::qWaitFor([] { return CxCameraManager::instance()->openedCameraCount() == 2; }, patience));
    runAll();
    EXPECT_EQ(ended(), "");
}

} // namespace
