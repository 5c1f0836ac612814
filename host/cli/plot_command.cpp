#include <fmt/format.h>

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <optional>

#include "host/cli/commands.h"
#include "host/cli/errors.h"
#include "host/cli/note_name.h"
#include "host/cli/pending_output.h"
#include "host/cli/plot_kinds.h"
#include "host/cli/plugin_path.h"
#include "plot/small_signal.h"

namespace tarnwell::cli {
namespace {

constexpr int kMinSide = 320;
constexpr int kMaxSide = 4096;

const std::pair<const char*, PlotKind> kKinds[] = {{"tone", PlotKind::kTone},
                                                   {"response", PlotKind::kResponse},
                                                   {"curve", PlotKind::kCurve},
                                                   {"harmonics", PlotKind::kHarmonics}};

PlotKind kindByName(const std::string& name) {
  for (const auto& [text, kind] : kKinds) {
    if (name == text) return kind;
  }
  throw UsageError(fmt::format("unknown plot '{}' (use tone, response, curve or harmonics)", name));
}

plot::ImageKind imageKindOf(const std::filesystem::path& output) {
  std::string extension = output.extension().string();
  std::ranges::transform(extension, extension.begin(),
                         [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  if (extension == ".png") return plot::ImageKind::kPng;
  if (extension == ".svg") return plot::ImageKind::kSvg;
  throw UsageError(fmt::format("{}: the picture's name must end in .png or .svg", output.string()));
}

std::pair<int, int> sizeOf(const std::string& text) {
  int width = 0;
  int height = 0;
  char end = 0;
  if (std::sscanf(text.c_str(), "%dx%d%c", &width, &height, &end) != 2 || width < kMinSide ||
      height < kMinSide || width > kMaxSide || height > kMaxSide) {
    throw UsageError(fmt::format("--size '{}' is not WIDTHxHEIGHT with each side {} to {} pixels",
                                 text, kMinSide, kMaxSide));
  }
  return {width, height};
}

// Lists only where the kind depends on the control: anything else would repeat one curve.
void checkLists(const ControlLists& lists, PlotKind kind, const std::string& kindName) {
  const auto used = controlsOf(kind);
  for (std::size_t c = 0; c < kControls.size(); ++c) {
    if (lists[c].size() > 1 && !used[c]) {
      throw UsageError(fmt::format("a {} plot does not change with {}; give --{} one value",
                                   kindName, kControls[c].name, kControls[c].symbol));
    }
  }
}

PlotJob jobOf(const PlotCommand& command, PlotKind kind) {
  PlotJob job{kind, command.rate, command.note, 0.0, command.level};
  if (kind != PlotKind::kHarmonics) return job;
  const auto hz = noteFrequency(command.note);
  if (!hz) {
    throw UsageError(fmt::format(
        "--note '{}' is not a note such as A1, F#2 or Eb1 (octaves 0 to 8)", command.note));
  }
  // Room for the second harmonic below half the rate.
  if (*hz > command.rate / 4.0) {
    throw UsageError(fmt::format("--note {} ({:.1f} Hz) is too high for {:g} Hz", command.note, *hz,
                                 command.rate));
  }
  job.noteHz = *hz;
  return job;
}

}  // namespace

CLI::App* addPlot(CLI::App& app, PlotCommand& command) {
  CLI::App* sub = app.add_subcommand("plot", "Draw what the knobs and the drive do (PNG or SVG)");
  sub->footer(fmt::format(
      "KIND is one of:\n"
      "  tone       the tone stack's magnitude response, 20 Hz to 20 kHz, computed exactly from\n"
      "             the seven filters the amp designs for DEEP, BASS and TREBLE (trim included)\n"
      "  response   the whole amp's small-signal response, measured through the plug-in with a\n"
      "             quiet periodic noise (random-phase sines at {:g} dBFS RMS) after settling on\n"
      "             silence: input, output and oversampling filters included\n"
      "  curve      the two waveshaper transfer curves, input -1.2 to 1.2 against output, as the\n"
      "             amp builds them for --rate (knobs do not apply)\n"
      "  harmonics  the spectrum of the amp's output for a sine at --note and --level, with the\n"
      "             level of each harmonic and the THD (harmonics 2 to 10) printed and marked\n"
      "Knob values are dial positions on the amp's 1-to-10 scale; knobs not given stay as the\n"
      "program has them. A knob or --deep may take a comma-separated list to draw one curve per\n"
      "value, every combination of the lists, at most {} curves, with a legend. --csv writes the\n"
      "numbers: the frequency (or input) column, then one column per curve. OUT and the CSV are\n"
      "written only when complete; existing files are kept unless --overwrite.\n"
      "Exit codes: 0 success, 1 usage error, 2 processing or file error.\n"
      "Examples:\n"
      "  tarnwell plot tone tone.png --bass 1,5.5,10 --deep on,off\n"
      "  tarnwell plot response amp.svg --volume 8 --csv amp.csv\n"
      "  tarnwell plot curve shapers.png --rate 44100\n"
      "  tarnwell plot harmonics a1.png --note A1 --level -12 --volume 7",
      plot::kSmallSignalRmsDb, kMaxCurves));
  sub->add_option("KIND", command.kind, "tone, response, curve or harmonics")->required();
  sub->add_option("OUT", command.output, "Picture to write: NAME.png or NAME.svg")->required();
  sub->add_option_function<int>(
         "--program", [&command](const int& n) { command.program = n; },
         "Program (preset) to start from, 1 to 16 as users count")
      ->check(CLI::Range(1, 16))
      ->type_name("N");
  for (std::size_t c = 0; c < kControls.size(); ++c) {
    const ControlFacts& facts = kControls[c];
    const bool isSwitch = facts.kind == ControlKind::kSwitch;
    sub->add_option(fmt::format("--{}", facts.symbol), command.controls[c],
                    isSwitch ? fmt::format("{} voicing of the tone stack, or a list", facts.name)
                             : fmt::format("{} dial position, 1 to 10, or a list", facts.name))
        ->type_name(isSwitch ? "on|off[,..]" : "D[,D..]");
  }
  sub->add_option("--rate", command.rate, "Host sample rate in Hz")
      ->check(CLI::Range(8000.0, 768000.0))
      ->type_name("HZ")
      ->capture_default_str();
  sub->add_option("--note", command.note, "harmonics: the sine's note (A4 = 440 Hz)")
      ->type_name("NOTE")
      ->capture_default_str();
  sub->add_option("--level", command.level, "harmonics: the sine's peak level in dBFS")
      ->check(CLI::Range(-120.0, 0.0))
      ->type_name("DBFS")
      ->capture_default_str();
  sub->add_option("--csv", command.csv, "Also write the numbers: one column per curve")
      ->type_name("FILE");
  sub->add_option("--size", command.size, "Picture size in pixels")
      ->type_name("WxH")
      ->capture_default_str();
  sub->add_flag("--overwrite", command.overwrite, "Replace OUT and the CSV if they exist");
  sub->add_option("--plugin", command.plugin, kPluginOptionHelp)->type_name("PATH");
  return sub;
}

int runPlot(const PlotCommand& command) {
  const PlotKind kind = kindByName(command.kind);
  const plot::ImageKind image = imageKindOf(command.output);
  const auto [width, height] = sizeOf(command.size);
  const ControlLists lists = parseControlLists(command.controls);
  checkLists(lists, kind, command.kind);
  const PlotJob job = jobOf(command, kind);
  if (!command.csv.empty() && command.csv == command.output) {
    throw UsageError("--csv names the picture itself; choose another file");
  }
  // Both outputs are claimed before any work, so a CSV that cannot be written costs the picture
  // too: either both appear or neither does.
  PendingOutput pictureFile(command.output, command.overwrite);
  std::optional<PendingOutput> numbersFile;
  if (!command.csv.empty()) numbersFile.emplace(command.csv, command.overwrite);

  PlotResult result;
  if (kind == PlotKind::kCurve) {
    result = plotCurve(job);
  } else {
    const Family family = openFamily(command.plugin.empty() ? defaultPluginPath() : command.plugin,
                                     command.program, lists);
    result = kind == PlotKind::kTone       ? plotTone(family, job)
             : kind == PlotKind::kResponse ? plotResponse(family, job)
                                           : plotHarmonics(family, job);
  }
  const std::string picture = plot::drawChart(result.chart, image, width, height);

  pictureFile.write(picture);
  if (numbersFile) numbersFile->write(plot::csvTable(result.columns));
  pictureFile.commit();
  if (numbersFile) numbersFile->commit();

  fmt::print("{}", result.report);
  fmt::print("wrote {} ({}x{})\n", command.output.string(), width, height);
  if (numbersFile) fmt::print("wrote {}\n", command.csv.string());
  return kExitSuccess;
}

}  // namespace tarnwell::cli
