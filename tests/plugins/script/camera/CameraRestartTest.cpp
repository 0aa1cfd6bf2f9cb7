// Waiting for a camera to come back, with a wait that takes no time.

#include "camera/CameraRestart.h"

#include "CxCameraManager.h"
#include "support/FakeCameraDevice.h"
#include "support/FakeHost.h"
#include "support/ListedCameras.h"

#include <QtCore/QList>

#include <gtest/gtest.h>

#include <functional>

namespace {

QList<int> waits;
std::function<void()> onWait;

class CameraRestart : public testing::Test
{
protected:
    CameraRestart()
    {
        waits.clear();
        onWait = nullptr;
        handle = add(parameters.get());
        fx_script_waitForHost = [](int milliseconds) {
            waits.append(milliseconds);
            if (onWait)
                onWait();
        };
        delegate.onCall = [this] { manager->removeCamera(handle); };
    }

    ~CameraRestart() override { fx_script_waitForHost = wait; }

    void* add(CxCameraParameters* store) { return cameras.add(store); }

    CxCameraManager* manager = CxCameraManager::instance();
    FakeDelegate delegate;
    std::unique_ptr<CxCameraParameters> parameters = makeFakeParameters(nullptr);
    void* handle = nullptr;
    void (*const wait)(int milliseconds) = fx_script_waitForHost;
    ListedCameras cameras;
};

TEST_F(CameraRestart, LooksSixtyTimesForACameraThatNeverComesBack)
{
    EXPECT_EQ(fx_script_restartCamera(handle), nullptr);
    EXPECT_EQ(waits, QList<int>(61, 500));
    EXPECT_EQ(delegate.calls.size(), 1);
}

TEST_F(CameraRestart, WaitsOnceBeforeItsFirstLook)
{
    delegate.onCall = nullptr;
    EXPECT_EQ(fx_script_restartCamera(handle), handle);
    EXPECT_EQ(waits.size(), 2);
}

TEST_F(CameraRestart, FindsACameraThatComesBackAtTheLastLook)
{
    void* fresh = nullptr;
    onWait = [&] {
        if (waits.size() == 61)
            fresh = add(parameters.get());
    };
    void* found = fx_script_restartCamera(handle);
    ASSERT_NE(found, nullptr);
    EXPECT_EQ(found, fresh);
}

TEST_F(CameraRestart, ComparesSerialNumbersExactlyAndTakesTheFirst)
{
    const auto lowerCase = makeFakeParameters(nullptr, QStringLiteral("fake01"));
    const auto same = makeFakeParameters(nullptr);
    add(lowerCase.get());
    add(nullptr);
    manager->addCamera(nullptr, same.get());
    void* first = nullptr;
    onWait = [&] {
        if (waits.size() == 3) {
            first = add(parameters.get());
            add(same.get());
        }
    };
    EXPECT_EQ(fx_script_restartCamera(handle), first);
    EXPECT_NE(first, nullptr);
    EXPECT_EQ(waits.size(), 3);
}

TEST_F(CameraRestart, TheStoreMayGoWithTheOldHandle)
{
    onWait = [this] {
        if (waits.size() == 1)
            parameters.reset();
        else if (waits.size() == 2)
            add((parameters = makeFakeParameters(nullptr)).get());
    };
    EXPECT_NE(fx_script_restartCamera(handle), nullptr);
}

TEST_F(CameraRestart, AsksNobodyForAnUnknownCamera)
{
    EXPECT_EQ(fx_script_restartCamera(nullptr), nullptr);
    EXPECT_EQ(fx_script_restartCamera(manager->newHandle()), nullptr);
    EXPECT_TRUE(delegate.calls.isEmpty());
    EXPECT_TRUE(waits.isEmpty());
}

TEST_F(CameraRestart, GivesNothingWithoutAnApplication)
{
    IxAppDelegate::setInstance(nullptr);
    EXPECT_EQ(fx_script_restartCamera(handle), nullptr);
    EXPECT_TRUE(waits.isEmpty());
}

} // namespace
