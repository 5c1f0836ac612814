// The LV2 form through lilv, as a host drives it: its output is the double chain's output of the
// same input, rounded to float, bit for bit, at several rates, with control changes (in range or
// not) between runs, in place and not, for runs longer than the instance prepared for, and after a
// fresh activation; its run allocates nothing.
#include <gtest/gtest.h>

#include <atomic>
#include <cmath>
#include <cstring>
#include <limits>
#include <memory>
#include <vector>

#include "amp/parameter_table.h"
#include "amp/tarnwell.h"
#include "hostif/audioeffect.h"
#include "lilv_host.h"

extern std::atomic<long> allocations;  // alloc_counter.cpp

namespace {

using lv2_test::BlockLengthFeatures;
using lv2_test::Instance;
using tarnwell::kControls;

constexpr std::size_t kDeep = 0, kVolume = 1, kTreble = 2, kBass = 3, kMaster = 4;

// The double chain straight from the amp library, set as a host sets parameters.
class DoubleChain {
 public:
  DoubleChain(double rate, int maxBlock) : effect_(std::make_unique<Tarnwell>(nullptr)) {
    effect_->setSampleRate(static_cast<float>(rate));
    effect_->setBlockSize(maxBlock);
    effect_->resume();
  }
  void setDial(std::size_t position, float dial) {
    const tarnwell::ControlFacts& facts = kControls[position];
    const float value = facts.kind == tarnwell::ControlKind::kSwitch
                            ? (dial > 0.0f ? tarnwell::kSwitchOnValue : 0.0f)
                            : tarnwell::valueOfDial(dial);
    effect_->setParameter(facts.index, value);
  }
  // One block of the chain, widened from and rounded to float.
  std::vector<float> block(const float* in, int frames) {
    std::vector<double> io(in, in + frames);
    double* p = io.data();
    effect_->processDoubleReplacing(&p, &p, frames);
    return std::vector<float>(io.begin(), io.end());
  }

 private:
  std::unique_ptr<AudioEffect> effect_;
};

std::vector<float> bassSignal(int frames, double rate, unsigned seed = 7) {
  std::vector<float> s(frames);
  unsigned state = seed;
  for (int i = 0; i < frames; ++i) {
    state = state * 1664525u + 1013904223u;
    const double noise = (static_cast<double>(state >> 8) / 16777216.0 - 0.5) * 0.05;
    const double t = 6.283185307179586 * i / rate;
    s[i] = static_cast<float>(0.4 * std::sin(41.2 * t) + 0.15 * std::sin(123.6 * t) + noise);
  }
  return s;
}

// A session of runs: before each, one control gets a new reading; the chain gets the dial the
// reading is held to (its range; a NaN reading is no reading and keeps the last).
struct Step {
  std::uint32_t frames;
  std::size_t control;
  float reading, held;
};
constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();
const std::vector<Step> kSession = {
    {256, kVolume, 5.5f, 5.5f}, {1, kTreble, 8.0f, 8.0f},     {300, kDeep, 1.0f, 1.0f},
    {0, kBass, 2.5f, 2.5f},     {64, kMaster, 9.0f, 9.0f},    {1024, kTreble, 1.0f, 1.0f},
    {2, kVolume, 10.0f, 10.0f}, {700, kDeep, 0.0f, 0.0f},     {512, kBass, 10.0f, 10.0f},
    {128, kTreble, 5.5f, 5.5f}, {150, kVolume, 14.0f, 10.0f}, {150, kTreble, -3.0f, 1.0f},
    {150, kBass, kNaN, 10.0f},  {150, kDeep, 0.25f, 1.0f},
};

struct Case {
  double rate;
  std::int32_t announced;  // 0: none, and the form prepares kDefaultMaxBlock
  bool inPlace;
};

class Lv2Output : public ::testing::TestWithParam<Case> {};

// The session through the form and through the double chain in pieces of the prepared length:
// every output sample equal, and no run allocates.
TEST_P(Lv2Output, EqualsTheDoubleChainRoundedToFloatAndRunsAllocateNothing) {
  const auto [rate, announced, inPlace] = GetParam();
  BlockLengthFeatures features(announced);
  Instance amp(rate, announced > 0 ? features.get() : nullptr);
  ASSERT_TRUE(amp.valid());
  const int piece = announced > 0 ? announced : tarnwell::lv2::kDefaultMaxBlock;
  DoubleChain chain(rate, piece);
  std::uint32_t total = 0;
  for (const Step& s : kSession) total += s.frames;
  const std::vector<float> input = bassSignal(static_cast<int>(total), rate);

  std::size_t offset = 0;
  for (const Step& s : kSession) {
    amp.set(s.control, s.reading);
    chain.setDial(s.control, s.held);
    std::vector<float> out(input.begin() + offset, input.begin() + offset + s.frames);
    if (!inPlace) std::fill(out.begin(), out.end(), -99.0f);
    const long before = allocations.load();
    amp.run(inPlace ? out.data() : input.data() + offset, out.data(), s.frames);
    ASSERT_EQ(allocations.load(), before) << "run of " << s.frames;
    for (std::uint32_t done = 0; done < s.frames;) {
      const int n = static_cast<int>(std::min<std::uint32_t>(s.frames - done, piece));
      const std::vector<float> expected = chain.block(input.data() + offset + done, n);
      for (int i = 0; i < n; ++i) {
        ASSERT_EQ(std::memcmp(&out[done + i], &expected[i], sizeof(float)), 0)
            << "sample " << offset + done + i << ": " << out[done + i] << " vs " << expected[i];
      }
      done += n;
    }
    offset += s.frames;
  }
}

INSTANTIATE_TEST_SUITE_P(RatesPiecesAndBuffers, Lv2Output,
                         ::testing::Values(Case{44100.0, 1024, false}, Case{44100.0, 0, true},
                                           Case{48000.0, 64, false}, Case{48000.0, 1024, true},
                                           Case{96000.0, 1024, false}, Case{96000.0, 64, true}));

TEST(Lv2Output, ActivatingAgainStartsFromAFreshChain) {
  const std::vector<float> input = bassSignal(800, 48000.0);
  Instance fresh(48000.0);
  fresh.set(kTreble, 7.0f);
  std::vector<float> expected(800);
  fresh.run(input.data(), expected.data(), 800);

  Instance reused(48000.0);
  std::vector<float> out(800);
  reused.run(input.data(), out.data(), 800);
  lilv_instance_deactivate(reused.get());
  lilv_instance_activate(reused.get());
  reused.set(kTreble, 7.0f);
  reused.run(input.data(), out.data(), 800);
  EXPECT_EQ(out, expected);
}

TEST(Lv2Output, RefusesARateThatIsNotAPositiveNumber) {
  for (double rate : {0.0, -44100.0, std::numeric_limits<double>::quiet_NaN()}) {
    Instance amp(rate);
    EXPECT_FALSE(amp.valid()) << rate;
  }
}

}  // namespace
