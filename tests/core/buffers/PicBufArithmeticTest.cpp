#include "PicBufReference.h"
#include "support/LogCapture.h"

#include <gtest/gtest.h>

#include <bit>
#include <climits>

namespace {

long double highestOf(const SxPicBufInfo& info)
{
    return isSignedInteger(info.dataType) ? typeMax(info.dataType) : scaleOf(info);
}

/// dst + sign * src as it should be.
long double combined(const SxPicBuf& dst, const SxPicBuf& src, std::size_t i, unsigned y, int sign)
{
    const long double result = valueAt(dst, i, y) + sign * valueAt(src, i, y);
    if (dst.dataType == ExImageDataType::Float)
        return static_cast<float>(result);
    if (dst.dataType == ExImageDataType::Double)
        return static_cast<double>(result);
    return clamped(result, typeMin(dst.dataType), highestOf(dst));
}

TEST(PicBufArithmetic, SumsAndDifferencesSaturate)
{
    std::mt19937_64 random(1);
    for (const ExImageDataType type : numberTypes()) {
        for (int round = 0; round < 40; ++round) {
            const int sign = round % 2 ? 1 : -1;
            SCOPED_TRACE(typeName(type) + " round " + std::to_string(round));
            const unsigned channels = 1 + unsigned(random() % 4);
            const unsigned bpc = 1 + unsigned(random() % (SxPicBufInfo::bytesPerValue(type) * 8));
            TestPicBuf a(
                {unsigned(1 + random() % 40), unsigned(1 + random() % 5), channels, type, unsigned(random() % 3), bpc});
            TestPicBuf b(
                {unsigned(1 + random() % 40), unsigned(1 + random() % 5), channels, type, unsigned(random() % 3)});
            a.randomise(random);
            b.randomise(random);
            if (!isFloating(type) && !isSignedInteger(type)) // within full scale, as images are
                for (unsigned y = 0; y < a.record.height; ++y)
                    for (std::size_t i = 0; i < a.values(); ++i)
                        a.setBits(i, y, random() & ((2ULL << (bpc - 1)) - 1));
            const TestPicBuf before(a);
            ASSERT_TRUE(sign > 0 ? CxPicBufAPI::Add(a.record, b.record) : CxPicBufAPI::Subtract(a.record, b.record));
            EXPECT_TRUE(a.onlyPixelsWritten());
            for (unsigned y = 0; y < a.record.height; ++y) {
                for (std::size_t i = 0; i < a.values(); ++i) {
                    const bool common = y < b.record.height && i < b.values();
                    ASSERT_EQ(valueAt(a.record, i, y),
                              common ? combined(before.record, b.record, i, y, sign) : valueAt(before.record, i, y));
                }
            }
        }
    }
}

TEST(PicBufArithmetic, AnImageMayBeAddedToItself)
{
    TestPicBuf image({2, 1, 1, ExImageDataType::UInt16, 0, 12});
    image.setBits(0, 0, 1000);
    image.setBits(1, 0, 3000);
    ASSERT_TRUE(CxPicBufAPI::Add(image.record, image.record));
    EXPECT_EQ(image.get<std::uint16_t>(0, 0), 2000);
    EXPECT_EQ(image.get<std::uint16_t>(1, 0), 4095);
    ASSERT_TRUE(CxPicBufAPI::Subtract(image.record, image.record));
    EXPECT_EQ(image.get<std::uint16_t>(1, 0), 0);
}

TEST(PicBufArithmetic, PackedColoursAreCombinedByComponent)
{
    TestPicBuf a({1, 1, 1, ExImageDataType::Packed565});
    TestPicBuf b(a);
    a.setBits(0, 0, 20U | 40U << 5U | 3U << 11U);
    b.setBits(0, 0, 20U | 10U << 5U | 5U << 11U);
    const TestPicBuf before(a);
    ASSERT_TRUE(CxPicBufAPI::Add(a.record, b.record));
    EXPECT_EQ(a.get<std::uint16_t>(0, 0), 31U | 50U << 5U | 8U << 11U);
    TestPicBuf c(before);
    ASSERT_TRUE(CxPicBufAPI::Subtract(c.record, b.record));
    EXPECT_EQ(c.get<std::uint16_t>(0, 0), 0U | 30U << 5U | 0U << 11U);
    ASSERT_TRUE(CxPicBufAPI::DivideByValue(c.record, 4));
    EXPECT_EQ(c.get<std::uint16_t>(0, 0), 8U << 5U);
}

TEST(PicBufArithmetic, DifferentKindsAreRefused)
{
    const LogCapture log;
    TestPicBuf a({4, 4});
    TestPicBuf deep({4, 4, 1, ExImageDataType::UInt16});
    TestPicBuf colour({4, 4, 3});
    SxPicBuf empty;
    const TestPicBuf before(a);
    EXPECT_FALSE(CxPicBufAPI::Add(a.record, deep.record));
    EXPECT_FALSE(CxPicBufAPI::Subtract(a.record, colour.record));
    EXPECT_FALSE(CxPicBufAPI::Add(a.record, empty));
    EXPECT_EQ(a.pixels(), before.pixels());
    EXPECT_EQ(log.texts().size(), 3);
}

TEST(PicBufArithmetic, QuotientsAreRoundedAndSaturate)
{
    std::mt19937_64 random(2);
    const int divisors[] = {1,
                            -1,
                            2,
                            3,
                            7,
                            -5,
                            100,
                            255,
                            256,
                            65535,
                            65537,
                            1000003,
                            std::numeric_limits<int>::max(),
                            std::numeric_limits<int>::min()};
    for (const ExImageDataType type : numberTypes()) {
        for (const int divisor : divisors) {
            SCOPED_TRACE(typeName(type) + " by " + std::to_string(divisor));
            TestPicBuf image({33, 3, 2, type, 1});
            image.randomise(random);
            for (std::size_t i = 0; i < 8 && !isFloating(type); ++i) // halves, and both ends
                image.setBits(i, 0, std::uint64_t(divisor) * i + std::uint64_t(divisor / 2));
            image.setBits(9, 0, std::uint64_t(typeMax(type)));
            if (isSignedInteger(type))
                image.setBits(10, 0, std::uint64_t(1) << (SxPicBufInfo::bytesPerValue(type) * 8 - 1));
            if (isFloating(type))
                image.randomise(random);
            const TestPicBuf before(image);
            ASSERT_TRUE(CxPicBufAPI::DivideByValue(image.record, divisor));
            EXPECT_TRUE(image.onlyPixelsWritten());
            for (unsigned y = 0; y < 3; ++y) {
                for (std::size_t i = 0; i < image.values(); ++i) {
                    const long double value = valueAt(before.record, i, y);
                    if (isFloating(type)) {
                        ASSERT_NEAR(double(valueAt(image.record, i, y)), double(value / divisor),
                                    std::fabs(double(value)) * 1e-7);
                        continue;
                    }
                    // In whole numbers: twice the value and the divisor, so that halves are exact.
                    __extension__ using Whole = __int128;
                    const Whole whole = static_cast<Whole>(value);
                    const Whole magnitude = whole < 0 ? -whole : whole;
                    const Whole by = divisor < 0 ? -Whole(divisor) : Whole(divisor);
                    const Whole rounded = (2 * magnitude + by) / (2 * by);
                    const long double wanted =
                        static_cast<long double>((whole < 0) != (divisor < 0) ? -rounded : rounded);
                    ASSERT_EQ(valueAt(image.record, i, y), clamped(wanted, typeMin(type), typeMax(type))) << value;
                }
            }
        }
    }
}

/// Divides values of one type in a row and compares each result with the division of whole numbers.
template<typename T>
void expectQuotients(ExImageDataType type, const std::vector<T>& values, int divisor)
{
    TestPicBuf image({unsigned(values.size()), 1, 1, type});
    for (std::size_t i = 0; i < values.size(); ++i)
        image.set(i, 0, values[i]);
    ASSERT_TRUE(CxPicBufAPI::DivideByValue(image.record, divisor));
    for (std::size_t i = 0; i < values.size(); ++i) {
        const std::int64_t magnitude = std::abs(std::int64_t(values[i]));
        const std::int64_t by = std::abs(std::int64_t(divisor));
        const std::int64_t rounded = (2 * magnitude + by) / (2 * by);
        const std::int64_t wanted =
            std::clamp<std::int64_t>((values[i] < 0) != (divisor < 0) ? -rounded : rounded,
                                     std::numeric_limits<T>::min(), std::numeric_limits<T>::max());
        ASSERT_EQ(image.get<T>(i, 0), wanted) << typeName(type) << ' ' << values[i] << " / " << divisor;
    }
}

template<typename T>
void expectEveryQuotient(ExImageDataType type, std::initializer_list<int> divisors)
{
    std::vector<T> values;
    for (int value = std::numeric_limits<T>::min(); value <= std::numeric_limits<T>::max(); ++value)
        values.push_back(T(value));
    for (const int divisor : divisors)
        expectQuotients(type, values, divisor);
}

TEST(PicBufArithmetic, SmallTypesAreDividedExactly)
{
    for (int divisor = 1; divisor <= 600; ++divisor) {
        for (const int by : {divisor, -divisor}) {
            expectEveryQuotient<std::uint8_t>(ExImageDataType::UInt8, {by});
            expectEveryQuotient<std::int8_t>(ExImageDataType::Int8, {by});
        }
    }
    const auto divisors = {1,      -1,     2,      3,       -3,      7,       10,       -255,   256,    257,
                           1000,   32767,  32768,  -32769,  65535,   65536,   131069,   131070, 131071, 131072,
                           262143, 262144, 262145, 1 << 24, 1 << 30, INT_MAX, -INT_MAX, INT_MIN};
    expectEveryQuotient<std::uint8_t>(ExImageDataType::UInt8, divisors);
    expectEveryQuotient<std::int8_t>(ExImageDataType::Int8, divisors);
    expectEveryQuotient<std::uint16_t>(ExImageDataType::UInt16, divisors);
    expectEveryQuotient<std::int16_t>(ExImageDataType::Int16, divisors);
}

TEST(PicBufArithmetic, EveryDivisorOf16BitValuesStepsAtTheRightValues)
{
    // Quotients never fall where dividends rise. So they are right everywhere if they are right before and after each
    // step.
    for (int divisor = 1; divisor <= 132000; ++divisor) {
        std::vector<std::uint16_t> values = {0, 65535};
        std::vector<std::int16_t> signedValues = {0, 32767, -32768};
        for (int step = divisor - divisor / 2; step <= 65535; step += divisor) {
            for (const int value : {step - 1, step}) {
                values.push_back(std::uint16_t(value));
                if (value <= 32767) {
                    signedValues.push_back(std::int16_t(value));
                    signedValues.push_back(std::int16_t(-value));
                }
            }
        }
        expectQuotients(ExImageDataType::UInt16, values, divisor);
        expectQuotients(ExImageDataType::Int16, signedValues, divisor % 2 ? divisor : -divisor);
        if (HasFatalFailure())
            return;
    }
}

TEST(PicBufArithmetic, FloatsAreDividedAsInDoublePrecision)
{
    std::mt19937_64 random(4);
    for (const int divisor :
         {1, -1, 3, -7, 10, 255, 16777215, 16777216, 16777217, 99999999, 1 << 30, INT_MAX, INT_MIN}) {
        TestPicBuf image({20011, 1, 1, ExImageDataType::Float, 3});
        for (std::size_t i = 0; i < image.values(); ++i)
            image.setBits(i, 0, random()); // also NaN, infinities and denormal values
        for (std::size_t i = 0; i < 300; ++i)
            image.setBits(i, 0, i); // zero and the smallest
        const TestPicBuf before(image);
        ASSERT_TRUE(CxPicBufAPI::DivideByValue(image.record, divisor));
        for (std::size_t i = 0; i < image.values(); ++i) {
            const auto wanted = float(double(before.get<float>(i, 0)) / divisor);
            ASSERT_EQ(image.get<std::uint32_t>(i, 0), std::bit_cast<std::uint32_t>(wanted)) << i << " by " << divisor;
        }
    }
}

TEST(PicBufArithmetic, DivisionByZeroChangesNothing)
{
    std::mt19937_64 random(3);
    const LogCapture log;
    for (const ExImageDataType type : allTypes) {
        TestPicBuf image({5, 2, 1, type});
        image.randomise(random);
        const TestPicBuf before(image);
        EXPECT_FALSE(CxPicBufAPI::DivideByValue(image.record, 0));
        EXPECT_EQ(image.pixels(), before.pixels());
    }
    EXPECT_EQ(log.texts().size(), qsizetype(allTypes.size()));
}

} // namespace
