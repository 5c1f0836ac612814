// The plug-in as a host sees it: tarnwell.so loaded once with dlopen for the whole test program,
// an instance made through an entry point, every request sent through its AEffect record.
#pragma once

#include <dlfcn.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <random>
#include <string>
#include <vector>

#include "hostif/orv_typebase.h"
#include "hostif/orv_typeif.h"

using EntryProc = Orv_TypeIF* (*)(audioMasterCallback);

// The named entry point of tarnwell.so; aborts the test program if it cannot be found.
inline EntryProc entryPoint(const char* name = "getinterface") {
  static void* const library = dlopen(TARNWELL_PLUGIN_PATH, RTLD_NOW | RTLD_LOCAL);
  void* entry = library != nullptr ? dlsym(library, name) : nullptr;
  if (entry == nullptr) {
    std::fprintf(stderr, "tarnwell.so, %s: %s\n", name, dlerror());
    std::abort();
  }
  return reinterpret_cast<EntryProc>(entry);
}

class LoadedPlugin {
 public:
  explicit LoadedPlugin(EntryProc entry = entryPoint()) {
    // A host that answers only audioMasterVersion.
    Orv_TypeIF* handle = entry([](AEffect*, VstInt32 op, VstInt32, VstIntPtr, void*, float) {
      return VstIntPtr{op == audioMasterVersion ? 2400 : 0};
    });
    effect_ = handle != nullptr ? handle->aeffect : nullptr;
    delete handle;  // the handle owns nothing
    if (effect_ != nullptr) dispatch(effOpen);
  }
  ~LoadedPlugin() {
    if (effect_ != nullptr) dispatch(effClose);
  }
  LoadedPlugin(const LoadedPlugin&) = delete;
  LoadedPlugin& operator=(const LoadedPlugin&) = delete;

  AEffect* effect() const { return effect_; }
  Orv_TypeBase* module() const { return static_cast<Orv_TypeBase*>(effect_->object); }

  VstIntPtr dispatch(VstInt32 opcode, VstInt32 index = 0, VstIntPtr value = 0, void* ptr = nullptr,
                     float opt = 0.0f) {
    return effect_->dispatcher(effect_, opcode, index, value, ptr, opt);
  }
  // A text request into a 64-character buffer filled with 'x': what was written, up to its end.
  std::string text(VstInt32 opcode, VstInt32 index = 0, VstIntPtr* result = nullptr) {
    char buffer[kVstMaxProductStrLen + 1] = {};
    std::memset(buffer, 'x', kVstMaxProductStrLen);
    const VstIntPtr r = dispatch(opcode, index, 0, buffer);
    if (result != nullptr) *result = r;
    return buffer;
  }
  void setSampleRate(float rate) { dispatch(effSetSampleRate, 0, 0, nullptr, rate); }
  void setProgram(VstInt32 program) { dispatch(effSetProgram, 0, program); }
  void setParameter(VstInt32 index, float value) { effect_->setParameter(effect_, index, value); }
  float getParameter(VstInt32 index) { return effect_->getParameter(effect_, index); }

  // One block; `in` may equal `out`.
  void process(double* in, double* out, VstInt32 frames) {
    effect_->processDoubleReplacing(effect_, &in, &out, frames);
  }

 private:
  AEffect* effect_ = nullptr;
};

// A bass-like test signal: two sines and some noise, at the given peak level.
inline std::vector<double> testSignal(int frames, double rate, double level, unsigned seed = 1) {
  std::mt19937 random(seed);
  std::uniform_real_distribution<double> noise(-0.1, 0.1);
  std::vector<double> signal(frames);
  for (int i = 0; i < frames; ++i) {
    const double phase = 6.283185307179586 * i / rate;
    signal[i] = level * (0.6 * std::sin(55 * phase) + 0.3 * std::sin(220 * phase) + noise(random));
  }
  return signal;
}
