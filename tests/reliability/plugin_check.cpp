// A plain host check of tarnwell.so for the 64- and the 32-bit target (no test framework there):
// its entry points, identity and a parameter round trip, then the bits of two output blocks at
// three rates, for comparing two builds. Exit status 0 when all passes; each failure is named.
//
//   plugin_check <tarnwell.so>        checks, then prints "sample <rate>/<block> <index> <hex>"
//   plugin_check --compare <a> <b>    compares two such printouts, sample by sample
#include <dlfcn.h>

#include <cinttypes>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <utility>
#include <vector>

#include "tests/reliability/plugin_host.h"

namespace {

int failures = 0;

void check(bool ok, const char* what) {
  if (!ok) std::fprintf(stderr, "plugin_check: FAILED: %s\n", what);
  failures += !ok;
}

int runChecks(const char* library) {
  void* handle = dlopen(library, RTLD_NOW | RTLD_LOCAL);
  const auto entry =
      handle ? reinterpret_cast<reliability::EntryProc>(dlsym(handle, "getinterface")) : nullptr;
  if (entry == nullptr || dlsym(handle, "OrvTypeIF") == nullptr) {
    std::fprintf(stderr, "plugin_check: no entry points in %s: %s\n", library, dlerror());
    return 1;
  }
  for (const float rate : {44100.0f, 48000.0f, 96000.0f}) {
    reliability::PluginInstance plugin(entry);
    const AEffect* e = plugin.effect();
    check(e != nullptr, "the entry point creates an instance");
    if (e == nullptr) break;
    char name[kVstMaxEffectNameLen + 1] = {};
    plugin.dispatch(effGetEffectName, 0, 0, name);
    plugin.setParameter(2, 0.25f);
    const std::pair<bool, const char*> checks[] = {
        {e->magic == kEffectMagic, "magic"},
        {e->uniqueID == 0x42313030, "unique ID"},
        {e->numInputs == 1 && e->numOutputs == 1, "one input, one output"},
        {e->numParams == 6 && e->numPrograms == 16, "6 parameters, 16 programs"},
        {(e->flags & effFlagsCanDoubleReplacing) != 0, "double-precision processing"},
        {std::strcmp(name, "NEW Tarnwell") == 0, "name"},
        {plugin.getParameter(2) == 0.25f, "VOLUME 0.25 reads back exactly"}};
    for (const auto& [ok, what] : checks) check(ok, what);
    plugin.setSampleRate(rate);
    plugin.setAudible();
    reliability::NoiseSource noise(2024);
    double in[512], out[512];
    for (int block = 0; block < 2; ++block) {
      noise.fill(in, 512);
      plugin.process(in, out, 512);
      for (int i = 0; i < 512; ++i) {
        std::uint64_t bits;
        std::memcpy(&bits, &out[i], sizeof bits);
        std::printf("sample %d/%d %d %016" PRIx64 "\n", static_cast<int>(rate), block, i, bits);
      }
    }
  }
  dlclose(handle);
  return failures == 0 ? 0 : 1;
}

std::vector<double> readSamples(const char* path) {
  std::vector<double> samples;
  if (FILE* file = std::fopen(path, "r")) {
    for (std::uint64_t bits; std::fscanf(file, " sample %*s %*d %" SCNx64, &bits) == 1;) {
      samples.push_back(0.0);
      std::memcpy(&samples.back(), &bits, sizeof bits);
    }
    std::fclose(file);
  }
  return samples;
}

int compare(const char* pathA, const char* pathB) {
  const auto a = readSamples(pathA), b = readSamples(pathB);
  if (a.empty() || a.size() != b.size()) {
    std::fprintf(stderr, "plugin_check: %s has %zu samples, %s has %zu\n", pathA, a.size(), pathB,
                 b.size());
    return 1;
  }
  int differing = 0;
  double worst = 0.0;
  for (std::size_t i = 0; i < a.size(); ++i) {
    differing += std::memcmp(&a[i], &b[i], sizeof(double)) != 0;
    worst = std::fmax(worst, std::fabs(a[i] - b[i]));
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
