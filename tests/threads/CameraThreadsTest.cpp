// The list of cameras and their parameter stores under threads.

#include "CxCameraManager.h"
#include "CxCameraParameters.h"
#include "IxCameraDevice.h"
#include "OnThreads.h"
#include "support/ListedCameras.h"

#include <gtest/gtest.h>

namespace {

class CameraThreads : public testing::Test
{
protected:
    static constexpr int rounds = 1000;

    CxCameraManager* manager = CxCameraManager::instance();
    const ListedCameras cleanUp;
};

TEST_F(CameraThreads, CamerasMayComeAndGoWhileOthersAsk)
{
    CxCameraParameters first{{}, {64, 48}, nullptr};
    CxCameraParameters second{{}, {64, 48}, nullptr};
    void* steady = manager->newHandle();
    manager->addCamera(steady, &first);
    onThreads(4, [&](int number) {
        for (int i = 0; i < rounds; ++i) {
            if (number == 0) {
                void* camera = manager->newHandle();
                manager->addCamera(camera, &second, 0);
                manager->removeCamera(camera);
            } else {
                EXPECT_EQ(manager->cameraParameters(steady), &first);
                EXPECT_TRUE(manager->openedCameras().contains(steady));
            }
        }
    });
    EXPECT_EQ(manager->openedCameraCount(), 1);
}

TEST_F(CameraThreads, AStoreMayBeUsedWhileItsCameraGoes)
{
    for (int round = 0; round < 100; ++round) {
        void* camera = manager->newHandle();
        {
            auto store = std::make_shared<CxCameraParameters>(SxCameraInfo(), QSize(64, 48), nullptr);
            store->addParam(QStringLiteral("exposure"), CxValue::fromInt(10));
            manager->addCamera(camera, std::move(store));
        }
        onThreads(2, [&](int number) {
            if (number == 0) {
                manager->removeCamera(camera);
                return;
            }
            if (CxCameraParameters* store = manager->cameraParameters(camera)) {
                EXPECT_TRUE(store->setParamDirect(QStringLiteral("exposure"), CxValue::fromInt(20), nullptr,
                                                  ExCommitRefreshGuiMode::Commit));
                EXPECT_EQ(store->findParam(QStringLiteral("exposure"), false)->paramValue().toInt(), 20);
            }
        });
    }
}

/// A device that is called by one thread at a time or not at all.
class LonelyDevice : public IxCameraDevice
{
public:
    bool readParam(const QString& /*name*/, CxValue& value) override
    {
        value = CxValue::fromInt(++calls);
        return true;
    }
    bool writeParam(const QString& /*name*/, const CxValue& /*value*/) override { return ++calls > 0; }
    bool writeRegion(const QRect& /*region*/) override { return ++calls > 0; }

    int calls = 0; // not atomic: the store keeps the threads apart
};

TEST_F(CameraThreads, AStoreTakesThreadsToTheDeviceOneByOne)
{
    LonelyDevice device;
    CxCameraParameters store{{}, {64, 48}, &device};
    store.addParam(QStringLiteral("label"), CxValue::fromString(QStringLiteral("none")));
    onThreads(3, [&](int number) {
        for (int i = 0; i < rounds; ++i) {
            CxValue value;
            EXPECT_TRUE(store.setParamDirect(QStringLiteral("label"), CxValue::fromString(QString::number(i)), nullptr,
                                             ExCommitRefreshGuiMode::CommitAndRefresh));
            EXPECT_TRUE(store.getParamDirect(QStringLiteral("label"), value, nullptr));
            EXPECT_FALSE(value.toString().isEmpty());
            EXPECT_TRUE(store.getParamDirect(QStringLiteral("temperature"), value, nullptr));
            EXPECT_TRUE(store.setROIRectParams(number, number, 8, 8, true, true));
            const QRect region = store.currentROIRectParams().constFirst();
            EXPECT_EQ(region.x(), region.y());
        }
    });
    EXPECT_EQ(device.calls, 3 * 3 * rounds);
}

TEST_F(CameraThreads, ADeviceThatIsReleasedIsNotCalledAnyMore)
{
    for (int round = 0; round < 100; ++round) {
        auto device = std::make_unique<LonelyDevice>();
        CxCameraParameters store{{}, {64, 48}, device.get()};
        onThreads(2, [&](int number) {
            if (number == 0) {
                store.releaseDevice();
                device.reset();
            } else {
                CxValue value;
                while (store.getParamDirect(QStringLiteral("temperature"), value, nullptr))
                    EXPECT_GT(value.toInt(), 0);
            }
        });
    }
}

} // namespace
