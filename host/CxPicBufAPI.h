#pragma once

#include "HostGlobal.h"
#include "SxPicBuf.h"

/// Operations on picture buffers.
///
/// All of them respect the row padding of source and destination, which must be different buffers unless stated
/// otherwise. Operations return true on success. On failure they log one line, except for the allocations, and leave
/// the destination unchanged unless stated otherwise.
///
/// Scripts pass every buffer that an image has. So each operation refuses a buffer without pixels (`data` is null, a
/// side is 0, or rows overlap) as source and as destination.
class VANTREL_HOST_EXPORT CxPicBufAPI
{
public:
    CxPicBufAPI() = delete;

    /// Allocates pixel memory for a geometry and fills in the record.
    ///
    /// lineStride  bytes per row; with 0 the library chooses a multiple of 16.
    /// blackLevel  stored in the record as given.
    /// zeroFill    whether the memory is cleared.
    /// alignment   of the first byte in bytes, a power of two; 0 for the default of 64.
    ///
    /// On failure (too little memory, a dimension of 0, a line stride that is too short, a size that is too large)
    /// `data` is null.
    static void AllocPicBufFromHeap(SxPicBuf& buffer, unsigned width, unsigned height, unsigned channels,
                                    ExImageDataType dataType, unsigned lineStride, unsigned blackLevel, unsigned bpc,
                                    ExDataStorageFormat storageFormat, ExColorFilterArray colorFilterArray,
                                    bool isColor, bool zeroFill, unsigned long alignment);

    /// The same from a geometry record, whose fields are all copied; with a line stride of 0 the library chooses one.
    /// With uninitialized the memory is not cleared, for callers that write every pixel. False on failure, with `data`
    /// null.
    static bool AllocPicBufFromHeap(SxPicBuf& buffer, const SxPicBufInfo& info, bool uninitialized,
                                    unsigned long alignment);

    /// Frees the pixel memory and sets `data` to null. With reset, clears the whole record.
    static void FreePicBuf(SxPicBuf& buffer, bool reset);

    /// Copies pixels between buffers of equal width, height, channels and type; false for any others. With withInfo,
    /// also copies the rest of the record except for the line stride: bpc, black level, frame numbers, time stamp,
    /// saturation, colour and so on. Copying a buffer onto itself succeeds.
    static bool CopyPicBuf(SxPicBuf& dst, const SxPicBuf& src, bool withInfo);

    /// Swaps the first and third channel of every pixel in place. False unless there are three or four channels.
    static bool SwapRedAndBlue(SxPicBuf& buffer);

    /// True if any value is negative; always false for unsigned types.
    static bool DetectNegativePixelValue(const SxPicBuf& buffer);

    /// Finds how many bits the values use: the position of the highest bit set in any absolute value, at least 1.
    /// Stores it in bpc and returns true; for floating and packed types returns false and leaves bpc unchanged. With
    /// wholeImage examines every row, otherwise only every fourth row.
    static bool DetectColorBitDepth(const SxPicBuf& buffer, unsigned& bpc, bool wholeImage);

    /// The largest absolute value. Floating values are rounded down and limited to 64 bits; NaN counts as 0. A packed
    /// colour counts as its 16-bit word. 0 for a buffer without pixels.
    static std::uint64_t DetectMaxAbsValue(const SxPicBuf& buffer);

    /// Converts values to the type and bpc of dst, which must have the same width, height and channels as src and must
    /// not share memory with it.
    ///
    /// With scale, the full scale of src becomes the full scale of dst, and integer results are clipped to it. The full
    /// scale of an integer type is its largest value of bpc bits; that of a floating type is its saturation, or 1 if
    /// the saturation is 0. Without scale, values stay the same but are clipped to the range of dst's type (not to its
    /// bpc: see CheckPicValidData). Integer results are rounded to the nearest. In unsigned types negative values
    /// become 0, and in integer types NaN becomes 0. Packed colours convert to packed colours only.
    static bool ConvertPicToDifBpc(const SxPicBuf& src, SxPicBuf& dst, bool scale);

    /// Converts pixels of any type to 8-bit colour with 3 or 4 channels, as dst has. Full scale (see
    /// ConvertPicToDifBpc) becomes 255; alpha becomes 255 unless src has an alpha channel. With one or two channels the
    /// first is grey; of more than four the first three are the colour. src and dst must have the same size and must
    /// not share memory.
    static bool ConvertPicToRGB(const SxPicBuf& src, SxPicBuf& dst);

    /// Copies one channel into a one-channel buffer of the same size and type.
    static bool ExtractChannel(const SxPicBuf& src, SxPicBuf& dst, unsigned channel);

    /// False if an absolute value needs more bits than the buffer's bpc, or if there are no pixels. Floating and packed
    /// values are always valid.
    static bool CheckPicValidData(const SxPicBuf& buffer);

    /// Copies the rectangle (x, y, w, h) of src to (dx, dy) of dst, clipped to both buffers. False if channels or types
    /// differ or nothing is left to copy. src and dst may be the same buffer, and the rectangles may overlap.
    static bool CopyRect(SxPicBuf& dst, unsigned dx, unsigned dy, const SxPicBuf& src, unsigned x, unsigned y,
                         unsigned w, unsigned h);

    /// Scales the rectangle (x, y, w, h) of src to the rectangle (dx, dy, dw, dh) of dst, both clipped to their
    /// buffers. A width or height of 0 means up to the edge. Averages along an axis that shrinks and interpolates
    /// linearly along one that grows; copies between equal sizes. Scales packed colours by component. False if channels
    /// or types differ or a rectangle lies outside its buffer. src and dst may be the same buffer.
    static bool ResizeRect(const SxPicBuf& src, unsigned x, unsigned y, unsigned w, unsigned h, SxPicBuf& dst,
                           unsigned dx, unsigned dy, unsigned dw, unsigned dh);

    /// Scales all of src to all of dst; see ResizeRect().
    static bool Resize(const SxPicBuf& src, SxPicBuf& dst);

    /// dst = dst + src in the rectangle that both buffers have. Integers saturate at the limits of the type, unsigned
    /// ones at the full scale of dst's bpc; packed colours are added by component. False if channels or types differ.
    /// dst and src may be the same buffer.
    static bool Add(SxPicBuf& dst, const SxPicBuf& src);

    /// dst = dst - src, by the rules of Add(); unsigned values saturate at 0.
    static bool Subtract(SxPicBuf& dst, const SxPicBuf& src);

    /// Divides every value by the divisor. Integers are rounded to the nearest (halves away from zero) and saturate at
    /// the limits of the type. False for a divisor of 0.
    static bool DivideByValue(SxPicBuf& buffer, int divisor);
};
