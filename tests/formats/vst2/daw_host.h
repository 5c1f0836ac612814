// Both forms of the plug-in as a DAW holds them: the standard form (tarnwell-vst2.so) through
// VSTPluginMain or main, and tarnwell.so through getinterface. Each binary is loaded once with
// dlopen; each instance gets a host that answers only its version and logs every request it is
// asked, so two instances can be compared request for request.
#pragma once

#include <dlfcn.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <random>
#include <vector>

#include "hostif/orv_typeif.h"

struct HostRequest {
  VstInt32 opcode;
  VstInt32 index;
  VstIntPtr value;
  float opt;
  bool operator==(const HostRequest&) const = default;
};

inline std::vector<HostRequest>& unclaimedRequests() {
  static std::vector<HostRequest> requests;
  return requests;
}

// The host's callback: a request of an instance goes to the log its `user` field points at;
// those made before the record is handed over (the version request) wait in the unclaimed log.
inline VstIntPtr loggingHost(AEffect* effect, VstInt32 opcode, VstInt32 index, VstIntPtr value,
                             void*, float opt) {
  auto* log = effect != nullptr && effect->user != nullptr
                  ? static_cast<std::vector<HostRequest>*>(effect->user)
                  : &unclaimedRequests();
  log->push_back({opcode, index, value, opt});
  return opcode == audioMasterVersion ? 2400 : 0;
}

inline void* symbolOf(const char* path, const char* name) {
  void* library = dlopen(path, RTLD_NOW | RTLD_LOCAL);  // loaded once, counted by the loader
  void* symbol = library != nullptr ? dlsym(library, name) : nullptr;
  if (symbol == nullptr) {
    std::fprintf(stderr, "%s, %s: %s\n", path, name, dlerror());
    std::abort();
  }
  return symbol;
}

using StandardEntry = AEffect* (*)(audioMasterCallback);
using OriginalEntry = Orv_TypeIF* (*)(audioMasterCallback);

inline StandardEntry standardEntry(const char* name = "VSTPluginMain") {
  return reinterpret_cast<StandardEntry>(symbolOf(TARNWELL_VST2_PATH, name));
}

inline AEffect* originalEffect(audioMasterCallback host) {
  auto entry = reinterpret_cast<OriginalEntry>(symbolOf(TARNWELL_PLUGIN_PATH, "getinterface"));
  Orv_TypeIF* handle = entry(host);
  AEffect* effect = handle != nullptr ? handle->aeffect : nullptr;
  delete handle;  // the handle owns nothing
  return effect;
}

// One opened instance; closed through its record at the end.
class DawInstance {
 public:
  // The standard form through the named entry.
  explicit DawInstance(const char* entryName) { adopt(standardEntry(entryName)(loggingHost)); }
  // tarnwell.so.
  DawInstance() { adopt(originalEffect(loggingHost)); }
  ~DawInstance() {
    if (effect_ != nullptr) dispatch(effClose);
  }
  DawInstance(const DawInstance&) = delete;
  DawInstance& operator=(const DawInstance&) = delete;

  AEffect* effect() const { return effect_; }
  // Every request this instance made of its host, from the version request on.
  const std::vector<HostRequest>& hostRequests() const { return requests_; }

  VstIntPtr dispatch(VstInt32 opcode, VstInt32 index = 0, VstIntPtr value = 0, void* ptr = nullptr,
                     float opt = 0.0f) {
    return effect_->dispatcher(effect_, opcode, index, value, ptr, opt);
  }
  void setParameter(VstInt32 index, float value) { effect_->setParameter(effect_, index, value); }
  float getParameter(VstInt32 index) { return effect_->getParameter(effect_, index); }

  // Set-up as a DAW does it before playing: rate, block size, processing switched on.
  void prepare(float rate, VstInt32 blockSize) {
    dispatch(effSetSampleRate, 0, 0, nullptr, rate);
    dispatch(effSetBlockSize, 0, blockSize);
    dispatch(effMainsChanged, 0, 1);
  }
  // One block each; `in` may equal `out`.
  void processFloat(float* in, float* out, VstInt32 frames) {
    effect_->processReplacing(effect_, &in, &out, frames);
  }
  void processDouble(double* in, double* out, VstInt32 frames) {
    effect_->processDoubleReplacing(effect_, &in, &out, frames);
  }

 private:
  void adopt(AEffect* effect) {
    effect_ = effect;
    requests_.swap(unclaimedRequests());
    unclaimedRequests().clear();
    if (effect_ != nullptr) {
      effect_->user = &requests_;
      dispatch(effOpen);
    }
  }

  AEffect* effect_ = nullptr;
  std::vector<HostRequest> requests_;
};

// A bass-like test signal in float: two sines and some noise at the given peak level.
inline std::vector<float> bassSignal(int frames, double rate, double level, unsigned seed = 1) {
  std::mt19937 random(seed);
  std::uniform_real_distribution<double> noise(-0.1, 0.1);
  std::vector<float> signal(frames);
  for (int i = 0; i < frames; ++i) {
    const double phase = 6.283185307179586 * i / rate;
    signal[i] = static_cast<float>(
        level * (0.6 * std::sin(41.2 * phase) + 0.3 * std::sin(164.8 * phase) + noise(random)));
  }
  return signal;
}
