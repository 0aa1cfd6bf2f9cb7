// The attributes of vantrel.Image, row by row.

#include "support/ScriptTest.h"

#include "zuCore.h"

namespace {

/// The value with which a row is compared, from the picture that the fixture publishes.
using Expected = std::string (*)(const SxPicBuf& buffer, const SxImageMetadata& metadata);

enum class Needs { Buffer, Metadata };

struct Row {
    const char* name;
    Needs needs;
    Expected expected;
};

void PrintTo(const Row& row, std::ostream* stream)
{
    *stream << row.name;
}

std::unique_ptr<CxImageData> makeCameraFrame()
{
    // Every field has a different value.
    SxPicBufInfo info = imageInfo(10, 4, 3, ExImageDataType::UInt16, 80);
    info.bpc = 12;
    info.blackLevel = 3000000001U;
    info.acqFrameNumber = -71;
    info.frameNumber = -72;
    info.timeStamp = 3500001;
    info.saturation = 0.75F;
    auto image = makeImage(info);
    SxImageMetadata metadata;
    metadata.transportFormat = -81;
    metadata.exposureTimeUs = 82;
    metadata.gainDb = 1.5F;
    metadata.wbRed = 2.25F;
    metadata.wbGreen = 3.5F;
    metadata.wbBlue = 4.75F;
    metadata.colorFilterArray = ExColorFilterArray::GBRG;
    metadata.tofPhaseId = 86;
    metadata.tofPhasesCount = 87;
    image->setImageMetadata(&metadata);
    return image;
}

const Row rows[] = {
    {"width", Needs::Buffer, [](auto&, auto&) { return std::string("10"); }},
    {"height", Needs::Buffer, [](auto&, auto&) { return std::string("4"); }},
    {"bpc", Needs::Buffer, [](auto&, auto&) { return std::string("12"); }},
    {"channels", Needs::Buffer, [](auto&, auto&) { return std::string("3"); }},
    {"frame_number", Needs::Buffer, [](auto&, auto&) { return std::string("-72"); }},
    {"nframe", Needs::Buffer, [](auto&, auto&) { return std::string("-72"); }},
    {"acq_nframe", Needs::Buffer, [](auto&, auto&) { return std::string("-71"); }},
    {"time_stamp", Needs::Buffer, [](auto&, auto&) { return std::string("3500001"); }},
    {"tsSec", Needs::Buffer, [](auto&, auto&) { return std::string("3"); }},
    {"tsUSec", Needs::Buffer, [](auto&, auto&) { return std::string("500001"); }},
    {"rgb", Needs::Buffer, [](auto&, auto&) { return std::string("True"); }},
    {"size", Needs::Buffer, [](auto&, auto&) { return std::string("312"); }},
    {"bp", Needs::Buffer,
     [](auto& buffer, auto&) { return std::to_string(reinterpret_cast<std::uintptr_t>(buffer.data)); }},
    {"bp_size", Needs::Buffer, [](auto&, auto&) { return std::string("320"); }},
    {"frm", Needs::Buffer,
     [](auto& buffer, auto&) { return std::to_string(zuCore_GetZuImgFormatForPicBufInfo(buffer)); }},
    {"black_level", Needs::Buffer, [](auto&, auto&) { return std::string("3000000001"); }},
    {"padding_x", Needs::Buffer, [](auto&, auto&) { return std::string("20"); }},
    {"AbsoluteOffsetX", Needs::Buffer, [](auto&, auto&) { return std::string("0"); }},
    {"AbsoluteOffsetY", Needs::Buffer, [](auto&, auto&) { return std::string("0"); }},
    {"transport_frm", Needs::Metadata, [](auto&, auto&) { return std::string("-81"); }},
    {"exposure_time_us", Needs::Metadata, [](auto&, auto&) { return std::string("82"); }},
    {"gain_db", Needs::Metadata, [](auto&, auto&) { return std::string("1.5"); }},
    {"data_saturation", Needs::Buffer, [](auto&, auto&) { return std::string("4095.0"); }},
    {"wb_red", Needs::Metadata, [](auto&, auto&) { return std::string("2.25"); }},
    {"wb_green", Needs::Metadata, [](auto&, auto&) { return std::string("3.5"); }},
    {"wb_blue", Needs::Metadata, [](auto&, auto&) { return std::string("4.75"); }},
    {"color_filter_array", Needs::Metadata,
     [](auto&, auto& metadata) {
         return std::to_string(zuCore_GetZuCfaFromColorFilterArray(metadata.colorFilterArray));
     }},
    {"tof_phases_count", Needs::Metadata, [](auto&, auto&) { return std::string("87"); }},
    {"tof_multiple_phases_in_buffer", Needs::Metadata, [](auto&, auto&) { return std::string("0"); }},
    {"tof_phase_id", Needs::Metadata, [](auto&, auto&) { return std::string("86"); }},
    {"data_sign_mode", Needs::Buffer,
     [](auto& buffer, auto&) { return std::to_string(zuCore_GetZuDataSmFromDataType(buffer.dataType)); }},
    {"__array_interface__", Needs::Buffer,
     [](auto& buffer, auto&) {
         return "{'shape': (10, 4, 3), 'typestr': '|u2', 'data': (" +
                std::to_string(reinterpret_cast<std::uintptr_t>(buffer.data)) +
                ", 0), 'strides': (6, 80, 2), 'version': 3}";
     }},
};

/// Writes down how its records are asked for.
class WatchedImage : public CxImageData
{
public:
    SxPicBuf* picBuf() override
    {
        asked.append(QStringLiteral("picBuf"));
        return CxImageData::picBuf();
    }
    SxImageMetadata* imageMetadata() override
    {
        asked.append(QStringLiteral("imageMetadata"));
        return CxImageData::imageMetadata();
    }

