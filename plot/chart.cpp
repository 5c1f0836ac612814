#include "plot/chart.h"

#include <cairo-svg.h>
#include <cairo.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <iterator>
#include <memory>
#include <numbers>
#include <stdexcept>
#include <utility>

#include "plot/axis_ticks.h"

namespace tarnwell::plot {
namespace {

struct Rgb {
  double r, g, b;
};

// Distinct on white and from each other, also in grey.
constexpr Rgb kPalette[kMaxSeries] = {
    {0.11, 0.37, 0.66}, {0.85, 0.38, 0.10}, {0.16, 0.62, 0.24}, {0.77, 0.13, 0.23},
    {0.48, 0.31, 0.70}, {0.54, 0.35, 0.17}, {0.82, 0.31, 0.63}, {0.29, 0.29, 0.29},
};
constexpr Rgb kInk = {0.10, 0.10, 0.10};
constexpr Rgb kGrid = {0.86, 0.86, 0.86};
constexpr Rgb kMinorGrid = {0.94, 0.94, 0.94};

using Surface = std::unique_ptr<cairo_surface_t, decltype(&cairo_surface_destroy)>;
using Context = std::unique_ptr<cairo_t, decltype(&cairo_destroy)>;

cairo_status_t appendBytes(void* closure, const unsigned char* data, unsigned int length) {
  static_cast<std::string*>(closure)->append(reinterpret_cast<const char*>(data), length);
  return CAIRO_STATUS_SUCCESS;
}

void setColour(cairo_t* cr, const Rgb& c) {
  cairo_set_source_rgb(cr, c.r, c.g, c.b);
}

// Draws `s` anchored at (x, y): ax = 0, 0.5, 1 puts x at its left, centre or right; ay = 0, 0.5, 1
// puts y at the top of its capitals, their middle or the baseline.
void text(cairo_t* cr, const std::string& s, double x, double y, double ax, double ay) {
  cairo_text_extents_t e;
  cairo_text_extents(cr, s.c_str(), &e);
  cairo_font_extents_t f;
  cairo_font_extents(cr, &f);
  const double capital = f.ascent * 0.75;
  cairo_move_to(cr, x - e.x_advance * ax, y + capital * (1.0 - ay));
  cairo_show_text(cr, s.c_str());
}

double textWidth(cairo_t* cr, const std::string& s) {
  cairo_text_extents_t e;
  cairo_text_extents(cr, s.c_str(), &e);
  return e.x_advance;
}

// Data to device coordinates within the plot area.
struct Frame {
  double left, top, width, height;
  Axis x, y;

