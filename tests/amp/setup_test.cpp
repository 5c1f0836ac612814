// The sample-rate set-up, seen from inside an in-process instance: factor, rates of the designs,
// repeated, new and rejected rates, the shared waveshaper tables.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <memory>
#include <tuple>

#include "loaded_plugin.h"
#include "tarnwell_inspector.h"

TEST(Setup, ChoosesTheFactorAndTheRateOfEachDesign) {
  const auto designedAs = [](const IIRFilter& filter, int num, double freq, double q, double gain,
                             double rate) {
    filterPrm_tag prm{num, freq, 0.0, 0.0, q, gain, rate};
    const IIRFilter expected(&prm);
    return std::memcmp(filter.coef, expected.coef, sizeof expected.coef) == 0;
  };
  // Rate, factor and the 18 kHz low-pass, designed at half the rate below 36 kHz.
  const std::tuple<float, int, double> cases[] = {{44100.0f, 8, 18000.0}, {48000.0f, 7, 18000.0},
                                                  {48000.5f, 7, 18000.0}, {96000.0f, 8, 18000.0},
                                                  {32000.0f, 8, 16000.0}, {22050.0f, 8, 11025.0}};
  for (const auto& [rate, factor, lowPass] : cases) {
    SCOPED_TRACE(rate);
    Tarnwell amp(nullptr);
    amp.setSampleRate(rate);
    const TarnwellInspector view(amp);
    EXPECT_EQ(view.osFactor(), factor);
    EXPECT_TRUE(designedAs(view.master(), 11, 80.0, 1.0, -2.1, double{rate} * factor));
    EXPECT_TRUE(designedAs(view.first(1), 0, lowPass, 1.0, 0.0, rate));
    EXPECT_TRUE(view.lastTreble() == -1.0f && view.lastBass() == -1.0f);  // a redesign is due
  }
}

TEST(Setup, ARepeatedRateChangesNothingAndANewOneSoundsLikeAFreshInstance) {
  Tarnwell used(nullptr), twin(nullptr), fresh(nullptr);
  for (Tarnwell* amp : {&used, &twin}) amp->setSampleRate(44100.0f);
  const std::vector<double> in = testSignal(3000, 44100.0, 0.9);
  ASSERT_EQ(processBlock(used, in), processBlock(twin, in));
  used.setSampleRate(44100.0f);  // keeps filter states, last values and trim
  EXPECT_EQ(processBlock(used, in), processBlock(twin, in));
  for (Tarnwell* amp : {&used, &fresh}) amp->setSampleRate(48000.0f);
  for (unsigned block = 0; block < 10; ++block) {
    const std::vector<double> next = testSignal(300, 48000.0, 0.9, block);
    EXPECT_EQ(processBlock(used, next), processBlock(fresh, next)) << "block " << block;
  }
}

TEST(Setup, RatesThatAreNotFinitePositiveNumbersAreIgnored) {
  Tarnwell amp(nullptr);
  for (const float bad : {0.0f, -44100.0f, HUGE_VALF, std::nanf("")}) amp.setSampleRate(bad);
  EXPECT_EQ(TarnwellInspector(amp).osBuffer(), nullptr);
  amp.setSampleRate(44100.0f);
  amp.setSampleRate(std::nanf(""));
  EXPECT_EQ(TarnwellInspector(amp).curSampleRate(), 44100.0);
  amp.setSampleRate(3.0e38f);  // the largest float is a rate like any other
  for (const double v : processBlock(amp, testSignal(64, 1.0, 0.3))) EXPECT_TRUE(std::isfinite(v));
}

TEST(SharedTables, TheLastNewRateDecidesTheCurveForEveryInstance) {
  auto f7 = std::make_unique<Clipper>(), f8 = std::make_unique<Clipper>();
  ASSERT_TRUE(buildFirstStageCurve(*f7, 7.0) && buildFirstStageCurve(*f8, 8.0));
  const int probe = 20020;  // input 0.001, on the slope of the curve
  ASSERT_NE(f7->table[probe], f8->table[probe]);
  Tarnwell a(nullptr), b(nullptr);
  auto c = std::make_unique<Tarnwell>(nullptr);
  // A new rate rebuilds with its factor; a rate the tables were last built for changes nothing.
  const std::tuple<Tarnwell*, float, const Clipper*> steps[] = {
      {&a, 44100.0f, f8.get()}, {&b, 48000.0f, f7.get()}, {&a, 48000.0f, f7.get()},
      {&b, 96000.0f, f8.get()}, {&a, 96000.0f, f8.get()}, {c.get(), 44100.0f, f8.get()}};
  for (const auto& [amp, rate, expected] : steps) {
    amp->setSampleRate(rate);
    EXPECT_EQ(Tarnwell::clip[0].load()->table[probe], expected->table[probe]) << rate;
    EXPECT_EQ(Tarnwell::clipSampleRate, rate);
  }
  c.reset();  // destroying an instance never clears the shared tables
  EXPECT_EQ(Tarnwell::clip[0].load()->table[probe], f8->table[probe]);
  EXPECT_EQ(Tarnwell::clip[1].load()->table[kClipLast], 0.365 * std::tanh(103.534246575342));
}
