#pragma once

#include "ByteReader.h"

#include <QtCore/QByteArray>

#include <cstdint>
#include <optional>

/// The first directory of a TIFF file: entries of 12 bytes, each with a tag, a type, a number of values, and the values
/// themselves or their offset. The file must outlive it.
class TiffDirectory
{
public:
    enum Tag : std::uint16_t {
        ImageWidth = 256,
        ImageLength = 257,
        BitsPerSample = 258,
        SamplesPerPixel = 277,
        MaxSampleValue = 281,
        TileWidth = 322,
        TileLength = 323,
    };
    static constexpr std::uint16_t shortType = 3; ///< values of 16 bits
    static constexpr qsizetype entryBytes = 12;

    explicit TiffDirectory(const QByteArray& file);

    /// The file's own byte order.
    static ByteReader::Order byteOrder(const QByteArray& file);

    /// False if the directory does not lie within the file. It then has no entries.
    bool isComplete() const { return m_begin > 0; }

    /// Number of entries.
    qsizetype count() const { return m_count; }

    /// The offset of an entry in the file; of the end of the directory for count().
    qsizetype offset(qsizetype entry) const { return m_begin + entry * entryBytes; }

    std::uint16_t tag(qsizetype entry) const { return m_reader.u16(offset(entry)); }

    /// The first value of the first entry with a tag, for values of 16 or 32 bits. Nothing if there is no such entry,
    /// or if its values lie outside the file.
    std::optional<std::uint32_t> value(Tag wanted) const;

private:
    ByteReader m_reader;
    qsizetype m_begin = 0;
    qsizetype m_count = 0;
};
