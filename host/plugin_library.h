// A plug-in library loaded with dlopen, and its entry point: `getinterface`, or `OrvTypeIF` for a
// library that exports only that twin. The library stays loaded while any PluginInstance created
// from it lives (they share ownership); dlclose runs when the last one goes.
//
// Thread: control thread only.
#pragma once

#include <filesystem>
#include <memory>
#include <string>
#include <string_view>

#include "hostif/vst_abi.h"

class Orv_TypeIF;

namespace tarnwell::host {

using EntryPoint = Orv_TypeIF* (*)(audioMasterCallback);

class PluginLibrary {
 public:
  // Throws PluginError: a missing file, the loader's own text, or no entry point.
  static std::shared_ptr<const PluginLibrary> open(const std::filesystem::path& path);

  ~PluginLibrary();
  PluginLibrary(const PluginLibrary&) = delete;
  PluginLibrary& operator=(const PluginLibrary&) = delete;

  EntryPoint entryPoint() const noexcept { return entry_; }
  std::string_view entryName() const noexcept { return entryName_; }
  const std::filesystem::path& path() const noexcept { return path_; }

 private:
  PluginLibrary(std::filesystem::path path, void* handle, EntryPoint entry, std::string_view name);

  std::filesystem::path path_;
  void* handle_;
  EntryPoint entry_;
  std::string_view entryName_;
};

}  // namespace tarnwell::host
