// An output file that appears whole or not at all. The data goes to a temporary file beside the
// target (same directory, so the final rename never crosses file systems); commit() flushes it to
// disk and renames it into place. Until then the target is untouched, and the temporary file is
// removed when the object goes out of scope, on an exception or when a signal ends the program
// (SIGINT, SIGTERM, SIGHUP, SIGQUIT, SIGXCPU; best effort, one pending output at a time).
//
// The target is checked up front (OutputTarget): a link is written through, only a regular file is
// replaced, and only with `overwrite`; a replaced file keeps its permission bits, and its owner and
// group where the user may set them. Without `overwrite` an existing target is refused again at
// the rename. A signal that was ignored when the command started stays ignored.
#pragma once

#include <filesystem>
#include <string>

namespace tarnwell::cli {

class PendingOutput {
 public:
  // Throws what checkOutputTarget throws, and RunError when the temporary file cannot be created.
  PendingOutput(const std::filesystem::path& target, bool overwrite);
  ~PendingOutput();

  // Writes all of `bytes` to the temporary file. Throws RunError.
  void write(const std::string& bytes);
  PendingOutput(const PendingOutput&) = delete;
  PendingOutput& operator=(const PendingOutput&) = delete;

  int fd() const noexcept { return fd_; }
  const std::filesystem::path& target() const noexcept { return target_; }  // links followed

  // Throws RunError; the temporary file is gone either way.
  void commit();

 private:
  void discard() noexcept;

  std::filesystem::path target_;
  std::filesystem::path temporary_;
  bool overwrite_;
  int fd_ = -1;
};

}  // namespace tarnwell::cli
