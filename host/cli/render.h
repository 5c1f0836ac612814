// Renders an audio file through the plug-in: each channel through its own instance (the amp is
// mono), at the file's own sample rate, streamed in blocks so memory stays constant whatever the
// length. The output keeps the input's container, channels and rate, and its encoding unless
// another is asked for; it appears only when complete (PendingOutput).
//
// Throws UsageError (what was asked cannot be done), RunError (files) or PluginError.
#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>

#include "host/cli/level_meter.h"
#include "host/cli/sample_format.h"
#include "host/cli/tone_settings.h"

namespace tarnwell::cli {

constexpr int kDefaultBlockFrames = 4096;
constexpr int kMaxBlockFrames = 1 << 20;

struct RenderRequest {
  std::filesystem::path input;
  std::filesystem::path output;
  std::filesystem::path plugin;
  ToneSettings tone;
  int blockFrames = kDefaultBlockFrames;
  std::optional<SampleFormat> format;  // none: the input's
  bool overwrite = false;
  bool quiet = false;  // no settings line, no progress line
};

struct RenderReport {
  LevelMeter levels;
  std::int64_t frames = 0;
  int channels = 0;
  int sampleRate = 0;
  int format = 0;                  // the output's container and encoding
  bool clipped = false;            // integer encoding and samples beyond full scale
  std::int64_t missingFrames = 0;  // promised by the input's header but not there
  std::string readError;           // why reading the input stopped early, or empty
};

RenderReport render(const RenderRequest& request);

// Refuses an output that is the input itself, also through another path or link.
void checkDistinct(const std::filesystem::path& input, const std::filesystem::path& output);

}  // namespace tarnwell::cli
