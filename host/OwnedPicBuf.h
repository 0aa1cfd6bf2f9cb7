#pragma once

#include "CxPicBufAPI.h"

/// Owns the pixels of a picture buffer. The destructor frees the pixels unless release() has given them away.
///
/// Operations of CxPicBufAPI may allocate or change `buffer` directly. To give the pixels to an image, create the image
/// first, so that the pixels always have exactly one owner, even if something throws:
///
///     auto image = std::make_unique<CxImageData>();
///     image->setPicBuf(pixels.release());
class OwnedPicBuf
{
public:
    OwnedPicBuf() = default;

    /// Takes over the pixels of a record. The caller must not free them.
    explicit OwnedPicBuf(const SxPicBuf& taken)
        : buffer(taken)
    {
    }

    OwnedPicBuf(OwnedPicBuf&& other) noexcept
        : buffer(other.release())
    {
    }

    OwnedPicBuf& operator=(OwnedPicBuf&& other) noexcept
    {
        if (this != &other) {
            free();
            buffer = other.release();
        }
        return *this;
    }

    ~OwnedPicBuf() { free(); }

    /// Frees the pixels held so far and allocates memory for a geometry. The library chooses the line stride; the
    /// memory is not cleared. False if there is not enough memory; `buffer.data` is then null.
    bool allocate(SxPicBufInfo info)
    {
        free();
        info.lineStride = 0;
        return CxPicBufAPI::AllocPicBufFromHeap(buffer, info, true, 0);
    }

    /// Frees the pixels held so far and copies a buffer: its pixels, and its record except for the line stride. False
    /// if the buffer has no pixels or there is not enough memory.
    bool copyFrom(const SxPicBuf& pixels) { return allocate(pixels) && CxPicBufAPI::CopyPicBuf(buffer, pixels, true); }

    /// Frees the pixels and empties the record.
    void free()
    {
        if (buffer.data)
            CxPicBufAPI::FreePicBuf(buffer, true);
        buffer = SxPicBuf();
    }

    /// Returns the record, whose pixels the caller then owns, and empties this object.
    [[nodiscard]] SxPicBuf release() noexcept
    {
        const SxPicBuf given = buffer;
        buffer = SxPicBuf();
        return given;
    }

    SxPicBuf buffer;
};
