#pragma once

#include <cstdint>

/// A colour packed into 16 bits: blue in the low 5 bits, green in the next 6, red in the high 5.
struct Packed565 {
    std::uint8_t blue = 0;  ///< 0 to 31
    std::uint8_t green = 0; ///< 0 to 63
    std::uint8_t red = 0;   ///< 0 to 31

    static constexpr unsigned maxBlue = 31;
    static constexpr unsigned maxGreen = 63;
    static constexpr unsigned maxRed = 31;

    static Packed565 unpack(std::uint16_t word)
    {
        return {std::uint8_t(word & 31U), std::uint8_t((word >> 5U) & 63U), std::uint8_t(word >> 11U)};
    }

    std::uint16_t pack() const { return std::uint16_t(blue | unsigned(green) << 5U | unsigned(red) << 11U); }
};
