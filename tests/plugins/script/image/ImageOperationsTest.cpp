// What the operations that make a new image make of the old one's record, and how they fail.

#include "support/ScriptTest.h"

#include <malloc.h>

#include <cstring>
#include <functional>
#include <tuple>

namespace {

std::string text(const SxPicBufInfo& info)
{
    return QStringLiteral("%1 x %2, stride %3, channels %4, bpc %5, black %6, type %7, storage %8, filter %9")
               .arg(info.width)
               .arg(info.height)
               .arg(info.lineStride)
               .arg(info.channels)
               .arg(info.bpc)
               .arg(info.blackLevel)
               .arg(quint32(info.dataType))
               .arg(quint32(info.storageFormat))
               .arg(quint32(info.colorFilterArray))
               .toStdString() +
           QStringLiteral(", colour %1, frames %2 and %3, time %4, saturation %5")
               .arg(info.isColor)
               .arg(info.acqFrameNumber)
               .arg(info.frameNumber)
               .arg(info.timeStamp)
               .arg(double(info.saturation))
               .toStdString();
}

/// An expression of a script that gives a new image, and how its record differs from the one of `img`.
struct NewImage {
    const char* name;
    const char* expression;
    std::function<void(SxPicBufInfo&)> change;
};

void PrintTo(const NewImage& row, std::ostream* stream)
{
    *stream << row.expression;
}

const NewImage newImages[] = {
    {"ToRgb", "img.to_rgb()",
     [](SxPicBufInfo& info) {
         info.channels = 4;
         info.dataType = ExImageDataType::UInt8;
         info.bpc = 8;
         info.storageFormat = ExDataStorageFormat::Interleaved;
         info.blackLevel = 0;
         info.isColor = true;
         info.lineStride = 32;
     }},
    {"ExtractChannel", "img.extract_channel(1)",
     [](SxPicBufInfo& info) {
         info.channels = 1;
         info.isColor = false;
         info.lineStride = 16;
     }},
    {"ConvertBpcTo7", "img.convert_bpc(7)",
     [](SxPicBufInfo& info) {
         info.dataType = ExImageDataType::UInt8;
         info.bpc = 7;
         info.lineStride = 32;
     }},
    {"ConvertBpcTo20", "img.convert_bpc(20)",
     [](SxPicBufInfo& info) {
         info.dataType = ExImageDataType::UInt32;
         info.bpc = 20;
         info.lineStride = 80;
     }},
    {"Crop", "img.crop(1, 1, 3, 2)",
     [](SxPicBufInfo& info) {
         info.width = 3;
         info.height = 2;
         info.lineStride = 32;
     }},
    {"Resize", "img.resize(4, 9)",
     [](SxPicBufInfo& info) {
         info.width = 4;
         info.height = 9;
         info.lineStride = 32;
     }},
    {"NewCopy", "img.new_copy()", [](SxPicBufInfo&) {}},
};

class ImageOperations : public SharedScriptTest
{
protected:
    ImageOperations()
    {
        SxPicBufInfo info = imageInfo(6, 4, 3, ExImageDataType::UInt16, 100);
        info.bpc = 12;
        info.blackLevel = 30;
        info.storageFormat = ExDataStorageFormat::Planar;
        info.colorFilterArray = ExColorFilterArray::GRBG;
        info.acqFrameNumber = 41;
        info.frameNumber = 42;
        info.timeStamp = 43;
        info.saturation = 44.5F;
        source = makeImage(info);
        SxImageMetadata metadata;
        metadata.gainDb = 6.0F;
        source->setImageMetadata(&metadata);
        publish("img", *source);
    }

