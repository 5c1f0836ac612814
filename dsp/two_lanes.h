// Two doubles in one register, written once for every target: the compiler's vector extension
// makes each operation a single SSE2 instruction on x86 (64- and 32-bit with -msse2), a NEON
// instruction on AArch64, and a pair of plain scalar operations on any other target.
//
// Every operation is the scalar IEEE operation in each lane: + - * round once, as scalar code
// would, so a chain written with Lanes gives the same bits on every target. That holds only while
// nothing is fused into a multiply-add, which the build forbids (-ffp-contract=off).
//
// Audio thread; inline, no call, no branch.
#pragma once

#include <cstdint>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace lanes {

using Lanes = double __attribute__((vector_size(16)));
using LaneIndices = std::int32_t __attribute__((vector_size(8)));

[[gnu::always_inline]] inline Lanes make(double lane0, double lane1) noexcept {
  return Lanes{lane0, lane1};
}

[[gnu::always_inline]] inline Lanes both(double value) noexcept {
  return Lanes{value, value};
}

[[gnu::always_inline]] inline double lane0(Lanes v) noexcept {
  return v[0];
}

[[gnu::always_inline]] inline double lane1(Lanes v) noexcept {
  return v[1];
}

// Lane 0 of `from0`, lane 1 of `from1`.
[[gnu::always_inline]] inline Lanes merge(Lanes from0, Lanes from1) noexcept {
  return __builtin_shufflevector(from0, from1, 0, 3);
}

// Lane 0 of each, and lane 1 of each.
[[gnu::always_inline]] inline Lanes lows(Lanes from0, Lanes from1) noexcept {
  return __builtin_shufflevector(from0, from1, 0, 2);
}

[[gnu::always_inline]] inline Lanes highs(Lanes from0, Lanes from1) noexcept {
  return __builtin_shufflevector(from0, from1, 1, 3);
}

// v where v < limit, else limit: a NaN gives the limit, -0 and +0 stay as they are. SSE2's minpd
// is exactly this select in one instruction, which the compiler does not find by itself.
[[gnu::always_inline]] inline Lanes atMost(Lanes v, Lanes limit) noexcept {
#if defined(__SSE2__)
  return _mm_min_pd(v, limit);
#else
  return v < limit ? v : limit;
#endif
}

// v where v > limit, else limit: a NaN gives the limit, -0 and +0 stay as they are (maxpd).
[[gnu::always_inline]] inline Lanes atLeast(Lanes v, Lanes limit) noexcept {
#if defined(__SSE2__)
  return _mm_max_pd(v, limit);
#else
  return v > limit ? v : limit;
#endif
}

// v where it is finite, else +0 (x - x is 0 only for a finite x).
[[gnu::always_inline]] inline Lanes zeroUnlessFinite(Lanes v) noexcept {
  return v - v == both(0.0) ? v : both(0.0);
}

// Each lane truncated toward zero; the values must fit an int32.
[[gnu::always_inline]] inline LaneIndices truncated(Lanes v) noexcept {
  return __builtin_convertvector(v, LaneIndices);
}

[[gnu::always_inline]] inline Lanes widened(LaneIndices i) noexcept {
  return __builtin_convertvector(i, Lanes);
}

// p[0] and p[1], from any address of a double.
[[gnu::always_inline]] inline Lanes loadPair(const double* p) noexcept {
  Lanes v;
  __builtin_memcpy(&v, p, sizeof v);
  return v;
}

}  // namespace lanes
