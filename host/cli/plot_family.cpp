#include "host/cli/plot_family.h"

#include <fmt/format.h>

#include <algorithm>
#include <cctype>

#include "host/cli/dial_validator.h"
#include "host/cli/errors.h"

namespace tarnwell::cli {
namespace {

std::vector<std::string> splitList(const std::string& text, std::string_view option) {
  if (text.empty()) throw UsageError(fmt::format("--{}: empty list", option));
  std::vector<std::string> items;
  std::size_t start = 0;
  for (;;) {
    const std::size_t comma = text.find(',', start);
    items.push_back(text.substr(start, comma - start));
    if (items.back().empty()) {
      throw UsageError(fmt::format("--{}: empty item in the list '{}'", option, text));
    }
    if (comma == std::string::npos) return items;
    start = comma + 1;
  }
}

double switchValue(std::string item, std::string_view option) {
  std::ranges::transform(item, item.begin(),
                         [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  if (item == kSwitchOn) return 1.0;
  if (item == kSwitchOff) return 0.0;
  throw UsageError(
      fmt::format("--{}: '{}' is neither {} nor {}", option, item, kSwitchOn, kSwitchOff));
}

double dialValue(std::string item, std::string_view option) {
  const std::string problem = dialPosition()(item);
  if (!problem.empty()) throw UsageError(fmt::format("--{}: {}", option, problem));
  return std::stod(item);
}

ToneSettings settingsOf(std::optional<int> program, const ControlLists& lists,
                        const std::array<std::size_t, kControls.size()>& pick) {
  ToneSettings tone;
  tone.program = program;
  for (std::size_t c = 0; c < kControls.size(); ++c) {
    if (lists[c].empty()) continue;
    const double value = lists[c][pick[c]];
    switch (kControls[c].index) {
      case kParamDeep:
        tone.deep = value != 0.0;
        break;
      case kParamVolume:
        tone.volume = value;
        break;
      case kParamTreble:
        tone.treble = value;
        break;
      case kParamBass:
        tone.bass = value;
        break;
      default:
        tone.master = value;
        break;
    }
  }
  return tone;
}

std::string shown(const host::PluginInstance& instance, std::size_t control) {
  const int index = kControls[control].index;
  return fmt::format("{} {}", kControls[control].name, trimmed(instance.parameterDisplay(index)));
}

}  // namespace

ControlLists parseControlLists(const ControlTexts& texts) {
  ControlLists lists;
  for (std::size_t c = 0; c < kControls.size(); ++c) {
    if (!texts[c]) continue;
    const std::string_view option = kControls[c].symbol;
    for (const std::string& item : splitList(*texts[c], option)) {
      lists[c].push_back(kControls[c].kind == ControlKind::kSwitch ? switchValue(item, option)
                                                                   : dialValue(item, option));
    }
  }
  return lists;
}

Family openFamily(const std::filesystem::path& plugin, std::optional<int> program,
                  const ControlLists& lists) {
  std::size_t count = 1;
  for (const auto& list : lists) count *= std::max<std::size_t>(list.size(), 1);
  if (count > kMaxCurves) {
    throw UsageError(
        fmt::format("the lists make {} curves; at most {} fit in one plot", count, kMaxCurves));
  }
  const auto library = host::PluginLibrary::open(plugin);
  Family family;
  family.lists = lists;
  // Counts through every combination, the last control fastest.
  std::array<std::size_t, kControls.size()> pick{};
  for (std::size_t m = 0; m < count; ++m) {
    auto& instance = family.members.emplace_back(std::make_unique<host::PluginInstance>(library));
    applyTone(settingsOf(program, lists, pick), *instance);
    for (std::size_t c = kControls.size(); c-- > 0;) {
      if (++pick[c] < std::max<std::size_t>(lists[c].size(), 1)) break;
      pick[c] = 0;
    }
  }
  return family;
}

std::string Family::label(std::size_t m) const {
  std::string out;
  for (std::size_t c = 0; c < kControls.size(); ++c) {
    if (!varies(c)) continue;
    out += (out.empty() ? "" : ", ") + shown(*members[m], c);
  }
  return out;
}

std::string Family::settings(const std::array<bool, kControls.size()>& show) const {
  const host::PluginInstance& first = *members.front();
  std::string out =
      fmt::format("program {} \"{}\":", first.program() + 1, trimmed(first.programName()));
  const char* separator = " ";
  for (std::size_t c = 0; c < kControls.size(); ++c) {
    if (!show[c]) continue;
    out += separator;
    out += varies(c) ? fmt::format("{} as in the legend", kControls[c].name) : shown(first, c);
    separator = ", ";
  }
  return out;
}

}  // namespace tarnwell::cli
