// The progress line of a long render on stderr: percent done, time elapsed and speed as a multiple
// of realtime, redrawn in place a few times a second. It stays silent when disabled (-q, or stderr
// is not a terminal) and for renders that finish within the first seconds.
#pragma once

#include <chrono>
#include <cstdint>

namespace tarnwell::cli {

class ProgressLine {
 public:
  // `totalFrames` <= 0 when the length is unknown: the line then shows no percentage.
  ProgressLine(bool enabled, std::int64_t totalFrames, double sampleRate);
  ~ProgressLine();
  ProgressLine(const ProgressLine&) = delete;
  ProgressLine& operator=(const ProgressLine&) = delete;

  void advance(std::int64_t frames);

  // Whether stderr is a terminal, the usual condition for `enabled`.
  static bool stderrIsTerminal();

 private:
  using Clock = std::chrono::steady_clock;
  void draw(Clock::time_point now);

  bool enabled_;
  bool drawn_ = false;
  std::int64_t total_;
  std::int64_t done_ = 0;
  double sampleRate_;
  Clock::time_point start_;
  Clock::time_point lastDraw_;
};

}  // namespace tarnwell::cli
