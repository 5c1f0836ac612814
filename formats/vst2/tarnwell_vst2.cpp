#include "formats/vst2/tarnwell_vst2.h"

#include <algorithm>
#include <mutex>
#include <new>
#include <utility>

// Prepared at construction for the record's default block size, so a host that never announces
// one still hears the amp.
TarnwellVst2::TarnwellVst2(audioMasterCallback host)
    : Tarnwell(host), scratch_(std::min(blockSize, kMaxPieceFrames)) {}

void TarnwellVst2::setBlockSize(VstInt32 newBlockSize) {
  Tarnwell::setBlockSize(newBlockSize);
  prepareScratch(newBlockSize);
}

void TarnwellVst2::resume() {
  Tarnwell::resume();
  prepareScratch(blockSize);
}

void TarnwellVst2::prepareScratch(VstInt32 frames) {
  // A size no block can have leaves the pieces as they were.
  if (frames <= 0) return;
  const int capacity = std::min(frames, kMaxPieceFrames);
  if (capacity == scratch_.capacity()) return;
  try {
    FloatBridge fresh(capacity);
    std::lock_guard<RecursiveMutex> lock(blockLock());
    std::swap(scratch_, fresh);
  } catch (const std::bad_alloc&) {
    // Out of memory: the old buffers stay, and longer blocks run in their smaller pieces.
  }
}

void TarnwellVst2::processReplacing(float** inputs, float** outputs,
                                    VstInt32 sampleFrames) noexcept {
  if (sampleFrames > 0 &&
      (inputs == nullptr || outputs == nullptr || inputs[0] == nullptr || outputs[0] == nullptr)) {
    return;  // no buffers to work on, as in the double path
  }
  std::lock_guard<RecursiveMutex> lock(blockLock());
  const float* in = sampleFrames > 0 ? inputs[0] : nullptr;
  float* out = sampleFrames > 0 ? outputs[0] : nullptr;
  scratch_.run(in, out, sampleFrames, [this](double* pieceIn, double* pieceOut, int n) noexcept {
    Tarnwell::processDoubleReplacing(&pieceIn, &pieceOut, n);
  });
}
