// The stages: what they do to pixels of every type, and what they make of their settings.

#include "chain/ChainStages.h"
#include "CxImageData.h"
#include "CxPicBufAPI.h"
#include "CxRTTI.h"
#include "chain/StagePixels.h"
#include "support/LogCapture.h"
#include "support/PixelTypeOf.h"

#include <gtest/gtest.h>

#include <QtXml/QDomDocument>

#include <cmath>
#include <cstring>
#include <limits>
#include <memory>
#include <numeric>
#include <type_traits>
#include <utility>
#include <vector>

namespace {

using Settings = std::vector<std::pair<const char*, const char*>>;

std::unique_ptr<ImageStage> makeStage(const char* className, const Settings& settings = {})
{
    auto* stage = qobject_cast<ImageStage*>(CxRTTI::instance()->createInstanceOfClass(QString::fromLatin1(className)));
    QDomDocument document;
    QDomElement conf = document.createElement(QStringLiteral("conf"));
    for (const auto& [name, value] : settings)
        conf.setAttribute(QString::fromLatin1(name), QString::fromLatin1(value));
    stage->readConfig(conf);
    return std::unique_ptr<ImageStage>(stage);
}

/// An image with the given values row by row, and padded rows.
template<typename T>
std::unique_ptr<CxImageData> makeImage(ExImageDataType type, unsigned bpc, unsigned width, unsigned channels,
                                       const std::vector<T>& values)
{
    SxPicBufInfo info;
    info.width = width;
    info.channels = channels;
    info.height = unsigned(values.size()) / (width * channels);
    info.lineStride = (width * channels * unsigned(sizeof(T)) + 39) / 8 * 8;
    info.dataType = type;
    info.bpc = bpc;
    info.isColor = channels >= 3;
    info.storageFormat = ExDataStorageFormat::Interleaved;
    SxPicBuf buffer;
    CxPicBufAPI::AllocPicBufFromHeap(buffer, info, false, 0);
    for (unsigned y = 0; y < info.height; ++y)
        std::copy_n(values.data() + y * width * channels, width * channels, reinterpret_cast<T*>(buffer.row(y)));
    auto image = std::make_unique<CxImageData>();
    image->setPicBuf(buffer);
    return image;
}

template<typename T>
std::vector<T> valuesOf(CxImageData& image)
{
    SxPicBuf& buffer = *image.picBuf();
    std::vector<T> values;
    for (unsigned y = 0; y < buffer.height; ++y) {
        const T* row = reinterpret_cast<const T*>(buffer.row(y));
        values.insert(values.end(), row, row + buffer.width * buffer.channels);
    }
    return values;
}

/// The values after a stage has worked on an image with one channel and one row.
template<typename T>
std::vector<T> processed(const ImageStage& stage, ExImageDataType type, unsigned bpc, const std::vector<T>& values)
{
    const auto image = makeImage<T>(type, bpc, unsigned(values.size()), 1, values);
    const_cast<ImageStage&>(stage).process(*image);
    return valuesOf<T>(*image);
}

// ---- every pixel type ----

template<typename T>
class EveryType : public testing::Test
{
protected:
    static constexpr ExImageDataType type = pixelTypeOf<T>();
    static constexpr unsigned bits = 8 * sizeof(T);
    static std::vector<T> run(const ImageStage& stage, const std::vector<T>& values)
    {
        return processed<T>(stage, type, bits, values);
    }
};

using PixelTypes = testing::Types<std::int8_t, std::uint8_t, std::int16_t, std::uint16_t, std::int32_t, std::uint32_t,
                                  std::int64_t, std::uint64_t, float, double>;
TYPED_TEST_SUITE(EveryType, PixelTypes);

TYPED_TEST(EveryType, GainScalesAndShifts)
{
    const auto stage = makeStage("GainStage", {{"gain", "2"}, {"offset", "3"}});
    EXPECT_EQ(this->run(*stage, {0, 1, 10, 50}), (std::vector<TypeParam>{3, 5, 23, 103}));
}

TYPED_TEST(EveryType, GainRoundsToTheNearestAndSaturates)
{
    using Limits = std::numeric_limits<TypeParam>;
    const auto half = makeStage("GainStage", {{"gain", "0.5"}});
    if constexpr (std::is_integral_v<TypeParam>)
        EXPECT_EQ(this->run(*half, {0, 1, 2, 3, 5}), (std::vector<TypeParam>{0, 1, 1, 2, 3}));
    else
        EXPECT_EQ(this->run(*half, {0, 1}), (std::vector<TypeParam>{0, TypeParam(0.5)}));
    if constexpr (std::is_integral_v<TypeParam>) {
        const auto much = makeStage("GainStage", {{"gain", "1000"}});
        EXPECT_EQ(this->run(*much, {Limits::max()}), (std::vector<TypeParam>{Limits::max()}));
        const auto negative = makeStage("GainStage", {{"gain", "-1000"}});
        EXPECT_EQ(this->run(*negative, {Limits::max()}), (std::vector<TypeParam>{Limits::min()}));
    }
}

TYPED_TEST(EveryType, GainOfOneKeepsEveryValueExactly)
{
    using Limits = std::numeric_limits<TypeParam>;
    const std::vector<TypeParam> values = {Limits::lowest(), Limits::max(), TypeParam(Limits::max() - 1), 0, 7};
    EXPECT_EQ(this->run(*makeStage("GainStage"), values), values);
}

TYPED_TEST(EveryType, InvertTwiceGivesTheImageBack)
{
    const std::vector<TypeParam> values = {0, 1, 100, 127};
    const auto stage = makeStage("InvertStage");
    const std::vector<TypeParam> once = this->run(*stage, values);
    EXPECT_NE(once, values);
    EXPECT_EQ(this->run(*stage, once), values);
}

TYPED_TEST(EveryType, ThresholdGivesFullScaleFromTheLevelOn)
{
    const auto stage = makeStage("ThresholdStage", {{"level", "50"}});
    const TypeParam full = std::is_integral_v<TypeParam> ? std::numeric_limits<TypeParam>::max() : TypeParam(1);
    EXPECT_EQ(this->run(*stage, {0, 49, 50, 51}), (std::vector<TypeParam>{0, 0, full, full}));
}

TYPED_TEST(EveryType, FlipMirrorsPixelsWithAllTheirChannels)
{
    const std::vector<TypeParam> values = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12};
    const auto flipped = [&values, this](const Settings& settings, unsigned channels) {
        const auto image = makeImage<TypeParam>(this->type, this->bits, 6 / channels, channels, values);
        makeStage("FlipStage", settings)->process(*image);
        return valuesOf<TypeParam>(*image);
    };
    using Values = std::vector<TypeParam>;
    EXPECT_EQ(flipped({}, 2), values);
    EXPECT_EQ(flipped({{"horizontal", "1"}}, 2), (Values{5, 6, 3, 4, 1, 2, 11, 12, 9, 10, 7, 8}));
    EXPECT_EQ(flipped({{"vertical", "true"}}, 2), (Values{7, 8, 9, 10, 11, 12, 1, 2, 3, 4, 5, 6}));
    EXPECT_EQ(flipped({{"vertical", "1"}, {"horizontal", "1"}}, 3), (Values{10, 11, 12, 7, 8, 9, 4, 5, 6, 1, 2, 3}));
}

