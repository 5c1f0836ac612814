#include "host/cli/note_name.h"

#include <cctype>
#include <cmath>

namespace tarnwell::cli {
namespace {

// Semitones above C of the natural notes A to G.
constexpr int kLetterSemitone[] = {9, 11, 0, 2, 4, 5, 7};

}  // namespace

std::optional<double> noteFrequency(const std::string& name) {
  if (name.size() < 2 || name.size() > 3) return std::nullopt;
  const int letter = std::toupper(static_cast<unsigned char>(name[0])) - 'A';
  if (letter < 0 || letter > 6) return std::nullopt;
  int semitone = kLetterSemitone[letter];
  std::size_t pos = 1;
  if (name.size() == 3) {
    if (name[1] == '#') {
      ++semitone;
    } else if (name[1] == 'b') {
      --semitone;
    } else {
      return std::nullopt;
    }
    pos = 2;
  }
  if (!std::isdigit(static_cast<unsigned char>(name[pos])) || name[pos] > '8') return std::nullopt;
  const int octave = name[pos] - '0';
  const int midi = 12 * (octave + 1) + semitone;
  return 440.0 * std::pow(2.0, (midi - 69) / 12.0);
}

}  // namespace tarnwell::cli
