// The oversampling low-pass around the waveshapers, run as the up-filter and the down-filter in
// the two lanes of one register. Audio thread; inline, no call.
#pragma once

#include <emmintrin.h>

#include "amp/oversampling.h"

namespace chain {

// The fifth-order oversampling low-pass of factor F, two at once: lane 0 is the up-filter, lane 1
// the down-filter, each with its own state in the lanes of s[0..4]. Each lane runs
//   y = b0 x + s0; s_k = (b_k+1 x + a_k+1 y) + s_k+1; s4 = b5 x + a5 y
// exactly, the up-filter with x = 0 written out on the zero-stuffed sub-samples.
template <int F>
struct Oversampler {
  static constexpr const OversamplingSet& set = oversamplingSet<F>();

  [[gnu::always_inline]] static __m128d run(__m128d x, __m128d* s) noexcept {
    const auto a = [](int k) { return _mm_set1_pd(set.a[k - 1]); };
    const auto b = [](int k) { return _mm_set1_pd(set.b[k]); };
    const __m128d y = _mm_add_pd(_mm_mul_pd(b(0), x), s[0]);
    s[0] = _mm_add_pd(_mm_add_pd(_mm_mul_pd(b(1), x), _mm_mul_pd(a(1), y)), s[1]);
    s[1] = _mm_add_pd(_mm_add_pd(_mm_mul_pd(b(2), x), _mm_mul_pd(a(2), y)), s[2]);
    s[2] = _mm_add_pd(_mm_add_pd(_mm_mul_pd(b(3), x), _mm_mul_pd(a(3), y)), s[3]);
    s[3] = _mm_add_pd(_mm_add_pd(_mm_mul_pd(b(4), x), _mm_mul_pd(a(4), y)), s[4]);
    s[4] = _mm_add_pd(_mm_mul_pd(b(5), x), _mm_mul_pd(a(5), y));
    return y;
  }

  // One step of one filter only: the other lane's state stays as it was.
  template <int Lane>
  [[gnu::always_inline]] static __m128d runLane(__m128d x, __m128d* s) noexcept {
    __m128d next[5] = {s[0], s[1], s[2], s[3], s[4]};
    const __m128d y = run(x, next);
    for (int k = 0; k < 5; ++k) {
      s[k] = Lane == 0 ? _mm_move_sd(s[k], next[k]) : _mm_move_sd(next[k], s[k]);
    }
    return y;
  }
};

}  // namespace chain