TYPED_TEST(EveryType, BlurSpreadsAPointAndKeepsAFlatImage)
{
    const auto stage = makeStage("GaussianBlurStage", {{"sigma", "1"}});
    std::vector<TypeParam> values(81, TypeParam(7));
    const auto flat = makeImage<TypeParam>(this->type, this->bits, 9, 1, values);
    stage->process(*flat);
    // OpenCV's releases add up the products of floating-point values in different orders.
    const double rounding = std::is_floating_point_v<TypeParam> ? 1e-5 : 0;
    for (const TypeParam value : valuesOf<TypeParam>(*flat))
        EXPECT_NEAR(double(value), 7.0, rounding);

    std::fill(values.begin(), values.end(), TypeParam(0));
    values[40] = 100;
    const auto point = makeImage<TypeParam>(this->type, this->bits, 9, 1, values);
    stage->process(*point);
    const std::vector<TypeParam> result = valuesOf<TypeParam>(*point);
    // The centre of a Gaussian of one pixel: 1 / (2 pi).
    EXPECT_NEAR(double(result[40]), 100.0 / (2 * 3.14159265), 1.0);
    EXPECT_NEAR(double(result[39]), double(result[41]), rounding);
    EXPECT_NEAR(double(result[31]), double(result[49]), rounding);
    EXPECT_GT(result[41], result[42]);
}

// ---- what is particular ----

TEST(ChainStages, GainStopsAtFullScaleOfUnsignedValues)
{
    const auto stage = makeStage("GainStage", {{"gain", "4"}});
    EXPECT_EQ(processed<std::uint16_t>(*stage, ExImageDataType::UInt16, 12, {1000, 1023, 1024, 4095}),
              (std::vector<std::uint16_t>{4000, 4092, 4095, 4095}));
}