    QStringList asked;
};

class ImageAttribute : public SharedScriptTest, public testing::WithParamInterface<Row>
{
protected:
    std::string attribute(const char* object) { return value(std::string(object) + "." + GetParam().name); }
};

TEST_P(ImageAttribute, GivesTheFieldOfTheFrame)
{
    const auto frame = makeCameraFrame();
    publish("img", *frame);
    EXPECT_EQ(attribute("img"), GetParam().expected(*frame->picBuf(), *frame->imageMetadata()));
}

TEST_P(ImageAttribute, OfAnEmptyObjectRaises)
{
    EXPECT_EQ(attribute("vantrel.Image()"), "Exception: Vantrel image object is empty");
}

TEST_P(ImageAttribute, FetchesBothRecordsOnce)
{
    const auto frame = makeCameraFrame();
    WatchedImage both;
    both.attachPicBuf(frame->picBuf());
    both.setImageMetadata(frame->imageMetadata());
    WatchedImage none;
    publish("both", both);
    publish("none", none);
    for (WatchedImage* image : {&both, &none}) {
        image->asked.clear();
        attribute(image == &both ? "both" : "none");
        EXPECT_EQ(image->asked.join(u' ').toStdString(), "picBuf imageMetadata");
    }
}

TEST_P(ImageAttribute, IsThereWhenTheRecordThatItNeedsIs)
{
    const auto scriptMade = makeImage(imageInfo(10, 4));
    CxImageData metadataOnly;
    SxImageMetadata metadata;
    metadataOnly.setImageMetadata(&metadata);
    publish("scriptMade", *scriptMade);
    publish("metadataOnly", metadataOnly);
    const bool needsBuffer = GetParam().needs == Needs::Buffer;
    const std::string empty = "Exception: Vantrel image object is empty";
    EXPECT_EQ(attribute(needsBuffer ? "metadataOnly" : "scriptMade"), empty);
    EXPECT_NE(attribute(needsBuffer ? "scriptMade" : "metadataOnly").substr(0, 9), "Exception");
}

INSTANTIATE_TEST_SUITE_P(Rows, ImageAttribute, testing::ValuesIn(rows),
                         [](const auto& row) { return std::string(row.param.name); });

class ImageAttributes : public SharedScriptTest
{
};

// ---- rows whose value depends on the image ----

TEST_F(ImageAttributes, TsSecAndTsUSecOfATimeStampOf3500001Are3And500001)
{
    SxPicBufInfo info = imageInfo(1, 1);
    info.timeStamp = 3500001;
    const auto image = makeImage(info);
    publish("img", *image);
    EXPECT_EQ(value("(img.tsSec, img.tsUSec)"), "(3, 500001)");
}

TEST_F(ImageAttributes, TimesUseAll64Bits)
{
    SxPicBufInfo info = imageInfo(1, 1);
    info.timeStamp = 18446744073709551615U;
    const auto image = makeImage(info);
    publish("img", *image);
    EXPECT_EQ(value("(img.time_stamp, img.tsSec, img.tsUSec)"), "(18446744073709551615, 18446744073709, 551615)");
}

TEST_F(ImageAttributes, RgbIsFalseForMono)
{
    const auto image = makeImage(imageInfo(1, 1));
    publish("img", *image);
    EXPECT_EQ(value("img.rgb"), "False");
}

TEST_F(ImageAttributes, DataSaturationOfFloatingTypesIsTheRecordsOwn)
{
    for (const auto type : {ExImageDataType::Float, ExImageDataType::Double}) {
        SxPicBufInfo info = imageInfo(1, 1, 1, type);
        info.saturation = 0.75F;
        const auto image = makeImage(info);
        publish("img", *image);
        EXPECT_EQ(value("img.data_saturation"), "0.75");
        host.run("del img");
    }
}

TEST_F(ImageAttributes, DataSaturationOfOtherTypesIsFullScaleOfTheBits)
{
    for (const auto& [bpc, expected] : {std::pair{0U, "0.0"},
                                        {1U, "1.0"},
                                        {8U, "255.0"},
                                        {12U, "4095.0"},
                                        {16U, "65535.0"},
                                        {32U, "4294967295.0"},
                                        {64U, "1.8446744073709552e+19"}}) {
        SxPicBufInfo info = imageInfo(1, 1, 1, ExImageDataType::UInt16);
        info.bpc = bpc;
        info.saturation = 0.75F;
        const auto image = makeImage(info);
        publish("img", *image);
        EXPECT_EQ(value("img.data_saturation"), expected);
        host.run("del img");
    }
}

TEST_F(ImageAttributes, PaddingXIsWhatTheStrideExceedsThePixels)
{
    const auto image = makeImage(imageInfo(10, 3, 3, ExImageDataType::UInt8, 32));
    publish("img", *image);
    EXPECT_EQ(value("img.padding_x"), "2");
}

TEST_F(ImageAttributes, PaddingXIsZeroWithoutPadding)
{
    const auto image = makeImage(imageInfo(10, 3, 3, ExImageDataType::UInt8, 30));
    publish("img", *image);
    EXPECT_EQ(value("img.padding_x"), "0");
}

TEST_F(ImageAttributes, CodesFollowTheImage)
{
    const auto mono = makeImage(imageInfo(2, 2, 1, ExImageDataType::UInt8));
    const auto depth = makeImage(imageInfo(2, 2, 1, ExImageDataType::Float));
    const auto signedMono = makeImage(imageInfo(2, 2, 1, ExImageDataType::Int16));
    publish("mono", *mono);
    publish("depth", *depth);
    publish("signedMono", *signedMono);
    EXPECT_EQ(value("(mono.frm, depth.frm, signedMono.frm)"), "(1, 8, 2)");
    EXPECT_EQ(value("(mono.data_sign_mode, depth.data_sign_mode, signedMono.data_sign_mode)"), "(0, 2, 1)");
}

TEST_F(ImageAttributes, TypesAreTheInterpretersOwn)
{
    const auto frame = makeCameraFrame();
    publish("img", *frame);
    EXPECT_EQ(
        value("{type(getattr(img, n)).__name__ for n in ('width', 'nframe', 'time_stamp', 'size', 'bp', 'bp_size', "
              "'frm', 'padding_x', 'transport_frm', 'tof_phase_id', 'data_sign_mode')}"),
        "{'int'}");
    EXPECT_EQ(value("{type(getattr(img, n)).__name__ for n in ('gain_db', 'data_saturation', 'wb_red')}"), "{'float'}");
}

// ---- names ----

TEST_F(ImageAttributes, UnknownNamesRaiseAttributeError)
{
    const auto frame = makeCameraFrame();
    publish("img", *frame);
    expectValues({
        {"img.no_such_thing", "AttributeError: 'vantrel.Image' object has no attribute 'no_such_thing'"},
        {"vantrel.Image().no_such_thing", "AttributeError: 'vantrel.Image' object has no attribute 'no_such_thing'"},
        {"[hasattr(img, name) for name in ('Width', 'width ', '', 'widt')]", "[False, False, False, False]"},
        {"getattr(img, 'no_such_thing', 7)", "7"},
    });
}

TEST_F(ImageAttributes, NamesThatAreNotAsciiRaiseAttributeError)
{
    const auto frame = makeCameraFrame();
    publish("img", *frame);
    EXPECT_EQ(value("getattr(img, 'w\\u00eddth')"),
              "AttributeError: 'vantrel.Image' object has no attribute 'w\u00eddth'");
    EXPECT_EQ(value("[hasattr(img, name) for name in ('\\U0001f4f7', 'width\\0', '\\ud800')]"),
              "[False, False, False]");
}

TEST_F(ImageAttributes, NamesMadeAtRunTimeAreFound)
{
    const auto frame = makeCameraFrame();
    publish("img", *frame);
    EXPECT_EQ(value("getattr(img, ''.join(['wi', 'dth']))"), "10");
    EXPECT_EQ(value("getattr(img, 'width\\u00e9'[:5])"), "10");
}

TEST_F(ImageAttributes, NamesOfATextSubclassAreComparedAsTexts)
{
    const auto frame = makeCameraFrame();
    publish("img", *frame);
    EXPECT_EQ(value("getattr(img, type('Name', (str,), {})('width'))"), "10");
    EXPECT_EQ(value("getattr(img, type('Name', (str,), {'__hash__': lambda self: 1, "
                    "'__eq__': lambda self, other: False})('width'))"),
              "10");
}

TEST_F(ImageAttributes, NamesThatAreNoTextsRaiseTypeError)
{
    const auto frame = makeCameraFrame();
    publish("img", *frame);
    for (const char* name : {"42", "None", "[]", "b'width'", "('width',)"})
        EXPECT_EQ(value(std::string("type(img).__getattribute__(img, ") + name + ")").substr(0, 10), "TypeError:")
            << name;
}

TEST_F(ImageAttributes, MethodsAndStandardAttributesAreFoundOnAnEmptyObjectToo)
{
    expectValues({
        {"vantrel.Image().__class__ is vantrel.Image", "True"},
        {"callable(vantrel.Image().get_width)", "True"},
        {"callable(vantrel.Image().tobytes)", "True"},
    });
}

TEST_F(ImageAttributes, OtherNamesFetchBothRecordsOnceToo)
{
    WatchedImage image;
    publish("img", image);
    for (const char* name : {"tobytes", "alloc", "__class__", "no_such_thing"}) {
        image.asked.clear();
        value("type(img." + std::string(name) + ")");
        EXPECT_EQ(image.asked.join(u' ').toStdString(), "picBuf imageMetadata") << name;
    }
}

TEST_F(ImageAttributes, LookUpsLeaveNoReferencesBehind)
{
    const auto frame = makeCameraFrame();
    publish("img", *frame);
    EXPECT_CLEAN_RUN(
        "import sys\n"
        "names = ['width', 'time_stamp', 'gain_db', '__array_interface__', 'tobytes', 'rgb', 'alloc', 'none']\n"
        "def look():\n"
        "    for name in names:\n"
        "        for i in range(100):\n"
        "            getattr(img, name, 0)\n"
        "def counts():\n"
        "    return [sys.getrefcount(thing) for thing in [img, vantrel.Image] + names[:-2]]\n"
        "look()\n" // the interpreter's own caches fill
        "before = counts()\n"
        "look()\n"
        "print([after - first for after, first in zip(counts(), before)])\n");
    EXPECT_EQ(host.printed().toStdString(), "[0, 0, 0, 0, 0, 0, 0, 0]\n");
}

} // namespace
