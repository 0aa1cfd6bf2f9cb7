#include "CameraSet.h"

#include "CxCameraManager.h"
#include "CxCameraParameters.h"
#include "CxImageData.h"
#include "ViewerCamera.h"
#include "simulated/SimulatedCamera.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QElapsedTimer>
#include <QtCore/QPointer>

#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <thread>

namespace {

using namespace std::chrono_literals;

class CameraSetTest : public testing::Test
{
protected:
    /// Runs the event loop until it is so, or far too long.
    static bool until(const std::function<bool()>& isSo)
    {
        QElapsedTimer timer;
        timer.start();
        while (!isSo()) {
            if (timer.elapsed() > 10000)
                return false;
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents | QEventLoop::AllEvents, 20);
        }
        return true;
    }

    static void set(ViewerCamera* camera, const char* name, const CxValue& value)
    {
        camera->parameters()->setParamDirect(QString::fromUtf8(name), value, nullptr,
                                             ExCommitRefreshGuiMode::CommitAndRefresh);
    }

    int argc = 1;
    char name[5] = "test";
    char* argv[2] = {name, nullptr};
    QCoreApplication application{argc, argv};
    CxCameraManager* manager = CxCameraManager::instance();
    CameraSet cameras{50ms};
};

/// A camera that is not there.
class MissingCamera : public SimulatedCamera
{
public:
    using SimulatedCamera::SimulatedCamera;
    bool open() override { return false; }
};

TEST_F(CameraSetTest, ListsTheSimulatedCamerasInTheirOrder)
{
    cameras.openSimulated(4);
    const QList<void*> handles = manager->openedCameras();
    ASSERT_EQ(handles.size(), 4);
    QStringList serialNumbers;
    for (void* handle : handles)
        serialNumbers.append(manager->cameraParameters(handle)->cameraInfo().serialNumber);
    EXPECT_EQ(serialNumbers.join(u' '), QStringLiteral("SIM0001A SIM0002B SIM0003C SIM0004D"));
}

TEST_F(CameraSetTest, OpensNoMoreThanThereAre)
{
    cameras.openSimulated(0);
    EXPECT_EQ(manager->openedCameraCount(), 0);
    cameras.openSimulated(99);
    EXPECT_EQ(manager->openedCameraCount(), 4);
}

TEST_F(CameraSetTest, TakesItsCamerasBackWhenItGoes)
{
    {
        CameraSet others;
        others.openSimulated(2);
        EXPECT_EQ(manager->openedCameraCount(), 2);
    }
    EXPECT_EQ(manager->openedCameraCount(), 0);
}

TEST_F(CameraSetTest, LeavesOutACameraThatCannotBeOpened)
{
    EXPECT_EQ(cameras.open(std::make_unique<MissingCamera>(simulatedSensor(0))), nullptr);
    EXPECT_EQ(manager->openedCameraCount(), 0);
}

TEST_F(CameraSetTest, FramesArriveWhileTheEventLoopRuns)
{
    cameras.openSimulated(3);
    ViewerCamera* camera = cameras.cameras()[2];
    set(camera, "framerate", CxValue::fromFloat(100));
    std::vector<std::shared_ptr<CxImageData>> frames;
    QObject::connect(camera, &ViewerCamera::frameArrived,
                     [&frames](std::shared_ptr<CxImageData> frame) { frames.push_back(std::move(frame)); });
    EXPECT_FALSE(camera->isLive());
    ASSERT_TRUE(camera->start());
    EXPECT_TRUE(camera->isLive());
    ASSERT_TRUE(until([&frames] { return frames.size() >= 5; }));
    for (std::size_t i = 0; i < frames.size(); ++i)
        EXPECT_EQ(frames[i]->picBuf()->frameNumber, int(i) + 1);
    camera->stop();
    EXPECT_FALSE(camera->isLive());
}

TEST_F(CameraSetTest, ListenersLearnWhenFramesCeaseToArrive)
{
    cameras.openSimulated(1);
    ViewerCamera* camera = cameras.cameras()[0];
    QList<bool> changes;
    QObject::connect(camera, &ViewerCamera::liveChanged, [&changes](bool live) { changes.append(live); });
    camera->start();
    set(camera, "trigger_mode", CxValue::fromString(QStringLiteral("line0")));
    EXPECT_TRUE(camera->isRunning());
    set(camera, "trigger_mode", CxValue::fromString(QStringLiteral("off")));
    camera->stop();
    camera->stop();
    EXPECT_EQ(changes, (QList<bool>{true, false, true, false}));
}

TEST_F(CameraSetTest, AListenerMayCloseTheCameraFromWithinAFrame)
{
    cameras.openSimulated(1);
    ViewerCamera* camera = cameras.cameras()[0];
    int frames = 0;
    QObject::connect(camera, &ViewerCamera::frameArrived, [&] {
        ++frames;
        camera->close();
    });
    camera->start();
    ASSERT_TRUE(until([&frames] { return frames > 0; }));
    EXPECT_EQ(manager->openedCameraCount(), 0);
    EXPECT_FALSE(camera->isRunning());
}

