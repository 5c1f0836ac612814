// Instances running at once on several threads, as in a host with parallel audio threads and
// control threads. Labelled `concurrency`: the tsan preset runs these with ThreadSanitizer.
//
// The waveshaper tables are shared by every instance, and the first-stage curve follows the
// oversampling factor of the most recent new-rate set-up. Tests that compare outputs therefore
// keep every rate in one factor family, or check that a block heard exactly one of the curves.
#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <cmath>
#include <memory>
#include <thread>
#include <vector>

#include "hostif/orv_typeif.h"
#include "tests/reliability/output_bound.h"
#include "tests/reliability/plugin_host.h"
#include "tests/reliability/scenario.h"
#include "tests/reliability/test_signal.h"

namespace reliability {
namespace {

// Host rates whose oversampling factor is 8; 48000 alone has factor 7.
constexpr std::array<float, 5> kFactor8Rates = {22050.0f, 44100.0f, 88200.0f, 96000.0f, 192000.0f};

constexpr int kInstances = 32;
constexpr int kThreads = 2;
constexpr int kBlocks = 12;
constexpr int kRateChanger = 0;
constexpr int kRateChangeEvery = 4;

std::vector<BlockPlan> crowdSchedule(int instance) {
  auto schedule = makeSchedule({{64, 0, 333}, kBlocks, 5, 1000u + instance});
  schedule[0].sampleRate = kFactor8Rates[instance % kFactor8Rates.size()];
  if (instance == kRateChanger) {
    for (int b = kRateChangeEvery; b < kBlocks; b += kRateChangeEvery) {
      schedule[b].sampleRate = (b / kRateChangeEvery) % 2 ? 96000.0f : 44100.0f;
    }
  }
  return schedule;
}

TEST(Crowd, EachInstanceSoundsAsIfAlone) {
  std::vector<std::vector<BlockPlan>> schedules;
  std::vector<std::vector<double>> alone;
  for (int k = 0; k < kInstances; ++k) {
    schedules.push_back(crowdSchedule(k));
    PluginInstance plugin(getinterface);
    alone.push_back(render(plugin, schedules[k], 500u + k));
  }

  std::vector<std::unique_ptr<PluginInstance>> crowd;
  for (int k = 0; k < kInstances; ++k)
    crowd.push_back(std::make_unique<PluginInstance>(getinterface));
  std::vector<std::vector<double>> heard(kInstances);

  // Each thread runs its half of the crowd block by block, interleaved, while the other thread
  // runs the other half; the rate changer re-sets its rate between its own blocks.
  auto runHalf = [&](int first) {
    std::vector<std::vector<double>> inputs;
    for (int k = first; k < kInstances; k += kThreads) {
      const auto& schedule = schedules[k];
      std::vector<double> in(totalFrames(schedule));
      NoiseSource noise(500u + k);
      fill(Signal::kNoise, noise, in.data(), static_cast<int>(in.size()));
      inputs.push_back(std::move(in));
      heard[k].assign(inputs.back().size(), 0.0);
    }
    std::vector<std::size_t> at(inputs.size(), 0);
    for (int b = 0; b < kBlocks; ++b) {
      for (std::size_t j = 0; j < inputs.size(); ++j) {
        const int k = first + static_cast<int>(j) * kThreads;
        const BlockPlan& block = schedules[k][b];
        runBlock(*crowd[k], block, inputs[j].data() + at[j], heard[k].data() + at[j]);
        at[j] += block.frames;
      }
    }
  };
  std::vector<std::thread> threads;
  for (int t = 0; t < kThreads; ++t) threads.emplace_back(runHalf, t);
  for (auto& t : threads) t.join();

  for (int k = 0; k < kInstances; ++k) {
    EXPECT_EQ(heard[k], alone[k]) << "instance " << k;
    for (const double v : heard[k]) ASSERT_TRUE(std::isfinite(v)) << "instance " << k;
  }
}

TEST(SharedTables, ABlockHearsOneCurveWhileOthersSwitchThem) {
  constexpr int kFrames = 4096;
  constexpr int kTrials = 40;
  constexpr float kReaderRate = 88200.0f;  // factor 8
  std::vector<double> in(kFrames);
  NoiseSource noise(77);
  fill(Signal::kNoise, noise, in.data(), kFrames);

  // Readers set up in advance, so that each plays its first block with whatever curve is current.
  auto makeReader = [] {
    auto reader = std::make_unique<PluginInstance>(getinterface);
    reader->setSampleRate(kReaderRate);
    return reader;
  };
  auto firstBlock = [&](PluginInstance& reader) {
    std::vector<double> input = in, out(kFrames);
    reader.process(input.data(), out.data(), kFrames);
    return out;
  };

  // The two single-curve references: a reader's own set-up leaves the factor-8 curve; a set-up at
  // 48000 after it switches every instance to the factor-7 curve.
  const auto withCurve8 = firstBlock(*makeReader());
  auto reader7 = makeReader();
  PluginInstance(getinterface).setSampleRate(48000.0f);
  const auto withCurve7 = firstBlock(*reader7);
  ASSERT_NE(withCurve7, withCurve8) << "the test cannot tell the two curves apart";

  std::vector<std::unique_ptr<PluginInstance>> readers;
  for (int trial = 0; trial < kTrials; ++trial) readers.push_back(makeReader());

  std::atomic<bool> stop{false};
  // Two instances at rates of different factors keep switching the shared tables.
  auto switcher = [&](float rateA, float rateB) {
    PluginInstance plugin(getinterface);
    std::vector<double> buffer(16, 0.1);
    for (int i = 0; !stop.load(std::memory_order_relaxed); ++i) {
      plugin.setSampleRate(i % 2 ? rateA : rateB);
      plugin.process(buffer.data(), buffer.data(), 16);
    }
  };
  std::thread factor8(switcher, 44100.0f, 22050.0f);
  std::thread factor7(switcher, 48000.0f, 48000.5f);

  int mixed = 0, heard8 = 0, heard7 = 0;
  for (auto& reader : readers) {
    const auto heard = firstBlock(*reader);
    heard8 += heard == withCurve8;
    heard7 += heard == withCurve7;
    mixed += heard != withCurve8 && heard != withCurve7;
  }
  stop = true;
  factor8.join();
  factor7.join();
  RecordProperty("factor8_blocks", heard8);
  RecordProperty("factor7_blocks", heard7);
  EXPECT_EQ(mixed, 0) << "blocks that heard a mixture of two curves (" << heard8
                      << " heard curve 8, " << heard7 << " curve 7)";
}

TEST(Automation, ParameterAndProgramChangesFromAControlThread) {
  constexpr int kBlocksToRun = 200;
  constexpr int kFrames = 256;
  constexpr float kRate = 48000.0f;
  PluginInstance plugin(getinterface);
  plugin.setSampleRate(kRate);

  std::atomic<bool> done{false};
  std::thread control([&] {
    NoiseSource random(9);
    char text[256];
    while (!done.load(std::memory_order_relaxed)) {
      const auto index = static_cast<VstInt32>(1 + random.nextWord() % 5);
      plugin.setParameter(index, static_cast<float>(0.5 * (random.nextSample() + 1.0)));
      if (random.nextWord() % 8 == 0) plugin.setProgram(static_cast<int>(random.nextWord() % 16));
      plugin.getParameter(index);
      plugin.dispatch(effGetParamDisplay, index, 0, text);
      plugin.dispatch(effGetProgramName, 0, 0, text);
    }
  });

  NoiseSource noise(10);
  std::vector<double> in(kFrames), out(kFrames);
  bool finite = true;
  bool bounded = true;
  for (int b = 0; b < kBlocksToRun; ++b) {
    fill(Signal::kNoise, noise, in.data(), kFrames);
    plugin.process(in.data(), out.data(), kFrames);
    const double bound = outputBound(kRate, std::int64_t{kFrames} * (b + 1));
    for (const double v : out) {
      finite = finite && std::isfinite(v);
      bounded = bounded && std::fabs(v) <= bound;
    }
  }
  done = true;
  control.join();
  EXPECT_TRUE(finite);
  EXPECT_TRUE(bounded);
}

}  // namespace
}  // namespace reliability
