#pragma once

/// Builds a hot loop several times, for the baseline x86-64, for AVX2 and for AVX-512, and picks one when the program
/// starts. The loops give the same bits in each form: no sum is reordered and nothing is contracted. For free functions
/// over plain arrays, whose pointers are `__restrict` or whose loop says `#pragma GCC ivdep`; what they call must be
/// inlined (`MK_INLINE`, and `MK_INLINE_LAMBDA` behind the parameters of a lambda), or it stays baseline.
#if defined(__GNUC__) && !defined(__clang__) && defined(__x86_64__) && !defined(__SANITIZE_ADDRESS__) &&               \
    !defined(__SANITIZE_THREAD__) && !defined(MK_BASELINE_ONLY)
#define MK_SIMD __attribute__((target_clones("arch=x86-64-v4", "arch=x86-64-v3", "default")))
/// Of a function that is written out for each form, by the width of registers: its bodies have one of these each.
#define MK_SIMD_16_FLOATS __attribute__((target("arch=x86-64-v4")))
#define MK_SIMD_8_FLOATS __attribute__((target("arch=x86-64-v3")))
#define MK_SIMD_4_FLOATS __attribute__((target("default")))
#else
#define MK_SIMD
#define MK_SIMD_4_FLOATS
#endif

#define MK_INLINE inline __attribute__((always_inline))
#define MK_INLINE_LAMBDA __attribute__((always_inline))
