// A minimal host that drives instances through their boundary only, as a strict validator sees
// them, and plays deterministic sessions: noise bit-identical on every target (a generator the
// language fixes, exact scaling) and requests drawn from a seeded sequence, so a session replayed
// on another instance, thread or build hears the same. One thread at a time per instance.
#pragma once

#include <random>

#include "hostif/orv_typeif.h"
#include "hostif/vst_abi.h"

namespace reliability {

using EntryProc = Orv_TypeIF* (*)(audioMasterCallback);
using MainProc = AEffect* (*)(audioMasterCallback);  // the standard form's VSTPluginMain

// Opened on construction, closed through effClose on destruction; effect() is null if the entry
// point (of the plug-in linked in, or of one loaded) made no instance. The host answers only its
// version unless another is given.
class PluginInstance {
 public:
  explicit PluginInstance(EntryProc entry, audioMasterCallback host = hostCallback) {
    if (Orv_TypeIF* handle = entry(host)) {
      effect_ = handle->aeffect;
      delete handle;  // owns nothing; a host may drop it at once
    }
    if (effect_ != nullptr) dispatch(effOpen);
  }
  explicit PluginInstance(MainProc main, audioMasterCallback host = hostCallback)
      : effect_(main(host)) {
    if (effect_ != nullptr) dispatch(effOpen);
  }
  ~PluginInstance() {
    if (effect_ != nullptr) dispatch(effClose);
  }
  PluginInstance(const PluginInstance&) = delete;
  PluginInstance& operator=(const PluginInstance&) = delete;

  AEffect* effect() const { return effect_; }
  VstIntPtr dispatch(VstInt32 op, VstInt32 index = 0, VstIntPtr value = 0, void* ptr = nullptr,
                     float opt = 0.0f) {
    return effect_->dispatcher(effect_, op, index, value, ptr, opt);
  }
  void setSampleRate(float rate) { dispatch(effSetSampleRate, 0, 0, nullptr, rate); }
  void setProgram(VstIntPtr program) { dispatch(effSetProgram, 0, program); }
  void setParameter(VstInt32 index, float value) { effect_->setParameter(effect_, index, value); }
  float getParameter(VstInt32 index) { return effect_->getParameter(effect_, index); }
  void setAudible() {  // every stage in play: DEEP on, TREBLE above the trim step
    const float values[] = {1.0f, 0.6f, 0.7f, 0.4f, 0.8f};
    for (VstInt32 p = 1; p <= 5; ++p) setParameter(p, values[p - 1]);
  }
  void process(double* in, double* out, VstInt32 frames) {  // `in` may equal `out`
    effect_->processDoubleReplacing(effect_, &in, &out, frames);
  }
  void process(float* in, float* out, VstInt32 frames) {  // single precision
    effect_->processReplacing(effect_, &in, &out, frames);
  }

 private:
  static VstIntPtr hostCallback(AEffect*, VstInt32 opcode, VstInt32, VstIntPtr, void*, float) {
    return opcode == audioMasterVersion ? 2400 : 0;
  }
  AEffect* effect_ = nullptr;
};

// Noise uniform in [-1, 1): 53 random bits, scaled exactly.
struct NoiseSource : std::mt19937_64 {
  using std::mt19937_64::mt19937_64;
  double nextSample() { return static_cast<double>((*this)() >> 11) * 0x1.0p-52 - 1.0; }
  void fill(double* out, int n) {
    for (int i = 0; i < n; ++i) out[i] = nextSample();
  }
};

// One block of a session: a value in 0..1 stored to one of the five parameters (DEEP now and then
// exactly 0 or 1), one time in four a program change, then the samples.
template <typename Sample>
void playBlock(PluginInstance& plugin, NoiseSource& random, Sample* in, Sample* out, int frames) {
  const auto index = static_cast<VstInt32>(1 + random() % 5);
  const double u = 0.5 * (random.nextSample() + 1.0);
  plugin.setParameter(index, static_cast<float>(index == 1 && u < 0.5 ? u < 0.25 : u));
  if (random() % 4 == 0) plugin.setProgram(static_cast<VstIntPtr>(random() % 16));
  plugin.process(in, out, frames);
}

}  // namespace reliability