  double px(double v) const {
    const double t =
        x.log ? std::log(v / x.min) / std::log(x.max / x.min) : (v - x.min) / (x.max - x.min);
    return left + t * width;
  }
  double py(double v) const { return top + height - (v - y.min) / (y.max - y.min) * height; }
};

void drawGrid(cairo_t* cr, const Frame& f, double unit) {
  cairo_set_line_width(cr, unit * 0.08);
  if (f.x.log) {
    setColour(cr, kMinorGrid);
    for (const double v : logMinorTicks(f.x.min, f.x.max)) {
      cairo_move_to(cr, f.px(v), f.top);
      cairo_line_to(cr, f.px(v), f.top + f.height);
    }
    cairo_stroke(cr);
  }
  setColour(cr, kGrid);
  const auto xTicks = f.x.log ? logTicks(f.x.min, f.x.max) : linearTicks(f.x.min, f.x.max, 10);
  for (const Tick& t : xTicks) {
    cairo_move_to(cr, f.px(t.value), f.top);
    cairo_line_to(cr, f.px(t.value), f.top + f.height);
  }
  for (const Tick& t : linearTicks(f.y.min, f.y.max, 8)) {
    cairo_move_to(cr, f.left, f.py(t.value));
    cairo_line_to(cr, f.left + f.width, f.py(t.value));
  }
  cairo_stroke(cr);
}

void drawAxes(cairo_t* cr, const Frame& f, double unit) {
  setColour(cr, kInk);
  cairo_set_line_width(cr, unit * 0.1);
  cairo_rectangle(cr, f.left, f.top, f.width, f.height);
  cairo_stroke(cr);

  const double tickLength = unit * 0.4;
  const auto xTicks = f.x.log ? logTicks(f.x.min, f.x.max) : linearTicks(f.x.min, f.x.max, 10);
  for (const Tick& t : xTicks) {
    const double x = f.px(t.value);
    cairo_move_to(cr, x, f.top + f.height);
    cairo_line_to(cr, x, f.top + f.height + tickLength);
    text(cr, t.label, x, f.top + f.height + tickLength * 1.5, 0.5, 0.0);
  }
  for (const Tick& t : linearTicks(f.y.min, f.y.max, 8)) {
    const double y = f.py(t.value);
    cairo_move_to(cr, f.left - tickLength, y);
    cairo_line_to(cr, f.left, y);
    text(cr, t.label, f.left - tickLength * 1.5, y, 1.0, 0.5);
  }
  cairo_stroke(cr);

  text(cr, f.x.label, f.left + f.width / 2, f.top + f.height + unit * 2.6, 0.5, 0.0);
  cairo_save(cr);
  cairo_translate(cr, f.left - unit * 4.2, f.top + f.height / 2);
  cairo_rotate(cr, -std::numbers::pi / 2);
  text(cr, f.y.label, 0.0, 0.0, 0.5, 1.0);
  cairo_restore(cr);
}

void drawSeries(cairo_t* cr, const Frame& f, const Chart& chart, double unit) {
  cairo_save(cr);
  cairo_rectangle(cr, f.left, f.top, f.width, f.height);
  cairo_clip(cr);
  cairo_set_line_width(cr, unit * 0.16);
  cairo_set_line_join(cr, CAIRO_LINE_JOIN_ROUND);
  for (std::size_t s = 0; s < chart.series.size(); ++s) {
    const Series& series = chart.series[s];
    setColour(cr, kPalette[s % kMaxSeries]);
    bool drawing = false;
    for (std::size_t i = 0; i < series.x.size(); ++i) {
      const double x = series.x[i];
      const double y = series.y[i];
      if (!std::isfinite(y) || (f.x.log && x <= 0.0)) {
        drawing = false;
        continue;
      }
      // Far-off values are pulled to just outside the area, where the clip hides them.
      const double cy = std::clamp(f.py(y), f.top - f.height, f.top + 2 * f.height);
      if (drawing) {
        cairo_line_to(cr, f.px(x), cy);
      } else {
        cairo_move_to(cr, f.px(x), cy);
      }
      drawing = true;
    }
    cairo_stroke(cr);
  }
  for (const Marker& m : chart.markers) {
    if (!std::isfinite(m.y) || m.y < f.y.min || m.y > f.y.max) continue;
    setColour(cr, kPalette[m.series % kMaxSeries]);
    cairo_arc(cr, f.px(m.x), f.py(m.y), unit * 0.35, 0.0, 2 * std::numbers::pi);
    cairo_fill(cr);
    setColour(cr, kInk);
    text(cr, m.text, f.px(m.x), f.py(m.y) - unit * 0.6, 0.5, 1.0);
  }
  cairo_restore(cr);
}

// Of the four corners of the plot area, the one whose box of w x h covers the fewest points of the
// curves; top right when several tie.
std::pair<double, double> legendCorner(const Frame& f, const Chart& chart, double w, double h,
                                       double inset) {
  const double right = f.left + f.width - w - inset;
  const double bottom = f.top + f.height - h - inset;
  const std::pair<double, double> corners[] = {{right, f.top + inset},
                                               {f.left + inset, f.top + inset},
                                               {right, bottom},
                                               {f.left + inset, bottom}};
  std::size_t best = 0;
  std::size_t fewest = SIZE_MAX;
  for (std::size_t c = 0; c < std::size(corners); ++c) {
    const auto [x0, y0] = corners[c];
    std::size_t covered = 0;
    for (const Series& s : chart.series) {
      for (std::size_t i = 0; i < s.x.size(); ++i) {
        if (!std::isfinite(s.y[i]) || (f.x.log && s.x[i] <= 0.0)) continue;
        const double x = f.px(s.x[i]);
        const double y = f.py(s.y[i]);
        covered += x >= x0 && x <= x0 + w && y >= y0 && y <= y0 + h;
      }
    }
    if (covered < fewest) {
      fewest = covered;
      best = c;
    }
  }
  return corners[best];
}

void drawLegend(cairo_t* cr, const Frame& f, const Chart& chart, double unit) {
  std::vector<std::size_t> listed;
  double widest = 0.0;
  for (std::size_t s = 0; s < chart.series.size(); ++s) {
    if (chart.series[s].label.empty()) continue;
    listed.push_back(s);
    widest = std::max(widest, textWidth(cr, chart.series[s].label));
  }
  if (listed.empty()) return;
  const double line = unit * 1.5;
  const double swatch = unit * 2.0;
  const double pad = unit * 0.6;
  const double w = pad * 3 + swatch + widest;
  const double h = pad * 2 + line * listed.size();
  const auto [x0, y0] = legendCorner(f, chart, w, h, unit * 0.8);
  cairo_set_source_rgba(cr, 1.0, 1.0, 1.0, 0.9);
  cairo_rectangle(cr, x0, y0, w, h);
  cairo_fill_preserve(cr);
  setColour(cr, kGrid);
  cairo_set_line_width(cr, unit * 0.08);
  cairo_stroke(cr);
  cairo_set_line_width(cr, unit * 0.25);
  for (std::size_t i = 0; i < listed.size(); ++i) {
    const double y = y0 + pad + line * (i + 0.5);
    setColour(cr, kPalette[listed[i] % kMaxSeries]);
    cairo_move_to(cr, x0 + pad, y);
    cairo_line_to(cr, x0 + pad + swatch, y);
    cairo_stroke(cr);
    setColour(cr, kInk);
    text(cr, chart.series[listed[i]].label, x0 + pad * 2 + swatch, y, 0.0, 0.5);
  }
}

void draw(cairo_t* cr, const Chart& chart, int width, int height) {
  // One unit is the body type size; everything else is a multiple of it.
  const double unit = std::clamp(std::min(width / 70.0, height / 42.0), 9.0, 28.0);
  cairo_set_source_rgb(cr, 1.0, 1.0, 1.0);
  cairo_paint(cr);
  cairo_select_font_face(cr, "sans-serif", CAIRO_FONT_SLANT_NORMAL, CAIRO_FONT_WEIGHT_BOLD);
  cairo_set_font_size(cr, unit * 1.35);
  setColour(cr, kInk);
  text(cr, chart.title, width / 2.0, unit * 0.9, 0.5, 0.0);
  cairo_select_font_face(cr, "sans-serif", CAIRO_FONT_SLANT_NORMAL, CAIRO_FONT_WEIGHT_NORMAL);
  // A long line of settings gets smaller type rather than cut off.
  cairo_set_font_size(cr, unit);
  const double room = width - 2.0 * unit;
  const double wide = textWidth(cr, chart.subtitle);
  if (wide > room) cairo_set_font_size(cr, unit * room / wide);
  text(cr, chart.subtitle, width / 2.0, unit * 3.0, 0.5, 0.0);
  cairo_set_font_size(cr, unit);

  const double left = unit * 6.0;
  const double top = unit * 5.2;
  const Frame frame{left,    top,    width - left - unit * 2.0, height - top - unit * 4.4,
                    chart.x, chart.y};
  drawGrid(cr, frame, unit);
  drawSeries(cr, frame, chart, unit);
  drawAxes(cr, frame, unit);
  drawLegend(cr, frame, chart, unit);
}

void check(cairo_status_t status) {
  if (status != CAIRO_STATUS_SUCCESS) {
    throw std::runtime_error(std::string("cannot draw the picture: ") +
                             cairo_status_to_string(status));
  }
}

}  // namespace

std::string drawChart(const Chart& chart, ImageKind kind, int width, int height) {
  std::string bytes;
  Surface surface(kind == ImageKind::kPng
                      ? cairo_image_surface_create(CAIRO_FORMAT_RGB24, width, height)
                      : cairo_svg_surface_create_for_stream(appendBytes, &bytes, width, height),
                  cairo_surface_destroy);
  check(cairo_surface_status(surface.get()));
  if (kind == ImageKind::kSvg)
    cairo_svg_surface_set_document_unit(surface.get(), CAIRO_SVG_UNIT_PX);
  {
    Context cr(cairo_create(surface.get()), cairo_destroy);
    draw(cr.get(), chart, width, height);
    check(cairo_status(cr.get()));
  }
  if (kind == ImageKind::kPng) {
    check(cairo_surface_write_to_png_stream(surface.get(), appendBytes, &bytes));
  } else {
    cairo_surface_finish(surface.get());
    check(cairo_surface_status(surface.get()));
  }
  return bytes;
}

}  // namespace tarnwell::plot
