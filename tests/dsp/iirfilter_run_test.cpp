// Running: impulse responses against the difference equation, state across re-designs, and the
// coefficient ramp.
#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "dsp/iirfilter.h"

namespace {

constexpr double kFs = 44100.0;
constexpr int kPhaseCount = 6;  // samples per phase of the ramp tests

filterPrm_tag record(int num, double freq, double q = 1.0, double gain = 0.0) {
  return {num, freq, 500.0, 2000.0, q, gain, kFs};
}

// Direct form I of the same transfer function, from the coefficients alone.
std::vector<double> referenceImpulse(const IIRFilter& f, int n) {
  const double a1 = f.coef[IIRFilter::kA1], a2 = f.coef[IIRFilter::kA2];
  const double b0 = f.coef[IIRFilter::kB0], b1 = f.coef[IIRFilter::kB1];
  const double b2 = f.coef[IIRFilter::kB2];
  std::vector<double> y(n, 0.0);
  for (int i = 0; i < n; ++i) {
    const auto x = [](int k) { return k == 0 ? 1.0 : 0.0; };
    const auto past = [&](int k) { return k >= 0 ? y[k] : 0.0; };
    if (f.form == 0) {
      y[i] = b0 * past(i - 1) + a1 * x(i);
    } else {
      y[i] = b0 * x(i) + b1 * x(i - 1) + b2 * x(i - 2) + a1 * past(i - 1) + a2 * past(i - 2);
    }
  }
  return y;
}

TEST(IIRFilterRun, ImpulseResponseFollowsTheDifferenceEquation) {
  const filterPrm_tag designs[] = {
      record(0, 1000.0),           record(1, 26.0),
      record(2, 3000.0),           record(4, 0.0),
      record(7, 15.0, 0.65),       record(9, 1000.0, 2.0),
      record(10, 612.0, 5.0, 1.0), record(10, 269.96, 1.034, -18.5),
      record(11, 80.0, 1.0, -2.1), record(12, 1978.0, 1.0, -13.5),
      record(13, 18000.0),
  };
  for (filterPrm_tag prm : designs) {
    IIRFilter f(&prm);
    const std::vector<double> expected = referenceImpulse(f, 64);
    for (int i = 0; i < 64; ++i) {
      double x = i == 0 ? 1.0 : 0.0;
      f.iirProcessing(&x);
      ASSERT_NEAR(x, expected[i], 1e-12) << "type " << prm.num << " sample " << i;
    }
  }
}

TEST(IIRFilterRun, RedesignKeepsStateForSameTypeAndClearsItForAnother) {
  filterPrm_tag prm = record(10, 612.0, 5.0, 3.0);
  IIRFilter f(&prm);
  double x = 1.0;
  f.iirProcessing(&x);
  const double z1 = f.z1, z2 = f.z2;
  ASSERT_NE(z1, 0.0);
  ASSERT_NE(z2, 0.0);

  filterPrm_tag same = record(10, 2500.0, 3.0, -4.0);
  f.FDexcute(&same);
  EXPECT_EQ(f.z1, z1);
  EXPECT_EQ(f.z2, z2);
  f.ipFDexcute(&same, 8);
  EXPECT_EQ(f.z1, z1);

  filterPrm_tag other = record(7, 15.0, 0.65);
  f.FDexcute(&other);
  EXPECT_EQ(f.z1, 0.0);
  EXPECT_EQ(f.z2, 0.0);
}

TEST(IIRFilterRun, RefreshEqualsAFreshInstance) {
  filterPrm_tag prm = record(7, 15.0, 0.65);
  IIRFilter used(&prm);
  for (int i = 0; i < 10; ++i) {
    double x = 0.5;
    used.iirProcessing(&x);
  }
  used.refresh();
  IIRFilter fresh(&prm);
  for (int i = 0; i < 16; ++i) {
    double a = i == 0 ? 1.0 : 0.25, b = a;
    used.iirProcessing(&a);
    fresh.iirProcessing(&b);
    ASSERT_EQ(a, b) << i;
  }
}

// Runs `f` ramped and `reference` fixed for one phase, expecting bit-identical output.
void expectSameOutput(IIRFilter& ramped, IIRFilter& reference, int samples) {
  for (int i = 0; i < samples; ++i) {
    double a = 0.3 - 0.1 * i, b = a;
    ramped.ipIirProcessing(&a);
    reference.iirProcessing(&b);
    ASSERT_EQ(a, b) << "sample " << i;
  }
}

TEST(IIRFilterRun, RampVisitsPositionsZeroToNThenHoldsTheDesign) {
  filterPrm_tag from = record(10, 612.0, 5.0, -5.1);
  filterPrm_tag to = record(10, 2500.0, 3.0, 4.0);
  IIRFilter f(&from);
  IIRFilter target(&to);
  const double oldB0 = f.coef[IIRFilter::kB0];
  const double newB0 = target.coef[IIRFilter::kB0];
  f.ipFDexcute(&to, 4);
  EXPECT_EQ(f.rampLen, 4.0);
  for (int k = 0; k <= 4; ++k) {
    EXPECT_EQ(f.rampPos, k);
    // An impulse into a cleared copy reads back the b0 this sample uses.
    IIRFilter probe = f;
    probe.refresh();
    double x = 1.0;
    probe.ipIirProcessing(&x);
    EXPECT_NEAR(x, oldB0 + (newB0 - oldB0) * k / 4.0, 1e-15) << k;
    if (k == 0) {
      EXPECT_EQ(x, oldB0);
    }
    double y = 0.0;
    f.ipIirProcessing(&y);
  }
  EXPECT_EQ(f.rampPos, 5.0);
  for (int i = 0; i < IIRFilter::kNumCoefs; ++i) {
    EXPECT_EQ(f.prevCoef[i], target.coef[i]);
    EXPECT_EQ(f.stepCoef[i], 0.0);
  }
  target.z1 = f.z1;
  target.z2 = f.z2;
  expectSameOutput(f, target, kPhaseCount);
  EXPECT_EQ(f.rampPos, 5.0);
}

TEST(IIRFilterRun, RampStartsWithTheOldDesignExactly) {
  filterPrm_tag from = record(11, 432.0, 1.0, -8.0);
  filterPrm_tag to = record(11, 300.0, 1.0, 6.0);
  IIRFilter f(&from);
  IIRFilter old(&from);
  f.ipFDexcute(&to, 64);
  expectSameOutput(f, old, 1);
}

TEST(IIRFilterRun, NewRampRestartsFromThePreviousTarget) {
  filterPrm_tag a = record(12, 1000.0, 1.0, -10.0);
  filterPrm_tag b = record(12, 4000.0, 1.0, 5.0);
  filterPrm_tag c = record(12, 2000.0, 1.0, 0.0);
  IIRFilter f(&a);
  IIRFilter targetB(&b);
  f.ipFDexcute(&b, 8);
  for (int i = 0; i < 3; ++i) {
    double x = 0.1;
    f.ipIirProcessing(&x);
  }
  f.ipFDexcute(&c, 8);
  EXPECT_EQ(f.rampPos, 0.0);
  for (int i = 0; i < IIRFilter::kNumCoefs; ++i) EXPECT_EQ(f.prevCoef[i], targetB.coef[i]) << i;
}

TEST(IIRFilterRun, NeverRampedFilterStartsFromZeroCoefficients) {
  filterPrm_tag prm = record(1, 26.0);
  IIRFilter f(&prm);
  IIRFilter fresh(&prm);
  double x = 1.0;
  f.ipIirProcessing(&x);
  EXPECT_EQ(x, 0.0);
  EXPECT_EQ(f.z1, 0.0);
  expectSameOutput(f, fresh, kPhaseCount);
}

TEST(IIRFilterRun, RampLengthBelowOneAppliesTheDesignAtOnce) {
  for (int n : {0, -1, -100}) {
    filterPrm_tag from = record(10, 612.0, 5.0, -5.1);
    filterPrm_tag to = record(10, 1300.0, 9.0, 8.0);
    IIRFilter f(&from);
    IIRFilter target(&to);
    f.ipFDexcute(&to, n);
    expectSameOutput(f, target, kPhaseCount);
    EXPECT_TRUE(std::isfinite(f.z1) && std::isfinite(f.z2)) << n;
  }
}

}  // namespace
