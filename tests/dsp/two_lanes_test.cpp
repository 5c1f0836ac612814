// The two-lane operations: each lane is the scalar operation, lanes stay in their places, and the
// clamp and finite test keep the scalar chain's answers for zeros, NaN and infinities.
#include "dsp/two_lanes.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdint>

namespace {

using lanes::Lanes;

// Run-time operands, so that the operations happen on the processor, not in the compiler.
volatile double gA = 0.1, gB = 3.0, gC = -7.25, gD = 1e-3;

std::uint64_t bits(double x) {
  return std::bit_cast<std::uint64_t>(x);
}

TEST(TwoLanes, ArithmeticIsTheScalarOperationInEachLane) {
  const Lanes x = lanes::make(gA, gC), y = lanes::make(gB, gD), z = lanes::both(gD);
  const Lanes r = x * y + z - x;
  EXPECT_EQ(bits(lanes::lane0(r)), bits(gA * gB + gD - gA));
  EXPECT_EQ(bits(lanes::lane1(r)), bits(gC * gD + gD - gC));
}

TEST(TwoLanes, MergePairsAndConversionsKeepEachLaneInItsPlace) {
  const Lanes a = lanes::make(1.0, 2.0), b = lanes::make(3.0, 4.0);
  const double a0[] = {5.0, 6.0, 7.0};
  // truncated toward zero, then widened back exactly
  const Lanes converted = lanes::widened(lanes::truncated(lanes::make(40000.0, 19999.999)));
  const struct {
    Lanes v;
    double lane0, lane1;
  } cases[] = {{lanes::merge(a, b), 1.0, 4.0},      {lanes::merge(b, a), 3.0, 2.0},
               {lanes::lows(a, b), 1.0, 3.0},       {lanes::highs(a, b), 2.0, 4.0},
               {lanes::loadPair(&a0[1]), 6.0, 7.0}, {lanes::both(8.0), 8.0, 8.0},
               {converted, 40000.0, 19999.0}};
  for (const auto& c : cases) {
    EXPECT_EQ(lanes::lane0(c.v), c.lane0);
    EXPECT_EQ(lanes::lane1(c.v), c.lane1);
  }
}

TEST(TwoLanes, ClampAndFiniteTestKeepZerosSignedAndTreatNaNAndInfinitiesAsTheScalarChainDoes) {
  const double nan = std::nan(""), inf = HUGE_VAL;
  const struct {
    double in, out;
  } cases[] = {{0.25, 0.25}, {-0.0, -0.0}, {0.0, 0.0}, {1.0, 1.0},   {-1.0, -1.0},
               {5.0, 1.0},   {-5.0, -1.0}, {inf, 1.0}, {-inf, -1.0}, {nan, 1.0}};
  for (const auto& c : cases) {
    const Lanes v = lanes::atLeast(lanes::atMost(lanes::make(c.in, -c.in), lanes::both(1.0)),
                                   lanes::both(-1.0));
    EXPECT_EQ(bits(lanes::lane0(v)), bits(c.out)) << c.in;
    if (!std::isnan(c.in)) {
      EXPECT_EQ(bits(lanes::lane1(v)), bits(-c.out)) << -c.in;
    }
    const Lanes finite = lanes::zeroUnlessFinite(lanes::make(c.in, -c.in));
    EXPECT_EQ(bits(lanes::lane0(finite)), std::isfinite(c.in) ? bits(c.in) : 0u) << c.in;
    EXPECT_EQ(bits(lanes::lane1(finite)), std::isfinite(c.in) ? bits(-c.in) : 0u) << -c.in;
  }
}

}  // namespace
