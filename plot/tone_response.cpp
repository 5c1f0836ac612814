#include "plot/tone_response.h"

#include <cmath>
#include <complex>
#include <memory>
#include <numbers>

#include "amp/tone_stack_design.h"
#include "dsp/iirfilter.h"

namespace tarnwell::plot {

double sectionMagnitude(const IIRFilter& section, double frequency, double rate) {
  using C = std::complex<double>;
  const C zInv = std::polar(1.0, -2.0 * std::numbers::pi * frequency / rate);
  const double* c = section.coef;
  if (section.form == 0) {
    // One-pole form: y = b0 y[-1] + a1 x, so H = a1 / (1 - b0 z^-1).
    return std::abs(c[IIRFilter::kA1] / (1.0 - c[IIRFilter::kB0] * zInv));
  }
  const C numerator = c[IIRFilter::kB0] + zInv * (c[IIRFilter::kB1] + zInv * c[IIRFilter::kB2]);
  const C denominator = 1.0 - zInv * (c[IIRFilter::kA1] + zInv * c[IIRFilter::kA2]);
  return std::abs(numerator / denominator);
}

std::vector<double> toneResponseDb(const ToneKnobs& knobs, double rate,
                                   std::span<const double> frequencies) {
  // The same widening of the stored floats and the same voicing rule as the effect's redesign.
  const ToneStackDesign design =
      designToneStack(knobs.deep != 0.0f, knobs.bass, knobs.treble, kFreqOffset, kTrimGain);
  std::vector<std::unique_ptr<IIRFilter>> sections;
  for (const BandDesign& band : design.band) {
    filterPrm_tag prm = bandRecord(band, rate);
    sections.push_back(std::make_unique<IIRFilter>(&prm));
  }
  std::vector<double> db;
  db.reserve(frequencies.size());
  for (const double f : frequencies) {
    double gain = design.trim;
    for (const auto& section : sections) gain *= sectionMagnitude(*section, f, rate);
    db.push_back(20.0 * std::log10(gain));
  }
  return db;
}

std::vector<double> logFrequencies(double low, double high, int count) {
  std::vector<double> f(count);
  const double ratio = std::log(high / low);
  for (int i = 0; i < count; ++i) f[i] = low * std::exp(ratio * i / (count - 1));
  if (count > 1) f.back() = high;
  return f;
}

}  // namespace tarnwell::plot
