// Per-sample cost of the filter section and the waveshaper lookup, and the cost of one design.
#include <benchmark/benchmark.h>

#include <memory>
#include <vector>

#include "dsp/clipper.h"
#include "dsp/flush_to_zero.h"
#include "dsp/iirfilter.h"

namespace {

constexpr int kBlock = 1024;
constexpr double kFs = 44100.0;

std::vector<double> testSignal() {
  std::vector<double> x(kBlock);
  double v = 0.1;
  for (double& s : x) {
    v = v * 3.9 * (1.0 - v);  // chaotic, so nothing repeats
    s = 2.4 * v - 1.2;
  }
  return x;
}

void iirProcessingPerSample(benchmark::State& state) {
  filterPrm_tag prm{10, 612.0, 0.0, 0.0, 5.0, 3.0, kFs};
  IIRFilter f(&prm);
  const std::vector<double> x = testSignal();
  std::vector<double> y(kBlock);
  const FlushToZeroGuard ftz;
  for (auto _ : state) {
    for (int i = 0; i < kBlock; ++i) {
      y[i] = x[i];
      f.iirProcessing(&y[i]);
    }
    benchmark::DoNotOptimize(y.data());
    benchmark::ClobberMemory();
  }
  state.SetItemsProcessed(state.iterations() * kBlock);
}
BENCHMARK(iirProcessingPerSample);

void ipIirProcessingPerSample(benchmark::State& state) {
  filterPrm_tag a{10, 612.0, 0.0, 0.0, 5.0, 3.0, kFs};
  filterPrm_tag b{10, 1300.0, 0.0, 0.0, 9.0, -4.0, kFs};
  IIRFilter f(&a);
  const std::vector<double> x = testSignal();
  std::vector<double> y(kBlock);
  const FlushToZeroGuard ftz;
  bool toB = true;
  for (auto _ : state) {
    f.ipFDexcute(toB ? &b : &a, kBlock);  // a tone change every block, as while turning a knob
    toB = !toB;
    for (int i = 0; i < kBlock; ++i) {
      y[i] = x[i];
      f.ipIirProcessing(&y[i]);
    }
    benchmark::DoNotOptimize(y.data());
    benchmark::ClobberMemory();
  }
  state.SetItemsProcessed(state.iterations() * kBlock);
}
BENCHMARK(ipIirProcessingPerSample);

void clipLookupPerSample(benchmark::State& state) {
  const auto table = std::make_unique<Clipper>();
  buildFirstStageCurve(*table, 8.0);
  const std::vector<double> x = testSignal();
  std::vector<double> y(kBlock);
  for (auto _ : state) {
    for (int i = 0; i < kBlock; ++i) y[i] = clipLookup(*table, x[i]);
    benchmark::DoNotOptimize(y.data());
    benchmark::ClobberMemory();
  }
  state.SetItemsProcessed(state.iterations() * kBlock);
}
BENCHMARK(clipLookupPerSample);

void design(benchmark::State& state) {
  filterPrm_tag prm{10, 612.0, 0.0, 0.0, 5.0, 3.0, kFs};
  IIRFilter f(&prm);
  for (auto _ : state) {
    prm.gain = prm.gain > 0.0 ? -3.0 : 3.0;  // both peaking branches
    f.FDexcute(&prm);
    benchmark::DoNotOptimize(f.coef);
  }
  state.SetItemsProcessed(state.iterations());
}
BENCHMARK(design);

void buildCurves(benchmark::State& state) {
  const auto first = std::make_unique<Clipper>();
  const auto second = std::make_unique<Clipper>();
  for (auto _ : state) {
    benchmark::DoNotOptimize(buildFirstStageCurve(*first, 8.0));
    benchmark::DoNotOptimize(buildSecondStageCurve(*second));
  }
}
BENCHMARK(buildCurves)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
