// The tone-stack band designs and output trims at the documented settings. When a block redesigns
// (on a change only, DEEP on for any value but 0) the literal-chain test pins.
#include <gtest/gtest.h>

#include <cmath>

#include "amp/tone_stack_design.h"

constexpr double kTrim = 0.562341325;

static ToneStackDesign design(bool deep, double bass, double treble) {
  return designToneStack(deep, bass, treble, 400.0, kTrim);
}

TEST(ToneStack, ProgramZeroBandsAndTheTrimStepAtHalfTreble) {
  const BandDesign expected[7] = {
      {7, 18.0, 0.63, 0.0},         {11, 432.336, 1.0, -8.03825}, {10, 207.512, 1.63786, -25.8731},
      {12, 1977.88, 1.0, -13.5365}, {10, 612.0, 5.0, -5.1},       {10, 2500.0, 3.0, 0.0},
      {10, 1300.0, 9.0, 0.0}};
  const ToneStackDesign d = design(false, 0.5, 0.5);
  for (int k = 0; k < 7; ++k) {  // to six significant figures
    const BandDesign& e = expected[k];
    EXPECT_EQ(d.band[k].num, e.num) << k;
    EXPECT_NEAR(d.band[k].freq, e.freq, 5e-6 * e.freq) << k;
    EXPECT_NEAR(d.band[k].q, e.q, 5e-6 * e.q) << k;
    EXPECT_NEAR(d.band[k].gain, e.gain, 5e-6 * std::abs(e.gain) + 1e-12) << k;
  }
  EXPECT_NEAR(d.trim, 0.44987306, 1e-8);  // 0.8 of the full trim, up to 1.0 just above half TREBLE
  EXPECT_NEAR(design(false, 0.5, std::nextafter(0.5, 1.0)).trim, kTrim, 1e-12);
}

TEST(ToneStack, TrebleFullWithDeepOnAndOff) {
  const ToneStackDesign d = design(true, 1.0, 1.0);  // BASS full too
  EXPECT_NEAR(d.band[1].freq, 434.029, 1e-3);
  EXPECT_NEAR(d.band[1].gain, -7.0, 1e-9);
  EXPECT_NEAR(d.band[3].freq, 2999.92, 1e-2);
  EXPECT_NEAR(d.band[3].gain, 5.198, 1e-9);
  EXPECT_EQ(d.band[4].gain, 1.0);
  EXPECT_EQ(d.band[5].gain, 4.0);
  EXPECT_EQ(d.trim, kTrim);
  const ToneStackDesign off = design(false, 0.5, 1.0);
  EXPECT_NEAR(off.band[3].freq, 2.0, 1e-9);
  EXPECT_NEAR(off.band[3].gain, -7.242, 1e-9);
  EXPECT_NEAR(off.trim, 0.67480959, 1e-8);
}
