// The four kinds of `tarnwell plot`, each turning a family of settings into a chart, its numbers
// (one column per curve) and a report for stdout:
//   tone       the tone stack's exact response, from the seven sections the amp designs;
//   response   the whole amp measured through the plug-in (settled instances, quiet periodic
//   noise); curve      the two waveshaper curves for the rate's oversampling factor; harmonics  the
//   spectrum of a settled instance's output for a sine, with harmonic levels and THD.
//
// Control thread. Throws PluginError when the plug-in fails.
#pragma once

#include <array>
#include <string>
#include <vector>

#include "host/cli/plot_family.h"
#include "plot/chart.h"
#include "plot/csv.h"

namespace tarnwell::cli {

enum class PlotKind { kTone, kResponse, kCurve, kHarmonics };

struct PlotJob {
  PlotKind kind;
  double rate;
  std::string note;  // harmonics: the note as given
  double noteHz;
  double levelDb;  // harmonics: the sine's peak, dBFS
};

struct PlotResult {
  plot::Chart chart;
  std::vector<plot::Column> columns;
  std::string report;  // for stdout; may be empty
};

// The controls (kControls order) a kind depends on; lists for the others would draw one curve
// several times.
std::array<bool, kControls.size()> controlsOf(PlotKind kind);

PlotResult plotTone(const Family& family, const PlotJob& job);
PlotResult plotResponse(const Family& family, const PlotJob& job);
PlotResult plotCurve(const PlotJob& job);
PlotResult plotHarmonics(const Family& family, const PlotJob& job);

}  // namespace tarnwell::cli
