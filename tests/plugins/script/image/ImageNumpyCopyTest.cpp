// vantrel.Image.get_image_data_numpy.

#include "support/ScriptTest.h"

#include <cstring>

namespace {

class ImageDataNumpy : public SharedScriptTest
{
};

template<typename T>
void fill(SxPicBuf& buffer)
{
    T value = 1;
    for (unsigned y = 0; y < buffer.height; ++y) {
        for (unsigned i = 0; i < buffer.width * buffer.channels; ++i, ++value)
            std::memcpy(buffer.row(y) + i * sizeof(T), &value, sizeof(T));
    }
}

TEST_F(ImageDataNumpy, OfAMonoImageIsTheObjectItself)
{
    const auto image = makeTestImage(5, 3);
    publish("img", *image);
    EXPECT_EQ(value("img.get_image_data_numpy() is img"), "True");
    EXPECT_EQ(value("img.get_image_data_numpy(False) is img"), "True");
}

TEST_F(ImageDataNumpy, RawIsTheObjectItself)
{
    const auto image = makeTestImage(5, 3, 3);
    publish("img", *image);
    expectValues({
        {"img.get_image_data_numpy(True) is img", "True"},
        {"img.get_image_data_numpy('yes') is img", "True"},
        {"img.get_image_data_numpy(0) is img", "False"},
    });
}

TEST_F(ImageDataNumpy, TheObjectItselfIsANewReference)
{
    const auto image = makeTestImage(5, 3);
    publish("img", *image);
    EXPECT_CLEAN_RUN("import sys\n"
                     "before = sys.getrefcount(img)\n"
                     "same = img.get_image_data_numpy()\n"
                     "print(sys.getrefcount(img) - before)\n"
                     "del same\n"
                     "print(sys.getrefcount(img) - before)\n");
    EXPECT_EQ(host.printed().toStdString(), "1\n0\n");
}

TEST_F(ImageDataNumpy, OfMoreChannelsThatAreNoColoursIsTheObjectItself)
{
    SxPicBufInfo info = imageInfo(5, 3, 3);
    info.isColor = false;
    const auto image = makeImage(info);
    publish("img", *image);
    EXPECT_EQ(value("img.get_image_data_numpy() is img"), "True");
}

TEST_F(ImageDataNumpy, OfColourIsACopyWithRedAndBlueExchanged)
{
    const auto image = makeTestImage(2, 2, 3, ExImageDataType::UInt8, 8, 8);
    publish("img", *image);
    EXPECT_CLEAN_RUN("copy = img.get_image_data_numpy()\n"
                     "print(type(copy) is vantrel.Image, copy is img, copy.bp == img.bp, copy.rgb)\n"
                     "print(bytes(copy)[0:6], bytes(copy)[8:14])\n"
                     "print(bytes(img)[0:6])\n");
    EXPECT_EQ(host.printed().toStdString(), "True False False True\n"
                                            "b'\\x02\\x01\\x00\\x05\\x04\\x03' b'\\x08\\x07\\x06\\x0b\\n\\t'\n"
                                            "b'\\x00\\x01\\x02\\x03\\x04\\x05'\n");
}

TEST_F(ImageDataNumpy, OfFourChannelsKeepsAlphaInItsPlace)
{
    const auto image = makeTestImage(2, 1, 4);
    publish("img", *image);
    EXPECT_EQ(value("bytes(img.get_image_data_numpy())[:8]"), "b'\\x02\\x01\\x00\\x03\\x06\\x05\\x04\\x07'");
}

TEST_F(ImageDataNumpy, ExchangesWholeValuesOfEveryWidth)
{
    const auto words = makeImage(imageInfo(1, 1, 3, ExImageDataType::UInt16));
    const auto floats = makeImage(imageInfo(1, 1, 3, ExImageDataType::Float));
    const auto doubles = makeImage(imageInfo(1, 1, 3, ExImageDataType::Double));
    fill<std::uint16_t>(*words->picBuf());
    fill<float>(*floats->picBuf());
    fill<double>(*doubles->picBuf());
    publish("words", *words);
    publish("floats", *floats);
    publish("doubles", *doubles);
    const auto unpacked = [this](const std::string& format, const std::string& name) {
        return value("__import__('struct').unpack_from('" + format + "', bytes(" + name + ".get_image_data_numpy()))");
    };
    EXPECT_EQ(unpacked("3H", "words"), "(3, 2, 1)");
    EXPECT_EQ(unpacked("3f", "floats"), "(3.0, 2.0, 1.0)");
    EXPECT_EQ(unpacked("3d", "doubles"), "(3.0, 2.0, 1.0)");
}

TEST_F(ImageDataNumpy, OfColourKeepsStrideAndEveryFieldOfTheRecord)
{
    SxPicBufInfo info = imageInfo(10, 4, 3, ExImageDataType::UInt16, 96);
    info.bpc = 12;
    info.blackLevel = 5;
    info.acqFrameNumber = 6;
    info.frameNumber = 7;
    info.timeStamp = 8;
    const auto image = makeImage(info);
    publish("img", *image);
    EXPECT_CLEAN_RUN(
        "copy = img.get_image_data_numpy()\n"
        "names = ['width', 'height', 'bpc', 'channels', 'frame_number', 'acq_nframe', 'time_stamp', 'rgb',\n"
        "         'bp_size', 'frm', 'black_level', 'padding_x', 'data_saturation', 'data_sign_mode']\n"
        "print([n for n in names if getattr(copy, n) != getattr(img, n)])\n"
        "print(copy.__array_interface__['strides'])\n");
    EXPECT_EQ(host.printed().toStdString(), "[]\n(6, 96, 2)\n");
}

TEST_F(ImageDataNumpy, OfColourCopiesTheMetadata)
{
    const auto image = makeTestImage(2, 1, 3);
    SxImageMetadata metadata;
    metadata.exposureTimeUs = 1234;
    metadata.gainDb = 2.5F;
    image->setImageMetadata(&metadata);
    publish("img", *image);
    EXPECT_CLEAN_RUN("copy = img.get_image_data_numpy()\nprint(copy.exposure_time_us, copy.gain_db)");
    EXPECT_EQ(host.printed().toStdString(), "1234 2.5\n");
}

TEST_F(ImageDataNumpy, OfColourWithoutMetadataHasNone)
{
    const auto image = makeTestImage(2, 1, 3);
    publish("img", *image);
    EXPECT_EQ(value("img.get_image_data_numpy().gain_db"), "Exception: Vantrel image object is empty");
}

TEST_F(ImageDataNumpy, TheCopyIsOwnedByItsObject)
{
    const auto image = makeTestImage(2, 1, 3);
    publish("img", *image);
    const int before = CxImageData::liveCount();
    host.environment.onWait = [before](double) { EXPECT_EQ(CxImageData::liveCount(), before + 1); };
    EXPECT_CLEAN_RUN("copy = img.get_image_data_numpy()\ncopy = img.get_image_data_numpy()\nvantrel.wait(0)\n");
    EXPECT_EQ(host.environment.calls.size(), 1);
    EXPECT_EQ(CxImageData::liveCount(), before);
}

TEST_F(ImageDataNumpy, RaisesWhenTheCopyCannotBeAllocated)
{
    // A record that claims a size which no machine has.
    auto image = makeTestImage(2, 1, 3);
    image->picBuf()->lineStride = 0xFFFFFFF0U;
    image->picBuf()->height = 0xFFFFFFF0U;
    publish("img", *image);
    EXPECT_EQ(value("img.get_image_data_numpy()"), "Exception: Cannot allocate image");
    EXPECT_EQ(value("img.get_image_data_numpy(True) is img"), "True");
}

TEST_F(ImageDataNumpy, OfPackedColourIsAnUnchangedCopy)
{
    SxPicBufInfo info = imageInfo(2, 1, 1, ExImageDataType::Packed565);
    info.isColor = true;
    const auto image = makeImage(info);
    fill<std::uint16_t>(*image->picBuf());
    publish("img", *image);
    EXPECT_EQ(value("img.get_image_data_numpy() is img"), "False");
    EXPECT_EQ(value("bytes(img.get_image_data_numpy())[:4]"), "b'\\x01\\x00\\x02\\x00'");
}

TEST_F(ImageDataNumpy, TakesAtMostOneArgument)
{
    const auto image = makeTestImage(2, 1, 3);
    publish("img", *image);
    EXPECT_EQ(value("img.get_image_data_numpy(1, 2)").substr(0, 10), "TypeError:");
    EXPECT_EQ(value("img.get_image_data_numpy(raw=True)").substr(0, 10), "TypeError:");
    EXPECT_EQ(value("vantrel.Image().get_image_data_numpy(1, 2)").substr(0, 10), "TypeError:");
}

} // namespace
