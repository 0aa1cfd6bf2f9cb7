#include "PicBufReference.h"
#include "support/LogCapture.h"

#include <gtest/gtest.h>

namespace {

/// The reference for CopyRect: pixel by pixel from a copy of the source.
void copyRectSlowly(TestPicBuf& dst, unsigned dx, unsigned dy, const TestPicBuf& src, unsigned x, unsigned y,
                    unsigned w, unsigned h)
{
    const TestPicBuf from(src);
    const std::size_t size = from.record.bytesPerPixel();
    for (std::uint64_t j = 0; j < std::min(h, 1000U); ++j)
        for (std::uint64_t i = 0; i < std::min(w, 1000U); ++i)
            if (x + i < from.record.width && y + j < from.record.height && dx + i < dst.record.width &&
                dy + j < dst.record.height)
                std::memcpy(dst.record.row(unsigned(dy + j)) + (dx + i) * size,
                            from.record.row(unsigned(y + j)) + (x + i) * size, size);
}

TEST(PicBufGeometry, CopyRectIsClippedToBothImages)
{
    std::mt19937_64 random(1);
    const LogCapture log;
    for (const ExImageDataType type : allTypes) {
        for (int round = 0; round < 60; ++round) {
            SCOPED_TRACE(typeName(type) + " round " + std::to_string(round));
            const unsigned channels = type == ExImageDataType::Packed565 ? 1 : 1 + unsigned(random() % 4);
            TestPicBuf source(
                {unsigned(1 + random() % 12), unsigned(1 + random() % 12), channels, type, unsigned(random() % 3)});
            TestPicBuf target(
                {unsigned(1 + random() % 12), unsigned(1 + random() % 12), channels, type, unsigned(random() % 3)});
            source.randomise(random);
            target.randomise(random);
            TestPicBuf wanted(target);
            const auto pick = [&] { return random() % 20 == 0 ? 0xFFFFFFF0U : unsigned(random() % 14); };
            const unsigned dx = pick(), dy = pick(), x = pick(), y = pick(), w = pick(), h = pick();
            copyRectSlowly(wanted, dx, dy, source, x, y, w, h);
            const bool something = w && h && x < source.record.width && y < source.record.height &&
                                   dx < target.record.width && dy < target.record.height;
            EXPECT_EQ(CxPicBufAPI::CopyRect(target.record, dx, dy, source.record, x, y, w, h), something);
            EXPECT_EQ(target.pixels(), wanted.pixels());
            EXPECT_TRUE(target.onlyPixelsWritten());
        }
    }
}

TEST(PicBufGeometry, CopyRectWithinOneImageMayOverlap)
{
    std::mt19937_64 random(2);
    const LogCapture log;
    for (int round = 0; round < 300; ++round) {
        TestPicBuf image({12, 10, 3, ExImageDataType::UInt16, unsigned(random() % 2)});
        image.randomise(random);
        TestPicBuf wanted(image);
        const unsigned dx = unsigned(random() % 12), dy = unsigned(random() % 10), x = unsigned(random() % 12),
                       y = unsigned(random() % 10), w = unsigned(1 + random() % 12), h = unsigned(1 + random() % 10);
        copyRectSlowly(wanted, dx, dy, image, x, y, w, h);
        ASSERT_TRUE(CxPicBufAPI::CopyRect(image.record, dx, dy, image.record, x, y, w, h));
        ASSERT_EQ(image.pixels(), wanted.pixels()) << dx << ' ' << dy << ' ' << x << ' ' << y << ' ' << w << ' ' << h;
    }
}

TEST(PicBufGeometry, DifferentKindsAreRefused)
{
    const LogCapture log;
    TestPicBuf source({4, 4, 1});
    TestPicBuf deep({4, 4, 1, ExImageDataType::UInt16});
    TestPicBuf colour({4, 4, 3});
    SxPicBuf empty;
    EXPECT_FALSE(CxPicBufAPI::CopyRect(deep.record, 0, 0, source.record, 0, 0, 2, 2));
    EXPECT_FALSE(CxPicBufAPI::CopyRect(colour.record, 0, 0, source.record, 0, 0, 2, 2));
    EXPECT_FALSE(CxPicBufAPI::CopyRect(empty, 0, 0, source.record, 0, 0, 2, 2));
    EXPECT_FALSE(CxPicBufAPI::Resize(source.record, deep.record));
    EXPECT_FALSE(CxPicBufAPI::Resize(source.record, colour.record));
    EXPECT_FALSE(CxPicBufAPI::Resize(source.record, empty));
    EXPECT_FALSE(CxPicBufAPI::CopyPicBuf(deep.record, source.record, true));
    EXPECT_EQ(log.texts().size(), 7);
}

TEST(PicBufGeometry, CopyPicBufLeavesThePaddingAlone)
{
    std::mt19937_64 random(3);
    for (const unsigned padding : {0U, 5U}) {
        TestPicBuf source({9, 4, 3, ExImageDataType::UInt8, 5});
        source.randomise(random);
        source.record.timeStamp = 77;
        TestPicBuf target({9, 4, 3, ExImageDataType::UInt8, padding});
        const std::uint32_t stride = target.record.lineStride;
        ASSERT_TRUE(CxPicBufAPI::CopyPicBuf(target.record, source.record, true));
        EXPECT_EQ(target.pixels(), source.pixels());
        EXPECT_TRUE(target.onlyPixelsWritten());
        EXPECT_EQ(target.record.timeStamp, 77U);
        EXPECT_EQ(target.record.lineStride, stride);
    }
}

TEST(PicBufGeometry, AConstantImageStaysConstantAtEverySize)
{
    std::mt19937_64 random(4);
    for (const ExImageDataType type : allTypes) {
        for (int round = 0; round < 20; ++round) {
            SCOPED_TRACE(typeName(type) + " round " + std::to_string(round));
            const unsigned some[] = {1, 3, 5, 600};
            const unsigned channels = type == ExImageDataType::Packed565 ? 1 : some[round % 4];
            TestPicBuf source(
                {unsigned(1 + random() % 30), unsigned(1 + random() % 30), channels, type, unsigned(random() % 3)});
            for (unsigned y = 0; y < source.record.height; ++y)
                for (std::size_t i = 0; i < source.values(); ++i)
                    if (type == ExImageDataType::Float)
                        source.set(i, y, 12.25F);
                    else if (type == ExImageDataType::Double)
                        source.set(i, y, 12.25);
                    else
                        source.setBits(i, y, 0x1234567890ABULL);
            TestPicBuf target(
                {unsigned(1 + random() % 60), unsigned(1 + random() % 60), channels, type, unsigned(random() % 3)});
            ASSERT_TRUE(CxPicBufAPI::Resize(source.record, target.record));
            EXPECT_TRUE(target.onlyPixelsWritten());
            for (unsigned y = 0; y < target.record.height; ++y)
                for (std::size_t i = 0; i < target.values(); ++i)
                    ASSERT_NEAR(double(valueAt(target.record, i, y)), double(valueAt(source.record, 0, 0)), 1e-3);
        }
    }
}

TEST(PicBufGeometry, ShrinkingByAWholeFactorAverages)
{
    std::mt19937_64 random(5);
    for (const ExImageDataType type : numberTypes()) {
        for (const unsigned channels : {1U, 4U, 5U}) {
            SCOPED_TRACE(typeName(type) + " x " + std::to_string(channels));
            TestPicBuf source({12, 9, channels, type, 1});
            source.randomise(random);
            for (unsigned y = 0; y < 9 && !isFloating(type); ++y)
                for (std::size_t i = 0; i < source.values(); ++i)
                    source.setBits(i, y, isSignedInteger(type) ? random() % 256 - 128 : random() % 256);
            TestPicBuf target({4, 3, channels, type, 1});
            ASSERT_TRUE(CxPicBufAPI::Resize(source.record, target.record));
            for (unsigned y = 0; y < 3; ++y) {
                for (std::size_t i = 0; i < target.values(); ++i) {
                    const std::size_t left = i / channels * 3 * channels + i % channels;
                    long double sum = 0;
                    for (unsigned j = 0; j < 9; ++j)
                        sum += valueAt(source.record, left + j % 3 * channels, y * 3 + j / 3);
                    ASSERT_NEAR(double(valueAt(target.record, i, y)), double(sum / 9), isFloating(type) ? 1e-3 : 0.501);
                }
            }
        }
    }
}

TEST(PicBufGeometry, OneAxisMayShrinkWhileTheOtherGrows)
{
    TestPicBuf source({8, 2, 1, ExImageDataType::Double});
    for (unsigned i = 0; i < 8; ++i) {
        source.set(i, 0, i % 2 ? 0.0 : 8.0);
        source.set(i, 1, i % 2 ? 10.0 : 18.0);
    }
    TestPicBuf target({2, 8, 1, ExImageDataType::Double});
    ASSERT_TRUE(CxPicBufAPI::Resize(source.record, target.record));
    for (unsigned x = 0; x < 2; ++x) {
        EXPECT_DOUBLE_EQ(target.get<double>(x, 0), 4.0);
        EXPECT_DOUBLE_EQ(target.get<double>(x, 7), 14.0);
        for (unsigned y = 1; y < 8; ++y)
            EXPECT_GE(target.get<double>(x, y), target.get<double>(x, y - 1));
    }
}

TEST(PicBufGeometry, ResizeRectTouchesTheTargetRectangleOnly)
{
    std::mt19937_64 random(6);
    for (const ExImageDataType type : allTypes) {
        SCOPED_TRACE(typeName(type));
        TestPicBuf source({10, 10, 1, type, 1});
        source.randomise(random);
        TestPicBuf target({20, 20, 1, type, 1});
        target.randomise(random);
        const TestPicBuf before(target);
        ASSERT_TRUE(CxPicBufAPI::ResizeRect(source.record, 4, 5, 1, 1, target.record, 3, 2, 7, 6));
        for (unsigned y = 0; y < 20; ++y) {
            for (unsigned x = 0; x < 20; ++x) {
                const bool inside = x >= 3 && x < 10 && y >= 2 && y < 8;
                const long double wanted = inside ? valueAt(source.record, 4, 5) : valueAt(before.record, x, y);
                ASSERT_NEAR(double(valueAt(target.record, x, y)), double(wanted), std::fabs(double(wanted)) * 1e-12);
            }
        }
    }
}

TEST(PicBufGeometry, ZeroAndTooLargeSizesMeanUpToTheEdge)
{
    std::mt19937_64 random(7);
    TestPicBuf source({10, 8});
    source.randomise(random);
    TestPicBuf target({6, 5});
    TestPicBuf wanted({6, 5});
    copyRectSlowly(wanted, 0, 0, source, 4, 3, 6, 5);
    ASSERT_TRUE(CxPicBufAPI::ResizeRect(source.record, 4, 3, 0, 0, target.record, 0, 0, 0, 0));
    EXPECT_EQ(target.pixels(), wanted.pixels());
    target.randomise(random);
    ASSERT_TRUE(CxPicBufAPI::ResizeRect(source.record, 4, 3, 0xFFFFFFFFU, 100, target.record, 0, 0, 100, 0xFFFFFFFEU));
    EXPECT_EQ(target.pixels(), wanted.pixels());
}

TEST(PicBufGeometry, RectanglesOutsideAreRefused)
{
    const LogCapture log;
    TestPicBuf source({10, 8});
    TestPicBuf target({6, 5});
    const TestPicBuf before(target);
    EXPECT_FALSE(CxPicBufAPI::ResizeRect(source.record, 10, 0, 1, 1, target.record, 0, 0, 1, 1));
    EXPECT_FALSE(CxPicBufAPI::ResizeRect(source.record, 0, 8, 1, 1, target.record, 0, 0, 1, 1));
    EXPECT_FALSE(CxPicBufAPI::ResizeRect(source.record, 0, 0, 1, 1, target.record, 6, 0, 1, 1));
    EXPECT_FALSE(CxPicBufAPI::ResizeRect(source.record, 0, 0, 1, 1, target.record, 0, 0xFFFFFFFFU, 1, 1));
    EXPECT_EQ(target.pixels(), before.pixels());
    EXPECT_EQ(log.texts().size(), 4);
}

TEST(PicBufGeometry, ResizeWithinOneImageReadsTheOldPixels)
{
    std::mt19937_64 random(8);
    for (const ExImageDataType type : {ExImageDataType::UInt8, ExImageDataType::Float, ExImageDataType::Int32}) {
        TestPicBuf image({16, 16, 1, type});
        image.randomise(random);
        TestPicBuf source(image);
        TestPicBuf wanted(image);
        ASSERT_TRUE(CxPicBufAPI::ResizeRect(source.record, 0, 0, 8, 8, wanted.record, 2, 2, 13, 13));
        ASSERT_TRUE(CxPicBufAPI::ResizeRect(image.record, 0, 0, 8, 8, image.record, 2, 2, 13, 13));
        EXPECT_EQ(image.pixels(), wanted.pixels());
    }
}

} // namespace
