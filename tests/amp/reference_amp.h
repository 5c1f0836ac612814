// A literal, unoptimised transcription of the amplifier's documented arithmetic, written apart
// from the plug-in: its own design tables, its own IIRFilter objects and waveshaper tables, the
// per-sample chain step by step through osBuffer[0], and the up-filter run with x = 0 on the
// zero-stuffed sub-samples exactly as written. The plug-in must match it bit for bit.
//
// Includes the plug-in's documented choice for a 0-sample block (ramps of length 1).
#pragma once

#include <memory>
#include <vector>

#include "dsp/clipper.h"
#include "dsp/iirfilter.h"

namespace amp_test {

class ReferenceAmp {
 public:
  explicit ReferenceAmp(double rate);

  // Parameter stores as the plug-in keeps them: float fields, VOLUME and MASTER widened.
  void setDeep(float v) { deep_ = v; }
  void setVolume(float v) { volume_ = v; }
  void setTreble(float v) { treble_ = v; }
  void setBass(float v) { bass_ = v; }
  void setMaster(float v) { master_ = v; }

  void process(const double* in, double* out, int n);

 private:
  void redesign(int n);
  double up(double x);
  double down(double u);

  double rate_;
  int factor_;
  double a_[5], b_[6];
  double upState_[6] = {}, downState_[6] = {};
  std::vector<double> osBuffer_;
  std::vector<std::unique_ptr<IIRFilter>> first_, eq_, final_;
  std::unique_ptr<IIRFilter> master_filter_, outHighPass_;
  std::unique_ptr<Clipper> clip0_, clip1_;

  float deep_ = 0.0f, treble_ = 0.5f, bass_ = 0.5f;
  double volume_ = 0.5, master_ = 0.5;
  float lastDeep_ = 0.0f, lastTreble_ = -1.0f, lastBass_ = -1.0f;
  double lastVolume_ = 0.0, lastMaster_ = 0.0;
  double appliedTrim_;
};

}  // namespace amp_test
