#include "plot/shaper_curves.h"

#include <memory>
#include <new>

#include "amp/oversampling.h"
#include "dsp/clipper.h"

namespace tarnwell::plot {

int oversamplingFactor(double rate) {
  return static_cast<VstInt32>(rate) == kSevenfoldRate ? kOversampling48000.factor
                                                       : kOversamplingOther.factor;
}

ShaperCurves shaperCurves(double rate, double limit, int steps) {
  const auto first = std::make_unique<Clipper>();
  const auto second = std::make_unique<Clipper>();
  if (!buildFirstStageCurve(*first, oversamplingFactor(rate)) || !buildSecondStageCurve(*second)) {
    throw std::bad_alloc();
  }
  ShaperCurves curves;
  for (int i = 0; i <= steps; ++i) {
    const double u = limit * (2.0 * i - steps) / steps;
    curves.input.push_back(u);
    curves.firstStage.push_back(clipLookup(*first, u));
    curves.secondStage.push_back(clipLookup(*second, u));
  }
  return curves;
}

}  // namespace tarnwell::plot
