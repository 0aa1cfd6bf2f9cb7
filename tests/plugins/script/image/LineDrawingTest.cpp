#include "image/LineDrawing.h"

#include "PicBufHolder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <random>
#include <set>
#include <utility>

namespace {

using Pixels = std::set<std::pair<int, int>>;

const ExImageDataType drawableTypes[] = {ExImageDataType::UInt8, ExImageDataType::UInt16, ExImageDataType::Int32,
                                         ExImageDataType::UInt32};
const ExImageDataType otherTypes[] = {ExImageDataType::None,   ExImageDataType::Int8,     ExImageDataType::Int16,
                                      ExImageDataType::Int64,  ExImageDataType::UInt64,   ExImageDataType::Float,
                                      ExImageDataType::Double, ExImageDataType::Packed565};

Pixels pixelsOfLine(int x1, int y1, int x2, int y2)
{
    PicBufHolder image(8, 8, 1, ExImageDataType::UInt8);
    std::memset(image.buffer.data, 0, image.buffer.dataSize());
    fx_drawPicPixelLine(image.buffer, x1, y1, x2, y2, 0, 255);
    Pixels set;
    for (int y = 0; y < 8; ++y)
        for (int x = 0; x < 8; ++x)
            if (image.buffer.row(unsigned(y))[x] == 255)
                set.insert({x, y});
    return set;
}

// Each minor coordinate by itself: the ideal line rounded to the nearest pixel, halves towards the second end.
Pixels idealLine(int x1, int y1, int x2, int y2)
{
    const int width = std::abs(x2 - x1);
    const int height = std::abs(y2 - y1);
    const int sx = x2 < x1 ? -1 : 1;
    const int sy = y2 < y1 ? -1 : 1;
    const int length = std::max(width, height);
    const int minor = std::min(width, height);
    Pixels set;
    for (int i = 0; i <= length; ++i) {
        const int step = length == 0 ? 0 : (2 * i * minor + length) / (2 * length);
        if (width <= height)
            set.insert({x1 + sx * step, y1 + sy * i});
        else
            set.insert({x1 + sx * i, y1 + sy * step});
    }
    return set;
}

TEST(LineDrawing, TakesTheMinorStepAtATie)
{
    EXPECT_EQ(pixelsOfLine(0, 0, 4, 2), (Pixels{{0, 0}, {1, 1}, {2, 1}, {3, 2}, {4, 2}}));
    EXPECT_EQ(pixelsOfLine(0, 0, 2, 4), (Pixels{{0, 0}, {1, 1}, {1, 2}, {2, 3}, {2, 4}}));
    EXPECT_EQ(pixelsOfLine(0, 0, 5, 1), (Pixels{{0, 0}, {1, 0}, {2, 0}, {3, 1}, {4, 1}, {5, 1}}));
}

TEST(LineDrawing, DrawsFromTheFirstEnd)
{
    EXPECT_EQ(pixelsOfLine(4, 2, 0, 0), (Pixels{{4, 2}, {3, 1}, {2, 1}, {1, 0}, {0, 0}}));
}

TEST(LineDrawing, FollowsTheIdealLineBetweenAllPairsOfPixels)
{
    for (int x1 = 0; x1 < 8; ++x1)
        for (int y1 = 0; y1 < 8; ++y1)
            for (int x2 = 0; x2 < 8; ++x2)
                for (int y2 = 0; y2 < 8; ++y2)
                    ASSERT_EQ(pixelsOfLine(x1, y1, x2, y2), idealLine(x1, y1, x2, y2))
                        << x1 << "," << y1 << " to " << x2 << "," << y2;
}

TEST(LineDrawing, SetsOnlyTheLowBitsOfOneChannelInEveryDrawableType)
{
    std::mt19937_64 random(5);
    for (const auto type : drawableTypes) {
        const unsigned size = SxPicBufInfo::bytesPerValue(type);
        for (int i = 0; i < 50; ++i) {
            const unsigned channels = 1 + unsigned(random() % 4);
            PicBufHolder drawn(23, 17, channels, type);
            PicBufHolder wanted(23, 17, channels, type);
            const auto coordinate = [&](unsigned limit) { return int(random() % limit); };
            const int x1 = coordinate(23), x2 = coordinate(23), y1 = coordinate(17), y2 = coordinate(17);
            const int channel = coordinate(channels);
            const auto value = (long long)(random());
            fx_drawPicPixelLine(drawn.buffer, x1, y1, x2, y2, channel, value);
            for (const auto& [x, y] : idealLine(x1, y1, x2, y2)) {
                // The low bytes come first in memory.
                std::memcpy(wanted.buffer.row(unsigned(y)) + (unsigned(x) * channels + unsigned(channel)) * size,
                            &value, size);
            }
            ASSERT_EQ(drawn.bytes(), wanted.bytes());
        }
    }
}

TEST(PixelValue, IsCutToTheTypeAndReadBackWithItsSign)
{
    const auto stored = [](ExImageDataType type, long long value) {
        PicBufHolder image(5, 4, 3, type);
        fx_setPicPixelValue(image.buffer, 4, 3, 2, value);
        return fx_getPicPixelValue(image.buffer, 4, 3, 2);
    };
    EXPECT_EQ(stored(ExImageDataType::UInt8, 300), 44);
    EXPECT_EQ(stored(ExImageDataType::UInt8, -1), 255);
    EXPECT_EQ(stored(ExImageDataType::UInt16, 65536 + 77), 77);
    EXPECT_EQ(stored(ExImageDataType::Int32, -1), -1);
    EXPECT_EQ(stored(ExImageDataType::UInt32, -1), 4294967295LL);
    EXPECT_EQ(stored(ExImageDataType::UInt32, (1LL << 40) + 3), 3);
}

TEST(PixelValue, IsWrittenAtItsOwnPlaceAlone)
{
    for (const auto type : drawableTypes) {
        const unsigned size = SxPicBufInfo::bytesPerValue(type);
        PicBufHolder image(5, 4, 3, type);
        const auto before = image.bytes();
        fx_setPicPixelValue(image.buffer, 3, 2, 1, 0);
        const auto after = image.bytes();
        const std::size_t place = 2 * image.buffer.lineStride + (3 * 3 + 1) * size;
        for (std::size_t i = 0; i < before.size(); ++i)
            ASSERT_EQ(after[i], i >= place && i < place + size ? 0 : before[i]) << i;
    }
}

TEST(PixelValue, OfOtherTypesIsNeitherReadNorWritten)
{
    for (const auto type : otherTypes) {
        PicBufHolder image(5, 4, 1, type);
        const auto before = image.bytes();
        fx_setPicPixelValue(image.buffer, 1, 1, 0, 1);
        fx_drawPicPixelLine(image.buffer, 0, 0, 4, 3, 0, 1);
        EXPECT_EQ(image.bytes(), before);
        EXPECT_EQ(fx_getPicPixelValue(image.buffer, 1, 1, 0), 0);
    }
}

} // namespace
