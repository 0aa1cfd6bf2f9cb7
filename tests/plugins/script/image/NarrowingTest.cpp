#include "image/Narrowing.h"

#include "PicBufHolder.h"
#include "core/buffers/PixelTypes.h"
#include "support/PixelTypeOf.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <limits>
#include <random>

namespace {

using Type = ExImageDataType;

struct Result {
    bool converted = false;
    Type type = Type::None;
    unsigned bpc = 0;
    std::vector<double> values;
    bool isColor = false;
};

template<typename T>
void appendValues(const SxPicBuf& buffer, std::vector<double>& values)
{
    for (unsigned y = 0; y < buffer.height; ++y)
        for (unsigned x = 0; x < buffer.width * buffer.channels; ++x)
            values.push_back(double(reinterpret_cast<const T*>(buffer.row(y))[x]));
}

std::vector<double> valuesOf(const SxPicBuf& buffer)
{
    std::vector<double> values;
    if (!visitNumberType(buffer.dataType, [&]<typename T>(std::type_identity<T>) { appendValues<T>(buffer, values); }))
        appendValues<std::uint8_t>(buffer, values);
    return values;
}

// A 3 x 2 image with these values over and over.
template<typename T>
Result narrowed(const std::vector<T>& values, unsigned channels = 1)
{
    PicBufHolder in(3, 2, channels, pixelTypeOf<T>());
    std::size_t next = 0;
    for (unsigned y = 0; y < 2; ++y)
        for (unsigned x = 0; x < 3 * channels; ++x)
            reinterpret_cast<T*>(in.buffer.row(y))[x] = values[next++ % values.size()];

    SxPicBuf out;
    Result result;
    result.converted = fx_img_convertToBestBpc(out, in.buffer);
    const SxPicBuf& kept = result.converted ? out : in.buffer;
    result.type = kept.dataType;
    result.bpc = kept.bpc;
    result.values = valuesOf(kept);
    result.isColor = kept.isColor;
    EXPECT_EQ(kept.width, 3U);
    EXPECT_EQ(kept.height, 2U);
    EXPECT_EQ(kept.channels, channels);
    EXPECT_EQ(result.converted, out.data != nullptr);
    CxPicBufAPI::FreePicBuf(out, true);
    return result;
}

template<typename T>
void expectNarrowed(std::vector<T> values, bool converted, Type type, unsigned bpc)
{
    const Result result = narrowed<T>(values);
    EXPECT_EQ(result.converted, converted) << +values[0];
    EXPECT_EQ(unsigned(result.type), unsigned(type)) << +values[0];
    EXPECT_EQ(result.bpc, bpc) << +values[0];
}

TEST(Narrowing, LeavesBytesFloatsAndPackedColourAlone)
{
    expectNarrowed<std::uint8_t>({1}, false, Type::UInt8, 8);
    expectNarrowed<float>({0.5F}, false, Type::Float, 32);
    for (const Type type : {Type::None, Type::Packed565}) {
        PicBufHolder in(3, 2, 1, type);
        SxPicBuf out;
        EXPECT_FALSE(fx_img_convertToBestBpc(out, in.buffer));
        EXPECT_EQ(in.buffer.dataType, type);
    }
}

TEST(Narrowing, TurnsUnsignedValuesOfExactly8BitsIntoBytes)
{
    expectNarrowed<std::uint16_t>({255, 3}, true, Type::UInt8, 8);
    expectNarrowed<std::uint32_t>({128}, true, Type::UInt8, 8);
    expectNarrowed<std::uint64_t>({200}, true, Type::UInt8, 8);
    expectNarrowed<std::uint16_t>({127}, false, Type::UInt16, 7);
    expectNarrowed<std::uint16_t>({0}, false, Type::UInt16, 1);
    expectNarrowed<std::uint16_t>({256}, false, Type::UInt16, 9);
}

TEST(Narrowing, TurnsWideUnsignedValuesIntoTheNextThatHoldsThem)
{
    expectNarrowed<std::uint32_t>({3}, true, Type::UInt16, 2);
    expectNarrowed<std::uint32_t>({65535}, true, Type::UInt16, 16);
    expectNarrowed<std::uint32_t>({65536}, false, Type::UInt32, 17);
    expectNarrowed<std::uint64_t>({65535}, true, Type::UInt16, 16);
    expectNarrowed<std::uint64_t>({65536}, true, Type::UInt32, 17);
    expectNarrowed<std::uint64_t>({0xFFFFFFFFU}, true, Type::UInt32, 32);
    expectNarrowed<std::uint64_t>({0x100000000U}, false, Type::UInt64, 33);
    expectNarrowed<std::uint64_t>({UINT64_MAX}, false, Type::UInt64, 64);
}

TEST(Narrowing, KeepsTheSignWhereThereAreNegativeValues)
{
    expectNarrowed<std::int8_t>({-1}, false, Type::Int8, 8);
    expectNarrowed<std::int16_t>({-128}, true, Type::Int8, 8);
    expectNarrowed<std::int16_t>({-1}, false, Type::Int16, 1);
    expectNarrowed<std::int32_t>({-300}, true, Type::Int16, 9);
    expectNarrowed<std::int32_t>({-70000}, false, Type::Int32, 17);
    expectNarrowed<std::int64_t>({-130, 5}, true, Type::Int8, 8);
    expectNarrowed<std::int64_t>({-5, 300}, true, Type::Int16, 9);
    expectNarrowed<std::int64_t>({-5, 70000}, true, Type::Int32, 17);
    expectNarrowed<std::int64_t>({-0x100000000LL}, false, Type::Int64, 33);
    expectNarrowed<std::int64_t>({INT64_MIN}, false, Type::Int64, 64);
}

TEST(Narrowing, CountsBitsInTwosWhereThereAreNone)
{
    expectNarrowed<std::int8_t>({127}, true, Type::UInt8, 8);
    expectNarrowed<std::int16_t>({256}, true, Type::UInt8, 8);
    expectNarrowed<std::int16_t>({257}, true, Type::UInt16, 10);
    expectNarrowed<std::int16_t>({1024}, true, Type::UInt16, 10);
    expectNarrowed<std::int16_t>({1025}, true, Type::UInt16, 12);
    expectNarrowed<std::int16_t>({32767}, true, Type::UInt16, 16);
    expectNarrowed<std::int32_t>({65536}, true, Type::UInt16, 16);
    expectNarrowed<std::int32_t>({65537}, true, Type::UInt32, 18);
    expectNarrowed<std::int32_t>({INT32_MAX}, true, Type::UInt32, 32);
    expectNarrowed<std::int64_t>({0}, true, Type::UInt8, 8);
    expectNarrowed<std::int64_t>({5000}, true, Type::UInt16, 14);
    expectNarrowed<std::int64_t>({0x100000000LL}, true, Type::UInt32, 32);
    expectNarrowed<std::int64_t>({0x100000001LL}, true, Type::UInt64, 34);
    expectNarrowed<std::int64_t>({INT64_MAX}, true, Type::UInt64, 64);
}

TEST(Narrowing, TurnsDoublesIntoFloatsOf4Bits)
{
    expectNarrowed<double>({0.5, -1e10}, true, Type::Float, 4);
    EXPECT_EQ(narrowed<double>({0.5, -2.25}).values[1], -2.25);
}

TEST(Narrowing, DecidesAboutColourByTheNewType)
{
    EXPECT_TRUE(narrowed<std::int32_t>({5}, 3).isColor);
    EXPECT_TRUE(narrowed<std::uint32_t>({300}, 3).isColor);
    EXPECT_FALSE(narrowed<std::int64_t>({70000}, 3).isColor);
    EXPECT_FALSE(narrowed<double>({0.5}, 3).isColor);
    EXPECT_FALSE(narrowed<std::int32_t>({5}, 1).isColor);
    EXPECT_FALSE(narrowed<std::int32_t>({5}, 4).isColor);
}

// Values that fit survive. Others are clipped: the bits are counted without a sign, which signed types need one for.
template<typename T>
void keepsRandomValues(std::mt19937_64& random)
{
    for (int i = 0; i < 300; ++i) {
        const unsigned bits = unsigned(random() % (sizeof(T) * 8));
        std::vector<T> values(6);
        for (T& value : values) {
            value = T(random() & ((std::uint64_t(2) << bits) - 1));
            if (std::is_signed_v<T> && random() % 2)
                value = T(-(value >> 1));
        }
        const Result result = narrowed<T>(values);
        const auto [low, high] = std::minmax_element(result.values.begin(), result.values.end());
        std::vector<double> wanted(values.begin(), values.end());
        for (double& value : wanted) {
            if (result.type == Type::UInt8)
                value = std::min(value, 255.0);
            else if (result.type == Type::Int8)
                value = std::clamp(value, -128.0, 127.0);
            else if (result.type == Type::Int16)
                value = std::clamp(value, -32768.0, 32767.0);
            else if (result.type == Type::Int32)
                value = std::clamp(value, -2147483648.0, 2147483647.0);
            else if (result.type == Type::UInt16)
                value = std::min(value, 65535.0);
            else if (result.type == Type::UInt32)
                value = std::min(value, 4294967295.0);
        }
        ASSERT_EQ(result.values, wanted) << "type " << unsigned(pixelTypeOf<T>()) << " to " << unsigned(result.type)
                                         << ", values from " << *low << " to " << *high;
    }
}

TEST(Narrowing, KeepsValues)
{
    std::mt19937_64 random(6);
    keepsRandomValues<std::uint8_t>(random);
    keepsRandomValues<std::uint16_t>(random);
    keepsRandomValues<std::uint32_t>(random);
    keepsRandomValues<std::uint64_t>(random);
    keepsRandomValues<std::int8_t>(random);
    keepsRandomValues<std::int16_t>(random);
    keepsRandomValues<std::int32_t>(random);
    keepsRandomValues<std::int64_t>(random);
}

} // namespace
