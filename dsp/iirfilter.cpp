// Design of the recursive section: clamping of the record, pre-warped bilinear transform of the
// thirteen analogue prototypes, and the one-pole default. Runs on a control thread or at the start
// of a block, never per sample.
#include "dsp/iirfilter.h"

#include <cmath>

namespace {

constexpr double kPrewarpPi = 3.141592653589794;
constexpr double kDefaultFreq = 20.0;  // replaces a frequency at or below 0
constexpr double kDefaultQ = 1.0;      // replaces a Q at or below 0

// One-pole low-pass: the power gain at the design frequency (about -3 dB).
constexpr double kOnePoleGain = 0.5011872337;
// Kept as g - 1.0 in double, one ulp away from the nearest double to -0.4988127663.
constexpr double kOnePoleDivisor = kOnePoleGain - 1.0;

struct Design {
  double a1, a2, b0, b1, b2;
  std::int32_t order, form;
};

constexpr Design firstOrder(double b0, double b1, double a1) {
  return {a1, 0.0, b0, b1, 0.0, 1, 1};
}

constexpr Design secondOrder(double b0, double b1, double b2, double a1, double a2) {
  return {a1, a2, b0, b1, b2, 2, 2};
}

Design onePole(double pi, double f, double fs) {
  const double g = kOnePoleGain;
  const double c = std::cos(((pi * 2.0) * f) / fs);
  const double p =
      ((g * c - 1.0) + std::sqrt((g * (c - 1.0)) * ((g * c - 2.0) + g))) / kOnePoleDivisor;
  return {1.0 - p, 0.0, p, 0.0, 0.0, 1, 0};
}

Design design(std::int16_t num, double pi, double f, double fs, double freqLo, double freqHi,
              double Q, double G) {
  const double K = std::tan((pi * f) / fs);
  const double K2 = std::tan((pi * freqLo) / fs);
  const double K3 = std::tan((pi * freqHi) / fs);
  const double P = K2 * K3;
  const double KK = K * K;
  const double sqrt2 = std::sqrt(2.0);

  switch (num) {
    case 0: {
      const double D = 1.0 / (1.0 + K);
      return firstOrder(K * D, K * D, (1.0 - K) * D);
    }
    case 1: {
      const double D = 1.0 / (1.0 + K);
      return firstOrder(D, -D, (1.0 - K) * D);
    }
    case 2: {
      const double D = 1.0 / ((1.0 + sqrt2 * K) + KK);
      return secondOrder(KK * D, (2.0 * KK) * D, KK * D, (-2.0 * (KK - 1.0)) * D,
                         -((1.0 - sqrt2 * K) + KK) * D);
    }
    case 3: {
      const double D = 1.0 / ((1.0 + sqrt2 * K) + KK);
      return secondOrder(D, -2.0 * D, D, (-2.0 * (KK - 1.0)) * D, -((1.0 - sqrt2 * K) + KK) * D);
    }
    case 4: {
      const double D = 1.0 / (((1.0 - K2) + K3) + P);
      return secondOrder((K3 - K2) * D, 0.0, -(K3 - K2) * D, (-2.0 * (P - 1.0)) * D,
                         -(((1.0 + K2) - K3) + P) * D);
    }
    case 5: {
      const double D = 1.0 / (((1.0 - K2) + K3) + P);
      return secondOrder((1.0 + P) * D, (2.0 * (P - 1.0)) * D, (1.0 + P) * D,
                         (-2.0 * (P - 1.0)) * D, -(((1.0 + K2) - K3) + P) * D);
    }
    case 6: {
      const double D = 1.0 / ((1.0 + (sqrt2 * K) / Q) + KK);
      return secondOrder(KK * D, (2.0 * KK) * D, KK * D, (-2.0 * (KK - 1.0)) * D,
                         -((1.0 - (sqrt2 * K) / Q) + KK) * D);
    }
    case 7: {
      const double D = 1.0 / ((1.0 + (sqrt2 * K) / Q) + KK);
      return secondOrder(D, -2.0 * D, D, (-2.0 * (KK - 1.0)) * D,
                         -((1.0 - (sqrt2 * K) / Q) + KK) * D);
    }
    case 8: {
      const double D = 1.0 / ((1.0 + K / Q) + KK);
      return secondOrder((K / Q) * D, 0.0, -(K / Q) * D, (-2.0 * (KK - 1.0)) * D,
                         -((1.0 - K / Q) + KK) * D);
    }
    case 9: {
      const double D = 1.0 / ((1.0 + K / Q) + KK);
      return secondOrder((1.0 + KK) * D, (2.0 * (KK - 1.0)) * D, (1.0 + KK) * D,
                         (-2.0 * (KK - 1.0)) * D, -((1.0 - K / Q) + KK) * D);
    }
    case 10: {
      if (G > 0.0) {
        const double A = std::pow(10.0, G / 20.0);
        const double D = 1.0 / ((1.0 + K / Q) + KK);
        return secondOrder(((1.0 + (A * K) / Q) + KK) * D, (2.0 * (KK - 1.0)) * D,
                           ((1.0 - (A * K) / Q) + KK) * D, (-2.0 * (KK - 1.0)) * D,
                           -((1.0 - K / Q) + KK) * D);
      }
      const double V = std::pow(10.0, -G / 20.0);
      const double D = 1.0 / ((1.0 + (V * K) / Q) + KK);
      return secondOrder(((1.0 + K / Q) + KK) * D, (2.0 * (KK - 1.0)) * D, ((1.0 - K / Q) + KK) * D,
                         (-2.0 * (KK - 1.0)) * D, -((1.0 - (V * K) / Q) + KK) * D);
    }
    case 11: {
      const double A = std::pow(10.0, G / 20.0);
      const double D = 1.0 / (1.0 + K);
      return firstOrder((1.0 + A * K) * D, (A * K - 1.0) * D, (1.0 - K) * D);
    }
    case 12: {
      const double V = std::pow(10.0, -G / 20.0);
      const double D = 1.0 / (1.0 + K);
      return firstOrder((K + 1.0 / V) * D, (K - 1.0 / V) * D, (1.0 - K) * D);
    }
    default:
      return onePole(pi, f, fs);
  }
}

}  // namespace

