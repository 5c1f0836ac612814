// The sample-rate set-up, seen from inside an in-process instance: factor and coefficient set,
// rates of the designs, the shared waveshaper tables, repeated and rejected rates.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <memory>
#include <vector>

#include "amp/tarnwell.h"
#include "tarnwell_inspector.h"

namespace amp_test {
namespace {

// The coefficients a filter of this design has.
IIRFilter designed(int num, double freq, double q, double gain, double rate) {
  filterPrm_tag prm{num, freq, 0.0, 0.0, q, gain, rate};
  return IIRFilter(&prm);
}

bool sameCoefficients(const IIRFilter& a, const IIRFilter& b) {
  return std::memcmp(a.coef, b.coef, sizeof a.coef) == 0;
}

void runBlock(Tarnwell& amp, int frames, double level = 0.3) {
  std::vector<double> in(frames), out(frames);
  for (int i = 0; i < frames; ++i) in[i] = level * std::sin(0.05 * i);
  double* ins[1] = {in.data()};
  double* outs[1] = {out.data()};
  amp.processDoubleReplacing(ins, outs, frames);
}

struct RateCase {
  float rate;
  int factor;
  double firstA1;  // a1 of the chosen oversampling set
  double masterRate;
};

class SetupRates : public testing::TestWithParam<RateCase> {};

TEST_P(SetupRates, ChoosesFactorCoefficientsAndDesignRates) {
  const RateCase c = GetParam();
  Tarnwell amp(nullptr);
  amp.setSampleRate(c.rate);
  const TarnwellInspector view(amp);
  EXPECT_EQ(view.osFactor(), c.factor);
  EXPECT_EQ(view.osFactorD(), c.factor);
  EXPECT_EQ(view.osCoefA()[0], c.firstA1);
  EXPECT_EQ(view.intSampleRate(), static_cast<int>(c.rate));
  ASSERT_NE(view.osBuffer(), nullptr);
  for (int k = 0; k < c.factor; ++k) EXPECT_EQ(view.osBuffer()[k], 0.0);
  EXPECT_TRUE(sameCoefficients(*view.master(), designed(11, 80.0, 1.0, -2.1, c.masterRate)));
  EXPECT_TRUE(sameCoefficients(*view.first(0), designed(1, 26.0, 1.0, 0.0, c.rate)));
  EXPECT_TRUE(sameCoefficients(*view.outHighPass(), designed(1, 20.0, 1.0, 0.0, c.rate)));
  EXPECT_EQ(view.lastTreble(), -1.0f);
  EXPECT_EQ(view.lastBass(), -1.0f);
  EXPECT_EQ(view.appliedTrim(), 0.562341325);
}

INSTANTIATE_TEST_SUITE_P(Rates, SetupRates,
                         testing::Values(RateCase{44100.0f, 8, 4.3724453427, 352800.0},
                                         RateCase{48000.0f, 7, 4.3340205266, 336000.0},
                                         RateCase{48000.5f, 7, 4.3340205266, 48000.5 * 7.0},
                                         RateCase{96000.0f, 8, 4.3724453427, 768000.0},
                                         RateCase{32000.0f, 8, 4.3724453427, 256000.0}));

TEST(Setup, LowPassAboveHalfTheRateIsDesignedAtHalfTheRate) {
  Tarnwell amp(nullptr);
  amp.setSampleRate(32000.0f);
  EXPECT_TRUE(
      sameCoefficients(*TarnwellInspector(amp).first(1), designed(0, 16000.0, 1.0, 0.0, 32000.0)));
}

TEST(Setup, RepeatedRateChangesNothing) {
  Tarnwell amp(nullptr);
  amp.setSampleRate(44100.0f);
  runBlock(amp, 300);
  const TarnwellInspector view(amp);
  const double z1 = view.eq(2)->z1;
  const double up0 = view.osUpState()[0];
  const float lastTreble = view.lastTreble();
  const double* buffer = view.osBuffer();
  ASSERT_NE(z1, 0.0);
  amp.setSampleRate(44100.0f);
  EXPECT_EQ(view.eq(2)->z1, z1);
  EXPECT_EQ(view.osUpState()[0], up0);
  EXPECT_EQ(view.lastTreble(), lastTreble);
  EXPECT_EQ(view.osBuffer(), buffer);
}

TEST(Setup, NewRateRebuildsAndClearsEverything) {
  Tarnwell amp(nullptr);
  amp.setSampleRate(44100.0f);
  runBlock(amp, 300);
  amp.setSampleRate(48000.0f);
  const TarnwellInspector view(amp);
  EXPECT_EQ(view.osFactor(), 7);
  EXPECT_EQ(view.eq(2)->z1, 0.0);
  EXPECT_EQ(view.osUpState()[0], 0.0);
  EXPECT_EQ(view.lastTreble(), -1.0f);
  EXPECT_EQ(view.lastVolume(), 0.0);
}

TEST(Setup, RatesThatAreNotFinitePositiveNumbersAreIgnored) {
  Tarnwell amp(nullptr);
  for (const float bad : {0.0f, -44100.0f, std::numeric_limits<float>::infinity(),
                          std::numeric_limits<float>::quiet_NaN()}) {
    amp.setSampleRate(bad);
    EXPECT_EQ(TarnwellInspector(amp).osBuffer(), nullptr);
  }
  amp.setSampleRate(44100.0f);
  amp.setSampleRate(std::numeric_limits<float>::quiet_NaN());
  EXPECT_EQ(TarnwellInspector(amp).curSampleRate(), 44100.0);
}

TEST(Setup, HugeRateStillBuildsAFiniteChain) {
  Tarnwell amp(nullptr);
  amp.setSampleRate(3.0e38f);
  EXPECT_EQ(TarnwellInspector(amp).osFactor(), 8);
  runBlock(amp, 64);
}

// The shared first-stage table of factor F, built as the set-up builds it.
std::unique_ptr<Clipper> firstStage(double F) {
  auto table = std::make_unique<Clipper>();
  EXPECT_TRUE(buildFirstStageCurve(*table, F));
  return table;
}

TEST(SharedTables, TheLastNewRateDecidesTheCurveForEveryInstance) {
  const auto f7 = firstStage(7.0);
  const auto f8 = firstStage(8.0);
  const int probe = 20020;  // input 0.001, on the slope of the curve
  ASSERT_NE(f7->table[probe], f8->table[probe]);

  Tarnwell a(nullptr), b(nullptr);
  a.setSampleRate(44100.0f);
  EXPECT_EQ(Tarnwell::clip[0].load()->table[probe], f8->table[probe]);
  b.setSampleRate(48000.0f);
  EXPECT_EQ(Tarnwell::clip[0].load()->table[probe], f7->table[probe]);
  EXPECT_EQ(Tarnwell::clipSampleRate, 48000.0);

  // A rate the tables were last built for changes nothing; a new one rebuilds with its F.
  a.setSampleRate(48000.0f);
  EXPECT_EQ(Tarnwell::clip[0].load()->table[probe], f7->table[probe]);
  b.setSampleRate(96000.0f);
  EXPECT_EQ(Tarnwell::clip[0].load()->table[probe], f8->table[probe]);

  // Destroying an instance never clears the shared tables.
  {
    Tarnwell c(nullptr);
    c.setSampleRate(44100.0f);
  }
  EXPECT_EQ(Tarnwell::clip[0].load()->table[probe], f8->table[probe]);
  EXPECT_EQ(Tarnwell::clip[1].load()->table[kClipLast], 0.365 * std::tanh(103.534246575342));
}

}  // namespace
}  // namespace amp_test
