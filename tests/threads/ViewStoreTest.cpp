#include "views/ViewStore.h"

#include "CxImageData.h"
#include "OnThreads.h"
#include "viewer/Pictures.h"

namespace {

TEST(ViewStoreTest, LendsWholeImagesWhileViewsComeAndGo)
{
    constexpr int rounds = 500;
    ViewStore store;
    std::atomic<int> torn = 0;
    std::atomic<bool> done = false;
    onThreads(3, [&](int number) {
        if (number == 0) {
            for (int i = 0; i < rounds; ++i) {
                store.setImage(i % 3, greyPicture(32, 8, std::uint8_t(i)));
                store.setActiveId(i % 3);
                store.remove((i + 1) % 3);
            }
            store.setActiveId(-1);
            done = true;
        } else {
            while (!done)
                if (const auto image = store.image(store.activeId()))
                    torn += image->picBuf()->row(0)[0] != image->picBuf()->row(7)[31];
        }
    });
    EXPECT_EQ(torn, 0);
    EXPECT_EQ(store.activeId(), -1);
}

TEST(ViewStoreTest, KeepsAnImageForItsReaderWhenTheViewIsGone)
{
    const int before = CxImageData::liveCount();
    ViewStore store;
    store.setImage(1, greyPicture(4, 4, 9));
    auto image = store.image(1);
    store.remove(1);
    EXPECT_EQ(store.image(1), nullptr);
    ASSERT_NE(image, nullptr);
    EXPECT_EQ(image->picBuf()->row(3)[3], 9);
    image.reset();
    EXPECT_EQ(CxImageData::liveCount(), before);
}

} // namespace
