// The flush-to-zero guard: flushes denormal results in its scope only, and restores the caller's
// whole control word (MXCSR on x86, FPCR on AArch64).
#include "dsp/flush_to_zero.h"

#include <gtest/gtest.h>

namespace {

// Run-time operands, so that the products happen on the processor, not in the compiler.
volatile double gTiny = 1e-300, gScale = 1e-10, gHalf = 0.5;

TEST(FlushToZeroGuard, FlushesDenormalsOnlyInItsScopeAndRestoresTheCallersControlWord) {
  using fpcontrol::kFlushToZero, fpcontrol::kRoundUpward;
  const fpcontrol::Word original = fpcontrol::read();  // the ABI's default: nearest, no flushing
  ASSERT_EQ(original & (kFlushToZero | kRoundUpward), 0u);
  // Stored through a volatile, so the product is formed before any guard: the compiler may move
  // plain arithmetic across the control-word switch (clang does for AArch64).
  const volatile double outside = gTiny * gScale;
  for (const fpcontrol::Word callers :
       {original, original | kRoundUpward, original | kFlushToZero}) {
    fpcontrol::write(callers);
    {
      FlushToZeroGuard guard;
      EXPECT_EQ(fpcontrol::read(), callers | kFlushToZero);
      EXPECT_EQ(gTiny * gScale, 0.0);
      EXPECT_EQ(gTiny * gScale * 1e10, 0.0);
      EXPECT_EQ(gTiny * gHalf, 5e-301);  // normal results are untouched
    }
    EXPECT_EQ(fpcontrol::read(), callers);
  }
  fpcontrol::write(original);
  EXPECT_TRUE(outside > 0.0 && gTiny * gScale == outside);
}

}  // namespace
