#pragma once

#include "CxPicBufAPI.h"

/// A picture buffer for the time of a scope.
class ScopedPicBuf
{
public:
    ScopedPicBuf() = default;
    ~ScopedPicBuf() { CxPicBufAPI::FreePicBuf(buffer, true); }
    ScopedPicBuf(const ScopedPicBuf&) = delete;
    ScopedPicBuf& operator=(const ScopedPicBuf&) = delete;

    /// Takes memory for a geometry, with a row length of the library's choice and without clearing it.
    bool allocate(SxPicBufInfo info)
    {
        CxPicBufAPI::FreePicBuf(buffer, true);
        info.lineStride = 0;
        return CxPicBufAPI::AllocPicBufFromHeap(buffer, info, true, 0);
    }

    SxPicBuf buffer;
};
