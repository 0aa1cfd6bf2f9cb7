#pragma once

#include "CxPicBufAPI.h"

/// The owner of a picture buffer: frees the pixels at its end, unless they were given away before.
///
/// An operation of CxPicBufAPI may allocate or change `buffer` in place. Pixels are given to an image in this way, so
/// that they have one owner at every moment, whatever throws:
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

    /// Takes memory for a geometry, with a row length of the library's choice and without clearing it. Pixels held so
    /// far are freed. False when there is no memory: `buffer.data` is then null.
    bool allocate(SxPicBufInfo info)
    {
        free();
        info.lineStride = 0;
        return CxPicBufAPI::AllocPicBufFromHeap(buffer, info, true, 0);
    }

    /// Makes a copy of pixels, with a row length of the library's choice, and of the rest of their record. Pixels held
    /// so far are freed. False when there is no memory.
    bool copyFrom(const SxPicBuf& pixels) { return allocate(pixels) && CxPicBufAPI::CopyPicBuf(buffer, pixels, true); }

    /// Frees the pixels and empties the record.
    void free()
    {
        if (buffer.data)
            CxPicBufAPI::FreePicBuf(buffer, true);
        buffer = SxPicBuf();
    }

    /// Gives the pixels away with a copy of the record, which is empty afterwards.
    [[nodiscard]] SxPicBuf release() noexcept
    {
        const SxPicBuf given = buffer;
        buffer = SxPicBuf();
        return given;
    }

    SxPicBuf buffer;
};
