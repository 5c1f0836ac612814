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

// Two lookups at once, lane 0 in table c0 and lane 1 in table c1; each lane runs lookup()'s
// operations exactly.
[[gnu::always_inline]] inline __m128d lookupPair(const Clipper& c0, const Clipper& c1,
                                                 __m128d u) noexcept {
  const __m128d scale = _mm_set1_pd(kClipScale);
  __m128d v = _mm_max_pd(_mm_min_pd(u, _mm_set1_pd(1.0)), _mm_set1_pd(-1.0));
  v = _mm_and_pd(v, _mm_cmpord_pd(u, u));
  const __m128d p = _mm_add_pd(scale, _mm_mul_pd(v, scale));
  const __m128i i = _mm_cvttpd_epi32(p);
  const __m128d t = _mm_sub_pd(p, _mm_cvtepi32_pd(i));
  const __m128d pair0 = _mm_loadu_pd(&c0.table[_mm_cvtsi128_si32(i)]);
  const __m128d pair1 = _mm_loadu_pd(&c1.table[_mm_cvtsi128_si32(_mm_srli_si128(i, 4))]);
  const __m128d here = _mm_unpacklo_pd(pair0, pair1);
  const __m128d next = _mm_unpackhi_pd(pair0, pair1);
  return _mm_add_pd(_mm_mul_pd(_mm_sub_pd(next, here), t), here);
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

// Two sections of a cascade in the two lanes of one register: lane 0 runs the first on sample n
// while lane 1 runs the second on sample n - 1, the first one's previous output. Each lane runs
// Section::run's operations exactly.
struct SectionPair {
  __m128d b0, b1, b2, a1, a2, z1, z2;
  double held;  // lane 0's last output: lane 1's next input

  void load(const Section& first, const Section& second) noexcept {
    b0 = _mm_set_pd(second.b0, first.b0);
    b1 = _mm_set_pd(second.b1, first.b1);
    b2 = _mm_set_pd(second.b2, first.b2);
    a1 = _mm_set_pd(second.a1, first.a1);
    a2 = _mm_set_pd(second.a2, first.a2);
    z1 = _mm_set_pd(second.z1, first.z1);
    z2 = _mm_set_pd(second.z2, first.z2);
    held = 0.0;
  }
  void store(Section& first, Section& second) const noexcept {
    first.z1 = _mm_cvtsd_f64(z1);
    first.z2 = _mm_cvtsd_f64(z2);
    second.z1 = _mm_cvtsd_f64(_mm_unpackhi_pd(z1, z1));
    second.z2 = _mm_cvtsd_f64(_mm_unpackhi_pd(z2, z2));
  }

  [[gnu::always_inline]] __m128d step(__m128d x) noexcept {
    const __m128d y = _mm_add_pd(_mm_mul_pd(b0, x), z1);
    z1 = _mm_add_pd(_mm_add_pd(_mm_mul_pd(b1, x), z2), _mm_mul_pd(a1, y));
    z2 = _mm_add_pd(_mm_mul_pd(b2, x), _mm_mul_pd(a2, y));
    return y;
  }

  // Both lanes on real samples: x in, the second section's output out.
  [[gnu::always_inline]] double run(double x) noexcept {
    const __m128d y = step(_mm_set_pd(held, x));
    held = _mm_cvtsd_f64(y);
    return _mm_cvtsd_f64(_mm_unpackhi_pd(y, y));
  }

  // Filling or draining the cascade: a lane without a sample keeps its state.
  double runMasked(double x, bool firstActive, bool secondActive) noexcept {
    const __m128d z1Before = z1, z2Before = z2;
    const __m128d y = step(_mm_set_pd(held, firstActive ? x : 0.0));
    if (!firstActive) z1 = _mm_move_sd(z1, z1Before), z2 = _mm_move_sd(z2, z2Before);
    if (!secondActive) z1 = _mm_move_sd(z1Before, z1), z2 = _mm_move_sd(z2Before, z2);
    if (firstActive) held = _mm_cvtsd_f64(y);
    return _mm_cvtsd_f64(_mm_unpackhi_pd(y, y));
  }
};

// A cascade of sections run pairwise: Pairs two-lane pairs, then Tail single sections. A sample
// leaves the pairs Pairs steps after it entered; fill and drain mask the lanes without a sample.
template <int Pairs, int Tail>
struct Cascade {
  SectionPair pair[Pairs];
  Section tail[Tail];

  // Runs samples 0..n-1 of in; done(j, v) receives sample j's output.
  template <typename Done>
  [[gnu::always_inline]] void run(const double* in, int n, Done done) noexcept {
    const auto finish = [&](int j, double v) __attribute__((always_inline)) {
      for (int k = 0; k < Tail; ++k) v = tail[k].run(v);
      done(j, v);
    };
    const auto masked = [&](int s) {
      double v = s < n ? in[s] : 0.0;
      for (int k = 0; k < Pairs; ++k) {
        v = pair[k].runMasked(v, s - k >= 0 && s - k < n, s - k - 1 >= 0 && s - k - 1 < n);
      }
      if (s - Pairs >= 0 && s - Pairs < n) finish(s - Pairs, v);
    };
    const int filled = Pairs < n ? Pairs : n;
    int s = 0;
    for (; s < filled; ++s) masked(s);
    for (; s < n; ++s) {
      double v = in[s];
      for (int k = 0; k < Pairs; ++k) v = pair[k].run(v);
      finish(s - Pairs, v);
    }
    for (; s < n + Pairs; ++s) masked(s);
  }
};

// Samples of the block, from the start, on which the filter's ramp is still moving.
inline int rampSamplesLeft(const IIRFilter& f, int n) noexcept {
  if (!(f.rampPos <= f.rampLen)) return 0;
  const double left = f.rampLen - f.rampPos + 1.0;
  return left < n ? static_cast<int>(left) : n;
}

// The fifth-order oversampling low-pass of factor F, two at once: lane 0 is the up-filter, lane 1
// the down-filter, each with its own state in the lanes of s[0..4]. Each lane runs
//   y = b0 x + s0; s_k = (b_k+1 x + a_k+1 y) + s_k+1; s4 = b5 x + a5 y
// exactly, the up-filter with x = 0 written out on the zero-stuffed sub-samples.
template <int F>
struct Oversampler {
  static constexpr const OversamplingSet& set = oversamplingSet<F>();

  [[gnu::always_inline]] static __m128d run(__m128d x, __m128d* s) noexcept {
    const auto a = [](int k) { return _mm_set1_pd(set.a[k - 1]); };
    const auto b = [](int k) { return _mm_set1_pd(set.b[k]); };
    const __m128d y = _mm_add_pd(_mm_mul_pd(b(0), x), s[0]);
    s[0] = _mm_add_pd(_mm_add_pd(_mm_mul_pd(b(1), x), _mm_mul_pd(a(1), y)), s[1]);
    s[1] = _mm_add_pd(_mm_add_pd(_mm_mul_pd(b(2), x), _mm_mul_pd(a(2), y)), s[2]);
    s[2] = _mm_add_pd(_mm_add_pd(_mm_mul_pd(b(3), x), _mm_mul_pd(a(3), y)), s[3]);
    s[3] = _mm_add_pd(_mm_add_pd(_mm_mul_pd(b(4), x), _mm_mul_pd(a(4), y)), s[4]);
    s[4] = _mm_add_pd(_mm_mul_pd(b(5), x), _mm_mul_pd(a(5), y));
    return y;
  }

  // One step of one filter only: the other lane's state stays as it was.
  template <int Lane>
  [[gnu::always_inline]] static __m128d runLane(__m128d x, __m128d* s) noexcept {
    __m128d next[5] = {s[0], s[1], s[2], s[3], s[4]};
    const __m128d y = run(x, next);
    for (int k = 0; k < 5; ++k) {
      s[k] = Lane == 0 ? _mm_move_sd(s[k], next[k]) : _mm_move_sd(next[k], s[k]);
    }
    return y;
  }
};

// Host samples per chunk: the scratch between the passes lives on the stack.
constexpr int kChunk = 256;

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
  void inputRamping(const double* in, double* x, int begin, int end) noexcept {
    Section f0 = first[0], f1 = first[1];
    RampSection ramps[7];
    for (int k = 0; k < 7; ++k) ramps[k] = eq[k];
    const double v0 = lastVolume, dv = volumeStep;
    for (int i = begin; i < end; ++i) {
      const double c = i;
      double s = f1.run(f0.run(in[i]));
      for (int k = 0; k < 7; ++k) s = ramps[k].run(s);
      x[i - begin] = (c * dv + v0) * s;
    }
    first[0] = f0, first[1] = f1;
    for (int k = 0; k < 7; ++k) eq[k] = ramps[k];
  }

  void inputSettled(const double* in, double* x, int begin, int end) noexcept {
    Section bands[7];
    for (int k = 0; k < 7; ++k) bands[k] = eq[k].settled();
    Cascade<4, 1> cascade;
    cascade.pair[0].load(first[0], first[1]);
    for (int k = 0; k < 3; ++k) cascade.pair[k + 1].load(bands[2 * k], bands[2 * k + 1]);
    cascade.tail[0] = bands[6];
    const double v0 = lastVolume, dv = volumeStep;
    cascade.run(
        in + begin, end - begin, [&](int j, double v) __attribute__((always_inline)) {
          const double c = begin + j;
          x[j] = (c * dv + v0) * v;
        });
    cascade.pair[0].store(first[0], first[1]);
    for (int k = 0; k < 3; ++k) cascade.pair[k + 1].store(bands[2 * k], bands[2 * k + 1]);
    bands[6] = cascade.tail[0];
    for (int k = 0; k < 7; ++k) eq[k].z1 = bands[k].z1, eq[k].z2 = bands[k].z2;
  }

  // Oversampled section, samples [begin, end): x in, the kept down-filter outputs out.
  //
  // Software-pipelined. A sub-sample passes the up-filter, the first shaper (L0), the master stage
  // and gain (M), the second shaper (L1) and the down-filter; one tick runs each stage on its own
  // sub-sample, later stages on older ones (lags below). The work of a tick is independent, so the
  // processor overlaps the recursions instead of waiting out the shapers' latency. The two shapers
  // share one two-lane lookup and the two filters one two-lane step; the extra ticks a value waits
  // before L1 and before the down-filter keep those pairings from chaining the stages into one
  // slow loop. Every filter still sees its sub-samples in order. The pipeline fills at the first
  // host sample and drains after the last.
  template <int F>
  void oversample(const double* x, double* z, int begin, int end) noexcept {
    constexpr int kWaitGain = 3;  // ticks from M to L1
    constexpr int kWaitDown = 4;  // ticks from L1 to the down-filter
    constexpr int kLagM = 2;
    constexpr int kLagL1 = kLagM + kWaitGain;
    constexpr int kLagDown = kLagL1 + kWaitDown;
    static_assert(kLagDown >= F && kLagDown < 2 * F,
                  "the kept output leaves at the next host sample");
    if (begin >= end) return;
    using Os = Oversampler<F>;
    __m128d state[5];
    for (int k = 0; k < 5; ++k) state[k] = _mm_set_pd(down[k], up[k]);
    Section m = masterStage;
    const Clipper& shape0 = *clip0;
    const Clipper& shape1 = *clip1;
    const double g0 = lastMaster, dg = masterStep;

    // In flight: y after the up-filter, w after L0, gv[] after M, u[] after L1 (newest first).
    double y = 0.0, w = 0.0;
    double gv[kWaitGain] = {}, u[kWaitDown] = {};
    double g = 0.0, gPrev = 0.0;
    double xi = 0.0;
    int i = begin;

    // Tick K of host sample i, the chunk's host sample number Age (counted up to 2, which covers
    // every lag); a stage runs when its sub-sample lies in the chunk. K >= F drains after the last
    // host sample.
    const auto tick = [&]<int K, int Age>() __attribute__((always_inline)) {
      constexpr auto active = [](int lag) { return Age * F + K >= lag && K < F + lag; };
      double w0 = w, u0 = u[0];
      if constexpr (active(1) || active(kLagL1)) {
        const __m128d shaped = lookupPair(shape0, shape1, _mm_set_pd(gv[kWaitGain - 1], y));
        w0 = _mm_cvtsd_f64(shaped);
        u0 = _mm_cvtsd_f64(_mm_unpackhi_pd(shaped, shaped));
      }
      double gvNew = 0.0;
      if constexpr (active(kLagM)) gvNew = m.run(w) * (K >= kLagM ? g : gPrev);
      const __m128d in = _mm_set_pd(u[kWaitDown - 1], K == 0 ? xi : 0.0);
      if constexpr (active(0) && active(kLagDown)) {
        const __m128d out = Os::run(in, state);
        y = _mm_cvtsd_f64(out);
        // The down-filter's sub-sample is the first of host sample i - 1 (i in the drain).
        if constexpr (K == kLagDown - F)
          z[i - 1 - begin] = _mm_cvtsd_f64(_mm_unpackhi_pd(out, out));
      } else if constexpr (active(0)) {
        y = _mm_cvtsd_f64(Os::template runLane<0>(in, state));
      } else if constexpr (active(kLagDown)) {
        const __m128d out = Os::template runLane<1>(in, state);
        if constexpr (K == kLagDown) z[i - begin] = _mm_cvtsd_f64(_mm_unpackhi_pd(out, out));
      }
      w = w0;
      for (int k = kWaitGain - 1; k > 0; --k) gv[k] = gv[k - 1];
      gv[0] = gvNew;
      for (int k = kWaitDown - 1; k > 0; --k) u[k] = u[k - 1];
      u[0] = u0;
    };
    const auto hostSample = [&]<int Age, int... K>(std::integer_sequence<int, K...>)
        __attribute__((always_inline)) {
      gPrev = g;
      g = g0 + static_cast<double>(i) * dg;
      xi = x[i - begin];
      (tick.template operator()<K, Age>(), ...);
    };
    const auto drain = [&]<int Age, int... D>(std::integer_sequence<int, D...>)
        __attribute__((always_inline)) {
      (tick.template operator()<F + D, Age>(), ...);
    };
    constexpr auto kTicks = std::make_integer_sequence<int, F>{};
    constexpr auto kDrainTicks = std::make_integer_sequence<int, kLagDown>{};

    hostSample.template operator()<0>(kTicks);
    if (++i < end) hostSample.template operator()<1>(kTicks);
    for (++i; i < end; ++i) hostSample.template operator()<2>(kTicks);
    i = end - 1;
    switch (end - begin) {
      case 1:
        drain.template operator()<0>(kDrainTicks);
        break;
      case 2:
        drain.template operator()<1>(kDrainTicks);
        break;
      default:
        drain.template operator()<2>(kDrainTicks);
        break;
    }

    for (int k = 0; k < 5; ++k) {
      up[k] = _mm_cvtsd_f64(state[k]);
      down[k] = _mm_cvtsd_f64(_mm_unpackhi_pd(state[k], state[k]));
    }
    masterStage = m;
  }

  // Output stage, samples [begin, end): Final, the 20 Hz high-pass, trim.
  void output(const double* z, double* out, int begin, int end) noexcept {
    Cascade<1, 1> cascade;
    cascade.pair[0].load(final[0], final[1]);
    cascade.tail[0] = outHighPass;
    const double gain = trim;
    cascade.run(
        z, end - begin, [&](int j, double v) __attribute__((always_inline)) {
          out[begin + j] = v * gain;
        });
    cascade.pair[0].store(final[0], final[1]);
    outHighPass = cascade.tail[0];
  }

  // Samples [0, n); the tone stack glides over the first rampEnd of them.
  template <int F>
  void run(const double* in, double* out, int n, int rampEnd) noexcept {
    double x[kChunk];
    double z[kChunk];
    for (int begin = 0; begin < n; begin += kChunk) {
      const int end = n - begin < kChunk ? n : begin + kChunk;
      const int split = rampEnd < begin ? begin : rampEnd < end ? rampEnd : end;
      if (split > begin) inputRamping(in, x, begin, split);
      if (split < end) inputSettled(in, x + (split - begin), split, end);
      oversample<F>(x, z, begin, end);
      output(z, out, begin, end);
    }
  }
};

}  // namespace chain
