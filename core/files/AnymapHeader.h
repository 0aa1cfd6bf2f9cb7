#pragma once

#include <QtCore/QByteArray>

#include <algorithm>
#include <cctype>
#include <cstdint>

/// Reads the header of a portable anymap: numbers in text, with comments between them. The file must outlive it.
class AnymapHeader
{
public:
    explicit AnymapHeader(const QByteArray& file)
        : m_file(file)
    {
    }

    /// The next number, at most 2 to the power 32; 0 if there is none.
    std::uint64_t number()
    {
        while (m_end < m_file.size() && !isDigit()) {
            if (m_file[m_end] == '#')
                skipLine();
            else if (std::isspace(static_cast<unsigned char>(m_file[m_end])))
                ++m_end;
            else
                return 0;
        }
        m_begin = m_end;
        std::uint64_t value = 0;
        for (; m_end < m_file.size() && isDigit(); ++m_end)
            value = std::min<std::uint64_t>(value * 10 + std::uint64_t(m_file[m_end] - '0'), 1ULL << 32);
        return value;
    }

    /// The offset of the last number read.
    qsizetype begin() const { return m_begin; }

    /// The offset just after the last number read.
    qsizetype end() const { return m_end; }

private:
    bool isDigit() const { return m_file[m_end] >= '0' && m_file[m_end] <= '9'; }

    void skipLine()
    {
        while (m_end < m_file.size() && m_file[m_end] != '\n')
            ++m_end;
    }

    const QByteArray& m_file;
    qsizetype m_begin = 2;
    qsizetype m_end = 2;
};
