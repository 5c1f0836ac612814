// The oversampling low-pass around the waveshapers, run as the up-filter and the down-filter in
// the two lanes of one register. Audio thread; inline, no call.
#pragma once

#include "amp/oversampling.h"
#include "dsp/two_lanes.h"

namespace chain {

// The fifth-order oversampling low-pass of factor F, two at once: lane 0 is the up-filter, lane 1
// the down-filter, each with its own state in the lanes of s[0..4]. Each lane runs
//   y = b0 x + s0; s_k = (b_k+1 x + a_k+1 y) + s_k+1; s4 = b5 x + a5 y
// exactly, the up-filter with x = 0 written out on the zero-stuffed sub-samples.
template <int F>
struct Oversampler {
  static constexpr const OversamplingSet& set = oversamplingSet<F>();

  [[gnu::always_inline]] static lanes::Lanes run(lanes::Lanes x, lanes::Lanes* s) noexcept {
    const auto a = [](int k) { return lanes::both(set.a[k - 1]); };
    const auto b = [](int k) { return lanes::both(set.b[k]); };
    const lanes::Lanes y = b(0) * x + s[0];
    s[0] = (b(1) * x + a(1) * y) + s[1];
    s[1] = (b(2) * x + a(2) * y) + s[2];
    s[2] = (b(3) * x + a(3) * y) + s[3];
    s[3] = (b(4) * x + a(4) * y) + s[4];
    s[4] = b(5) * x + a(5) * y;
    return y;
  }

  // One step of one filter only: the other lane's state stays as it was.
  template <int Lane>
  [[gnu::always_inline]] static lanes::Lanes runLane(lanes::Lanes x, lanes::Lanes* s) noexcept {
    lanes::Lanes next[5] = {s[0], s[1], s[2], s[3], s[4]};
    const lanes::Lanes y = run(x, next);
    for (int k = 0; k < 5; ++k) {
      s[k] = Lane == 0 ? lanes::merge(next[k], s[k]) : lanes::merge(s[k], next[k]);
    }
    return y;
  }
};

}  // namespace chain
