#include "formats/lv2/lv2_amp.h"

#include <algorithm>
#include <exception>
#include <limits>

#include "amp/tarnwell.h"

namespace tarnwell::lv2 {

Lv2Amp::Lv2Amp(double sampleRate, std::uint32_t maxBlock)
    : sampleRate_(static_cast<float>(sampleRate)),
      effect_(makeEffect(sampleRate_, static_cast<int>(std::max(maxBlock, 1u)))),
      scratch_(static_cast<int>(std::max(maxBlock, 1u))) {
  std::fill(std::begin(applied_), std::end(applied_), std::numeric_limits<float>::quiet_NaN());
}

Lv2Amp::~Lv2Amp() {
  effect_->suspend();
  effect_->close();
}

std::unique_ptr<AudioEffect> Lv2Amp::makeEffect(float sampleRate, int maxBlock) {
  // No host callback: the amp asks nothing of its host.
  std::unique_ptr<AudioEffect> effect = std::make_unique<Tarnwell>(nullptr);
  effect->open();
  effect->setSampleRate(sampleRate);
  effect->setBlockSize(maxBlock);
  effect->resume();
  return effect;
}

void Lv2Amp::connect(std::uint32_t port, void* data) noexcept {
  if (port == kAudioIn) {
    input_ = static_cast<const float*>(data);
  } else if (port == kAudioOut) {
    output_ = static_cast<float*>(data);
  } else if (port >= kFirstControlPort && port < kNumPorts) {
    controls_[port - kFirstControlPort] = static_cast<const float*>(data);
  }
}

void Lv2Amp::activate() noexcept {
  if (!ranSinceFresh_) return;
  try {
    std::unique_ptr<AudioEffect> fresh = makeEffect(sampleRate_, scratch_.capacity());
    effect_->close();
    effect_ = std::move(fresh);
    std::fill(std::begin(applied_), std::end(applied_), std::numeric_limits<float>::quiet_NaN());
    ranSinceFresh_ = false;
  } catch (const std::exception&) {
    // No fresh effect (out of memory): play on with the chain's history rather than fall silent.
  }
}

void Lv2Amp::applyControlChanges() noexcept {
  for (std::size_t k = 0; k < kControls.size(); ++k) {
    if (controls_[k] == nullptr) continue;
    const float reading = *controls_[k];
    // NaN is no reading at all; it also never equals what was applied.
    if (reading != reading || reading == applied_[k]) continue;
    applied_[k] = reading;
    effect_->setParameter(kControls[k].index, parameterOfPort(kControls[k], reading));
  }
}

void Lv2Amp::run(std::uint32_t sampleCount) noexcept {
  applyControlChanges();
  if (input_ == nullptr || output_ == nullptr) return;
  ranSinceFresh_ = true;

  // An empty run is no block: the changes it brought glide over the next run that has samples.
  if (sampleCount == 0) return;
  AudioEffect& effect = *effect_;
  scratch_.run(input_, output_, static_cast<int>(sampleCount),
               [&effect](double* in, double* out, int frames) noexcept {
                 effect.processDoubleReplacing(&in, &out, frames);
               });
}

}  // namespace tarnwell::lv2
