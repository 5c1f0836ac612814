#include "host/cli/sample_format.h"

#include <fmt/format.h>
#include <sndfile.h>

#include <algorithm>
#include <cctype>

namespace tarnwell::cli {
namespace {

constexpr SampleFormat kFormats[] = {
    {"PCM_16", SF_FORMAT_PCM_16, true, 2},  {"PCM_24", SF_FORMAT_PCM_24, true, 3},
    {"PCM_32", SF_FORMAT_PCM_32, true, 4},  {"PCM_U8", SF_FORMAT_PCM_U8, true, 1},
    {"PCM_S8", SF_FORMAT_PCM_S8, true, 1},  {"FLOAT", SF_FORMAT_FLOAT, false, 4},
    {"DOUBLE", SF_FORMAT_DOUBLE, false, 8}, {"ULAW", SF_FORMAT_ULAW, true, 1},
    {"ALAW", SF_FORMAT_ALAW, true, 1},
};

bool equalIgnoringCase(std::string_view a, std::string_view b) {
  return std::ranges::equal(a, b, [](char x, char y) {
    return std::toupper(static_cast<unsigned char>(x)) ==
           std::toupper(static_cast<unsigned char>(y));
  });
}

// The audio library's own name of a container or an encoding.
std::string libraryName(int code, const char* unknown) {
  SF_FORMAT_INFO info{};
  info.format = code;
  if (sf_command(nullptr, SFC_GET_FORMAT_INFO, &info, sizeof info) == 0 && info.name != nullptr) {
    return info.name;
  }
  return unknown;
}

}  // namespace

std::string formatNameList() {
  std::string out;
  for (const SampleFormat& f : kFormats) {
    if (!out.empty()) out += ", ";
    out += f.name;
  }
  return out;
}

std::optional<SampleFormat> formatByName(std::string_view name) {
  const auto* found = std::ranges::find_if(
      kFormats, [&](const SampleFormat& f) { return equalIgnoringCase(f.name, name); });
  if (found == std::end(kFormats)) return std::nullopt;
  return *found;
}

std::optional<SampleFormat> formatBySubtype(int subtype) {
  const auto* found =
      std::ranges::find_if(kFormats, [&](const SampleFormat& f) { return f.subtype == subtype; });
  if (found == std::end(kFormats)) return std::nullopt;
  return *found;
}

std::string describeFormat(int format) {
  const int subtype = format & SF_FORMAT_SUBMASK;
  const auto named = formatBySubtype(subtype);
  return libraryName(format & SF_FORMAT_TYPEMASK, "unknown container") + " " +
         (named ? std::string(named->name) : libraryName(subtype, "unknown encoding"));
}

bool canWrite(int format, int channels, int sampleRate) {
  SF_INFO info{};
  info.format = format;
  info.channels = channels;
  info.samplerate = sampleRate;
  return sf_format_check(&info) == SF_TRUE;
}

}  // namespace tarnwell::cli
