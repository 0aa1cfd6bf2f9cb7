#include "PicBufReference.h"
#include "support/LogCapture.h"

#include <gtest/gtest.h>

namespace {

std::uint64_t magnitudeAt(const SxPicBuf& buffer, std::size_t index, unsigned y)
{
    return static_cast<std::uint64_t>(std::fabs(valueAt(buffer, index, y)));
}

unsigned bitsOf(std::uint64_t value)
{
    unsigned bits = 1;
    while (bits < 64 && value >> bits)
        ++bits;
    return bits;
}

TEST(PicBufDetect, AgreesWithLookingAtEveryValue)
{
    std::mt19937_64 random(1);
    for (const ExImageDataType type : numberTypes()) {
        for (int round = 0; round < 40; ++round) {
            SCOPED_TRACE(typeName(type) + " round " + std::to_string(round));
            TestPicBuf source({unsigned(1 + random() % 40), unsigned(1 + random() % 9), unsigned(1 + random() % 4),
                               type, unsigned(random() % 5)});
            source.randomise(random);
            const unsigned width = SxPicBufInfo::bytesPerValue(type) * 8;
            const unsigned shift = unsigned(random() % width);
            std::uint64_t largest = 0;
            bool negative = false;
            for (unsigned y = 0; y < source.record.height; ++y) {
                for (std::size_t i = 0; i < source.values(); ++i) {
                    if (!isFloating(type) && round % 4)
                        source.setBits(i, y, random() >> (64 - width) >> shift);
                    largest = std::max(largest, magnitudeAt(source.record, i, y));
                    negative = negative || valueAt(source.record, i, y) < 0;
                }
            }
            EXPECT_EQ(CxPicBufAPI::DetectNegativePixelValue(source.record), negative);
            EXPECT_EQ(CxPicBufAPI::DetectMaxAbsValue(source.record), largest);
            if (isFloating(type))
                continue;
            unsigned bpc = 0;
            EXPECT_TRUE(CxPicBufAPI::DetectColorBitDepth(source.record, bpc, true));
            EXPECT_EQ(bpc, bitsOf(largest));
            source.record.bpc = bpc;
            EXPECT_TRUE(CxPicBufAPI::CheckPicValidData(source.record));
            source.record.bpc = bpc - 1;
            EXPECT_EQ(CxPicBufAPI::CheckPicValidData(source.record), largest == 0);
        }
    }
}

TEST(PicBufDetect, FindsTheBitsWhereverALargeImageHasThem)
{
    for (const ExImageDataType type : numberTypes()) {
        if (isFloating(type))
            continue;
        for (const unsigned padding : {0U, 5U}) {
            TestPicBuf source({301, 401, 1, type, padding});
            for (unsigned y = 0; y < source.record.height; ++y)
                for (std::size_t i = 0; i < source.values(); ++i)
                    source.setBits(i, y, 5);
            const unsigned width = SxPicBufInfo::bytesPerValue(type) * 8;
            for (const unsigned y : {0U, 77U, 200U, 400U}) {
                for (const std::size_t i : {std::size_t(0), std::size_t(150), source.values() - 1}) {
                    SCOPED_TRACE(typeName(type) + " at " + std::to_string(i) + ", " + std::to_string(y));
                    unsigned bpc = 0;
                    // The highest bit alone is the smallest integer of a signed type.
                    for (const unsigned bits : {width, width - 1}) {
                        source.setBits(i, y, std::uint64_t(1) << (bits - 1));
                        EXPECT_TRUE(CxPicBufAPI::DetectColorBitDepth(source.record, bpc, true));
                        EXPECT_EQ(bpc, bits);
                    }
                    source.setBits(i, y, 5);
                    EXPECT_TRUE(CxPicBufAPI::DetectColorBitDepth(source.record, bpc, true));
                    EXPECT_EQ(bpc, 3U);
                }
            }
        }
    }
}

TEST(PicBufDetect, BytesBehindARowDoNotCount)
{
    TestPicBuf source({3, 2, 1, ExImageDataType::UInt8, 13});
    for (unsigned y = 0; y < 2; ++y)
        for (std::size_t i = 0; i < 3; ++i)
            source.setBits(i, y, 1);
    unsigned bpc = 0;
    EXPECT_TRUE(CxPicBufAPI::DetectColorBitDepth(source.record, bpc, true));
    EXPECT_EQ(bpc, 1U);
}

TEST(PicBufDetect, ZeroUsesOneBit)
{
    TestPicBuf source({2, 1, 1, ExImageDataType::UInt16});
    source.setBits(0, 0, 0);
    source.setBits(1, 0, 0);
    unsigned bpc = 0;
    EXPECT_TRUE(CxPicBufAPI::DetectColorBitDepth(source.record, bpc, true));
    EXPECT_EQ(bpc, 1U);
}

TEST(PicBufDetect, TheSmallestIntegerNeedsAllBits)
{
    TestPicBuf source({1, 1, 1, ExImageDataType::Int64});
    source.set<std::int64_t>(0, 0, std::numeric_limits<std::int64_t>::min());
    unsigned bpc = 0;
    EXPECT_TRUE(CxPicBufAPI::DetectColorBitDepth(source.record, bpc, true));
    EXPECT_EQ(bpc, 64U);
    EXPECT_EQ(CxPicBufAPI::DetectMaxAbsValue(source.record), 1ULL << 63);
    EXPECT_TRUE(CxPicBufAPI::DetectNegativePixelValue(source.record));
}

TEST(PicBufDetect, AQuickLookSeesEveryFourthRow)
{
    TestPicBuf source({3, 6, 1, ExImageDataType::UInt16});
    for (unsigned y = 0; y < 6; ++y)
        for (unsigned i = 0; i < 3; ++i)
            source.setBits(i, y, y == 4 ? 7 : y == 0 ? 1 : 1000);
    unsigned bpc = 0;
    EXPECT_TRUE(CxPicBufAPI::DetectColorBitDepth(source.record, bpc, false));
    EXPECT_EQ(bpc, 3U);
    EXPECT_TRUE(CxPicBufAPI::DetectColorBitDepth(source.record, bpc, true));
    EXPECT_EQ(bpc, 10U);
}

TEST(PicBufDetect, FloatsHaveNoBitDepthAndAreAlwaysValid)
{
    const LogCapture log;
    TestPicBuf source({2, 1, 1, ExImageDataType::Float});
    source.set(0, 0, 1e30F);
    source.set(1, 0, std::numeric_limits<float>::quiet_NaN());
    unsigned bpc = 5;
    EXPECT_FALSE(CxPicBufAPI::DetectColorBitDepth(source.record, bpc, true));
    EXPECT_EQ(bpc, 5U);
    EXPECT_EQ(log.texts().size(), 1);
    EXPECT_TRUE(CxPicBufAPI::CheckPicValidData(source.record));
    EXPECT_EQ(CxPicBufAPI::DetectMaxAbsValue(source.record), std::numeric_limits<std::uint64_t>::max());
    source.set(0, 0, -2.75F);
    EXPECT_EQ(CxPicBufAPI::DetectMaxAbsValue(source.record), 2U);
    EXPECT_TRUE(CxPicBufAPI::DetectNegativePixelValue(source.record));
}

} // namespace
