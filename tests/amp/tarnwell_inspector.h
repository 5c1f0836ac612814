// A read-only view of a Tarnwell's private state for the white-box tests (the class names it as
// a friend). The instance is made in-process, with the amp library linked into the test.
#pragma once

#include "amp/tarnwell.h"

class TarnwellInspector {
 public:
  explicit TarnwellInspector(const Tarnwell& amp) : amp_(amp) {}

  VstInt32 osFactor() const { return amp_.osFactor; }
  double osFactorD() const { return amp_.osFactorD; }
  const double* osCoefA() const { return amp_.osCoefA; }
  const double* osBuffer() const { return amp_.osBuffer; }
  VstInt32 intSampleRate() const { return amp_.intSampleRate; }
  double curSampleRate() const { return amp_.curSampleRate; }
  double appliedTrim() const { return amp_.appliedTrim; }
  float lastTreble() const { return amp_.lastTreble; }
  float lastBass() const { return amp_.lastBass; }
  double lastVolume() const { return amp_.lastVolume; }
  const IIRFilter* first(int k) const { return amp_.firstFilters ? amp_.firstFilters[k] : nullptr; }
  const IIRFilter* eq(int k) const { return amp_.eqFilters ? amp_.eqFilters[k] : nullptr; }
  const IIRFilter* master() const { return amp_.masterFilters ? amp_.masterFilters[0] : nullptr; }
  const IIRFilter* outHighPass() const { return amp_.outHighPass; }
  const double* osUpState() const { return amp_.osUpState; }

 private:
  const Tarnwell& amp_;
};
