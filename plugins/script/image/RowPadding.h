#pragma once

#include "SxPicBuf.h"

#include <cstring>

/// Clears the bytes after the pixels of each row, for buffers that were allocated without being cleared.
inline void clearRowPadding(SxPicBuf& buffer)
{
    const std::size_t rowBytes = buffer.rowBytes();
    if (rowBytes == buffer.lineStride)
        return;
    for (std::uint32_t y = 0; y < buffer.height; ++y)
        std::memset(buffer.row(y) + rowBytes, 0, buffer.lineStride - rowBytes);
}
