// The small-signal response of a system measured from outside, with a quiet periodic noise: a sum
// of cosines of equal amplitude and random phase, one on each FFT bin nearest a wanted frequency,
// exactly periodic over n = the power of two at or above the rate (bins at most 1 Hz apart). The
// system runs two periods; the first lets every transient die away, and over the second the
// output's spectrum divided by the input's gives the gain at each excited bin, without window and
// without leakage:
//
//   G(k) = |Y(k) / X(k)|,  f(k) = k * rate / n
//
// At a level far below the waveshapers' knees the amp is linear to well within 0.01 dB, and its
// oversampled section (up-filter, shapers, down-filter at the same factor) is then time-invariant
// at the host rate, so the result is its true response there, aliases included.
//
// Control thread. The system is driven block by block through `process`.
#pragma once

#include <functional>
#include <span>
#include <vector>

namespace tarnwell::plot {

// Filters `frames` samples of `in` into `out` (no aliasing), keeping its state between calls.
using BlockProcessor = std::function<void(const double* in, double* out, int frames)>;

struct MeasuredResponse {
  std::vector<double> frequency;  // Hz, the excited bins, ascending
  std::vector<double> gainDb;
};

// Level of the noise: RMS in dBFS (its peaks lie about 12 dB higher).
constexpr double kSmallSignalRmsDb = -100.0;

// The frequencies the measurement excites for `wanted` at `rate`: each snapped to its nearest bin,
// without repeats, ascending. Exact curves drawn beside a measurement use them too.
std::vector<double> excitedFrequencies(double rate, std::span<const double> wanted);

MeasuredResponse measureSmallSignal(const BlockProcessor& process, double rate,
                                    std::span<const double> wanted, int blockFrames);

}  // namespace tarnwell::plot
