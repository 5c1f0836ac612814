// The LV2 form's cost per host sample against the double path it wraps, at 48000 Hz with blocks
// of 64 and 256 and steady controls: run() adds the float-to-double and double-to-float copies
// and a look at five control readings per block. Reports ns per host sample.
#include <benchmark/benchmark.h>

#include <cmath>
#include <memory>
#include <vector>

#include "amp/tarnwell.h"
#include "formats/lv2/lv2_amp.h"
#include "hostif/audioeffect.h"

namespace {

constexpr double kRate = 48000.0;

template <typename T>
std::vector<T> bassInput(int frames) {
  std::vector<T> in(frames);
  for (int i = 0; i < frames; ++i) {
    in[i] = static_cast<T>(0.4 * std::sin(0.0072 * i) + 0.1 * std::sin(0.021 * i));
  }
  return in;
}

void perSample(benchmark::State& state, int block) {
  state.counters["per_sample"] =
      benchmark::Counter(static_cast<double>(state.iterations()) * block,
                         benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

void BM_DoublePath(benchmark::State& state) {
  const int block = static_cast<int>(state.range(0));
  std::unique_ptr<AudioEffect> effect = std::make_unique<Tarnwell>(nullptr);
  effect->setSampleRate(static_cast<float>(kRate));
  effect->setBlockSize(block);
  effect->resume();
  std::vector<double> in = bassInput<double>(block), out(block, 0.0);
  double* inputs[1] = {in.data()};
  double* outputs[1] = {out.data()};
  effect->processDoubleReplacing(inputs, outputs, block);  // takes over the first design
  for (auto _ : state) {
    effect->processDoubleReplacing(inputs, outputs, block);
    benchmark::DoNotOptimize(out.data());
    benchmark::ClobberMemory();
  }
  perSample(state, block);
}

void BM_Lv2Run(benchmark::State& state) {
  const int block = static_cast<int>(state.range(0));
  tarnwell::lv2::Lv2Amp amp(kRate, static_cast<std::uint32_t>(block));
  std::vector<float> in = bassInput<float>(block), out(block, 0.0f);
  float controls[tarnwell::kControls.size()];
  for (std::size_t k = 0; k < tarnwell::kControls.size(); ++k) {
    controls[k] = tarnwell::lv2::portRange(tarnwell::kControls[k]).start;
    amp.connect(tarnwell::lv2::controlPort(k), &controls[k]);
  }
  amp.connect(tarnwell::lv2::kAudioIn, in.data());
  amp.connect(tarnwell::lv2::kAudioOut, out.data());
  amp.activate();
  amp.run(static_cast<std::uint32_t>(block));
  for (auto _ : state) {
    amp.run(static_cast<std::uint32_t>(block));
    benchmark::DoNotOptimize(out.data());
    benchmark::ClobberMemory();
  }
  perSample(state, block);
}

BENCHMARK(BM_DoublePath)->ArgName("block")->Arg(64)->Arg(256)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_Lv2Run)->ArgName("block")->Arg(64)->Arg(256)->Unit(benchmark::kMicrosecond);

}  // namespace

BENCHMARK_MAIN();
