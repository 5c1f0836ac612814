// The plug-in against the literal transcription of the chain, every output sample bit for bit,
// in place and not, at several rates and block sizes with parameter changes between blocks.
#include <gtest/gtest.h>

#include <bit>
#include <cstdint>
#include <tuple>

#include "loaded_plugin.h"
#include "reference_amp.h"

// About 0.35 s: a change every third block, 0-sample blocks, loud passages, signed-zero silence,
// and an opening of signed zeros and denormals while all state is exactly zero (a zero's sign
// shows).
class ExactnessTest : public testing::TestWithParam<std::tuple<float, int>> {};

TEST_P(ExactnessTest, EveryOutputSampleMatchesTheLiteralChainBitForBit) {
  const auto [rate, block] = GetParam();
  LoadedPlugin plugin;
  plugin.setSampleRate(rate);
  ReferenceAmp reference(rate);

  const int total = static_cast<int>(rate * 0.35);
  std::vector<double> input = testSignal(total, rate, 0.8, 7);
  for (int i = 0; i < total; ++i) {
    if (i < 600) input[i] = (i % 5 < 2) ? -0.0 : (i > 300 && i % 7 == 0 ? -1e-310 : 0.0);
    if (i > total / 3 && i < total / 3 + total / 10) input[i] *= 40.0;  // drive the shapers hard
    if (i > total / 2 && i < total / 2 + total / 8) input[i] = (i % 3 == 0) ? -0.0 : 0.0;
  }
  const std::pair<int, float> changes[] = {{3, 0.8f}, {4, 0.2f}, {2, 0.9f},  {1, 1.0f}, {5, 0.1f},
                                           {3, 0.5f}, {1, 0.5f}, {3, 0.51f}, {2, 0.0f}, {1, 0.0f},
                                           {4, 1.0f}, {3, 1.0f}, {5, 1.0f},  {3, 0.0f}, {2, 0.7f}};
  std::vector<double> in(block), pluginOut(block), referenceOut(block);
  for (int start = 0, blockIndex = 0; start < total; start += block, ++blockIndex) {
    if (blockIndex % 3 == 1) {
      const auto [param, value] = changes[blockIndex / 3 % std::size(changes)];
      plugin.setParameter(param, value);
      reference.set(param, value);
      if (blockIndex % 4 == 1) {  // a 0-sample block with the change pending
        plugin.process(in.data(), pluginOut.data(), 0);
        reference.process(in.data(), referenceOut.data(), 0);
      }
    }
    const int n = std::min(block, total - start);
    std::copy(input.begin() + start, input.begin() + start + n, in.begin());
    reference.process(in.data(), referenceOut.data(), n);
    double* out = blockIndex % 2 == 0 ? pluginOut.data() : in.data();  // in place every other block
    plugin.process(in.data(), out, n);
    for (int i = 0; i < n; ++i) {
      ASSERT_EQ(std::bit_cast<std::uint64_t>(out[i]), std::bit_cast<std::uint64_t>(referenceOut[i]))
          << "sample " << start + i << " differs from the literal chain";
    }
  }
}

INSTANTIATE_TEST_SUITE_P(RatesAndBlockSizes, ExactnessTest,
                         testing::Combine(testing::Values(44100.0f, 48000.0f, 96000.0f),
                                          testing::Values(1, 2, 7, 64, 256, 1000)));
