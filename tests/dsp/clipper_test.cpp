// Waveshaper tables: the curves at sample points, the clamped and interpolated lookup, and the
// build's all-or-nothing behaviour when its scratch record cannot be allocated.
#include "dsp/clipper.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <new>

namespace {

int gNothrowNews = 0;
bool gFailNothrowNew = false;

}  // namespace

// Counts nothrow allocations and can make them fail; forwards to the ordinary operator new so
// that the ordinary delete matches.
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
  ++gNothrowNews;
  if (gFailNothrowNew) return nullptr;
  try {
    return ::operator new(size);
  } catch (...) {
    return nullptr;
  }
}

namespace {

constexpr double kInf = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

class ClipperTest : public ::testing::Test {
 protected:
  static void SetUpTestSuite() {
    ASSERT_TRUE(buildFirstStageCurve(first8, 8.0));
    ASSERT_TRUE(buildFirstStageCurve(first7, 7.0));
    ASSERT_TRUE(buildSecondStageCurve(second));
  }
  static inline Clipper first8, first7, second;
};

double entryInput(int i) {
  return (i - kClipCentre) / 20000.0;
}

TEST_F(ClipperTest, CurvesFollowTheirTanhShapes) {
  struct Curve {
    const char* what;
    const Clipper& table;
    double posSlope, posLimit, negSlope, negLimit;
  };
  const Curve curves[] = {
      {"first, F = 8", first8, 7.82 * 8, 1.0, 13.8898756660746 * 8, 0.563},
      {"first, F = 7", first7, 7.82 * 7, 1.0, 13.8898756660746 * 7, 0.563},
      {"second", second, 103.534246575342, 0.365, 37.79, 1.0},
  };
  for (const Curve& c : curves) {
    EXPECT_EQ(c.table.scale, 20000.0) << c.what;
    for (int i : {0, 1, 5000, 19000, 19990, 19999, 20000, 20001, 20010, 21000, 30000, 40000}) {
      const double u = entryInput(i);
      const double expected = u >= 0.0 ? c.posLimit * std::tanh(c.posSlope * u)
                                       : c.negLimit * std::tanh(c.negSlope * u);
      EXPECT_NEAR(c.table.table[i], expected, 1e-14) << c.what << " entry " << i;
      EXPECT_EQ(clipLookup(c.table, u), c.table.table[i]) << c.what << " entry " << i;
    }
    EXPECT_NEAR(c.table.guard, c.table.table[kClipLast], 1e-15) << c.what;
  }
  EXPECT_NEAR(clipLookup(first8, 0.5), std::tanh(31.28), 1e-15);
  EXPECT_NEAR(clipLookup(first8, -0.5), -0.563 * std::tanh(55.5595026642984), 1e-15);
  EXPECT_NEAR(second.table[kClipLast], 0.365 * std::tanh(103.534246575342), 1e-15);
  EXPECT_NEAR(second.table[0], -std::tanh(37.79), 1e-15);
}

TEST_F(ClipperTest, ClampsEveryInputToTheTableEnds) {
  for (const Clipper* c : {&first8, &second}) {
    for (double u : {1.0, 1.0000001, 5.0, 1e300, kInf}) {
      EXPECT_EQ(clipLookup(*c, u), c->table[kClipLast]) << u;
    }
    for (double u : {-1.0, -1.0000001, -5.0, -1e300, -kInf}) {
      EXPECT_EQ(clipLookup(*c, u), c->table[0]) << u;
    }
  }
}

TEST_F(ClipperTest, ZeroAndNaNReadZero) {
  for (const Clipper* c : {&first8, &first7, &second}) {
    EXPECT_EQ(clipLookup(*c, 0.0), 0.0);
    EXPECT_EQ(clipLookup(*c, -0.0), 0.0);
    EXPECT_EQ(clipLookup(*c, kNaN), 0.0);
    EXPECT_EQ(clipLookup(*c, -kNaN), 0.0);
  }
}

TEST_F(ClipperTest, InterpolatesLinearlyBetweenEntries) {
  for (int i : {0, 123, 19999, 20000, 27777, 39999}) {
    for (double t : {0.25, 0.5, 0.75}) {
      const double u = (i + t - kClipCentre) / 20000.0;
      const double a = second.table[i], b = second.table[i + 1];
      EXPECT_NEAR(clipLookup(second, u), a + (b - a) * t, 1e-12 * std::fabs(b - a) + 1e-16)
          << i << " " << t;
    }
  }
}

TEST(ClipperBuild, UnbuiltTableReadsZero) {
  static const Clipper empty{};
  for (double u : {-2.0, -1.0, -0.3, 0.0, 0.7, 1.0, 2.0}) EXPECT_EQ(clipLookup(empty, u), 0.0);
}

TEST(ClipperBuild, AllocationFailureLeavesTheTargetUntouched) {
  static Clipper target;
  ASSERT_TRUE(buildSecondStageCurve(target));
  const Clipper before = target;

  const int calls = gNothrowNews;
  gFailNothrowNew = true;
  const bool first = buildFirstStageCurve(target, 8.0);
  const bool second = buildSecondStageCurve(target);
  gFailNothrowNew = false;

  EXPECT_EQ(gNothrowNews, calls + 2);  // the hook really saw both builds
  EXPECT_FALSE(first);
  EXPECT_FALSE(second);
  EXPECT_EQ(target.scale, before.scale);
  EXPECT_EQ(target.guard, before.guard);
  for (int i = 0; i < kClipSize; ++i) ASSERT_EQ(target.table[i], before.table[i]) << i;
}

}  // namespace
