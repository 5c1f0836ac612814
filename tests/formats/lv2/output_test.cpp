// The LV2 form through lilv, as a host drives it: its output is the double chain's output of the
// same input, rounded to float, bit for bit, at several rates, with control changes between
// runs, in place and not, for runs longer than the instance prepared for, and after a fresh
// activation; its run allocates nothing.
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

// A session of runs: (length, control position, new dial reading) before each run.
struct Step {
  std::uint32_t frames;
  std::size_t control;
  float dial;
};
const std::vector<Step> kSession = {
    {256, kVolume, 5.5f}, {1, kTreble, 8.0f},    {300, kDeep, 1.0f},  {0, kBass, 2.5f},
    {64, kMaster, 9.0f},  {1024, kTreble, 1.0f}, {2, kVolume, 10.0f}, {700, kDeep, 0.0f},
    {512, kBass, 10.0f},  {128, kTreble, 5.5f},
};

// Runs the session through `amp` and the double chain (whose blocks are the pieces of at most
// `piece` samples) and expects every output sample equal.
void expectSessionMatches(Instance& amp, double rate, int piece, bool inPlace) {
  DoubleChain chain(rate, piece);
  std::size_t offset = 0;
  std::uint32_t total = 0;
  for (const Step& s : kSession) total += s.frames;
  const std::vector<float> input = bassSignal(static_cast<int>(total), rate);

  for (const Step& s : kSession) {
    amp.set(s.control, s.dial);
    chain.setDial(s.control, s.dial);
    std::vector<float> out(input.begin() + offset, input.begin() + offset + s.frames);
    if (inPlace) {
      amp.run(out.data(), out.data(), s.frames);
    } else {
      std::fill(out.begin(), out.end(), -99.0f);
      amp.run(input.data() + offset, out.data(), s.frames);
    }
    for (std::uint32_t done = 0; done < s.frames;) {
      const int n = static_cast<int>(std::min<std::uint32_t>(s.frames - done, piece));
      const std::vector<float> expected = chain.block(input.data() + offset + done, n);
      for (int i = 0; i < n; ++i) {
        ASSERT_EQ(std::memcmp(&out[done + i], &expected[i], sizeof(float)), 0)
            << "rate " << rate << ", sample " << offset + done + i << ": " << out[done + i]
            << " vs " << expected[i];
      }
      done += n;
    }
    offset += s.frames;
  }
}

class Lv2Output : public ::testing::TestWithParam<double> {};

TEST_P(Lv2Output, EqualsTheDoubleChainRoundedToFloat) {
  for (bool inPlace : {false, true}) {
    SCOPED_TRACE(inPlace ? "in place" : "separate buffers");
    BlockLengthFeatures features(1024);
    Instance amp(GetParam(), features.get());
    ASSERT_TRUE(amp.valid());
    expectSessionMatches(amp, GetParam(), 1024, inPlace);
  }
}

INSTANTIATE_TEST_SUITE_P(Rates, Lv2Output, ::testing::Values(44100.0, 48000.0, 96000.0));

TEST(Lv2Output, RunsLongerThanPreparedGoInPiecesOfThePreparedLength) {
  {
    SCOPED_TRACE("announced maximum 64");
    BlockLengthFeatures features(64);
    Instance amp(48000.0, features.get());
    expectSessionMatches(amp, 48000.0, 64, false);
  }
  {
    SCOPED_TRACE("no announced maximum");
    Instance amp(44100.0);
    expectSessionMatches(amp, 44100.0, tarnwell::lv2::kDefaultMaxBlock, true);
  }
}

TEST(Lv2Output, ControlReadingsOutsideTheirRangeAreHeldToIt) {
  Instance amp(44100.0);
  DoubleChain chain(44100.0, 4096);
  const std::vector<float> input = bassSignal(600, 44100.0);
  const struct {
    std::size_t control;
    float reading, held;
  } cases[] = {{kVolume, 14.0f, 10.0f},
               {kTreble, -3.0f, 1.0f},
               {kBass, std::numeric_limits<float>::quiet_NaN(), 5.5f},
               {kDeep, 0.25f, 1.0f}};
  std::size_t offset = 0;
  for (const auto& c : cases) {
    amp.set(c.control, c.reading);
    chain.setDial(c.control, c.held);
    std::vector<float> out(150);
    amp.run(input.data() + offset, out.data(), 150);
    EXPECT_EQ(out, chain.block(input.data() + offset, 150)) << "reading " << c.reading;
    offset += 150;
  }
}

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

TEST(Lv2Output, RunAllocatesNothing) {
  BlockLengthFeatures features(512);
  Instance amp(48000.0, features.get());
  const std::vector<float> input = bassSignal(4096, 48000.0);
  std::vector<float> out(4096);
  amp.run(input.data(), out.data(), 512);
  const long before = allocations.load();
  float dial = 1.0f;
  for (std::uint32_t frames : {512u, 1u, 0u, 333u, 4096u}) {
    for (std::size_t k = 0; k < kControls.size(); ++k) amp.set(k, dial);
    dial += 2.0f;
    amp.run(input.data(), out.data(), frames);
  }
  EXPECT_EQ(allocations.load(), before);
}

TEST(Lv2Output, RefusesARateThatIsNotAPositiveNumber) {
  for (double rate : {0.0, -44100.0, std::numeric_limits<double>::quiet_NaN()}) {
    Instance amp(rate);
    EXPECT_FALSE(amp.valid()) << rate;
  }
}

}  // namespace
