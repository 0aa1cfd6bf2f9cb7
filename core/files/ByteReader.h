#pragma once

#include <QtCore/QByteArray>

#include <cstdint>

/// Reads numbers in a given byte order from the bytes of a file. Check has() before reading.
class ByteReader
{
public:
    enum Order { LittleEndian, BigEndian };

    ByteReader(const QByteArray& bytes, Order order)
        : m_bytes(bytes)
        , m_order(order)
    {
    }

    /// True if the file has count bytes from the given offset on.
    bool has(qsizetype at, qsizetype count) const { return at >= 0 && at <= m_bytes.size() - count; }

    std::uint8_t u8(qsizetype at) const { return std::uint8_t(m_bytes[at]); }

    std::uint16_t u16(qsizetype at) const
    {
        const unsigned first = u8(at);
        const unsigned second = u8(at + 1);
        return std::uint16_t(m_order == LittleEndian ? first | second << 8U : first << 8U | second);
    }

    std::uint32_t u32(qsizetype at) const
    {
        const std::uint32_t first = u16(at);
        const std::uint32_t second = u16(at + 2);
        return m_order == LittleEndian ? first | second << 16U : first << 16U | second;
    }

private:
    const QByteArray& m_bytes;
    Order m_order;
};
