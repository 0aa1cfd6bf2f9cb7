#pragma once

#include "CxPicBufAPI.h"

/// A picture buffer record that frees its pixels, unless somebody took them over and left `data` null
/// (CxImageData::attachPicBuf, release()).
struct OwnedPicBuf {
    OwnedPicBuf() = default;
    ~OwnedPicBuf() { CxPicBufAPI::FreePicBuf(buffer, true); }
    OwnedPicBuf(const OwnedPicBuf&) = delete;
    OwnedPicBuf& operator=(const OwnedPicBuf&) = delete;

    /// Gives the pixels away with a copy of the record.
    [[nodiscard]] SxPicBuf release()
    {
        const SxPicBuf given = buffer;
        buffer = SxPicBuf();
        return given;
    }

    SxPicBuf buffer;
};
