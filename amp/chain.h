// The per-sample chain of one block, run on copies of every coefficient and state held in locals
// and written back at the end, so the compiler keeps them in registers and sees no call.
//
// Per host sample i (c = i):
//   x = First(in[i]); x = EQ(x) (ramped); x *= lastVolume + c * volumeStep
//   g = lastMaster + c * masterStep
//   osFactor sub-samples, input x then zeros:  y = Up(x_s); u = clip1(g * Master(clip0(y)));
//   z_s = Down(u)  (only z_0 is kept)
//   out[i] = OutHP(Final(z_0)) * trim
// Up and Down share H(z) = (b0 + ... + b5 z^-5) / (1 - a1 z^-1 - ... - a5 z^-5), run in transposed
// direct form II: y = b0 x + s0; s_k = (b_k+1 x + a_k+1 y) + s_k+1; s4 = b5 x + a5 y.
//
// Every operation, its order and its operands are those of the plain chain, so the output is
// bit for bit the same. One rewrite keeps that: on a zero-input sub-sample the plain up-filter adds
// b*0 = +0 to each term, which only turns a -0 into +0. Those additions are dropped (states then
// equal the plain ones up to the sign of a zero) and done once, as "+ 0.0", before the next
// sub-sample that carries input; the waveshaper reads -0 and +0 alike.
//
// Audio thread only; allocation-free, no call, no lock.
#pragma once

#include <emmintrin.h>

#include "dsp/clipper.h"
#include "dsp/iirfilter.h"

namespace chain {

// clipLookup without branches: the clamp is a min and a max, NaN reads as 0, and the right-hand
// neighbour of the last entry is the entry itself. That last is exact: p reaches 40000 only for
// v = 1, where t = 0 and (next - table[40000]) * 0 adds a zero to a non-zero end value.
inline double lookup(const Clipper& c, double u) noexcept {
  // minsd/maxsd keep every in-range value, -0 included, exactly; NaN is masked to +0.
  const __m128d x = _mm_set_sd(u);
  __m128d clamped = _mm_max_sd(_mm_min_sd(x, _mm_set_sd(1.0)), _mm_set_sd(-1.0));
  clamped = _mm_and_pd(clamped, _mm_cmpord_sd(x, x));
  const double v = _mm_cvtsd_f64(clamped);
  const double p = c.scale + v * c.scale;
  const int i = static_cast<int>(p);
  const double t = p - i;
  const int j = i < kClipLast ? i + 1 : kClipLast;
  return (c.table[j] - c.table[i]) * t + c.table[i];
}

// One transposed direct form II section with fixed coefficients.
struct Section {
  double b0, b1, b2, a1, a2;
  double z1, z2;

  void load(const IIRFilter& f, const double* c) noexcept {
    b0 = c[IIRFilter::kB0];
    b1 = c[IIRFilter::kB1];
    b2 = c[IIRFilter::kB2];
    a1 = c[IIRFilter::kA1];
    a2 = c[IIRFilter::kA2];
    z1 = f.z1;
    z2 = f.z2;
  }
  void load(const IIRFilter& f) noexcept { load(f, f.coef); }
  void store(IIRFilter& f) const noexcept {
    f.z1 = z1;
    f.z2 = z2;
  }

  double run(double x) noexcept {
    const double y = b0 * x + z1;
    z1 = (b1 * x + z2) + a1 * y;
    z2 = b2 * x + a2 * y;
    return y;
  }
};

// A section whose coefficients glide: effective c = step * pos + prev, then the ramp advances
// (on its last position it lands exactly on the design).
struct RampSection {
  double coef[IIRFilter::kNumCoefs];
  double prev[IIRFilter::kNumCoefs];
  double step[IIRFilter::kNumCoefs];
  double pos, len;
  double z1, z2;

  void load(const IIRFilter& f) noexcept {
    for (int k = 0; k < IIRFilter::kNumCoefs; ++k) {
      coef[k] = f.coef[k];
      prev[k] = f.prevCoef[k];
      step[k] = f.stepCoef[k];
    }
    pos = f.rampPos;
    len = f.rampLen;
    z1 = f.z1;
    z2 = f.z2;
  }
  void store(IIRFilter& f) const noexcept {
    for (int k = 0; k < IIRFilter::kNumCoefs; ++k) {
      f.prevCoef[k] = prev[k];
      f.stepCoef[k] = step[k];
    }
    f.rampPos = pos;
    f.z1 = z1;
    f.z2 = z2;
  }

