// The standard form's single-precision process against the double path it wraps, per host sample,
// at 48000 Hz in blocks of 64 and 256, through the AEffect record as a host drives it. The float
// path (widen, the same chain, round back) should cost at most 5% more than the double path.
#include <benchmark/benchmark.h>

#include <cmath>
#include <vector>

#include "formats/vst2/tarnwell_vst2.h"

namespace {

VstIntPtr benchHost(AEffect*, VstInt32 opcode, VstInt32, VstIntPtr, void*, float) {
  return opcode == audioMasterVersion ? 2400 : 0;
}

template <class Sample>
void process(AEffect* record, Sample* in, Sample* out, int frames) {
  if constexpr (sizeof(Sample) == sizeof(float)) {
    record->processReplacing(record, &in, &out, frames);
  } else {
    record->processDoubleReplacing(record, &in, &out, frames);
  }
}

template <class Sample>
void BM_Vst2(benchmark::State& state) {
  constexpr float kRate = 48000.0f;
  const int block = static_cast<int>(state.range(0));

  auto* effect = new TarnwellVst2(benchHost);
  AEffect* record = effect->getAeffect();
  record->dispatcher(record, effOpen, 0, 0, nullptr, 0.0f);
  record->dispatcher(record, effSetSampleRate, 0, 0, nullptr, kRate);
  record->dispatcher(record, effSetBlockSize, 0, block, nullptr, 0.0f);
  record->dispatcher(record, effMainsChanged, 0, 1, nullptr, 0.0f);

  std::vector<Sample> in(block), out(block, Sample{0});  // output touched before timing
  for (int i = 0; i < block; ++i) {
    in[i] = static_cast<Sample>(0.7 * std::sin(0.0123 * i) + 0.2 * std::sin(0.317 * i));
  }
  process(record, in.data(), out.data(), block);  // takes over the first design

  for (auto _ : state) {
    process(record, in.data(), out.data(), block);
    benchmark::DoNotOptimize(out.data());
    benchmark::ClobberMemory();
  }

  const double samples = static_cast<double>(state.iterations()) * block;
  // CPU time per host sample, printed in ns.
  state.counters["per_sample"] =
      benchmark::Counter(samples, benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
  state.SetItemsProcessed(static_cast<int64_t>(samples));

  record->dispatcher(record, effClose, 0, 0, nullptr, 0.0f);
}

BENCHMARK(BM_Vst2<double>)->Name("double_path")->ArgName("block")->Arg(64)->Arg(256);
BENCHMARK(BM_Vst2<float>)->Name("float_path")->ArgName("block")->Arg(64)->Arg(256);

}  // namespace

BENCHMARK_MAIN();
