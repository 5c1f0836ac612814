#include <fmt/format.h>

#include "host/cli/commands.h"
#include "host/cli/errors.h"
#include "host/cli/plugin_path.h"
#include "host/cli/plugin_report.h"

namespace tarnwell::cli {

CLI::App* addInfo(CLI::App& app, InfoCommand& command) {
  CLI::App* sub =
      app.add_subcommand("info", "Describe the plug-in: identity, parameters, programs");
  sub->footer(
      "Shows what a host sees: name, product, vendor version, unique ID, category, inputs,\n"
      "outputs and flags; the parameters with their display texts at start-up; the program names;\n"
      "and the module description (jacks and signals).\n"
      "Example: tarnwell info --json");
  sub->add_option("--plugin", command.plugin, kPluginOptionHelp)->type_name("PATH");
  sub->add_flag("--json", command.json, "Print JSON instead of text");
  return sub;
}

int runInfo(const InfoCommand& command) {
  const auto library =
      host::PluginLibrary::open(command.plugin.empty() ? defaultPluginPath() : command.plugin);
  host::PluginInstance instance(library);
  const PluginReport report = describePlugin(instance);
  fmt::print("{}", command.json ? formatJson(report) : formatText(report));
  return kExitSuccess;
}

}  // namespace tarnwell::cli
