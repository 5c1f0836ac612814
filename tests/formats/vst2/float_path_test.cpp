// The standard form's single-precision process is the double chain on the widened input, rounded
// back to float, bit for bit, and its double path is tarnwell.so's: compared with tarnwell.so's
// double path on the same input and the same requests, for several rates, block sizes, parameter
// changes between blocks, in place or not, and blocks longer than the host announced. Neither
// process function allocates.
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <cmath>
#include <initializer_list>
#include <tuple>
#include <vector>

#include "amp/parameter_index.h"
#include "daw_host.h"

extern std::atomic<long> allocations;  // every operator new, counted in alloc_counter.cpp

namespace {

std::vector<double> widened(const std::vector<float>& in) {
  return std::vector<double>(in.begin(), in.end());
}

// The same parameter change on every instance: a tone change (which redesigns and glides the
// tone stack), VOLUME and MASTER ramps, DEEP switched, a program change.
void changeParameters(int block, std::initializer_list<DawInstance*> instances) {
  const std::tuple<VstInt32, float> changes[] = {
      {kParamTreble, 0.9f},  {kParamVolume, 0.8f},      {kParamDeep, 1.0f},  {kParamBass, 0.1f},
      {kParamMaster, 0.95f}, {kParamPlaceholder, 0.3f}, {kParamTreble, 0.2f}};
  const auto [index, value] = changes[block % 7];
  for (DawInstance* d : instances) {
    if (block % 5 == 4) d->dispatch(effSetProgram, 0, block % 16);
    d->setParameter(index, value);
  }
}

// Float blocks of `blockFrames` through the standard form; the same input widened, through
// tarnwell.so's double path in blocks of `referenceFrames` (the pieces the standard form must
// cut), then rounded. Parameters change before every host block; an empty block after the
// second takes the new values over without a ramp, on both paths alike. Where the host's blocks
// are the pieces, the standard form's own double path must also be tarnwell.so's.
void expectFloatEqualsRoundedDouble(float rate, VstInt32 announced, int blockFrames,
                                    int referenceFrames, bool inPlace, int blocks = 6) {
  DawInstance standard("VSTPluginMain"), original, standardDouble("VSTPluginMain");
  for (DawInstance* d : {&standard, &original, &standardDouble}) d->prepare(rate, announced);
  const std::vector<float> input = noise(blockFrames * blocks, 0.8);
  std::vector<float> out(input.size());
  std::vector<double> reference = widened(input), doubles = reference;
  for (int block = 0; block < blocks; ++block) {
    changeParameters(block, {&standard, &original, &standardDouble});
    const int start = block * blockFrames;
    std::vector<float> in(input.begin() + start, input.begin() + start + blockFrames);
    if (inPlace) std::copy(in.begin(), in.end(), out.begin() + start);
    long before = allocations.load();
    standard.process(inPlace ? &out[start] : in.data(), &out[start], blockFrames);
    standardDouble.process(&doubles[start], &doubles[start], blockFrames);
    ASSERT_EQ(allocations.load(), before) << "block " << block << " allocated";
    for (int done = 0; done < blockFrames; done += referenceFrames) {
      double* piece = &reference[start + done];
      original.process(piece, piece, std::min(referenceFrames, blockFrames - done));
    }
    if (block == 1) {
      changeParameters(block + 3, {&standard, &original, &standardDouble});
      before = allocations.load();
      standardDouble.process(doubles.data(), doubles.data(), 0);
      standard.process(out.data(), out.data(), 0);
      ASSERT_EQ(allocations.load(), before) << "an empty block allocated";
      original.process(reference.data(), reference.data(), 0);
    }
  }
  if (blockFrames == referenceFrames) {
    EXPECT_EQ(doubles, reference) << "the double path";
  }
  double peak = 0.0;
  for (const double v : reference) peak = std::max(peak, std::abs(v));
  ASSERT_GT(peak, 0.01) << "the amp sounds";
  for (std::size_t i = 0; i < out.size(); ++i) {
    ASSERT_EQ(out[i], static_cast<float>(reference[i]))
        << "sample " << i << ", rate " << rate << ", block " << blockFrames;
  }
}

using Case = std::tuple<float, int, bool>;  // rate, block size (announced and sent), in place

class FloatPath : public ::testing::TestWithParam<Case> {};

TEST_P(FloatPath, EqualsTheDoublePathRoundedToFloat) {
  const auto [rate, frames, inPlace] = GetParam();
  expectFloatEqualsRoundedDouble(rate, frames, frames, frames, inPlace);
}

INSTANTIATE_TEST_SUITE_P(RatesAndBlocks, FloatPath,
                         ::testing::Combine(::testing::Values(44100.0f, 48000.0f, 96000.0f),
                                            ::testing::Values(1, 64, 333, 1024),
                                            ::testing::Bool()));

TEST(FloatPath, LongerBlocksThanAnnouncedRunInPiecesOfTheAnnouncedSize) {
  struct LongBlock {
    VstInt32 announced;
    int sent;
    int pieces;
  };
  for (const LongBlock c : {LongBlock{64, 200, 64}, LongBlock{1, 5, 1}, LongBlock{256, 4096, 256},
                            LongBlock{0, 300, 1024}, LongBlock{-5, 300, 1024}}) {
    SCOPED_TRACE(c.announced);
    // An announcement no block can have keeps the size prepared at construction, 1024.
    expectFloatEqualsRoundedDouble(48000.0f, c.announced, c.sent, c.pieces, c.announced % 2 == 0);
  }
}

TEST(FloatPath, MissingBuffersAreLeftAlone) {
  DawInstance standard("VSTPluginMain");
  standard.prepare(48000.0f, 64);
  float untouched[64] = {};
  float* noBuffer = nullptr;
  float* output = untouched;
  standard.effect()->processReplacing(standard.effect(), nullptr, &output, 64);
  standard.effect()->processReplacing(standard.effect(), &noBuffer, &output, 64);
  for (const float v : untouched) EXPECT_EQ(v, 0.0f);
}

}  // namespace
