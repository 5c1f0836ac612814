// The sample-rate set-up, seen from inside an in-process instance: factor, rates of the designs,
// repeated, new and rejected rates, the shared waveshaper tables.
#include <gtest/gtest.h>

#include <cstring>
#include <limits>
#include <memory>

#include "loaded_plugin.h"
#include "tarnwell_inspector.h"

// Whether `filter` has the coefficients of this design.
static bool designedAs(const IIRFilter& filter, int num, double freq, double q, double gain,
                       double rate) {
  filterPrm_tag prm{num, freq, 0.0, 0.0, q, gain, rate};
  const IIRFilter expected(&prm);
  return std::memcmp(filter.coef, expected.coef, sizeof expected.coef) == 0;
}

TEST(Setup, ChoosesTheFactorAndTheRateOfEachDesign) {
  struct Case {
    float rate;
    int factor;
    double lowPass;  // 18 kHz, or half the rate below 36 kHz
  };
  const Case cases[] = {{44100.0f, 8, 18000.0}, {48000.0f, 7, 18000.0}, {48000.5f, 7, 18000.0},
                        {96000.0f, 8, 18000.0}, {32000.0f, 8, 16000.0}, {22050.0f, 8, 11025.0}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.rate);
    Tarnwell amp(nullptr);
    amp.setSampleRate(c.rate);
    const TarnwellInspector view(amp);
    EXPECT_EQ(view.osFactor(), c.factor);
    EXPECT_TRUE(designedAs(view.master(), 11, 80.0, 1.0, -2.1, double{c.rate} * c.factor));
    EXPECT_TRUE(designedAs(view.first(1), 0, c.lowPass, 1.0, 0.0, c.rate));
    EXPECT_EQ(view.lastTreble(), -1.0f);
    EXPECT_EQ(view.lastBass(), -1.0f);
    EXPECT_EQ(view.appliedTrim(), 0.562341325);
  }
}

TEST(Setup, ARepeatedRateChangesNothingAndANewOneSoundsLikeAFreshInstance) {
  Tarnwell used(nullptr), twin(nullptr), fresh(nullptr);
  used.setSampleRate(44100.0f);
  twin.setSampleRate(44100.0f);
  const std::vector<double> in = testSignal(3000, 44100.0, 0.9);
  ASSERT_EQ(processBlock(used, in), processBlock(twin, in));
  used.setSampleRate(44100.0f);  // keeps filter states, last values and trim
  EXPECT_EQ(processBlock(used, in), processBlock(twin, in));
  used.setSampleRate(48000.0f);
  fresh.setSampleRate(48000.0f);
  for (unsigned block = 0; block < 10; ++block) {
    const std::vector<double> next = testSignal(300, 48000.0, 0.9, block);
    EXPECT_EQ(processBlock(used, next), processBlock(fresh, next)) << "block " << block;
  }
}

TEST(Setup, RatesThatAreNotFinitePositiveNumbersAreIgnored) {
  Tarnwell amp(nullptr);
  const float inf = std::numeric_limits<float>::infinity(), nan = std::nanf("");
  for (const float bad : {0.0f, -44100.0f, inf, nan}) amp.setSampleRate(bad);
  EXPECT_EQ(TarnwellInspector(amp).osBuffer(), nullptr);
  amp.setSampleRate(44100.0f);
  amp.setSampleRate(nan);
  EXPECT_EQ(TarnwellInspector(amp).curSampleRate(), 44100.0);
  amp.setSampleRate(3.0e38f);  // the largest float is a rate like any other
  for (const double v : processBlock(amp, testSignal(64, 1.0, 0.3))) EXPECT_TRUE(std::isfinite(v));
}

TEST(SharedTables, TheLastNewRateDecidesTheCurveForEveryInstance) {
  auto f7 = std::make_unique<Clipper>(), f8 = std::make_unique<Clipper>();
  ASSERT_TRUE(buildFirstStageCurve(*f7, 7.0) && buildFirstStageCurve(*f8, 8.0));
  const int probe = 20020;  // input 0.001, on the slope of the curve
  ASSERT_NE(f7->table[probe], f8->table[probe]);
  const auto shared = [&] { return Tarnwell::clip[0].load()->table[probe]; };

  Tarnwell a(nullptr), b(nullptr);
  a.setSampleRate(44100.0f);
  EXPECT_EQ(shared(), f8->table[probe]);
  b.setSampleRate(48000.0f);
  EXPECT_EQ(shared(), f7->table[probe]);
  EXPECT_EQ(Tarnwell::clipSampleRate, 48000.0);
  a.setSampleRate(48000.0f);  // the rate the tables were last built for: nothing to do
  EXPECT_EQ(shared(), f7->table[probe]);
  b.setSampleRate(96000.0f);
  EXPECT_EQ(shared(), f8->table[probe]);
  {
    Tarnwell c(nullptr);  // destroying an instance never clears the shared tables
    c.setSampleRate(44100.0f);
  }
  EXPECT_EQ(shared(), f8->table[probe]);
  EXPECT_EQ(Tarnwell::clip[1].load()->table[kClipLast], 0.365 * std::tanh(103.534246575342));
}