TEST(ChainStages, GainKeepsLargeIntegersExact)
{
    const std::uint64_t large = (std::uint64_t(1) << 62) + 1;
    const auto stage = makeStage("GainStage", {{"offset", "1"}});
    EXPECT_EQ(processed<std::uint64_t>(*stage, ExImageDataType::UInt64, 64, {large}),
              (std::vector<std::uint64_t>{large + 1}));
}

TEST(ChainStages, GainLeavesNotANumberAlone)
{
    const auto stage = makeStage("GainStage", {{"gain", "3"}});
    const auto result = processed<float>(*stage, ExImageDataType::Float, 32, {NAN, 2.0F});
    EXPECT_TRUE(std::isnan(result[0]));
    EXPECT_EQ(result[1], 6.0F);
}

TEST(ChainStages, InvertMirrorsAtFullScaleAndChangesTheSignOfSignedValues)
{
    const auto stage = makeStage("InvertStage");
    EXPECT_EQ(processed<std::uint16_t>(*stage, ExImageDataType::UInt16, 12, {0, 1, 4095, 5000}),
              (std::vector<std::uint16_t>{4095, 4094, 0, 0}));
    EXPECT_EQ(processed<std::int8_t>(*stage, ExImageDataType::Int8, 8, {-128, -1, 0, 127}),
              (std::vector<std::int8_t>{127, 1, 0, -127}));
}

TEST(ChainStages, FloatsUseTheirSaturationAsFullScale)
{
    const auto image = makeImage<float>(ExImageDataType::Float, 32, 2, 1, {10.0F, 90.0F});
    image->picBuf()->saturation = 100.0F;
    makeStage("InvertStage")->process(*image);
    EXPECT_EQ(valuesOf<float>(*image), (std::vector<float>{90.0F, 10.0F}));
    makeStage("ThresholdStage")->process(*image);
    EXPECT_EQ(valuesOf<float>(*image), (std::vector<float>{100.0F, 0.0F}));
}

TEST(ChainStages, ThresholdIsHalfOfFullScaleUnlessALevelIsGiven)
{
    EXPECT_EQ(processed<std::uint16_t>(*makeStage("ThresholdStage"), ExImageDataType::UInt16, 12, {2047, 2048}),
              (std::vector<std::uint16_t>{0, 4095}));
}

TEST(ChainStages, AlphaStaysAsItIs)
{
    const auto image = makeImage<std::uint8_t>(ExImageDataType::UInt8, 8, 1, 4, {1, 2, 3, 200});
    makeStage("InvertStage")->process(*image);
    EXPECT_EQ(valuesOf<std::uint8_t>(*image), (std::vector<std::uint8_t>{254, 253, 252, 200}));
}

TEST(ChainStages, PackedPixelsAreWorkedOnAsColours)
{
    const auto run = [](const char* stage, const Settings& settings, const std::vector<std::uint16_t>& values) {
        return processed<std::uint16_t>(*makeStage(stage, settings), ExImageDataType::Packed565, 16, values);
    };
    constexpr std::uint16_t red = 0xF800;
    constexpr std::uint16_t cyan = 0x07FF;
    EXPECT_EQ(run("GainStage", {}, {red, cyan, 0x1234}), (std::vector<std::uint16_t>{red, cyan, 0x1234}));
    EXPECT_EQ(run("InvertStage", {}, {red, 0}), (std::vector<std::uint16_t>{cyan, 0xFFFF}));
    EXPECT_EQ(run("FlipStage", {{"horizontal", "1"}}, {red, cyan}), (std::vector<std::uint16_t>{cyan, red}));
    EXPECT_EQ(run("ThresholdStage", {{"level", "200"}}, {0xFFFF, 0x7BEF}), (std::vector<std::uint16_t>{0xFFFF, 0}));
}

