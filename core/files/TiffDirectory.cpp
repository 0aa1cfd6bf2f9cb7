#include "TiffDirectory.h"

TiffDirectory::TiffDirectory(const QByteArray& file)
    : m_reader(file, byteOrder(file))
{
    if (!m_reader.has(0, 8))
        return;
    const auto at = qsizetype(m_reader.u32(4));
    constexpr qsizetype linkBytes = 4; // the offset of the next directory
    if (!m_reader.has(at, 2) || !m_reader.has(at + 2, m_reader.u16(at) * entryBytes + linkBytes))
        return;
    m_begin = at + 2;
    m_count = m_reader.u16(at);
}

ByteReader::Order TiffDirectory::byteOrder(const QByteArray& file)
{
    return file.startsWith('I') ? ByteReader::LittleEndian : ByteReader::BigEndian;
}

std::optional<std::uint32_t> TiffDirectory::value(Tag wanted) const
{
    for (qsizetype entry = 0; entry < m_count; ++entry) {
        if (tag(entry) != wanted)
            continue;
        const qsizetype at = offset(entry);
        const bool isShort = m_reader.u16(at + 2) == shortType;
        const qsizetype valueBytes = isShort ? 2 : 4;
        constexpr qsizetype placeBytes = 4; // more values than fit here stand elsewhere
        const bool isElsewhere = qsizetype(m_reader.u32(at + 4)) * valueBytes > placeBytes;
        const qsizetype place = isElsewhere ? qsizetype(m_reader.u32(at + 8)) : at + 8;
        if (!m_reader.has(place, valueBytes))
            return std::nullopt;
        return isShort ? m_reader.u16(place) : m_reader.u32(place);
    }
    return std::nullopt;
}
