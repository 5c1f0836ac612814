#include <fmt/format.h>

#include <vector>

#include "host/cli/bass_riff.h"
#include "host/cli/commands.h"
#include "host/cli/errors.h"
#include "host/cli/level_meter.h"
#include "host/cli/pending_output.h"
#include "host/cli/plugin_path.h"
#include "host/cli/sound_file.h"

namespace tarnwell::cli {
namespace {

constexpr const char* kDryName = "demo-dry.wav";
constexpr const char* kAmpName = "demo-amp.wav";

LevelMeter writeDry(const std::filesystem::path& path) {
  const std::vector<float> riff = synthesiseBassRiff();
  const std::vector<double> samples(riff.begin(), riff.end());
  LevelMeter levels;
  levels.add(samples.data(), static_cast<std::int64_t>(samples.size()));

  PendingOutput pending(path, true);
  SF_INFO info{};
  info.channels = 1;
  info.samplerate = BassRiff::kSampleRate;
  info.format = SF_FORMAT_WAV | SF_FORMAT_FLOAT;
  SoundFile out = SoundFile::openWrite(pending.fd(), info, path.string());
  out.write(samples.data(), static_cast<sf_count_t>(samples.size()));
  out.close();
  pending.commit();
  return levels;
}

void printLevels(const char* what, const std::filesystem::path& path, const LevelMeter& levels) {
  fmt::print("{}  {}  peak {:.1f} dBFS, RMS {:.1f} dBFS\n", what, path.string(), levels.peakDb(),
             levels.rmsDb());
}

}  // namespace

CLI::App* addDemo(CLI::App& app, DemoCommand& command) {
  CLI::App* sub = app.add_subcommand("demo", "Render a built-in bass riff through the amp");
  sub->footer(fmt::format(
      "Synthesises a few seconds of plucked bass at DI level (peaking about -6 dBFS, 44100 Hz,\n"
      "mono) and renders it through the amp at its start-up program. Writes {} and\n"
      "{} into DIR, replacing earlier demo files there.\n"
      "Example: tarnwell demo /tmp/tarnwell-demo",
      kDryName, kAmpName));
  sub->add_option("DIR", command.directory, "Directory for the two files (created if missing)")
      ->capture_default_str();
  sub->add_option("--plugin", command.plugin, kPluginOptionHelp)->type_name("PATH");
  return sub;
}

int runDemo(const DemoCommand& command) {
  std::error_code error;
  std::filesystem::create_directories(command.directory, error);
  if (error) {
    throw RunError(
        fmt::format("cannot create {}: {}", command.directory.string(), error.message()));
  }
  RenderRequest request;
  request.input = command.directory / kDryName;
  request.output = command.directory / kAmpName;
  request.plugin = command.plugin.empty() ? defaultPluginPath() : command.plugin;
  request.overwrite = true;

  const LevelMeter dry = writeDry(request.input);
  const RenderReport amp = render(request);
  printLevels("dry", request.input, dry);
  printLevels("amp", request.output, amp.levels);
  return kExitSuccess;
}

}  // namespace tarnwell::cli
