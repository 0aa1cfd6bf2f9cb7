#pragma once

#include "PixelLoop.h"
#include "PixelTypes.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <type_traits>

// Exact division and scaling of integers of up to 16 bits in vectors. There are no vector instructions that divide
// integers, so these functions multiply. The tests compare all values with all divisors and all depths.

/// Divides integers of 8 or 16 bits by one divisor: rounded to the nearest, halves away from zero, saturated at the
/// limits of the type. Multiplies by a reciprocal in single precision.
///
/// Why the result is exact: let v be the magnitude of the value, at most 2 to the power 16, and d that of the divisor.
/// The quotient is the integer part of q = (v + floor(d / 2) + 0.5) / d. Here q is at least 0.5 / d away from every
/// integer. The dividend is exact in single precision: it is below 2 to the power 18 and a multiple of 0.5. The
/// reciprocal and the product are each rounded once, so the relative error is below 2 to the power -22 and the error
/// below (2 to the power 18) / d * (2 to the power -22) = 0.0625 / d. All divisors from 2 to the power 18 on give 0.
template<typename T>
class SmallDivisor
{
    static_assert(std::is_integral_v<T> && sizeof(T) <= 2);

public:
    /// The divisor is any number but 0.
    explicit SmallDivisor(int divisor)
    {
        constexpr std::int64_t limit = 1 << 18;
        const std::int64_t magnitude = std::min(limit, divisor < 0 ? -std::int64_t(divisor) : divisor);
        const std::int64_t half = magnitude / 2; // rounded down
        m_half = float(half) + 0.5F;
        m_reciprocal = 1.0F / float(divisor < 0 ? -magnitude : magnitude);
        if (std::is_unsigned_v<T> && divisor < 0)
            m_reciprocal = 0; // every quotient saturates at 0
    }

    [[gnu::always_inline]] T quotient(T value) const
    {
        const float shifted = float(value) + (std::is_signed_v<T> && value < 0 ? -m_half : m_half);
        const auto result = static_cast<std::int32_t>(shifted * m_reciprocal);
        if constexpr (std::is_signed_v<T>) // the lowest value by -1
            return static_cast<T>(std::min<std::int32_t>(result, std::numeric_limits<T>::max()));
        else
            return static_cast<T>(result);
    }

private:
    float m_half;
    float m_reciprocal;
};

/// The upper half of a product: one vector instruction, unless it is applied to another upper half directly.
[[gnu::always_inline]] inline std::uint16_t upperHalf(std::uint16_t a, std::uint16_t b)
{
    return static_cast<std::uint16_t>(std::uint32_t(a) * b >> 16U);
}

/// Divides bytes by a divisor from 2 to 511, rounded to the nearest: floor((2 * value + divisor) / (2 * divisor)).
///
/// Let d be twice the divisor, k the largest integer with 2 ^ k < d, and m = ceil(2 ^ (16 + k) / d), which fits into 16
/// bits. Then n * m / 2 ^ (16 + k) exceeds n / d by less than n / 2 ^ (16 + k). That does not reach the next multiple
/// of 1 / d, since n * d is below 2 ^ (16 + k): n is at most 1021, and d at most 2 ^ (k + 1).
inline void divideBytes(std::uint8_t* values, std::size_t count, unsigned divisor)
{
    const auto k = unsigned(std::bit_width(divisor - 1));
    const auto multiplier = static_cast<std::uint16_t>(((1U << (16 + k)) + 2 * divisor - 1) / (2 * divisor));
    const auto downByK = static_cast<std::uint16_t>(65536U >> k);
    const auto addend = static_cast<std::uint16_t>(divisor);
    inWidestVectors([=]() VANTREL_PIXEL_LOOP {
        constexpr std::size_t together = 1024;
        std::array<std::uint16_t, together> products;
        for (std::size_t i = 0; i < count; i += together) {
            const std::size_t part = std::min(together, count - i);
            std::uint8_t* const run = values + i;
            for (std::size_t j = 0; j < part; ++j)
                products[j] = upperHalf(static_cast<std::uint16_t>(2 * run[j] + addend), multiplier);
            for (std::size_t j = 0; j < part; ++j)
                run[j] = static_cast<std::uint8_t>(upperHalf(products[j], downByK));
        }
    });
}

/// Divides 16-bit values by a divisor from 3 to 65535, rounded to the nearest: the integer quotient, plus 1 if the rest
/// is at least half the divisor.
///
/// Let k be the smallest integer with 2 ^ k >= divisor, and m = ceil(2 ^ (16 + k) / divisor), which has 17 bits. As in
/// divideBytes(), value * m / 2 ^ (16 + k) has the right integer part, since value * divisor is below 2 ^ (16 + k).
/// `upper` is the upper half of the product with the low 16 bits of m; the mean adds the value for the 17th bit and
/// divides by 2.
inline void divideWords(std::uint8_t* values, std::size_t count, unsigned divisor)
{
    const auto k = unsigned(std::bit_width(divisor - 1));
    const auto multiplier = static_cast<std::uint16_t>(((std::uint64_t(1) << (16 + k)) + divisor - 1) / divisor);
    const auto downByRest = static_cast<std::uint16_t>(131072U >> k);
    const auto by = static_cast<std::uint16_t>(divisor);
    const auto half = static_cast<std::uint16_t>(divisor - divisor / 2);
    inWidestVectors([=]() VANTREL_PIXEL_LOOP {
        for (std::size_t i = 0; i < count; ++i) {
            const auto value = loadValue<std::uint16_t>(values, i);
            const std::uint16_t upper = upperHalf(value, multiplier);
            const auto halfDifference = static_cast<std::uint16_t>(static_cast<std::uint16_t>(value - upper) >> 1U);
            const auto mean = static_cast<std::uint16_t>(halfDifference + upper);
            const std::uint16_t quotient = upperHalf(mean, downByRest);
            const auto rest = static_cast<std::uint16_t>(value - static_cast<std::uint16_t>(quotient * by));
            storeValue(values, i, static_cast<std::uint16_t>(quotient + (rest >= half ? 1 : 0)));
        }
    });
}

