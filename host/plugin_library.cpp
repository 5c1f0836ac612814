#include "host/plugin_library.h"

#include <dlfcn.h>

#include <system_error>

#include "host/plugin_error.h"

namespace tarnwell::host {
namespace {

constexpr std::string_view kEntryNames[] = {"getinterface", "OrvTypeIF"};

std::string lastLoaderError() {
  const char* text = dlerror();
  return text != nullptr ? text : "unknown loader error";
}

}  // namespace

std::shared_ptr<const PluginLibrary> PluginLibrary::open(const std::filesystem::path& path) {
  std::error_code error;
  const auto status = std::filesystem::status(path, error);
  if (!std::filesystem::exists(status)) {
    throw PluginError("plug-in not found: " + path.string());
  }
  if (std::filesystem::is_directory(status)) {
    throw PluginError("plug-in is a directory, not a library: " + path.string());
  }
  // A bare file name would send dlopen searching the library path instead of opening this file.
  const std::filesystem::path exact = path.has_parent_path() ? path : "." / path;

  dlerror();
  void* handle = dlopen(exact.c_str(), RTLD_NOW | RTLD_LOCAL);
  if (handle == nullptr) {
    throw PluginError("cannot load plug-in: " + lastLoaderError());
  }
  for (std::string_view name : kEntryNames) {
    if (void* symbol = dlsym(handle, name.data())) {
      return std::shared_ptr<const PluginLibrary>(
          new PluginLibrary(path, handle, reinterpret_cast<EntryPoint>(symbol), name));
    }
  }
  dlclose(handle);
  throw PluginError("not a plug-in (exports neither getinterface nor OrvTypeIF): " + path.string());
}

PluginLibrary::PluginLibrary(std::filesystem::path path, void* handle, EntryPoint entry,
                             std::string_view name)
    : path_(std::move(path)), handle_(handle), entry_(entry), entryName_(name) {}

PluginLibrary::~PluginLibrary() {
  dlclose(handle_);
}

}  // namespace tarnwell::host
