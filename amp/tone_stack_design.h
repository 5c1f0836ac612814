// The tone stack's seven band designs as polynomials of BASS (b) and TREBLE (t), in one of two
// voicings, and the output trim that goes with them. Evaluated in nested (Horner) order exactly as
// the voicing tables give them; the design limits of IIRFilter (f <= 0 -> 20 Hz, f > fs/2 -> fs/2)
// apply later, in the filters.
//
// Pure arithmetic, no library call, no state: the effect runs it at the start of a block in which
// DEEP, BASS or TREBLE changed (audio thread, under its mutex); the command's plots run it on their
// own thread to draw exactly what the effect designs.
#pragma once

#include "dsp/iirfilter.h"
#include "hostif/vst_abi.h"

constexpr double kTrimGain = 0.562341325;  // -5 dB
constexpr double kFreqOffset = 400.0;      // added to the bass band's frequency

struct BandDesign {
  VstInt32 num;  // IIRFilter type number
  double freq;   // Hz
  double q;
  double gain;  // dB
};

constexpr int kNumBands = 7;

struct ToneStackDesign {
  BandDesign band[kNumBands];
  double trim;  // output trim factor
};

// The order in which the bands are handed their new designs.
constexpr int kBandCallOrder[kNumBands] = {0, 1, 2, 3, 5, 6, 4};

// DEEP counts as on for any value other than exactly 0.0.
ToneStackDesign designToneStack(bool deepOn, double b, double t, double freqOffset,
                                double trimGain) noexcept;

// The design record a band hands its filter at `sampleRate`; band edges 0.
filterPrm_tag bandRecord(const BandDesign& band, double sampleRate) noexcept;
