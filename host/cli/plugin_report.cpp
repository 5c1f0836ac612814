#include "host/cli/plugin_report.h"

#include <fmt/format.h>

#include <bit>
#include <cstring>

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

std::string jsonString(std::string_view text) {
  std::string out = "\"";
  for (char c : text) {
    switch (c) {
      case '"':
        out += "\\\"";
        break;
      case '\\':
        out += "\\\\";
        break;
      case '\n':
        out += "\\n";
        break;
      case '\t':
        out += "\\t";
        break;
      default:
        if (static_cast<unsigned char>(c) < 0x20) {
          out += fmt::format("\\u{:04x}", static_cast<unsigned char>(c));
        } else {
          out += c;
        }
    }
  }
  return out + "\"";
}

std::string jsonJacks(const std::vector<host::JackDescription>& jacks) {
  std::string out = "[";
  for (std::size_t j = 0; j < jacks.size(); ++j) {
    out += fmt::format("{}{{\"signals\": {}, \"firstSignal\": {}}}", j ? ", " : "",
                       jacks[j].signals, jacks[j].firstSignal);
  }
  return out + "]";
}

}  // namespace

PluginReport describePlugin(const host::PluginInstance& instance) {
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
  for (int p = 0; p < instance.numPrograms(); ++p) {
    r.programs.push_back(instance.programNameIndexed(p).value_or(""));
  }
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
  std::string flagNames;
  for (const std::string& f : r.flagNames)
    flagNames += (flagNames.empty() ? "" : ", ") + jsonString(f);
  std::string out = "{\n";
  out += fmt::format("  \"library\": {},\n  \"entryPoint\": {},\n", jsonString(r.path),
                     jsonString(r.entryPoint));
  out += fmt::format("  \"name\": {},\n  \"product\": {},\n  \"vendor\": {},\n", jsonString(r.name),
                     jsonString(r.product), jsonString(r.vendor));
  out += fmt::format("  \"vendorVersion\": {},\n  \"vstVersion\": {},\n", r.vendorVersion,
                     r.vstVersion);
  out += fmt::format("  \"uniqueId\": {{\"chars\": {}, \"hex\": \"0x{:08X}\", \"value\": {}}},\n",
                     jsonString(r.uniqueIdChars), r.uniqueId, r.uniqueId);
  out += fmt::format("  \"category\": {{\"value\": {}, \"name\": {}}},\n", r.category,
                     jsonString(r.categoryName));
  out += fmt::format("  \"inputs\": {},\n  \"outputs\": {},\n", r.inputs, r.outputs);
  out += fmt::format("  \"flags\": {{\"value\": {}, \"names\": [{}]}},\n", r.flags, flagNames);
  out += "  \"parameters\": [\n";
  for (std::size_t i = 0; i < r.parameters.size(); ++i) {
    const ParameterReport& p = r.parameters[i];
    out += fmt::format("    {{\"index\": {}, \"name\": {}, \"display\": {}, \"label\": {}}}{}\n",
                       p.index, jsonString(p.name), jsonString(p.display), jsonString(p.label),
                       i + 1 < r.parameters.size() ? "," : "");
  }
  out += "  ],\n  \"programs\": [\n";
  for (std::size_t p = 0; p < r.programs.size(); ++p) {
    out += fmt::format("    {{\"number\": {}, \"name\": {}}}{}\n", p + 1, jsonString(r.programs[p]),
                       p + 1 < r.programs.size() ? "," : "");
  }
  out += "  ],\n";
  if (!r.module) return out + "  \"module\": null\n}\n";
  out += fmt::format(
      "  \"module\": {{\"inputJacks\": {}, \"outputJacks\": {}, \"dryInputSignal\": {}, "
      "\"headerVersion\": {}}}\n}}\n",
      jsonJacks(r.module->inputs), jsonJacks(r.module->outputs), r.module->dryInputSignal,
      r.module->headerVersion);
  return out;
}

}  // namespace tarnwell::cli
