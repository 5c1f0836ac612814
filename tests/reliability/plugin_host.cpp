#include "tests/reliability/plugin_host.h"

namespace reliability {

namespace {
constexpr VstIntPtr kHostVersion = 2400;
}

std::atomic<long> versionRequests{0};

VstIntPtr hostCallback(AEffect*, VstInt32 opcode, VstInt32, VstIntPtr, void*, float) {
  if (opcode != audioMasterVersion) return 0;
  versionRequests.fetch_add(1, std::memory_order_relaxed);
  return kHostVersion;
}

PluginInstance::PluginInstance(EntryProc entry) {
  Orv_TypeIF* handle = entry(hostCallback);
  if (handle == nullptr) return;
  effect_ = handle->aeffect;
  // The handle owns nothing; a host may drop it at once.
  delete handle;
  if (effect_ != nullptr) dispatch(effOpen);
}

PluginInstance::~PluginInstance() {
  close();
}

VstIntPtr PluginInstance::dispatch(VstInt32 opcode, VstInt32 index, VstIntPtr value, void* ptr,
                                   float opt) {
  return effect_->dispatcher(effect_, opcode, index, value, ptr, opt);
}

void PluginInstance::setParameter(VstInt32 index, float value) {
  effect_->setParameter(effect_, index, value);
}

float PluginInstance::getParameter(VstInt32 index) {
  return effect_->getParameter(effect_, index);
}

void PluginInstance::process(double* in, double* out, VstInt32 frames) {
  double* inputs[1] = {in};
  double* outputs[1] = {out};
  effect_->processDoubleReplacing(effect_, inputs, outputs, frames);
}

void PluginInstance::close() {
  if (effect_ == nullptr) return;
  dispatch(effClose);
  effect_ = nullptr;
}

}  // namespace reliability