TEST(ChainStages, PackedPixelsAreTheColoursOfAConversionAndComeBackUnchanged)
{
    std::vector<std::uint16_t> words(65536);
    std::iota(words.begin(), words.end(), std::uint16_t(0));
    const auto packed = makeImage<std::uint16_t>(ExImageDataType::Packed565, 16, 256, 1, words);
    const auto converted =
        makeImage<std::uint8_t>(ExImageDataType::UInt8, 8, 256, 3, std::vector<std::uint8_t>(words.size() * 3));
    ASSERT_TRUE(CxPicBufAPI::ConvertPicToRGB(*packed->picBuf(), *converted->picBuf()));
    CxImageData unpacked;
    unpacked.setPicBuf(stage_pixels::unpack565(*packed->picBuf()));
    EXPECT_EQ(valuesOf<std::uint8_t>(unpacked), valuesOf<std::uint8_t>(*converted));
    const auto back =
        makeImage<std::uint16_t>(ExImageDataType::Packed565, 16, 256, 1, std::vector<std::uint16_t>(words.size()));
    stage_pixels::pack565(*unpacked.picBuf(), *back->picBuf());
    EXPECT_EQ(valuesOf<std::uint16_t>(*back), words);
}

TEST(ChainStages, FlipNamesTheColourFiltersAnew)
{
    const auto image = makeImage<std::uint8_t>(ExImageDataType::UInt8, 8, 4, 1, {1, 2, 3, 4, 5, 6, 7, 8});
    image->picBuf()->colorFilterArray = ExColorFilterArray::RGGB;
    SxImageMetadata metadata;
    metadata.colorFilterArray = ExColorFilterArray::RGGB;
    image->setImageMetadata(&metadata);
    makeStage("FlipStage", {{"horizontal", "1"}})->process(*image);
    EXPECT_EQ(image->picBuf()->colorFilterArray, ExColorFilterArray::GRBG);
    EXPECT_EQ(image->imageMetadata()->colorFilterArray, ExColorFilterArray::GRBG);
    makeStage("FlipStage", {{"vertical", "1"}})->process(*image);
    EXPECT_EQ(image->picBuf()->colorFilterArray, ExColorFilterArray::BGGR);
}

TEST(ChainStages, RowsMayStartAtAnyByte)
{
    SxPicBuf buffer;
    CxPicBufAPI::AllocPicBufFromHeap(buffer, 2, 3, 1, ExImageDataType::UInt16, 7, 0, 12,
                                     ExDataStorageFormat::Interleaved, ExColorFilterArray::None, false, true, 0);
    ASSERT_NE(buffer.data, nullptr);
    const std::uint16_t values[] = {100, 200};
    std::memcpy(buffer.row(1), values, sizeof(values));
    for (const ExImageDataType type : {ExImageDataType::UInt16, ExImageDataType::Packed565}) {
        CxImageData image;
        SxPicBuf copy;
        ASSERT_TRUE(CxPicBufAPI::AllocPicBufFromHeap(copy, buffer, true, 0));
        std::memcpy(copy.data, buffer.data, buffer.dataSize());
        copy.dataType = type;
        image.setPicBuf(copy);
        for (const char* name : {"GainStage", "InvertStage", "GaussianBlurStage", "ThresholdStage"})
            makeStage(name, {{"gain", "2"}, {"sigma", "0.5"}, {"level", "0"}})->process(image);
        makeStage("FlipStage", {{"vertical", "1"}})->process(image);
        std::uint16_t result = 0;
        std::memcpy(&result, image.picBuf()->row(1), sizeof(result));
        EXPECT_EQ(result, type == ExImageDataType::UInt16 ? 4095 : 0xFFFF);
        EXPECT_EQ(image.picBuf()->lineStride, 7U);
    }
    CxPicBufAPI::FreePicBuf(buffer, true);
}

TEST(ChainStages, BlurOfNothingChangesNothing)
{
    const std::vector<std::uint8_t> values = {0, 255, 0, 255};
    EXPECT_EQ(
        processed<std::uint8_t>(*makeStage("GaussianBlurStage", {{"sigma", "0"}}), ExImageDataType::UInt8, 8, values),
        values);
}

TEST(ChainStages, BlurWorksOnManyChannelsAndOnOnePixel)
{
    const auto many = makeImage<std::uint8_t>(ExImageDataType::UInt8, 8, 3, 7, std::vector<std::uint8_t>(42, 9));
    makeStage("GaussianBlurStage")->process(*many);
    EXPECT_EQ(valuesOf<std::uint8_t>(*many), std::vector<std::uint8_t>(42, 9));
    EXPECT_EQ(processed<std::uint8_t>(*makeStage("GaussianBlurStage"), ExImageDataType::UInt8, 8, {77}),
              (std::vector<std::uint8_t>{77}));
}

