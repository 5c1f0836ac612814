// Where the command finds the plug-in unless --plugin says otherwise. First match wins:
//   1. tarnwell.so beside the command's own executable (the build tree keeps them together);
//   2. the installed tree's private folder relative to it, e.g. /usr/bin/../lib/tarnwell.
// The executable is found through /proc/self/exe, so neither the working folder, nor a symlink to
// the command, nor any environment variable changes the answer.
#pragma once

#include <filesystem>
#include <vector>

namespace tarnwell::cli {

constexpr const char* kPluginFileName = "tarnwell.so";
constexpr const char* kPluginOptionHelp =
    "Plug-in library (default: the amp beside or installed with this command)";

// The folders searched, in order; "." alone when /proc is not mounted.
std::vector<std::filesystem::path> pluginSearchFolders();

// Throws RunError naming every folder searched when none holds the plug-in.
std::filesystem::path defaultPluginPath();

}  // namespace tarnwell::cli
