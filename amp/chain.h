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
// The block runs in chunks, each in three passes: the host-rate input stage for the whole chunk,
// then the oversampled section, then the output stage. The passes touch disjoint state, so every
// filter still sees its samples in order, and each pass is a short loop whose iterations the
// processor overlaps. All inputs of a chunk are read before any of its outputs is written.
//
// Every operation, its order and its operands are those of the plain chain, so the output is
// bit for bit the same. Two rewrites keep that:
// - On a zero-input sub-sample the plain up-filter adds b*0 = +0 to each term, which only turns a
//   -0 into +0. Those additions are dropped (states then equal the plain ones up to the sign of a
//   zero) and done once, as "+ 0.0", before the next sub-sample that carries input; the waveshaper
//   reads -0 and +0 alike.
// - The oversampling coefficients are the compile-time set of the factor; as b4 = b1 etc., equal
//   products are formed once.
//
// Audio thread only; allocation-free, no call, no lock.
#pragma once

#include <emmintrin.h>

#include <cstddef>
#include <utility>

#include "amp/oversampling.h"
#include "dsp/clipper.h"
#include "dsp/iirfilter.h"

namespace chain {

// clipLookup without branches: the clamp is a min and a max, NaN reads as 0, and an entry and
// its right-hand neighbour come in one 16-byte load (for the last entry that neighbour is the
// record's guard, as in clipLookup). The scale of a built table is kClipScale.
static_assert(offsetof(Clipper, guard) == offsetof(Clipper, table) + kClipSize * sizeof(double),
              "the guard is the right-hand neighbour of the last entry");

inline double lookup(const Clipper& c, double u) noexcept {
  // minsd/maxsd keep every in-range value, -0 included, exactly; NaN is masked to +0.
  const __m128d x = _mm_set_sd(u);
  __m128d clamped = _mm_max_sd(_mm_min_sd(x, _mm_set_sd(1.0)), _mm_set_sd(-1.0));
  clamped = _mm_and_pd(clamped, _mm_cmpord_sd(x, x));
  const double v = _mm_cvtsd_f64(clamped);
  const double p = kClipScale + v * kClipScale;
  const int i = _mm_cvttsd_si32(_mm_set_sd(p));
  const double t = p - i;
  // table[i] and table[i + 1] (or guard): both inside the record.
  const __m128d pair = _mm_loadu_pd(&c.table[i]);
  const double here = _mm_cvtsd_f64(pair);
  const double next = _mm_cvtsd_f64(_mm_unpackhi_pd(pair, pair));
  return (next - here) * t + here;
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

  // The fixed section it amounts to once the ramp is over: c = step * pos + prev.
  Section settled() const noexcept {
    Section s;
    s.b0 = step[IIRFilter::kB0] * pos + prev[IIRFilter::kB0];
    s.b1 = step[IIRFilter::kB1] * pos + prev[IIRFilter::kB1];
    s.b2 = step[IIRFilter::kB2] * pos + prev[IIRFilter::kB2];
    s.a1 = step[IIRFilter::kA1] * pos + prev[IIRFilter::kA1];
    s.a2 = step[IIRFilter::kA2] * pos + prev[IIRFilter::kA2];
    s.z1 = z1;
    s.z2 = z2;
    return s;
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

// The fifth-order oversampling low-pass of factor F; s[0..4] is the state.
template <int F>
struct Oversampler {
  static constexpr const OversamplingSet& set = oversamplingSet<F>();
  static constexpr double a1 = set.a[0], a2 = set.a[1], a3 = set.a[2], a4 = set.a[3], a5 = set.a[4];
  static constexpr double b0 = set.b[0], b1 = set.b[1], b2 = set.b[2], b3 = set.b[3], b4 = set.b[4],
                          b5 = set.b[5];

  static double run(double x, double* s) noexcept {
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
  static double runZero(double* s) noexcept {
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

// Host samples per chunk: the scratch between the passes lives on the stack.
constexpr int kChunk = 64;

// Everything one block reads and writes, as locals.
struct Block {
  Section first[2];
  RampSection eq[7];
  Section masterStage;
  Section final[2];
  Section outHighPass;
  double up[5];
  double down[5];
  const Clipper* clip0;
  const Clipper* clip1;
  double lastVolume, volumeStep;
  double lastMaster, masterStep;
  double trim;

  // Input stage, samples [begin, end): First, the tone stack (gliding or settled), VOLUME.
  template <bool Ramping>
  void input(const double* in, double* x, int begin, int end) noexcept {
    Section f0 = first[0], f1 = first[1];
    RampSection ramps[7];
    Section bands[7];
    for (int k = 0; k < 7; ++k) {
      if (Ramping) {
        ramps[k] = eq[k];
      } else {
        bands[k] = eq[k].settled();
      }
    }
    const double v0 = lastVolume, dv = volumeStep;
    for (int i = begin; i < end; ++i) {
      const double c = i;
      double s = f1.run(f0.run(in[i]));
      for (int k = 0; k < 7; ++k) s = Ramping ? ramps[k].run(s) : bands[k].run(s);
      x[i - begin] = (c * dv + v0) * s;
    }
    first[0] = f0, first[1] = f1;
    for (int k = 0; k < 7; ++k) {
      if (Ramping) {
        eq[k] = ramps[k];
      } else {
        eq[k].z1 = bands[k].z1;
        eq[k].z2 = bands[k].z2;
      }
    }
  }

  // Oversampled section, samples [begin, end): x in, the kept down-filter outputs out.
  //
  // Software-pipelined: each sub-sample passes five stages (S1 up-filter, S2 first shaper, S3
  // master stage and gain, S4 second shaper, S5 down-filter), and one tick runs S1 on sub-sample
  // j, S2 on j - 1, ... S5 on j - 4. The stages of a tick are independent, so the processor
  // overlaps the three recursions instead of waiting out the shaper's latency; every filter still
  // sees its sub-samples in order. The pipeline is filled at the start and drained at the end.
  template <int F>
  void oversample(const double* x, double* z, int begin, int end) noexcept {
    static_assert(F > 4, "the kept output leaves the pipeline at tick 4 of its host sample");
    if (begin >= end) return;
    using Os = Oversampler<F>;
    double s[5] = {up[0], up[1], up[2], up[3], up[4]};
    double t[5] = {down[0], down[1], down[2], down[3], down[4]};
    Section m = masterStage;
    const Clipper& shape0 = *clip0;
    const Clipper& shape1 = *clip1;
    const double g0 = lastMaster, dg = masterStep;

    // In flight: y after S1, w after S2, v after S3, u after S4.
    double y = 0.0, w = 0.0, v = 0.0, u = 0.0;
    double g = 0.0, gPrev = 0.0;
    double xi = 0.0;
    bool fresh = true;  // the host sample before this one is not in the pipeline
    int i = begin;

    // Tick K of host sample i (K >= F: draining after the last one).
    const auto tick = [&]<int K>() {
      constexpr bool kS1 = K < F;
      if (K >= 4 || !fresh) {
        const double out = Os::run(u, t);
        if (K == 4) z[i - begin] = out;
      }
      if ((K >= 3 || !fresh) && K < F + 3) u = lookup(shape1, v);
      if ((K >= 2 || !fresh) && K < F + 2) v = m.run(w) * (K >= 2 ? g : gPrev);
      if ((K >= 1 || !fresh) && K < F + 1) w = lookup(shape0, y);
      if constexpr (kS1) {
        if constexpr (K == 0) {
          Os::normalise(s);
          y = Os::run(xi, s);
        } else {
          y = Os::runZero(s);
        }
      }
    };
    const auto ticks = [&]<int... K>(std::integer_sequence<int, K...>) {
      (tick.template operator()<K>(), ...);
    };

    for (; i < end; ++i) {
      gPrev = g;
      g = g0 + static_cast<double>(i) * dg;
      xi = x[i - begin];
      ticks(std::make_integer_sequence<int, F>{});
      fresh = false;
    }
    --i;
    [&]<int... D>(std::integer_sequence<int, D...>) {
      (tick.template operator()<F + D>(), ...);
    }
    (std::make_integer_sequence<int, 4>{});

    Os::normalise(s);
    for (int k = 0; k < 5; ++k) up[k] = s[k], down[k] = t[k];
    masterStage = m;
  }

  // Output stage, samples [begin, end): Final, the 20 Hz high-pass, trim.
  void output(const double* z, double* out, int begin, int end) noexcept {
    Section f0 = final[0], f1 = final[1], hp = outHighPass;
    const double gain = trim;
    for (int i = begin; i < end; ++i) out[i] = hp.run(f1.run(f0.run(z[i - begin]))) * gain;
    final[0] = f0, final[1] = f1, outHighPass = hp;
  }

  // Samples [0, n); the tone stack glides over the first rampEnd of them.
  template <int F>
  void run(const double* in, double* out, int n, int rampEnd) noexcept {
    double x[kChunk];
    double z[kChunk];
    for (int begin = 0; begin < n; begin += kChunk) {
      const int end = n - begin < kChunk ? n : begin + kChunk;
      const int split = rampEnd < begin ? begin : rampEnd < end ? rampEnd : end;
      if (split > begin) input<true>(in, x, begin, split);
      if (split < end) input<false>(in, x + (split - begin), split, end);
      oversample<F>(x, z, begin, end);
      output(z, out, begin, end);
    }
  }
};

}  // namespace chain
