#include "host/cli/render.h"

#include <fmt/format.h>

#include <algorithm>
#include <memory>
#include <vector>

#include "host/cli/errors.h"
#include "host/cli/pending_output.h"
#include "host/cli/progress_line.h"
#include "host/cli/sound_file.h"
#include "host/plugin_instance.h"
#include "host/settle.h"

namespace tarnwell::cli {
namespace {

using Rack = std::vector<std::unique_ptr<host::PluginInstance>>;

SF_INFO outputInfo(const SF_INFO& input, const std::optional<SampleFormat>& format) {
  SF_INFO out{};
  out.channels = input.channels;
  out.samplerate = input.samplerate;
  out.format = input.format;
  if (format) out.format = (input.format & SF_FORMAT_TYPEMASK) | format->subtype;
  if (!canWrite(out.format, out.channels, out.samplerate)) {
    throw UsageError(
        fmt::format("cannot write {} for {} channel(s) at {} Hz; choose another --format",
                    describeFormat(out.format), out.channels, out.samplerate));
  }
  return out;
}

Rack buildRack(const RenderRequest& request, int channels, int sampleRate) {
  const auto library = host::PluginLibrary::open(request.plugin);
  Rack rack;
  for (int c = 0; c < channels; ++c) {
    auto& instance = rack.emplace_back(std::make_unique<host::PluginInstance>(library));
    applyTone(request.tone, *instance);
    instance->prepare(sampleRate, request.blockFrames);
    host::settle(*instance);
  }
  return rack;
}

// The per-block loop: de-interleave, one instance per channel, interleave, meter, write.
void stream(SoundFile& in, SoundFile& out, Rack& rack, int blockFrames, ProgressLine& progress,
            LevelMeter& meter) {
  const int channels = static_cast<int>(rack.size());
  std::vector<double> frames(static_cast<std::size_t>(blockFrames) * channels);
  std::vector<double> dry(blockFrames);
  std::vector<double> wet(blockFrames);
  for (;;) {
    const auto n = static_cast<int>(in.read(frames.data(), blockFrames));
    if (n == 0) break;
    if (channels == 1) {  // already one channel's samples: no copies
      rack[0]->process(frames.data(), wet.data(), n);
      meter.add(wet.data(), n);
      out.write(wet.data(), n);
    } else {
      for (int c = 0; c < channels; ++c) {
        for (int i = 0; i < n; ++i) dry[i] = frames[i * channels + c];
        rack[c]->process(dry.data(), wet.data(), n);
        for (int i = 0; i < n; ++i) frames[i * channels + c] = wet[i];
      }
      meter.add(frames.data(), static_cast<std::int64_t>(n) * channels);
      out.write(frames.data(), n);
    }
    progress.advance(n);
  }
}

}  // namespace

void checkDistinct(const std::filesystem::path& input, const std::filesystem::path& output) {
  std::error_code error;  // either missing: nothing to compare
  if (std::filesystem::equivalent(input, output, error)) {
    throw UsageError(
        fmt::format("{} is the input file itself; choose another output", output.string()));
  }
}

RenderReport render(const RenderRequest& request) {
  if (request.blockFrames < 1 || request.blockFrames > kMaxBlockFrames) {
    throw UsageError(
        fmt::format("block size {} is outside 1..{}", request.blockFrames, kMaxBlockFrames));
  }
  checkDistinct(request.input, request.output);
  SoundFile in = SoundFile::openRead(request.input);
  const SF_INFO info = outputInfo(in.info(), request.format);
  PendingOutput pending(request.output, request.overwrite);

  Rack rack = buildRack(request, info.channels, info.samplerate);
  if (!request.quiet) fmt::print("{}\n", describeTone(*rack.front()));

  RenderReport report;
  SoundFile out = SoundFile::openWrite(pending.fd(), info, request.output.string());
  {
    ProgressLine progress(!request.quiet && ProgressLine::stderrIsTerminal(), in.info().frames,
                          info.samplerate);
    stream(in, out, rack, request.blockFrames, progress, report.levels);
  }
  out.close();
  pending.commit();

  report.channels = info.channels;
  report.sampleRate = info.samplerate;
  report.format = info.format;
  report.frames = report.levels.count() / info.channels;
  report.missingFrames = std::max<std::int64_t>(0, in.promisedFrames() - report.frames);
  report.readError = in.readError();
  const auto encoding = formatBySubtype(info.format & SF_FORMAT_SUBMASK);
  report.clipped = encoding && encoding->clipsAtFullScale && report.levels.overFullScale() > 0;
  return report;
}

}  // namespace tarnwell::cli
