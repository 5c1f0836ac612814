#include "plot/spectrum.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "plot/fft.h"

namespace tarnwell::plot {
namespace {

// Four-term Blackman-Harris, periodic form.
constexpr double kWindowTerms[] = {0.35875, 0.48829, 0.14128, 0.01168};
// Bins on each side of a tone over which its power is summed: the main lobe is 4 bins wide on
// each side, the rest catches the first side lobes.
constexpr int kLobeBins = 8;

std::vector<double> window(std::size_t n) {
  std::vector<double> w(n);
  for (std::size_t i = 0; i < n; ++i) {
    const double phase = 2.0 * std::numbers::pi * static_cast<double>(i) / static_cast<double>(n);
    w[i] = kWindowTerms[0] - kWindowTerms[1] * std::cos(phase) +
           kWindowTerms[2] * std::cos(2.0 * phase) - kWindowTerms[3] * std::cos(3.0 * phase);
  }
  return w;
}

double toDb(double amplitude) {
  return 20.0 * std::log10(amplitude);
}

}  // namespace

HarmonicAnalysis analyseHarmonics(std::span<const double> signal, double rate, double fundamental,
                                  int maxOrder) {
  const std::size_t n = signal.size();
  const std::vector<double> w = window(n);
  double sum = 0.0;
  double sumSquares = 0.0;
  std::vector<double> weighted(n);
  for (std::size_t i = 0; i < n; ++i) {
    weighted[i] = signal[i] * w[i];
    sum += w[i];
    sumSquares += w[i] * w[i];
  }
  const auto spectrum = forwardTransform(weighted);
  const double binHz = rate / static_cast<double>(n);
  const double enbwBins = static_cast<double>(n) * sumSquares / (sum * sum);

  HarmonicAnalysis result;
  std::vector<double> amplitude(spectrum.size());
  for (std::size_t k = 0; k < spectrum.size(); ++k) {
    amplitude[k] = 2.0 * std::abs(spectrum[k]) / sum;
    result.frequency.push_back(static_cast<double>(k) * binHz);
    result.levelDb.push_back(toDb(amplitude[k]));
  }

  const int lastBin = static_cast<int>(spectrum.size()) - 1;
  double harmonicPower = 0.0;
  double fundamentalPower = 0.0;
  for (int order = 1; order <= maxOrder; ++order) {
    const double f = order * fundamental;
    const int centre = static_cast<int>(std::lround(f / binHz));
    if (centre - kLobeBins < 1 || centre + kLobeBins > lastBin) break;
    double power = 0.0;
    for (int k = centre - kLobeBins; k <= centre + kLobeBins; ++k)
      power += amplitude[k] * amplitude[k];
    power /= enbwBins;
    result.harmonics.push_back({order, f, 10.0 * std::log10(power)});
    (order == 1 ? fundamentalPower : harmonicPower) += power;
  }
  const double ratio = fundamentalPower > 0.0 ? std::sqrt(harmonicPower / fundamentalPower) : 0.0;
  result.thdPercent = 100.0 * ratio;
  result.thdDb = toDb(ratio);
  return result;
}

std::vector<double> transferDb(std::span<const double> x, std::span<const double> y,
                               std::span<const int> bins) {
  const auto input = forwardTransform(x);
  const auto output = forwardTransform(y);
  std::vector<double> db;
  db.reserve(bins.size());
  for (const int k : bins) db.push_back(toDb(std::abs(output[k] / input[k])));
  return db;
}

}  // namespace tarnwell::plot
