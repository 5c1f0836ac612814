// Waveshaper tables: the curves, the clamped and interpolated lookup, and all-or-nothing building.
#include "dsp/clipper.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <new>

static int gNothrowNews = 0;
static bool gFailNothrowNew = false;

// Counts nothrow allocations and can fail them; else the ordinary new, which delete matches.
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
  ++gNothrowNews;
  return gFailNothrowNew ? nullptr : ::operator new(size);
}

namespace {

// Static storage: a table is too large for the stack.
Clipper first8, first7, second, unbuilt;
const bool gBuilt = buildFirstStageCurve(first8, 8.0) && buildFirstStageCurve(first7, 7.0) &&
                    buildSecondStageCurve(second);

TEST(Clipper, CurvesFollowTheirTanhShapesAndInterpolateBetweenEntries) {
  ASSERT_TRUE(gBuilt);
  const struct {
    const char* what;
    const Clipper& table;
    double posSlope, posLimit, negSlope, negLimit;
  } curves[] = {
      {"first, F = 8", first8, 7.82 * 8, 1.0, 13.8898756660746 * 8, 0.563},
      {"first, F = 7", first7, 7.82 * 7, 1.0, 13.8898756660746 * 7, 0.563},
      {"second", second, 103.534246575342, 0.365, 37.79, 1.0},
  };
  for (const auto& c : curves) {
    for (int i : {0, 1, 5000, 10000, 19990, 19999, 20000, 20001, 20010, 30000, 39999, 40000}) {
      const double u = (i - kClipCentre) / 20000.0;
      const double expected = u >= 0.0 ? c.posLimit * std::tanh(c.posSlope * u)
                                       : c.negLimit * std::tanh(c.negSlope * u);
      EXPECT_NEAR(c.table.table[i], expected, 1e-14) << c.what << " entry " << i;
      EXPECT_EQ(clipLookup(c.table, u), c.table.table[i]) << c.what << " entry " << i;
      if (i == kClipLast) continue;
      const double a = c.table.table[i], b = c.table.table[i + 1];
      for (const double t : {0.25, 0.5, 0.6, 0.9}) {  // that far of the way from a to b
        EXPECT_NEAR(clipLookup(c.table, u + t / 20000.0), a + (b - a) * t,
                    1e-11 * std::fabs(b - a) + 1e-16)
            << c.what << " entry " << i << " + " << t;
      }
    }
    EXPECT_NEAR(c.table.guard, c.table.table[kClipLast], 1e-15) << c.what;
  }
}

TEST(Clipper, ClampsBeyondTheEndsAndReadsZeroNaNAndUnbuiltTablesAsZero) {
  for (const Clipper* c : {&first8, &first7, &second, &unbuilt}) {
    for (double u : {1.0, 1.0000001, 5.0, 1e300, HUGE_VAL}) {
      EXPECT_EQ(clipLookup(*c, u), c->table[kClipLast]) << u;
      EXPECT_EQ(clipLookup(*c, -u), c->table[0]) << -u;
    }
    for (double u : {0.0, -0.0, std::nan(""), -std::nan("")}) EXPECT_EQ(clipLookup(*c, u), 0.0);
  }
}

TEST(Clipper, AllocationFailureLeavesTheTargetUntouched) {
  static Clipper target = second;
  const int calls = gNothrowNews;
  gFailNothrowNew = true;
  EXPECT_FALSE(buildFirstStageCurve(target, 8.0));
  EXPECT_FALSE(buildSecondStageCurve(target));
  gFailNothrowNew = false;
  EXPECT_EQ(gNothrowNews, calls + 2);  // the hook really saw both builds
  EXPECT_EQ(std::memcmp(&target, &second, sizeof(Clipper)), 0);
}

}  // namespace
