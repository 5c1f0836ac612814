// Deterministic test inputs, bit-identical on every target (integer generator, exact scaling), so
// that the 32- and 64-bit builds and the lone and crowded instances all hear the same samples.
// Harness code: any thread.
#pragma once

#include <cstdint>
#include <limits>

namespace reliability {

enum class Signal : std::uint8_t {
  kSilence,
  kNoise,        // uniform in [-1, 1)
  kHugePlus,     // +1e6
  kHugeMinus,    // -1e6
  kAlternating,  // +1e6, -1e6, ...
  kNaN,
  kPlusInfinity,
  kMinusInfinity,
  kNoiseWithNaN,  // noise with a NaN every 97th sample
  kCount
};

inline bool isFinite(Signal s) {
  return s == Signal::kSilence || s == Signal::kNoise || s == Signal::kHugePlus ||
         s == Signal::kHugeMinus || s == Signal::kAlternating;
}

// splitmix64: a full-period 64-bit sequence, one state word.
class NoiseSource {
 public:
  explicit NoiseSource(std::uint64_t seed) : state_(seed) {}

  std::uint64_t nextWord() {
    std::uint64_t z = (state_ += 0x9E3779B97F4A7C15ull);
    z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9ull;
    z = (z ^ (z >> 27)) * 0x94D049BB133111EBull;
    return z ^ (z >> 31);
  }

  // Uniform in [-1, 1): 53 random bits, scaled exactly.
  double nextSample() { return static_cast<double>(nextWord() >> 11) * 0x1.0p-52 - 1.0; }

 private:
  std::uint64_t state_;
};

inline void fill(Signal s, NoiseSource& noise, double* out, int n) {
  constexpr double kHuge = 1e6;
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const double inf = std::numeric_limits<double>::infinity();
  for (int i = 0; i < n; ++i) {
    switch (s) {
      case Signal::kNoise:
        out[i] = noise.nextSample();
        break;
      case Signal::kHugePlus:
        out[i] = kHuge;
        break;
      case Signal::kHugeMinus:
        out[i] = -kHuge;
        break;
      case Signal::kAlternating:
        out[i] = (i & 1) ? -kHuge : kHuge;
        break;
      case Signal::kNaN:
        out[i] = nan;
        break;
      case Signal::kPlusInfinity:
        out[i] = inf;
        break;
      case Signal::kMinusInfinity:
        out[i] = -inf;
        break;
      case Signal::kNoiseWithNaN:
        out[i] = i % 97 == 0 ? nan : noise.nextSample();
        break;
      default:
        out[i] = 0.0;
        break;
    }
  }
}

}  // namespace reliability
