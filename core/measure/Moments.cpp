#include "Moments.h"

#include "buffers/PixelLoop.h"
#include "buffers/PixelTypes.h"

#include <algorithm>
#include <array>

namespace {

template<typename T>
constexpr std::size_t laneCount = 64 / sizeof(T);

/// Independent sums, so that no addition waits for the one before; as many as fill the vector registers.
template<typename T>
class Lanes
{
public:
    static constexpr std::size_t count = laneCount<T>;

    [[gnu::always_inline]] Lanes(MomentSum<T> base, T least, T greatest)
        : m_base(base)
    {
        m_least.fill(least);
        m_greatest.fill(greatest);
    }

    [[gnu::always_inline]] void take(std::size_t lane, T value)
    {
        const MomentSum<T> difference = static_cast<MomentSum<T>>(value) - m_base;
        m_sums[lane] += difference;
        m_squares[lane] += difference * difference;
        // In this order of operands NaN is never stored.
        m_least[lane] = value < m_least[lane] ? value : m_least[lane];
        m_greatest[lane] = value > m_greatest[lane] ? value : m_greatest[lane];
    }

    [[gnu::always_inline]] Moments<T> combined() const
    {
        Moments<T> all = {0, 0, m_least[0], m_greatest[0]};
        for (std::size_t lane = 0; lane < count; ++lane) {
            all.sum += m_sums[lane];
            all.squares += m_squares[lane];
            all.least = m_least[lane] < all.least ? m_least[lane] : all.least;
            all.greatest = m_greatest[lane] > all.greatest ? m_greatest[lane] : all.greatest;
        }
        return all;
    }

private:
    MomentSum<T> m_base;
    std::array<MomentSum<T>, count> m_sums = {};
    std::array<MomentSum<T>, count> m_squares = {};
    std::array<T, count> m_least;
    std::array<T, count> m_greatest;
};

template<typename T>
[[gnu::always_inline]] inline Moments<T> sumUp(const std::uint8_t* values, std::size_t count, MomentSum<T> base,
                                               T least, T greatest)
{
    Lanes<T> lanes(base, least, greatest);
    const std::size_t rest = count % Lanes<T>::count;
    for (std::size_t i = 0; i < count - rest; i += Lanes<T>::count)
        for (std::size_t lane = 0; lane < Lanes<T>::count; ++lane)
            lanes.take(lane, loadValue<T>(values, i + lane));
    for (std::size_t lane = 0; lane < rest; ++lane)
        lanes.take(lane, loadValue<T>(values, count - rest + lane));
    return lanes.combined();
}

/// The lanes of several columns. As in Lanes, row y belongs to lane y % laneCount.
template<typename T>
[[gnu::always_inline]] inline void sumUpColumns(ColumnMoments<T>& moments, const std::uint8_t* first, std::size_t step,
                                                std::size_t rows)
{
    constexpr std::size_t columns = ColumnMoments<T>::columns;
    struct Lane {
        std::array<MomentSum<T>, columns> sums = {};
        std::array<MomentSum<T>, columns> squares = {};
        std::array<T, columns> least;
        std::array<T, columns> greatest;
    };
    std::array<Lane, laneCount<T>> lanes;
    for (Lane& lane : lanes) {
        lane.least = moments.least;
        lane.greatest = moments.greatest;
    }
    const std::array<MomentSum<T>, columns> bases = moments.bases;
    constexpr std::size_t ahead = 8;    // rows; the processor does not foresee steps from page to page
    constexpr std::size_t fetched = 64; // bytes that a prefetch brings into the cache
    for (std::size_t y = 0; y < rows; ++y) {
        Lane& lane = lanes[y % laneCount<T>];
        const std::uint8_t* const row = first + y * step;
        const std::uint8_t* const later = first + std::min(y + ahead, rows - 1) * step;
        for (std::size_t byte = 0; byte < columns * sizeof(T); byte += fetched)
            __builtin_prefetch(later + byte);
        for (std::size_t x = 0; x < columns; ++x) {
            const auto value = loadValue<T>(row, x);
            const MomentSum<T> difference = static_cast<MomentSum<T>>(value) - bases[x];
            lane.sums[x] += difference;
            lane.squares[x] += difference * difference;
            lane.least[x] = value < lane.least[x] ? value : lane.least[x];
            lane.greatest[x] = value > lane.greatest[x] ? value : lane.greatest[x];
        }
    }
    moments.sums = {};
    moments.squares = {};
    moments.least = lanes[0].least;
    moments.greatest = lanes[0].greatest;
    for (const Lane& lane : lanes) {
        for (std::size_t x = 0; x < columns; ++x) {
            moments.sums[x] += lane.sums[x];
            moments.squares[x] += lane.squares[x];
            moments.least[x] = lane.least[x] < moments.least[x] ? lane.least[x] : moments.least[x];
            moments.greatest[x] = lane.greatest[x] > moments.greatest[x] ? lane.greatest[x] : moments.greatest[x];
        }
    }
}

} // namespace

template<typename T>
Moments<T> momentsOf(const std::uint8_t* values, std::size_t count, MomentSum<T> base, T least, T greatest)
{
    Moments<T> moments = {};
    Moments<T>* const result = &moments;
    inWidestVectors([=]() VANTREL_PIXEL_LOOP { *result = sumUp<T>(values, count, base, least, greatest); });
    return moments;
}

template Moments<float> momentsOf(const std::uint8_t*, std::size_t, double, float, float);
template Moments<double> momentsOf(const std::uint8_t*, std::size_t, double, double, double);
template Moments<std::int64_t> momentsOf(const std::uint8_t*, std::size_t, long double, std::int64_t, std::int64_t);
template Moments<std::uint64_t> momentsOf(const std::uint8_t*, std::size_t, long double, std::uint64_t, std::uint64_t);

template<typename T>
void momentsOfColumns(ColumnMoments<T>& moments, const std::uint8_t* first, std::size_t step, std::size_t rows)
{
    ColumnMoments<T>* const result = &moments;
    inWidestVectors([=]() VANTREL_PIXEL_LOOP { sumUpColumns<T>(*result, first, step, rows); });
}

template void momentsOfColumns(ColumnMoments<float>&, const std::uint8_t*, std::size_t, std::size_t);
template void momentsOfColumns(ColumnMoments<double>&, const std::uint8_t*, std::size_t, std::size_t);
