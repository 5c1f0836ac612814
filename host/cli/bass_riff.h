// The demo's dry signal: a short plucked-bass riff in E, synthesised so that the repository holds
// no audio file. Each note is a sum of slightly stretched harmonics with the spectrum of a string
// plucked near the bridge, higher harmonics dying away faster, a 2 ms attack and a 12 ms damped
// release. The result is scaled to a DI level peaking at kPeak (about -6 dBFS) and rounded to
// float, so that a float file of it reproduces exactly what the demo rendered.
//
// Deterministic: the same samples on every run.
#pragma once

#include <vector>

namespace tarnwell::cli {

struct BassRiff {
  static constexpr int kSampleRate = 44100;
  static constexpr double kPeak = 0.5;
};

std::vector<float> synthesiseBassRiff();

}  // namespace tarnwell::cli
