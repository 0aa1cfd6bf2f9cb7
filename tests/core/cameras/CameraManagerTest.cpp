#include "CxCameraManager.h"
#include "CxCameraParameters.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <thread>
#include <vector>

namespace {

class CameraManager : public testing::Test
{
protected:
    ~CameraManager() override
    {
        for (void* camera : manager->openedCameras())
            manager->removeCamera(camera);
    }

    CxCameraManager* manager = CxCameraManager::instance();
    CxCameraParameters first{{}, {64, 48}, nullptr};
    CxCameraParameters second{{}, {64, 48}, nullptr};
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

TEST_F(CameraManager, CamerasMayComeAndGoWhileOtherThreadsAsk)
{
    void* steady = manager->newHandle();
    manager->addCamera(steady, &first);
    std::vector<std::thread> threads;
    for (int t = 0; t < 3; ++t) {
        threads.emplace_back([this, steady] {
            for (int i = 0; i < 2000; ++i) {
                EXPECT_EQ(manager->cameraParameters(steady), &first);
                EXPECT_TRUE(manager->openedCameras().contains(steady));
            }
        });
    }
    for (int i = 0; i < 2000; ++i) {
        void* camera = manager->newHandle();
        manager->addCamera(camera, &second, 0);
        manager->removeCamera(camera);
    }
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(manager->openedCameraCount(), 1);
}

} // namespace
