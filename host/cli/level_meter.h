// Peak and RMS of a stream of samples, and how many exceed full scale (those an integer encoding
// clips). Levels read in dB relative to full scale (+-1.0); silence reads as -inf.
#pragma once

#include <cmath>
#include <cstdint>
#include <limits>

namespace tarnwell::cli {

class LevelMeter {
 public:
  void add(const double* samples, std::int64_t count) noexcept {
    double peak = peak_;
    double sum = sumSquares_;
    std::int64_t over = overFullScale_;
    for (std::int64_t i = 0; i < count; ++i) {
      const double magnitude = std::fabs(samples[i]);
      peak = magnitude > peak ? magnitude : peak;
      sum += samples[i] * samples[i];
      over += magnitude > 1.0 ? 1 : 0;
    }
    peak_ = peak;
    sumSquares_ = sum;
    overFullScale_ = over;
    count_ += count;
  }

  double peak() const noexcept { return peak_; }
  double rms() const noexcept { return count_ > 0 ? std::sqrt(sumSquares_ / count_) : 0.0; }
  double peakDb() const noexcept { return toDb(peak()); }
  double rmsDb() const noexcept { return toDb(rms()); }
  std::int64_t overFullScale() const noexcept { return overFullScale_; }
  std::int64_t count() const noexcept { return count_; }

 private:
  static double toDb(double level) noexcept {
    return level > 0.0 ? 20.0 * std::log10(level) : -std::numeric_limits<double>::infinity();
  }

  double peak_ = 0.0;
  double sumSquares_ = 0.0;
  std::int64_t overFullScale_ = 0;
  std::int64_t count_ = 0;
};

}  // namespace tarnwell::cli
