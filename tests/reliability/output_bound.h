// The largest output magnitude the amp can produce while every parameter lies in 0..1, derived from
// the chain after the second waveshaper, which is purely linear:
//
//   |out| <= max|u| * L1(down) * L1(hp30) * L1(lp2700) * L1(hp20) * maxTrim
//
// u is the second waveshaper's output, in [-1, 0.365], so max|u| = 1. L1(h) = sum |h[k]| is the
// worst-case gain of a linear filter over bounded inputs. The down-filter runs at the oversampled
// rate but its coefficients do not depend on it; the three output filters are designed at the host
// rate. maxTrim = 1.2 * 0.562341325 is the trim at TREBLE 1 with DEEP off, the largest the tone
// stack can set for parameters in range.
//
// Filter states start at zero at every set-up, so at the n-th sample after it the bound uses the
// impulse responses up to n samples only. That keeps it finite at host rates so low that a corner
// is clamped to half the rate and a pole sits on (or a hair outside) the unit circle.
//
// Harness code: any thread, calls the math library.
#pragma once

#include <cstdint>

namespace reliability {

// Oversampling factor the amp picks for a host rate: 7 at rates that truncate to 48000, else 8.
int oversamplingFactor(double hostRate);

// L1 norm of the fifth-order oversampling low-pass used as down-filter at that factor.
double downFilterL1(int factor);

// L1 norm of h[0 .. samples-1] of the first-order low-pass (type 0) or high-pass (type 1) designed
// at `freq` for `hostRate`, exactly as the amp designs it.
double firstOrderL1(int type, double freq, double hostRate, std::int64_t samples);

// The bound above, for the `samples`-th output sample after a set-up at `hostRate`.
double outputBound(double hostRate, std::int64_t samples);

}  // namespace reliability
