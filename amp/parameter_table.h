// The five controls as every form of the plug-in and the command present them: name, identifier,
// kind, start-up value, the dial a knob is read on and the display rule. Everything that shows,
// sets or describes a control reads this table, so a control's facts are written down once.
//
// Dial: a knob's normalised value v in 0..1 reads as 9 v + 1 on a 1-to-10 dial (0 -> 1,
// 0.5 -> 5.5, 1 -> 10), computed in double. The switch (DEEP) shows "on" for exactly 1.0 and
// "off" for anything else, though processing treats every value but 0.0 as on.
//
// Header only and constexpr: any thread, no state.
#pragma once

#include <array>
#include <string_view>

#include "amp/parameter_index.h"

namespace tarnwell {

enum class ControlKind { kSwitch, kKnob };

struct ControlFacts {
  TarnwellParameter index;
  std::string_view name;    // what the host shows, at most 7 characters
  std::string_view symbol;  // a lower-case identifier, for forms and options that want one
  ControlKind kind;
  float startValue;  // normalised value in the start-up program (and every unnamed program)
};

inline constexpr std::array<ControlFacts, 5> kControls = {{
    {kParamDeep, "DEEP", "deep", ControlKind::kSwitch, 0.0f},
    {kParamVolume, "VOLUME", "volume", ControlKind::kKnob, 0.5f},
    {kParamTreble, "TREBLE", "treble", ControlKind::kKnob, 0.5f},
    {kParamBass, "BASS", "bass", ControlKind::kKnob, 0.5f},
    {kParamMaster, "MASTER", "master", ControlKind::kKnob, 0.5f},
}};

// The facts of parameter `index`, or null for the placeholder and any index out of range.
constexpr const ControlFacts* controlFacts(int index) noexcept {
  for (const ControlFacts& facts : kControls) {
    if (facts.index == index) return &facts;
  }
  return nullptr;
}

struct Dial {
  static constexpr double kMin = 1.0;
  static constexpr double kMax = 10.0;
};

// The dial position a knob's normalised value displays as.
constexpr double dialOf(double value) noexcept {
  return 9.0 * value + 1.0;
}

// The dial position's normalised value; the inverse of dialOf up to float rounding.
constexpr float valueOfDial(double dial) noexcept {
  return static_cast<float>((dial - Dial::kMin) / (Dial::kMax - Dial::kMin));
}

// The switch's display texts and the value that reads as "on".
inline constexpr std::string_view kSwitchOn = "on";
inline constexpr std::string_view kSwitchOff = "off";
inline constexpr float kSwitchOnValue = 1.0f;

// The step a host's generic control takes on a knob (normalised).
inline constexpr float kKnobStep = 0.01f;

static_assert(controlFacts(kParamPlaceholder) == nullptr);
static_assert(dialOf(0.0) == Dial::kMin && dialOf(1.0) == Dial::kMax && dialOf(0.5) == 5.5);

}  // namespace tarnwell
