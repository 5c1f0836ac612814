// One real-to-complex or complex-to-real transform with FFTW, its plan and buffers owned and freed
// together. Control thread (planning is not thread-safe in FFTW).
#pragma once

#include <fftw3.h>

#include <complex>
#include <span>
#include <vector>

namespace tarnwell::plot {

// Spectrum X[0 .. n/2] of a real signal, unnormalised: X[k] = sum x[i] e^{-j 2 pi k i / n}.
std::vector<std::complex<double>> forwardTransform(std::span<const double> signal);

// The real signal of length n whose spectrum is X[0 .. n/2], unnormalised (n times the inverse).
std::vector<double> inverseTransform(std::span<const std::complex<double>> spectrum, int n);

}  // namespace tarnwell::plot
