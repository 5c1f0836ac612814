#include "host/plugin_instance.h"

#include <array>
#include <cstring>
#include <string_view>

#include "host/plugin_error.h"
#include "hostif/orv_typeif.h"

namespace tarnwell::host {
namespace {

// Larger than any text the interface allows, so a plug-in that overruns its limit by a little
// still writes into our memory, and zero-filled so an unterminated text ends inside it.
constexpr std::size_t kTextBufferSize = 256;

std::string hex(VstInt32 value) {
  constexpr std::string_view digits = "0123456789abcdef";
  std::string out = "0x";
  for (int shift = 28; shift >= 0; shift -= 4) {
    out += digits[(static_cast<std::uint32_t>(value) >> shift) & 0xFu];
  }
  return out;
}

}  // namespace

PluginInstance::PluginInstance(std::shared_ptr<const PluginLibrary> library)
    : library_(std::move(library)), context_(std::make_unique<HostContext>()) {
  const std::string name = library_->path().string();
  Orv_TypeIF* handle = library_->entryPoint()(&hostCallback);
  if (handle == nullptr) {
    throw PluginError("plug-in " + name + " returned no instance from " +
                      std::string(library_->entryName()));
  }
  AEffect* effect = handle->aeffect;
  if (effect == nullptr) {
    delete handle;
    throw PluginError("plug-in " + name + " refused to create an instance");
  }
  if (effect->magic != kEffectMagic) {
    // Not a record we know how to close: the instance is left to the library.
    delete handle;
    throw PluginError("plug-in " + name + " is not a VST 2.4 effect (magic " + hex(effect->magic) +
                      ")");
  }
  handle_ = handle;
  effect_ = effect;
  effect_->user = context_.get();
  if ((effect_->flags & effFlagsCanDoubleReplacing) == 0 ||
      effect_->processDoubleReplacing == nullptr) {
    dispatch(effClose);
    delete handle_;
    throw PluginError("plug-in " + name + " cannot process double precision");
  }
  dispatch(effOpen);
}

PluginInstance::~PluginInstance() {
  stop();
  dispatch(effClose);  // deletes the effect: the record is gone from here on
  delete handle_;
}

void PluginInstance::prepare(double sampleRate, int maxBlockFrames) {
  if (effect_->numInputs != 1 || effect_->numOutputs != 1) {
    throw PluginError("plug-in " + library_->path().string() + " is not mono (" +
                      std::to_string(effect_->numInputs) + " inputs, " +
                      std::to_string(effect_->numOutputs) + " outputs)");
  }
  stop();
  context_->sampleRate = sampleRate;
  context_->blockSize = maxBlockFrames;
  dispatch(effSetSampleRate, 0, 0, nullptr, static_cast<float>(sampleRate));
  dispatch(effSetBlockSize, 0, maxBlockFrames);
  dispatch(effMainsChanged, 0, 1);
  dispatch(effStartProcess);
  running_ = true;
}

void PluginInstance::stop() noexcept {
  if (!running_) return;
  dispatch(effStopProcess);
  dispatch(effMainsChanged, 0, 0);
  running_ = false;
}

void PluginInstance::setParameter(int index, float value) noexcept {
  effect_->setParameter(effect_, index, value);
}

float PluginInstance::parameter(int index) const noexcept {
  return effect_->getParameter(effect_, index);
}

void PluginInstance::setProgram(int index) noexcept {
  dispatch(effSetProgram, 0, index);
}

int PluginInstance::program() const noexcept {
  return static_cast<int>(dispatch(effGetProgram));
}

std::string PluginInstance::parameterName(int index) const {
  return text(effGetParamName, index);
}
std::string PluginInstance::parameterLabel(int index) const {
  return text(effGetParamLabel, index);
}
std::string PluginInstance::parameterDisplay(int index) const {
  return text(effGetParamDisplay, index);
}
std::string PluginInstance::programName() const {
  return text(effGetProgramName, 0);
}

std::optional<std::string> PluginInstance::programNameIndexed(int index) const {
  return answeredText(effGetProgramNameIndexed, index);
}
std::optional<std::string> PluginInstance::effectName() const {
  return answeredText(effGetEffectName);
}
std::optional<std::string> PluginInstance::productString() const {
  return answeredText(effGetProductString);
}
std::optional<std::string> PluginInstance::vendorString() const {
  return answeredText(effGetVendorString);
}
VstIntPtr PluginInstance::vendorVersion() const {
  return dispatch(effGetVendorVersion);
}
VstIntPtr PluginInstance::category() const {
  return dispatch(effGetPlugCategory);
}
VstIntPtr PluginInstance::vstVersion() const {
  return dispatch(effGetVstVersion);
}

VstIntPtr PluginInstance::dispatch(VstInt32 opcode, VstInt32 index, VstIntPtr value, void* ptr,
                                   float opt) const {
  return effect_->dispatcher(effect_, opcode, index, value, ptr, opt);
}

std::string PluginInstance::text(VstInt32 opcode, VstInt32 index) const {
  std::array<char, kTextBufferSize> buffer{};
  dispatch(opcode, index, 0, buffer.data());
  return std::string(buffer.data(), strnlen(buffer.data(), buffer.size() - 1));
}

std::optional<std::string> PluginInstance::answeredText(VstInt32 opcode, VstInt32 index,
                                                        VstIntPtr value) const {
  std::array<char, kTextBufferSize> buffer{};
  if (dispatch(opcode, index, value, buffer.data()) == 0) return std::nullopt;
  return std::string(buffer.data(), strnlen(buffer.data(), buffer.size() - 1));
}

}  // namespace tarnwell::host
