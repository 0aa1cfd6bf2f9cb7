// vantrel.Image: its life, its text form, its simple methods, what it refuses.

#include "support/ScriptTest.h"

namespace {

class ImageObject : public SharedScriptTest
{
protected:
    ImageObject()
    {
        SxPicBufInfo info = imageInfo(10, 4, 3, ExImageDataType::UInt16);
        info.bpc = 12;
        info.frameNumber = -3;
        info.timeStamp = 0x8000000000000005U;
        m_image = makeImage(info);
        publish("img", *m_image);
        publish("bufferless", m_bufferless);
    }

private:
    std::unique_ptr<CxImageData> m_image;
    CxImageData m_bufferless;
};

// ---- text form ----

TEST_F(ImageObject, StrOfAFreshImageSaysThatItIsEmpty)
{
    EXPECT_EQ(value("str(vantrel.Image())"), "'Vantrel image object is empty'");
    EXPECT_EQ(value("'%s' % vantrel.Image()"), "'Vantrel image object is empty'");
}

TEST_F(ImageObject, StrOfAnImageWithoutABufferSaysThatItIsEmpty)
{
    EXPECT_EQ(value("str(bufferless)"), "'Vantrel image object is empty'");
}

TEST_F(ImageObject, StrOfAnRgbImageEndsInTheTypeWordAndRgb)
{
    EXPECT_CLEAN_RUN("img = vantrel.Image()\nimg.alloc(640, 480, 3, 8)\nprint(img)");
    EXPECT_EQ(host.printed().toStdString(), "Vantrel image, width: 640, height: 480, channels: 3, bit per channel "
                                            "(bpc): 8, type: unsigned int RGB\n");
}

TEST_F(ImageObject, ReprIsTheInterpretersOwn)
{
    EXPECT_EQ(value("img").substr(0, 26), "<vantrel.Image object at 0");
}

struct TypeWord {
    unsigned type;
    const char* word;
};

void PrintTo(const TypeWord& row, std::ostream* stream)
{
    *stream << row.type << ' ' << row.word;
}

class ImageText : public SharedScriptTest, public testing::WithParamInterface<TypeWord>
{
};

TEST_P(ImageText, HasTheWordOfTheType)
{
    const auto type = ExImageDataType(GetParam().type);
    const auto mono = makeImage(imageInfo(3, 2, 1, type));
    SxPicBufInfo info = imageInfo(3, 2, 1, type);
    info.isColor = true;
    const auto colour = makeImage(info);
    publish("mono", *mono);
    publish("colour", *colour);
    const std::string text =
        "Vantrel image, width: 3, height: 2, channels: 1, bit per channel (bpc): " + std::to_string(info.bpc) +
        ", type: " + GetParam().word;
    EXPECT_EQ(value("str(mono)"), "'" + text + "'");
    EXPECT_EQ(value("str(colour)"), "'" + text + " RGB'");
}

INSTANTIATE_TEST_SUITE_P(Types, ImageText,
                         testing::Values(TypeWord{0, "N/A"}, TypeWord{1, "int"}, TypeWord{2, "unsigned int"},
                                         TypeWord{3, "int"}, TypeWord{4, "unsigned int"}, TypeWord{5, "int"},
                                         TypeWord{6, "unsigned int"}, TypeWord{7, "int"}, TypeWord{8, "unsigned int"},
                                         TypeWord{9, "float"}, TypeWord{10, "float"}, TypeWord{11, "packed565"},
                                         TypeWord{12, ""}, TypeWord{4000000000U, ""}),
                         [](const auto& row) { return "Type" + std::to_string(row.param.type); });

TEST_F(ImageObject, TheTextShowsLargeFieldsWithoutASign)
{
    SxPicBufInfo info = imageInfo(1, 1);
    info.bpc = 4000000000U;
    const auto image = makeImage(info);
    publish("large", *image);
    EXPECT_EQ(value("str(large)"), "'Vantrel image, width: 1, height: 1, channels: 1, bit per channel (bpc): "
                                   "4000000000, type: unsigned int'");
}

// ---- simple methods ----

TEST_F(ImageObject, SimpleMethodsReturnTheFieldsOfTheBuffer)
{
    expectValues({
        {"img.get_width()", "10"},
        {"img.get_height()", "4"},
        {"img.get_channels()", "3"},
        {"img.get_bpc()", "12"},
        {"img.get_frame_number()", "-3"},
        {"img.get_time_stamp()", "9223372036854775813"},
        {"img.get_bytes_per_pixel()", "6"},
    });
}

TEST_F(ImageObject, SimpleMethodsOfAnEmptyObjectFailWithoutAnException)
{
    for (const char* method : {"get_width", "get_height", "get_channels", "get_bpc", "get_frame_number",
                               "get_time_stamp", "get_bytes_per_pixel", "get_image_data_numpy"}) {
        EXPECT_EQ(value(std::string("vantrel.Image().") + method + "()"), "SystemError") << method;
        EXPECT_EQ(value(std::string("bufferless.") + method + "()"), "SystemError") << method;
    }
}

TEST_F(ImageObject, SimpleMethodsTakeNoArguments)
{
    for (const char* method : {"get_width", "get_height", "get_channels", "get_bpc", "get_frame_number",
                               "get_time_stamp", "get_bytes_per_pixel", "__bytes__", "get_image_data_raw"})
        EXPECT_EQ(value(std::string("img.") + method + "(1)").substr(0, 10), "TypeError:") << method;
}

TEST_F(ImageObject, GetBytesPerPixelCountsTheBytesOfEveryType)
{
    const char* const expected[] = {"3", "3", "3", "6", "6", "12", "12", "24", "24", "12", "24", "6", "3"};
    for (unsigned type = 0; type < std::size(expected); ++type) {
        const auto image = makeImage(imageInfo(2, 2, 3, ExImageDataType(type)));
        publish("typed", *image);
        EXPECT_EQ(value("typed.get_bytes_per_pixel()"), expected[type]) << type;
        host.run("del typed");
    }
}

TEST_F(ImageObject, ImagesMadeByScriptsHaveTheChannelsOfAPixelSideBySide)
{
    const int id = host.delegate.addView(makeTestImage(1, 1));
    for (const char* fill : {"made.alloc(4, 2, 3, 8)", "made.from_array([[[1, 2, 3000]]])",
                             "made.from_array([[[1, 2, 255]]])", "made.from_array(img)", "made = img.to_rgb()"}) {
        EXPECT_CLEAN_RUN(QStringLiteral("made = vantrel.Image()\n%1\nvantrel.set_view_image(made)\n")
                             .arg(QString::fromLatin1(fill)));
        const SxPicBuf* buffer = host.delegate.views[id]->image->picBuf();
        EXPECT_EQ(buffer->storageFormat, ExDataStorageFormat::Interleaved) << fill;
        EXPECT_EQ(buffer->colorFilterArray, ExColorFilterArray::None) << fill;
    }
}

// ---- bytes ----

TEST_F(ImageObject, BytesAreAllRowsWithTheirPadding)
{
    auto image = makeTestImage(3, 2, 1, ExImageDataType::UInt8, 8, 5);
    SxPicBuf* buffer = image->picBuf();
    for (unsigned i = 0; i < 10; ++i)
        buffer->data[i] = std::uint8_t(i + 65);
    publish("padded", *image);
    expectValues({
        {"bytes(padded)", "b'ABCDEFGHIJ'"},
        {"padded.__bytes__()", "b'ABCDEFGHIJ'"},
        {"padded.get_image_data_raw()", "b'ABCDEFGHIJ'"},
        {"padded.tobytes()", "b'ABCDEFGHIJ'"},
    });
}

TEST_F(ImageObject, BytesAreACopy)
{
    auto image = makeTestImage(3, 2);
    publish("shared", *image);
    EXPECT_CLEAN_RUN("import ctypes\n"
                     "before = bytes(shared)\n"
                     "ctypes.c_uint8.from_address(shared.bp).value = 99\n"
                     "print(before[0], bytes(shared)[0])\n");
    EXPECT_EQ(host.printed().toStdString(), "0 99\n");
}

TEST_F(ImageObject, BytesOfAnEmptyObjectRaise)
{
    for (const char* call : {"bytes(vantrel.Image())", "vantrel.Image().__bytes__()", "vantrel.Image().tobytes()",
                             "vantrel.Image().get_image_data_raw()", "bytes(bufferless)", "bufferless.tobytes()"})
        EXPECT_EQ(value(call), "Exception: Vantrel image object is empty") << call;
}

TEST_F(ImageObject, BytesOfABufferWithoutPixelsRaise)
{
    const std::unique_ptr<QObject> infoOnly(makeTestImage(3, 2)->copy(true));
    publish("pixelless", *qobject_cast<CxImageData*>(infoOnly.get()));
    EXPECT_EQ(value("bytes(pixelless)"), "Exception: Vantrel image object is empty");
    EXPECT_EQ(value("pixelless.width"), "3");
}

TEST_F(ImageObject, ToBytesReturnsACallableThatReturnsTheSameBytesAsBytesOfTheImage)
{
    EXPECT_CLEAN_RUN("call = img.tobytes\n"
                     "print(type(call).__name__, call.__name__, call.__self__ is img, call() == bytes(img))\n"
                     "print(img.tobytes is img.tobytes)\n");
    EXPECT_EQ(host.printed().toStdString(), "builtin_function_or_method __bytes__ True True\nFalse\n");
}

TEST_F(ImageObject, ToBytesKeepsTheImageOfADeletedNameAlive)
{
    const int before = CxImageData::liveCount();
    EXPECT_CLEAN_RUN("img2 = vantrel.Image()\n"
                     "img2.alloc(4, 1, 1, 8)\n"
                     "call = img2.tobytes\n"
                     "del img2\n"
                     "print(call()[:4])\n");
    EXPECT_EQ(host.printed().toStdString(), "b'\\x00\\x00\\x00\\x00'\n");
    EXPECT_EQ(CxImageData::liveCount(), before);
}

// ---- the type ----

TEST_F(ImageObject, TheTypeIsMadeWithAnyArgumentsAndStartsEmpty)
{
    EXPECT_EQ(value("str(vantrel.Image(1, 'two', three=3))"), "'Vantrel image object is empty'");
    EXPECT_EQ(value("str(vantrel.Image.__new__(vantrel.Image))"), "'Vantrel image object is empty'");
}

TEST_F(ImageObject, TheTypeCannotBeSubclassed)
{
    EXPECT_EQ(value("type('Mine', (vantrel.Image,), {})"),
              "TypeError: type 'vantrel.Image' is not an acceptable base type");
}

TEST_F(ImageObject, TheTypesNameAndModuleAreTheModulesOwn)
{
    EXPECT_EQ(value("(vantrel.Image.__name__, vantrel.Image.__module__)"), "('Image', 'vantrel')");
}

TEST_F(ImageObject, MethodsRefuseObjectsOfAnotherType)
{
    EXPECT_EQ(value("vantrel.Image.get_width(42)").substr(0, 10), "TypeError:");
    EXPECT_EQ(value("vantrel.Image.alloc(object(), 1, 1, 1, 8)").substr(0, 10), "TypeError:");
    EXPECT_EQ(value("vantrel.Image.__getattribute__(42, 'width')").substr(0, 10), "TypeError:");
}

TEST_F(ImageObject, ImagesHaveNoAttributesToSet)
{
    EXPECT_EQ(value("setattr(img, 'width', 3)").substr(0, 15), "AttributeError:");
    EXPECT_EQ(value("setattr(img, 'note', 3)").substr(0, 15), "AttributeError:");
    EXPECT_EQ(value("setattr(img, 'get_width', 3)").substr(0, 15), "AttributeError:");
    EXPECT_EQ(value("delattr(img, 'width')").substr(0, 15), "AttributeError:");
    EXPECT_EQ(value("img.width"), "10");
}

TEST_F(ImageObject, DirListsTheMethods)
{
    EXPECT_EQ(value("[name for name in ('alloc', 'get_width', 'get_height', 'get_channels', 'get_bpc', "
                    "'get_frame_number', 'get_time_stamp', 'get_bytes_per_pixel', '__bytes__', 'get_image_data_raw', "
                    "'get_image_data_numpy') if name not in dir(img)]"),
              "[]");
}

TEST_F(ImageObject, ImagesAreComparedByIdentityAndCanBeKeys)
{
    EXPECT_EQ(value("(img == img, img == vantrel.Image(), {img: 1}[img])"), "(True, False, 1)");
}

} // namespace
