// The block procedure through the loaded plug-in: gain ramps, in place, bounds, allocation,
// floating-point state, denormals, bad input and the state before the first set-up.
#include <gtest/gtest.h>
#include <xmmintrin.h>

#include <cfloat>
#include <cmath>
#include <cstring>
#include <limits>
#include <vector>

#include "alloc_counter.h"
#include "loaded_plugin.h"

namespace amp_test {
namespace {

TEST(Processing, FirstBlockFadesVolumeAndMasterInFromZero) {
  // n = 2: the first sample runs at gain 0 (silence), the second at the full value.
  LoadedPlugin plugin;
  plugin.setSampleRate(44100.0f);
  double in[2] = {0.5, 0.5}, out[2] = {1.0, 1.0};
  plugin.process(in, out, 2);
  EXPECT_EQ(out[0], 0.0);
  EXPECT_NE(out[1], 0.0);
}

TEST(Processing, SingleSampleBlocksApplyANewGainOneBlockLate) {
  LoadedPlugin plugin;
  plugin.setSampleRate(48000.0f);
  double in = 0.5, out = 1.0;
  plugin.process(&in, &out, 1);  // n = 1: lastVolume (0) applies
  EXPECT_EQ(out, 0.0);
  in = 0.5;
  plugin.process(&in, &out, 1);
  EXPECT_NE(out, 0.0);
}

TEST(Processing, InPlaceEqualsSeparateBuffers) {
  LoadedPlugin separate, inPlace;
  separate.setSampleRate(44100.0f);
  inPlace.setSampleRate(44100.0f);
  const std::vector<double> input = testSignal(4096, 44100.0, 0.9);
  std::vector<double> buffer(input);
  std::vector<double> out(input.size());
  for (std::size_t start = 0; start < input.size(); start += 512) {
    std::vector<double> in(input.begin() + start, input.begin() + start + 512);
    separate.process(in.data(), out.data() + start, 512);
    inPlace.process(buffer.data() + start, buffer.data() + start, 512);
  }
  EXPECT_EQ(std::memcmp(out.data(), buffer.data(), out.size() * sizeof(double)), 0);
}

TEST(Processing, ANewRateSoundsLikeAFreshInstance) {
  LoadedPlugin used, fresh;
  used.setSampleRate(44100.0f);
  used.render(testSignal(3000, 44100.0, 0.9), 300);
  used.setSampleRate(48000.0f);
  fresh.setSampleRate(48000.0f);
  const std::vector<double> input = testSignal(3000, 48000.0, 0.9, 3);
  const std::vector<double> a = used.render(input, 300);
  const std::vector<double> b = fresh.render(input, 300);
  EXPECT_EQ(std::memcmp(a.data(), b.data(), a.size() * sizeof(double)), 0);
}

TEST(Processing, LoudInputGivesABoundedFiniteOutput) {
  LoadedPlugin plugin;
  plugin.setSampleRate(96000.0f);
  for (int index = 1; index <= 5; ++index) plugin.setParameter(index, 1.0f);
  const std::vector<double> out = plugin.render(testSignal(20000, 96000.0, 1.0e6), 256);
  double peak = 0.0;
  for (const double v : out) {
    ASSERT_TRUE(std::isfinite(v));
    peak = std::max(peak, std::abs(v));
  }
  EXPECT_GT(peak, 0.01);
  EXPECT_LT(peak, 2.0);
}

TEST(Processing, AllocationCounterSeesThePluginAllocate) {
  // Creating an instance allocates inside the library, so the hook is really in place.
  const long before = allocations.load();
  LoadedPlugin plugin;
  EXPECT_GT(allocations.load(), before);
}

TEST(Processing, ProcessingAllocatesNothing) {
  LoadedPlugin plugin;
  plugin.setSampleRate(44100.0f);
  std::vector<double> in = testSignal(1024, 44100.0, 0.5), out(1024);
  const long before = allocations.load();
  for (int block = 0; block < 20; ++block) {
    plugin.setParameter(3, 0.05f * block);  // redesigns as well
    plugin.process(in.data(), out.data(), 1024);
  }
  plugin.process(in.data(), out.data(), 0);
  EXPECT_EQ(allocations.load(), before);
}

TEST(Processing, CallersFloatingPointStateIsRestored) {
  LoadedPlugin plugin;
  plugin.setSampleRate(44100.0f);
  std::vector<double> in = testSignal(256, 44100.0, 0.5), out(256);
  const unsigned int saved = _mm_getcsr();
  for (const unsigned int mode : {0x1F80u, 0x1FC0u /* DAZ */, 0x9F80u /* FTZ */}) {
    _mm_setcsr(mode);
    plugin.process(in.data(), out.data(), 256);
    EXPECT_EQ(_mm_getcsr(), mode);
  }
  _mm_setcsr(saved);
}

TEST(Processing, DecayingTailHasNoDenormals) {
  LoadedPlugin plugin;
  plugin.setSampleRate(44100.0f);
  std::vector<double> input = testSignal(44100, 44100.0, 0.8);
  input.resize(44100 * 12, 0.0);  // a long silence after the note
  const std::vector<double> out = plugin.render(input, 512);
  for (std::size_t i = 0; i < out.size(); ++i) {
    ASSERT_TRUE(out[i] == 0.0 || std::abs(out[i]) >= DBL_MIN) << "sample " << i;
  }
}

TEST(Processing, NonFiniteInputNeverReachesTheOutputAndTheAmpRecovers) {
  LoadedPlugin plugin;
  plugin.setSampleRate(48000.0f);
  std::vector<double> block = testSignal(256, 48000.0, 0.5), out(256);
  plugin.process(block.data(), out.data(), 256);
  for (const double bad : {std::numeric_limits<double>::quiet_NaN(),
                           std::numeric_limits<double>::infinity(), -HUGE_VAL}) {
    std::vector<double> in = testSignal(256, 48000.0, 0.5);
    in[100] = bad;
    plugin.process(in.data(), out.data(), 256);
    for (const double v : out) ASSERT_TRUE(std::isfinite(v));
  }
  // Two clean blocks later the amp plays normally.
  for (int b = 0; b < 3; ++b) {
    std::vector<double> in = testSignal(256, 48000.0, 0.5, 5 + b);
    plugin.process(in.data(), out.data(), 256);
  }
  double energy = 0.0;
  for (const double v : out) {
    ASSERT_TRUE(std::isfinite(v));
    energy += v * v;
  }
  EXPECT_GT(energy, 1e-6);
}

TEST(Processing, NonFiniteParametersGiveSilenceAndTheAmpRecovers) {
  LoadedPlugin plugin;
  plugin.setSampleRate(44100.0f);
  std::vector<double> out(256);
  const float nan = std::numeric_limits<float>::quiet_NaN();
  for (const int index : {2, 3, 4, 5}) {
    plugin.setParameter(index, nan);
    std::vector<double> in = testSignal(256, 44100.0, 0.5);
    plugin.process(in.data(), out.data(), 256);
    for (const double v : out) ASSERT_TRUE(std::isfinite(v)) << "index " << index;
    plugin.setParameter(index, 0.5f);
  }
  for (int b = 0; b < 3; ++b) {
    std::vector<double> in = testSignal(256, 44100.0, 0.5, 9 + b);
    plugin.process(in.data(), out.data(), 256);
  }
  double energy = 0.0;
  for (const double v : out) energy += v * v;
  EXPECT_TRUE(std::isfinite(energy));
  EXPECT_GT(energy, 1e-6);
}

TEST(Processing, BeforeTheFirstSetUpTheOutputIsSilence) {
  LoadedPlugin plugin;
  std::vector<double> in(64, 0.5), out(64, 1.0);
  plugin.process(in.data(), out.data(), 64);
  for (const double v : out) EXPECT_EQ(v, 0.0);
}

TEST(Processing, SinglePrecisionProcessLeavesItsBuffersAlone) {
  LoadedPlugin plugin;
  plugin.setSampleRate(44100.0f);
  float in[8] = {0.5f, 0.5f, 0.5f, 0.5f, 0.5f, 0.5f, 0.5f, 0.5f};
  float out[8] = {7.0f, 7.0f, 7.0f, 7.0f, 7.0f, 7.0f, 7.0f, 7.0f};
  float* ins[1] = {in};
  float* outs[1] = {out};
  plugin.effect()->processReplacing(plugin.effect(), ins, outs, 8);
  for (const float v : out) EXPECT_EQ(v, 7.0f);
}

}  // namespace
}  // namespace amp_test
