#include "CxCameraManager.h"
#include "CxCameraParameters.h"
#include "support/ListedCameras.h"

#include <gtest/gtest.h>

#include <memory>
#include <thread>

namespace {

class CameraManager : public testing::Test
{
protected:
    CxCameraManager* manager = CxCameraManager::instance();
    CxCameraParameters first{{}, {64, 48}, nullptr};
    CxCameraParameters second{{}, {64, 48}, nullptr};
    const ListedCameras cleanUp;
};

TEST_F(CameraManager, StartsWithoutCameras)
{
    EXPECT_EQ(manager->openedCameraCount(), 0);
    EXPECT_TRUE(manager->openedCameras().isEmpty());
    EXPECT_EQ(manager->cameraParameters(nullptr), nullptr);
}

TEST_F(CameraManager, ListsCamerasInTheHostsOrder)
{
    void* a = manager->newHandle();
    void* b = manager->newHandle();
    void* c = manager->newHandle();
    manager->addCamera(a, &first);
    manager->addCamera(b, &second);
    manager->addCamera(c, nullptr, 1);
    EXPECT_EQ(manager->openedCameras(), (QList<void*>{a, c, b}));
    EXPECT_EQ(manager->openedCameraCount(), 3);
    EXPECT_EQ(manager->cameraParameters(a), &first);
    EXPECT_EQ(manager->cameraParameters(b), &second);
    EXPECT_EQ(manager->cameraParameters(c), nullptr);
}

TEST_F(CameraManager, ANullHandleMayStandInTheListAndHasNoParameters)
{
    manager->addCamera(nullptr, &first);
    EXPECT_EQ(manager->openedCameras(), QList<void*>{nullptr});
    EXPECT_EQ(manager->cameraParameters(nullptr), nullptr);
}

TEST_F(CameraManager, AHandleTakenBackStaysUnknown)
{
    void* old = manager->newHandle();
    manager->addCamera(old, &first);
    manager->removeCamera(old);
    EXPECT_EQ(manager->cameraParameters(old), nullptr);
    for (int i = 0; i < 1000; ++i) {
        void* fresh = manager->newHandle();
        ASSERT_NE(fresh, old);
        ASSERT_NE(fresh, nullptr);
    }
    manager->removeCamera(old);
    EXPECT_EQ(manager->openedCameraCount(), 0);
}

TEST_F(CameraManager, TheAnswerFollowsEveryChangeOfTheList)
{
    void* camera = manager->newHandle();
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(manager->cameraParameters(camera), nullptr);
        manager->addCamera(camera, i == 1 ? &second : &first);
        for (int again = 0; again < 2; ++again)
            EXPECT_EQ(manager->cameraParameters(camera), i == 1 ? &second : &first);
        void* other = manager->newHandle();
        manager->addCamera(other, &second, 0);
        EXPECT_EQ(manager->cameraParameters(camera), i == 1 ? &second : &first);
        manager->removeCamera(other);
        EXPECT_EQ(manager->cameraParameters(other), nullptr);
        std::thread([&] { manager->removeCamera(camera); }).join();
    }
    EXPECT_EQ(manager->cameraParameters(camera), nullptr);
}

class SharedStore : public CameraManager
{
protected:
    /// Lists a new store that the manager alone owns.
    void* addOwned()
    {
        auto store = std::make_shared<CxCameraParameters>(SxCameraInfo(), QSize(64, 48), nullptr);
        last = store;
        void* camera = manager->newHandle();
        manager->addCamera(camera, std::move(store));
        return camera;
    }

    std::weak_ptr<CxCameraParameters> last;
};

TEST_F(SharedStore, GoesWithItsCameraWhenNobodyAskedForIt)
{
    void* camera = addOwned();
    EXPECT_FALSE(last.expired());
    manager->removeCamera(camera);
    EXPECT_TRUE(last.expired());
}

TEST_F(SharedStore, StaysUntilTheThreadThatAskedForItAsksAgain)
{
    void* camera = addOwned();
    EXPECT_EQ(manager->cameraParameters(camera), last.lock().get());
    manager->removeCamera(camera);
    EXPECT_EQ(manager->openedCameraCount(), 0);
    EXPECT_FALSE(last.expired());
    std::thread([&] { EXPECT_EQ(manager->cameraParameters(camera), nullptr); }).join();
    EXPECT_FALSE(last.expired()) << "another thread's question ends nothing";
    EXPECT_EQ(manager->cameraParameters(nullptr), nullptr);
    EXPECT_TRUE(last.expired());
}

TEST_F(SharedStore, StaysNoLongerThanTheThreadThatAskedForIt)
{
    void* camera = addOwned();
    std::thread([&] {
        EXPECT_NE(manager->cameraParameters(camera), nullptr);
        manager->removeCamera(camera);
        EXPECT_FALSE(last.expired());
    }).join();
    EXPECT_TRUE(last.expired());
}

TEST_F(SharedStore, IsReleasedByTheManagerForAHostThatKeepsItsOwnStores)
{
    void* camera = manager->newHandle();
    {
        const auto own = std::make_unique<CxCameraParameters>(SxCameraInfo(), QSize(64, 48), nullptr);
        manager->addCamera(camera, own.get());
        EXPECT_EQ(manager->cameraParameters(camera), own.get());
        manager->removeCamera(camera);
    }
    EXPECT_EQ(manager->cameraParameters(camera), nullptr);
}

} // namespace
