// Everything `tarnwell info` tells about a plug-in, read once from a fresh instance: identity,
// parameters with their display texts at start-up, program names as a host shows them, and the
// module description. Reading the program names selects each program in turn, then the one that
// was current again.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "host/module_description.h"
#include "host/plugin_instance.h"

namespace tarnwell::cli {

struct ParameterReport {
  int index;
  std::string name;
  std::string display;
  std::string label;
};

struct PluginReport {
  std::string path;
  std::string entryPoint;
  std::string name;
  std::string product;
  std::string vendor;
  long long vendorVersion;
  long long vstVersion;
  std::string uniqueIdChars;  // the ID's four bytes in memory order, '.' for unprintable ones
  std::uint32_t uniqueId;
  long long category;
  std::string categoryName;
  int inputs;
  int outputs;
  std::uint32_t flags;
  std::vector<std::string> flagNames;
  std::vector<ParameterReport> parameters;
  std::vector<std::string> programs;
  std::optional<host::ModuleDescription> module;
};

PluginReport describePlugin(host::PluginInstance& instance);

std::string formatText(const PluginReport& report);
std::string formatJson(const PluginReport& report);

}  // namespace tarnwell::cli
