// The amp's name as every form shows it to hosts and users: the VST effect name and product
// string, the LV2 doap:name.
//
// Header only and constexpr: any thread, no state.
#pragma once

namespace tarnwell {

inline constexpr char kEffectName[] = "NEW Tarnwell";

}  // namespace tarnwell