TEST(ChainStages, WhatCannotBeProcessedStaysAndIsLoggedOnce)
{
    const auto planar = makeImage<std::uint8_t>(ExImageDataType::UInt8, 8, 2, 1, {1, 2});
    planar->picBuf()->storageFormat = ExDataStorageFormat::Planar;
    const auto unknown = makeImage<std::uint8_t>(ExImageDataType::None, 8, 2, 1, {1, 2});
    const auto broad = makeImage<std::uint8_t>(ExImageDataType::UInt8, 8, 2, 600, std::vector<std::uint8_t>(1200, 5));
    const auto stage = makeStage("GaussianBlurStage");
    const LogCapture log;
    for (CxImageData* image : {planar.get(), planar.get(), unknown.get(), broad.get(), broad.get()})
        stage->process(*image);
    ASSERT_EQ(log.texts().size(), 3) << log.texts().join(u'\n').toStdString();
    EXPECT_EQ(log.texts().at(0).toStdString(),
              "Gaussian Blur: the image is left as it is: planar pixels are not supported");
    EXPECT_EQ(log.texts().at(2).toStdString(),
              "Gaussian Blur: the image is left as it is: the pixels have too many channels");
    EXPECT_EQ(valuesOf<std::uint8_t>(*planar), (std::vector<std::uint8_t>{1, 2}));
    EXPECT_EQ(valuesOf<std::uint8_t>(*broad), std::vector<std::uint8_t>(1200, 5));
}

TEST(ChainStages, ImagesWithoutPixelsAreLeftAlone)
{
    CxImageData empty;
    for (const char* name : {"GainStage", "InvertStage", "FlipStage", "GaussianBlurStage", "ThresholdStage"})
        makeStage(name, {{"horizontal", "1"}})->process(empty);
    EXPECT_EQ(empty.picBuf(), nullptr);
}

// ---- settings ----

struct WrongValue {
    const char* test;
    const char* stage;
    const char* name;
    const char* value;
    const char* summary;
};

void PrintTo(const WrongValue& wrong, std::ostream* out)
{
    *out << wrong.name << " = " << wrong.value;
}

class WrongSettings : public testing::TestWithParam<WrongValue>
{
};

TEST_P(WrongSettings, AreLoggedAndTheDefaultIsUsed)
{
    const LogCapture log;
    const auto stage = makeStage(GetParam().stage, {{GetParam().name, GetParam().value}});
    EXPECT_EQ(stage->summary().toStdString(), GetParam().summary);
    ASSERT_EQ(log.texts().size(), 1);
    EXPECT_TRUE(log.texts().first().contains(QLatin1String(GetParam().name)));
    EXPECT_TRUE(log.texts().first().contains(QLatin1String(GetParam().value).left(20)));
}

INSTANTIATE_TEST_SUITE_P(All, WrongSettings,
                         testing::Values(WrongValue{"Words", "GainStage", "gain", "much", "gain 1, offset 0"},
                                         WrongValue{"NotANumber", "GainStage", "gain", "nan", "gain 1, offset 0"},
                                         WrongValue{"Infinity", "GainStage", "gain", "inf", "gain 1, offset 0"},
                                         WrongValue{"Nothing", "GainStage", "offset", "", "gain 1, offset 0"},
                                         WrongValue{"TooLarge", "GainStage", "offset", "1e300", "gain 1, offset 0"},
                                         WrongValue{"NoFlag", "FlipStage", "vertical", "2", "neither way"},
                                         WrongValue{"Negative", "GaussianBlurStage", "sigma", "-1", "sigma 1"},
                                         WrongValue{"TooBroad", "GaussianBlurStage", "sigma", "51", "sigma 1"},
                                         WrongValue{"WordForALevel", "ThresholdStage", "level", "half",
                                                    "level at half of the full scale"}),
                         [](const auto& test) { return std::string(test.param.test); });

TEST(ChainStages, UnknownAttributesAreIgnored)
{
    const LogCapture log;
    const auto stage = makeStage("GainStage", {{"sigma", "wrong"}, {"Gain", "5"}, {"gain", "3"}});
    EXPECT_EQ(stage->summary().toStdString(), "gain 3, offset 0");
    EXPECT_TRUE(log.texts().isEmpty());
}

TEST(ChainStages, ANewConfigurationStartsFromTheDefaults)
{
    const auto stage = makeStage("GainStage", {{"gain", "3"}});
    stage->readConfig(QDomElement());
    EXPECT_EQ(stage->summary().toStdString(), "gain 1, offset 0");
}

TEST(ChainStages, KnowTheNameOfTheUser)
{
    EXPECT_EQ(makeStage("GaussianBlurStage")->displayName().toStdString(), "Gaussian Blur");
}

} // namespace
