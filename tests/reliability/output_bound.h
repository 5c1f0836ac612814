// The largest output magnitude while every parameter lies in 0..1, from the linear chain after
// the second waveshaper, whose output u lies in [-1, 0.365]:
//
//   |out| <= max|u| * L1(down) * L1(hp30) * L1(lp2700) * L1(hp20) * maxTrim
//
// with L1(h) = sum |h[k]|, a linear filter's worst-case gain, and maxTrim = 1.2 * 0.562341325
// (TREBLE 1, DEEP off). States start at zero at a set-up, so the n-th sample after it needs
// h[0..n-1] only: finite even where a pole sits on the unit circle. Any thread.
#pragma once

#include <algorithm>
#include <array>
#include <cfloat>
#include <cmath>
#include <cstdint>

namespace reliability {

// The fifth-order oversampling low-pass (a1..a5 added in the recursion, then b0..b5), run in
// transposed direct form II until its response has died away; it depends on the factor only.
inline double downFilterL1(int factor) {
  using Coefs = std::array<double, 11>;
  constexpr Coefs kFactor7{4.3340205266,     -7.6863338537,    6.9585653542,    -3.2117410641,
                           0.60412218845,    7.9436823833e-05, 0.0002311408766, 0.00037284656245,
                           0.00037284656245, 0.0002311408766,  7.9436823833e-05};
  constexpr Coefs kFactor8{4.3724453427,     -7.8055159894,    7.0990889142,     -3.2858647219,
                           0.61876405319,    6.6396688505e-05, 0.00018318063956, 0.00029162325912,
                           0.00029162325912, 0.00018318063956, 6.6396688505e-05};
  auto l1 = [](const Coefs& c) {
    const double *a = c.data(), *b = c.data() + 5;
    double s[5] = {}, sum = 0.0;
    for (int k = 0; k < (1 << 16); ++k) {
      const double x = k == 0 ? 1.0 : 0.0, y = b[0] * x + s[0];
      for (int j = 0; j < 4; ++j) s[j] = b[j + 1] * x + a[j] * y + s[j + 1];
      s[4] = b[5] * x + a[4] * y;
      sum += std::fabs(y);
    }
    return sum;
  };
  static const double l1Factor7 = l1(kFactor7), l1Factor8 = l1(kFactor8);
  return factor == 7 ? l1Factor7 : l1Factor8;
}

// h[0..samples-1] of the first-order low- or high-pass the amp designs at `freq` for `hostRate`:
// y = b0 x + z, z = b1 x + a1 y, so h[0] = b0, h[1] = b1 + a1 b0, h[k] = a1 h[k-1].
inline double firstOrderL1(bool highPass, double freq, double hostRate, std::int64_t samples) {
  if (samples <= 0) return 0.0;
  const double k = std::tan(3.141592653589794 * std::min(freq, 0.5 * hostRate) / hostRate);
  const double d = 1.0 / (1.0 + k), a1 = (1.0 - k) * d;
  const double b0 = highPass ? d : k * d, b1 = highPass ? -d : k * d;
  // h[1] may be a difference of nearly equal terms: widened by its own rounding error.
  const double h1 =
      std::fabs(b1 + a1 * b0) + 4.0 * DBL_EPSILON * (std::fabs(b1) + std::fabs(a1 * b0));
  const double r = std::fabs(a1), m = static_cast<double>(samples - 1);  // sum of r^0..r^(m-1)
  return std::fabs(b0) + h1 * (r == 1.0 ? m : (1.0 - std::pow(r, m)) / (1.0 - r));
}

// The bound for the `samples`-th sample after a set-up at `hostRate`, widened by 1e-9 for the
// rounding of a few dozen operations per sample, far below any real overshoot.
inline double outputBound(double hostRate, std::int64_t samples) {
  constexpr double kMaxShaperOut = 1.0, kMaxTrim = 1.2 * 0.562341325;
  const int factor = std::trunc(hostRate) == 48000.0 ? 7 : 8;  // the amp's oversampling
  return kMaxShaperOut * downFilterL1(factor) * firstOrderL1(true, 30.0, hostRate, samples) *
         firstOrderL1(false, 2700.0, hostRate, samples) *
         firstOrderL1(true, 20.0, hostRate, samples) * kMaxTrim * (1.0 + 1e-9);
}

}  // namespace reliability
