// The amp settings a render asks for, as the user gives them: a program numbered 1..16, DEEP on or
// off, and the four knobs as dial positions on the plug-in's own 1-to-10 scale. Anything not given
// stays as the program (or the plug-in's start-up state) has it.
#pragma once

#include <optional>
#include <string>

#include "amp/parameter_table.h"
#include "host/plugin_instance.h"

namespace tarnwell::cli {

struct ToneSettings {
  std::optional<int> program;  // 1-based
  std::optional<bool> deep;
  std::optional<double> volume;
  std::optional<double> treble;
  std::optional<double> bass;
  std::optional<double> master;
};

// Throws UsageError for a program the plug-in does not have.
void applyTone(const ToneSettings& tone, host::PluginInstance& instance);

// The settings in effect, in the plug-in's own words:
//   program 1 "Init 1": DEEP off, VOLUME 5.50, TREBLE 5.50, BASS 5.50, MASTER 5.50
std::string describeTone(const host::PluginInstance& instance);

// A text from the plug-in without the padding its fixed-width fields carry.
std::string trimmed(const std::string& text);

}  // namespace tarnwell::cli
