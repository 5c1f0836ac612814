// The waveshaper tables shared by every instance in the process. Static storage, zero at load;
// at unload each table's (empty) destructor runs through the exit handler the compiler registers
// for this image, and no memory is freed.
#include <mutex>

#include "amp/tarnwell.h"

namespace {

enum Curve { kFirstStageF7, kFirstStageF8, kSecondStage, kNumCurves };

// Each curve is built once, then only read.
Clipper curves[kNumCurves];
bool built[kNumCurves];

// Taken by set-ups only, never by the audio thread.
std::mutex& builderLock() {
  static std::mutex lock;
  return lock;
}

// Builds curve `which` unless it already is; false when it could not be built.
bool ensureBuilt(Curve which, double F) {
  if (built[which]) return true;
  built[which] = which == kSecondStage ? buildSecondStageCurve(curves[which])
                                       : buildFirstStageCurve(curves[which], F);
  return built[which];
}

}  // namespace

std::atomic<const Clipper*> Tarnwell::clip[2] = {nullptr, nullptr};
double Tarnwell::clipSampleRate = -1.0;

bool Tarnwell::buildClipTables(double F) {
  // The set-up only ever asks for F = 7 (48000 Hz) or F = 8.
  const Curve first = F == 7.0 ? kFirstStageF7 : kFirstStageF8;
  if (!ensureBuilt(first, F) || !ensureBuilt(kSecondStage, F)) return false;
  clip[0].store(&curves[first], std::memory_order_release);
  clip[1].store(&curves[kSecondStage], std::memory_order_release);
  return true;
}

bool Tarnwell::useClipTablesFor(double rate, double F) {
  std::lock_guard<std::mutex> lock(builderLock());
  if (rate == clipSampleRate) return true;
  if (!buildClipTables(F)) return false;
  clipSampleRate = rate;
  return true;
}