/// Divides contiguous values, which may start at any address, by any number but 0.
template<typename T>
void divideSmallValues(std::uint8_t* values, std::size_t count, int divisor)
{
    if (std::is_same_v<T, std::uint8_t> && divisor >= 2 && divisor <= 511)
        return divideBytes(values, count, unsigned(divisor));
    if (std::is_same_v<T, std::uint16_t> && divisor >= 3 && divisor <= 65535)
        return divideWords(values, count, unsigned(divisor));
    inWidestVectors([values, count, by = SmallDivisor<T>(divisor)]() VANTREL_PIXEL_LOOP {
        for (std::size_t i = 0; i < count; ++i)
            storeValue(values, i, by.quotient(loadValue<T>(values, i)));
    });
}

// Scaling of unsigned values from one full scale to another: value * highest / full, rounded to the nearest integer.
// Both full scales are 2 to a power, minus 1. So full is odd, and no result lies half-way between two integers.

/// To a full scale that is a multiple of the former one, as from 8 to 16 bits.
template<typename D, typename S>
void scaleByInteger(const std::uint8_t* in, std::uint8_t* out, std::size_t count, std::uint32_t full,
                    std::uint32_t factor)
{
    inWidestVectors([=, top = static_cast<S>(full), by = static_cast<D>(factor)]() VANTREL_PIXEL_LOOP {
        for (std::size_t i = 0; i < count; ++i)
            storeValue(out, i, static_cast<D>(static_cast<D>(std::min(loadValue<S>(in, i), top)) * by));
    });
}

/// From 9 to 16 bits to 8, in 16-bit arithmetic. The result is about value / 2 ^ (bits - 8), less the share of the
/// value by which 255 / full is smaller than that factor.
inline void scaleToBytes(const std::uint8_t* in, std::uint8_t* out, std::size_t count, std::uint32_t full)
{
    const auto bits = unsigned(std::bit_width(full));
    const auto share = static_cast<std::uint16_t>(256U - (1U << (16 - bits))); // in units of 2 to the power -16
    const auto rounding = static_cast<std::uint16_t>((1U << (bits - 9)) - 1);
    const auto downToBytes = static_cast<std::uint16_t>(65536U >> (bits - 8));
    inWidestVectors([=, top = static_cast<std::uint16_t>(full)]() VANTREL_PIXEL_LOOP {
        for (std::size_t i = 0; i < count; ++i) {
            const std::uint16_t value = std::min(loadValue<std::uint16_t>(in, i), top);
            const auto rounded = static_cast<std::uint16_t>(value - upperHalf(value, share) + rounding);
            out[i] = static_cast<std::uint8_t>(upperHalf(rounded, downToBytes));
        }
    });
}

/// Where highest = factor * full + rest and rest * full is below 2 to the power 21. The product value * rest / full is
/// then at least 0.5 / full away from the middle between two integers, and its error in single precision is below
/// rest * 2 ^ -22, which is less.
template<typename D, typename S>
void scaleInParts(const std::uint8_t* in, std::uint8_t* out, std::size_t count, std::uint32_t full,
                  std::uint32_t factor, std::uint32_t rest)
{
    const float fraction = float(rest) / float(full);
    inWidestVectors([=, top = static_cast<S>(full), whole = std::int32_t(factor)]() VANTREL_PIXEL_LOOP {
        for (std::size_t i = 0; i < count; ++i) {
            const std::int32_t value = std::min(loadValue<S>(in, i), top);
            const float part = float(value) * fraction + 0.5F;
            storeValue(out, i, static_cast<D>(value * whole + static_cast<std::int32_t>(part)));
        }
    });
}

/// To fewer bits.
template<typename D, typename S>
void scaleDown(const std::uint8_t* in, std::uint8_t* out, std::size_t count, std::uint32_t full, std::uint32_t highest)
{
    inWidestVectors([=, bits = unsigned(std::bit_width(full))]() VANTREL_PIXEL_LOOP {
        for (std::size_t i = 0; i < count; ++i) {
            const std::uint32_t value = std::min<std::uint32_t>(loadValue<S>(in, i), full);
            const std::uint32_t dividend = value * highest + full / 2;
            storeValue(out, i, static_cast<D>((dividend + (dividend >> bits) + 1) >> bits)); // = dividend / full
        }
    });
}

/// Scales values of up to `full`, larger ones clipped to it, to values of up to `highest`.
template<typename D, typename S>
void scaleSmallValues(const std::uint8_t* in, std::uint8_t* out, std::size_t count, std::uint32_t full,
                      std::uint32_t highest)
{
    const std::uint32_t factor = highest / full;
    const std::uint32_t rest = highest % full;
    if (rest == 0)
        return scaleByInteger<D, S>(in, out, count, full, factor);
    if constexpr (sizeof(S) == 2 && sizeof(D) == 1)
        if (full > 255 && highest == 255)
            return scaleToBytes(in, out, count, full);
    if (rest * full < 1U << 21U)
        scaleInParts<D, S>(in, out, count, full, factor, rest);
    else
        scaleDown<D, S>(in, out, count, full, highest);
}
