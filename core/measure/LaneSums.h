#pragma once

#include "ValueStatistics.h"
#include "buffers/PixelLoop.h"
#include "buffers/PixelTypes.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <type_traits>

static_assert(std::endian::native == std::endian::little, "the first of two values is in the lower half of a word");

template<typename T>
constexpr bool hasLaneSums = std::is_same_v<T, std::uint8_t> || std::is_same_v<T, std::uint16_t>;

/// Exact sums of unsigned values of 8 or 16 bits in lanes: value i of every run belongs to lane i. The runs lie at
/// equal distances, so that a lane can be a column of an image, or belong to one channel of its pixels.
///
/// Two neighbouring values are read as one word of twice the width. The even and the odd values are then added in words
/// of that width, which are wide enough for mostRuns values, and for the lower and upper halves of as many squares. So
/// no value is widened or moved to another place of a vector.
template<typename T>
class LaneSums
{
    static_assert(hasLaneSums<T>);
    using Word = std::conditional_t<sizeof(T) == 1, std::uint16_t, std::uint32_t>;
    static constexpr std::size_t words = 32 / sizeof(Word);
    static constexpr unsigned halfBits = sizeof(T) * 8;

public:
    static constexpr std::size_t lanes = 2 * words;
    static constexpr std::size_t mostRuns = 256;

    void clear() { *this = LaneSums(); }

    /// Adds runs of `lanes` values, which may start at any address, in steps of some bytes. No more than mostRuns since
    /// the last clear().
    void add(const std::uint8_t* first, std::size_t step, std::size_t runs)
    {
        LaneSums* const sums = this;
        inWidestVectors([=]() VANTREL_PIXEL_LOOP {
            LaneSums added = *sums; // a copy, which can stay in registers
            for (std::size_t run = 0; run < runs; ++run) {
                for (std::size_t i = 0; i < words; ++i) {
                    const auto word = loadValue<Word>(first + run * step, i);
                    added.m_even.take(i, static_cast<Word>(word & std::numeric_limits<T>::max()));
                    added.m_odd.take(i, static_cast<Word>(word >> halfBits));
                }
            }
            *sums = added;
        });
    }

    /// Adds a lane, which has had this many values, to the statistics.
    void addTo(ExactStatistics<T>& statistics, std::size_t lane, std::size_t count) const
    {
        const Half& half = lane % 2 == 0 ? m_even : m_odd;
        const std::size_t i = lane / 2;
        const std::uint64_t squares = half.low[i] + (std::uint64_t(half.high[i]) << halfBits);
        statistics.merge(count, half.sum[i], squares, static_cast<T>(half.least[i]), static_cast<T>(half.greatest[i]));
    }

private:
    struct Half {
        Half() { least.fill(std::numeric_limits<T>::max()); }

        [[gnu::always_inline]] void take(std::size_t i, Word value)
        {
            least[i] = std::min(least[i], value);
            greatest[i] = std::max(greatest[i], value);
            sum[i] = static_cast<Word>(sum[i] + value);
            const auto square = static_cast<Word>(value * value);
            low[i] = static_cast<Word>(low[i] + (square & std::numeric_limits<T>::max()));
            high[i] = static_cast<Word>(high[i] + (square >> halfBits));
        }

        std::array<Word, words> least;
        std::array<Word, words> greatest = {};
        std::array<Word, words> sum = {};
        std::array<Word, words> low = {};
        std::array<Word, words> high = {};
    };

    Half m_even;
    Half m_odd;
};

/// Exact statistics of each channel of pixels with up to four channels.
template<typename T>
class InterleavedStatistics
{
public:
    static constexpr std::size_t mostChannels = 4;

    explicit InterleavedStatistics(std::size_t channels)
        : m_channels(channels)
        , m_phases(channels == 3 ? 3 : 1)
    {
    }

    /// Adds whole pixels, which may start at any address.
    void add(const std::uint8_t* values, std::size_t count)
    {
        // With three channels every third run has the same channels in the same lanes.
        const std::size_t group = m_phases * LaneSums<T>::lanes;
        const std::size_t groups = count / group;
        for (std::size_t done = 0; done < groups;) {
            const std::size_t part = std::min(groups - done, LaneSums<T>::mostRuns - m_runs);
            for (std::size_t phase = 0; phase < m_phases; ++phase)
                m_sums[phase].add(values + (done * group + phase * LaneSums<T>::lanes) * sizeof(T), group * sizeof(T),
                                  part);
            done += part;
            m_runs += part;
            if (m_runs == LaneSums<T>::mostRuns)
                flush();
        }
        for (std::size_t i = groups * group; i < count; ++i) {
            const auto value = loadValue<T>(values, i);
            m_statistics[i % m_channels].merge(1, value, std::uint64_t(value) * value, value, value);
        }
    }

    /// The statistics of a channel of what has been added.
    ValueSummary summary(std::size_t channel)
    {
        flush();
        return m_statistics[channel].summary();
    }

private:
    void flush()
    {
        if (m_runs == 0)
            return;
        for (std::size_t phase = 0; phase < m_phases; ++phase) {
            for (std::size_t lane = 0; lane < LaneSums<T>::lanes; ++lane)
                m_sums[phase].addTo(m_statistics[(phase * LaneSums<T>::lanes + lane) % m_channels], lane, m_runs);
            m_sums[phase].clear();
        }
        m_runs = 0;
    }

    std::size_t m_channels;
    std::size_t m_phases;
    std::size_t m_runs = 0; ///< in each of the sums
    std::array<LaneSums<T>, 3> m_sums;
    std::array<ExactStatistics<T>, mostChannels> m_statistics;
};
