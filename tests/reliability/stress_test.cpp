// Validator-style stress through the boundary: every common rate with every block size a host
// uses, a parameter store before every block and programs switched while audio runs; instances
// opened, run and closed many times; out-of-range parameter values, after which the amp must
// sound as before within two blocks. Under the asan preset, LeakSanitizer proves nothing leaks.
#include <gtest/gtest.h>

#include <algorithm>
#include <cfloat>
#include <cmath>
#include <numeric>
#include <string>
#include <vector>

#include "tests/reliability/output_bound.h"
#include "tests/reliability/plugin_host.h"

namespace reliability {
namespace {

TEST(OutputBound, MatchesClosedFormsAndIsFiniteAndOfTheOrderOfFullScale) {
  // A low-pass's h is positive: L1 = DC gain = 1. A high-pass's: L1 = 2 b0 = 2 / (1 + K).
  const double k = std::tan(3.141592653589794 * 30.0 / 48000.0);
  EXPECT_NEAR(firstOrderL1(false, 2700.0, 48000.0, 1 << 30), 1.0, 1e-12);
  EXPECT_NEAR(firstOrderL1(true, 30.0, 48000.0, 1 << 30), 2.0 / (1.0 + k), 1e-9);
  EXPECT_TRUE(std::isfinite(outputBound(1.0, 1 << 30)));  // poles on the unit circle at 1 Hz
  EXPECT_LT(outputBound(44100.0, 1 << 30), 10.0);
}

TEST(Stress, EveryRateAndBlockSizeStaysFiniteBoundedAndAudible) {
  for (const float rate : {22050.0f, 44100.0f, 48000.0f, 88200.0f, 96000.0f, 192000.0f}) {
    for (const int size : {1, 7, 32, 64, 512, 1024, 4096, 0}) {  // 0: random sizes up to 2048
      SCOPED_TRACE("rate " + std::to_string(rate) + ", block size " + std::to_string(size));
      PluginInstance plugin(getinterface);
      plugin.setSampleRate(rate);
      NoiseSource random(size + 7u), noise(11);
      std::vector<double> in(4096), out(4096);
      double peak = 0.0;
      for (int done = 0; done < 8192;) {
        const int frames = size > 0 ? size : 1 + static_cast<int>(random() % 2048);
        noise.fill(in.data(), frames);
        playBlock(plugin, random, in.data(), out.data(), frames);
        done += frames;
        const double bound = outputBound(rate, done);
        for (int i = 0; i < frames; ++i) {
          ASSERT_TRUE(std::isfinite(out[i]) && std::fabs(out[i]) <= bound)
              << "sample " << done - frames + i << ": " << out[i] << ", bound " << bound;
          peak = std::max(peak, std::fabs(out[i]));
        }
      }
      EXPECT_GT(peak, 1e-3) << "noise in, silence out";
    }
  }
}

TEST(Lifecycle, OpenProcessCloseRepeatedGivesFreshResults) {
  std::vector<double> in(256), out(256), first;
  NoiseSource(3).fill(in.data(), 256);
  for (int cycle = 0; cycle < 200; ++cycle) {
    PluginInstance plugin(getinterface);
    // Both rates have one oversampling factor, so the shared waveshaper curve stays the same.
    plugin.setSampleRate(cycle % 2 ? 44100.0f : 88200.0f);
    plugin.setSampleRate(44100.0f);
    plugin.process(in.data(), out.data(), 256);
    if (cycle == 0) first = out;
    ASSERT_EQ(out, first) << "cycle " << cycle;
  }
}

double rms(const std::vector<double>& x) {
  return std::sqrt(std::inner_product(x.begin(), x.end(), x.begin(), 0.0) / x.size());
}

// Judged against a twin instance that runs the same input with the value never disturbed.
TEST(OutOfRange, EveryParameterStaysFiniteAndRecoversWithinTwoBlocks) {
  constexpr int kBlock = 512;
  const double bound = outputBound(44100.0, 64L * kBlock);
  for (VstInt32 param = 1; param <= 5; ++param) {
    for (const float bad :
         {NAN, INFINITY, -INFINITY, FLT_MAX, -FLT_MAX, 1e30f, -1e30f, 7.0f, -5.0f}) {
      SCOPED_TRACE("parameter " + std::to_string(param) + ", value " + std::to_string(bad));
      PluginInstance plugin(getinterface), twin(getinterface);
      for (PluginInstance* p : {&plugin, &twin}) {
        p->setSampleRate(44100.0f);
        p->setAudible();
      }
      const float restore = twin.getParameter(param);
      NoiseSource noise(17);
      std::vector<double> in(kBlock), out(kBlock), expected(kBlock);
      // Blocks 0-3 settle, 4-6 run with the bad value, 7-8 may sound wrong, 9-20 must not.
      for (int block = 0; block < 21; ++block) {
        SCOPED_TRACE("block " + std::to_string(block));
        if (block == 4 || block == 7) plugin.setParameter(param, block == 4 ? bad : restore);
        noise.fill(in.data(), kBlock);
        plugin.process(in.data(), out.data(), kBlock);
        twin.process(in.data(), expected.data(), kBlock);
        for (const double v : out) ASSERT_TRUE(std::isfinite(v));
        ASSERT_TRUE(block >= 4 || out == expected) << "the twins differ before any disturbance";
        if (block < 9) continue;
        // Level within 1 dB of the twin's and inside the bound from the first checked block ...
        ASSERT_GT(rms(expected), 1e-3);
        EXPECT_NEAR(20.0 * std::log10(rms(out) / rms(expected)), 0.0, 1.0);
        for (const double v : out) ASSERT_LE(std::fabs(v), bound);
      }
      // ... and converging onto it as the filters' memories of the disturbance decay.
      for (int i = 0; i < kBlock; ++i) ASSERT_NEAR(out[i], expected[i], 1e-6) << "sample " << i;
    }
  }
}

}  // namespace
}  // namespace reliability
