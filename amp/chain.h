// The per-sample chain of one block, run on copies of every coefficient and state held in locals
// and written back at the end, so the compiler keeps them in registers and sees no call.
//
// Per host sample i (c = i):
//   x = First(in[i]); x = EQ(x) (ramped); x *= lastVolume + c * volumeStep
//   g = lastMaster + c * masterStep
//   osFactor sub-samples, input x then zeros:  y = Up(x_s); u = clip1(g * Master(clip0(y)));
//   z_s = Down(u)  (only z_0 is kept)
//   out[i] = OutHP(Final(z_0)) * trim
//
// The block runs in chunks, each in three passes: the host-rate input stage for the whole chunk,
// the oversampled section, then the output stage. Within a pass independent filters run side by
// side (two per register, or a few sub-samples apart in a software pipeline), so the processor
// overlaps their short recursions. All inputs of a chunk are read before any of its outputs is
// written.
//
// Every filter still sees its samples in order, and each value is formed by the operations of the
// plain chain on the same operands in the same order (a register lane runs the scalar IEEE
// operation), so the output is bit for bit the same. The oversampling coefficients are the
// compile-time set of the factor, the set the set-up stores in osCoefA and osCoefB.
//
// Audio thread only; allocation-free, no call, no lock.
#pragma once

#include <utility>

#include "amp/chain_sections.h"
#include "amp/oversampler.h"
#include "amp/shaper_lookup.h"
#include "dsp/clipper.h"
#include "dsp/two_lanes.h"

namespace chain {

// x itself when finite, else 0: a NaN or infinity from the input, the tone stack or VOLUME enters
// the oversampled section as silence.
[[gnu::always_inline]] inline double finiteOrZero(double x) noexcept {
  return lanes::lane0(lanes::zeroUnlessFinite(lanes::make(x, 0.0)));
}

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
      x[i - begin] = finiteOrZero((c * dv + v0) * s);
    }
    first[0] = f0, first[1] = f1;
    for (int k = 0; k < 7; ++k) eq[k] = ramps[k];
  }

  void inputSettled(const double* in, double* x, int begin, int end) noexcept {
    Section bands[7];
    for (int k = 0; k < 7; ++k) bands[k] = eq[k].settled();
    Cascade<4, 1> cascade;
    cascade.pair[0].load(first[0], first[1]);
    for (std::size_t k = 0; k < 3; ++k) cascade.pair[k + 1].load(bands[2 * k], bands[2 * k + 1]);
    cascade.tail[0] = bands[6];
    const double v0 = lastVolume, dv = volumeStep;
    cascade.run(
        in + begin, end - begin, [&](int j, double v) __attribute__((always_inline)) {
          const double c = begin + j;
          x[j] = finiteOrZero((c * dv + v0) * v);
        });
    cascade.pair[0].store(first[0], first[1]);
    for (std::size_t k = 0; k < 3; ++k) cascade.pair[k + 1].store(bands[2 * k], bands[2 * k + 1]);
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
    lanes::Lanes state[5];
    for (int k = 0; k < 5; ++k) state[k] = lanes::make(up[k], down[k]);
    // The master stage is a first-order shelf (b2 = a2 = 0), so its second state is a zero and
    // adding it to b1 * w, or a zero product to z1, can only change the sign of a zero. Such a
    // zero reaches nothing but the second shaper, which reads -0 and +0 alike, so the shelf runs
    // without those terms and its output through the shaper is bit for bit the plain one.
    Section shelf = masterStage;
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
        const lanes::Lanes shaped = lookupPair(shape0, shape1, lanes::make(y, gv[kWaitGain - 1]));
        w0 = lanes::lane0(shaped);
        u0 = lanes::lane1(shaped);
      }
      double gvNew = 0.0;
      if constexpr (active(kLagM)) {
        const double v = shelf.b0 * w + shelf.z1;
        shelf.z1 = shelf.b1 * w + shelf.a1 * v;
        gvNew = v * (K >= kLagM ? g : gPrev);
      }
      const lanes::Lanes in = lanes::make(K == 0 ? xi : 0.0, u[kWaitDown - 1]);
      if constexpr (active(0) && active(kLagDown)) {
        const lanes::Lanes out = Os::run(in, state);
        y = lanes::lane0(out);
        // The down-filter's sub-sample is the first of host sample i - 1 (i in the drain).
        if constexpr (K == kLagDown - F) z[i - 1 - begin] = lanes::lane1(out);
      } else if constexpr (active(0)) {
        y = lanes::lane0(Os::template runLane<0>(in, state));
      } else if constexpr (active(kLagDown)) {
        const lanes::Lanes out = Os::template runLane<1>(in, state);
        if constexpr (K == kLagDown) z[i - begin] = lanes::lane1(out);
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
      up[k] = lanes::lane0(state[k]);
      down[k] = lanes::lane1(state[k]);
    }
    masterStage.z1 = shelf.z1;
    masterStage.z2 = 0.0;  // the shelf's second state is a zero
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
