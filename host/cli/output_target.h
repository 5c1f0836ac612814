// Where an output file goes and whether it may go there, decided before anything is rendered.
//
// A symbolic link names the file it points to: that file is written and the link stays, as with
// any program that writes through a link. A dangling link or a loop of links is refused. An
// existing target must be a regular file and is replaced only with --overwrite; a FIFO, a device,
// a socket or a directory never is.
//
// Thread: control thread.
#pragma once

#include <sys/stat.h>

#include <filesystem>
#include <optional>
#include <string>

namespace tarnwell::cli {

struct OutputTarget {
  std::filesystem::path path;           // the file to create or replace
  std::optional<struct stat> replaced;  // the regular file that will be replaced
};

// Throws UsageError for what cannot be done as asked (an empty name, a directory, a file that is
// not regular, an existing file without overwrite) and RunError for a broken link.
OutputTarget checkOutputTarget(const std::filesystem::path& given, bool overwrite);

// A mkstemp pattern for a hidden temporary file beside `target`, named after it so a leftover says
// where it came from, and short enough for the folder's limit on file names.
std::string temporaryPattern(const std::filesystem::path& target);

}  // namespace tarnwell::cli
