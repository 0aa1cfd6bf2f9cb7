#pragma once

#include "CxImageData.h"
#include "CxPicBufAPI.h"

#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <vector>

/// An image with the given values, row after row, and row padding that is no multiple of the pixel size.
template<typename T>
std::shared_ptr<CxImageData> picture(ExImageDataType type, unsigned bpc, unsigned width, unsigned channels,
                                     const std::vector<T>& values)
{
    const unsigned perRow = width * channels;
    const unsigned height = unsigned(values.size()) / perRow;
    SxPicBuf buffer;
    CxPicBufAPI::AllocPicBufFromHeap(buffer, width, height, channels, type, unsigned(perRow * sizeof(T)) + 5, 0, bpc,
                                     ExDataStorageFormat::Interleaved, ExColorFilterArray::None, channels > 2, true, 0);
    EXPECT_NE(buffer.data, nullptr);
    for (unsigned y = 0; y < height; ++y)
        std::memcpy(buffer.row(y), values.data() + std::size_t(y) * perRow, perRow * sizeof(T));
    auto image = std::make_shared<CxImageData>();
    image->setPicBuf(buffer);
    return image;
}

/// A mono 8-bit image of one grey.
inline std::shared_ptr<CxImageData> greyPicture(unsigned width, unsigned height, std::uint8_t grey)
{
    return picture(ExImageDataType::UInt8, 8, width, 1, std::vector<std::uint8_t>(std::size_t(width) * height, grey));
}