  double run(double x) noexcept {
    double c[IIRFilter::kNumCoefs];
    for (int k = 0; k < IIRFilter::kNumCoefs; ++k) c[k] = step[k] * pos + prev[k];
    const double y = c[IIRFilter::kB0] * x + z1;
    z1 = (c[IIRFilter::kB1] * x + z2) + c[IIRFilter::kA1] * y;
    z2 = c[IIRFilter::kB2] * x + c[IIRFilter::kA2] * y;
    if (pos == len) {
      for (int k = 0; k < IIRFilter::kNumCoefs; ++k) {
        prev[k] = coef[k];
        step[k] = 0.0;
      }
      pos = pos + 1.0;
    } else if (len > pos) {
      pos = pos + 1.0;
    }
    return y;
  }
};

// Samples of the block, from the start, on which the filter's ramp is still moving.
inline int rampSamplesLeft(const IIRFilter& f, int n) noexcept {
  if (!(f.rampPos <= f.rampLen)) return 0;
  const double left = f.rampLen - f.rampPos + 1.0;
  return left < n ? static_cast<int>(left) : n;
}

// The fifth-order oversampling low-pass; s[0..4] is the state.
struct Oversampler {
  double a1, a2, a3, a4, a5;
  double b0, b1, b2, b3, b4, b5;

  void load(const double* a, const double* b) noexcept {
    a1 = a[0], a2 = a[1], a3 = a[2], a4 = a[3], a5 = a[4];
    b0 = b[0], b1 = b[1], b2 = b[2], b3 = b[3], b4 = b[4], b5 = b[5];
  }

  double run(double x, double* s) const noexcept {
    const double y = b0 * x + s[0];
    s[0] = (b1 * x + a1 * y) + s[1];
    s[1] = (b2 * x + a2 * y) + s[2];
    s[2] = (b3 * x + a3 * y) + s[3];
    s[3] = (b4 * x + a4 * y) + s[4];
    s[4] = b5 * x + a5 * y;
    return y;
  }

  // A zero-input step without the b*0 terms: s[] then matches the plain state up to the sign of
  // a zero; normalise() restores it exactly.
  double runZero(double* s) const noexcept {
    const double y = s[0];
    s[0] = a1 * y + s[1];
    s[1] = a2 * y + s[2];
    s[2] = a3 * y + s[3];
    s[3] = a4 * y + s[4];
    s[4] = a5 * y;
    return y;
  }

  static void normalise(double* s) noexcept {
    for (int k = 0; k < 5; ++k) s[k] = s[k] + 0.0;
  }
};

// Everything one block reads and writes, as locals.
struct Block {
  Section first[2];
  Section eq[7];
  RampSection eqRamp[7];
  Section masterStage;
  Section final[2];
  Section outHighPass;
  Oversampler os;
  double up[5];
  double down[5];
  const Clipper* clip0;
  const Clipper* clip1;
  double lastVolume, volumeStep;
  double lastMaster, masterStep;
  double trim;

  // The nonlinear section and the down-filter for one up-filter output.
  double shapeAndDecimate(double y, double g) noexcept {
    double v = lookup(*clip0, y);
    v = masterStage.run(v);
    v = v * g;
    const double u = lookup(*clip1, v);
    return os.run(u, down);
  }

  // Samples [begin, end) of the block; Ramping selects the gliding tone stack, F the factor.
  template <bool Ramping, int F>
  void run(const double* in, double* out, int begin, int end) noexcept {
    // A local copy: no store to out[] can alias it, so its values live in registers.
    Block b = *this;
    for (int i = begin; i < end; ++i) {
      const double c = i;
      double x = in[i];
      x = b.first[0].run(x);
      x = b.first[1].run(x);
      for (int k = 0; k < 7; ++k) x = Ramping ? b.eqRamp[k].run(x) : b.eq[k].run(x);
      x = (c * b.volumeStep + b.lastVolume) * x;
      const double g = b.lastMaster + c * b.masterStep;

      Oversampler::normalise(b.up);
      double w = b.shapeAndDecimate(b.os.run(x, b.up), g);
      for (int s = 1; s < F; ++s) b.shapeAndDecimate(b.os.runZero(b.up), g);

      w = b.final[0].run(w);
      w = b.final[1].run(w);
      w = b.outHighPass.run(w);
      out[i] = w * b.trim;
    }
    *this = b;
  }
};

}  // namespace chain
