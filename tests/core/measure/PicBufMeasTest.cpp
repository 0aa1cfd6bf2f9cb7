#include "CxPicBufMeas.h"
#include "core/buffers/PicBufReference.h"

#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <cstring>

namespace {

/// Two passes over the values in long double.
CxHistoData::CxPixelStats slowStats(const std::vector<long double>& values, long double black = 0)
{
    long double sum = 0;
    for (const long double value : values)
        sum += value - black;
    const auto count = static_cast<long double>(values.size());
    const long double mean = sum / count;
    long double spread = 0;
    long double squares = 0;
    long double least = values[0];
    long double greatest = values[0];
    for (const long double value : values) {
        spread += (value - black - mean) * (value - black - mean);
        squares += (value - black) * (value - black);
        least = std::min(least, value);
        greatest = std::max(greatest, value);
    }
    CxHistoData::CxPixelStats stats;
    stats.min = double(least - black);
    stats.max = double(greatest - black);
    stats.mean = double(mean);
    stats.stdev = double(std::sqrt(spread / count));
    stats.rms = double(std::sqrt(squares / count));
    return stats;
}

void expectSame(const CxHistoData::CxPixelStats& seen, const CxHistoData::CxPixelStats& wanted)
{
    EXPECT_DOUBLE_EQ(seen.min, wanted.min);
    EXPECT_DOUBLE_EQ(seen.max, wanted.max);
    EXPECT_NEAR(seen.mean, wanted.mean, wanted.rms * 1e-14);
    EXPECT_NEAR(seen.stdev, wanted.stdev, wanted.stdev * 1e-12);
    EXPECT_NEAR(seen.rms, wanted.rms, wanted.rms * 1e-13);
}

/// The values of one channel in a rectangle that lies inside.
std::vector<long double> valuesIn(const SxPicBuf& buffer, const QRect& rect, unsigned channel)
{
    std::vector<long double> values;
    for (int y = rect.top(); y <= rect.bottom(); ++y)
        for (int x = rect.left(); x <= rect.right(); ++x)
            values.push_back(valueAt(buffer, unsigned(x) * buffer.channels + channel, unsigned(y)));
    return values;
}

/// An image on a copy of the record's pixels, row padding and odd addresses included.
struct PaddedImage {
    explicit PaddedImage(const TestPicBuf& source)
    {
        SxPicBuf buffer;
        CxPicBufAPI::AllocPicBufFromHeap(buffer, source.record, false, 0);
        CxPicBufAPI::CopyPicBuf(buffer, source.record, true);
        image.setPicBuf(buffer);
    }
    CxImageData image;
};

CxHistoData measured(const CxImageData& image, const QRect& rect, int flags = CxHistoData::Statistics)
{
    CxHistoData data;
    EXPECT_TRUE(CxPicBufMeas::measureHistogram(data, &image, rect, CxHistoData::ExHistoDataFlags(flags)));
    return data;
}

TEST(PicBufMeas, AgreesWithTheDefinitionForEveryType)
{
    std::mt19937_64 random(1);
    for (const ExImageDataType type : numberTypes()) {
        for (int round = 0; round < 20; ++round) {
            SCOPED_TRACE(typeName(type) + " round " + std::to_string(round));
            const unsigned channels = 1 + unsigned(random() % 5);
            TestPicBuf source(
                {unsigned(1 + random() % 60), unsigned(1 + random() % 20), channels, type, unsigned(random() % 4)});
            source.randomise(random);
            source.record.blackLevel = 100;
            const PaddedImage padded(source);
            const int x = int(random() % source.record.width), y = int(random() % source.record.height);
            const QRect rect(x, y, 1 + int(random() % (source.record.width - unsigned(x))),
                             1 + int(random() % (source.record.height - unsigned(y))));
            const CxHistoData plain = measured(padded.image, rect);
            const CxHistoData above =
                measured(padded.image, rect, CxHistoData::Statistics | CxHistoData::SubtractBlackLevel);
            ASSERT_EQ(plain.stats.size(), qsizetype(channels));
            ASSERT_EQ(plain.channelNames.size(), qsizetype(channels));
            for (unsigned c = 0; c < channels; ++c) {
                const auto values = valuesIn(source.record, rect, c);
                expectSame(plain.stats[c], slowStats(values));
                expectSame(above.stats[c], slowStats(values, c == 3 ? 0 : 100));
            }
            for (const bool rows : {true, false}) {
                CxProfileData profile;
                ASSERT_TRUE(CxPicBufMeas::measureRowsColumnsProfileStats(rows, profile, &padded.image, rect));
                ASSERT_EQ(profile.profileCount, rows ? rect.height() : rect.width());
                EXPECT_EQ(profile.channelNames, plain.channelNames);
                ASSERT_EQ(profile.stats.size(), qsizetype(channels));
                for (unsigned c = 0; c < channels; ++c) {
                    ASSERT_EQ(profile.stats[c].size(), profile.profileCount);
                    for (int p = 0; p < profile.profileCount; ++p) {
                        const QRect line = rows ? QRect(rect.left(), rect.top() + p, rect.width(), 1)
                                                : QRect(rect.left() + p, rect.top(), 1, rect.height());
                        expectSame(profile.stats[c][p], slowStats(valuesIn(source.record, line, c)));
                    }
                }
            }
        }
    }
}

/// Whether all numbers are the same to the last bit.
bool sameBits(const CxHistoData::CxPixelStats& a, const CxHistoData::CxPixelStats& b)
{
    return std::memcmp(&a, &b, sizeof a) == 0;
}

TEST(PicBufMeas, SmallUnsignedTypesAreMeasuredTheSameWithAndWithoutAHistogram)
{
    // The histogram needs separate channels. Without it the channels are measured where they are.
    std::mt19937_64 random(6);
    for (const auto type : {ExImageDataType::UInt8, ExImageDataType::UInt16}) {
        for (unsigned channels = 1; channels <= 5; ++channels) {
            for (const unsigned width : {1U, 2U, 15U, 16U, 17U, 31U, 33U, 64U, 100U, 301U}) {
                for (const unsigned padding : {0U, 1U}) {
                    for (const bool highest : {false, true}) {
                        TestPicBuf source({width, 283, channels, type, padding});
                        source.randomise(random);
                        for (unsigned y = 0; y < source.record.height && highest; ++y)
                            for (std::size_t i = 0; i < source.values(); ++i)
                                source.setBits(i, y, ~std::uint64_t(0));
                        const PaddedImage padded(source);
                        const QRect all(0, 0, int(width), 283);
                        const auto plain = measured(padded.image, all);
                        const auto with = measured(padded.image, all, CxHistoData::Statistics | CxHistoData::Histogram);
                        ASSERT_EQ(plain.stats.size(), qsizetype(channels));
                        ASSERT_TRUE(plain.histogram.isEmpty());
                        for (unsigned c = 0; c < channels; ++c) {
                            ASSERT_TRUE(sameBits(plain.stats[c], with.stats[c]))
                                << typeName(type) << ' ' << width << ", channel " << c << " of " << channels;
                            ASSERT_EQ(plain.stats[c].stdev == 0, highest || width * 283 == 1);
                        }
                    }
                }
            }
        }
    }
}

TEST(PicBufMeas, AColumnAmongOthersIsMeasuredAsOneAlone)
{
    std::mt19937_64 random(7);
    for (const ExImageDataType type : numberTypes()) {
        for (const unsigned height : {1U, 15U, 16U, 17U, 255U, 256U, 257U, 2047U, 2048U, 2049U, 4500U}) {
            TestPicBuf source({37, height, 1 + height % 3, type, 3});
            source.randomise(random);
            for (unsigned i = 0; i < 200 && isFloating(type); ++i) { // NaN, infinities and denormal values
                const auto y = unsigned(random() % height);
                const std::size_t x = random() % (source.values() / 2);
                if (i % 4 == 0) // zeros of both signs
                    source.setBits(x, y, i % 8 ? 0 : std::uint64_t(1) << (type == ExImageDataType::Float ? 31U : 63U));
                else if (i % 50 == 1)
                    source.setBits(x, y, random());
            }
            const PaddedImage padded(source);
            CxProfileData all;
            ASSERT_TRUE(
                CxPicBufMeas::measureRowsColumnsProfileStats(false, all, &padded.image, QRect(0, 0, 37, int(height))));
            for (int x = 0; x < 37; ++x) {
                CxProfileData alone;
                ASSERT_TRUE(CxPicBufMeas::measureRowsColumnsProfileStats(false, alone, &padded.image,
                                                                         QRect(x, 0, 1, int(height))));
                for (qsizetype c = 0; c < alone.stats.size(); ++c)
                    ASSERT_TRUE(sameBits(all.stats[c][x], alone.stats[c][0]))
                        << typeName(type) << " column " << x << " of height " << height;
            }
        }
    }
}

TEST(PicBufMeas, LargeValuesLoseNothing)
{
    // A small spread on a large offset, over several blocks of a row: sums of squares in double would lose it all.
    TestPicBuf source({40000, 2, 1, ExImageDataType::UInt32});
    TestPicBuf wide({40000, 2, 1, ExImageDataType::Int64});
    TestPicBuf floating({40000, 2, 1, ExImageDataType::Double});
    for (unsigned y = 0; y < 2; ++y) {
        for (unsigned i = 0; i < 40000; ++i) {
            source.setBits(i, y, 4294967290U + i % 2);
            wide.setBits(i, y, (1ULL << 62) + i % 2);
            floating.set(i, y, 1e12 + i % 2);
        }
    }
    const QRect all(0, 0, 40000, 2);
    EXPECT_DOUBLE_EQ(measured(PaddedImage(source).image, all).stats[0].stdev, 0.5);
    EXPECT_DOUBLE_EQ(measured(PaddedImage(source).image, all).stats[0].mean, 4294967290.5);
    EXPECT_DOUBLE_EQ(measured(PaddedImage(wide).image, all).stats[0].stdev, 0.5);
    EXPECT_DOUBLE_EQ(measured(PaddedImage(floating).image, all).stats[0].stdev, 0.5);
    EXPECT_DOUBLE_EQ(measured(PaddedImage(floating).image, all).stats[0].mean, 1e12 + 0.5);
}

template<typename T>
class PicBufMeasOf : public testing::Test
{
};

using FloatingTypes = testing::Types<float, double>;
TYPED_TEST_SUITE(PicBufMeasOf, FloatingTypes);

TYPED_TEST(PicBufMeasOf, AFirstValueFarFromTheOthersCostsNoDigits)
{
    constexpr unsigned width = 1000000;
    TestPicBuf source({width, 1, 1, sizeof(TypeParam) == 4 ? ExImageDataType::Float : ExImageDataType::Double});
    source.set(0, 0, TypeParam(4096.25));
    for (unsigned i = 1; i < width; ++i)
        source.set(i, 0, TypeParam(1 + 0.25 * (i % 5)));
    const QRect all(0, 0, int(width), 1);
    expectSame(measured(PaddedImage(source).image, all).stats[0], slowStats(valuesIn(source.record, all, 0)));
}

TEST(PicBufMeas, AConstantImageHasNoDeviation)
{
    for (const ExImageDataType type : numberTypes()) {
        SCOPED_TRACE(typeName(type));
        TestPicBuf source({641, 7, 1, type});
        for (unsigned y = 0; y < 7; ++y)
            for (unsigned i = 0; i < 641; ++i)
                if (type == ExImageDataType::Float)
                    source.set(i, y, 0.1F);
                else if (type == ExImageDataType::Double)
                    source.set(i, y, 0.1);
                else
                    source.setBits(i, y, 0x7FEDCBA987654321ULL);
        const auto stats = measured(PaddedImage(source).image, QRect(0, 0, 641, 7)).stats[0];
        EXPECT_EQ(stats.stdev, 0.0);
        EXPECT_EQ(stats.min, double(valueAt(source.record, 0, 0)));
        EXPECT_EQ(stats.max, stats.min);
        EXPECT_EQ(stats.mean, stats.min);
    }
}

TEST(PicBufMeas, PackedColoursAreMeasuredByComponent)
{
    TestPicBuf source({2, 1, 1, ExImageDataType::Packed565});
    source.setBits(0, 0, 10U | 60U << 5U | 31U << 11U);
    source.setBits(1, 0, 20U | 40U << 5U | 1U << 11U);
    const CxHistoData data = measured(PaddedImage(source).image, QRect(0, 0, 2, 1));
    EXPECT_EQ(data.channelNames,
              (QList<QString>{QStringLiteral("Blue"), QStringLiteral("Green"), QStringLiteral("Red")}));
    EXPECT_EQ(data.stats[0].mean, 15.0);
    EXPECT_EQ(data.stats[1].mean, 50.0);
    EXPECT_EQ(data.stats[2].max, 31.0);
}

TEST(PicBufMeas, ChannelsAreNamedInTheOrderOfMemory)
{
    const QRect all(0, 0, 1, 1);
    EXPECT_EQ(measured(PaddedImage(TestPicBuf({1, 1, 1})).image, all).channelNames,
              QList<QString>{QStringLiteral("Mono")});
    EXPECT_EQ(measured(PaddedImage(TestPicBuf({1, 1, 4})).image, all).channelNames,
              (QList<QString>{QStringLiteral("Blue"), QStringLiteral("Green"), QStringLiteral("Red"),
                              QStringLiteral("Alpha")}));
}

TEST(PicBufMeas, RectanglesAreClippedAndOnesOutsideFail)
{
    std::mt19937_64 random(2);
    TestPicBuf source({20, 10});
    source.randomise(random);
    const PaddedImage padded(source);
    expectSame(measured(padded.image, QRect(-5, -5, 10, 100)).stats[0],
               slowStats(valuesIn(source.record, QRect(0, 0, 5, 10), 0)));
    const QRect outside[] = {QRect(20, 0, 5, 5),
                             QRect(0, 10, 5, 5),
                             QRect(-5, 0, 5, 5),
                             QRect(0, -5, 5, 5),
                             QRect(3, 3, 0, 0),
                             QRect(3, 3, -4, 2),
                             QRect(),
                             QRect(100, 100, -80, -80)};
    for (const QRect& rect : outside) {
        CxHistoData data;
        CxProfileData profile;
        EXPECT_FALSE(CxPicBufMeas::measureHistogram(data, &padded.image, rect, CxHistoData::Statistics));
        EXPECT_FALSE(CxPicBufMeas::measureRowsColumnsProfileStats(true, profile, &padded.image, rect));
    }
}

TEST(PicBufMeas, CornersAnywhereInTheRangeOfIntegersAreClipped)
{
    std::mt19937_64 random(3);
    TestPicBuf source({4, 3});
    source.randomise(random);
    const PaddedImage padded(source);
    constexpr int corners[] = {INT_MIN, INT_MIN + 1, -1, 0, 1, 2, 3, 4, INT_MAX - 1, INT_MAX};
    for (const int left : corners)
        for (const int top : corners)
            for (const int right : corners)
                for (const int bottom : corners) {
                    const QRect rect(QPoint(left, top), QPoint(right, bottom));
                    const QRect inside(QPoint(std::max(left, 0), std::max(top, 0)),
                                       QPoint(std::min(right, 3), std::min(bottom, 2)));
                    const bool measurable = inside.left() <= inside.right() && inside.top() <= inside.bottom();
                    SCOPED_TRACE(testing::Message() << left << ' ' << top << ' ' << right << ' ' << bottom);
                    CxHistoData data;
                    CxProfileData profile;
                    ASSERT_EQ(CxPicBufMeas::measureHistogram(data, &padded.image, rect, CxHistoData::Statistics),
                              measurable);
                    for (const bool rows : {true, false}) {
                        ASSERT_EQ(CxPicBufMeas::measureRowsColumnsProfileStats(rows, profile, &padded.image, rect),
                                  measurable);
                        ASSERT_EQ(profile.profileCount, !measurable ? 0 : rows ? inside.height() : inside.width());
                    }
                    if (measurable)
                        expectSame(data.stats[0], slowStats(valuesIn(source.record, inside, 0)));
                }
}

TEST(PicBufMeas, AnImageWithoutPixelsFails)
{
    const CxImageData withoutBuffer;
    CxImageData withoutMemory;
    SxPicBuf record = TestPicBuf({4, 3}).record;
    record.data = nullptr;
    withoutMemory.setPicBuf(record);
    PaddedImage withoutArea(TestPicBuf({4, 3}));
    withoutArea.image.picBuf()->width = 0;
    CxHistoData data;
    CxProfileData profile;
    const CxImageData* const images[] = {nullptr, &withoutBuffer, &withoutMemory, &withoutArea.image};
    for (const CxImageData* image : images) {
        EXPECT_FALSE(CxPicBufMeas::measureHistogram(data, image, QRect(0, 0, 1, 1), CxHistoData::Statistics));
        for (const bool rows : {true, false})
            EXPECT_FALSE(CxPicBufMeas::measureRowsColumnsProfileStats(rows, profile, image, QRect(0, 0, 1, 1)));
    }
}

TEST(PicBufMeas, NotANumberSpoilsTheMeanButNotTheEnds)
{
    TestPicBuf source({20, 1, 1, ExImageDataType::Float});
    for (unsigned i = 0; i < 20; ++i)
        source.set(i, 0, float(i));
    source.set(0, 0, std::numeric_limits<float>::quiet_NaN());
    source.set(13, 0, std::numeric_limits<float>::quiet_NaN());
    const auto stats = measured(PaddedImage(source).image, QRect(0, 0, 20, 1)).stats[0];
    EXPECT_TRUE(std::isnan(stats.mean));
    EXPECT_TRUE(std::isnan(stats.stdev));
    EXPECT_EQ(stats.min, 1.0);
    EXPECT_EQ(stats.max, 19.0);
}

TEST(PicBufMeas, TheHistogramCoversFullScale)
{
    TestPicBuf source({4096, 1, 1, ExImageDataType::UInt16, 0, 12});
    for (unsigned i = 0; i < 4096; ++i)
        source.setBits(i, 0, i);
    const CxHistoData data = measured(PaddedImage(source).image, QRect(0, 0, 4096, 1), CxHistoData::Histogram);
    EXPECT_TRUE(data.stats.isEmpty());
    ASSERT_EQ(data.histogram.size(), 1);
    ASSERT_EQ(data.histogram[0].size(), 256);
    for (const quint64 count : data.histogram[0])
        EXPECT_EQ(count, 16U);
}

TEST(PicBufMeas, SignedAndFloatingHistogramsHaveTheirOwnRange)
{
    TestPicBuf bytes({4, 1, 1, ExImageDataType::Int8});
    TestPicBuf floats({4, 1, 1, ExImageDataType::Float});
    const int values[] = {-128, -1, 0, 127};
    const float shares[] = {0.0F, 0.5F, 1.0F, -3.0F};
    for (unsigned i = 0; i < 4; ++i) {
        bytes.set(i, 0, std::int8_t(values[i]));
        floats.set(i, 0, shares[i]);
    }
    const QRect all(0, 0, 4, 1);
    const auto signedBins = measured(PaddedImage(bytes).image, all, CxHistoData::Histogram).histogram[0];
    EXPECT_EQ(signedBins[0] + signedBins[127] + signedBins[128] + signedBins[255], 4U);
    const auto floatBins = measured(PaddedImage(floats).image, all, CxHistoData::Histogram).histogram[0];
    EXPECT_EQ(floatBins[0], 2U);
    EXPECT_EQ(floatBins[128], 1U);
    EXPECT_EQ(floatBins[255], 1U);
}

TEST(PicBufMeas, LuminanceIsAFurtherChannelOfColours)
{
    TestPicBuf source({2, 1, 3});
    for (unsigned i = 0; i < 6; ++i)
        source.setBits(i, 0, i < 3 ? 100 : i == 5 ? 200 : 0);
    const CxHistoData data =
        measured(PaddedImage(source).image, QRect(0, 0, 2, 1), CxHistoData::Statistics | CxHistoData::Luminance);
    ASSERT_EQ(data.stats.size(), 4);
    EXPECT_EQ(data.channelNames.last(), QStringLiteral("Luminance"));
    EXPECT_NEAR(data.stats[3].max, 100.0, 1e-9);
    EXPECT_NEAR(data.stats[3].min, 59.8, 1e-9);
    EXPECT_EQ(measured(PaddedImage(TestPicBuf({1, 1, 1})).image, QRect(0, 0, 1, 1),
                       CxHistoData::Statistics | CxHistoData::Luminance)
                  .stats.size(),
              1);
}

} // namespace
