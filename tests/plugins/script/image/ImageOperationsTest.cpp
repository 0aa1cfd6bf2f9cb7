// What the operations that make a new image make of the old one's record, and how they fail.

#include "support/ScriptTest.h"

#include <functional>

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
