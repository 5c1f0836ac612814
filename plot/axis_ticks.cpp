#include "plot/axis_ticks.h"

#include <fmt/format.h>

#include <cmath>

namespace tarnwell::plot {
namespace {

// Tolerance for a tick that lands on the range's end through rounding.
constexpr double kSlack = 1e-9;

std::string frequencyLabel(double hz) {
  if (hz >= 1000.0) return fmt::format("{:g}k", hz / 1000.0);
  return fmt::format("{:g}", hz);
}

}  // namespace

double niceStep(double span, int target) {
  const double raw = span / target;
  const double power = std::pow(10.0, std::floor(std::log10(raw)));
  for (const double m : {1.0, 2.0, 5.0}) {
    if (m * power >= raw) return m * power;
  }
  return 10.0 * power;
}

std::vector<Tick> linearTicks(double min, double max, int target) {
  const double step = niceStep(max - min, target);
  const int decimals = std::max(0, -static_cast<int>(std::floor(std::log10(step) + kSlack)));
  std::vector<Tick> ticks;
  for (double i = std::ceil(min / step - kSlack); i * step <= max + step * kSlack; i += 1.0) {
    const double v = i * step == 0.0 ? 0.0 : i * step;  // no "-0"
    ticks.push_back({v, fmt::format("{:.{}f}", v, decimals)});
  }
  return ticks;
}

std::vector<Tick> logTicks(double min, double max) {
  std::vector<Tick> ticks;
  for (double decade = std::pow(10.0, std::floor(std::log10(min))); decade <= max; decade *= 10.0) {
    for (const double m : {1.0, 2.0, 5.0}) {
      const double v = m * decade;
      if (v >= min * (1.0 - kSlack) && v <= max * (1.0 + kSlack))
        ticks.push_back({v, frequencyLabel(v)});
    }
  }
  return ticks;
}

std::vector<double> logMinorTicks(double min, double max) {
  std::vector<double> ticks;
  for (double decade = std::pow(10.0, std::floor(std::log10(min))); decade <= max; decade *= 10.0) {
    for (int m = 1; m <= 9; ++m) {
      const double v = m * decade;
      if (v >= min * (1.0 - kSlack) && v <= max * (1.0 + kSlack)) ticks.push_back(v);
    }
  }
  return ticks;
}

}  // namespace tarnwell::plot
