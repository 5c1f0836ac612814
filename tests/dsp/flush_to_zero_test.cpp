// The flush-to-zero guard: flushes denormal results inside its scope, reads denormal inputs as
// they are, and gives the caller back its exact MXCSR.
#include "dsp/flush_to_zero.h"

#include <gtest/gtest.h>
#include <xmmintrin.h>

namespace {

constexpr unsigned int kFtz = 0x8000;
constexpr unsigned int kDaz = 0x0040;
constexpr unsigned int kRoundMask = 0x6000;
constexpr unsigned int kRoundUp = 0x4000;

// Values the compiler cannot fold, so the products run on the SSE unit at run time.
volatile double gTiny = 1e-300;
volatile double gScale = 1e-10;
volatile double gDenormal = 1e-310;

TEST(FlushToZeroGuard, FlushesDenormalResultsOnlyInsideItsScope) {
  const double outside = gTiny * gScale;
  EXPECT_GT(outside, 0.0);
  {
    FlushToZeroGuard guard;
    EXPECT_NE(_mm_getcsr() & kFtz, 0u);
    EXPECT_EQ(_mm_getcsr() & kDaz, 0u);
    const double inside = gTiny * gScale;
    EXPECT_EQ(inside, 0.0);
    // A denormal input still counts: scaled up it is a normal non-zero number.
    const double scaledUp = gDenormal * 1e10;
    EXPECT_GT(scaledUp, 0.0);
  }
  EXPECT_EQ(gTiny * gScale, outside);
}

TEST(FlushToZeroGuard, RestoresTheCallersControlWord) {
  const unsigned int original = _mm_getcsr();
  for (unsigned int callers :
       {original & ~kFtz, (original & ~kRoundMask) | kRoundUp, original | kFtz, original | kDaz}) {
    _mm_setcsr(callers);
    {
      FlushToZeroGuard guard;
      EXPECT_EQ(_mm_getcsr(), callers | kFtz);
    }
    EXPECT_EQ(_mm_getcsr(), callers);
  }
  _mm_setcsr(original);
}

}  // namespace
