#include "views/DisplayImage.h"

#include "Pictures.h"

#include <limits>
#include <numeric>

namespace {

template<typename T>
std::vector<int> shades(ExImageDataType type, unsigned bpc, const std::vector<T>& values, float saturation = 0)
{
    const auto image = picture(type, bpc, unsigned(values.size()), 1, values);
    image->picBuf()->saturation = saturation;
    const QImage shown = displayImage(*image->picBuf());
    EXPECT_EQ(shown.format(), QImage::Format_Grayscale8);
    std::vector<int> result;
    for (int x = 0; x < shown.width(); ++x)
        result.push_back(shown.constScanLine(0)[x]);
    return result;
}

using Shades = std::vector<int>;

TEST(DisplayImage, TwelveBitFullScaleIsWhite)
{
    EXPECT_EQ(shades<std::uint16_t>(ExImageDataType::UInt16, 12, {0, 16, 2048, 4095}), (Shades{0, 1, 128, 255}));
}

TEST(DisplayImage, ValuesAboveTheirBitsAreWhite)
{
    EXPECT_EQ(shades<std::uint16_t>(ExImageDataType::UInt16, 12, {4096, 65535}), (Shades{255, 255}));
}

TEST(DisplayImage, EightBitValuesStayAsTheyAre)
{
    EXPECT_EQ(shades<std::uint8_t>(ExImageDataType::UInt8, 8, {0, 1, 127, 254, 255}), (Shades{0, 1, 127, 254, 255}));
}

TEST(DisplayImage, WithoutBitDepthTheTypeDecides)
{
    EXPECT_EQ(shades<std::uint16_t>(ExImageDataType::UInt16, 0, {0, 32896, 65535}), (Shades{0, 128, 255}));
}

TEST(DisplayImage, NegativeValuesAreBlack)
{
    EXPECT_EQ(shades<std::int8_t>(ExImageDataType::Int8, 8, {-128, -1, 0, 127}), (Shades{0, 0, 0, 255}));
    EXPECT_EQ(shades<std::int16_t>(ExImageDataType::Int16, 12, {-5, 4095}), (Shades{0, 255}));
    EXPECT_EQ(shades<std::int32_t>(ExImageDataType::Int32, 20, {-5, 1048575}), (Shades{0, 255}));
    EXPECT_EQ(shades<std::int64_t>(ExImageDataType::Int64, 40, {-5, 1099511627775}), (Shades{0, 255}));
}

TEST(DisplayImage, WideUnsignedTypesReachTheirLimits)
{
    EXPECT_EQ(shades<std::uint32_t>(ExImageDataType::UInt32, 32, {0, 0xFFFFFFFFU}), (Shades{0, 255}));
    EXPECT_EQ(shades<std::uint64_t>(ExImageDataType::UInt64, 64, {0, ~std::uint64_t(0)}), (Shades{0, 255}));
}

TEST(DisplayImage, FloatsAreScaledBySaturation)
{
    EXPECT_EQ(shades<float>(ExImageDataType::Float, 32, {-1, 0, 50, 100, 1000}, 100), (Shades{0, 0, 128, 255, 255}));
}

TEST(DisplayImage, FloatsWithoutSaturationAreScaledByTheirRange)
{
    EXPECT_EQ(shades<float>(ExImageDataType::Float, 32, {-1, 0, 1}), (Shades{0, 128, 255}));
    EXPECT_EQ(shades<double>(ExImageDataType::Double, 64, {10, 20}), (Shades{0, 255}));
}

TEST(DisplayImage, NotANumberIsBlackAndInfinityWhiteAndNeitherCountsForTheRange)
{
    constexpr float nan = std::numeric_limits<float>::quiet_NaN();
    constexpr float infinity = std::numeric_limits<float>::infinity();
    EXPECT_EQ(shades<float>(ExImageDataType::Float, 32, {nan, 1, 3, infinity, -infinity, 2}),
              (Shades{0, 0, 255, 255, 0, 128}));
    EXPECT_EQ(shades<float>(ExImageDataType::Float, 32, {nan, nan}), (Shades{0, 0}));
}

TEST(DisplayImage, ColourKeepsItsChannelOrderAndDropsAlpha)
{
    const auto image = picture<std::uint8_t>(ExImageDataType::UInt8, 8, 2, 4, {1, 2, 3, 0, 4, 5, 6, 255});
    const QImage shown = displayImage(*image->picBuf());
    ASSERT_EQ(shown.size(), QSize(2, 1));
    EXPECT_EQ(shown.pixel(0, 0), qRgb(3, 2, 1));
    EXPECT_EQ(shown.pixel(1, 0), qRgb(6, 5, 4));
}

TEST(DisplayImage, TwoChannelsShowTheFirst)
{
    const auto image = picture<std::uint8_t>(ExImageDataType::UInt8, 8, 2, 2, {10, 99, 20, 99});
    const QImage shown = displayImage(*image->picBuf());
    EXPECT_EQ(shown.pixel(0, 0), qRgb(10, 10, 10));
    EXPECT_EQ(shown.pixel(1, 0), qRgb(20, 20, 20));
}

TEST(DisplayImage, PackedColourIsUnpacked)
{
    const auto image = picture<std::uint16_t>(ExImageDataType::Packed565, 16, 2, 1, {0xF800, 0x001F});
    const QImage shown = displayImage(*image->picBuf());
    EXPECT_EQ(shown.pixel(0, 0), qRgb(255, 0, 0));
    EXPECT_EQ(shown.pixel(1, 0), qRgb(0, 0, 255));
}

TEST(DisplayImage, PackedColoursLookAsTheirConversionDoes)
{
    std::vector<std::uint16_t> words(65536);
    std::iota(words.begin(), words.end(), std::uint16_t(0));
    const auto image = picture<std::uint16_t>(ExImageDataType::Packed565, 16, 256, 1, words);
    const auto converted =
        picture<std::uint8_t>(ExImageDataType::UInt8, 8, 256, 3, std::vector<std::uint8_t>(words.size() * 3));
    ASSERT_TRUE(CxPicBufAPI::ConvertPicToRGB(*image->picBuf(), *converted->picBuf()));
    EXPECT_EQ(displayImage(*image->picBuf()), displayImage(*converted->picBuf()));
}

TEST(DisplayImage, EveryRowIsShownDespitePadding)
{
    const auto image = picture<std::uint16_t>(ExImageDataType::UInt16, 16, 2, 1, {0, 65535, 65535, 0, 0, 65535});
    const QImage shown = displayImage(*image->picBuf());
    ASSERT_EQ(shown.size(), QSize(2, 3));
    EXPECT_EQ(qGray(shown.pixel(0, 1)), 255);
    EXPECT_EQ(qGray(shown.pixel(1, 1)), 0);
    EXPECT_EQ(qGray(shown.pixel(1, 2)), 255);
}

TEST(DisplayImage, NoPixelsGiveNoImage)
{
    EXPECT_TRUE(displayImage(SxPicBuf()).isNull());
    EXPECT_EQ(pixelText(SxPicBuf(), 0, 0), QString());
}

TEST(PixelText, NamesColoursRedFirst)
{
    const auto image = picture<std::uint8_t>(ExImageDataType::UInt8, 8, 2, 3, {1, 2, 3, 4, 5, 6});
    EXPECT_EQ(pixelText(*image->picBuf(), 1, 0).toStdString(), "R 6  G 5  B 4");
}

TEST(PixelText, ShowsPlainValues)
{
    const auto integers = picture<std::int8_t>(ExImageDataType::Int8, 8, 1, 1, {-7});
    EXPECT_EQ(pixelText(*integers->picBuf(), 0, 0).toStdString(), "-7");
    const auto floats = picture<float>(ExImageDataType::Float, 32, 1, 1, {0.25F});
    EXPECT_EQ(pixelText(*floats->picBuf(), 0, 0).toStdString(), "0.25");
    const auto packed = picture<std::uint16_t>(ExImageDataType::Packed565, 16, 1, 1, {0xF821});
    EXPECT_EQ(pixelText(*packed->picBuf(), 0, 0).toStdString(), "R 31  G 1  B 1");
}

TEST(PixelText, IsEmptyOutside)
{
    const auto image = greyPicture(2, 2, 9);
    EXPECT_EQ(pixelText(*image->picBuf(), 2, 0), QString());
    EXPECT_EQ(pixelText(*image->picBuf(), 0, 2), QString());
    EXPECT_EQ(pixelText(*image->picBuf(), -1, 0), QString());
}

TEST(FormatText, TellsSizeKindAndDepth)
{
    const auto image = picture<std::uint16_t>(ExImageDataType::UInt16, 12, 2, 1, {0, 0});
    EXPECT_EQ(formatText(*image->picBuf()).toStdString(), "2 x 1, mono, 12 bit (uint16)");
}

} // namespace
