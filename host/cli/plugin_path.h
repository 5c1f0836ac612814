// Where the command finds the plug-in unless --plugin says otherwise: tarnwell.so next to the
// command's own executable, however the command was started.
#pragma once

#include <filesystem>

namespace tarnwell::cli {

constexpr const char* kPluginFileName = "tarnwell.so";

std::filesystem::path defaultPluginPath();

}  // namespace tarnwell::cli
