// Building of the two waveshaper curves. tanh(a u) is formed as (1 - e) / (1 + e) with
// e = exp(-2 a u), stepping the input in whole table entries; this exact arithmetic is what the
// curves are.
#include "dsp/clipper.h"

#include <cmath>
#include <memory>
#include <new>

namespace {

// First stage: slopes per unit of oversampling factor, and the negative limit.
constexpr double kFirstPositiveSlope = 7.82;
constexpr double kFirstNegativeSlope = 13.8898756660746;  // 7.82 / 0.563
constexpr double kFirstNegativeLimit = -0.563;

// Second stage: exponent factors per table entry, and the positive limit.
constexpr double kSecondPositiveExponent = -0.010353424657534199;  // -0.003779 / 0.365
constexpr double kSecondNegativeExponent = -0.003779;
constexpr double kSecondPositiveLimit = 0.365;
constexpr double kSecondGuardExponent = -207.068493150684;

double tanhOf(double e) {
  return (1.0 - e) / (1.0 + e);
}

// Fills a heap scratch record with `fill` and copies it whole over `target`. The record is far
// too large for a host thread's stack.
template <class Fill>
bool buildInto(Clipper& target, Fill fill) {
  const std::unique_ptr<Clipper> scratch(new (std::nothrow) Clipper);
  if (!scratch) return false;
  scratch->scale = kClipScale;
  fill(*scratch);
  target = *scratch;
  return true;
}

}  // namespace

bool buildFirstStageCurve(Clipper& target, double F) {
  return buildInto(target, [F](Clipper& c) {
    const double alpha = kFirstPositiveSlope * F;
    const double beta = kFirstNegativeSlope * F;
    const double cp = -((alpha + alpha) / 20000.0);
    const double cn = -((beta + beta) / 20000.0);
    double x = 0.0;
    for (int k = 0; k <= kClipCentre; ++k) {
      c.table[kClipCentre + k] = tanhOf(std::exp(cp * x));
      // At k = 0 this write to the centre entry is the one that stays.
      c.table[kClipCentre - k] = tanhOf(std::exp(cn * x)) * kFirstNegativeLimit;
      x += 1.0;
    }
    c.guard = tanhOf(std::exp(-2.0 * alpha));
  });
}

bool buildSecondStageCurve(Clipper& target) {
  return buildInto(target, [](Clipper& c) {
    double x = 0.0;
    for (int k = 0; k <= kClipCentre; ++k) {
      c.table[kClipCentre + k] =
          tanhOf(std::exp(kSecondPositiveExponent * x)) * kSecondPositiveLimit;
      c.table[kClipCentre - k] = -tanhOf(std::exp(kSecondNegativeExponent * x));
      x += 1.0;
    }
    c.guard = tanhOf(std::exp(kSecondGuardExponent)) * kSecondPositiveLimit;
  });
}
