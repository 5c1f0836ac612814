// Pictures and tables: a drawn chart is a PNG or SVG of the asked size with its curve where the
// axes put it; the axes' ticks read as a person expects; the CSV reads back exactly.
#include "plot/chart.h"

#include <gtest/gtest.h>

#include <cmath>
#include <sstream>

#include "picture_size.h"
#include "plot/axis_ticks.h"
#include "plot/csv.h"

namespace {

using namespace tarnwell::plot;

Chart sampleChart() {
  Chart chart;
  chart.title = "Title";
  chart.subtitle = "settings";
  chart.x = {"Frequency (Hz)", 20, 20000, true};
  chart.y = {"Gain (dB)", -30, 10, false};
  // A flat line at 0 dB, a gap (non-finite values) and a far-off value the clip must hide.
  chart.series.push_back({"flat", {20, 100, 1000, 20000}, {0, 0, 0, 0}});
  chart.series.push_back({"", {20, 50, 100, 200}, {-10, NAN, -INFINITY, 1e300}});
  chart.markers.push_back({0, 1000, 0, "H1"});
  return chart;
}

TEST(Chart, WritesPngAndSvgOfTheAskedSize) {
  for (const auto& [w, h] : {std::pair{1200, 700}, {900, 500}, {320, 320}}) {
    EXPECT_EQ(plot_test::pngSize(drawChart(sampleChart(), ImageKind::kPng, w, h)), std::pair(w, h));
    EXPECT_EQ(plot_test::svgSize(drawChart(sampleChart(), ImageKind::kSvg, w, h)), std::pair(w, h));
  }
}

TEST(Chart, DrawsTheCurveWhereTheAxesPutIt) {
  // The 0 dB line lies 10/40 of the way down the plot area: find the first series' colour in a
  // column at mid-plot and check it sits above the middle, nowhere near the bottom.
  cairo_surface_t* s = plot_test::decodePng(drawChart(sampleChart(), ImageKind::kPng, 800, 600));
  ASSERT_EQ(cairo_surface_status(s), CAIRO_STATUS_SUCCESS);
  const unsigned char* data = cairo_image_surface_get_data(s);
  const int stride = cairo_image_surface_get_stride(s);
  int found = -1;
  for (int y = 0; y < 600 && found < 0; ++y) {
    const auto* px =
        reinterpret_cast<const std::uint32_t*>(data + static_cast<std::ptrdiff_t>(y) * stride) +
        400;
    const int r = (*px >> 16) & 0xff, g = (*px >> 8) & 0xff, b = *px & 0xff;
    if (b > 140 && r < 60 && g < 120) found = y;  // the first series' blue
  }
  cairo_surface_destroy(s);
  ASSERT_GE(found, 0);
  // Plot area for 800x600: unit 11.43, top 59.4, height 600 - 59.4 - 50.3.
  const double top = 5.2 * 800 / 70.0, height = 600 - top - 4.4 * 800 / 70.0;
  EXPECT_NEAR(found, top + height * 0.25, 3.0);
}

std::vector<std::string> labels(const std::vector<Tick>& ticks) {
  std::vector<std::string> out;
  out.reserve(ticks.size());
  for (const Tick& t : ticks) out.push_back(t.label);
  return out;
}

TEST(AxisTicks, ReadAsAPersonWritesThem) {
  EXPECT_EQ(
      labels(logTicks(20, 20000)),
      (std::vector<std::string>{"20", "50", "100", "200", "500", "1k", "2k", "5k", "10k", "20k"}));
  EXPECT_EQ(labels(linearTicks(-15, 25, 8)),
            (std::vector<std::string>{"-15", "-10", "-5", "0", "5", "10", "15", "20", "25"}));
  EXPECT_EQ(labels(linearTicks(-1.2, 1.2, 8)),
            (std::vector<std::string>{"-1.0", "-0.5", "0.0", "0.5", "1.0"}));
  EXPECT_EQ(logMinorTicks(20, 100).size(), 9u);  // 20..90, 100
}

TEST(Csv, ReadsBackExactlyWithOneColumnPerCurve) {
  const double third = 1.0 / 3.0;
  const std::string text = csvTable({{"frequency_hz", {20.5, 1000}},
                                     {"BASS 1.00, DEEP on (dB)", {third, -INFINITY}},
                                     {"short", {1e-300}}});
  std::istringstream in(text);
  std::string line;
  std::getline(in, line);
  EXPECT_EQ(line, R"x(frequency_hz,"BASS 1.00, DEEP on (dB)",short)x");
  std::getline(in, line);
  double a = 0, b = 0, c = 0;
  ASSERT_EQ(std::sscanf(line.c_str(), "%lf,%lf,%lf", &a, &b, &c), 3);
  EXPECT_EQ(b, third);
  EXPECT_EQ(c, 1e-300);
  std::getline(in, line);
  EXPECT_EQ(line, "1000,-inf,");
}

}  // namespace
