// A note as a player writes it, letter, optional sharp (#) or flat (b) and octave ("A1", "F#2",
// "Eb1"), in equal temperament with A4 = 440 Hz: f = 440 * 2^((m - 69) / 12), m = the note's
// MIDI number. Octaves 0 to 8. Any thread; pure.
#pragma once

#include <optional>
#include <string>

namespace tarnwell::cli {

// The note's frequency in Hz, or nothing for a text that is not a note.
std::optional<double> noteFrequency(const std::string& name);

}  // namespace tarnwell::cli
