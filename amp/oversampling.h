// The oversampling low-pass around the waveshapers,
//   H(z) = (b0 + b1 z^-1 + ... + b5 z^-5) / (1 - a1 z^-1 - ... - a5 z^-5),
// in two fixed sets: factor 7 for a host rate that truncates to 48000, factor 8 for every other
// rate (its corner then moves with the rate). Unity gain at 0 Hz (within 4e-8), about -3 dB near
// 21.5 kHz at 336 kHz and 352.8 kHz. The b coefficients are symmetric: b5 = b0, b4 = b1, b3 = b2.
#pragma once

#include "hostif/vst_abi.h"

struct OversamplingSet {
  VstInt32 factor;
  double a[5];  // a1..a5
  double b[6];  // b0..b5
};

constexpr VstInt32 kSevenfoldRate = 48000;

constexpr OversamplingSet kOversampling48000 = {
    7,
    {4.3340205266, -7.6863338537, 6.9585653542, -3.2117410641, 0.60412218845},
    {7.9436823833e-05, 0.0002311408766, 0.00037284656245, 0.00037284656245, 0.0002311408766,
     7.9436823833e-05},
};

constexpr OversamplingSet kOversamplingOther = {
    8,
    {4.3724453427, -7.8055159894, 7.0990889142, -3.2858647219, 0.61876405319},
    {6.6396688505e-05, 0.00018318063956, 0.00029162325912, 0.00029162325912, 0.00018318063956,
     6.6396688505e-05},
};

// The set of factor F (7 or 8).
template <int F>
constexpr const OversamplingSet& oversamplingSet() {
  static_assert(F == 7 || F == 8);
  return F == 7 ? kOversampling48000 : kOversamplingOther;
}
