#include "host/cli/sound_file.h"

#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <utility>

#include "host/cli/errors.h"

namespace tarnwell::cli {

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
  if (file == nullptr) {
    throw RunError("cannot read " + path.string() + ": " + sf_strerror(nullptr));
  }
  if (info.channels < 1 || info.samplerate < 1) {
    sf_close(file);
    throw RunError("cannot read " + path.string() + ": no channels or no sample rate");
  }
  return SoundFile(file, info, path.string());
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
  const sf_count_t got = sf_readf_double(file_, interleaved, frames);
  if (got < frames && sf_error(file_) != SF_ERR_NO_ERROR) {
    throw RunError("error reading " + name_ + ": " + sf_strerror(file_));
  }
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
