// Brings a prepared instance to its steady state before the first sample anyone hears, as a DAW
// does by running a plug-in on silence before playback. After set-up the amp fades VOLUME and
// MASTER in from 0 over its first block and glides the tone stack from its reset design over the
// next; a render that fed a file into that fade would sound different for every block size.
//
// settle() runs the instance on silence, in blocks of its prepared block size, for at least two
// blocks (the fade, then the end of the glide) and at least kSettleSeconds, so that whatever the
// instance was doing has died away: silence in then gives silence out below -120 dBFS. With
// constant settings everything processed afterwards is then the same whatever the block size.
//
// Length: the slowest poles of the amp are the tone stack's 15 Hz high-pass (Q 0.65, DEEP on) and
// 18 Hz (Q 0.63), then the 20, 26 and 30 Hz first-order high-passes: about 13.8 time constants
// (120 dB) of a 14 ms decay. Measured at 44.1 and 96 kHz with every knob up, the tail of a loud
// burst with an offset falls below -120 dBFS within 266 ms; 400 ms leaves a margin.
//
// Thread: the instance's control thread, before processing starts; allocates its silence.
#pragma once

#include <cstdint>

#include "host/plugin_instance.h"

namespace tarnwell::host {

inline constexpr double kSettleSeconds = 0.4;

// Frames settle() runs at a sample rate and block size: whole blocks, at least two.
std::int64_t settleFrames(double sampleRate, int blockFrames) noexcept;

// The instance must be prepared.
void settle(PluginInstance& instance);

}  // namespace tarnwell::host
