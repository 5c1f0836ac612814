#include "host/cli/plugin_report.h"

#include <fmt/format.h>

#include <bit>
#include <cstring>
#include <nlohmann/json.hpp>

#include "host/cli/tone_settings.h"

namespace tarnwell::cli {
namespace {

struct FlagName {
  VstInt32 bit;
  const char* name;
};
constexpr FlagName kFlagNames[] = {
    {effFlagsHasEditor, "hasEditor"},
    {effFlagsHasClip, "hasClip"},
    {effFlagsHasVu, "hasVu"},
    {effFlagsCanMono, "canMono"},
    {effFlagsCanReplacing, "canReplacing"},
    {effFlagsProgramChunks, "programChunks"},
    {effFlagsIsSynth, "isSynth"},
    {effFlagsNoSoundInStop, "noSoundInStop"},
    {effFlagsExtIsAsync, "extIsAsync"},
    {effFlagsExtHasBuffer, "extHasBuffer"},
    {effFlagsCanDoubleReplacing, "canDoubleReplacing"},
};

constexpr const char* kCategoryNames[] = {
    "unknown",     "effect",          "synth",       "analysis",        "mastering", "spatializer",
    "room effect", "surround effect", "restoration", "offline process", "shell",     "generator",
};

std::string fourChars(VstInt32 id) {
  char bytes[4];
  std::memcpy(bytes, &id, sizeof bytes);  // memory order, as the record holds it
  std::string out;
  for (char c : bytes) out += (c >= 0x20 && c < 0x7f) ? c : '.';
  return out;
}

nlohmann::ordered_json jsonJacks(const std::vector<host::JackDescription>& jacks) {
  auto out = nlohmann::ordered_json::array();
  for (const host::JackDescription& jack : jacks) {
    out.push_back({{"signals", jack.signals}, {"firstSignal", jack.firstSignal}});
  }
  return out;
}

}  // namespace

PluginReport describePlugin(host::PluginInstance& instance) {
  const AEffect& record = instance.record();
  PluginReport r;
  r.path = instance.library().path().string();
  r.entryPoint = std::string(instance.library().entryName());
  r.name = instance.effectName().value_or("");
  r.product = instance.productString().value_or("");
  r.vendor = instance.vendorString().value_or("");
  r.vendorVersion = instance.vendorVersion();
  r.vstVersion = instance.vstVersion();
  r.uniqueId = static_cast<std::uint32_t>(record.uniqueID);
  r.uniqueIdChars = fourChars(record.uniqueID);
  r.category = instance.category();
  r.categoryName = r.category >= 0 && r.category < static_cast<long long>(std::size(kCategoryNames))
                       ? kCategoryNames[r.category]
                       : "unknown";
  r.inputs = record.numInputs;
  r.outputs = record.numOutputs;
  r.flags = static_cast<std::uint32_t>(record.flags);
  for (const FlagName& f : kFlagNames) {
    if ((record.flags & f.bit) != 0) r.flagNames.emplace_back(f.name);
  }
  for (int i = 0; i < instance.numParameters(); ++i) {
    r.parameters.push_back({i, trimmed(instance.parameterName(i)),
                            trimmed(instance.parameterDisplay(i)),
                            trimmed(instance.parameterLabel(i))});
  }
  // A host names a program as the plug-in does once it is selected ("Init 5" for an unnamed
  // fifth), not by the indexed request, which leaves unnamed programs unnumbered.
  const int current = instance.program();
  for (int p = 0; p < instance.numPrograms(); ++p) {
    instance.setProgram(p);
    r.programs.push_back(trimmed(instance.programName()));
  }
  instance.setProgram(current);
  r.module = host::describeModule(instance);
  return r;
}

std::string formatText(const PluginReport& r) {
  std::string out = fmt::format("{}\n", r.name.empty() ? r.path : r.name);
  out += fmt::format("  library         {} (entry point {})\n", r.path, r.entryPoint);
  out += fmt::format("  product         {}\n", r.product);
  if (!r.vendor.empty()) out += fmt::format("  vendor          {}\n", r.vendor);
  out += fmt::format("  vendor version  {}\n", r.vendorVersion);
  out += fmt::format("  unique ID       {} (0x{:08X})\n", r.uniqueIdChars, r.uniqueId);
  out += fmt::format("  category        {} ({})\n", r.categoryName, r.category);
  out += fmt::format("  inputs          {}\n  outputs         {}\n", r.inputs, r.outputs);
  out += fmt::format("  flags           0x{:X} ({})\n", r.flags, fmt::join(r.flagNames, ", "));
  out += fmt::format("  VST version     {}\n", r.vstVersion);

  out += fmt::format("Parameters ({})\n", r.parameters.size());
  for (const ParameterReport& p : r.parameters) {
    if (p.name.empty()) {
      out += fmt::format("  {:2}  (unused)\n", p.index);
    } else {
      out += fmt::format("  {:2}  {:<8}  {}{}\n", p.index, p.name, p.display,
                         p.label.empty() ? "" : " " + p.label);
    }
  }
  out += fmt::format("Programs ({})\n", r.programs.size());
  for (std::size_t p = 0; p < r.programs.size(); ++p) {
    out += fmt::format("  {:2}  {}\n", p + 1, r.programs[p]);
  }
  if (!r.module) return out + "Module description: not offered\n";
  out += "Module description\n";
  out += fmt::format("  input jacks     {}\n", r.module->inputs.size());
  for (std::size_t j = 0; j < r.module->inputs.size(); ++j) {
    out += fmt::format("    jack {}: {} signal(s) from {}\n", j, r.module->inputs[j].signals,
                       r.module->inputs[j].firstSignal);
  }
  out += fmt::format("  output jacks    {}\n", r.module->outputs.size());
  for (std::size_t j = 0; j < r.module->outputs.size(); ++j) {
    out += fmt::format("    jack {}: {} signal(s) from {}\n", j, r.module->outputs[j].signals,
                       r.module->outputs[j].firstSignal);
  }
  out += fmt::format("  dry input       {}\n", r.module->dryInputSignal < 0
                                                   ? std::string("none")
                                                   : std::to_string(r.module->dryInputSignal));
  out += fmt::format("  header version  {}\n", r.module->headerVersion);
  return out;
}

std::string formatJson(const PluginReport& r) {
  using Json = nlohmann::ordered_json;
  Json out;
  out["library"] = r.path;
  out["entryPoint"] = r.entryPoint;
  out["name"] = r.name;
  out["product"] = r.product;
  out["vendor"] = r.vendor;
  out["vendorVersion"] = r.vendorVersion;
  out["vstVersion"] = r.vstVersion;
  out["uniqueId"] = {{"chars", r.uniqueIdChars},
                     {"hex", fmt::format("0x{:08X}", r.uniqueId)},
                     {"value", r.uniqueId}};
  out["category"] = {{"value", r.category}, {"name", r.categoryName}};
  out["inputs"] = r.inputs;
  out["outputs"] = r.outputs;
  out["flags"] = {{"value", r.flags}, {"names", r.flagNames}};
  out["parameters"] = Json::array();
  for (const ParameterReport& p : r.parameters) {
    out["parameters"].push_back(
        {{"index", p.index}, {"name", p.name}, {"display", p.display}, {"label", p.label}});
  }
  out["programs"] = Json::array();
  for (std::size_t p = 0; p < r.programs.size(); ++p) {
    out["programs"].push_back({{"number", p + 1}, {"name", r.programs[p]}});
  }
  out["module"] = nullptr;
  if (r.module) {
    out["module"] = {{"inputJacks", jsonJacks(r.module->inputs)},
                     {"outputJacks", jsonJacks(r.module->outputs)},
                     {"dryInputSignal", r.module->dryInputSignal},
                     {"headerVersion", r.module->headerVersion}};
  }
  // Texts from a plug-in are not always UTF-8: a stray byte shows as U+FFFD rather than failing.
  return out.dump(2, ' ', false, Json::error_handler_t::replace) + "\n";
}

}  // namespace tarnwell::cli
