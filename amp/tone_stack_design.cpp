#include "amp/tone_stack_design.h"

namespace {

// Type numbers: second-order high-pass with Q, first-order low shelf, peaking, first-order high
// shelf.
constexpr VstInt32 kHighPass = 7;
constexpr VstInt32 kLowShelf = 11;
constexpr VstInt32 kPeaking = 10;
constexpr VstInt32 kHighShelf = 12;

double bassShelfFreq(double b, double freqOffset) {
  return (17.534 + freqOffset) + ((42.196 * b - 89.511) * b + 63.81) * b;
}

ToneStackDesign deepOnDesign(double b, double t, double freqOffset, double trimGain) {
  return {{
              {kHighPass, 15.0, 0.65, 0.0},
              {kLowShelf, bassShelfFreq(b, freqOffset), 1.0,
               (((-184.72 * b + 589.69) * b - 692.74) * b + 359.93) * b - 79.16},
              {kPeaking, ((-746.79 * t + 1593.6) * t - 1195.1) * t + 562.46,
               ((1.9999 * t - 4.0834) * t + 2.7592) * t + 0.4256, -18.5},
              {kHighShelf, (1779.2 * t - 229.28) * t + 1450.0, 1.0, 21.602 * t - 16.404},
              {kPeaking, 612.0, 5.0, t > 0.5 ? (t - 1.0) + t : 0.0},
              {kPeaking, 2500.0, 3.0, t > 0.5 ? 8.0 * t - 4.0 : 0.0},
              {kPeaking, 1300.0, 9.0, 0.0},
          },
          trimGain};
}

ToneStackDesign deepOffDesign(double b, double t, double freqOffset, double trimGain) {
  return {{
              {kHighPass, 18.0, 0.63, 0.0},
              {kLowShelf, bassShelfFreq(b, freqOffset), 1.0, b * (-23.659 * b + 46.511) - 25.379},
              {kPeaking, ((-1177.9 * t + 2527.2) * t - 1826.6) * t + 636.25,
               ((3.6967 * t - 7.7161) * t + 5.4358) * t + 0.3869,
               ((0.8896 * t - 2.4272) * t + 3.235) * t - 26.995},
              {kHighShelf, ((-54293.0 * t + 104596.0) * t - 65833.0) * t + 15532.0, 1.0,
               ((-19.486 * t + 41.818) * t - 22.574) - 7.0},
              {kPeaking, 612.0, 5.0, t > 0.5 ? (t - 0.5) * 20.4 - 5.1 : -5.1},
              {kPeaking, 2500.0, 3.0, t > 0.5 ? 24.0 * t - 12.0 : 0.0},
              {kPeaking, 1300.0, 9.0, t > 0.5 ? 16.0 * t - 8.0 : 0.0},
          },
          // Steps from 0.8 to 1.0 times the trim as TREBLE passes 0.5, up to 1.2 at 1.0.
          t <= 0.5 ? 0.8 * trimGain : (0.4 * t + 0.8) * trimGain};
}

}  // namespace

ToneStackDesign designToneStack(bool deepOn, double b, double t, double freqOffset,
                                double trimGain) noexcept {
  return deepOn ? deepOnDesign(b, t, freqOffset, trimGain)
                : deepOffDesign(b, t, freqOffset, trimGain);
}

filterPrm_tag bandRecord(const BandDesign& band, double sampleRate) noexcept {
  filterPrm_tag prm{};
  prm.num = band.num;
  prm.freq = band.freq;
  prm.freqLo = 0.0;
  prm.freqHi = 0.0;
  prm.q = band.q;
  prm.gain = band.gain;
  prm.sampleRate = sampleRate;
  return prm;
}
