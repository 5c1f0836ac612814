// The tone stack's magnitude response, exactly as the effect designs it: the seven sections that
// designToneStack gives for DEEP, BASS and TREBLE at a host rate, each designed by IIRFilter and
// evaluated on the unit circle, times the output trim:
//
//   H(f) = trim * prod_k |H_k(e^{j w})|,  w = 2 pi f / fs,
//   H_k(z) = (b0 + b1 z^-1 + b2 z^-2) / (1 - a1 z^-1 - a2 z^-2)   (feedback coefficients added)
//
// The knob values are the plug-in's normalised ones (0..1, as floats, the way the effect stores
// them), so the curve is the one the amp runs once a change has ramped in. Any thread; designs
// allocate a few filters, nothing else.
#pragma once

#include <span>
#include <vector>

class IIRFilter;

namespace tarnwell::plot {

struct ToneKnobs {
  float deep;  // any value but exactly 0 is the DEEP voicing
  float bass;
  float treble;
};

// |H(e^{j 2 pi f / rate})| of one designed section, in either of its two forms.
double sectionMagnitude(const IIRFilter& section, double frequency, double rate);

// The response in dB at each frequency (Hz, below rate / 2).
std::vector<double> toneResponseDb(const ToneKnobs& knobs, double rate,
                                   std::span<const double> frequencies);

// `count` frequencies spaced evenly on a log scale from `low` to `high`, both included.
std::vector<double> logFrequencies(double low, double high, int count);

}  // namespace tarnwell::plot