IIRFilter::IIRFilter(filterPrm_tag* prm)
    : coef{},
      prevCoef{},
      stepCoef{},
      z1(0.0),
      z2(0.0),
      pi(kPrewarpPi),
      num(0),
      prevNum(-1),
      order(0),
      form(0),
      rampPos(0.0),
      rampLen(0.0) {
  FDexcute(prm);
  for (int i = 0; i < kNumCoefs; ++i) {
    prevCoef[i] = 0.0;
    stepCoef[i] = 0.0;
  }
}

IIRFilter::~IIRFilter() = default;

void IIRFilter::FDexcute(filterPrm_tag* prm) {
  num = static_cast<std::int16_t>(prm->num);

  double Q = prm->q;
  if (Q <= 0.0) {
    Q = kDefaultQ;
    prm->q = kDefaultQ;
  }

  const double fs = prm->sampleRate;
  double f = prm->freq > 0.0 ? prm->freq : kDefaultFreq;
  if (0.5 * fs < f) f = 0.5 * fs;
  prm->freq = f;

  const Design d = design(num, pi, f, fs, prm->freqLo, prm->freqHi, Q, prm->gain);
  coef[kA1] = d.a1;
  coef[kA2] = d.a2;
  coef[kB0] = d.b0;
  coef[kB1] = d.b1;
  coef[kB2] = d.b2;
  order = d.order;
  form = d.form;

  // A different response shape would ring from the old state; start it clean.
  if (num != prevNum) refresh();
  prevNum = num;
}

void IIRFilter::ipFDexcute(filterPrm_tag* prm, int n) {
  for (int i = 0; i < kNumCoefs; ++i) prevCoef[i] = coef[i];
  FDexcute(prm);

  if (n < 1) {
    // No samples to glide over (and no step to divide by): apply the new design at once,
    // leaving the ramp idle as after a finished one.
    for (int i = 0; i < kNumCoefs; ++i) {
      prevCoef[i] = coef[i];
      stepCoef[i] = 0.0;
    }
    rampLen = 0.0;
    rampPos = 1.0;
    return;
  }

  rampLen = static_cast<double>(n);
  const double r = 1.0 / rampLen;
  for (int i = 0; i < kNumCoefs; ++i) stepCoef[i] = (coef[i] - prevCoef[i]) * r;
  rampPos = 0.0;
}
