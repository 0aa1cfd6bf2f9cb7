#pragma once

// Code for wider vectors than every processor has is chosen when the program runs.

#if defined(__x86_64__)
#define VANTREL_HAS_AVX2_CODE 1
#define VANTREL_AVX2_CODE __attribute__((target("avx2")))
/// Whether functions marked with VANTREL_AVX2_CODE may be called.
inline const bool processorHasAvx2 = __builtin_cpu_supports("avx2") != 0;
#endif
