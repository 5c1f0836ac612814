// Where an axis puts its ticks and what it writes at them.
//   linear: a step of 1, 2 or 5 times a power of ten giving about `target` intervals;
//   log (frequency): 1, 2 and 5 times each power of ten, written as 20, 500, 1k, 20k.
// Any thread; pure.
#pragma once

#include <string>
#include <vector>

namespace tarnwell::plot {

struct Tick {
  double value;
  std::string label;
};

std::vector<Tick> linearTicks(double min, double max, int target);
std::vector<Tick> logTicks(double min, double max);
// The log axis' unlabelled grid lines: every integer multiple of each power of ten in range.
std::vector<double> logMinorTicks(double min, double max);

// A step of 1, 2 or 5 times a power of ten near span / target.
double niceStep(double span, int target);

}  // namespace tarnwell::plot
