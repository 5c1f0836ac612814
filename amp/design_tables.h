// The fixed filter designs of the set-up: type number (IIRFilter), frequency in Hz, Q and gain in
// dB for each bank. First, EQ and Final run at the host rate, Master at the oversampled rate.
// The EQ designs hold only until the first block redesigns the tone stack.
#pragma once

#include "amp/oversampling.h"
#include "amp/tarnwell.h"

// 26 Hz first-order high-pass, 18 kHz first-order low-pass.
inline constexpr VstInt32 Tarnwell::num_First[2] = {1, 0};
inline constexpr double Tarnwell::freq_First[2] = {26.0, 18000.0};
inline constexpr double Tarnwell::q_First[2] = {1.0, 1.0};
inline constexpr double Tarnwell::gain_First[2] = {};

// High-pass, low shelf, peaking cut, high shelf, three peaking bands.
inline constexpr VstInt32 Tarnwell::num_EQ[7] = {7, 11, 10, 12, 10, 10, 10};
inline constexpr double Tarnwell::freq_EQ[7] = {15.0,  32.34,  269.96, 1781.78,
                                                612.0, 2500.0, 1300.0};
inline constexpr double Tarnwell::gain_EQ[7] = {0.0, -10.2, -18.5, -5.7, -5.1, 0.0, 8.0};
inline constexpr double Tarnwell::q_EQ[7] = {0.65, 1.0, 1.034, 1.0, 5.0, 3.0, 9.0};

// 80 Hz first-order low shelf, -2.1 dB.
inline constexpr VstInt32 Tarnwell::num_Master = 11;
inline constexpr double Tarnwell::freq_Master = 80.0;
inline constexpr double Tarnwell::gain_Master = -2.1;
inline constexpr double Tarnwell::q_Master = 1.0;

// 30 Hz first-order high-pass, 2700 Hz first-order low-pass.
inline constexpr VstInt32 Tarnwell::num_Final[2] = {1, 0};
inline constexpr double Tarnwell::freq_Final[2] = {30.0, 2700.0};
inline constexpr double Tarnwell::q_Final[2] = {1.0, 1.0};
inline constexpr double Tarnwell::gain_Final[2] = {};

// The last filter of the chain: 20 Hz first-order high-pass at the host rate.
struct OutHighPassDesign {
  static constexpr VstInt32 num = 1;
  static constexpr double freq = 20.0;
  static constexpr double q = 1.0;
  static constexpr double gain = 0.0;
};
