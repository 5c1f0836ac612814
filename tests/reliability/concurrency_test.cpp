// Instances running at once on several threads, run under ThreadSanitizer (label `concurrency`).
// The shared first-stage curve follows the oversampling factor of the latest new-rate set-up, so
// tests that compare outputs keep to one factor, or check that a block heard one curve only.
#include <gtest/gtest.h>

#include <atomic>
#include <cmath>
#include <deque>
#include <thread>
#include <vector>

#include "tests/reliability/plugin_host.h"

namespace reliability {
namespace {

// One instance and its session in the crowd: rates, requests and input, and all it has heard.
struct Voice {
  explicit Voice(int number) : k(number), random(1000u + k), noise(500u + k) {}
  void play(int block) {
    constexpr float kRates[] = {22050.0f, 44100.0f, 88200.0f, 96000.0f, 192000.0f};  // factor 8
    if (block == 0) plugin.setSampleRate(kRates[k % std::size(kRates)]);
    // Voice 0 changes its rate every fourth block while the others run.
    if (k == 0 && block > 0 && block % 4 == 0) plugin.setSampleRate(block % 8 ? 96000 : 44100);
    const int frames = block % 3 ? 1 + static_cast<int>(random() % 2048) : 64;
    heard.resize(heard.size() + frames);
    double* samples = heard.data() + heard.size() - frames;
    noise.fill(samples, frames);
    playBlock(plugin, random, samples, samples, frames);  // in place
  }
  int k;
  PluginInstance plugin{getinterface};
  NoiseSource random, noise;
  std::vector<double> heard;
};

TEST(Crowd, ThirtyTwoInstancesOnTwoThreadsEachSoundAsIfAlone) {
  constexpr int kInstances = 32, kBlocks = 12;
  std::deque<Voice> alone, crowd;
  for (int k = 0; k < kInstances; ++k) {
    alone.emplace_back(k);
    for (int b = 0; b < kBlocks; ++b) alone.back().play(b);
    crowd.emplace_back(k);
  }
  // Each thread plays its half of the crowd block by block, interleaved.
  auto playHalf = [&](int first) {
    for (int b = 0; b < kBlocks; ++b) {
      for (int k = first; k < kInstances; k += 2) crowd[k].play(b);
    }
  };
  std::thread even(playHalf, 0), odd(playHalf, 1);
  even.join();
  odd.join();
  for (int k = 0; k < kInstances; ++k) {
    EXPECT_EQ(crowd[k].heard, alone[k].heard) << "instance " << k;
    for (const double v : crowd[k].heard) ASSERT_TRUE(std::isfinite(v)) << "instance " << k;
  }
}

TEST(SharedTables, ABlockHearsOneCurveWhileOthersSwitchThem) {
  constexpr int kFrames = 4096, kReaders = 42;
  std::vector<double> in(kFrames);
  NoiseSource(77).fill(in.data(), kFrames);
  // Readers set up in advance (factor 8) play their first block with whatever curve is current.
  std::deque<PluginInstance> readers;
  for (int r = 0; r < kReaders; ++r) readers.emplace_back(getinterface).setSampleRate(88200.0f);
  auto firstBlock = [&](int r) {
    std::vector<double> out(kFrames);
    readers[r].process(in.data(), out.data(), kFrames);
    return out;
  };
  // The single-curve references: the readers' set-ups left the factor-8 curve; a set-up at 48000
  // switches every instance to the factor-7 curve.
  const auto withCurve8 = firstBlock(0);
  PluginInstance(getinterface).setSampleRate(48000.0f);
  const auto withCurve7 = firstBlock(1);
  ASSERT_NE(withCurve7, withCurve8) << "the test cannot tell the two curves apart";

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
  std::thread factor8(switcher, 44100.0f, 22050.0f), factor7(switcher, 48000.0f, 48000.5f);
  int mixed = 0;
  for (int r = 2; r < kReaders; ++r) {
    const auto heard = firstBlock(r);
    mixed += heard != withCurve8 && heard != withCurve7;
  }
  stop = true;
  factor8.join();
  factor7.join();
  EXPECT_EQ(mixed, 0) << "blocks that mixed two curves";
}

}  // namespace
}  // namespace reliability
