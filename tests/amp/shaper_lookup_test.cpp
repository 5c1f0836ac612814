// The two-lane waveshaper read of the oversampled section against clipLookup, at the inputs where a
// table read can go wrong: the centre, both ends, just inside them, beyond them, signed zeros.
#include "amp/shaper_lookup.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <memory>

namespace amp_test {
namespace {

bool sameBits(double a, double b) {
  return std::memcmp(&a, &b, sizeof a) == 0;
}

TEST(ShaperLookup, BothLanesMatchClipLookupBitForBit) {
  auto first = std::make_unique<Clipper>();
  auto second = std::make_unique<Clipper>();
  ASSERT_TRUE(buildFirstStageCurve(*first, 7.0));
  ASSERT_TRUE(buildSecondStageCurve(*second));
  const double inf = std::numeric_limits<double>::infinity();
  const double inputs[] = {0.0,
                           -0.0,
                           1.0,
                           -1.0,
                           std::nextafter(1.0, 0.0),
                           -std::nextafter(1.0, 0.0),
                           1.5,
                           -7.0,
                           inf,
                           -inf,
                           1e-12,
                           -1e-12,
                           0.5,
                           -0.25,
                           0.123456789,
                           4.9e-324};
  for (const double u : inputs) {
    for (const double other : {0.3, -0.9}) {
      const __m128d both = chain::lookupPair(*first, *second, _mm_set_pd(other, u));
      const __m128d swapped = chain::lookupPair(*first, *second, _mm_set_pd(u, other));
      EXPECT_TRUE(sameBits(_mm_cvtsd_f64(both), clipLookup(*first, u))) << "input " << u;
      EXPECT_TRUE(
          sameBits(_mm_cvtsd_f64(_mm_unpackhi_pd(swapped, swapped)), clipLookup(*second, u)))
          << "input " << u;
    }
  }
}

TEST(ShaperLookup, NaNStaysInsideTheTable) {
  auto first = std::make_unique<Clipper>();
  auto second = std::make_unique<Clipper>();
  ASSERT_TRUE(buildFirstStageCurve(*first, 8.0));
  ASSERT_TRUE(buildSecondStageCurve(*second));
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const __m128d r = chain::lookupPair(*first, *second, _mm_set_pd(nan, nan));
  EXPECT_EQ(_mm_cvtsd_f64(r), first->table[kClipLast]);
  EXPECT_EQ(_mm_cvtsd_f64(_mm_unpackhi_pd(r, r)), second->table[kClipLast]);
}

}  // namespace
}  // namespace amp_test
