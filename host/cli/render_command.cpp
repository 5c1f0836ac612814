#include <fmt/format.h>

#include <algorithm>
#include <cctype>
#include <cstdio>

#include "host/cli/commands.h"
#include "host/cli/dial_validator.h"
#include "host/cli/errors.h"
#include "host/cli/plugin_path.h"

namespace tarnwell::cli {

CLI::App* addRender(CLI::App& app, RenderCommand& command) {
  RenderRequest& request = command.request;
  ToneSettings& tone = request.tone;
  CLI::App* sub = app.add_subcommand("render", "Render an audio file through the amp");
  sub->footer(
      "Knob values are dial positions on the amp's 1-to-10 scale (5.5 is the middle). Each\n"
      "channel runs through its own amp at the file's own sample rate. OUT is written only when\n"
      "complete; the amp expects a DI level peaking around -6 dBFS.\n"
      "Exit codes: 0 success, 1 usage error, 2 processing or file error.\n"
      "Example: tarnwell render bass-di.wav bass-amp.wav --program 3 --deep on --bass 7");
  sub->add_option("IN", request.input, "Input audio file")->required();
  sub->add_option("OUT", request.output, "Output audio file (kept if it exists, see --overwrite)")
      ->required();
  sub->add_option_function<int>(
         "--program", [&tone](const int& n) { tone.program = n; },
         "Program (preset) to start from, 1 to 16 as users count")
      ->check(CLI::Range(1, 16))
      ->type_name("N");
  sub->add_option("--deep", command.deep, "DEEP voicing of the tone stack")
      ->check(CLI::IsMember({"on", "off"}, CLI::ignore_case).description(""))
      ->type_name("on|off");
  const struct {
    const char* option;
    const char* name;
    std::optional<double>* target;
  } knobs[] = {
      {"--volume", "VOLUME", &tone.volume},
      {"--treble", "TREBLE", &tone.treble},
      {"--bass", "BASS", &tone.bass},
      {"--master", "MASTER", &tone.master},
  };
  for (const auto& knob : knobs) {
    sub->add_option_function<double>(
           knob.option, [target = knob.target](const double& d) { *target = d; },
           fmt::format("{} dial position, 1 to 10", knob.name))
        ->check(dialPosition())
        ->type_name("D");
  }
  sub->add_option("--block", request.blockFrames, "Frames per processing block")
      ->check(CLI::Range(1, kMaxBlockFrames))
      ->type_name("N")
      ->capture_default_str();
  sub->add_option("--format", command.format,
                  "Sample encoding of OUT instead of the input's: " + formatNameList())
      ->check(encodingName())
      ->type_name("SUBTYPE");
  sub->add_flag("--overwrite", request.overwrite, "Replace OUT if it exists");
  sub->add_option("--plugin", request.plugin, kPluginOptionHelp)->type_name("PATH");
  sub->add_flag("-q,--quiet", request.quiet, "Print nothing but warnings and errors");
  return sub;
}

int runRender(RenderCommand& command) {
  RenderRequest& request = command.request;
  if (!command.deep.empty()) {
    std::ranges::transform(command.deep, command.deep.begin(),
                           [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    request.tone.deep = command.deep == "on";
  }
  if (!command.format.empty()) request.format = formatByName(command.format);
  if (request.plugin.empty()) request.plugin = defaultPluginPath();

  const RenderReport report = render(request);
  if (!request.quiet) {
    fmt::print("wrote {}: {} Hz, {} channel{}, {}, {:.2f} s; peak {:.1f} dBFS, RMS {:.1f} dBFS\n",
               request.output.string(), report.sampleRate, report.channels,
               report.channels == 1 ? "" : "s", describeFormat(report.format),
               static_cast<double>(report.frames) / report.sampleRate, report.levels.peakDb(),
               report.levels.rmsDb());
  }
  if (report.missingFrames > 0 || !report.readError.empty()) {
    const std::string why = report.readError.empty() ? "" : " (" + report.readError + ")";
    const std::string missing =
        report.missingFrames > 0
            ? fmt::format("ends {} frames before its header says", report.missingFrames)
            : "could not be read to the end";
    fmt::print(stderr, "tarnwell: warning: {} {}{}; rendered the {} frames there\n",
               request.input.string(), missing, why, report.frames);
  }
  if (report.clipped) {
    fmt::print(stderr,
               "tarnwell: warning: {} samples clipped in {} (peak {:+.1f} dBFS); turn MASTER or "
               "VOLUME down, or write --format FLOAT\n",
               report.levels.overFullScale(), request.output.string(), report.levels.peakDb());
  }
  return kExitSuccess;
}

}  // namespace tarnwell::cli
