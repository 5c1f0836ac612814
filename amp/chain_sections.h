// The filter sections of the host-rate stages as the chain runs them: copies of an IIRFilter's
// coefficients and state in locals, fixed or gliding, one at a time or two in the lanes of one
// register. Each runs IIRFilter's transposed direct form II operations exactly:
//   y = b0 x + z1;  z1 = (b1 x + z2) + a1 y;  z2 = b2 x + a2 y
// Audio thread; inline, allocation-free, no call.
#pragma once

#include "dsp/iirfilter.h"
#include "dsp/two_lanes.h"

namespace chain {

// One transposed direct form II section with fixed coefficients.
struct Section {
  double b0, b1, b2, a1, a2;
  double z1, z2;

  void load(const IIRFilter& f) noexcept {
    b0 = f.coef[IIRFilter::kB0];
    b1 = f.coef[IIRFilter::kB1];
    b2 = f.coef[IIRFilter::kB2];
    a1 = f.coef[IIRFilter::kA1];
    a2 = f.coef[IIRFilter::kA2];
    z1 = f.z1;
    z2 = f.z2;
  }
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
  lanes::Lanes b0, b1, b2, a1, a2, z1, z2;
  double held;  // lane 0's last output: lane 1's next input

  void load(const Section& first, const Section& second) noexcept {
    b0 = lanes::make(first.b0, second.b0);
    b1 = lanes::make(first.b1, second.b1);
    b2 = lanes::make(first.b2, second.b2);
    a1 = lanes::make(first.a1, second.a1);
    a2 = lanes::make(first.a2, second.a2);
    z1 = lanes::make(first.z1, second.z1);
    z2 = lanes::make(first.z2, second.z2);
    held = 0.0;
  }
  void store(Section& first, Section& second) const noexcept {
    first.z1 = lanes::lane0(z1);
    first.z2 = lanes::lane0(z2);
    second.z1 = lanes::lane1(z1);
    second.z2 = lanes::lane1(z2);
  }

  [[gnu::always_inline]] lanes::Lanes step(lanes::Lanes x) noexcept {
    const lanes::Lanes y = b0 * x + z1;
    z1 = (b1 * x + z2) + a1 * y;
    z2 = b2 * x + a2 * y;
    return y;
  }

  // Both lanes on real samples: x in, the second section's output out.
  [[gnu::always_inline]] double run(double x) noexcept {
    const lanes::Lanes y = step(lanes::make(x, held));
    held = lanes::lane0(y);
    return lanes::lane1(y);
  }

  // Filling or draining the cascade: a lane without a sample keeps its state.
  double runMasked(double x, bool firstActive, bool secondActive) noexcept {
    const lanes::Lanes z1Before = z1, z2Before = z2;
    const lanes::Lanes y = step(lanes::make(firstActive ? x : 0.0, held));
    if (!firstActive) z1 = lanes::merge(z1Before, z1), z2 = lanes::merge(z2Before, z2);
    if (!secondActive) z1 = lanes::merge(z1, z1Before), z2 = lanes::merge(z2, z2Before);
    if (firstActive) held = lanes::lane0(y);
    return lanes::lane1(y);
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

}  // namespace chain
