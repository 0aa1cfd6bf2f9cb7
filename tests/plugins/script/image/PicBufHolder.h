#pragma once

#include "CxPicBufAPI.h"

#include <cstdint>
#include <cstring>
#include <vector>

/// A picture buffer that is freed with its holder. Its memory is filled with 0xA5 first, so that a byte which should
/// have been written or cleared and was not shows.
class PicBufHolder
{
public:
    PicBufHolder(unsigned width, unsigned height, unsigned channels, ExImageDataType type, unsigned lineStride = 0)
    {
        SxPicBufInfo info;
        info.width = width;
        info.height = height;
        info.channels = channels;
        info.lineStride = lineStride;
        info.dataType = type;
        info.bpc = SxPicBufInfo::bytesPerValue(type) * 8;
        info.storageFormat = ExDataStorageFormat::Interleaved;
        CxPicBufAPI::AllocPicBufFromHeap(buffer, info, true, 0);
        std::memset(buffer.data, 0xA5, buffer.dataSize());
    }
    ~PicBufHolder() { CxPicBufAPI::FreePicBuf(buffer, true); }
    PicBufHolder(const PicBufHolder&) = delete;
    PicBufHolder& operator=(const PicBufHolder&) = delete;

    std::vector<std::uint8_t> bytes() const { return {buffer.data, buffer.data + buffer.dataSize()}; }

    SxPicBuf buffer;
};
