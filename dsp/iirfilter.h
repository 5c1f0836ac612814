// One first- or second-order recursive section, designed by the bilinear transform with
// frequency pre-warping and run one double sample at a time, in place.
//
//   H(z) = (b0 + b1 z^-1 + b2 z^-2) / (1 - a1 z^-1 - a2 z^-2)
//
// The stored feedback coefficients a1, a2 are added in the recursion. The one-pole form (form 0)
// gives the fields other roles: y = b0 * y[-1] + a1 * x, with b0 the pole and a1 = 1 - pole.
//
// Design (FDexcute, ipFDexcute) calls tan/pow/cos/sqrt and belongs to the set-up or the start of a
// block. The per-sample operations below are inline, noexcept, allocation-free and call no library
// function. A filter has no lock; its owner runs it from one thread at a time.
#pragma once

#include <cstdint>

// The design record; a design reads it and writes the clamped `freq` and `q` back into it.
struct filterPrm_tag {
  std::int32_t num;   // type number: 0..12, anything else is the one-pole low-pass
  double freq;        // corner or centre frequency, Hz
  double freqLo;      // lower band edge, Hz (types 4 and 5)
  double freqHi;      // upper band edge, Hz (types 4 and 5)
  double q;           // quality factor
  double gain;        // dB, shelving and peaking types
  double sampleRate;  // Hz
};

class IIRFilter {
 public:
  // Positions in coef, prevCoef and stepCoef.
  static constexpr int kA1 = 0;
  static constexpr int kA2 = 1;
  static constexpr int kB0 = 2;
  static constexpr int kB1 = 3;
  static constexpr int kB2 = 4;
  static constexpr int kNumCoefs = 5;

  // Designs from `prm` with zero state and no ramp pending.
  explicit IIRFilter(filterPrm_tag* prm);
  virtual ~IIRFilter();

  // Designs at once. Clears the state when the type number changes; leaves the ramp alone.
  void FDexcute(filterPrm_tag* prm);

  // Designs and glides all five coefficients from the last design to the new one over n + 1
  // samples of ipIirProcessing. A ramp length below 1 applies the new design at once.
  void ipFDexcute(filterPrm_tag* prm, int n);

  // Filters *x in place with coef.
  void iirProcessing(double* x) noexcept;

  // Filters *x in place with the ramped coefficients, then advances the ramp.
  void ipIirProcessing(double* x) noexcept;

  // Clears the state.
  void refresh() noexcept;

  double coef[kNumCoefs];      // a1, a2, b0, b1, b2 of the current design
  double prevCoef[kNumCoefs];  // ramp start values
  double stepCoef[kNumCoefs];  // ramp increments per sample
  double z1;
  double z2;
  double pi;  // pre-warp constant, two ulps above the double nearest to pi
  std::int16_t num;
  std::int16_t prevNum;
  std::int32_t order;  // 1 or 2
  std::int32_t form;   // 0: one-pole recursion; non-zero: transposed direct form II
  double rampPos;
  double rampLen;

 private:
  // One step of the difference equation that `form` selects, with coefficients c.
  static double step(const double* c, std::int32_t form, double x, double& s1, double& s2) noexcept;
};

inline double IIRFilter::step(const double* c, std::int32_t form, double x, double& s1,
                              double& s2) noexcept {
  if (form != 0) {
    const double y = c[kB0] * x + s1;
    s1 = (c[kB1] * x + s2) + c[kA1] * y;
    s2 = c[kB2] * x + c[kA2] * y;
    return y;
  }
  const double y = c[kB0] * s1 + c[kA1] * x;
  s1 = y;
  return y;
}

inline void IIRFilter::iirProcessing(double* x) noexcept {
  // State through locals: *x may alias any double, so this keeps the state in registers.
  double s1 = z1;
  double s2 = z2;
  *x = step(coef, form, *x, s1, s2);
  z1 = s1;
  z2 = s2;
}

inline void IIRFilter::ipIirProcessing(double* x) noexcept {
  const double pos = rampPos;
  double c[kNumCoefs];
  for (int i = 0; i < kNumCoefs; ++i) c[i] = stepCoef[i] * pos + prevCoef[i];

  double s1 = z1;
  double s2 = z2;
  *x = step(c, form, *x, s1, s2);
  z1 = s1;
  z2 = s2;

  if (pos == rampLen) {
    // Last sample of the ramp: from here on the blend is exactly the design.
    for (int i = 0; i < kNumCoefs; ++i) {
      prevCoef[i] = coef[i];
      stepCoef[i] = 0.0;
    }
    rampPos = pos + 1.0;
  } else if (rampLen > pos) {
    rampPos = pos + 1.0;
  }
}

inline void IIRFilter::refresh() noexcept {
  z1 = 0.0;
  z2 = 0.0;
}
