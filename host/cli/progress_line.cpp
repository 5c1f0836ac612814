#include "host/cli/progress_line.h"

#include <fmt/format.h>
#include <unistd.h>

#include <cstdio>

namespace tarnwell::cli {
namespace {

constexpr std::chrono::milliseconds kQuietStart{2000};  // shorter renders show no line
constexpr std::chrono::milliseconds kRedrawEvery{200};

}  // namespace

ProgressLine::ProgressLine(bool enabled, std::int64_t totalFrames, double sampleRate)
    : enabled_(enabled), total_(totalFrames), sampleRate_(sampleRate), start_(Clock::now()) {}

ProgressLine::~ProgressLine() {
  if (drawn_) {
    draw(Clock::now());
    fmt::print(stderr, "\n");
  }
}

bool ProgressLine::stderrIsTerminal() {
  return isatty(STDERR_FILENO) == 1;
}

void ProgressLine::advance(std::int64_t frames) {
  done_ += frames;
  if (!enabled_) return;
  const auto now = Clock::now();
  if (now - start_ < kQuietStart || now - lastDraw_ < kRedrawEvery) return;
  draw(now);
}

void ProgressLine::draw(Clock::time_point now) {
  lastDraw_ = now;
  drawn_ = true;
  const double elapsed = std::chrono::duration<double>(now - start_).count();
  const double speed = elapsed > 0.0 ? done_ / sampleRate_ / elapsed : 0.0;
  const int seconds = static_cast<int>(elapsed);
  const std::string percent =
      total_ > 0 ? fmt::format("{:3.0f}%  ", 100.0 * done_ / total_) : std::string();
  fmt::print(stderr, "\r{}{}:{:02d} elapsed  {:.0f}x realtime ", percent, seconds / 60,
             seconds % 60, speed);
  std::fflush(stderr);
}

}  // namespace tarnwell::cli
