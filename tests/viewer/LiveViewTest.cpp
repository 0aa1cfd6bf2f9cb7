#include "CameraWindowTest.h"
#include "scripting/ScriptWait.h"
#include "simulated/SimulatedCamera.h"

#include <QtCore/QPointer>
#include <QtCore/QTemporaryDir>
#include <QtCore/QTimer>
#include <QtGui/QAction>
#include <QtWidgets/QMenu>
#include <QtWidgets/QMenuBar>

#include <cmath>

namespace {

class LiveView : public CameraWindowTest
{
protected:
    ImageView* start(int index = 0)
    {
        EXPECT_TRUE(delegate.setCameraAcquisition(true, handle(index)));
        return window.views().active();
    }

    static int frameNumber(const ImageView& view) { return view.image() ? view.image()->picBuf()->frameNumber : 0; }
};

TEST_F(LiveView, IsNotThereUntilTheCameraAcquires)
{
    EXPECT_TRUE(window.views().ids().empty());
    EXPECT_EQ(delegate.activeViewId(), -1);
}

TEST_F(LiveView, OpensActivatedWhenTheCameraStartsAndShowsItsFrames)
{
    const ImageView* view = start(1);
    ASSERT_NE(view, nullptr);
    EXPECT_EQ(view->windowTitle(), QStringLiteral("SimCam M12 (SIM0002B)"));
    EXPECT_TRUE(view->isLive());
    ASSERT_TRUE(until([&] { return frameNumber(*view) >= 3; }));
    EXPECT_EQ(view->image()->picBuf()->width, 1280U);
    EXPECT_NE(view->image()->imageMetadata(), nullptr);
    EXPECT_EQ(delegate.viewImage(view->id()), view->image().get());
}

TEST_F(LiveView, IsActivatedWhenTheCameraIsStartedAgain)
{
    const int first = start(0)->id();
    const int second = start(1)->id();
    EXPECT_NE(first, second);
    EXPECT_EQ(start(0)->id(), first);
    EXPECT_TRUE(delegate.setCameraAcquisition(false, handle(1)));
    EXPECT_EQ(start(1)->id(), second);
    EXPECT_EQ(window.views().ids().size(), 2U);
}

TEST_F(LiveView, DoesNotOpenForAHandleThatIsNotInUse)
{
    void* stale = handle();
    delegate.cameras().restart(stale);
    for (void* unknown : {static_cast<void*>(nullptr), stale, CxCameraManager::instance()->newHandle()}) {
        EXPECT_FALSE(delegate.setCameraAcquisition(true, unknown));
        EXPECT_FALSE(delegate.setCameraAcquisition(false, unknown));
        delegate.restartCameraWithDefaults(unknown);
    }
    EXPECT_TRUE(window.views().ids().empty());
}

TEST_F(LiveView, KeepsTheLastFrameWhenTheCameraStops)
{
    ImageView* view = start();
    ASSERT_TRUE(until([&] { return frameNumber(*view) >= 2; }));
    EXPECT_TRUE(delegate.setCameraAcquisition(false, handle()));
    EXPECT_FALSE(view->isLive());
    const std::shared_ptr<CxImageData> last = view->image();
    runFor(150); // several frames' time, in which none may come
    EXPECT_EQ(view->image(), last);
}

TEST_F(LiveView, ClosingItStopsTheCameraAndTheNextStartOpensAnother)
{
    ImageView* view = start();
    const int id = view->id();
    view->closeMdiView();
    EXPECT_FALSE(camera()->isRunning());
    EXPECT_EQ(delegate.view(id), nullptr);
    // Before the closed one is deleted.
    const ImageView* next = start();
    ASSERT_NE(next, nullptr);
    EXPECT_GT(next->id(), id);
    ASSERT_TRUE(until([&] { return frameNumber(*next) > 0; }));
}

TEST_F(LiveView, ClosingItFromWithinAFrameIsHarmless)
{
    QPointer<ImageView> view = start();
    QObject::connect(view, &ImageView::imageShown, view, [&view] { view->closeMdiView(); });
    ASSERT_TRUE(until([this] { return !camera()->isRunning(); }));
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    runFor(50); // so that a frame that is still on its way would come
    EXPECT_TRUE(window.views().ids().empty());
}

TEST_F(LiveView, AWaitEndsWithAFrameThatArrivedAfterTheCall)
{
    ImageView* view = start();
    ASSERT_TRUE(until([&] { return frameNumber(*view) >= 1; }));
    for (int i = 0; i < 5; ++i) {
        const int before = frameNumber(*view);
        EXPECT_TRUE(ScriptWait::forImage(*view, 5.0));
        EXPECT_EQ(frameNumber(*view), before + 1);
    }
    EXPECT_TRUE(ScriptWait::forImage(*view, -1.0));
}

TEST_F(LiveView, AWaitWithoutLimitEndsWhenNoFrameCanComeAnyMore)
{
    ImageView* view = start();
    set("framerate", CxValue::fromFloat(1.0F));
    const auto expectEnd = [&](const char* why, const std::function<void()>& act) {
        ASSERT_TRUE(view->isLive()) << why;
        QTimer::singleShot(20, view, act);
        QElapsedTimer timer;
        timer.start();
        EXPECT_FALSE(ScriptWait::forImage(*view, -1.0)) << why;
        EXPECT_LT(timer.elapsed(), 900) << why;
    };
    expectEnd("stopped", [this] { delegate.setCameraAcquisition(false, handle()); });
    EXPECT_FALSE(ScriptWait::forImage(*view, -1.0));
    start();
    expectEnd("waits for a trigger", [this] { trigger("software"); });
    trigger("off");
    expectEnd("restarted", [this] { delegate.restartCameraWithDefaults(handle()); });
    ASSERT_TRUE(until([] { return CxCameraManager::instance()->openedCameraCount() == 2; }));
    start();
    set("framerate", CxValue::fromFloat(1.0F));
    expectEnd("closed", [view] { view->closeMdiView(); });
}

TEST_F(LiveView, AWaitWithALimitEndsInTimeWhenTheCameraIsRemovedMeanwhile)
{
    ImageView* view = start();
    set("framerate", CxValue::fromFloat(1.0F));
    QTimer::singleShot(20, view, [this] { camera()->close(); });
    EXPECT_FALSE(ScriptWait::forImage(*view, 0.2));
}

TEST_F(LiveView, ARecordingGetsEveryFrameShown)
{
    const QTemporaryDir folder;
    ImageView* view = start();
    set("framerate", CxValue::fromFloat(120.0F));
    ASSERT_TRUE(view->startVideoRecording(folder.filePath(QStringLiteral("live.avi"))));
    int shown = 0;
    const int first = frameNumber(*view);
    QObject::connect(view, &ImageView::imageShown, view, [&shown] { ++shown; });
    ASSERT_TRUE(until([&shown] { return shown >= 20; }));
    EXPECT_EQ(view->recorder().frameCount(), shown);
    EXPECT_EQ(frameNumber(*view) - first, shown);
    view->stopVideoRecording();
}

TEST_F(LiveView, ARestartLeavesTheViewForTheCameraThatComesBack)
{
    void* old = handle();
    ImageView* view = start();
    ASSERT_TRUE(until([&] { return frameNumber(*view) >= 1; }));
    set("exposure", CxValue::fromInt(50));
    delegate.restartCameraWithDefaults(old);
    EXPECT_FALSE(view->isLive());
    EXPECT_NE(view->image(), nullptr);
    ASSERT_TRUE(until([] { return CxCameraManager::instance()->openedCameraCount() == 2; }));
    EXPECT_NE(handle(), old);
    EXPECT_EQ(start(), view);
    EXPECT_TRUE(view->isLive());
    EXPECT_EQ(camera()->parameters()->findParam(QStringLiteral("exposure"), false)->paramValue().toInt(), 10000);
}

/// Loses every second frame.
class LossyCamera : public SimulatedCamera
{
public:
    LossyCamera()
        : SimulatedCamera(simulatedSensor(2))
    {
    }
    std::unique_ptr<CxImageData> nextFrame() override
    {
        auto frame = SimulatedCamera::nextFrame();
        if (frame)
            frame->picBuf()->acqFrameNumber *= 2;
        return frame;
    }
};

TEST_F(LiveView, CountsTheFramesThatItsRecordingLacks)
{
    ViewerCamera* lossy = delegate.cameras().open(std::make_unique<LossyCamera>());
    const QTemporaryDir folder;
    for (const auto& [handle, lost] : {std::pair(this->handle(), 0), std::pair(lossy->handle(), 1)}) {
        EXPECT_TRUE(delegate.setCameraAcquisition(true, handle));
        ImageView* view = window.views().active();
        ASSERT_TRUE(until([&] { return frameNumber(*view) >= 2; }));
        ASSERT_TRUE(view->startVideoRecording(folder.filePath(QStringLiteral("%1.avi").arg(lost))));
        ASSERT_TRUE(until([&] { return view->recorder().frameCount() >= 5; }));
        EXPECT_EQ(view->recorder().droppedCount(), lost * view->recorder().frameCount());
        view->stopVideoRecording();
    }
}

TEST_F(LiveView, TheCameraMenuStartsAndStops)
{
    QMenu* menu = nullptr;
    for (QMenu* each : window.menuBar()->findChildren<QMenu*>() + window.findChildren<QMenu*>())
        if (each->title() == QStringLiteral("&Camera"))
            menu = each;
    ASSERT_NE(menu, nullptr);
    Q_EMIT menu->aboutToShow();
    ASSERT_EQ(menu->actions().size(), 2);
    menu->actions()[1]->trigger();
    EXPECT_TRUE(camera(1)->isRunning());
    Q_EMIT menu->aboutToShow();
    EXPECT_TRUE(menu->actions()[1]->isChecked());
    EXPECT_FALSE(menu->actions()[0]->isChecked());
    menu->actions()[1]->trigger();
    EXPECT_FALSE(camera(1)->isRunning());
}

} // namespace
