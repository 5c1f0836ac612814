// The flush-to-zero guard: flushes denormal results in its scope only, and restores the MXCSR.
#include "dsp/flush_to_zero.h"

#include <gtest/gtest.h>
#include <xmmintrin.h>

namespace {

constexpr unsigned int kFtz = 0x8000, kDaz = 0x0040, kRoundUp = 0x4000;

// Run-time operands, so that the products happen on the SSE unit, not in the compiler.
volatile double gTiny = 1e-300, gScale = 1e-10, gDenormal = 1e-310;

TEST(FlushToZeroGuard, FlushesDenormalResultsOnlyInsideItsScope) {
  const double outside = gTiny * gScale;
  {
    FlushToZeroGuard guard;
    EXPECT_EQ(gTiny * gScale, 0.0);
    EXPECT_GT(gDenormal * 1e10, 0.0);  // a denormal input still counts
  }
  EXPECT_TRUE(outside > 0.0 && gTiny * gScale == outside);
}

TEST(FlushToZeroGuard, SetsOnlyFlushToZeroAndRestoresTheCallersControlWord) {
  const unsigned int original = _mm_getcsr();  // round to nearest, no FTZ/DAZ: the ABI's default
  for (unsigned int callers : {original, original | kRoundUp, original | kFtz, original | kDaz}) {
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
