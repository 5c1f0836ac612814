#include "host/cli/plugin_path.h"

namespace tarnwell::cli {

std::filesystem::path defaultPluginPath() {
  std::error_code error;
  const auto self = std::filesystem::read_symlink("/proc/self/exe", error);
  // Without /proc the plug-in is looked for in the working directory.
  if (error) return std::filesystem::path(".") / kPluginFileName;
  return self.parent_path() / kPluginFileName;
}

}  // namespace tarnwell::cli
