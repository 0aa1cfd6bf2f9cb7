// What a picture buffer's record says about itself.

#include "OwnedPicBuf.h"

#include <gtest/gtest.h>

#include <iterator>
#include <string>

namespace {

using Type = ExImageDataType;

TEST(PicBufInfo, EveryTypeIsOfOneKindAtMost)
{
    const std::string kinds = "-susususuff-"; // of None, Int8, UInt8 and so on
    for (std::size_t number = 0; number < kinds.size(); ++number) {
        const auto type = Type(number);
        EXPECT_EQ(SxPicBufInfo::isSigned(type), kinds[number] == 's') << number;
        EXPECT_EQ(SxPicBufInfo::isUnsigned(type), kinds[number] == 'u') << number;
        EXPECT_EQ(SxPicBufInfo::isFloating(type), kinds[number] == 'f') << number;
    }
}

TEST(PicBufInfo, SizesOfValues)
{
    const unsigned bytes[] = {1, 1, 1, 2, 2, 4, 4, 8, 8, 4, 8, 2, 1};
    for (unsigned number = 0; number < std::size(bytes); ++number)
        EXPECT_EQ(SxPicBufInfo::bytesPerValue(Type(number)), bytes[number]) << number;
}

TEST(PicBufInfo, UnsignedTypesByBits)
{
    EXPECT_EQ(SxPicBufInfo::unsignedTypeForBits(1), Type::UInt8);
    EXPECT_EQ(SxPicBufInfo::unsignedTypeForBits(8), Type::UInt8);
    EXPECT_EQ(SxPicBufInfo::unsignedTypeForBits(9), Type::UInt16);
    EXPECT_EQ(SxPicBufInfo::unsignedTypeForBits(16), Type::UInt16);
    EXPECT_EQ(SxPicBufInfo::unsignedTypeForBits(17), Type::UInt32);
    EXPECT_EQ(SxPicBufInfo::unsignedTypeForBits(32), Type::UInt32);
}

TEST(PicBufInfo, Colours)
{
    for (unsigned channels = 0; channels < 6; ++channels) {
        EXPECT_EQ(SxPicBufInfo::isColorChannelCount(channels), channels == 3 || channels == 4);
        EXPECT_EQ(SxPicBufInfo::isColorArray(channels, Type::UInt8), channels == 3);
        EXPECT_EQ(SxPicBufInfo::isColorArray(channels, Type::UInt16), channels == 3);
        EXPECT_FALSE(SxPicBufInfo::isColorArray(channels, Type::Int8));
        EXPECT_FALSE(SxPicBufInfo::isColorArray(channels, Type::Float));
    }
}

TEST(PicBufInfo, RowsWithoutTheirPadding)
{
    SxPicBufInfo info;
    info.width = 5;
    info.channels = 3;
    info.dataType = Type::UInt16;
    info.lineStride = 64;
    EXPECT_EQ(info.valuesPerRow(), 15U);
    EXPECT_EQ(info.rowBytes(), 30U);
}

TEST(PicBufInfo, FullScale)
{
    const auto fullScale = [](Type type, unsigned bpc, float saturation) {
        SxPicBufInfo info;
        info.dataType = type;
        info.bpc = bpc;
        info.saturation = saturation;
        return double(info.fullScale());
    };
    EXPECT_EQ(fullScale(Type::UInt16, 12, 0), 4095);
    EXPECT_EQ(fullScale(Type::UInt16, 0, 0), 65535);
    EXPECT_EQ(fullScale(Type::UInt16, 20, 0), 65535);
    EXPECT_EQ(fullScale(Type::Int16, 16, 0), 32767);
    EXPECT_EQ(fullScale(Type::Float, 32, 200.0F), 200);
    EXPECT_EQ(fullScale(Type::Double, 64, 0), 1);
    EXPECT_EQ(fullScale(Type::Packed565, 16, 0), 1);
}

TEST(OwnedPicBuf, CopiesPixelsAndRecord)
{
    SxPicBufInfo info;
    info.width = 3;
    info.height = 2;
    info.lineStride = 7;
    info.channels = 1;
    info.bpc = 6;
    info.dataType = Type::UInt8;
    info.frameNumber = 4;
    OwnedPicBuf source;
    ASSERT_TRUE(CxPicBufAPI::AllocPicBufFromHeap(source.buffer, info, false, 0));
    source.buffer.row(1)[2] = 61;
    OwnedPicBuf copy;
    ASSERT_TRUE(copy.copyFrom(source.buffer));
    EXPECT_EQ(copy.buffer.row(1)[2], 61);
    EXPECT_EQ(copy.buffer.frameNumber, 4);
    EXPECT_NE(copy.buffer.lineStride, 7U);
    EXPECT_FALSE(copy.copyFrom(SxPicBuf()));
    EXPECT_EQ(copy.buffer.data, nullptr);
}

} // namespace
