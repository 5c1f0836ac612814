#include "tests/reliability/scenario.h"

#include <numeric>

#include "tests/reliability/test_signal.h"

namespace reliability {

namespace {
constexpr int kNumPrograms = 16;
constexpr int kFirstParam = 1;
constexpr int kNumWorkingParams = 5;
}  // namespace

std::vector<BlockPlan> makeSchedule(const ScheduleShape& shape) {
  NoiseSource random(shape.seed);
  std::vector<BlockPlan> schedule(shape.blocks);
  for (int b = 0; b < shape.blocks; ++b) {
    BlockPlan& block = schedule[b];
    const int size = shape.blockSizes[b % shape.blockSizes.size()];
    block.frames = size > 0 ? size : 1 + static_cast<int>(random.nextWord() % kMaxRandomBlock);
    block.paramIndex = kFirstParam + static_cast<VstInt32>(random.nextWord() % kNumWorkingParams);
    // DEEP gets exactly 0 or 1 now and then, the knobs anywhere in 0..1.
    const double u = 0.5 * (random.nextSample() + 1.0);
    block.paramValue =
        block.paramIndex == 1 && u < 0.5 ? static_cast<float>(u < 0.25) : static_cast<float>(u);
    if (shape.programEvery > 0 && b % shape.programEvery == shape.programEvery - 1) {
      block.program = static_cast<int>(random.nextWord() % kNumPrograms);
    }
  }
  return schedule;
}

int totalFrames(const std::vector<BlockPlan>& schedule) {
  return std::accumulate(schedule.begin(), schedule.end(), 0,
                         [](int sum, const BlockPlan& b) { return sum + b.frames; });
}

void runBlock(PluginInstance& plugin, const BlockPlan& block, double* in, double* out) {
  if (block.sampleRate > 0.0f) plugin.setSampleRate(block.sampleRate);
  if (block.program >= 0) plugin.setProgram(block.program);
  if (block.paramIndex != 0) plugin.setParameter(block.paramIndex, block.paramValue);
  plugin.process(in, out, block.frames);
}

std::vector<double> render(PluginInstance& plugin, const std::vector<BlockPlan>& schedule,
                           std::uint64_t inputSeed) {
  std::vector<double> in(totalFrames(schedule));
  std::vector<double> out(in.size());
  NoiseSource noise(inputSeed);
  fill(Signal::kNoise, noise, in.data(), static_cast<int>(in.size()));
  std::size_t at = 0;
  for (const BlockPlan& block : schedule) {
    runBlock(plugin, block, in.data() + at, out.data() + at);
    at += block.frames;
  }
  return out;
}

}  // namespace reliability
