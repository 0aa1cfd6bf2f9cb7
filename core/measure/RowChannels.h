#pragma once

#include "buffers/PixelTypes.h"

#include <cstddef>
#include <cstdint>
#include <type_traits>
#include <vector>

/// Splits rows into channels, each with contiguous values. A row with one channel is used as it is, without a copy.
template<typename T>
class RowChannels
{
public:
    RowChannels(std::size_t channels, std::size_t pixels)
        : m_channels(channels)
        , m_pixels(pixels)
        , m_separated(channels == 1 ? 0 : channels * pixels)
    {
    }

    /// Sets the row. It must stay valid while its channels are read.
    void take(const std::uint8_t* row)
    {
        m_row = row;
        if (m_channels == 3) // constants let the compiler unroll the loop
            split(std::integral_constant<std::size_t, 3>());
        else if (m_channels == 4)
            split(std::integral_constant<std::size_t, 4>());
        else if (m_channels != 1)
            split(m_channels);
    }

    /// The values of one channel of the current row.
    const std::uint8_t* channel(std::size_t channel) const
    {
        return m_channels == 1 ? m_row : reinterpret_cast<const std::uint8_t*>(m_separated.data() + channel * m_pixels);
    }

private:
    template<typename Channels>
    void split(Channels channels)
    {
        const std::size_t pixels = m_pixels;
        const std::uint8_t* row = m_row;
        T* separated = m_separated.data();
        for (std::size_t x = 0; x < pixels; ++x)
            for (std::size_t c = 0; c < channels; ++c)
                separated[c * pixels + x] = loadValue<T>(row, x * channels + c);
    }

    std::size_t m_channels;
    std::size_t m_pixels;
    std::vector<T> m_separated;
    const std::uint8_t* m_row = nullptr;
};
