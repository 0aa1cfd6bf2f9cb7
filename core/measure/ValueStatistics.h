#pragma once

#include "Moments.h"
#include "buffers/PixelTypes.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <type_traits>

// Minimum, maximum, mean and variance of many values without loss of precision. Integers of up to 32 bits are summed
// exactly. Wider integers and floating values are summed in blocks, each relative to its first value; the means and
// squared deviations of the blocks are then merged.

/// Statistics of a set of values.
struct ValueSummary {
    long double min = 0;
    long double max = 0;
    long double mean = 0;
    long double variance = 0;
};

/// Statistics of integers of up to 32 bits.
template<typename T>
class ExactStatistics
{
public:
    /// Adds contiguous values, which may start at any address.
    void add(const std::uint8_t* values, std::size_t count)
    {
        constexpr std::size_t block = 16384; // small enough for 32-bit sums of small types
        for (std::size_t i = 0; i < count; i += block)
            addBlock(values + i * sizeof(T), std::min(block, count - i));
    }

    /// Adds values of which the sums are known.
    void merge(std::uint64_t count, std::uint64_t sum, std::uint64_t squares, T least, T greatest)
    {
        m_count += count;
        m_sum += sum;
        m_squares += squares;
        m_min = std::min(m_min, least);
        m_max = std::max(m_max, greatest);
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
        // The narrowest types that can hold a block's sums: more values fit into a vector.
        using BlockSum = std::conditional_t<sizeof(T) == 4, std::int64_t,
                                            std::conditional_t<std::is_signed_v<T>, std::int32_t, std::uint32_t>>;
        using Square = std::conditional_t<sizeof(T) == 4, std::uint64_t, std::uint32_t>;
        using BlockSquares = std::conditional_t<sizeof(T) == 1, std::uint32_t, std::uint64_t>;
        BlockSum sum = 0;
        BlockSquares squares = 0;
        std::uint64_t upperSquares = 0; // for 32-bit values: the upper halves of the squares, summed separately
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

/// Statistics of 64-bit integers and floating values. NaN makes mean and variance NaN; minimum and maximum ignore it.
template<typename T>
class MergedStatistics
{
    using W = MomentSum<T>;

public:
    /// The mean of n values lies within sqrt(n - 1) standard deviations of each of them. In a small block the sums
    /// around the first value therefore lose few digits.
    static constexpr std::size_t blockSize = 2048;

    /// Adds contiguous values, which may start at any address.
    void add(const std::uint8_t* values, std::size_t count)
    {
        for (std::size_t i = 0; i < count; i += blockSize)
            addBlock(values + i * sizeof(T), std::min(blockSize, count - i));
    }

    ValueSummary summary() const
    {
        ValueSummary summary;
        const bool onlyNan = m_min > m_max;
        constexpr long double unknown = std::numeric_limits<long double>::quiet_NaN();
        summary.min = onlyNan ? unknown : static_cast<long double>(m_min);
        summary.max = onlyNan ? unknown : static_cast<long double>(m_max);
        summary.mean = m_mean;
        summary.variance = m_squares / m_count;
        return summary;
    }

    /// Adds a block whose moments are known: around the block's first value, from least() and greatest() on.
    void addBlock(const Moments<T>& moments, W base, std::size_t count)
    {
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

    T least() const { return m_min; }
    T greatest() const { return m_max; }

private:
    void addBlock(const std::uint8_t* values, std::size_t count)
    {
        const auto base = static_cast<W>(loadValue<T>(values, 0));
        addBlock(momentsOf<T>(values, count, base, m_min, m_max), base, count);
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
    long double m_squares = 0; ///< sum of the squared deviations from the mean
    T m_min = above();
    T m_max = below();
};

template<typename T>
using ValueStatistics =
    std::conditional_t<std::is_integral_v<T> && sizeof(T) <= 4, ExactStatistics<T>, MergedStatistics<T>>;
