#include "tests/reliability/output_bound.h"

#include <algorithm>
#include <array>
#include <cfloat>
#include <cmath>

namespace reliability {
namespace {

// The two coefficient sets of the oversampling low-pass, a1..a5 added in the recursion and the
// symmetric b0..b5.
struct OversamplingCoefs {
  std::array<double, 5> a;
  std::array<double, 6> b;
};
constexpr OversamplingCoefs kCoefsFactor7{
    {4.3340205266, -7.6863338537, 6.9585653542, -3.2117410641, 0.60412218845},
    {7.9436823833e-05, 0.0002311408766, 0.00037284656245, 0.00037284656245, 0.0002311408766,
     7.9436823833e-05}};
constexpr OversamplingCoefs kCoefsFactor8{
    {4.3724453427, -7.8055159894, 7.0990889142, -3.2858647219, 0.61876405319},
    {6.6396688505e-05, 0.00018318063956, 0.00029162325912, 0.00029162325912, 0.00018318063956,
     6.6396688505e-05}};

constexpr double kPrewarpPi = 3.141592653589794;
constexpr double kDefaultFreq = 20.0;    // a corner at or below 0 Hz is designed here
constexpr double kWaveshaperPeak = 1.0;  // max |u| over [-1, 0.365]
constexpr double kTrimGain = 0.562341325;
constexpr double kMaxTrim = 1.2 * kTrimGain;
// Covers the rounding of a chain of a few dozen operations per sample, many orders of magnitude
// below any real overshoot.
constexpr double kRoundingSlack = 1e-9;

double impulseL1(const OversamplingCoefs& c) {
  // Transposed direct form II, as the amp runs it; the response decays to nothing in a few
  // thousand samples (poles well inside the unit circle).
  std::array<double, 5> s{};
  double sum = 0.0;
  constexpr int kLength = 1 << 16;
  for (int k = 0; k < kLength; ++k) {
    const double x = k == 0 ? 1.0 : 0.0;
    const double y = c.b[0] * x + s[0];
    for (int j = 0; j < 4; ++j) s[j] = c.b[j + 1] * x + c.a[j] * y + s[j + 1];
    s[4] = c.b[5] * x + c.a[4] * y;
    sum += std::fabs(y);
  }
  return sum;
}

// sum_{k=0}^{m-1} r^k for r >= 0.
double geometricSum(double r, std::int64_t m) {
  if (m <= 0) return 0.0;
  if (r == 1.0) return static_cast<double>(m);
  const double powM = std::exp(static_cast<double>(m) * std::log(r));
  return (1.0 - powM) / (1.0 - r);
}

}  // namespace

int oversamplingFactor(double hostRate) {
  return std::trunc(hostRate) == 48000.0 ? 7 : 8;
}

double downFilterL1(int factor) {
  static const double l1Factor7 = impulseL1(kCoefsFactor7);
  static const double l1Factor8 = impulseL1(kCoefsFactor8);
  return factor == 7 ? l1Factor7 : l1Factor8;
}

double firstOrderL1(int type, double freq, double hostRate, std::int64_t samples) {
  // y = b0 x + z1, z1 = b1 x + a1 y: h[0] = b0, h[1] = b1 + a1 b0, h[k] = a1 h[k-1] after that.
  double f = freq > 0.0 ? freq : kDefaultFreq;
  f = std::min(f, 0.5 * hostRate);
  const double k = std::tan(kPrewarpPi * f / hostRate);
  const double d = 1.0 / (1.0 + k);
  const double b0 = type == 0 ? k * d : d;
  const double b1 = type == 0 ? k * d : -d;
  const double a1 = (1.0 - k) * d;
  if (samples <= 0) return 0.0;
  // h[1] may be a difference of nearly equal terms; widen it by its own rounding error.
  const double h1 =
      std::fabs(b1 + a1 * b0) + 4.0 * DBL_EPSILON * (std::fabs(b1) + std::fabs(a1 * b0));
  return std::fabs(b0) + h1 * geometricSum(std::fabs(a1), samples - 1);
}

double outputBound(double hostRate, std::int64_t samples) {
  const double chain =
      downFilterL1(oversamplingFactor(hostRate)) * firstOrderL1(1, 30.0, hostRate, samples) *
      firstOrderL1(0, 2700.0, hostRate, samples) * firstOrderL1(1, 20.0, hostRate, samples);
  return kWaveshaperPeak * chain * kMaxTrim * (1.0 + kRoundingSlack);
}

}  // namespace reliability
