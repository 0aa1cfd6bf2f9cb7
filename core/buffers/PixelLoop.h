#pragma once

// Loops over pixels run in wider vectors where the processor has them, which shows only when the program runs.

#if defined(__x86_64__)
inline const bool processorHasAvx2 = __builtin_cpu_supports("avx2") != 0;

template<typename Loop>
__attribute__((target("avx2"), noinline)) void inAvx2Vectors(Loop loop)
{
    loop();
}
#endif

/// To stand behind the parameters of a lambda for inWidestVectors().
#define VANTREL_PIXEL_LOOP __attribute__((always_inline))

/// Runs a loop that was compiled for the widest vectors of this processor. It has to be a lambda that takes no
/// arguments, is marked with VANTREL_PIXEL_LOOP, and captures by value: through references every store could change
/// every variable.
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
