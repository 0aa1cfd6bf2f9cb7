#pragma once

#include <cstddef>
#include <cstdint>
#include <type_traits>

/// In which values of a type are summed, where 128-bit integers are not wide enough.
template<typename T>
using MomentSum = std::conditional_t<std::is_floating_point_v<T>, double, long double>;

/// Sums over a run of values, and its ends.
template<typename T>
struct Moments {
    MomentSum<T> sum = 0;     ///< of the differences from the base
    MomentSum<T> squares = 0; ///< of their squares
    T least;
    T greatest;
};

/// Goes once through values that stand one after another at any address. least and greatest are where the search for
/// the ends begins; a value that is not a number is in the sums, but is never one of them. The order of the sums, and
/// so the result, does not depend on the processor. For float, double and 64-bit integers.
template<typename T>
Moments<T> momentsOf(const std::uint8_t* values, std::size_t count, MomentSum<T> base, T least, T greatest);
