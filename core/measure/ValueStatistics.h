#pragma once

#include "Moments.h"
#include "buffers/PixelTypes.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <type_traits>

// Minimum, maximum, mean and deviation of many values, without loss: integers of up to 32 bits are summed exactly,
// wider ones and floating values as deviations from the mean of each run, which are then merged.

/// What is known about a set of values once all are in.
struct ValueSummary {
    long double min = 0;
    long double max = 0;
    long double mean = 0;
    long double variance = 0;
};

/// For integers of up to 32 bits.
template<typename T>
class ExactStatistics
{
public:
    /// Adds values that stand one after another at any address.
    void add(const std::uint8_t* values, std::size_t count)
    {
        constexpr std::size_t block = 16384; // keeps the sums of a block within 32 bits for small types
        for (std::size_t i = 0; i < count; i += block)
            addBlock(values + i * sizeof(T), std::min(block, count - i));
    }

    ValueSummary summary() const
    {
        const auto count = static_cast<long double>(m_count);
        ValueSummary summary;
        summary.min = m_min;
        summary.max = m_max;
        summary.mean = static_cast<long double>(m_sum) / count;
        const Unsigned128 magnitude = static_cast<Unsigned128>(m_sum < 0 ? -m_sum : m_sum);
        const Unsigned128 spread = m_count * m_squares - magnitude * magnitude;
        summary.variance = static_cast<long double>(spread) / count / count;
        return summary;
    }

private:
    __extension__ using Signed128 = __int128;
    __extension__ using Unsigned128 = unsigned __int128;

    void addBlock(const std::uint8_t* values, std::size_t count)
    {
        // As narrow as holds a block: the narrower, the more values a vector has.
        using BlockSum = std::conditional_t<sizeof(T) == 4, std::int64_t,
                                            std::conditional_t<std::is_signed_v<T>, std::int32_t, std::uint32_t>>;
        using Square = std::conditional_t<sizeof(T) == 4, std::uint64_t, std::uint32_t>;
        using BlockSquares = std::conditional_t<sizeof(T) == 1, std::uint32_t, std::uint64_t>;
        BlockSum sum = 0;
        BlockSquares squares = 0;
        std::uint64_t upperSquares = 0; // a block of 32-bit values: halves of the squares apart
        T least = std::numeric_limits<T>::max();
        T greatest = std::numeric_limits<T>::min();
        for (std::size_t i = 0; i < count; ++i) {
            const T value = loadValue<T>(values, i);
            least = std::min(least, value);
            greatest = std::max(greatest, value);
            sum += static_cast<BlockSum>(value);
            const auto magnitude = static_cast<Square>(std::is_signed_v<T> && value < 0 ? -static_cast<BlockSum>(value)
                                                                                        : static_cast<BlockSum>(value));
            const Square square = magnitude * magnitude;
            if constexpr (sizeof(T) == 4) {
                squares += square & 0xFFFFFFFFU;
                upperSquares += square >> 32U;
            } else {
                squares += square;
            }
        }
        m_count += count;
        m_sum += sum;
        m_squares += squares;
        m_squares += static_cast<Unsigned128>(upperSquares) << 32U;
        m_min = std::min(m_min, least);
        m_max = std::max(m_max, greatest);
    }

    std::uint64_t m_count = 0;
    Signed128 m_sum = 0;
    Unsigned128 m_squares = 0;
    T m_min = std::numeric_limits<T>::max();
    T m_max = std::numeric_limits<T>::min();
};

/// For 64-bit integers and floating types. A value that is not a number makes mean and variance so, and counts neither
/// for the minimum nor for the maximum.
template<typename T>
class MergedStatistics
{
public:
    /// Adds values that stand one after another at any address.
    void add(const std::uint8_t* values, std::size_t count)
    {
        // The mean of some values cannot be further from one of them than their number allows: few enough, and sums
        // around the first one keep their digits.
        constexpr std::size_t block = 2048;
        for (std::size_t i = 0; i < count; i += block)
            addBlock(values + i * sizeof(T), std::min(block, count - i));
    }

    ValueSummary summary() const
    {
        ValueSummary summary;
        const bool nothing = m_min > m_max;
        constexpr long double unknown = std::numeric_limits<long double>::quiet_NaN();
        summary.min = nothing ? unknown : static_cast<long double>(m_min);
        summary.max = nothing ? unknown : static_cast<long double>(m_max);
        summary.mean = m_mean;
        summary.variance = m_squares / m_count;
        return summary;
    }

private:
    using W = MomentSum<T>;

    void addBlock(const std::uint8_t* values, std::size_t count)
    {
        const auto base = static_cast<W>(loadValue<T>(values, 0));
        const Moments<T> moments = momentsOf<T>(values, count, base, m_min, m_max);
        const W shift = moments.sum / W(count);
        const W mean = base + shift;
        const W squares = moments.squares - moments.sum * shift;
        m_min = moments.least;
        m_max = moments.greatest;

        const auto all = static_cast<long double>(m_count + count);
        const long double delta = static_cast<long double>(mean) - m_mean;
        if (m_count == 0) {
            m_mean = mean;
            m_squares = squares;
        } else {
            m_squares += static_cast<long double>(squares) + delta * delta * m_count * count / all;
            m_mean += delta * count / all;
        }
        m_count += count;
    }

    static constexpr T above()
    {
        if constexpr (std::is_floating_point_v<T>)
            return std::numeric_limits<T>::infinity();
        else
            return std::numeric_limits<T>::max();
    }
    static constexpr T below()
    {
        if constexpr (std::is_floating_point_v<T>)
            return -std::numeric_limits<T>::infinity();
        else
            return std::numeric_limits<T>::min();
    }

    std::uint64_t m_count = 0;
    long double m_mean = 0;
    long double m_squares = 0; ///< of the deviations from the mean
    T m_min = above();
    T m_max = below();
};

template<typename T>
using ValueStatistics =
    std::conditional_t<std::is_integral_v<T> && sizeof(T) <= 4, ExactStatistics<T>, MergedStatistics<T>>;
