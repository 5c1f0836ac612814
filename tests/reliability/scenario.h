// Deterministic host sessions for the reliability tests: a schedule of blocks, each with its size
// and the requests a host makes just before it (a parameter store, a program change, a new sample
// rate). Rendering one schedule on a lone instance and on an instance in a crowd must give the same
// samples, bit for bit.
//
// Harness code: a schedule is built once and may be rendered on any thread.
#pragma once

#include <cstdint>
#include <vector>

#include "tests/reliability/plugin_host.h"

namespace reliability {

struct BlockPlan {
  int frames = 0;
  VstInt32 paramIndex = 0;  // 1..5 stores paramValue before the block; 0 stores nothing
  float paramValue = 0.0f;
  int program = -1;         // >= 0 selects this program before the block
  float sampleRate = 0.0f;  // > 0 sets this rate before the block
};

struct ScheduleShape {
  std::vector<int> blockSizes;  // used in turn; a 0 entry means a random size in 1..kMaxRandomBlock
  int blocks = 0;
  int programEvery = 0;  // switch programs every this many blocks; 0 never
  std::uint64_t seed = 1;
};

inline constexpr int kMaxRandomBlock = 2048;

// Blocks of the given shape with a parameter store in 0..1 before every one of them.
std::vector<BlockPlan> makeSchedule(const ScheduleShape& shape);

int totalFrames(const std::vector<BlockPlan>& schedule);

// Runs the schedule on `plugin` over noise from `inputSeed`, returning every output sample.
std::vector<double> render(PluginInstance& plugin, const std::vector<BlockPlan>& schedule,
                           std::uint64_t inputSeed);

// Runs one planned block: its requests, then the samples at in/out.
void runBlock(PluginInstance& plugin, const BlockPlan& block, double* in, double* out);

}  // namespace reliability
