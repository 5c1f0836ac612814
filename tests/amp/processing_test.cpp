// The block procedure through the loaded plug-in (its gain ramps the literal-chain test pins):
// bounds, allocation, floating-point state, denormals, bad input and the state before the first
// set-up.
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <cfloat>
#include <numeric>

#include "dsp/fp_control.h"
#include "loaded_plugin.h"

extern std::atomic<long> allocations;  // every operator new, counted in alloc_counter.cpp

TEST(Processing, AllocatesNothingAndRestoresTheCallersFloatingPointState) {
  long before = allocations.load();
  LoadedPlugin plugin;  // creating an instance allocates in the library: the counter sees it
  ASSERT_GT(allocations.load(), before);
  plugin.setSampleRate(44100.0f);
  std::vector<double> in = testSignal(1024, 44100.0, 0.5), out(1024);
  const fpcontrol::Word saved = fpcontrol::read();
  before = allocations.load();
  for (int block = 0; block < 21; ++block) {
    plugin.setParameter(3, 0.05f * block);  // redesigns as well
    const fpcontrol::Word mode = saved | (block % 3 == 1   ? fpcontrol::kRoundUpward
                                          : block % 3 == 2 ? fpcontrol::kFlushToZero
                                                           : 0u);
    fpcontrol::write(mode);  // plain, rounding upward or flushing
    plugin.process(in.data(), out.data(), block == 20 ? 0 : 1024);
    EXPECT_EQ(fpcontrol::read(), mode);
  }
  fpcontrol::write(saved);
  EXPECT_EQ(allocations.load(), before);
}

TEST(Processing, LoudInputStaysBoundedAndItsDecayingTailHasNoDenormals) {
  LoadedPlugin plugin;
  plugin.setSampleRate(96000.0f);
  for (int index = 1; index <= 5; ++index) plugin.setParameter(index, 1.0f);
  std::vector<double> input = testSignal(20000, 96000.0, 1.0e6);
  input.resize(512UL * 2250, 0.0);  // 12 s: a long silence after the note
  for (std::size_t i = 0; i < input.size(); i += 512) plugin.process(&input[i], &input[i], 512);
  double peak = 0.0;
  for (const double v : input) {
    ASSERT_TRUE(std::isfinite(v) && (v == 0.0 || std::abs(v) >= DBL_MIN)) << v;
    peak = std::max(peak, std::abs(v));
  }
  EXPECT_TRUE(peak > 0.01 && peak < 2.0) << peak;
}

TEST(Processing, NonFiniteInputOrParametersNeverReachTheOutputAndTheAmpRecovers) {
  const double nan = std::nan(""), inf = HUGE_VAL;
  const std::pair<int, double> cases[] = {{0, nan}, {0, inf}, {0, -inf}, {2, nan},
                                          {3, nan}, {4, nan}, {5, nan}};  // 0: in the input
  for (const auto& [param, value] : cases) {
    SCOPED_TRACE(testing::Message() << "parameter " << param << ", value " << value);
    LoadedPlugin plugin;
    plugin.setSampleRate(48000.0f);
    std::vector<double> in = testSignal(256, 48000.0, 0.5), out(256);
    in[100] = param == 0 ? value : in[100];
    plugin.setParameter(param, static_cast<float>(value));
    for (unsigned block = 0; block < 4; ++block) {  // two clean blocks later it plays normally
      plugin.process(in.data(), out.data(), 256);
      for (const double v : out) ASSERT_TRUE(std::isfinite(v));
      // MASTER not a number: not a muffled or clamped signal but nothing at all
      if (block == 0 && param == 5) {
        ASSERT_EQ(std::ranges::count(out, 0.0), 256);
      }
      plugin.setParameter(param, 0.5f);
      in = testSignal(256, 48000.0, 0.5, 5 + block);
    }
    EXPECT_GT(std::inner_product(out.begin(), out.end(), out.begin(), 0.0), 1e-6);
  }
}

TEST(Processing, SilenceBeforeTheFirstSetUpAndNothingInSinglePrecision) {
  LoadedPlugin plugin;
  std::vector<double> in(64, 0.5), out(64, 1.0);
  plugin.process(in.data(), out.data(), 64);
  for (const double v : out) EXPECT_EQ(v, 0.0);
  plugin.setSampleRate(44100.0f);
  float inF[8] = {0.5f, 0.5f, 0.5f, 0.5f}, outF[8] = {7, 7, 7, 7, 7, 7, 7, 7};
  float *ins = inF, *outs = outF;
  plugin.effect()->processReplacing(plugin.effect(), &ins, &outs, 8);
  for (const float v : outF) EXPECT_EQ(v, 7.0f);
}
