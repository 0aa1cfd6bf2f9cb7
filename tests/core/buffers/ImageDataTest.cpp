#include "CxImageData.h"
#include "CxPicBufAPI.h"
#include "OwnedPicBuf.h"
#include "UnclearedAllocations.h"

#include <QtCore/QThread>

#include <gtest/gtest.h>

#include <malloc.h>

#include <algorithm>
#include <memory>
#include <thread>

namespace {

SxPicBuf filledBuffer()
{
    SxPicBuf buffer;
    CxPicBufAPI::AllocPicBufFromHeap(buffer, 5, 3, 1, ExImageDataType::UInt16, 0, 0, 12,
                                     ExDataStorageFormat::Interleaved, ExColorFilterArray::None, false, true, 0);
    for (unsigned y = 0; y < 3; ++y)
        for (unsigned x = 0; x < 5; ++x)
            reinterpret_cast<std::uint16_t*>(buffer.row(y))[x] = std::uint16_t(100 * y + x);
    return buffer;
}

TEST(ImageData, IsEmptyAtFirst)
{
    CxImageData image;
    EXPECT_EQ(image.picBuf(), nullptr);
    EXPECT_EQ(image.imageMetadata(), nullptr);
}

TEST(ImageData, AttachingTakesThePixelsFromTheRecord)
{
    CxImageData image;
    SxPicBuf buffer = filledBuffer();
    const auto* pixels = buffer.data;
    image.attachPicBuf(&buffer);
    EXPECT_EQ(buffer.data, nullptr);
    ASSERT_NE(image.picBuf(), nullptr);
    EXPECT_EQ(image.picBuf()->data, pixels);
}

TEST(ImageData, CloneHasItsOwnPixelsAndTheMetadata)
{
    CxImageData image;
    image.setPicBuf(filledBuffer());
    SxImageMetadata metadata;
    metadata.exposureTimeUs = 1234;
    image.setImageMetadata(&metadata);

    const std::unique_ptr<QObject> object(image.clone(nullptr, nullptr));
    auto* copy = qobject_cast<CxImageData*>(object.get());
    ASSERT_NE(copy, nullptr);
    ASSERT_NE(copy->imageMetadata(), nullptr);
    EXPECT_EQ(copy->imageMetadata()->exposureTimeUs, 1234);
    EXPECT_NE(copy->picBuf()->data, image.picBuf()->data);
    image.picBuf()->row(2)[0] = 7;
    EXPECT_EQ(reinterpret_cast<std::uint16_t*>(copy->picBuf()->row(2))[4], 204);
    EXPECT_EQ(reinterpret_cast<std::uint16_t*>(copy->picBuf()->row(2))[0], 200);
}

TEST(ImageData, CloneHasClearedRowPadding)
{
    CxImageData image;
    image.setPicBuf(filledBuffer());
    // Memory that a clone may get, full of something else.
    SxPicBuf old = filledBuffer();
    std::fill_n(old.data, old.dataSize(), std::uint8_t(0xAB));
    CxPicBufAPI::FreePicBuf(old, true);

    const std::unique_ptr<QObject> object(image.clone(nullptr, nullptr));
    SxPicBuf* copy = qobject_cast<CxImageData*>(object.get())->picBuf();
    for (unsigned y = 0; y < copy->height; ++y) {
        for (unsigned i = copy->width * copy->bytesPerPixel(); i < copy->lineStride; ++i)
            EXPECT_EQ(copy->row(y)[i], 0) << "row " << y << ", byte " << i;
    }
}

TEST(ImageData, CloneIsNullWhenMemoryRunsOut)
{
    CxImageData image;
    image.setPicBuf(filledBuffer());
    SxPicBuf* buffer = image.picBuf();
    const SxPicBuf real = *buffer;
    buffer->lineStride = 0xFFFFFFF0U; // claims a size that no machine has
    buffer->height = 0xFFFFFFF0U;
    const int before = CxImageData::liveCount();
    EXPECT_EQ(image.clone(nullptr, nullptr), nullptr);
    EXPECT_EQ(CxImageData::liveCount(), before);
    *buffer = real;
}

TEST(ImageData, CloneHasTheParentAndTheThreadThatItIsGiven)
{
    CxImageData image;
    QObject parent;
    EXPECT_EQ(image.clone(&parent, nullptr)->parent(), &parent);
    QThread thread;
    const std::unique_ptr<QObject> moved(image.clone(nullptr, &thread));
    EXPECT_EQ(moved->thread(), &thread);
    EXPECT_EQ(moved->parent(), nullptr);
}

TEST(ImageData, CloneOfAnImageWithoutABufferHasNone)
{
    CxImageData image;
    const std::unique_ptr<QObject> object(image.clone(nullptr, nullptr));
    ASSERT_NE(qobject_cast<CxImageData*>(object.get()), nullptr);
    EXPECT_EQ(qobject_cast<CxImageData*>(object.get())->picBuf(), nullptr);
}

TEST(ImageData, TakingItsOwnBufferKeepsThePixels)
{
    CxImageData image;
    image.setPicBuf(filledBuffer());
    const auto* pixels = image.picBuf()->data;
    image.setPicBuf(*image.picBuf());
    ASSERT_EQ(image.picBuf()->data, pixels);
    EXPECT_EQ(reinterpret_cast<std::uint16_t*>(image.picBuf()->row(2))[4], 204);
}

TEST(ImageData, CountsTheLivingImages)
{
    const int before = CxImageData::liveCount();
    {
        CxImageData image;
        EXPECT_EQ(CxImageData::liveCount(), before + 1);
    }
    EXPECT_EQ(CxImageData::liveCount(), before);
}

TEST(PicBufMemory, RowsStartAtMultiplesOfSixteen)
{
    SxPicBuf buffer;
    CxPicBufAPI::AllocPicBufFromHeap(buffer, 10, 2, 3, ExImageDataType::UInt8, 0, 0, 8,
                                     ExDataStorageFormat::Interleaved, ExColorFilterArray::None, true, true, 0);
    EXPECT_EQ(buffer.lineStride, 32U);
    EXPECT_EQ(buffer.dataSize(), 64U);
    CxPicBufAPI::FreePicBuf(buffer, true);
    EXPECT_EQ(buffer.data, nullptr);
}

TEST(PicBufMemory, RefusesSizesThatOverflow)
{
    SxPicBufInfo info;
    info.width = 0xFFFFFFFFU;
    info.height = 0xFFFFFFFFU;
    info.channels = 4;
    info.dataType = ExImageDataType::Double;
    SxPicBuf buffer;
    EXPECT_FALSE(CxPicBufAPI::AllocPicBufFromHeap(buffer, info, false, 0));
    EXPECT_EQ(buffer.data, nullptr);
}

TEST(PicBufMemory, RefusesSizesThatTheMachineCannotBack)
{
    SxPicBufInfo info;
    info.width = 2000000000U;
    info.height = 2000U; // 4 terabytes, which the kernel may well promise
    info.channels = 1;
    info.dataType = ExImageDataType::UInt8;
    SxPicBuf buffer;
    EXPECT_FALSE(CxPicBufAPI::AllocPicBufFromHeap(buffer, info, true, 0));
    EXPECT_EQ(buffer.data, nullptr);
}

TEST(PicBufMemory, IsClearedUnlessTheThreadLeavesTheClearingToTheCaller)
{
    mallopt(M_PERTURB, 0xA5); // memory from the allocator is not clear
    SxPicBufInfo info;
    info.width = 60;
    info.height = 40;
    info.channels = 1;
    info.dataType = ExImageDataType::UInt8;
    const auto isClear = [&info] {
        OwnedPicBuf pixels;
        EXPECT_TRUE(CxPicBufAPI::AllocPicBufFromHeap(pixels.buffer, info, false, 0));
        const std::uint8_t* const bytes = pixels.buffer.data;
        return std::all_of(bytes, bytes + pixels.buffer.dataSize(), [](std::uint8_t byte) { return byte == 0; });
    };
    EXPECT_TRUE(isClear());
    {
        const UnclearedAllocations uncleared;
        EXPECT_FALSE(isClear());
        bool clearElsewhere = false;
        std::thread([&] { clearElsewhere = isClear(); }).join();
        EXPECT_TRUE(clearElsewhere);
    }
    EXPECT_TRUE(isClear());
    mallopt(M_PERTURB, 0);
}

} // namespace
