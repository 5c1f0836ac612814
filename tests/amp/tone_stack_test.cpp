// The tone-stack designs and output trims at the documented settings, and that a block redesigns
// only when DEEP, BASS or TREBLE changed.
#include "amp/tone_stack.h"

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "amp/tarnwell.h"
#include "tarnwell_inspector.h"

namespace amp_test {
namespace {

constexpr double kTrim = 0.562341325;

struct Expected {
  int num;
  double freq, q, gain;
};

void expectBands(const ToneStackDesign& d, const Expected (&expected)[7]) {
  for (int k = 0; k < 7; ++k) {
    SCOPED_TRACE(k);
    EXPECT_EQ(d.band[k].num, expected[k].num);
    EXPECT_NEAR(d.band[k].freq, expected[k].freq, 5e-6 * std::abs(expected[k].freq));
    EXPECT_NEAR(d.band[k].q, expected[k].q, 5e-6 * std::abs(expected[k].q));
    EXPECT_NEAR(d.band[k].gain, expected[k].gain, 5e-6 * std::abs(expected[k].gain) + 1e-12);
  }
}

TEST(ToneStack, ProgramZeroDesignsTheDeepOffBands) {
  const Expected expected[7] = {
      {7, 18.0, 0.63, 0.0},         {11, 432.336, 1.0, -8.03825}, {10, 207.512, 1.63786, -25.8731},
      {12, 1977.88, 1.0, -13.5365}, {10, 612.0, 5.0, -5.1},       {10, 2500.0, 3.0, 0.0},
      {10, 1300.0, 9.0, 0.0}};
  const ToneStackDesign d = designToneStack(false, 0.5, 0.5, 400.0, kTrim);
  expectBands(d, expected);
  EXPECT_EQ(d.trim, 0.8 * kTrim);
  EXPECT_NEAR(d.trim, 0.44987306, 1e-8);
}

TEST(ToneStack, DeepOnWithBassAndTrebleFull) {
  const ToneStackDesign d = designToneStack(true, 1.0, 1.0, 400.0, kTrim);
  EXPECT_NEAR(d.band[1].freq, 434.029, 1e-3);
  EXPECT_NEAR(d.band[1].gain, -7.0, 1e-9);
  EXPECT_NEAR(d.band[3].freq, 2999.92, 1e-2);
  EXPECT_NEAR(d.band[3].gain, 5.198, 1e-9);
  EXPECT_EQ(d.band[4].gain, 1.0);
  EXPECT_EQ(d.band[5].gain, 4.0);
  EXPECT_EQ(d.trim, kTrim);
}

TEST(ToneStack, DeepOffTrimStepsAtHalfTreble) {
  EXPECT_EQ(designToneStack(false, 0.5, 0.5, 400.0, kTrim).trim, 0.8 * kTrim);
  EXPECT_NEAR(designToneStack(false, 0.5, std::nextafter(0.5, 1.0), 400.0, kTrim).trim, kTrim,
              1e-12);
  EXPECT_NEAR(designToneStack(false, 0.5, 1.0, 400.0, kTrim).trim, 0.67480959, 1e-8);
  const ToneStackDesign highShelf = designToneStack(false, 0.5, 1.0, 400.0, kTrim);
  EXPECT_NEAR(highShelf.band[3].freq, 2.0, 1e-9);
  EXPECT_NEAR(highShelf.band[3].gain, -7.242, 1e-9);
}

void runBlock(Tarnwell& amp, int frames) {
  std::vector<double> in(frames, 0.1), out(frames);
  double* ins[1] = {in.data()};
  double* outs[1] = {out.data()};
  amp.processDoubleReplacing(ins, outs, frames);
}

TEST(ToneStack, BlocksRedesignOnlyOnAChangeAndHalfDeepIsOn) {
  Tarnwell amp(nullptr);
  amp.setSampleRate(44100.0f);
  const TarnwellInspector view(amp);
  runBlock(amp, 32);
  EXPECT_EQ(view.appliedTrim(), 0.8 * kTrim);  // program 0
  EXPECT_EQ(view.eq(0)->rampLen, 32.0);

  runBlock(amp, 16);  // nothing changed: the ramp is not restarted
  EXPECT_EQ(view.eq(0)->rampLen, 32.0);

  amp.setParameter(1, 0.5f);  // any DEEP other than 0 is on
  runBlock(amp, 16);
  EXPECT_EQ(view.appliedTrim(), kTrim);
  EXPECT_EQ(view.eq(0)->rampLen, 16.0);
  filterPrm_tag deepOnHighPass{7, 15.0, 0.0, 0.0, 0.65, 0.0, 44100.0};
  const IIRFilter expected(&deepOnHighPass);
  for (int k = 0; k < IIRFilter::kNumCoefs; ++k) EXPECT_EQ(view.eq(0)->coef[k], expected.coef[k]);

  amp.setParameter(1, 0.0f);
  amp.setParameter(3, 1.0f);
  runBlock(amp, 0);  // a 0-sample block ramps over one sample and stays finite
  EXPECT_EQ(view.eq(0)->rampLen, 1.0);
  EXPECT_NEAR(view.appliedTrim(), 1.2 * kTrim, 1e-15);
  runBlock(amp, 64);
  for (int k = 0; k < 7; ++k) EXPECT_TRUE(std::isfinite(view.eq(k)->z1));
}

}  // namespace
}  // namespace amp_test
