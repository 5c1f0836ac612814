// The filter section: designs (reference values, clamping, responses), running, and the ramp.
#include "dsp/iirfilter.h"

#include <gtest/gtest.h>

#include <cmath>
#include <utility>

namespace {

constexpr double kFs = 44100.0;
constexpr int kA1 = IIRFilter::kA1, kA2 = IIRFilter::kA2, kB0 = IIRFilter::kB0,
              kB1 = IIRFilter::kB1, kB2 = IIRFilter::kB2, kN = IIRFilter::kNumCoefs;

filterPrm_tag record(int num, double freq, double q = 1.0, double gain = 0.0) {
  return {num, freq, 500.0, 2000.0, q, gain, kFs};
}

TEST(IIRFilterDesign, EveryTypeMatchesReferenceCoefficientsToTwelveDigits) {
  const struct {
    filterPrm_tag prm;
    double coef[kN];  // a1, a2, b0, b1, b2
  } cases[] = {
      // every type, from a separate model of the design table
      {record(0, 2700.0), {0.673990398997, 0.0, 0.163004800502, 0.163004800502, 0.0}},
      {record(1, 26.0), {0.996302471992, 0.0, 0.998151235996, -0.998151235996, 0.0}},
      {record(2, 1000.0),
       {1.79909640948, -0.817512403385, 0.00460399847502, 0.00920799695004, 0.00460399847502}},
      {record(3, 100.0),
       {1.97985154251, -0.980052508206, 0.98997601268, -1.97995202536, 0.98997601268}},
      // the band types take their edges from the record and must ignore freq, Q and gain
      {record(4, 9000.0, 7.0, -9.0),
       {1.78787972616, -0.806251574764, 0.096874212618, 0.0, -0.096874212618}},
      {record(5, 100.0, 0.5, 3.0),
       {1.78787972616, -0.806251574764, 0.903125787382, -1.78787972616, 0.903125787382}},
      {record(6, 5000.0, 0.7),
       {0.911668292092, -0.204621634984, 0.073238335723, 0.146476671446, 0.073238335723}},
      {record(7, 15.0, 0.65),
       {1.99535643301, -0.995360989771, 0.997679355695, -1.99535871139, 0.997679355695}},
      {record(8, 800.0, 2.0),
       {1.93208645898, -0.944705201514, 0.0276473992428, 0.0, -0.0276473992428}},
      {record(9, 60.0, 4.0),
       {1.99779217007, -0.997865169356, 0.998932584678, -1.99779217007, 0.998932584678}},
      {record(10, 1300.0, 9.0, 8.0),
       {1.94588332623, -0.97974485498, 1.01531173946, -1.94588332623, 0.964433115518}},
      {record(10, 269.96, 1.034, -18.5),
       {1.72814745262, -0.729426539303, 0.880792127688, -1.72814745262, 0.848634411615}},
      {record(11, 32.34, 1.0, -10.2), {0.995402913568, 0.0, 0.998411774544, -0.996991139024, 0.0}},
      {record(12, 1781.78, 1.0, -5.7), {0.77365279832, 0.0, 0.573259171247, -0.346911969567, 0.0}},
      {record(13, 1000.0), {0.132875762644, 0.0, 0.867124237356, 0.0, 0.0}},
      {record(-1, 1000.0), {0.132875762644, 0.0, 0.867124237356, 0.0, 0.0}},
  };
  for (const auto& r : cases) {
    filterPrm_tag prm = r.prm;
    const IIRFilter f(&prm);
    for (int i = 0; i < kN; ++i)
      EXPECT_NEAR(f.coef[i], r.coef[i], 6e-12 * std::fabs(r.coef[i])) << "type " << r.prm.num;
  }
}

TEST(IIRFilterDesign, ClampsFrequencyAndQAndWritesThemBack) {
  // freq, q as given; freq, q as designed and written back
  const double cases[][4] = {{0.0, 0.7, 20.0, 0.7},    {-5.0, 0.7, 20.0, 0.7},
                             {3e4, 0.7, kFs / 2, 0.7}, {kFs / 2, 0.7, kFs / 2, 0.7},
                             {1e3, -1.0, 1e3, 1.0},    {1e3, 0.0, 1e3, 1.0}};
  for (const auto& c : cases) {
    SCOPED_TRACE(testing::Message() << c[0] << " Hz, Q " << c[1]);
    filterPrm_tag given = record(7, c[0], c[1]), plain = record(7, c[2], c[3]);
    const IIRFilter a(&given), b(&plain);
    EXPECT_TRUE(given.freq == c[2] && given.q == c[3]);
    for (int i = 0; i < kN; ++i) EXPECT_EQ(a.coef[i], b.coef[i]);
  }
}

TEST(IIRFilterRun, ImpulseResponseFollowsTheDirectFormOneEquation) {
  for (filterPrm_tag prm :
       {record(0, 1000.0), record(12, 1978.0, 1.0, -13.5), record(7, 15.0, 0.65),
        record(9, 1000.0, 2.0), record(10, 612.0, 5.0, 1.0), record(14, 18000.0)}) {
    IIRFilter f(&prm);
    const double* c = f.coef;
    double y1 = 0.0, y2 = 0.0;  // the impulse meets b0, b1, b2 at samples 0, 1, 2
    for (int i = 0; i < 64; ++i) {
      const double y = f.form == 0 ? c[kB0] * y1 + (i == 0) * c[kA1]
                                   : (i < 3 ? c[kB0 + i] : 0.0) + c[kA1] * y1 + c[kA2] * y2;
      y2 = std::exchange(y1, y);
      double x = i == 0;
      f.iirProcessing(&x);
      ASSERT_NEAR(x, y, 1e-12) << "type " << prm.num << " sample " << i;
    }
  }
}

TEST(IIRFilterRun, RedesignKeepsStateForTheSameTypeAndClearsItForAnother) {
  filterPrm_tag prm = record(10, 612.0, 5.0, 3.0), same = record(10, 2500.0, 3.0, -4.0),
                other = record(7, 15.0, 0.65);
  IIRFilter f(&prm);
  double x = 1.0;
  f.iirProcessing(&x);
  const IIRFilter before = f;
  f.FDexcute(&same);
  f.ipFDexcute(&same, 8);
  EXPECT_TRUE(f.z1 == before.z1 && f.z2 == before.z2 && f.z1 != 0.0 && f.z2 != 0.0);
  f.FDexcute(&other);
  EXPECT_TRUE(f.z1 == 0.0 && f.z2 == 0.0);
}

// Runs `a` through its ramp beside `fixed` (a copy with a fixed design); both agree within tol.
void expectSameRun(IIRFilter& a, IIRFilter fixed, int n, double tol = 0.0) {
  for (int i = 0; i < n; ++i) {
    double x = 0.3 - 0.1 * i, y = x;
    a.ipIirProcessing(&x);
    fixed.iirProcessing(&y);
    ASSERT_NEAR(x, y, tol) << "sample " << i;
    ASSERT_TRUE(std::fabs(a.z1 - fixed.z1) <= tol && std::fabs(a.z2 - fixed.z2) <= tol) << i;
  }
}

TEST(IIRFilterRun, RampBlendsPositionsZeroToNThenHoldsAndRestartsFromTheLastTarget) {
  filterPrm_tag a = record(10, 612.0, 5.0, -5.1), b = record(10, 2500.0, 3.0, 4.0),
                c = record(10, 1300.0, 9.0, 8.0);
  IIRFilter f(&a);
  const IIRFilter old(&a), target(&b);
  f.ipFDexcute(&b, 4);
  for (int k = 0; k <= 4; ++k) {
    IIRFilter blend = f;
    for (int i = 0; i < kN; ++i)
      blend.coef[i] = old.coef[i] + (target.coef[i] - old.coef[i]) * k / 4.0;
    SCOPED_TRACE(k);
    expectSameRun(f, blend, 1, k == 0 ? 0.0 : 1e-14);  // the first sample is the old design exactly
  }
  expectSameRun(f, f, 8);  // from here on the design itself
  f.ipFDexcute(&c, 8);
  for (double x : {0.1, 0.2, 0.3}) f.ipIirProcessing(&x);
  f.ipFDexcute(&a, 8);  // starts from c, not from the blend reached
  IIRFilter fromC = f;
  fromC.FDexcute(&c);
  expectSameRun(f, fromC, 1);
}

TEST(IIRFilterRun, RampFromConstructionOrOfLengthBelowOneEndsAtOnce) {
  filterPrm_tag prm = record(1, 26.0);
  IIRFilter f(&prm), zero(&prm);
  for (double& c : zero.coef) c = 0.0;
  expectSameRun(f, zero, 1);  // never ramped: the first sample uses all-zero coefficients
  expectSameRun(f, f, 8);
  for (int n : {0, -1, -100}) {
    SCOPED_TRACE(n);
    filterPrm_tag to = record(1, 100.0 - 50.0 * n);
    f.ipFDexcute(&to, n);
    expectSameRun(f, f, 8);
  }
}

}  // namespace
