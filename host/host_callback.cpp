#include "host/host_callback.h"

#include <algorithm>
#include <cstring>

namespace tarnwell::host {
namespace {

const HostContext* contextOf(const AEffect* effect) {
  return effect != nullptr ? static_cast<const HostContext*>(effect->user) : nullptr;
}

// Writes at most `capacity` bytes, the terminating zero included: whether a plug-in counts the zero
// in the published lengths varies, so the shorter reading is the safe one.
VstIntPtr copyString(std::string_view text, void* ptr, std::size_t capacity) {
  if (ptr == nullptr) return 0;
  auto* out = static_cast<char*>(ptr);
  const std::size_t n = std::min(text.size(), capacity - 1);
  std::memcpy(out, text.data(), n);
  out[n] = '\0';
  return 1;
}

VstIntPtr canDo(const void* ptr) {
  if (ptr == nullptr) return 0;
  const std::string_view asked(static_cast<const char*>(ptr));
  return std::ranges::find(HostIdentity::kCanDo, asked) != std::end(HostIdentity::kCanDo) ? 1 : 0;
}

}  // namespace

VstIntPtr hostCallback(AEffect* effect, VstInt32 opcode, VstInt32 /*index*/, VstIntPtr /*value*/,
                       void* ptr, float /*opt*/) {
  const HostContext* context = contextOf(effect);
  switch (opcode) {
    case audioMasterVersion:
      return HostIdentity::kVersion;
    case audioMasterGetSampleRate:
      return context != nullptr ? static_cast<VstIntPtr>(context->sampleRate) : 0;
    case audioMasterGetBlockSize:
      return context != nullptr ? context->blockSize : 0;
    case audioMasterGetVendorString:
      return copyString(HostIdentity::kVendor, ptr, kVstMaxVendorStrLen);
    case audioMasterGetProductString:
      return copyString(HostIdentity::kProduct, ptr, kVstMaxProductStrLen);
    case audioMasterGetVendorVersion:
      return HostIdentity::kVendorVersion;
    case audioMasterCanDo:
      return canDo(ptr);
    default:
      return 0;
  }
}

}  // namespace tarnwell::host
