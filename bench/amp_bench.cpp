// The whole amp per host sample, as a host drives it through the AEffect record: 44100 and
// 48000 Hz, blocks of 32, 256 and 1024, steady parameters or a tone change every block (which
// redesigns and ramps the seven tone-stack bands). Reports ns per host sample and the realtime
// factor (host samples processed per second of CPU over the host rate).
#include <benchmark/benchmark.h>

#include <cmath>
#include <vector>

#include "amp/tarnwell.h"

namespace {

VstIntPtr benchHost(AEffect*, VstInt32 opcode, VstInt32, VstIntPtr, void*, float) {
  return opcode == audioMasterVersion ? 2400 : 0;
}

void BM_Amp(benchmark::State& state) {
  const float rate = static_cast<float>(state.range(0));
  const int block = static_cast<int>(state.range(1));
  const bool toneChanges = state.range(2) != 0;

  AudioEffect* effect = new Tarnwell(benchHost);
  AEffect* record = effect->getAeffect();
  record->dispatcher(record, effOpen, 0, 0, nullptr, 0.0f);
  record->dispatcher(record, effSetSampleRate, 0, 0, nullptr, rate);
  record->dispatcher(record, effSetBlockSize, 0, block, nullptr, 0.0f);
  record->dispatcher(record, effMainsChanged, 0, 1, nullptr, 0.0f);

  std::vector<double> in(block), out(block, 0.0);  // output touched before timing
  for (int i = 0; i < block; ++i) in[i] = 0.7 * std::sin(0.0123 * i) + 0.2 * std::sin(0.317 * i);
  double* inputs[1] = {in.data()};
  double* outputs[1] = {out.data()};
  record->processDoubleReplacing(record, inputs, outputs, block);  // takes over the first design

  float treble = 0.3f;
  for (auto _ : state) {
    if (toneChanges) {
      treble = treble > 0.9f ? 0.1f : treble + 0.01f;
      record->setParameter(record, 3, treble);
    }
    record->processDoubleReplacing(record, inputs, outputs, block);
    benchmark::DoNotOptimize(out.data());
    benchmark::ClobberMemory();
  }

  const double samples = static_cast<double>(state.iterations()) * block;
  // CPU time per host sample (printed in ns) and seconds of audio per second of CPU.
  state.counters["per_sample"] =
      benchmark::Counter(samples, benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
  state.counters["realtime_factor"] =
      benchmark::Counter(samples / rate, benchmark::Counter::kIsRate);
  state.SetItemsProcessed(static_cast<int64_t>(samples));

  record->dispatcher(record, effClose, 0, 0, nullptr, 0.0f);
}

BENCHMARK(BM_Amp)
    ->ArgNames({"rate", "block", "tone_change"})
    ->ArgsProduct({{44100, 48000}, {32, 256, 1024}, {0, 1}})
    ->Unit(benchmark::kMicrosecond);

}  // namespace

BENCHMARK_MAIN();
