// Designs: reference coefficients, the clamping rules and magnitude responses evaluated from the
// coefficients at meaningful points.
#include <gtest/gtest.h>

#include <cmath>
#include <complex>
#include <numbers>

#include "dsp/iirfilter.h"

namespace {

constexpr double kFs = 44100.0;

filterPrm_tag record(int num, double freq, double q = 1.0, double gain = 0.0, double lo = 0.0,
                     double hi = 0.0) {
  return {num, freq, lo, hi, q, gain, kFs};
}

// |H| at `hz` from the stored coefficients, H(z) = (b0 + b1/z + b2/z^2) / (1 - a1/z - a2/z^2).
double magnitude(const IIRFilter& f, double hz) {
  const std::complex<double> zi = std::polar(1.0, -2.0 * std::numbers::pi * hz / kFs);
  const double* c = f.coef;
  const auto num = c[IIRFilter::kB0] + zi * (c[IIRFilter::kB1] + zi * c[IIRFilter::kB2]);
  const auto den = 1.0 - zi * (c[IIRFilter::kA1] + zi * c[IIRFilter::kA2]);
  return std::abs(num / den);
}

double dB(double g) {
  return std::pow(10.0, g / 20.0);
}

struct Reference {
  filterPrm_tag prm;
  double a1, a2, b0, b1, b2;
};

TEST(IIRFilterDesign, MatchesReferenceCoefficientsToTwelveDigits) {
  const Reference cases[] = {
      {record(1, 26.0), 0.996302471992, 0.0, 0.998151235996, -0.998151235996, 0.0},
      {record(10, 269.96, 1.034, -18.5), 1.72814745262, -0.729426539303, 0.880792127688,
       -1.72814745262, 0.848634411615},
      {record(13, 1000.0), 0.132875762644, 0.0, 0.867124237356, 0.0, 0.0},
      {record(-1, 1000.0), 0.132875762644, 0.0, 0.867124237356, 0.0, 0.0},
  };
  for (const Reference& r : cases) {
    filterPrm_tag prm = r.prm;
    const IIRFilter f(&prm);
    SCOPED_TRACE(r.prm.num);
    const double expected[] = {r.a1, r.a2, r.b0, r.b1, r.b2};
    for (int i = 0; i < IIRFilter::kNumCoefs; ++i) {
      EXPECT_NEAR(f.coef[i], expected[i], 6e-12 * std::fabs(expected[i])) << "coef " << i;
    }
  }
}

TEST(IIRFilterDesign, SetsOrderAndFormByType) {
  for (int num = -3; num <= 14; ++num) {
    filterPrm_tag prm = record(num, 1000.0, 1.0, 0.0, 500.0, 2000.0);
    const IIRFilter f(&prm);
    const bool firstOrder = num == 0 || num == 1 || num == 11 || num == 12;
    const bool secondOrder = num >= 2 && num <= 10;
    EXPECT_EQ(f.num, num);
    EXPECT_EQ(f.order, secondOrder ? 2 : 1) << num;
    EXPECT_EQ(f.form, secondOrder ? 2 : firstOrder ? 1 : 0) << num;
    if (!secondOrder) {
      EXPECT_EQ(f.coef[IIRFilter::kA2], 0.0) << num;
      EXPECT_EQ(f.coef[IIRFilter::kB2], 0.0) << num;
    }
  }
}

TEST(IIRFilterDesign, ClampsFrequencyAndQAndWritesThemBack) {
  struct Case {
    double freq, q, designedFreq, designedQ;
  };
  const Case cases[] = {
      {0.0, 0.7, 20.0, 0.7},        {-5.0, 0.7, 20.0, 0.7},      {30000.0, 0.7, kFs / 2, 0.7},
      {kFs / 2, 0.7, kFs / 2, 0.7}, {1000.0, -1.0, 1000.0, 1.0}, {1000.0, 0.0, 1000.0, 1.0},
  };
  for (const Case& c : cases) {
    filterPrm_tag given = record(7, c.freq, c.q);
    filterPrm_tag plain = record(7, c.designedFreq, c.designedQ);
    const IIRFilter a(&given);
    const IIRFilter b(&plain);
    EXPECT_EQ(given.freq, c.designedFreq);
    EXPECT_EQ(given.q, c.designedQ);
    for (int i = 0; i < IIRFilter::kNumCoefs; ++i) EXPECT_EQ(a.coef[i], b.coef[i]) << c.freq;
  }
}

TEST(IIRFilterDesign, OnePolePoleAtOneKilohertz) {
  filterPrm_tag prm = record(13, 1000.0);
  const IIRFilter f(&prm);
  EXPECT_EQ(f.form, 0);
  EXPECT_EQ(f.coef[IIRFilter::kA1], 1.0 - f.coef[IIRFilter::kB0]);
  // Power gain 0.5011872337 at the design frequency: |a1 / (1 - b0 z^-1)|^2.
  const std::complex<double> zi = std::polar(1.0, -2.0 * std::numbers::pi * 1000.0 / kFs);
  const double h = std::abs(f.coef[IIRFilter::kA1] / (1.0 - f.coef[IIRFilter::kB0] * zi));
  EXPECT_NEAR(h * h, 0.5011872337, 1e-9);
}

struct Point {
  const char* what;
  filterPrm_tag prm;
  double hz, gain;
};

TEST(IIRFilterDesign, MagnitudeAtCharacteristicPoints) {
  const double half = kFs / 2;
  const double corner = 1.0 / std::numbers::sqrt2;
  // Centre of the band types: where the pre-warped frequency is the geometric mean of the edges.
  const double bandCentre = std::atan(std::sqrt(std::tan(std::numbers::pi * 500.0 / kFs) *
                                                std::tan(std::numbers::pi * 2000.0 / kFs))) *
                            kFs / std::numbers::pi;
  const Point points[] = {
      {"low-pass DC", record(0, 1000.0), 0.0, 1.0},
      {"low-pass corner", record(0, 1000.0), 1000.0, corner},
      {"low-pass half rate", record(0, 1000.0), half, 0.0},
      {"high-pass DC", record(1, 1000.0), 0.0, 0.0},
      {"high-pass corner", record(1, 1000.0), 1000.0, corner},
      {"high-pass half rate", record(1, 1000.0), half, 1.0},
      {"Butterworth low-pass DC", record(2, 1000.0, 5.0), 0.0, 1.0},
      {"Butterworth low-pass corner", record(2, 1000.0, 5.0), 1000.0, corner},
      {"Butterworth high-pass corner", record(3, 1000.0, 5.0), 1000.0, corner},
      {"Butterworth high-pass half rate", record(3, 1000.0, 5.0), half, 1.0},
      {"band-pass centre", record(4, 1.0, 1.0, 0.0, 500.0, 2000.0), bandCentre, 1.0},
      {"band-pass lower edge", record(4, 1.0, 1.0, 0.0, 500.0, 2000.0), 500.0, corner},
      {"band-pass DC", record(4, 1.0, 1.0, 0.0, 500.0, 2000.0), 0.0, 0.0},
      {"band-stop centre", record(5, 1.0, 1.0, 0.0, 500.0, 2000.0), bandCentre, 0.0},
      {"band-stop DC", record(5, 1.0, 1.0, 0.0, 500.0, 2000.0), 0.0, 1.0},
      {"low-pass Q 2 corner", record(6, 1000.0, 2.0), 1000.0, 2.0 / std::numbers::sqrt2},
      {"low-pass Q 2 DC", record(6, 1000.0, 2.0), 0.0, 1.0},
      {"high-pass Q 0.65 corner", record(7, 15.0, 0.65), 15.0, 0.65 / std::numbers::sqrt2},
      {"high-pass Q 0.65 half rate", record(7, 15.0, 0.65), half, 1.0},
      {"band-pass Q centre", record(8, 1000.0, 3.0), 1000.0, 1.0},
      {"band-pass Q DC", record(8, 1000.0, 3.0), 0.0, 0.0},
      {"notch centre", record(9, 1000.0, 3.0), 1000.0, 0.0},
      {"notch half rate", record(9, 1000.0, 3.0), half, 1.0},
      {"peaking cut centre", record(10, 269.96, 1.034, -18.5), 269.96, dB(-18.5)},
      {"peaking boost centre", record(10, 2500.0, 3.0, 4.0), 2500.0, dB(4.0)},
      {"peaking boost DC", record(10, 2500.0, 3.0, 4.0), 0.0, 1.0},
      {"flat peaking centre", record(10, 1300.0, 9.0, 0.0), 1300.0, 1.0},
      {"flat peaking DC", record(10, 1300.0, 9.0, 0.0), 0.0, 1.0},
      {"flat peaking 5 kHz", record(10, 1300.0, 9.0, 0.0), 5000.0, 1.0},
      {"low shelf DC", record(11, 432.0, 1.0, -10.2), 0.0, dB(-10.2)},
      {"low shelf half rate", record(11, 432.0, 1.0, -10.2), half, 1.0},
      {"high shelf DC", record(12, 1978.0, 1.0, -10.2), 0.0, 1.0},
      {"high shelf half rate", record(12, 1978.0, 1.0, -10.2), half, dB(-10.2)},
  };
  for (const Point& p : points) {
    filterPrm_tag prm = p.prm;
    const IIRFilter f(&prm);
    EXPECT_NEAR(magnitude(f, p.hz), p.gain, 1e-9) << p.what;
  }
}

TEST(IIRFilterDesign, BandTypesIgnoreFreqQAndGain) {
  for (int num : {4, 5}) {
    filterPrm_tag a = record(num, 100.0, 0.5, 3.0, 500.0, 2000.0);
    filterPrm_tag b = record(num, 9000.0, 7.0, -9.0, 500.0, 2000.0);
    const IIRFilter fa(&a);
    const IIRFilter fb(&b);
    for (int i = 0; i < IIRFilter::kNumCoefs; ++i) EXPECT_EQ(fa.coef[i], fb.coef[i]) << num;
  }
}

}  // namespace
