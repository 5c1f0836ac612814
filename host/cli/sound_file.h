// An audio file open for reading or writing, as frames of interleaved double samples at full scale
// +-1. Integer encodings are clipped on writing, never wrapped.
//
// A file read is taken as far as its data goes: when the data ends before the header says (a
// truncated or damaged file) or cannot be decoded further, reading stops there and the file tells
// how many frames its header promised and why reading stopped.
//
// Opening and writing throw RunError naming the file; the file is closed on every path.
#pragma once

#include <sndfile.h>

#include <filesystem>
#include <string>

namespace tarnwell::cli {

class SoundFile {
 public:
  static SoundFile openRead(const std::filesystem::path& path);
  // Writes through `fd`, which stays the caller's to close; `shownName` names it in messages.
  static SoundFile openWrite(int fd, const SF_INFO& info, std::string shownName);

  SoundFile(SoundFile&& other) noexcept;
  SoundFile& operator=(SoundFile&&) = delete;
  ~SoundFile();

  const SF_INFO& info() const noexcept { return info_; }
  // Reads up to `frames` frames; fewer only at the end of the data or at a decoding error.
  sf_count_t read(double* interleaved, sf_count_t frames);
  // The frames the header of a file read promises; -1 when it does not say (a stream).
  sf_count_t promisedFrames() const noexcept { return promisedFrames_; }
  // Why reading stopped early, or empty.
  const std::string& readError() const noexcept { return readError_; }
  void write(const double* interleaved, sf_count_t frames);
  // Finishes the file (a writer's header is completed here); reports what failed.
  void close();

 private:
  SoundFile(SNDFILE* file, const SF_INFO& info, std::string name);

  SNDFILE* file_;
  SF_INFO info_;
  std::string name_;
  sf_count_t promisedFrames_ = -1;
  std::string readError_;
};

}  // namespace tarnwell::cli
