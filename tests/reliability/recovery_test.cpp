// Out-of-range parameter values: the plug-in stores them unchanged, its output stays finite, and
// once the values are back in range it sounds as it did before within two blocks. "As before" is
// judged against a twin instance that ran the same input with the values never disturbed.
#include <gtest/gtest.h>

#include <algorithm>
#include <cfloat>
#include <cmath>
#include <limits>
#include <vector>

#include "hostif/orv_typeif.h"
#include "tests/reliability/output_bound.h"
#include "tests/reliability/plugin_host.h"
#include "tests/reliability/test_signal.h"

namespace reliability {
namespace {

constexpr float kRate = 44100.0f;
constexpr int kBlock = 512;
constexpr int kSettleBlocks = 4;     // before the disturbance
constexpr int kDisturbedBlocks = 3;  // with the bad value in place
constexpr int kLostBlocks = 2;       // after the restore, allowed to sound wrong
constexpr int kCheckedBlocks = 12;   // after those, must match the twin more and more closely

struct BadValue {
  float value;
  const char* name;
};
constexpr BadValue kBadValues[] = {
    {std::numeric_limits<float>::quiet_NaN(), "nan"},
    {INFINITY, "inf"},
    {-INFINITY, "minus_inf"},
    {FLT_MAX, "float_max"},
    {-FLT_MAX, "minus_float_max"},
    {1e30f, "1e30"},
    {-1e30f, "minus_1e30"},
    {7.0f, "7"},
    {-5.0f, "minus_5"},
};

struct Disturbance {
  VstInt32 param;
  BadValue bad;
};

std::vector<Disturbance> disturbances() {
  std::vector<Disturbance> all;
  for (VstInt32 p = 1; p <= 5; ++p) {
    for (const BadValue& bad : kBadValues) all.push_back({p, bad});
  }
  return all;
}

double rms(const double* x, int n) {
  double sum = 0.0;
  for (int i = 0; i < n; ++i) sum += x[i] * x[i];
  return std::sqrt(sum / n);
}

double maxDifference(const double* a, const double* b, int n) {
  double worst = 0.0;
  for (int i = 0; i < n; ++i) worst = std::max(worst, std::fabs(a[i] - b[i]));
  return worst;
}

class OutOfRange : public ::testing::TestWithParam<Disturbance> {};

TEST_P(OutOfRange, StaysFiniteAndRecoversWithinTwoBlocks) {
  const Disturbance d = GetParam();
  PluginInstance plugin(getinterface);
  PluginInstance twin(getinterface);
  for (PluginInstance* p : {&plugin, &twin}) {
    p->setSampleRate(kRate);
    // An audible setting with every stage in play: DEEP on, TREBLE above the trim step.
    const float settings[] = {1.0f, 0.6f, 0.7f, 0.4f, 0.8f};
    for (VstInt32 i = 1; i <= 5; ++i) p->setParameter(i, settings[i - 1]);
  }
  const float restore = twin.getParameter(d.param);

  NoiseSource noise(17);
  std::vector<double> in(kBlock), out(kBlock), expected(kBlock);
  int block = 0;
  auto step = [&] {
    fill(Signal::kNoise, noise, in.data(), kBlock);
    plugin.process(in.data(), out.data(), kBlock);
    twin.process(in.data(), expected.data(), kBlock);
    ++block;
    for (int i = 0; i < kBlock; ++i) {
      if (!std::isfinite(out[i])) return false;
    }
    return true;
  };

  for (int b = 0; b < kSettleBlocks; ++b) ASSERT_TRUE(step());
  ASSERT_EQ(out, expected);

  plugin.setParameter(d.param, d.bad.value);
  const float stored = plugin.getParameter(d.param);
  EXPECT_TRUE(std::isnan(d.bad.value) ? std::isnan(stored) : stored == d.bad.value)
      << "stored unchanged";
  for (int b = 0; b < kDisturbedBlocks; ++b) ASSERT_TRUE(step()) << "disturbed block " << b;

  plugin.setParameter(d.param, restore);
  for (int b = 0; b < kLostBlocks; ++b) ASSERT_TRUE(step()) << "block " << b << " after restore";

  const double bound = outputBound(kRate, std::int64_t{kBlock} * 64);
  double lastDifference = INFINITY;
  for (int b = 0; b < kCheckedBlocks; ++b) {
    ASSERT_TRUE(step());
    const double level = rms(out.data(), kBlock);
    const double twinLevel = rms(expected.data(), kBlock);
    ASSERT_GT(twinLevel, 1e-3);
    // Sounds like the twin from the first checked block: level within 1 dB ...
    EXPECT_NEAR(20.0 * std::log10(level / twinLevel), 0.0, 1.0) << "block " << b;
    for (const double v : out) ASSERT_LE(std::fabs(v), bound);
    lastDifference = maxDifference(out.data(), expected.data(), kBlock);
  }
  // ... and converges onto it as the filters' memories of the disturbance decay.
  EXPECT_LT(lastDifference, 1e-6);
}

INSTANTIATE_TEST_SUITE_P(AllParameters, OutOfRange, ::testing::ValuesIn(disturbances()),
                         [](const auto& info) {
                           return "param" + std::to_string(info.param.param) + "_" +
                                  info.param.bad.name;
                         });

}  // namespace
}  // namespace reliability
