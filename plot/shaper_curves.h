// The two waveshaper transfer curves as the amp reads them: the first-stage table built for the
// oversampling factor of a host rate (7 at a rate that truncates to 48000, 8 at any other) and the
// second-stage table, each read with clipLookup (clamped to -1..+1, linear interpolation) at
// inputs from -limit to +limit. Control thread; builds two tables on the heap.
#pragma once

#include <vector>

namespace tarnwell::plot {

// The amp's oversampling factor at a host rate.
int oversamplingFactor(double rate);

struct ShaperCurves {
  std::vector<double> input;
  std::vector<double> firstStage;
  std::vector<double> secondStage;
};

// `steps` + 1 inputs evenly from -limit to +limit. Throws std::bad_alloc when no table fits.
ShaperCurves shaperCurves(double rate, double limit, int steps);

}  // namespace tarnwell::plot
