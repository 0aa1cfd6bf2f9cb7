#pragma once

#include "HostGlobal.h"
#include "SxPicBuf.h"

/// Operations on picture buffers.
///
/// All respect row padding on both sides. Source and destination may be the same buffer only where it is said. Results
/// tell success; an operation that fails leaves its destination as it was, unless said otherwise, and logs one line.
///
/// Scripts hand over any buffer that an image has, so every operation refuses one without pixels (`data` is null, a
/// side is 0, rows overlap) on either side.
class VANTREL_HOST_EXPORT CxPicBufAPI
{
public:
    CxPicBufAPI() = delete;

    /// Allocates pixel memory for a geometry and fills the record in.
    ///
    /// lineStride  bytes per row; 0 lets the library choose (rows then start at multiples of 16 bytes).
    /// blackLevel  recorded as given.
    /// zeroFill    whether the memory is cleared.
    /// alignment   of the first byte, a power of two; 0 for the default of 64.
    ///
    /// On failure (no memory, a dimension of 0, a line stride too short, a size that does not fit) `data` is null.
    static void AllocPicBufFromHeap(SxPicBuf& buffer, unsigned width, unsigned height, unsigned channels,
                                    ExImageDataType dataType, unsigned lineStride, unsigned blackLevel, unsigned bpc,
                                    ExDataStorageFormat storageFormat, ExColorFilterArray colorFilterArray,
                                    bool isColor, bool zeroFill, unsigned long alignment);

    /// The same from a geometry record, all of whose fields are taken over; a line stride of 0 is chosen by the
    /// library. With uninitialized the memory is not cleared, for callers that write every pixel. True on success.
    static bool AllocPicBufFromHeap(SxPicBuf& buffer, const SxPicBufInfo& info, bool uninitialized,
                                    unsigned long alignment);

    /// Frees the pixel memory and sets `data` to null; with reset the whole record becomes empty.
    static void FreePicBuf(SxPicBuf& buffer, bool reset);

    /// Copies pixels between buffers of equal width, height, channels and type; false for others. With withInfo the
    /// whole record but the line stride goes along: bpc, black level, frame numbers, time stamp, saturation, colour.
    /// Copying a buffer onto itself succeeds.
    static bool CopyPicBuf(SxPicBuf& dst, const SxPicBuf& src, bool withInfo);

    /// Exchanges the first and third channel of every pixel in place, for three or four channels of any type; false for
    /// others.
    static bool SwapRedAndBlue(SxPicBuf& buffer);

    /// True when a value below zero is stored; always false for unsigned types.
    static bool DetectNegativePixelValue(const SxPicBuf& buffer);

    /// Finds the bits that the values use: the position of the highest bit set in any absolute value, at least 1.
    /// Stores it in bpc and returns true; false (bpc unchanged) for floating and packed types. With wholeImage every
    /// pixel is looked at, without only every fourth row.
    static bool DetectColorBitDepth(const SxPicBuf& buffer, unsigned& bpc, bool wholeImage);

    /// The largest absolute value stored; floating types give the value rounded down (at most what 64 bits hold), NaN
    /// counts as 0, packed colours as their 16-bit words.
    static std::uint64_t DetectMaxAbsValue(const SxPicBuf& buffer);

    /// Converts values into the type and bpc of dst, which has the same width, height and channels and memory of its
    /// own.
    ///
    /// With scale the full scale of src becomes the full scale of dst, and integers beyond full scale become full
    /// scale. Full scale of an integer type is its largest value of bpc bits, of a floating type its saturation, or 1
    /// when that is 0. Without scale values are kept and clipped to what dst's type can hold (not to its bpc: see
    /// CheckPicValidData). Both round to the nearest integer; values below zero become 0 in unsigned types, NaN becomes
    /// 0 in integer types. Packed colours convert to packed colours only.
    static bool ConvertPicToDifBpc(const SxPicBuf& src, SxPicBuf& dst, bool scale);

    /// Converts anything to 8-bit colour with 3 or 4 channels, whichever dst has; alpha becomes 255 unless src has it.
    /// Full scale (see ConvertPicToDifBpc) becomes 255. One or two channels are grey in the first, of more than four
    /// the first three count. src and dst have the same size and memory of their own.
    static bool ConvertPicToRGB(const SxPicBuf& src, SxPicBuf& dst);

    /// Copies one channel into a one-channel buffer of the same size and type.
    static bool ExtractChannel(const SxPicBuf& src, SxPicBuf& dst, unsigned channel);

    /// False when an absolute value needs more bits than the buffer's bpc says, or there are no pixels. Floating and
    /// packed types are always valid.
    static bool CheckPicValidData(const SxPicBuf& buffer);

    /// Copies the rectangle (x, y, w, h) of src to (dx, dy) of dst, clipped to both; false when channels or types
    /// differ or nothing is left to copy. May be used within one buffer, also when the rectangles overlap.
    static bool CopyRect(SxPicBuf& dst, unsigned dx, unsigned dy, const SxPicBuf& src, unsigned x, unsigned y,
                         unsigned w, unsigned h);

    /// Scales the rectangle (x, y, w, h) of src to the rectangle (dx, dy, dw, dh) of dst, both clipped to their
    /// buffers; a width or height of 0 means up to the edge. An axis that shrinks is averaged, one that grows is
    /// interpolated linearly; equal sizes are copied. Packed colours are scaled by component. False when channels or
    /// types differ or a rectangle lies outside its buffer. May be used within one buffer.
    static bool ResizeRect(const SxPicBuf& src, unsigned x, unsigned y, unsigned w, unsigned h, SxPicBuf& dst,
                           unsigned dx, unsigned dy, unsigned dw, unsigned dh);

    /// Scales the whole of src to the whole of dst.
    static bool Resize(const SxPicBuf& src, SxPicBuf& dst);

    /// dst = dst + src, saturating at the limits of the type and, for unsigned types, at full scale of dst's bpc;
    /// packed colours by component. Only the common rectangle is touched; false when channels or types differ. dst and
    /// src may be the same.
    static bool Add(SxPicBuf& dst, const SxPicBuf& src);

    /// dst = dst - src, in the same manner; unsigned values stop at 0.
    static bool Subtract(SxPicBuf& dst, const SxPicBuf& src);

    /// Divides every value, rounding to the nearest integer (halves away from zero) and saturating. A divisor of 0
    /// changes nothing: false.
    static bool DivideByValue(SxPicBuf& buffer, int divisor);
};
