#include "host/cli/plugin_path.h"

#include <fmt/format.h>

#include <string>

#include "host/cli/build_facts.h"
#include "host/cli/errors.h"

namespace tarnwell::cli {

std::vector<std::filesystem::path> pluginSearchFolders() {
  std::error_code error;
  const auto self = std::filesystem::read_symlink("/proc/self/exe", error);
  if (error) return {"."};
  const auto folder = self.parent_path();
  return {folder, (folder / kInstalledPluginFolder).lexically_normal()};
}

std::filesystem::path defaultPluginPath() {
  const auto folders = pluginSearchFolders();
  std::string searched;
  for (const auto& folder : folders) {
    auto candidate = folder / kPluginFileName;
    std::error_code error;
    if (std::filesystem::exists(candidate, error)) return candidate;
    searched += (searched.empty() ? "" : " or ") + folder.string();
  }
  throw RunError(
      fmt::format("{} not found in {} (name one with --plugin PATH)", kPluginFileName, searched));
}

}  // namespace tarnwell::cli
