#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <type_traits>

/// The type of sums for value types that a 128-bit integer cannot sum exactly.
template<typename T>
using MomentSum = std::conditional_t<std::is_floating_point_v<T>, double, long double>;

/// Sums, minimum and maximum of a run of values.
template<typename T>
struct Moments {
    MomentSum<T> sum = 0;     ///< sum of the differences from the base
    MomentSum<T> squares = 0; ///< sum of the squares of these differences
    T least;                  ///< minimum
    T greatest;               ///< maximum
};

/// The moments of contiguous values, which may start at any address. least and greatest are the minimum and maximum so
/// far. NaN makes the sums NaN but never becomes the minimum or maximum. The order of the additions, and so the result,
/// is the same on every processor. For float, double and 64-bit integers.
template<typename T>
Moments<T> momentsOf(const std::uint8_t* values, std::size_t count, MomentSum<T> base, T least, T greatest);

/// The moments of some neighbouring columns at once: each the same to the last bit as momentsOf() gives for a column.
template<typename T>
struct ColumnMoments {
    static constexpr std::size_t columns = 256 / sizeof(T); // four cache lines of each row

    std::array<MomentSum<T>, columns> bases;
    std::array<T, columns> least;    ///< the minimum so far, then the minimum
    std::array<T, columns> greatest; ///< the maximum so far, then the maximum
    std::array<MomentSum<T>, columns> sums;
    std::array<MomentSum<T>, columns> squares;
};

/// Sets the sums of columns whose bases and ends are set. Each row begins `step` bytes after the one before. For float
/// and double.
template<typename T>
void momentsOfColumns(ColumnMoments<T>& moments, const std::uint8_t* first, std::size_t step, std::size_t rows);
