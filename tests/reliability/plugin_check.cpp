// A plain host check of tarnwell.so for every target it is built for (x86-64, 32-bit x86, AArch64;
// no test framework there): its entry points, identity and a parameter round trip, then the bits
// of the output of sessions at four rates and five block sizes, for comparing two builds. Exit
// status 0 when all passes; each failure is named.
//
//   plugin_check <tarnwell.so> [<tarnwell-vst2.so>]
//       checks, then prints "sample <rate>/<block> <index> <hex>"; with the standard form, its
//       float path's samples follow ("sample float-<rate>/<block> ...", widened exactly)
//   plugin_check --compare <a> <b>    compares two such printouts, sample by sample
//
// The arithmetic is IEEE addition and multiplication in a fixed order with nothing fused, so the
// builds agree bit for bit: the comparison allows no difference.
#include <dlfcn.h>

#include <algorithm>
#include <bit>
#include <cinttypes>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <vector>

#include "tests/reliability/plugin_host.h"

namespace {

int failures = 0;

void check(bool ok, const char* what) {
  if (!ok) std::fprintf(stderr, "plugin_check: FAILED: %s\n", what);
  failures += !ok;
}

// Input levels of a block: full-scale noise drives both shapers hard, quiet noise keeps them near
// their centre, silence lets every filter decay (flush-to-zero at work), and noise in the denormal
// range is the one input the processors' flush-to-zero modes read differently.
constexpr double kLevels[] = {1.0, 0x1p-7, 0.0, 0x1p-1030};
constexpr int kSessionFrames = 3000;
constexpr float kRates[] = {44100.0f, 48000.0f, 88200.0f, 96000.0f};
constexpr int kBlocks[] = {1, 7, 64, 256, 1000};

// One instance at `rate` playing blocks of `block` frames; before each block a parameter or
// program change drawn from the seed (the tone stack redesigns and glides, the gains ramp). Double
// samples go through the double path; float samples through the standard form's float path.
template <typename Sample, typename Entry>
void printSession(Entry entry, const char* form, float rate, int block) {
  reliability::PluginInstance plugin(entry);
  plugin.setSampleRate(rate);
  plugin.setAudible();
  reliability::NoiseSource random(2024 + block);
  std::vector<double> noise(block);
  std::vector<Sample> in(block), out(block);
  for (int done = 0; done < kSessionFrames; done += block) {
    random.fill(noise.data(), block);
    const double level = kLevels[random() % 4];
    for (int i = 0; i < block; ++i) in[i] = static_cast<Sample>(noise[i] * level);
    reliability::playBlock(plugin, random, in.data(), out.data(), block);
    for (int i = 0; i < block; ++i) {
      std::printf("sample %s%d/%d %d %016" PRIx64 "\n", form, static_cast<int>(rate), block,
                  done + i, std::bit_cast<std::uint64_t>(static_cast<double>(out[i])));
    }
  }
}

// The named entry point of `library`, or null after saying why.
template <typename Entry>
Entry entryOf(const char* library, const char* name) {
  void* handle = dlopen(library, RTLD_NOW | RTLD_LOCAL);
  const auto entry = handle ? reinterpret_cast<Entry>(dlsym(handle, name)) : nullptr;
  if (entry == nullptr)
    std::fprintf(stderr, "plugin_check: no %s in %s: %s\n", name, library, dlerror());
  return entry;
}

// The standard form (tarnwell-vst2.so): its float path through the same sessions.
int runFloatSessions(const char* library) {
  const auto main = entryOf<reliability::MainProc>(library, "VSTPluginMain");
  if (main == nullptr) return 1;
  for (const float rate : kRates) {
    for (const int block : kBlocks) printSession<float>(main, "float-", rate, block);
  }
  return 0;
}

int runChecks(const char* library) {
  const auto entry = entryOf<reliability::EntryProc>(library, "getinterface");
  if (entry == nullptr || entryOf<reliability::EntryProc>(library, "OrvTypeIF") == nullptr)
    return 1;
  for (const float rate : kRates) {
    reliability::PluginInstance plugin(entry);
    const AEffect* e = plugin.effect();
    char name[kVstMaxEffectNameLen + 1] = {};
    if (e != nullptr) plugin.dispatch(effGetEffectName, 0, 0, name);
    check(e != nullptr && e->magic == kEffectMagic && e->uniqueID == 0x42313030 &&
              e->numInputs == 1 && e->numOutputs == 1 && e->numParams == 6 &&
              e->numPrograms == 16 && (e->flags & effFlagsCanDoubleReplacing) != 0 &&
              std::strcmp(name, "NEW Tarnwell") == 0,
          "identity: magic, ID, one input and output, 6 parameters, 16 programs, double, name");
    if (e == nullptr) break;
    plugin.setParameter(2, 0.25f);
    check(plugin.getParameter(2) == 0.25f, "VOLUME 0.25 reads back exactly");
    for (const int block : kBlocks) printSession<double>(entry, "", rate, block);
  }
  return failures == 0 ? 0 : 1;
}

std::vector<double> readSamples(const char* path) {
  std::vector<double> samples;
  if (FILE* file = std::fopen(path, "r")) {
    for (std::uint64_t bits; std::fscanf(file, " sample %*s %*d %" SCNx64, &bits) == 1;)
      samples.push_back(std::bit_cast<double>(bits));
    std::fclose(file);
  }
  return samples;
}

int compare(const char* pathA, const char* pathB) {
  const auto a = readSamples(pathA), b = readSamples(pathB);
  int differing = 0;
  double worst = 0.0;
  for (std::size_t i = 0; i < std::min(a.size(), b.size()); ++i) {
    differing += std::bit_cast<std::uint64_t>(a[i]) != std::bit_cast<std::uint64_t>(b[i]);
    worst = std::fmax(worst, std::fabs(a[i] - b[i]));
  }
  std::printf("%zu and %zu samples, %d differ, largest difference %.3g\n", a.size(), b.size(),
              differing, worst);
  return differing == 0 && !a.empty() && a.size() == b.size() ? 0 : 1;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc == 2 || argc == 3) {
    const int status = runChecks(argv[1]);
    return argc == 3 ? status | runFloatSessions(argv[2]) : status;
  }
  if (argc == 4 && std::strcmp(argv[1], "--compare") == 0) return compare(argv[2], argv[3]);
  std::fprintf(
      stderr,
      "usage: plugin_check <tarnwell.so> [<tarnwell-vst2.so>] | plugin_check --compare <a> <b>\n");
  return 2;
}
