#include "plot/small_signal.h"

#include <algorithm>
#include <cmath>
#include <complex>
#include <numbers>
#include <random>

#include "plot/fft.h"
#include "plot/spectrum.h"

namespace tarnwell::plot {
namespace {

int periodFor(double rate) {
  int n = 1;
  while (n < rate) n *= 2;
  return n;
}

// The bins nearest the wanted frequencies, without repeats, between 1 and n/2 - 1.
std::vector<int> binsFor(std::span<const double> wanted, double rate, int n) {
  std::vector<int> bins;
  for (const double f : wanted) {
    const auto k = static_cast<int>(std::lround(f * n / rate));
    bins.push_back(std::clamp(k, 1, n / 2 - 1));
  }
  std::ranges::sort(bins);
  bins.erase(std::unique(bins.begin(), bins.end()), bins.end());
  return bins;
}

// One period of the noise at the given RMS level.
std::vector<double> multisine(std::span<const int> bins, int n, double rmsDb) {
  std::mt19937_64 random(20240517);  // fixed: the same measurement every time
  std::uniform_real_distribution<double> phase(0.0, 2.0 * std::numbers::pi);
  std::vector<std::complex<double>> spectrum(n / 2 + 1);
  for (const int k : bins) spectrum[k] = std::polar(1.0, phase(random));
  std::vector<double> x = inverseTransform(spectrum, n);
  double power = 0.0;
  for (const double v : x) power += v * v;
  const double scale = std::pow(10.0, rmsDb / 20.0) / std::sqrt(power / n);
  for (double& v : x) v *= scale;
  return x;
}

}  // namespace

std::vector<double> excitedFrequencies(double rate, std::span<const double> wanted) {
  const int n = periodFor(rate);
  std::vector<double> f;
  for (const int k : binsFor(wanted, rate, n)) f.push_back(k * rate / n);
  return f;
}

MeasuredResponse measureSmallSignal(const BlockProcessor& process, double rate,
                                    std::span<const double> wanted, int blockFrames) {
  const int n = periodFor(rate);
  const std::vector<int> bins = binsFor(wanted, rate, n);
  const std::vector<double> x = multisine(bins, n, kSmallSignalRmsDb);

  std::vector<double> y(n);
  for (int period = 0; period < 2; ++period) {
    for (int start = 0; start < n; start += blockFrames) {
      const int frames = std::min(blockFrames, n - start);
      process(x.data() + start, y.data() + start, frames);
    }
  }
  MeasuredResponse response;
  response.gainDb = transferDb(x, y, bins);
  for (const int k : bins) response.frequency.push_back(k * rate / n);
  return response;
}

}  // namespace tarnwell::plot
