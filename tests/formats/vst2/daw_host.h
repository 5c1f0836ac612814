// Both forms of the plug-in as a DAW holds them: the standard form (tarnwell-vst2.so) through
// VSTPluginMain or main, and tarnwell.so through getinterface. Each binary is loaded once with
// dlopen; each instance gets a host that answers only its version and logs every request it is
// asked, so two instances can be compared request for request.
#pragma once

#include <dlfcn.h>

#include <cstdio>
#include <cstdlib>
#include <vector>

#include "tests/reliability/plugin_host.h"

struct HostRequest {
  VstInt32 opcode;
  VstInt32 index;
  VstIntPtr value;
  float opt;
  bool operator==(const HostRequest&) const = default;
};

// Requests made before an instance's record is handed over (the version request), and those of
// instances closing.
inline std::vector<HostRequest> unclaimedRequests, closingRequests;

// The host's callback: a request of an instance goes to the log its `user` field points at.
inline VstIntPtr loggingHost(AEffect* effect, VstInt32 opcode, VstInt32 index, VstIntPtr value,
                             void*, float opt) {
  auto* log = effect != nullptr && effect->user != nullptr
                  ? static_cast<std::vector<HostRequest>*>(effect->user)
                  : &unclaimedRequests;
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

inline reliability::MainProc standardEntry(const char* name = "VSTPluginMain") {
  return reinterpret_cast<reliability::MainProc>(symbolOf(TARNWELL_VST2_PATH, name));
}

// One opened instance with the log of every request it made of its host.
class DawInstance : public reliability::PluginInstance {
 public:
  // The standard form through the named entry.
  explicit DawInstance(const char* entryName)
      : PluginInstance(standardEntry(entryName), loggingHost) {
    claimRequests();
  }
  // tarnwell.so.
  DawInstance()
      : PluginInstance(reinterpret_cast<reliability::EntryProc>(
                           symbolOf(TARNWELL_PLUGIN_PATH, "getinterface")),
                       loggingHost) {
    claimRequests();
  }
  ~DawInstance() {
    if (effect() != nullptr) effect()->user = &closingRequests;  // the log goes before the record
  }

  const std::vector<HostRequest>& hostRequests() const { return requests_; }

  // Set-up as a DAW does it before playing: rate, block size, processing switched on.
  void prepare(float rate, VstInt32 blockSize) {
    setSampleRate(rate);
    dispatch(effSetBlockSize, 0, blockSize);
    dispatch(effMainsChanged, 0, 1);
  }

 private:
  void claimRequests() {
    requests_.swap(unclaimedRequests);
    unclaimedRequests.clear();
    if (effect() != nullptr) effect()->user = &requests_;
  }
  std::vector<HostRequest> requests_;
};

// Noise in float at the given peak level, the same on every run.
inline std::vector<float> noise(int frames, double level) {
  reliability::NoiseSource source(1);
  std::vector<float> signal(frames);
  for (float& x : signal) x = static_cast<float>(level * source.nextSample());
  return signal;
}
