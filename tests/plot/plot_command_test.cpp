// `tarnwell plot` end to end: the exact tone stack agrees with the amp measured through the plug-in
// once the fixed filters cancel; measurements of the linear stand-in plug-in give its closed form;
// every picture has the asked size; bad input, or a file already there, costs one line, the
// documented exit code and no file. (Replacing with --overwrite is what every other test does.)
#include <gtest/gtest.h>

#include <complex>
#include <numbers>
#include <sstream>

#include "../host/host_test_support.h"
#include "picture_size.h"

namespace {

using namespace host_test;

// The header line as it stands (names may be quoted and hold commas) and the numbers below it.
struct Table {
  std::string header;
  std::vector<std::vector<double>> rows;
};

Table readCsv(const std::string& path) {
  Table t;
  std::istringstream in(slurp(path));
  std::getline(in, t.header);
  for (std::string line; std::getline(in, line);) {
    std::istringstream cells(line);
    std::vector<double> row;
    for (std::string cell; std::getline(cells, cell, ',');) row.push_back(std::stod(cell));
    t.rows.push_back(row);
  }
  return t;
}

Table plotCsv(const ScratchDir& dir, std::vector<std::string> args) {
  args.insert(args.begin(), "plot");
  args.insert(args.begin() + 2, dir / "out.png");
  args.insert(args.end(), {"--csv", dir / "out.csv", "--overwrite"});
  const Result r = runCommand(args);
  EXPECT_EQ(r.exitCode, 0) << r.err;
  return readCsv(dir / "out.csv");
}

// The stand-in: y = 2 VOLUME s, s <- (x + s) / 2, so H(z) = VOLUME / (1 - z^-1 / 2).
double standInDb(double volume, double f, double rate) {
  const std::complex<double> zInv = std::polar(1.0, -2 * std::numbers::pi * f / rate);
  return 20 * std::log10(volume / std::abs(1.0 - 0.5 * zInv));
}

TEST(PlotTone, AgreesWithTheAmpMeasuredThroughThePlugIn) {
  // Between two settings the fixed filters, gains and oversampling cancel in the measurement, and
  // what is left is the tone stack's change: (measured_i - measured_0) = (tone_i - tone_0).
  const ScratchDir dir;
  for (const char* rate : {"44100", "48000"}) {
    const std::vector<std::string> family = {"--deep",   "on,off", "--bass",   "1,10",
                                             "--treble", "2,9",    "--rate",   rate,
                                             "--volume", "10",     "--master", "10"};
    std::vector<std::string> tone = {"tone"}, measured = {"response", "--plugin", kAmp};
    tone.insert(tone.end(), family.begin(), family.end());
    measured.insert(measured.end(), family.begin(), family.end());
    const Table exact = plotCsv(dir, tone);
    const Table amp = plotCsv(dir, measured);
    ASSERT_EQ(exact.rows.size(), amp.rows.size());
    ASSERT_GT(exact.rows.size(), 400u);
    ASSERT_EQ(exact.rows[0].size(), 9u);
    double worst = 0;
    for (std::size_t r = 0; r < exact.rows.size(); ++r) {
      ASSERT_EQ(exact.rows[r][0], amp.rows[r][0]);  // the same frequencies
      for (std::size_t c = 2; c < exact.rows[r].size(); ++c) {
        const double d = (amp.rows[r][c] - amp.rows[r][1]) - (exact.rows[r][c] - exact.rows[r][1]);
        worst = std::max(worst, std::abs(d));
      }
    }
    EXPECT_LT(worst, 0.01) << rate;
  }
}

TEST(PlotResponse, OfTheLinearStandInIsItsClosedForm) {
  const ScratchDir dir;
  const Table t = plotCsv(
      dir, {"response", "--plugin", testPlugin("fake"), "--volume", "5.5,10", "--rate", "44100"});
  ASSERT_GT(t.rows.size(), 400u);
  for (const auto& row : t.rows) {
    EXPECT_NEAR(row[1], standInDb(0.5, row[0], 44100), 1e-6) << row[0];
    EXPECT_NEAR(row[2], standInDb(1.0, row[0], 44100), 1e-6) << row[0];
  }
}

TEST(PlotHarmonics, OfTheLinearStandInFindNoDistortionAndTheFundamentalsLevel) {
  const ScratchDir dir;
  for (const auto& [note, hz] : {std::pair{"A1", 55.0}, {"Eb1", 38.8909}, {"f#2", 92.4986}}) {
    const Result r =
        runCommand({"plot", "harmonics", dir / "h.png", "--plugin", testPlugin("fake"), "--note",
                    note, "--level", "-12", "--volume", "5.5", "--overwrite"});
    ASSERT_EQ(r.exitCode, 0) << r.err;
    double f1 = 0, h1 = 0, thd = -1;
    std::sscanf(r.out.c_str() + r.out.find("H1 "), "H1 %lf Hz %lf dBFS", &f1, &h1);
    std::sscanf(r.out.c_str() + r.out.find("THD "), "THD %lf %%", &thd);
    EXPECT_NEAR(f1, hz, 0.05) << note;
    EXPECT_NEAR(h1, -12 + standInDb(0.5, hz, 48000), 0.01) << r.out;
    EXPECT_GE(thd, 0.0);
    EXPECT_LT(thd, 1e-3) << r.out;
  }
}

TEST(Plot, EveryKindWritesAPictureOfTheAskedSize) {
  const ScratchDir dir;
  for (const char* kind : {"tone", "response", "curve", "harmonics"}) {
    for (const auto& [name, size, w, h] : {std::tuple{"a.png", "", 1200, 700},
                                           {"b.svg", "640x480", 640, 480},
                                           {"c.PNG", "900x500", 900, 500}}) {
      std::vector<std::string> args = {"plot", kind, dir / name, "--overwrite", "--plugin", kAmp};
      if (*size != '\0') args.insert(args.end(), {"--size", size});
      const Result r = runCommand(args);
      ASSERT_EQ(r.exitCode, 0) << kind << ": " << r.err;
      const std::string bytes = slurp(dir / name);
      const auto got = std::string(name).ends_with("svg") ? plot_test::svgSize(bytes)
                                                          : plot_test::pngSize(bytes);
      EXPECT_EQ(got, std::pair(w, h)) << kind << " " << name;
    }
  }
}

TEST(Plot, LegendNamesEachCurveOfAFamily) {
  const ScratchDir dir;
  const Table t = plotCsv(dir, {"tone", "--bass", "1,5.5,10", "--deep", "on,off"});
  EXPECT_EQ(t.header,
            "frequency_hz,\"DEEP on, BASS 1.00 (dB)\",\"DEEP on, BASS 5.50 (dB)\","
            "\"DEEP on, BASS 10.00 (dB)\",\"DEEP off, BASS 1.00 (dB)\","
            "\"DEEP off, BASS 5.50 (dB)\",\"DEEP off, BASS 10.00 (dB)\"");
}

TEST(Plot, BadInputCostsOneLineTheExitCodeAndNoFile) {
  struct Case {
    std::vector<std::string> args;  // after "plot"; OUT is "out.png" unless a case names another
    int exitCode;
    std::string says;
    std::vector<std::string> existing = {};  // files there before, which must stay as they were
  };
  const Case cases[] = {
      {{"spectrum", "out.png"}, 1, "unknown plot 'spectrum'"},
      {{"tone", "out.jpg"}, 1, "must end in .png or .svg"},
      {{"tone", "out"}, 1, "must end in .png or .svg"},
      {{"tone", "out.png", "--bass", ""}, 1, "--bass: empty list"},
      {{"tone", "out.png", "--bass", "1,,3"}, 1, "empty item"},
      {{"tone", "out.png", "--treble", "1,eleven"}, 1, "'eleven' is not a dial position"},
      {{"tone", "out.png", "--bass", "0.5"}, 1, "not a dial position from 1 to 10"},
      {{"tone", "out.png", "--deep", "on,maybe"}, 1, "'maybe' is neither on nor off"},
      {{"tone", "out.png", "--bass", "1,2,3", "--treble", "1,2,3"}, 1, "make 9 curves; at most 8"},
      {{"tone", "out.png", "--volume", "1,10"}, 1, "does not change with VOLUME"},
      {{"curve", "out.png", "--bass", "1,10"}, 1, "does not change with BASS"},
      {{"tone", "out.png", "--size", "100x100"}, 1, "--size '100x100'"},
      {{"tone", "out.png", "--size", "wide"}, 1, "--size 'wide'"},
      {{"tone", "out.png", "--rate", "100"}, 1, "--rate"},
      {{"harmonics", "out.png", "--note", "H2"}, 1, "--note 'H2' is not a note"},
      {{"harmonics", "out.png", "--note", "A7", "--rate", "8000"}, 1, "too high"},
      {{"harmonics", "out.png", "--level", "3"}, 1, "--level"},
      {{"tone", "out.png", "--program", "17"}, 1, "--program"},
      {{"tone", "out.png", "--csv", "out.png"}, 1, "names the picture itself"},
      {{"tone", "missing/out.png"}, 2, "cannot write"},
      {{"tone", "out.png", "--csv", "missing/out.csv"}, 2, "cannot write"},
      {{"tone", "out.png", "--plugin", "missing.so"}, 2, "missing.so"},
      // Either target existing refuses before anything is written, the other one included.
      {{"tone", "out.png"}, 1, "exists; add --overwrite", {"out.png"}},
      {{"tone", "new.png", "--csv", "out.csv"}, 1, "exists; add --overwrite", {"out.csv"}},
  };
  for (const Case& c : cases) {
    const ScratchDir dir;
    std::map<std::string, std::string> before;
    for (const std::string& name : c.existing) std::ofstream(dir / name) << (before[name] = "mine");
    std::vector<std::string> args = {"plot"};
    for (const std::string& a : c.args)
      args.push_back(
          a.starts_with("out") || a.starts_with("new") || a.starts_with("missing") ? dir / a : a);
    const Result r = runCommand(args);
    const std::string what = testing::PrintToString(c.args);
    EXPECT_EQ(r.exitCode, c.exitCode) << what << r.err;
    EXPECT_NE(r.err.find(c.says), std::string::npos) << what << r.err;
    EXPECT_EQ(std::count(r.err.begin(), r.err.end(), '\n'), 1) << what << r.err;
    EXPECT_TRUE(dir.files() == before) << what << ": files made or changed";
  }
}

}  // namespace
