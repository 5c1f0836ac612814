#include "host/cli/output_target.h"

#include <unistd.h>

#include <cerrno>
#include <string_view>
#include <system_error>

#include "host/cli/errors.h"

namespace tarnwell::cli {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view kTemporarySuffix = ".tarnwell-XXXXXX";
constexpr long kCommonNameMax = 255;  // when the file system does not say

std::string kindOf(fs::file_type type) {
  switch (type) {
    case fs::file_type::fifo:
      return "a FIFO";
    case fs::file_type::character:
    case fs::file_type::block:
      return "a device";
    case fs::file_type::socket:
      return "a socket";
    default:
      return "not a regular file";
  }
}

fs::path followLink(const fs::path& given) {
  std::error_code error;
  fs::path real = fs::canonical(given, error);
  if (!error) return real;
  if (error.value() == ELOOP) {
    throw RunError("cannot write " + given.string() + ": it is a loop of symbolic links");
  }
  if (error.value() == ENOENT) {
    throw RunError("cannot write " + given.string() +
                   ": it is a symbolic link to a file that does not exist");
  }
  throw RunError("cannot write " + given.string() + ": " + error.message());
}

// The longest prefix of `name` within `limit` bytes that does not cut a UTF-8 character.
std::string_view prefixWithin(std::string_view name, std::size_t limit) {
  if (name.size() <= limit) return name;
  std::size_t end = limit;
  while (end > 0 && (static_cast<unsigned char>(name[end]) & 0xC0) == 0x80) --end;
  return name.substr(0, end);
}

}  // namespace

OutputTarget checkOutputTarget(const fs::path& given, bool overwrite) {
  if (given.empty()) throw UsageError("the output file name is empty");
  std::error_code error;
  const bool link = fs::is_symlink(fs::symlink_status(given, error));
  OutputTarget target{link ? followLink(given) : given, std::nullopt};

  const fs::file_status status = fs::status(target.path, error);
  if (!fs::exists(status)) return target;
  if (fs::is_directory(status)) throw UsageError(given.string() + " is a directory");
  if (!fs::is_regular_file(status)) {
    throw UsageError(given.string() + " is " + kindOf(status.type()) +
                     "; only a regular file can be replaced");
  }
  if (!overwrite) throw UsageError(given.string() + " exists; add --overwrite to replace it");
  struct stat replaced {};
  if (stat(target.path.c_str(), &replaced) == 0) target.replaced = replaced;
  return target;
}

std::string temporaryPattern(const fs::path& target) {
  const fs::path directory = target.has_parent_path() ? target.parent_path() : fs::path(".");
  long nameMax = pathconf(directory.c_str(), _PC_NAME_MAX);
  if (nameMax <= 0) nameMax = kCommonNameMax;
  const auto room = static_cast<std::size_t>(nameMax) - 1 - kTemporarySuffix.size();
  std::string hidden = ".";
  hidden.append(prefixWithin(target.filename().native(), room)).append(kTemporarySuffix);
  return (directory / hidden).native();
}

}  // namespace tarnwell::cli
