// The LV2 form's identity and ports, read by the plug-in, the description generator and the
// tests. Port 0 is the mono input, port 1 the mono output, then one control port per entry of
// kControls in table order, in the units the user reads: knobs on the 1-to-10 dial, DEEP as a
// toggle (0 off, 1 on; anything above 0 counts as on).
//
// Header only and constexpr: any thread, no state.
#pragma once

#include <cstdint>
#include <string_view>

#include "amp/identity.h"
#include "amp/parameter_table.h"

namespace tarnwell::lv2 {

// A URN of the product's own: no web domain to keep alive.
inline constexpr char kPluginUri[] = "urn:tarnwell:amp";
inline constexpr std::string_view kPluginName = kEffectName;

enum AudioPort : std::uint32_t { kAudioIn = 0, kAudioOut = 1 };
inline constexpr std::uint32_t kFirstControlPort = 2;
inline constexpr std::uint32_t kNumPorts = kFirstControlPort + kControls.size();

inline constexpr std::string_view kAudioInSymbol = "in";
inline constexpr std::string_view kAudioOutSymbol = "out";

// The port of the control at `position` in kControls.
constexpr std::uint32_t controlPort(std::size_t position) noexcept {
  return kFirstControlPort + static_cast<std::uint32_t>(position);
}

// Range and default of a control port, in port units.
struct PortRange {
  float minimum;
  float maximum;
  float start;
};

constexpr PortRange portRange(const ControlFacts& facts) noexcept {
  if (facts.kind == ControlKind::kSwitch) {
    return {0.0f, 1.0f, facts.startValue == 0.0f ? 0.0f : 1.0f};
  }
  return {static_cast<float>(Dial::kMin), static_cast<float>(Dial::kMax),
          static_cast<float>(dialOf(facts.startValue))};
}

// The normalised parameter value a control port's reading sets. Readings outside the declared
// range are held to it, as a careful host would have done.
constexpr float parameterOfPort(const ControlFacts& facts, float reading) noexcept {
  if (facts.kind == ControlKind::kSwitch) return reading > 0.0f ? kSwitchOnValue : 0.0f;
  const PortRange range = portRange(facts);
  const float held = reading < range.minimum   ? range.minimum
                     : reading > range.maximum ? range.maximum
                                               : reading;
  return valueOfDial(held);
}

// Blocks up to this length run in one piece when the host announces no maximum.
inline constexpr std::uint32_t kDefaultMaxBlock = 4096;
// The largest scratch an announced maximum may ask for (0.5 MiB); longer runs go in pieces.
inline constexpr std::uint32_t kLargestMaxBlock = 65536;

static_assert(portRange(kControls[1]).start == 5.5f && parameterOfPort(kControls[1], 5.5f) == 0.5f);
static_assert(parameterOfPort(kControls[0], 0.5f) == kSwitchOnValue);

}  // namespace tarnwell::lv2
