// One LV2 instance of the amp: the ports a host connects, over one Tarnwell effect made by the
// amp library, driven as a VST host drives it.
//
//   run(n):  for each control whose reading changed since the last run:
//              setParameter(index, parameterOfPort(reading))     (lands at this block)
//            out[i] = float(chain(double(in[i])))                 for i in 0..n-1
//
// A control change lands exactly as a host parameter change does: the tone stack glides over
// the run, VOLUME and MASTER ramp across it. The input is read whole into the double scratch
// before any output is written, so the host may hand the same buffer for input and output.
// A run longer than the scratch goes in pieces of the scratch's length; each piece is a block of
// the chain, so a change made for that run ramps over its first piece only.
//
// Threads: construction, activate() and destruction on the host's instantiation thread;
// connect() and run() on its audio thread. run() allocates nothing, calls no library function
// and takes only the effect's own lock (inside setParameter and the block).
#pragma once

#include <cstdint>
#include <memory>

#include "dsp/float_bridge.h"
#include "formats/lv2/ports.h"
#include "hostif/audioeffect.h"

namespace tarnwell::lv2 {

class Lv2Amp {
 public:
  // An instance at `sampleRate` whose runs of up to `maxBlock` samples go in one piece.
  // Throws when the effect cannot be made (out of memory, no mutex).
  Lv2Amp(double sampleRate, std::uint32_t maxBlock);
  ~Lv2Amp();
  Lv2Amp(const Lv2Amp&) = delete;
  Lv2Amp& operator=(const Lv2Amp&) = delete;

  void connect(std::uint32_t port, void* data) noexcept;
  // Switching on again after a run starts from a fresh chain, as LV2 asks: no history survives.
  void activate() noexcept;
  void run(std::uint32_t sampleCount) noexcept;

  std::uint32_t scratchLength() const noexcept {
    return static_cast<std::uint32_t>(scratch_.capacity());
  }

 private:
  static std::unique_ptr<AudioEffect> makeEffect(float sampleRate, int maxBlock);
  void applyControlChanges() noexcept;

  float sampleRate_;
  std::unique_ptr<AudioEffect> effect_;
  FloatBridge scratch_;
  bool ranSinceFresh_ = false;

  const float* input_ = nullptr;
  float* output_ = nullptr;
  const float* controls_[kControls.size()] = {};
  // The reading each control last set; NaN until the first run applies them all.
  float applied_[kControls.size()];
};

}  // namespace tarnwell::lv2