TEST_F(CameraSetTest, ARestartBringsTheCameraBackUnderANewHandleWithDefaults)
{
    cameras.openSimulated(3);
    ViewerCamera* camera = cameras.cameras()[1];
    void* old = camera->handle();
    set(camera, "exposure", CxValue::fromInt(50));
    camera->start();
    cameras.restart(old);
    EXPECT_EQ(manager->openedCameraCount(), 2);
    EXPECT_EQ(manager->cameraParameters(old), nullptr);
    EXPECT_EQ(cameras.camera(old), nullptr);
    EXPECT_EQ(cameras.camera(nullptr), nullptr);
    ASSERT_TRUE(until([this] { return manager->openedCameraCount() == 3; }));
    EXPECT_NE(camera->handle(), old);
    EXPECT_EQ(cameras.camera(camera->handle()), camera);
    EXPECT_EQ(manager->openedCameras()[1], camera->handle());
    EXPECT_EQ(camera->parameters()->findParam(QStringLiteral("exposure"), false)->paramValue().toInt(), 10000);
    EXPECT_FALSE(camera->isRunning());
}

TEST_F(CameraSetTest, TwoRestartsAtOnceKeepTheOrder)
{
    cameras.openSimulated(3);
    const QList<void*> before = manager->openedCameras();
    cameras.restart(before[1]);
    cameras.restart(before[0]);
    cameras.restart(before[0]);
    EXPECT_EQ(manager->openedCameras(), QList<void*>{before[2]});
    ASSERT_TRUE(until([this] { return manager->openedCameraCount() == 3; }));
    for (std::size_t i = 0; i < 3; ++i)
        EXPECT_EQ(manager->openedCameras()[qsizetype(i)], cameras.cameras()[i]->handle());
}

TEST_F(CameraSetTest, ARestartTakesAboutASecondUnlessToldOtherwise)
{
    CameraSet patient;
    patient.openSimulated(1);
    QElapsedTimer timer;
    timer.start();
    patient.restart(patient.cameras()[0]->handle());
    ASSERT_TRUE(until([this] { return manager->openedCameraCount() == 1; }));
    EXPECT_GE(timer.elapsed(), 900);
}

TEST_F(CameraSetTest, AStoreOutlivesTwoClosesOfItsCameraWhileAThreadUsesIt)
{
    auto others = std::make_unique<CameraSet>();
    others->openSimulated(1);
    ViewerCamera* camera = others->cameras()[0];
    std::atomic<int> step = 0;
    const auto waitFor = [&step](int wanted) {
        while (step < wanted)
            std::this_thread::yield();
    };
    std::thread script([&] {
        const auto exposure = QStringLiteral("exposure");
        CxCameraParameters* store = manager->cameraParameters(camera->handle());
        CxCameraParam* param = store->findParam(exposure, false);
        store->setParamDirect(exposure, CxValue::fromInt(50), nullptr, ExCommitRefreshGuiMode::CommitAndRefresh);
        const auto use = [&] {
            EXPECT_EQ(param->paramValue().toInt(), 50);
            EXPECT_EQ(store->cameraInfo().serialNumber, QStringLiteral("SIM0001A"));
            int status = 0;
            store->setParamDirect(exposure, CxValue::fromInt(70), &status, ExCommitRefreshGuiMode::CommitAndRefresh);
            EXPECT_EQ(status, CxCameraParameters::Refused);
            CxValue value;
            EXPECT_FALSE(store->getParamDirect(QStringLiteral("link_speed"), value, nullptr));
            EXPECT_FALSE(store->setROIRectParams(0, 0, 8, 8, true, true));
        };
        step = 1;
        waitFor(2);
        use();
        step = 3;
        waitFor(4);
        use();
        EXPECT_EQ(manager->openedCameraCount(), 0);
    });
    waitFor(1);
    // Two closes, with frames of other openings in between; then the back end goes as well.
    for (int i = 0; i < 2; ++i) {
        camera->close();
        ASSERT_TRUE(camera->open());
    }
    step = 2;
    waitFor(3);
    others.reset();
    step = 4;
    script.join();
}

TEST_F(CameraSetTest, AStoreThatNobodyUsesGoesWithItsCamera)
{
    cameras.openSimulated(1);
    ViewerCamera* camera = cameras.cameras()[0];
    const QPointer<QObject> store = camera->parameters();
    std::thread([&] { EXPECT_EQ(manager->cameraParameters(camera->handle()), store); }).join();
    camera->close();
    EXPECT_TRUE(store.isNull());
}

TEST_F(CameraSetTest, AnotherThreadMayWriteParametersWhileFramesArrive)
{
    cameras.openSimulated(3);
    ViewerCamera* camera = cameras.cameras()[2];
    set(camera, "framerate", CxValue::fromFloat(120));
    camera->start();
    std::atomic<bool> done = false;
    std::thread writer([&] {
        void* handle = camera->handle();
        for (int i = 0; i < 2000; ++i) {
            CxCameraParameters* parameters = manager->cameraParameters(handle);
            parameters->setParamDirect(QStringLiteral("exposure"), CxValue::fromInt(10 + i), nullptr,
                                       ExCommitRefreshGuiMode::CommitAndRefresh);
            parameters->setROIRectParams(i % 100, 0, 64, 48, true, true);
            EXPECT_EQ(parameters->findParam(QStringLiteral("exposure"), false)->paramValue().toInt(), 10 + i);
        }
        done = true;
    });
    EXPECT_TRUE(until([&done] { return done.load(); }));
    writer.join();
}

} // namespace
