#pragma once

#include "CxImageData.h"
#include "CxPicBufAPI.h"

#include <cstdint>
#include <cstring>
#include <memory>
#include <random>
#include <string>
#include <vector>

/// What a test wants of a picture buffer.
struct BufferShape {
    unsigned width = 0;
    unsigned height = 0;
    unsigned channels = 1;
    ExImageDataType type = ExImageDataType::UInt8;
    unsigned padding = 0; ///< bytes after each row; may leave rows at odd addresses
    unsigned bpc = 0;     ///< 0 for the width of the type
};

/// A picture buffer with its own memory, all bytes 0xA5 at first, that knows whether something wrote where no pixel is.
class TestPicBuf
{
public:
    explicit TestPicBuf(const BufferShape& shape)
    {
        record.width = shape.width;
        record.height = shape.height;
        record.channels = shape.channels;
        record.dataType = shape.type;
        record.bpc = shape.bpc ? shape.bpc : SxPicBufInfo::bytesPerValue(shape.type) * 8;
        record.storageFormat = ExDataStorageFormat::Interleaved;
        record.isColor = shape.channels == 3 || shape.channels == 4;
        record.lineStride = record.bytesPerPixel() * shape.width + shape.padding;
        m_memory.assign(record.dataSize() + 2 * guard, fill);
        record.data = m_memory.data() + guard;
    }

    TestPicBuf(const TestPicBuf& other)
        : record(other.record)
        , m_memory(other.m_memory)
    {
        record.data = m_memory.data() + guard;
    }
    TestPicBuf& operator=(const TestPicBuf&) = delete;

    /// Random bytes in every pixel; floats get values of an ordinary size.
    void randomise(std::mt19937_64& random)
    {
        for (unsigned y = 0; y < record.height; ++y) {
            for (std::size_t i = 0; i < values(); ++i) {
                if (record.dataType == ExImageDataType::Float)
                    set<float>(i, y, float(std::int64_t(random() % 20001) - 10000) / 16.0F);
                else if (record.dataType == ExImageDataType::Double)
                    set<double>(i, y, double(std::int64_t(random() % 2000001) - 1000000) / 64.0);
                else
                    setBits(i, y, random());
            }
        }
    }

    /// Values in a row: width times channels.
    std::size_t values() const { return std::size_t(record.width) * record.channels; }

    template<typename T>
    T get(std::size_t index, unsigned y) const
    {
        T value;
        std::memcpy(&value, record.row(y) + index * sizeof(T), sizeof(T));
        return value;
    }

    template<typename T>
    void set(std::size_t index, unsigned y, T value)
    {
        std::memcpy(record.row(y) + index * sizeof(T), &value, sizeof(T));
    }

    /// Stores the low bits of a number.
    void setBits(std::size_t index, unsigned y, std::uint64_t bits)
    {
        const std::size_t size = SxPicBufInfo::bytesPerValue(record.dataType);
        std::memcpy(record.row(y) + index * size, &bits, size);
    }

    /// The bytes of one row's pixels.
    std::vector<std::uint8_t> rowBytes(unsigned y) const
    {
        return {record.row(y), record.row(y) + std::size_t(record.bytesPerPixel()) * record.width};
    }

    /// The bytes of all pixels, without padding.
    std::vector<std::uint8_t> pixels() const { return pixelsOf(record); }

    static std::vector<std::uint8_t> pixelsOf(const SxPicBuf& buffer)
    {
        std::vector<std::uint8_t> bytes;
        for (unsigned y = 0; y < buffer.height; ++y)
            bytes.insert(bytes.end(), buffer.row(y),
                         buffer.row(y) + std::size_t(buffer.bytesPerPixel()) * buffer.width);
        return bytes;
    }

    /// Whether padding and surroundings are as they were at first.
    bool onlyPixelsWritten() const
    {
        for (std::size_t i = 0; i < m_memory.size(); ++i) {
            const std::size_t at = i - guard;
            const bool inside = i >= guard && at < record.dataSize() &&
                                at % record.lineStride < std::size_t(record.bytesPerPixel()) * record.width;
            if (!inside && m_memory[i] != fill)
                return false;
        }
        return true;
    }

    /// An image with a copy of these pixels.
    std::unique_ptr<CxImageData> image() const
    {
        SxPicBuf copy;
        SxPicBufInfo info = record;
        info.lineStride = 0;
        CxPicBufAPI::AllocPicBufFromHeap(copy, info, false, 0);
        CxPicBufAPI::CopyPicBuf(copy, record, false);
        auto result = std::make_unique<CxImageData>();
        result->attachPicBuf(&copy);
        return result;
    }

    SxPicBuf record;

private:
    static constexpr std::uint8_t fill = 0xA5;
    static constexpr std::size_t guard = 64;
    std::vector<std::uint8_t> m_memory;
};

/// The eleven pixel types.
inline const std::vector<ExImageDataType> allTypes = {
    ExImageDataType::Int8,  ExImageDataType::UInt8,  ExImageDataType::Int16,     ExImageDataType::UInt16,
    ExImageDataType::Int32, ExImageDataType::UInt32, ExImageDataType::Int64,     ExImageDataType::UInt64,
    ExImageDataType::Float, ExImageDataType::Double, ExImageDataType::Packed565,
};

inline std::string typeName(ExImageDataType type)
{
    static const char* const names[] = {"None",   "Int8",  "UInt8",  "Int16", "UInt16", "Int32",
                                        "UInt32", "Int64", "UInt64", "Float", "Double", "Packed565"};
    return names[std::size_t(type)];
}
