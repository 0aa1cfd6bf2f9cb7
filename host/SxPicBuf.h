#pragma once

#include "HostGlobal.h"

#include <cstddef>
#include <cstdint>

/// The type of a channel value.
enum class ExImageDataType : std::uint32_t {
    None = 0,
    Int8 = 1,
    UInt8 = 2,
    Int16 = 3,
    UInt16 = 4,
    Int32 = 5,
    UInt32 = 6,
    Int64 = 7,
    UInt64 = 8,
    Float = 9,
    Double = 10,
    Packed565 = 11, ///< a colour pixel (5 bits red, 6 green, 5 blue) in 16 bits; such a buffer has one channel
};

/// How the channels of a pixel are arranged in memory.
enum class ExDataStorageFormat : std::uint32_t {
    None = 0,
    Interleaved = 1, ///< all channels of a pixel side by side; the format of every image made by scripts
    Planar = 2,      ///< one plane after another
};

/// Order of the colour filters on the sensor, named by the first two pixels of the first two rows.
enum class ExColorFilterArray : std::uint32_t { None = 0, RGGB = 1, GRBG = 2, GBRG = 3, BGGR = 4 };

/// Geometry and format of a picture buffer.
struct VANTREL_HOST_EXPORT SxPicBufInfo {
    std::uint32_t width = 0;      ///< pixels per row
    std::uint32_t height = 0;     ///< rows
    std::uint32_t lineStride = 0; ///< bytes from the start of one row to the next, padding included
    std::uint32_t channels = 0;   ///< values per pixel: 1 mono, 3 colour, 4 colour with alpha
    std::uint32_t bpc = 0;        ///< significant bits per value, for example 12 for 12-bit data in 16 bits
    std::uint32_t blackLevel = 0; ///< value of a pixel that received no light
    ExImageDataType dataType = ExImageDataType::None;
    ExDataStorageFormat storageFormat = ExDataStorageFormat::None;
    ExColorFilterArray colorFilterArray = ExColorFilterArray::None;
    bool isColor = false;            ///< channels are colours: blue, green, red and optionally alpha
    std::int32_t acqFrameNumber = 0; ///< the camera's own frame counter
    std::int32_t frameNumber = 0;    ///< frames since the acquisition started
    std::uint64_t timeStamp = 0;     ///< microseconds
    float saturation = 0.0F;         ///< full-scale value of floating-point data

    /// Size of one value of a type in bytes; 1 for None and for unknown types.
    static std::uint32_t bytesPerValue(ExImageDataType type);

    /// True for Float and Double.
    static constexpr bool isFloating(ExImageDataType type)
    {
        return type == ExImageDataType::Float || type == ExImageDataType::Double;
    }

    /// True for the signed integer types.
    static constexpr bool isSigned(ExImageDataType type)
    {
        return type == ExImageDataType::Int8 || type == ExImageDataType::Int16 || type == ExImageDataType::Int32 ||
               type == ExImageDataType::Int64;
    }

    /// True for the unsigned integer types. Packed colours are not integers.
    static constexpr bool isUnsigned(ExImageDataType type)
    {
        return type == ExImageDataType::UInt8 || type == ExImageDataType::UInt16 || type == ExImageDataType::UInt32 ||
               type == ExImageDataType::UInt64;
    }

    /// The smallest of UInt8, UInt16 and UInt32 that holds values of this many bits; UInt32 for more than 32.
    static constexpr ExImageDataType unsignedTypeForBits(std::uint32_t bits)
    {
        return bits <= 8 ? ExImageDataType::UInt8 : bits <= 16 ? ExImageDataType::UInt16 : ExImageDataType::UInt32;
    }

    /// True if this many channels are colours where nothing else says so: three, or four with alpha.
    static constexpr bool isColorChannelCount(std::uint32_t channels) { return channels == 3 || channels == 4; }

    /// True if an array or a list of numbers in this form is a colour picture: three channels of UInt8 or UInt16.
    static constexpr bool isColorArray(std::uint32_t channels, ExImageDataType type)
    {
        return channels == 3 && (type == ExImageDataType::UInt8 || type == ExImageDataType::UInt16);
    }

    /// Makes the pixels colours of 8 bits a channel, blue first, interleaved: 3 channels, or 4 with alpha.
    void setByteColors(std::uint32_t colorChannels)
    {
        channels = colorChannels;
        bpc = 8;
        dataType = ExImageDataType::UInt8;
        storageFormat = ExDataStorageFormat::Interleaved;
        isColor = true;
    }

    /// Size of one pixel with all its channels, in bytes.
    std::uint32_t bytesPerPixel() const;

    /// Number of values in a row, all channels together.
    std::size_t valuesPerRow() const { return std::size_t(width) * channels; }

    /// Size of a row's pixels in bytes, without the padding.
    std::size_t rowBytes() const { return std::size_t(bytesPerPixel()) * width; }

    /// The value of full brightness. For integers: the largest value of bpc bits, or of the type if bpc is 0 or too
    /// large. For floating types: the saturation, or 1 if it is 0. For other types: 1.
    long double fullScale() const;
};

/// A picture buffer: geometry and pixel memory.
///
/// A plain record without ownership. CxPicBufAPI::AllocPicBufFromHeap() allocates the memory. The caller frees it with
/// CxPicBufAPI::FreePicBuf(), unless an image takes it over (CxImageData::setPicBuf, CxImageData::attachPicBuf).
struct VANTREL_HOST_EXPORT SxPicBuf : SxPicBufInfo {
    /// First byte of the pixel memory, or null. In an interleaved buffer, channel c of pixel (x, y) is at
    /// data + y * lineStride + (x * channels + c) * bytesPerValue(dataType).
    std::uint8_t* data = nullptr;

    /// Size of the pixel memory in bytes, row padding included: height * lineStride.
    std::size_t dataSize() const;

    std::uint8_t* row(std::uint32_t y) { return data + std::size_t(y) * lineStride; }
    const std::uint8_t* row(std::uint32_t y) const { return data + std::size_t(y) * lineStride; }
};
