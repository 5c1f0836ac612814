// Validator-style stress through the plug-in's boundary: every common rate with every block size a
// host uses, a parameter store before every block, programs switched while audio runs, and many
// instances opened, run and closed. Run under the asan preset, LeakSanitizer proves that nothing
// leaks.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <string>
#include <vector>

#include "hostif/orv_typeif.h"
#include "tests/reliability/output_bound.h"
#include "tests/reliability/plugin_host.h"
#include "tests/reliability/scenario.h"
#include "tests/reliability/test_signal.h"

namespace reliability {
namespace {

constexpr std::array<float, 6> kRates = {22050.0f, 44100.0f, 48000.0f,
                                         88200.0f, 96000.0f, 192000.0f};
// 0 stands for random sizes.
constexpr std::array<int, 8> kBlockSizes = {1, 7, 32, 64, 512, 1024, 4096, 0};
constexpr int kFramesPerCase = 8192;

struct BankModel {
  std::array<std::array<float, 5>, 16> values;  // what each program must hold
  int current = 0;
};

class EveryRate : public ::testing::TestWithParam<float> {};

TEST_P(EveryRate, EveryBlockSizeStaysFiniteBoundedAndAudible) {
  const float rate = GetParam();
  for (const int size : kBlockSizes) {
    SCOPED_TRACE("block size " + std::to_string(size));
    PluginInstance plugin(getinterface);
    ASSERT_NE(plugin.effect(), nullptr);
    plugin.setSampleRate(rate);

    // Every program starts as program 0's defaults: DEEP off, knobs at 0.5.
    BankModel bank;
    for (auto& program : bank.values) program = {0.0f, 0.5f, 0.5f, 0.5f, 0.5f};

    const int blocks = size > 0 ? (kFramesPerCase + size - 1) / size : 8;
    const auto schedule = makeSchedule({{size}, blocks, 3, static_cast<std::uint64_t>(size) + 7});
    NoiseSource noise(11);
    std::vector<double> in(4096), out(4096);
    std::int64_t done = 0;
    double peak = 0.0;
    for (const BlockPlan& block : schedule) {
      fill(Signal::kNoise, noise, in.data(), block.frames);
      runBlock(plugin, block, in.data(), out.data());
      if (block.program >= 0) bank.current = block.program;
      bank.values[bank.current][block.paramIndex - 1] = block.paramValue;
      done += block.frames;

      const double bound = outputBound(rate, done);
      for (int i = 0; i < block.frames; ++i) {
        ASSERT_TRUE(std::isfinite(out[i])) << "sample " << done - block.frames + i;
        ASSERT_LE(std::fabs(out[i]), bound) << "sample " << done - block.frames + i;
        peak = std::max(peak, std::fabs(out[i]));
      }
      for (VstInt32 p = 1; p <= 5; ++p) {
        ASSERT_EQ(plugin.getParameter(p), bank.values[bank.current][p - 1])
            << "parameter " << p << " of program " << bank.current;
      }
    }
    EXPECT_GT(peak, 1e-3) << "noise in, silence out";
  }
}

INSTANTIATE_TEST_SUITE_P(Rates, EveryRate, ::testing::ValuesIn(kRates), [](const auto& info) {
  return std::to_string(static_cast<int>(info.param));
});

TEST(Lifecycle, OpenProcessCloseRepeatedGivesFreshResults) {
  constexpr int kCycles = 200;
  constexpr int kFrames = 256;
  std::vector<double> in(kFrames), first(kFrames), out(kFrames);
  NoiseSource noise(3);
  fill(Signal::kNoise, noise, in.data(), kFrames);
  for (int cycle = 0; cycle < kCycles; ++cycle) {
    PluginInstance plugin(getinterface);
    ASSERT_NE(plugin.effect(), nullptr);
    // Rates of one oversampling factor, so the shared waveshaper curve stays the same.
    plugin.setSampleRate(cycle % 2 ? 44100.0f : 88200.0f);
    plugin.setSampleRate(44100.0f);
    plugin.process(in.data(), cycle == 0 ? first.data() : out.data(), kFrames);
    if (cycle > 0) {
      ASSERT_EQ(out, first) << "cycle " << cycle;
    }
  }
}

TEST(Lifecycle, NewRateSetUpEqualsAFreshInstance) {
  constexpr int kFrames = 1024;
  std::vector<double> in(kFrames), used(kFrames), fresh(kFrames);
  NoiseSource noise(8);
  fill(Signal::kNoise, noise, in.data(), kFrames);

  PluginInstance plugin(getinterface);
  plugin.setSampleRate(44100.0f);
  plugin.process(in.data(), used.data(), kFrames);
  plugin.setSampleRate(96000.0f);  // same oversampling factor: the shared curve stays
  plugin.setSampleRate(44100.0f);
  plugin.process(in.data(), used.data(), kFrames);

  PluginInstance reference(getinterface);
  reference.setSampleRate(44100.0f);
  reference.process(in.data(), fresh.data(), kFrames);
  EXPECT_EQ(used, fresh);
}

TEST(Lifecycle, HostCallbackHookFires) {
  const long before = versionRequests.load();
  PluginInstance plugin(getinterface);
  ASSERT_NE(plugin.effect(), nullptr);
  EXPECT_GT(versionRequests.load(), before);
}

TEST(Lifecycle, BlocksBeforeTheFirstSetUpAreSilent) {
  PluginInstance plugin(getinterface);
  std::vector<double> in(512, 0.5), out(512, 99.0);
  plugin.process(in.data(), out.data(), 512);
  EXPECT_EQ(out, std::vector<double>(512, 0.0));
}

TEST(Lifecycle, EmptyBlockWithPendingRedesignKeepsTheFiltersFinite) {
  PluginInstance plugin(getinterface);
  plugin.setSampleRate(44100.0f);
  std::vector<double> in(1024), out(1024);
  NoiseSource noise(5);
  fill(Signal::kNoise, noise, in.data(), 1024);
  plugin.process(in.data(), out.data(), 1024);
  plugin.setParameter(3, 0.9f);              // a tone change pending ...
  plugin.process(in.data(), out.data(), 0);  // ... taken by a block of no samples
  plugin.process(in.data(), out.data(), 1024);
  double peak = 0.0;
  for (const double v : out) {
    ASSERT_TRUE(std::isfinite(v));
    peak = std::max(peak, std::fabs(v));
  }
  EXPECT_GT(peak, 1e-3);
}

TEST(Lifecycle, ZeroAndNonFiniteRatesAreIgnored) {
  const auto schedule = makeSchedule({{256}, 8, 0, 21});
  PluginInstance reference(getinterface);
  reference.setSampleRate(44100.0f);
  const auto expected = render(reference, schedule, 4);

  PluginInstance plugin(getinterface);
  plugin.setSampleRate(44100.0f);
  for (const float bad : {0.0f, -1.0f, -44100.0f, std::nanf(""), INFINITY, -INFINITY}) {
    plugin.setSampleRate(bad);
  }
  EXPECT_EQ(render(plugin, schedule, 4), expected);
}

}  // namespace
}  // namespace reliability
