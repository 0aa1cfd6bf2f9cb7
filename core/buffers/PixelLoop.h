#pragma once

// Runs loops over pixels with the widest vectors that the processor has, which is only known at run time.

#if defined(__x86_64__)
inline const bool processorHasAvx2 = __builtin_cpu_supports("avx2") != 0;

template<typename Loop>
__attribute__((target("avx2"), noinline)) void inAvx2Vectors(Loop loop)
{
    loop();
}
#endif

/// Goes after the parameter list of a lambda for inWidestVectors().
#define VANTREL_PIXEL_LOOP __attribute__((always_inline))

/// Runs a loop in the version that is compiled for this processor's widest vectors. The loop must be a lambda without
/// arguments, be marked with VANTREL_PIXEL_LOOP, and capture by value: with references the compiler must assume that
/// each store may change every variable.
template<typename Loop>
void inWidestVectors(Loop loop)
{
#if defined(__x86_64__)
    if (processorHasAvx2) {
        inAvx2Vectors(loop);
        return;
    }
#endif
    loop();
}
