// The derived output bound that the fuzz target and the stress tests assert: its filter gains
// match their closed forms, so the bound is neither wrong nor vacuous.
#include "tests/reliability/output_bound.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>

namespace reliability {
namespace {

constexpr std::int64_t kForever = std::numeric_limits<std::int64_t>::max();

double prewarp(double f, double rate) {
  return std::tan(3.141592653589794 * f / rate);
}

TEST(OutputBound, FirstOrderGainsMatchTheirClosedForms) {
  for (const double rate : {22050.0, 44100.0, 48000.0, 192000.0}) {
    // A first-order low-pass has a positive impulse response: L1 = DC gain = 1.
    EXPECT_NEAR(firstOrderL1(0, 2700.0, rate, kForever), 1.0, 1e-12) << rate;
    // A first-order high-pass with pole p: L1 = 2 b0 = 2 / (1 + K).
    EXPECT_NEAR(firstOrderL1(1, 30.0, rate, kForever), 2.0 / (1.0 + prewarp(30.0, rate)), 1e-9)
        << rate;
  }
}

TEST(OutputBound, HorizonCountsOnlyTheSamplesHeard) {
  const double k = prewarp(20.0, 44100.0);
  EXPECT_DOUBLE_EQ(firstOrderL1(1, 20.0, 44100.0, 1), 1.0 / (1.0 + k));
  EXPECT_EQ(firstOrderL1(1, 20.0, 44100.0, 0), 0.0);
  EXPECT_LT(firstOrderL1(1, 20.0, 44100.0, 100), firstOrderL1(1, 20.0, 44100.0, kForever));
}

TEST(OutputBound, StaysFiniteWhereAPoleReachesTheUnitCircle) {
  // At 1 Hz every corner is clamped to half the rate and the pre-warp lands past pi/2.
  const double soon = outputBound(1.0, 10);
  const double late = outputBound(1.0, 10'000'000);
  EXPECT_TRUE(std::isfinite(late));
  EXPECT_LE(soon, late);
}

TEST(OutputBound, DownFilterHasUnityDcGainAndModestOvershoot) {
  for (const int factor : {7, 8}) {
    EXPECT_GE(downFilterL1(factor), 1.0);
    EXPECT_LT(downFilterL1(factor), 3.0);
  }
  EXPECT_EQ(oversamplingFactor(48000.5), 7);
  EXPECT_EQ(oversamplingFactor(44100.0), 8);
}

TEST(OutputBound, IsOfTheOrderOfFullScale) {
  const double bound = outputBound(44100.0, kForever);
  EXPECT_GT(bound, 1.2 * 0.562341325);
  EXPECT_LT(bound, 10.0);
}

}  // namespace
}  // namespace reliability
