#include "host/cli/tone_settings.h"

#include <fmt/format.h>

#include "host/cli/errors.h"

namespace tarnwell::cli {

void applyTone(const ToneSettings& tone, host::PluginInstance& instance) {
  if (tone.program) {
    if (*tone.program < 1 || *tone.program > instance.numPrograms()) {
      throw UsageError(fmt::format("no program {}: the plug-in has programs 1 to {}", *tone.program,
                                   instance.numPrograms()));
    }
    instance.setProgram(*tone.program - 1);
  }
  if (tone.deep) instance.setParameter(kParamDeep, *tone.deep ? kSwitchOnValue : 0.0f);
  const std::pair<int, const std::optional<double>&> knobs[] = {
      {kParamVolume, tone.volume},
      {kParamTreble, tone.treble},
      {kParamBass, tone.bass},
      {kParamMaster, tone.master},
  };
  for (const auto& [index, dial] : knobs) {
    if (dial) instance.setParameter(index, valueOfDial(*dial));
  }
}

std::string describeTone(const host::PluginInstance& instance) {
  std::string out =
      fmt::format("program {} \"{}\":", instance.program() + 1, trimmed(instance.programName()));
  const char* separator = " ";
  for (int index = 0; index < instance.numParameters(); ++index) {
    const std::string name = trimmed(instance.parameterName(index));
    if (name.empty()) continue;  // the unnamed placeholder
    out += fmt::format("{}{} {}", separator, name, trimmed(instance.parameterDisplay(index)));
    separator = ", ";
  }
  return out;
}

std::string trimmed(const std::string& text) {
  const auto first = text.find_first_not_of(' ');
  if (first == std::string::npos) return {};
  return text.substr(first, text.find_last_not_of(' ') - first + 1);
}

}  // namespace tarnwell::cli
