#include "host/cli/bass_riff.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace tarnwell::cli {
namespace {

struct Note {
  double hz;
  double beats;     // eighth notes
  double velocity;  // 0..1
};

constexpr double kE1 = 41.2034, kG1 = 48.9994, kA1 = 55.0, kB1 = 61.7354, kD2 = 73.4162;
constexpr double kE2 = 82.4069;

// Two bars of eighths at 100 bpm, then a ringing low E.
constexpr Note kRiff[] = {
    {kE1, 1, 1.0},  {kE1, 1, 0.7}, {kG1, 1, 0.85}, {kE1, 1, 0.7}, {kA1, 1, 0.95}, {kE1, 1, 0.7},
    {kG1, 1, 0.85}, {kA1, 1, 0.8}, {kE1, 1, 1.0},  {kE1, 1, 0.7}, {kD2, 1, 0.9},  {kE2, 1, 0.75},
    {kB1, 1, 0.9},  {kA1, 1, 0.8}, {kG1, 1, 0.85}, {kA1, 1, 0.8}, {kE1, 5, 1.0},
};

constexpr double kEighthSeconds = 0.3;
constexpr double kPluckPosition = 0.22;  // fraction of the string length from the bridge
constexpr double kStretch = 0.00015;     // string stiffness: harmonic k sits at k*sqrt(1+B k^2)
constexpr double kTopHz = 4000.0;        // harmonics above this are left out
constexpr int kMaxHarmonics = 48;
constexpr double kAttackSeconds = 0.002;
constexpr double kReleaseSeconds = 0.012;

void addNote(std::vector<double>& out, std::size_t start, std::size_t length, const Note& note) {
  constexpr double pi = std::numbers::pi;
  const double rate = BassRiff::kSampleRate;
  const std::size_t release = static_cast<std::size_t>(kReleaseSeconds * rate);
  const std::size_t attack = static_cast<std::size_t>(kAttackSeconds * rate);
  for (int k = 1; k <= kMaxHarmonics; ++k) {
    const double hz = k * note.hz * std::sqrt(1.0 + kStretch * k * k);
    if (hz > kTopHz) break;
    const double amplitude = note.velocity * std::sin(k * pi * kPluckPosition) / std::pow(k, 1.6);
    const double decayPerSecond = 1.5 + 0.9 * k;
    const double omega = 2.0 * pi * hz / rate;
    for (std::size_t i = 0; i < length; ++i) {
      const double t = i / rate;
      double envelope = std::exp(-decayPerSecond * t);
      if (i < attack) envelope *= static_cast<double>(i) / attack;
      if (i + release > length) envelope *= static_cast<double>(length - i) / release;
      out[start + i] += amplitude * envelope * std::sin(omega * i);
    }
  }
}

}  // namespace

std::vector<float> synthesiseBassRiff() {
  double beats = 0.0;
  for (const Note& n : kRiff) beats += n.beats;
  const auto eighth = static_cast<std::size_t>(kEighthSeconds * BassRiff::kSampleRate);
  std::vector<double> riff(static_cast<std::size_t>(beats) * eighth, 0.0);

  std::size_t start = 0;
  for (const Note& n : kRiff) {
    const auto length = static_cast<std::size_t>(n.beats) * eighth;
    addNote(riff, start, length, n);
    start += length;
  }

  double peak = 0.0;
  for (double s : riff) peak = std::max(peak, std::fabs(s));
  const double gain = peak > 0.0 ? BassRiff::kPeak / peak : 0.0;
  std::vector<float> out(riff.size());
  std::ranges::transform(riff, out.begin(),
                         [gain](double s) { return static_cast<float>(s * gain); });
  return out;
}

}  // namespace tarnwell::cli
