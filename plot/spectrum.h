// Spectra of real signals through FFTW.
//
// Harmonics: the signal is weighted by a four-term Blackman-Harris window (side lobes below
// -92 dB), so a tone's leakage stays far below the next harmonic. Each harmonic's level is the
// power summed over the bins around it, divided by the window's equivalent noise bandwidth: an
// amplitude that does not depend on where the tone falls between bins. Levels are in dBFS of a
// sine's peak (a full-scale sine reads 0 dBFS); THD is the root sum of squares of harmonics 2..N
// relative to the fundamental.
//
// Control thread: plans and buffers are allocated per call.
#pragma once

#include <span>
#include <vector>

namespace tarnwell::plot {

struct Harmonic {
  int order;  // 1 is the fundamental
  double frequency;
  double levelDb;  // dBFS
};

struct HarmonicAnalysis {
  std::vector<double> frequency;  // one per bin, 0 .. rate / 2
  std::vector<double> levelDb;    // windowed amplitude per bin, dBFS
  std::vector<Harmonic> harmonics;
  double thdPercent = 0.0;
  double thdDb = 0.0;
};

// Analyses `signal` (a power-of-two length works fastest) for the harmonics 1..maxOrder of
// `fundamental` that lie below the highest analysable frequency (rate / 2 less the window's lobe).
HarmonicAnalysis analyseHarmonics(std::span<const double> signal, double rate, double fundamental,
                                  int maxOrder);

// |Y(k) / X(k)| in dB at each bin k for one period of a periodic input x and its steady output y
// (equal lengths).
std::vector<double> transferDb(std::span<const double> x, std::span<const double> y,
                               std::span<const int> bins);

}  // namespace tarnwell::plot
