#pragma once

#include "buffers/PixelTypes.h"

#include <cstddef>
#include <cstdint>
#include <type_traits>
#include <vector>

/// The channels of rows, the values of each one after another. Where there is one channel it is the row itself, else
/// the row is taken apart in one pass.
template<typename T>
class RowChannels
{
public:
    RowChannels(std::size_t channels, std::size_t pixels)
        : m_channels(channels)
        , m_pixels(pixels)
        , m_apart(channels == 1 ? 0 : channels * pixels)
    {
    }

    void take(const std::uint8_t* row)
    {
        m_row = row;
        if (m_channels == 3) // said as constants for the compiler's sake
            takeApart(std::integral_constant<std::size_t, 3>());
        else if (m_channels == 4)
            takeApart(std::integral_constant<std::size_t, 4>());
        else if (m_channels != 1)
            takeApart(m_channels);
    }

    const std::uint8_t* channel(std::size_t channel) const
    {
        return m_channels == 1 ? m_row : reinterpret_cast<const std::uint8_t*>(m_apart.data() + channel * m_pixels);
    }

private:
    template<typename Channels>
    void takeApart(Channels channels)
    {
        const std::size_t pixels = m_pixels;
        const std::uint8_t* row = m_row;
        T* apart = m_apart.data();
        for (std::size_t x = 0; x < pixels; ++x)
            for (std::size_t c = 0; c < channels; ++c)
                apart[c * pixels + x] = loadValue<T>(row, x * channels + c);
    }

    std::size_t m_channels;
    std::size_t m_pixels;
    std::vector<T> m_apart;
    const std::uint8_t* m_row = nullptr;
};
