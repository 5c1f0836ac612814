// The waveshaper table read of the oversampled section, two lanes at a time. Audio thread;
// inline, no branch, no call.
#pragma once

#include <emmintrin.h>

#include <cstddef>

#include "dsp/clipper.h"

namespace chain {

static_assert(offsetof(Clipper, guard) == offsetof(Clipper, table) + kClipSize * sizeof(double),
              "the guard is the right-hand neighbour of the last entry");

// Two waveshaper reads at once, lane 0 in table c0 and lane 1 in table c1. For every input but NaN
// each lane gives clipLookup's result bit for bit, without branches:
// - the clamp is a min and a max, which keep every in-range value (-0 included) exactly;
// - p = scale + v * scale with the built tables' scale, i = (int)p, t = p - i;
// - an entry and its right-hand neighbour come in one 16-byte load; for the last entry that
//   neighbour is the record's guard, as in clipLookup;
// - (next - here) * t + here.
// A NaN reads as +1 (minpd returns its second operand for it), so the index stays in the table.
// The chain keeps NaN away from here (see Block), so this is only the last line of defence.
[[gnu::always_inline]] inline __m128d lookupPair(const Clipper& c0, const Clipper& c1,
                                                 __m128d u) noexcept {
  const __m128d scale = _mm_set1_pd(kClipScale);
  const __m128d v = _mm_max_pd(_mm_min_pd(u, _mm_set1_pd(1.0)), _mm_set1_pd(-1.0));
  const __m128d p = _mm_add_pd(scale, _mm_mul_pd(v, scale));
  const __m128i i = _mm_cvttpd_epi32(p);
  const __m128d t = _mm_sub_pd(p, _mm_cvtepi32_pd(i));
  const __m128d pair0 = _mm_loadu_pd(&c0.table[_mm_cvtsi128_si32(i)]);
  const __m128d pair1 = _mm_loadu_pd(&c1.table[_mm_cvtsi128_si32(_mm_srli_si128(i, 4))]);
  const __m128d here = _mm_unpacklo_pd(pair0, pair1);
  const __m128d next = _mm_unpackhi_pd(pair0, pair1);
  return _mm_add_pd(_mm_mul_pd(_mm_sub_pd(next, here), t), here);
}

}  // namespace chain