    std::unique_ptr<CxImageData> source;
};

class ImageOperationsRecord : public ImageOperations, public testing::WithParamInterface<NewImage>
{
};

TEST_P(ImageOperationsRecord, IsTheSourcesButForWhatTheOperationChanges)
{
    SxPicBufInfo wanted = *source->picBuf();
    const std::string before = text(wanted);
    GetParam().change(wanted);
    const int images = CxImageData::liveCount();
    EXPECT_CLEAN_RUN(QStringLiteral("vantrel.new_view_with_image(%1)").arg(QString::fromUtf8(GetParam().expression)));
    ASSERT_EQ(host.delegate.views.size(), 1U);
    EXPECT_EQ(text(*host.delegate.views.begin()->second->image->picBuf()), text(wanted));
    EXPECT_EQ(text(*source->picBuf()), before);
    EXPECT_EQ(CxImageData::liveCount(), images + 1) << "the view's; the script's own is gone";
}

INSTANTIATE_TEST_SUITE_P(Of, ImageOperationsRecord, testing::ValuesIn(newImages),
                         [](const auto& row) { return std::string(row.param.name); });

/// While it lives, memory from the allocator is not clear.
class DirtyMemory
{
public:
    DirtyMemory() { mallopt(M_PERTURB, 0xA5); }
    ~DirtyMemory() { mallopt(M_PERTURB, 0); }
};

TEST_F(ImageOperations, LeaveNothingUnclearedThatTheyDoNotFill)
{
    const DirtyMemory dirty;
    const SxPicBuf& pixels = *source->picBuf();
    std::memset(pixels.data, 0x5A, pixels.dataSize());
    auto refused = makeImage(pixels);
    std::memset(refused->picBuf()->data, 0x5A, pixels.dataSize());
    refused->picBuf()->lineStride = 20; // rows overlap
    publish("refused", *refused);
    // The size of the corner that the operation fills.
    const std::initializer_list<std::tuple<const char*, int, int>> rows = {
        {"img.to_rgb()", 6, 4},
        {"img.extract_channel(1)", 6, 4},
        {"img.convert_bpc(7)", 6, 4},
        {"img.convert_bpc(16, False)", 6, 4},
        {"img.crop(1, 1, 3, 2)", 3, 2},
        {"img.crop(4, 1, 5, 9)", 2, 3},
        {"img.crop(0, 3, 3, 2)", 3, 1},
        {"img.crop(6, 0, 3, 2)", 0, 0},
        {"img.crop(0, 4, 3, 2)", 0, 0},
        {"img.crop(-1, 0, 3, 2)", 0, 0},
        {"img.resize(5, 9)", 5, 9},
        {"img.resize(5, 3, 1, 1, 0, 0)", 5, 3},
        {"img.resize(5, 9, 6, 0, 1, 1)", 0, 0},
        {"img.get_image_data_numpy()", 6, 4},
        {"refused.to_rgb()", 0, 0},
        {"refused.extract_channel(1)", 0, 0},
        {"refused.crop(0, 0, 3, 2)", 0, 0},
        {"refused.resize(3, 2, 0, 0, 0, 0)", 0, 0},
    };
    for (const auto& [image, width, height] : rows) {
        EXPECT_CLEAN_RUN(QStringLiteral("result = %1\n"
                                        "stride = result.padding_x + result.get_bytes_per_pixel() * result.width\n"
                                        "data = bytes(result)\n"
                                        "at = [(i // stride, i % stride) for i, byte in enumerate(data) if byte]\n"
                                        "used = result.get_bytes_per_pixel() * %2\n"
                                        "wanted = [(y, i) for y in range(%3) for i in range(used)]\n"
                                        "assert at == wanted, (at, wanted)")
                             .arg(QString::fromUtf8(image))
                             .arg(width)
                             .arg(height))
            << image;
    }
}

TEST_F(ImageOperations, OnlyACopyKeepsTheMetadata)
{
    EXPECT_EQ(value("img.new_copy().gain_db"), "6.0");
    for (const char* image :
         {"img.to_rgb()", "img.extract_channel(0)", "img.convert_bpc(8)", "img.crop(0, 0, 2, 2)", "img.resize(2, 2)"})
        EXPECT_EQ(value(std::string(image) + ".gain_db"), "Exception: Vantrel image object is empty") << image;
}

TEST_F(ImageOperations, RaiseOutOfMemoryWhenTheNewImageCannotBeAllocated)
{
    // One row so long that no new image can have it. Its pixels are not there, and nobody gets as far as to read them.
    SxPicBufInfo info = imageInfo(2, 1, 1, ExImageDataType::UInt64);
    auto huge = makeImage(info);
    huge->picBuf()->width = 0xFFFFFFFFU;
    publish("img", *huge);
    const int before = CxImageData::liveCount();
    for (const char* call :
         {"to_rgb()", "extract_channel(0)", "convert_bpc(8)", "crop(0, 0, 2**31 - 1, 1)", "resize(2**31 - 1, 1)"})
        EXPECT_EQ(value(std::string("img.") + call), "Exception: cannot allocate new image, out of memory") << call;
    EXPECT_EQ(CxImageData::liveCount(), before);
    huge->picBuf()->width = 2;
}

TEST_F(ImageOperations, RaiseOutOfMemoryWhenTheHostCannotCopy)
{
    UncopyableImage null(UncopyableImage::GivesNull);
    UncopyableImage other(UncopyableImage::GivesAnotherObject);
    for (CxImageData* image : {&null, &other}) {
        publish("img", *image);
        EXPECT_EQ(value("img.new_copy()"), "Exception: cannot allocate new image, out of memory");
    }
}

TEST_F(ImageOperations, TakeTheWholeRecordAlongWhenAllPixelsAreCopied)
{
    auto other = makeImage(imageInfo(6, 4, 3, ExImageDataType::UInt16));
    const std::uint32_t stride = other->picBuf()->lineStride;
    publish("other", *other);
    EXPECT_EQ(value("img.copy_to(other)"), "None");
    SxPicBufInfo wanted = *source->picBuf();
    wanted.lineStride = stride;
    EXPECT_EQ(text(*other->picBuf()), text(wanted));
}

} // namespace
