// The numbers behind the plots: section magnitudes against closed forms, the tone stack at half the
// rate, harmonic levels and THD of known signals, a measured response of a known filter, and the
// waveshaper curves against their tanh forms.
#include <gtest/gtest.h>

#include <cmath>
#include <numbers>
#include <tuple>

#include "dsp/iirfilter.h"
#include "plot/shaper_curves.h"
#include "plot/small_signal.h"
#include "plot/spectrum.h"
#include "plot/tone_response.h"

namespace {

using namespace tarnwell::plot;

double db(double x) {
  return 20.0 * std::log10(x);
}

double magnitude(int num, double freq, double q, double gain, double rate, double at) {
  filterPrm_tag prm{num, freq, 0.0, 0.0, q, gain, rate};
  const IIRFilter section(&prm);
  return sectionMagnitude(section, at, rate);
}

TEST(SectionMagnitude, MatchesTheClosedFormsOfEachKindOfSection) {
  // Peaking at its centre, the high-pass with Q at its corner, the shelves at 0 Hz and half the
  // rate, and the one-pole low-pass whose power gain at f is 0.5011872337.
  EXPECT_NEAR(magnitude(10, 269.96, 1.034, -18.5, 44100, 269.96), std::pow(10, -18.5 / 20), 1e-12);
  EXPECT_NEAR(magnitude(10, 1300, 9, 8.0, 44100, 1300), std::pow(10, 8.0 / 20), 1e-12);
  EXPECT_NEAR(magnitude(7, 15, 0.65, 0, 44100, 15), 0.65 / std::sqrt(2.0), 1e-11);
  EXPECT_NEAR(magnitude(11, 32.34, 1, -10.2, 44100, 1e-6), std::pow(10, -10.2 / 20), 1e-9);
  EXPECT_NEAR(magnitude(11, 32.34, 1, -10.2, 44100, 22050), 1.0, 1e-12);
  EXPECT_NEAR(magnitude(12, 1781.78, 1, -5.7, 44100, 22050), std::pow(10, -5.7 / 20), 1e-12);
  EXPECT_NEAR(magnitude(13, 1000, 1, 0, 44100, 1000), std::sqrt(0.5011872337), 1e-9);
}

TEST(ToneResponse, AtHalfTheRateIsTheTrimTimesTheHighShelf) {
  // There every band but the high shelf is flat, whatever BASS does.
  struct Case {
    ToneKnobs knobs;
    double expectedDb;
  };
  const Case cases[] = {
      {{1.0f, 0.0f, 1.0f}, db(0.562341325) + (21.602 - 16.404)},                       // DEEP on
      {{0.0f, 1.0f, 1.0f}, db(1.2 * 0.562341325) + (41.818 - 19.486 - 22.574 - 7.0)},  // off
      {{0.0f, 0.3f, 0.5f}, db(0.8 * 0.562341325) + (-19.486 / 4 + 41.818 / 2 - 22.574 - 7.0)},
  };
  for (const Case& c : cases) {
    for (const double rate : {44100.0, 48000.0}) {
      const double nyquist[] = {rate / 2};
      EXPECT_NEAR(toneResponseDb(c.knobs, rate, nyquist)[0], c.expectedDb, 1e-9) << rate;
    }
  }
}

std::vector<double> sine(double amplitude, double hz, double rate, int n) {
  std::vector<double> x(n);
  for (int i = 0; i < n; ++i) x[i] = amplitude * std::sin(2 * std::numbers::pi * hz * i / rate);
  return x;
}

TEST(Harmonics, APureSineHasItsLevelAndNoDistortionWhereverItFallsBetweenBins) {
  // Harmonics stop below half the rate: at 5 kHz, 20 kHz is the last below 22050.
  for (const auto& [hz, rate, count] : {std::tuple{55.0, 48000, 10u},
                                        {41.2034, 48000, 10u},
                                        {98.0, 48000, 10u},
                                        {5000.0, 44100, 4u}}) {
    const auto a = analyseHarmonics(sine(0.5, hz, rate, 65536), rate, hz, 10);
    ASSERT_EQ(a.harmonics.size(), count) << hz;
    EXPECT_DOUBLE_EQ(a.harmonics.back().frequency, hz * count);
    EXPECT_NEAR(a.harmonics[0].levelDb, db(0.5), 0.002) << hz;
    EXPECT_LT(a.thdPercent, 1e-3) << hz;
    EXPECT_NEAR(a.levelDb[std::lround(hz * 65536 / rate)], db(0.5), 1.0);  // the peak bin
  }
}

TEST(Harmonics, ACubicTermGivesTheThirdHarmonicItPredicts) {
  // sin^3 = (3 sin - sin 3w) / 4: y = x + c x^3 has H1 = A + 3cA^3/4 and H3 = cA^3/4.
  const double A = 0.8, c = 0.3;
  auto x = sine(A, 55, 44100, 65536);
  for (double& v : x) v += c * v * v * v;
  const auto a = analyseHarmonics(x, 44100, 55, 5);
  const double h1 = A + 3 * c * A * A * A / 4, h3 = c * A * A * A / 4;
  EXPECT_NEAR(a.harmonics[0].levelDb, db(h1), 0.002);
  EXPECT_NEAR(a.harmonics[2].levelDb, db(h3), 0.002);
  EXPECT_LT(a.harmonics[1].levelDb, -100.0);
  EXPECT_NEAR(a.thdPercent, 100 * h3 / h1, 0.01);
}

TEST(SmallSignal, MeasuresAKnownFilterAtTheExcitedBins) {
  filterPrm_tag prm{10, 612, 0.0, 0.0, 5.0, -5.1, 44100};
  IIRFilter filter(&prm);
  const IIRFilter reference(&prm);
  const auto wanted = logFrequencies(20, 20000, 100);
  ASSERT_TRUE(wanted.front() == 20.0 && wanted.back() == 20000.0);
  int calls = 0;
  const auto measured = measureSmallSignal(
      [&](const double* in, double* out, int frames) {
        ++calls;
        for (int i = 0; i < frames; ++i) {
          out[i] = in[i];
          filter.iirProcessing(&out[i]);
        }
      },
      44100, wanted, 1000);
  EXPECT_EQ(calls, 2 * ((65536 + 999) / 1000));  // two periods in blocks of at most 1000
  EXPECT_EQ(measured.frequency, excitedFrequencies(44100, wanted));
  for (std::size_t i = 0; i < measured.frequency.size(); ++i) {
    EXPECT_NEAR(measured.gainDb[i], db(sectionMagnitude(reference, measured.frequency[i], 44100)),
                1e-6)
        << measured.frequency[i];
  }
}

TEST(ShaperCurves, FollowTheirTanhFormsAndClampBeyondFullScale) {
  // 48000 Hz builds the first stage for 7x oversampling, any other rate for 8x.
  for (const auto& [rate, F] : {std::pair{48000.0, 7.0}, {44100.0, 8.0}}) {
    const auto c = shaperCurves(rate, 1.2, 960);
    ASSERT_EQ(c.input.size(), 961u);
    EXPECT_EQ(oversamplingFactor(rate), F);
    for (std::size_t i = 0; i < c.input.size(); ++i) {
      const double u = std::clamp(c.input[i], -1.0, 1.0);
      const double first =
          u >= 0 ? std::tanh(7.82 * F * u) : 0.563 * std::tanh(13.8898756660746 * F * u);
      const double second = u >= 0 ? 0.365 * std::tanh(103.534246575342 * u) : std::tanh(37.79 * u);
      EXPECT_NEAR(c.firstStage[i], first, 1e-9) << c.input[i];
      EXPECT_NEAR(c.secondStage[i], second, 1e-9) << c.input[i];
    }
    EXPECT_DOUBLE_EQ(c.input.front(), -1.2);
    EXPECT_DOUBLE_EQ(c.input.back(), 1.2);
  }
}

}  // namespace
