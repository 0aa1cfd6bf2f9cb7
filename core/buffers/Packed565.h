#pragma once

#include "SxPicBuf.h"

#include <array>
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

    /// The components as 8-bit values, blue first: full scale becomes 255, rounded to the nearest, as in every
    /// conversion of depth in this library. fromBytes() undoes this exactly.
    std::array<std::uint8_t, 3> bytes() const
    {
        const auto widened = [](unsigned value, unsigned maximum) {
            return std::uint8_t((value * 255 + maximum / 2) / maximum);
        };
        return {widened(blue, maxBlue), widened(green, maxGreen), widened(red, maxRed)};
    }

    /// The colour nearest to three 8-bit values, blue first.
    static Packed565 fromBytes(const std::uint8_t* bytes)
    {
        const auto narrowed = [](unsigned value, unsigned maximum) {
            return std::uint8_t((value * maximum + 127) / 255);
        };
        return {narrowed(bytes[0], maxBlue), narrowed(bytes[1], maxGreen), narrowed(bytes[2], maxRed)};
    }

    std::uint16_t pack() const { return std::uint16_t(blue | unsigned(green) << 5U | unsigned(red) << 11U); }
};

/// Stores the components of packed colours as values of a UInt8 buffer of equal size with three channels, blue first.
/// The values keep their ranges of 5 and 6 bits.
void unpackComponents(const SxPicBuf& packed, SxPicBuf& components);

/// Undoes unpackComponents().
void packComponents(const SxPicBuf& components, SxPicBuf& packed);
