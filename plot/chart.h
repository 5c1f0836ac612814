// A line chart drawn with Cairo into PNG or SVG bytes: a title and a line of settings above, a
// framed plot area with grid, ticks and axis labels (units in the label), one coloured line per
// series with a legend, and labelled point markers (harmonics). Non-finite points break a line;
// everything is clipped to the plot area. Sizes of type and lines follow the picture's size.
//
// Control thread; no state between calls.
#pragma once

#include <string>
#include <vector>

namespace tarnwell::plot {

enum class ImageKind { kPng, kSvg };

struct Axis {
  std::string label;  // with its unit, e.g. "Frequency (Hz)"
  double min;
  double max;
  bool log = false;
};

struct Series {
  std::string label;  // shown in the legend; empty: not listed
  std::vector<double> x;
  std::vector<double> y;
};

struct Marker {
  int series;  // takes that series' colour
  double x;
  double y;
  std::string text;
};

struct Chart {
  std::string title;
  std::string subtitle;
  Axis x;
  Axis y;
  std::vector<Series> series;
  std::vector<Marker> markers;
};

// At most this many series get colours of their own.
constexpr int kMaxSeries = 8;

// The picture's file contents. Throws std::runtime_error when Cairo fails.
std::string drawChart(const Chart& chart, ImageKind kind, int width, int height);

}  // namespace tarnwell::plot
