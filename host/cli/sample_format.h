// Names of the sample encodings a user can ask for with --format, as the audio library names them,
// and what the render needs to know of each: whether it is an integer encoding that clips at full
// scale, and how many bytes a sample takes.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace tarnwell::cli {

struct SampleFormat {
  std::string_view name;
  int subtype;  // the audio library's subtype code
  bool clipsAtFullScale;
  int bytesPerSample;
};

// The accepted --format names, in the order --help lists them.
std::string formatNameList();
std::optional<SampleFormat> formatByName(std::string_view name);  // case-insensitive
std::optional<SampleFormat> formatBySubtype(int subtype);

// "WAV (Microsoft) PCM_16" and the like, for messages: the --format name of the encoding, else the
// audio library's ("OGG (OGG Container format) Vorbis").
std::string describeFormat(int format);

// True when a file of this container and subtype can be written.
bool canWrite(int format, int channels, int sampleRate);

}  // namespace tarnwell::cli
