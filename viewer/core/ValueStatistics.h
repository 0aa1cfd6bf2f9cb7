#pragma once

#include "PixelTypes.h"

#include <algorithm>
#include <array>
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
        const auto base = static_cast<W>(loadValue<T>(values, 0));
        const W meanOfDifferences = sumOver(values, count, [base](W value) { return value - base; }) / W(count);
        const W mean = base + meanOfDifferences;
        const W squares = sumOver(values, count, [mean](W value) { return (value - mean) * (value - mean); });
        findEnds(values, count);

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
    using W = std::conditional_t<std::is_floating_point_v<T>, double, long double>;
    static constexpr std::size_t lanes = 8; // sums that do not wait for each other

    template<typename Term>
    static W sumOver(const std::uint8_t* values, std::size_t count, Term term)
    {
        std::array<W, lanes> sums = {};
        std::size_t i = 0;
        for (; i + lanes <= count; i += lanes)
            for (std::size_t lane = 0; lane < lanes; ++lane)
                sums[lane] += term(static_cast<W>(loadValue<T>(values, i + lane)));
        for (; i < count; ++i)
            sums[0] += term(static_cast<W>(loadValue<T>(values, i)));
        W sum = 0;
        for (const W part : sums)
            sum += part;
        return sum;
    }

    void findEnds(const std::uint8_t* values, std::size_t count)
    {
        std::array<T, lanes> least;
        std::array<T, lanes> greatest;
        least.fill(m_min);
        greatest.fill(m_max);
        const auto take = [&](std::size_t lane, T value) { // in this order a not-a-number is never taken
            least[lane] = value < least[lane] ? value : least[lane];
            greatest[lane] = value > greatest[lane] ? value : greatest[lane];
        };
        std::size_t i = 0;
        for (; i + lanes <= count; i += lanes)
            for (std::size_t lane = 0; lane < lanes; ++lane)
                take(lane, loadValue<T>(values, i + lane));
        for (; i < count; ++i)
            take(0, loadValue<T>(values, i));
        m_min = *std::min_element(least.begin(), least.end());
        m_max = *std::max_element(greatest.begin(), greatest.end());
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
