#include "host/cli/sound_file.h"

#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <string_view>
#include <utility>

#include "host/cli/errors.h"
#include "host/cli/sample_format.h"

namespace tarnwell::cli {
namespace {

// The audio library's code for a header it parsed but found incomplete: for a file read, one whose
// sample rate is 0.
constexpr int kHeaderIncomplete = 24;

// Bytes the data chunk of a WAV or AIFF file declares beyond those present. The audio library
// shortens a truncated file's length to what is there and notes the declared size in its log
// ("data : 396900 (should be 99920)"); an AIFF chunk size counts 8 more bytes on both sides.
sf_count_t missingDataBytes(SNDFILE* file) {
  std::string log(16384, '\0');
  sf_command(file, SFC_GET_LOG_INFO, log.data(), static_cast<int>(log.size()));
  for (const std::string_view chunk : {"data :", "SSND :"}) {
    const auto at = log.find(chunk);
    if (at == std::string::npos) continue;
    long long declared = 0;
    long long present = 0;
    if (std::sscanf(log.c_str() + at + chunk.size(), " %lld (should be %lld)", &declared,
                    &present) == 2 &&
        declared > present) {
      return declared - present;
    }
  }
  return 0;
}

sf_count_t framesPromised(SNDFILE* file, const SF_INFO& info) {
  if (info.frames == SF_COUNT_MAX || info.seekable == 0) return -1;
  const auto encoding = formatBySubtype(info.format & SF_FORMAT_SUBMASK);
  const sf_count_t missing = missingDataBytes(file);
  if (!encoding || missing == 0) return info.frames;
  const sf_count_t frameBytes = static_cast<sf_count_t>(encoding->bytesPerSample) * info.channels;
  return info.frames + (missing + frameBytes - 1) / frameBytes;
}

}  // namespace

SoundFile SoundFile::openRead(const std::filesystem::path& path) {
  std::error_code error;
  if (std::filesystem::is_directory(path, error)) {
    throw RunError("cannot read " + path.string() + ": it is a directory");
  }
  if (access(path.c_str(), R_OK) != 0) {
    throw RunError("cannot read " + path.string() + ": " + std::strerror(errno));
  }
  SF_INFO info{};
  SNDFILE* file = sf_open(path.c_str(), SFM_READ, &info);
  if (file == nullptr && sf_error(nullptr) == kHeaderIncomplete) {
    throw RunError("cannot read " + path.string() + ": its header gives a sample rate of 0 Hz");
  }
  if (file == nullptr) {
    throw RunError("cannot read " + path.string() + ": " + sf_strerror(nullptr));
  }
  if (info.channels < 1 || info.samplerate < 1) {
    sf_close(file);
    throw RunError("cannot read " + path.string() + ": its header gives no channels or no rate");
  }
  SoundFile opened(file, info, path.string());
  opened.promisedFrames_ = framesPromised(file, info);
  return opened;
}

SoundFile SoundFile::openWrite(int fd, const SF_INFO& info, std::string shownName) {
  SF_INFO wanted = info;
  SNDFILE* file = sf_open_fd(fd, SFM_WRITE, &wanted, SF_FALSE);
  if (file == nullptr) {
    throw RunError("cannot write " + shownName + ": " + sf_strerror(nullptr));
  }
  sf_command(file, SFC_SET_CLIPPING, nullptr, SF_TRUE);
  // The peak chunk of float files carries the time of writing: without it, the same render gives
  // the same bytes.
  sf_command(file, SFC_SET_ADD_PEAK_CHUNK, nullptr, SF_FALSE);
  return SoundFile(file, wanted, std::move(shownName));
}

SoundFile::SoundFile(SNDFILE* file, const SF_INFO& info, std::string name)
    : file_(file), info_(info), name_(std::move(name)) {}

SoundFile::SoundFile(SoundFile&& other) noexcept
    : file_(std::exchange(other.file_, nullptr)),
      info_(other.info_),
      name_(std::move(other.name_)) {}

SoundFile::~SoundFile() {
  if (file_ != nullptr) sf_close(file_);
}

sf_count_t SoundFile::read(double* interleaved, sf_count_t frames) {
  if (!readError_.empty()) return 0;
  const sf_count_t got = sf_readf_double(file_, interleaved, frames);
  if (got < frames && sf_error(file_) != SF_ERR_NO_ERROR) readError_ = sf_strerror(file_);
  return got;
}

void SoundFile::write(const double* interleaved, sf_count_t frames) {
  if (sf_writef_double(file_, interleaved, frames) != frames) {
    throw RunError("error writing " + name_ + ": " + sf_strerror(file_));
  }
}

void SoundFile::close() {
  SNDFILE* file = std::exchange(file_, nullptr);
  if (file == nullptr) return;
  const int error = sf_error(file);
  const std::string text = sf_strerror(file);
  if (sf_close(file) != 0 || error != SF_ERR_NO_ERROR) {
    throw RunError("error finishing " + name_ + ": " + text);
  }
}

}  // namespace tarnwell::cli
