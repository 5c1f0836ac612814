#include "loaded_plugin.h"

#include <dlfcn.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <random>

namespace amp_test {

std::atomic<long> hostRequests{0};

namespace {

void* library() {
  static void* handle = [] {
    void* h = dlopen(TARNWELL_PLUGIN_PATH, RTLD_NOW | RTLD_LOCAL);
    if (h == nullptr) {
      std::fprintf(stderr, "cannot load %s: %s\n", TARNWELL_PLUGIN_PATH, dlerror());
      std::abort();
    }
    return h;
  }();
  return handle;
}

}  // namespace

EntryProc entryPoint(const char* name) {
  auto* entry = reinterpret_cast<EntryProc>(dlsym(library(), name));
  if (entry == nullptr) {
    std::fprintf(stderr, "tarnwell.so has no entry point %s\n", name);
    std::abort();
  }
  return entry;
}

VstIntPtr testHost(AEffect*, VstInt32 opcode, VstInt32, VstIntPtr, void*, float) {
  hostRequests.fetch_add(1, std::memory_order_relaxed);
  return opcode == audioMasterVersion ? 2400 : 0;
}

LoadedPlugin::LoadedPlugin(EntryProc entry) {
  Orv_TypeIF* handle = entry(testHost);
  if (handle == nullptr) return;
  effect_ = handle->aeffect;
  delete handle;  // the handle owns nothing
  if (effect_ != nullptr) dispatch(effOpen);
}

LoadedPlugin::~LoadedPlugin() {
  if (effect_ != nullptr) dispatch(effClose);
}

VstIntPtr LoadedPlugin::dispatch(VstInt32 opcode, VstInt32 index, VstIntPtr value, void* ptr,
                                 float opt) {
  return effect_->dispatcher(effect_, opcode, index, value, ptr, opt);
}

void LoadedPlugin::process(double* in, double* out, VstInt32 frames) {
  double* inputs[1] = {in};
  double* outputs[1] = {out};
  effect_->processDoubleReplacing(effect_, inputs, outputs, frames);
}

std::vector<double> LoadedPlugin::render(const std::vector<double>& input, int block) {
  std::vector<double> in(input);
  std::vector<double> out(input.size());
  for (std::size_t start = 0; start < in.size(); start += block) {
    const int frames = static_cast<int>(std::min<std::size_t>(block, in.size() - start));
    process(in.data() + start, out.data() + start, frames);
  }
  return out;
}

std::vector<double> testSignal(int frames, double rate, double level, unsigned seed) {
  std::mt19937 random(seed);
  std::uniform_real_distribution<double> noise(-1.0, 1.0);
  std::vector<double> signal(frames);
  constexpr double kTwoPi = 6.283185307179586;
  for (int i = 0; i < frames; ++i) {
    const double t = i / rate;
    signal[i] = level * (0.6 * std::sin(kTwoPi * 55.0 * t) + 0.3 * std::sin(kTwoPi * 220.0 * t) +
                         0.1 * noise(random));
  }
  return signal;
}

}  // namespace amp_test
