#include "PicBufReference.h"
#include "support/LogCapture.h"

#include <gtest/gtest.h>

namespace {

BufferShape randomShape(std::mt19937_64& random, ExImageDataType type, unsigned channels)
{
    return {unsigned(1 + random() % 50), unsigned(1 + random() % 6), channels, type, unsigned(random() % 7)};
}

TEST(PicBufConvert, KeepsValuesAndClipsThemToTheType)
{
    std::mt19937_64 random(2);
    for (const ExImageDataType from : numberTypes()) {
        for (const ExImageDataType to : numberTypes()) {
            SCOPED_TRACE(typeName(from) + " to " + typeName(to));
            BufferShape shape = randomShape(random, from, 1 + unsigned(random() % 4));
            TestPicBuf source(shape);
            source.randomise(random);
            shape.type = to;
            shape.padding = 3;
            TestPicBuf target(shape);
            ASSERT_TRUE(CxPicBufAPI::ConvertPicToDifBpc(source.record, target.record, false));
            EXPECT_TRUE(target.onlyPixelsWritten());
            for (unsigned y = 0; y < shape.height; ++y) {
                for (std::size_t i = 0; i < source.values(); ++i) {
                    const long double value = valueAt(source.record, i, y);
                    long double wanted = clamped(std::rint(value), typeMin(to), typeMax(to));
                    if (to == ExImageDataType::Float)
                        wanted = static_cast<float>(value);
                    else if (to == ExImageDataType::Double)
                        wanted = static_cast<double>(value);
                    ASSERT_EQ(valueAt(target.record, i, y), wanted) << value;
                }
            }
        }
    }
}

TEST(PicBufConvert, KeepsIntegersAtTheEdgesOfTheType)
{
    for (const ExImageDataType from : numberTypes()) {
        for (const ExImageDataType to : numberTypes()) {
            if (isFloating(from) || isFloating(to))
                continue;
            SCOPED_TRACE(typeName(from) + " to " + typeName(to));
            // One value at an edge among values that fit, at the start, within and at the end of a row.
            for (const long double edge : {typeMin(to), typeMax(to), typeMin(from), typeMax(from), -1.0L, 0.0L}) {
                for (int step = -1; step <= 1; ++step) {
                    const long double value = edge + static_cast<long double>(step);
                    if (value < typeMin(from) || value > typeMax(from))
                        continue;
                    for (const std::size_t at : {std::size_t(0), std::size_t(20), std::size_t(66)}) {
                        BufferShape shape{67, 2, 1, from, 3};
                        TestPicBuf source(shape);
                        for (unsigned y = 0; y < 2; ++y)
                            for (std::size_t i = 0; i < source.values(); ++i)
                                source.setBits(i, y, (i + y) % 100);
                        source.setBits(at, 1,
                                       value < 0 ? static_cast<std::uint64_t>(static_cast<std::int64_t>(value))
                                                 : static_cast<std::uint64_t>(value));
                        ASSERT_EQ(valueAt(source.record, at, 1), value);
                        shape.type = to;
                        TestPicBuf target(shape);
                        ASSERT_TRUE(CxPicBufAPI::ConvertPicToDifBpc(source.record, target.record, false));
                        EXPECT_TRUE(target.onlyPixelsWritten());
                        for (unsigned y = 0; y < 2; ++y)
                            for (std::size_t i = 0; i < source.values(); ++i)
                                ASSERT_EQ(valueAt(target.record, i, y),
                                          clamped(valueAt(source.record, i, y), typeMin(to), typeMax(to)))
                                    << value << " at " << at << ", result " << i;
                    }
                }
            }
        }
    }
}

TEST(PicBufConvert, ScalesFullScaleToFullScale)
{
    std::mt19937_64 random(3);
    for (const ExImageDataType from : numberTypes()) {
        for (const ExImageDataType to : numberTypes()) {
            for (int round = 0; round < 4; ++round) {
                BufferShape shape = randomShape(random, from, 1 + unsigned(random() % 4));
                shape.bpc = unsigned(1 + random() % (SxPicBufInfo::bytesPerValue(from) * 8));
                TestPicBuf source(shape);
                source.randomise(random);
                source.record.saturation = 700.5F;
                shape.type = to;
                shape.bpc = unsigned(1 + random() % (SxPicBufInfo::bytesPerValue(to) * 8));
                TestPicBuf target(shape);
                SCOPED_TRACE(typeName(from) + " " + std::to_string(source.record.bpc) + " to " + typeName(to) + " " +
                             std::to_string(shape.bpc));
                if (!isFloating(from)) // within full scale, for some rounds
                    for (unsigned y = 0; y < shape.height && round % 2; ++y)
                        for (std::size_t i = 0; i < source.values(); ++i)
                            source.setBits(i, y, random() & ((2ULL << (source.record.bpc - 1)) - 1));
                ASSERT_TRUE(CxPicBufAPI::ConvertPicToDifBpc(source.record, target.record, true));
                EXPECT_TRUE(target.onlyPixelsWritten());
                const long double full = scaleOf(target.record);
                for (unsigned y = 0; y < shape.height; ++y) {
                    for (std::size_t i = 0; i < source.values(); ++i) {
                        const long double exact = valueAt(source.record, i, y) * full / scaleOf(source.record);
                        const long double seen = valueAt(target.record, i, y);
                        if (isFloating(to))
                            ASSERT_LE(std::fabs(seen - exact), std::fabs(exact) * 1.2e-7L);
                        else // nearest, with room for the precision of the factor at halves
                            ASSERT_LE(std::fabs(seen - clamped(exact, typeMin(to), full)),
                                      0.5L + 1e-5L + std::fabs(exact) * 1e-15L);
                    }
                }
            }
        }
    }
}

/// Scales every value of a source type, also those above full scale.
void expectExactScaling(ExImageDataType fromType, unsigned fromBits, ExImageDataType toType, unsigned toBits)
{
    const unsigned count = 1U << (SxPicBufInfo::bytesPerValue(fromType) * 8);
    TestPicBuf source({count, 1, 1, fromType, 0, fromBits});
    TestPicBuf target({count, 1, 1, toType, 0, toBits});
    for (unsigned i = 0; i < count; ++i)
        source.setBits(i, 0, i);
    ASSERT_TRUE(CxPicBufAPI::ConvertPicToDifBpc(source.record, target.record, true));
    const std::uint64_t from = (1U << fromBits) - 1, to = (1U << toBits) - 1;
    for (unsigned i = 0; i < count; ++i) {
        const std::uint64_t wanted = (std::min<std::uint64_t>(i, from) * to * 2 + from) / (2 * from);
        const unsigned seen =
            toType == ExImageDataType::UInt8 ? target.get<std::uint8_t>(i, 0) : target.get<std::uint16_t>(i, 0);
        ASSERT_EQ(seen, wanted) << i << " from " << fromBits << " to " << toBits << " bits of " << typeName(toType);
    }
}

TEST(PicBufConvert, ScalesSmallTypesExactly)
{
    for (unsigned fromBits = 1; fromBits <= 16; ++fromBits) {
        for (unsigned toBits = 1; toBits <= 16; ++toBits) {
            for (const auto from : {ExImageDataType::UInt8, ExImageDataType::UInt16}) {
                for (const auto to : {ExImageDataType::UInt8, ExImageDataType::UInt16}) {
                    if (fromBits <= SxPicBufInfo::bytesPerValue(from) * 8 &&
                        toBits <= SxPicBufInfo::bytesPerValue(to) * 8)
                        expectExactScaling(from, fromBits, to, toBits);
                }
            }
        }
    }
}

TEST(PicBufConvert, FloatsAreScaledInDoublePrecision)
{
    std::mt19937_64 random(5);
    for (const float saturation : {0.0F, 1.0F, 4095.0F, 0.3F, 1e-38F, 3e38F}) {
        for (const unsigned bpc : {1U, 8U, 12U, 16U, 20U, 32U}) {
            TestPicBuf source({30011, 1, 1, ExImageDataType::Float, 3});
            source.record.saturation = saturation;
            const double full = saturation > 0 ? double(saturation) : 1;
            const double highest = std::ldexp(1.0, int(bpc)) - 1;
            for (std::size_t i = 0; i < source.values(); ++i) // near halves, within and beyond full scale
                source.set(i, 0, float((double(random() % 200000) - 50000 + (i % 2 ? 0.5 : 0.0)) * full / highest));
            for (std::size_t i = 0; i < source.values(); i += 3) // one step beside a half
                source.set(i, 0, std::nextafter(source.get<float>(i, 0), i % 2 ? 1e30F : -1e30F));
            for (std::size_t i = 1000; i < 2000; ++i) // any bits, also NaN and infinities
                source.setBits(i, 0, random());
            TestPicBuf target({30011, 1, 1, SxPicBufInfo::unsignedTypeForBits(bpc), 0, bpc});
            ASSERT_TRUE(CxPicBufAPI::ConvertPicToDifBpc(source.record, target.record, true));
            const auto factor = static_cast<double>(static_cast<long double>(highest) / full);
            for (std::size_t i = 0; i < source.values(); ++i) {
                const double exact = double(source.get<float>(i, 0)) * factor;
                const double scaled = exact > 0 ? std::min(exact, highest) : 0;
                ASSERT_EQ(double(valueAt(target.record, i, 0)), std::nearbyint(scaled))
                    << source.get<float>(i, 0) << " to " << bpc << " bits, saturation " << saturation;
            }
        }
    }
}

TEST(PicBufConvert, OddFloatsBecomeIntegersInRange)
{
    const float values[] = {std::numeric_limits<float>::quiet_NaN(),
                            std::numeric_limits<float>::infinity(),
                            -std::numeric_limits<float>::infinity(),
                            1e30F,
                            -1e30F,
                            2.5F,
                            -0.6F};
    TestPicBuf source({7, 1, 1, ExImageDataType::Float});
    for (unsigned i = 0; i < 7; ++i)
        source.set(i, 0, values[i]);
    for (const ExImageDataType to : numberTypes()) {
        if (isFloating(to))
            continue;
        SCOPED_TRACE(typeName(to));
        TestPicBuf target({7, 1, 1, to});
        ASSERT_TRUE(CxPicBufAPI::ConvertPicToDifBpc(source.record, target.record, false));
        const long double wanted[] = {
            0, typeMax(to), typeMin(to), typeMax(to), typeMin(to), 2, isSignedInteger(to) ? -1.0L : 0.0L};
        for (unsigned i = 0; i < 7; ++i)
            EXPECT_EQ(valueAt(target.record, i, 0), wanted[i]) << values[i];
    }
}

TEST(PicBufConvert, RefusesOtherSizesPackedColoursAndSharedMemory)
{
    const LogCapture log;
    TestPicBuf source({4, 3});
    TestPicBuf smaller({3, 3, 1, ExImageDataType::UInt16});
    TestPicBuf packed({4, 3, 1, ExImageDataType::Packed565});
    EXPECT_FALSE(CxPicBufAPI::ConvertPicToDifBpc(source.record, smaller.record, true));
    EXPECT_FALSE(CxPicBufAPI::ConvertPicToDifBpc(source.record, packed.record, true));
    EXPECT_FALSE(CxPicBufAPI::ConvertPicToDifBpc(packed.record, source.record, false));
    EXPECT_FALSE(CxPicBufAPI::ConvertPicToDifBpc(source.record, source.record, false));
    EXPECT_EQ(log.texts().size(), 4);
}

TEST(PicBufColor, EverythingBecomesEightBitColour)
{
    std::mt19937_64 random(4);
    for (const ExImageDataType type : numberTypes()) {
        for (const unsigned channels : {1U, 2U, 3U, 4U, 6U, 600U}) {
            for (const unsigned colours : {3U, 4U}) {
                SCOPED_TRACE(typeName(type) + " x " + std::to_string(channels));
                BufferShape shape = randomShape(random, type, channels);
                shape.bpc = SxPicBufInfo::bytesPerValue(type) * 8 - unsigned(random() % 4);
                TestPicBuf source(shape);
                source.randomise(random);
                source.record.saturation = 600.0F;
                TestPicBuf target({shape.width, shape.height, colours, ExImageDataType::UInt8, 1});
                ASSERT_TRUE(CxPicBufAPI::ConvertPicToRGB(source.record, target.record));
                EXPECT_TRUE(target.onlyPixelsWritten());
                for (unsigned y = 0; y < shape.height; ++y) {
                    for (unsigned x = 0; x < shape.width; ++x) {
                        for (unsigned c = 0; c < colours; ++c) {
                            const std::size_t at = x * channels + (channels < 3 ? 0 : c);
                            long double wanted = 255;
                            if (c < 3 || channels == 4)
                                wanted = clamped(valueAt(source.record, at, y) * 255 / scaleOf(source.record), 0, 255);
                            ASSERT_LE(std::fabs(valueAt(target.record, x * colours + c, y) - wanted), 0.5001L);
                        }
                    }
                }
            }
        }
    }
}

TEST(PicBufColor, PackedColoursAreStretchedToFullScale)
{
    TestPicBuf source({4, 1, 1, ExImageDataType::Packed565});
    const unsigned words[] = {0xFFFF, 0x001F, 0x07E0, 0xF800};
    for (unsigned i = 0; i < 4; ++i)
        source.setBits(i, 0, words[i]);
    TestPicBuf target({4, 1, 3});
    ASSERT_TRUE(CxPicBufAPI::ConvertPicToRGB(source.record, target.record));
    const std::vector<std::uint8_t> wanted = {255, 255, 255, 255, 0, 0, 0, 255, 0, 0, 0, 255};
    EXPECT_EQ(target.pixels(), wanted);
}

TEST(PicBufColor, EveryPackedColourBecomesTheNearestBytes)
{
    TestPicBuf source({256, 256, 1, ExImageDataType::Packed565});
    for (unsigned word = 0; word < 65536; ++word)
        source.setBits(word % 256, word / 256, word);
    TestPicBuf target({256, 256, 3});
    ASSERT_TRUE(CxPicBufAPI::ConvertPicToRGB(source.record, target.record));
    for (unsigned word = 0; word < 65536; ++word) {
        const std::uint8_t* pixel = target.record.row(word / 256) + std::size_t(word % 256) * 3;
        ASSERT_LT(std::fabs(pixel[0] - (word & 31U) * 255.0 / 31), 0.5) << word;
        ASSERT_LT(std::fabs(pixel[1] - (word >> 5U & 63U) * 255.0 / 63), 0.5) << word;
        ASSERT_LT(std::fabs(pixel[2] - (word >> 11U) * 255.0 / 31), 0.5) << word;
    }
}

TEST(PicBufColor, SwapExchangesFirstAndThirdOfEveryPixel)
{
    std::mt19937_64 random(5);
    for (const ExImageDataType type : numberTypes()) {
        for (const unsigned channels : {3U, 4U}) {
            for (const unsigned padding : {0U, 1U, 16U}) {
                SCOPED_TRACE(typeName(type));
                BufferShape shape = randomShape(random, type, channels);
                shape.padding = padding;
                TestPicBuf source(shape);
                for (unsigned y = 0; y < shape.height; ++y)
                    for (std::size_t i = 0; i < source.values(); ++i)
                        source.setBits(i, y, random()); // any bits, in floats as well: nothing is computed
                const TestPicBuf before(source);
                ASSERT_TRUE(CxPicBufAPI::SwapRedAndBlue(source.record));
                EXPECT_TRUE(source.onlyPixelsWritten());
                const std::size_t size = SxPicBufInfo::bytesPerValue(type);
                for (unsigned y = 0; y < shape.height; ++y) {
                    for (std::size_t i = 0; i < source.values(); ++i) {
                        const std::size_t c = i % channels;
                        const std::size_t other = c == 0 ? i + 2 : c == 2 ? i - 2 : i;
                        ASSERT_EQ(
                            std::memcmp(source.record.row(y) + i * size, before.record.row(y) + other * size, size), 0);
                    }
                }
            }
        }
    }
}

TEST(PicBufColor, SwapRefusesWhatHasNoRedAndBlue)
{
    const LogCapture log;
    TestPicBuf mono({4, 2, 1});
    TestPicBuf packed({4, 2, 1, ExImageDataType::Packed565});
    SxPicBuf empty;
    EXPECT_FALSE(CxPicBufAPI::SwapRedAndBlue(mono.record));
    EXPECT_FALSE(CxPicBufAPI::SwapRedAndBlue(packed.record));
    EXPECT_FALSE(CxPicBufAPI::SwapRedAndBlue(empty));
    EXPECT_EQ(log.texts().size(), 3);
}

TEST(PicBufColor, ExtractsAChannelOfEveryType)
{
    std::mt19937_64 random(6);
    for (const ExImageDataType type : allTypes) {
        for (const unsigned padding : {0U, 1U, 2U}) {
            const unsigned many = padding == 2 ? 600 : 1 + unsigned(random() % 5);
            const unsigned channels = type == ExImageDataType::Packed565 ? 1 : many;
            const unsigned channel = unsigned(random() % channels);
            SCOPED_TRACE(typeName(type) + " x " + std::to_string(channels));
            BufferShape shape = randomShape(random, type, channels);
            TestPicBuf source(shape);
            for (unsigned y = 0; y < shape.height; ++y)
                for (std::size_t i = 0; i < source.values(); ++i)
                    source.setBits(i, y, random());
            TestPicBuf target({shape.width, shape.height, 1, type, padding});
            ASSERT_TRUE(CxPicBufAPI::ExtractChannel(source.record, target.record, channel));
            EXPECT_TRUE(target.onlyPixelsWritten());
            const std::size_t size = SxPicBufInfo::bytesPerValue(type);
            for (unsigned y = 0; y < shape.height; ++y)
                for (unsigned x = 0; x < shape.width; ++x)
                    ASSERT_EQ(std::memcmp(target.record.row(y) + x * size,
                                          source.record.row(y) + (x * channels + channel) * size, size),
                              0);
            const LogCapture log;
            EXPECT_FALSE(CxPicBufAPI::ExtractChannel(source.record, target.record, channels));
        }
    }
}

} // namespace
