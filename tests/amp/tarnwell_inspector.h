// An in-process Tarnwell for the white-box tests: a read-only view of its private state (the class
// names it as a friend) and a block run straight through processDoubleReplacing.
#pragma once

#include <vector>

#include "amp/tarnwell.h"

class TarnwellInspector {
 public:
  explicit TarnwellInspector(const Tarnwell& amp) : amp_(amp) {}

  VstInt32 osFactor() const { return amp_.osFactor; }
  const double* osBuffer() const { return amp_.osBuffer; }
  double curSampleRate() const { return amp_.curSampleRate; }
  float lastTreble() const { return amp_.lastTreble; }
  float lastBass() const { return amp_.lastBass; }
  const IIRFilter& first(int k) const { return *amp_.firstFilters[k]; }
  const IIRFilter& master() const { return *amp_.masterFilters[0]; }

 private:
  const Tarnwell& amp_;
};

inline std::vector<double> processBlock(Tarnwell& amp, std::vector<double> in) {
  double* io = in.data();
  amp.processDoubleReplacing(&io, &io, static_cast<VstInt32>(in.size()));
  return in;
}
