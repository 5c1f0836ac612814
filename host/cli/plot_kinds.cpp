#include "host/cli/plot_kinds.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <numbers>

#include "host/settle.h"
#include "plot/shaper_curves.h"
#include "plot/small_signal.h"
#include "plot/spectrum.h"
#include "plot/tone_response.h"

namespace tarnwell::cli {
namespace {

constexpr double kLowHz = 20.0;
constexpr double kHighHz = 20000.0;
constexpr int kResponsePoints = 480;
constexpr int kBlockFrames = 512;
constexpr int kHarmonicOrders = 10;
constexpr double kCurveLimit = 1.2;  // a little beyond the tables' +-1, to show the clamp
constexpr int kCurveSteps = 960;
constexpr int kSpectrumBands = 1500;  // peak-held bands drawn, where the CSV keeps every bin
constexpr double kSpectrumSpanDb = 140.0;

const plot::Axis kFrequencyAxis = {"Frequency (Hz)", kLowHz, kHighHz, true};

double highestFrequency(double rate) {
  return std::min(kHighHz, 0.49 * rate);
}

std::string rateText(double rate) {
  return fmt::format("{:g} Hz", rate);
}

// Rounds the range of the finite values out to `step`, with one step to spare on each side.
plot::Axis levelAxis(const std::vector<plot::Series>& series, std::string label, double step) {
  double low = INFINITY;
  double high = -INFINITY;
  for (const auto& s : series) {
    for (const double v : s.y) {
      if (!std::isfinite(v)) continue;
      low = std::min(low, v);
      high = std::max(high, v);
    }
  }
  if (!std::isfinite(low)) low = high = 0.0;
  return {std::move(label), std::floor(low / step) * step - step,
          std::ceil(high / step) * step + step, false};
}

// The instance prepared at the rate and settled, as every measurement starts.
host::PluginInstance& ready(host::PluginInstance& instance, double rate) {
  instance.prepare(rate, kBlockFrames);
  host::settle(instance);
  return instance;
}

std::string seriesName(const Family& family, std::size_t m, const char* single) {
  const std::string label = family.label(m);
  return label.empty() ? single : label;
}

// Peak hold over log-spaced bands, so a harmonic's peak survives the thinning.
plot::Series thinned(const std::vector<double>& f, const std::vector<double>& db, double high) {
  plot::Series s;
  const double ratio = std::pow(high / kLowHz, 1.0 / kSpectrumBands);
  std::size_t k = 0;
  for (double edge = kLowHz; edge < high; edge *= ratio) {
    double peak = -INFINITY;
    double at = edge;
    for (; k < f.size() && f[k] < edge * ratio; ++k) {
      if (f[k] >= edge && db[k] > peak) {
        peak = db[k];
        at = f[k];
      }
    }
    if (std::isfinite(peak)) {
      s.x.push_back(at);
      s.y.push_back(peak);
    }
  }
  return s;
}

std::string harmonicTable(const plot::HarmonicAnalysis& a) {
  std::string out;
  const double fundamental = a.harmonics.empty() ? 0.0 : a.harmonics.front().levelDb;
  for (const plot::Harmonic& h : a.harmonics) {
    out += fmt::format("  H{:<2} {:8.1f} Hz  {:7.1f} dBFS", h.order, h.frequency, h.levelDb);
    if (h.order > 1) out += fmt::format("  {:7.1f} dBc", h.levelDb - fundamental);
    out += '\n';
  }
  return out + fmt::format("  THD {:.3g} % ({:.1f} dB), harmonics 2 to {}\n", a.thdPercent, a.thdDb,
                           a.harmonics.empty() ? 0 : a.harmonics.back().order);
}

}  // namespace

std::array<bool, kControls.size()> controlsOf(PlotKind kind) {
  std::array<bool, kControls.size()> used{};
  for (std::size_t c = 0; c < kControls.size(); ++c) {
    const int index = kControls[c].index;
    switch (kind) {
      case PlotKind::kTone:
        used[c] = index == kParamDeep || index == kParamBass || index == kParamTreble;
        break;
      case PlotKind::kCurve:
        used[c] = false;
        break;
      default:
        used[c] = true;
        break;
    }
  }
  return used;
}

PlotResult plotTone(const Family& family, const PlotJob& job) {
  // The frequencies `response` measures at, so the two CSVs line up row by row.
  const auto f = plot::excitedFrequencies(
      job.rate, plot::logFrequencies(kLowHz, highestFrequency(job.rate), kResponsePoints));
  PlotResult result;
  result.columns.push_back({"frequency_hz", f});
  for (std::size_t m = 0; m < family.members.size(); ++m) {
    const host::PluginInstance& amp = *family.members[m];
    const plot::ToneKnobs knobs{amp.parameter(kParamDeep), amp.parameter(kParamBass),
                                amp.parameter(kParamTreble)};
    const std::string name = seriesName(family, m, "tone stack");
    const auto db = plot::toneResponseDb(knobs, job.rate, f);
    result.chart.series.push_back({family.members.size() > 1 ? name : "", f, db});
    result.columns.push_back({name + " (dB)", db});
  }
  result.chart.title = "Tone stack: magnitude response, output trim included";
  result.chart.subtitle = fmt::format("{} · {} · exact, from the seven designed sections",
                                      family.settings(controlsOf(job.kind)), rateText(job.rate));
  result.chart.x = kFrequencyAxis;
  result.chart.y = levelAxis(result.chart.series, "Gain (dB)", 5.0);
  return result;
}

PlotResult plotResponse(const Family& family, const PlotJob& job) {
  const auto wanted = plot::logFrequencies(kLowHz, highestFrequency(job.rate), kResponsePoints);
  PlotResult result;
  for (std::size_t m = 0; m < family.members.size(); ++m) {
    host::PluginInstance& amp = ready(*family.members[m], job.rate);
    const auto measured = plot::measureSmallSignal(
        [&amp](const double* in, double* out, int frames) { amp.process(in, out, frames); },
        job.rate, wanted, kBlockFrames);
    if (m == 0) result.columns.push_back({"frequency_hz", measured.frequency});
    const std::string name = seriesName(family, m, "whole amp");
    result.chart.series.push_back(
        {family.members.size() > 1 ? name : "", measured.frequency, measured.gainDb});
    result.columns.push_back({name + " (dB)", measured.gainDb});
  }
  result.chart.title = "Whole amp: small-signal response measured through the plug-in";
  result.chart.subtitle = fmt::format("{} · {} · periodic noise at {:g} dBFS RMS",
                                      family.settings(controlsOf(job.kind)), rateText(job.rate),
                                      plot::kSmallSignalRmsDb);
  result.chart.x = kFrequencyAxis;
  result.chart.y = levelAxis(result.chart.series, "Gain, output over input (dB)", 5.0);
  return result;
}

PlotResult plotCurve(const PlotJob& job) {
  const plot::ShaperCurves curves = plot::shaperCurves(job.rate, kCurveLimit, kCurveSteps);
  const int factor = plot::oversamplingFactor(job.rate);
  PlotResult result;
  result.chart.series = {
      {fmt::format("first stage (built for {}x oversampling)", factor), curves.input,
       curves.firstStage},
      {"second stage", curves.input, curves.secondStage},
  };
  result.columns = {{"input", curves.input},
                    {"first_stage", curves.firstStage},
                    {"second_stage", curves.secondStage}};
  result.chart.title = "Waveshapers: transfer curves";
  result.chart.subtitle =
      fmt::format("{} ({}x oversampling) · inputs beyond ±1 read the ends of the tables",
                  rateText(job.rate), factor);
  result.chart.x = {"Input (full scale = 1)", -kCurveLimit, kCurveLimit, false};
  result.chart.y = {"Output (full scale = 1)", -1.2, 1.2, false};
  return result;
}

PlotResult plotHarmonics(const Family& family, const PlotJob& job) {
  int n = 1;
  while (n < job.rate) n *= 2;
  const int warmUp = static_cast<int>(job.rate / 2);  // let the filters reach their steady state
  const double amplitude = std::pow(10.0, job.levelDb / 20.0);
  std::vector<double> sine(warmUp + n);
  for (std::size_t i = 0; i < sine.size(); ++i)
    sine[i] = amplitude * std::sin(2.0 * std::numbers::pi * job.noteHz * i / job.rate);

  PlotResult result;
  double top = -INFINITY;
  for (std::size_t m = 0; m < family.members.size(); ++m) {
    host::PluginInstance& amp = ready(*family.members[m], job.rate);
    std::vector<double> out(sine.size());
    for (std::size_t start = 0; start < sine.size(); start += kBlockFrames) {
      const int frames = static_cast<int>(std::min<std::size_t>(kBlockFrames, sine.size() - start));
      amp.process(sine.data() + start, out.data() + start, frames);
    }
    const auto analysis = plot::analyseHarmonics(std::span(out).subspan(warmUp), job.rate,
                                                 job.noteHz, kHarmonicOrders);
    const std::string name = seriesName(family, m, "output");
    if (m == 0) result.columns.push_back({"frequency_hz", analysis.frequency});
    result.columns.push_back({name + " (dBFS)", analysis.levelDb});

    plot::Series series = thinned(analysis.frequency, analysis.levelDb, highestFrequency(job.rate));
    series.label = fmt::format("{}{}THD {:.3g} %", family.label(m),
                               family.label(m).empty() ? "" : ": ", analysis.thdPercent);
    result.chart.series.push_back(std::move(series));
    for (const plot::Harmonic& h : analysis.harmonics) {
      result.chart.markers.push_back(
          {static_cast<int>(m), h.frequency, h.levelDb, fmt::format("H{}", h.order)});
      top = std::max(top, h.levelDb);
    }
    if (!result.report.empty()) result.report += '\n';
    if (family.members.size() > 1) result.report += name + '\n';
    result.report += harmonicTable(analysis);
  }
  result.chart.title = fmt::format("Harmonics: {} ({:.2f} Hz) at {:g} dBFS into the amp", job.note,
                                   job.noteHz, job.levelDb);
  result.chart.subtitle = fmt::format("{} · {} · Blackman-Harris window, {} points",
                                      family.settings(controlsOf(job.kind)), rateText(job.rate), n);
  result.chart.x = kFrequencyAxis;
  const double ceiling = std::ceil(top / 10.0) * 10.0 + 10.0;
  result.chart.y = {"Level (dBFS, sine peak)", ceiling - kSpectrumSpanDb, ceiling, false};
  return result;
}

}  // namespace tarnwell::cli
