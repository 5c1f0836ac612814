// TarnwellVst2: the amp as the standard VST 2.4 form presents it. Every answer is Tarnwell's; only
// the single-precision process differs, and gives the amp's sound:
//   out[i] = float(chain(double(in[i]))),
// the very chain of processDoubleReplacing, which stays as it is.
//
// Scratch: two double buffers of the prepared size, sized on the control thread when the host
// announces a block size (effSetBlockSize) and when it switches processing on (effMainsChanged).
// A float block longer than the prepared size runs as consecutive pieces of that size, each one
// block of the chain: the VOLUME and MASTER ramps and the tone glide that a parameter change
// starts complete within the first piece, not across the host's whole block.
//
// Threads: processReplacing runs on the audio thread. It holds the effect's lock across all the
// pieces of a block, so a parameter change lands at the next host block as it does for
// processDoubleReplacing, and it allocates nothing and calls no library function. The scratch is
// replaced under the same lock, so a host that announces a new size mid-stream never pulls the
// buffers from under a block.
#pragma once

#include "amp/tarnwell.h"
#include "dsp/float_bridge.h"

class TarnwellVst2 : public Tarnwell {
 public:
  explicit TarnwellVst2(audioMasterCallback host);

  void setBlockSize(VstInt32 newBlockSize) override;
  void resume() override;
  void processReplacing(float** inputs, float** outputs, VstInt32 sampleFrames) noexcept override;

  // The largest piece prepared for: a longer announced block runs in pieces of this size, so an
  // absurd announcement costs no more than this much memory.
  static constexpr VstInt32 kMaxPieceFrames = 1 << 15;

 private:
  // Control thread: buffers for pieces of `frames` samples, unless they are that size already.
  void prepareScratch(VstInt32 frames);

  FloatBridge scratch_;
};
