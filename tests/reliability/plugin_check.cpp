// A plain host check of the shared library, built for both the 64-bit and the 32-bit target (where
// no test framework is available): loads tarnwell.so, checks the identity it reports and one
// parameter round trip, and prints the bit patterns of a few blocks of output for comparison.
//
//   plugin_check <tarnwell.so>        checks, then prints "<block> <index> <hex bits>" lines
//   plugin_check --compare <a> <b>    compares two such printouts, sample by sample
//
// Exit status 0 when every check (or the comparison) passes, 1 otherwise; each failure is named.
#include <dlfcn.h>

#include <cinttypes>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <map>
#include <string>
#include <vector>

#include "tests/reliability/plugin_host.h"
#include "tests/reliability/test_signal.h"

namespace {

using reliability::PluginInstance;

constexpr VstInt32 kUniqueId = 0x42313030;
constexpr VstInt32 kVendorVersion = 1000;
constexpr int kFrames = 512;
constexpr float kRates[] = {44100.0f, 48000.0f, 96000.0f};

int failures = 0;

void check(bool ok, const char* what) {
  if (ok) return;
  std::fprintf(stderr, "plugin_check: FAILED: %s\n", what);
  ++failures;
}

void checkIdentity(PluginInstance& plugin) {
  const AEffect& e = *plugin.effect();
  check(e.magic == kEffectMagic, "magic is 'VstP'");
  check(e.uniqueID == kUniqueId, "unique ID reads \"001B\"");
  check(e.numInputs == 1 && e.numOutputs == 1, "one input, one output");
  check(e.numParams == 6 && e.numPrograms == 16, "six parameters, sixteen programs");
  check((e.flags & effFlagsCanDoubleReplacing) != 0, "announces double-precision processing");
  char name[kVstMaxEffectNameLen + 1] = {};
  check(
      plugin.dispatch(effGetEffectName, 0, 0, name) == 1 && std::strcmp(name, "NEW Tarnwell") == 0,
      "effect name");
  check(plugin.dispatch(effGetVendorVersion) == kVendorVersion, "vendor version");
  check(plugin.dispatch(effGetPlugCategory) == kPlugCategEffect, "category: effect");
  check(plugin.dispatch(effGetVstVersion) == kVstVersion, "interface version");
}

void checkParameterRoundTrip(PluginInstance& plugin) {
  plugin.setParameter(2, 0.25f);
  check(plugin.getParameter(2) == 0.25f, "VOLUME 0.25 reads back exactly");
  char display[kVstMaxParamStrLen + 1] = {};
  plugin.dispatch(effGetParamDisplay, 2, 0, display);
  std::printf("display 2 %s\n", display);
}

void printBlocks(reliability::EntryProc entry) {
  for (const float rate : kRates) {
    PluginInstance plugin(entry);
    plugin.setSampleRate(rate);
    const float settings[] = {1.0f, 0.6f, 0.7f, 0.4f, 0.8f};
    for (VstInt32 p = 1; p <= 5; ++p) plugin.setParameter(p, settings[p - 1]);
    reliability::NoiseSource noise(2024);
    std::vector<double> in(kFrames), out(kFrames);
    for (int block = 0; block < 2; ++block) {
      reliability::fill(reliability::Signal::kNoise, noise, in.data(), kFrames);
      plugin.process(in.data(), out.data(), kFrames);
      for (int i = 0; i < kFrames; ++i) {
        std::uint64_t bits;
        std::memcpy(&bits, &out[i], sizeof bits);
        std::printf("sample %d/%d %d %016" PRIx64 "\n", static_cast<int>(rate), block, i, bits);
      }
    }
  }
}

int runChecks(const char* library) {
  void* handle = dlopen(library, RTLD_NOW | RTLD_LOCAL);
  if (handle == nullptr) {
    std::fprintf(stderr, "plugin_check: cannot load %s: %s\n", library, dlerror());
    return 1;
  }
  auto entry = reinterpret_cast<reliability::EntryProc>(dlsym(handle, "getinterface"));
  check(entry != nullptr, "exports getinterface");
  check(dlsym(handle, "OrvTypeIF") != nullptr, "exports OrvTypeIF");
  if (entry != nullptr) {
    PluginInstance plugin(entry);
    check(plugin.effect() != nullptr, "entry point creates an instance");
    if (plugin.effect() != nullptr) {
      checkIdentity(plugin);
      checkParameterRoundTrip(plugin);
      std::printf("pointer bits %zu\n", sizeof(void*) * 8);
      plugin.close();
      printBlocks(entry);
    }
  }
  dlclose(handle);
  return failures == 0 ? 0 : 1;
}

// "sample <block> <index> <hex>" lines keyed by "<block> <index>".
std::map<std::string, std::uint64_t> readSamples(const char* path) {
  std::map<std::string, std::uint64_t> samples;
  std::ifstream file(path);
  std::string word, block, index;
  std::uint64_t bits;
  while (file >> word) {
    if (word != "sample") continue;
    file >> block >> index >> std::hex >> bits >> std::dec;
    samples[block + " " + index] = bits;
  }
  return samples;
}

double asDouble(std::uint64_t bits) {
  double d;
  std::memcpy(&d, &bits, sizeof d);
  return d;
}

int compare(const char* pathA, const char* pathB) {
  const auto a = readSamples(pathA);
  const auto b = readSamples(pathB);
  if (a.empty() || a.size() != b.size()) {
    std::fprintf(stderr, "plugin_check: %s has %zu samples, %s has %zu\n", pathA, a.size(), pathB,
                 b.size());
    return 1;
  }
  int differing = 0;
  double worst = 0.0;
  for (const auto& [key, bits] : a) {
    const auto other = b.find(key);
    if (other == b.end()) {
      std::fprintf(stderr, "plugin_check: sample %s missing from %s\n", key.c_str(), pathB);
      return 1;
    }
    if (other->second == bits) continue;
    ++differing;
    worst = std::fmax(worst, std::fabs(asDouble(bits) - asDouble(other->second)));
  }
  std::printf("%zu samples compared, %d differ, largest difference %.3g\n", a.size(), differing,
              worst);
  return differing == 0 ? 0 : 1;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc == 2) return runChecks(argv[1]);
  if (argc == 4 && std::strcmp(argv[1], "--compare") == 0) return compare(argv[2], argv[3]);
  std::fprintf(stderr, "usage: plugin_check <tarnwell.so> | plugin_check --compare <a> <b>\n");
  return 2;
}
