// The LV2 entry: one descriptor for the amp, whose callbacks forward to Lv2Amp. Nothing but
// lv2_descriptor leaves the module (exports.map).
#include <lv2/core/lv2.h>

#include <algorithm>
#include <cmath>
#include <new>

#include "formats/lv2/host_features.h"
#include "formats/lv2/lv2_amp.h"

namespace {

using tarnwell::lv2::Lv2Amp;

Lv2Amp* amp(LV2_Handle instance) {
  return static_cast<Lv2Amp*>(instance);
}

LV2_Handle instantiate(const LV2_Descriptor*, double sampleRate, const char*,
                       const LV2_Feature* const* features) {
  if (!(sampleRate > 0.0) || !std::isfinite(sampleRate)) return nullptr;
  std::uint32_t maxBlock = tarnwell::lv2::announcedMaxBlock(features);
  if (maxBlock == 0) maxBlock = tarnwell::lv2::kDefaultMaxBlock;
  maxBlock = std::min(maxBlock, tarnwell::lv2::kLargestMaxBlock);
  try {
    return new Lv2Amp(sampleRate, maxBlock);
  } catch (const std::exception&) {
    return nullptr;  // the host learns of the failure from the null handle
  }
}

void connectPort(LV2_Handle instance, std::uint32_t port, void* data) {
  amp(instance)->connect(port, data);
}

void activate(LV2_Handle instance) {
  amp(instance)->activate();
}

void run(LV2_Handle instance, std::uint32_t sampleCount) {
  amp(instance)->run(sampleCount);
}

void cleanup(LV2_Handle instance) {
  delete amp(instance);
}

const void* extensionData(const char*) {
  return nullptr;
}

const LV2_Descriptor kDescriptor = {
    tarnwell::lv2::kPluginUri,
    instantiate,
    connectPort,
    activate,
    run,
    nullptr,  // deactivate: the next activate starts afresh
    cleanup,
    extensionData,
};

}  // namespace

LV2_SYMBOL_EXPORT const LV2_Descriptor* lv2_descriptor(std::uint32_t index) {
  return index == 0 ? &kDescriptor : nullptr;
}
