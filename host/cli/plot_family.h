// The settings of a plot's curves. Each control option may hold one value or a comma-separated
// list ("--bass 1,5.5,10", "--deep on,off"); the family is every combination of the lists, the
// first control in the table varying slowest, at most kMaxCurves curves. Each member is an opened
// instance of the plug-in with the program and the values applied, so the plug-in's own texts name
// the settings in the title and the legend.
//
// Control thread. Throws UsageError for a malformed list or too many curves.
#pragma once

#include <array>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "amp/parameter_table.h"
#include "host/cli/tone_settings.h"
#include "host/plugin_instance.h"

namespace tarnwell::cli {

inline constexpr int kMaxCurves = 8;

// The option texts in kControls order; none when not given.
using ControlTexts = std::array<std::optional<std::string>, kControls.size()>;
// The values in kControls order: dial positions for knobs, 1 (on) or 0 (off) for the switch;
// empty when not given.
using ControlLists = std::array<std::vector<double>, kControls.size()>;

ControlLists parseControlLists(const ControlTexts& texts);

struct Family {
  std::vector<std::unique_ptr<host::PluginInstance>> members;
  ControlLists lists;

  bool varies(std::size_t control) const { return lists[control].size() > 1; }
  // The legend of member m: the controls that vary, e.g. "DEEP on, BASS 10.00".
  std::string label(std::size_t m) const;
  // The program and the controls in `shown` (kControls order) that do not vary, and "as in the
  // legend" for those that do: program 1 "Init 1": DEEP off, TREBLE 5.50, BASS as in the legend
  std::string settings(const std::array<bool, kControls.size()>& shown) const;
};

// Opens one instance per combination. Throws UsageError for more than kMaxCurves combinations or a
// program the plug-in lacks, PluginError when the plug-in fails.
Family openFamily(const std::filesystem::path& plugin, std::optional<int> program,
                  const ControlLists& lists);

}  // namespace tarnwell::cli
