// One effect instance, driven as a render host drives it: created through the library's entry point
// and opened; prepared (sample rate, block size, mains on, start); processed block by block; then
// stopped, switched off, closed and its handle deleted, in that order, by the destructor.
//
// Creation turns every way a plug-in can fail into a PluginError: no handle, a handle without a
// record (the plug-in refused), a record without the effect magic, or no double-precision process.
//
// Thread: every operation but process() belongs to one control thread; process() is the audio
// path: it forwards one block and nothing else.
#pragma once

#include <memory>
#include <optional>
#include <string>

#include "host/host_callback.h"
#include "host/plugin_library.h"
#include "hostif/vst_abi.h"

namespace tarnwell::host {

class PluginInstance {
 public:
  explicit PluginInstance(std::shared_ptr<const PluginLibrary> library);
  ~PluginInstance();
  PluginInstance(const PluginInstance&) = delete;
  PluginInstance& operator=(const PluginInstance&) = delete;

  // Mono in, mono out is what process() feeds; anything else throws PluginError here.
  void prepare(double sampleRate, int maxBlockFrames);
  bool prepared() const noexcept { return running_; }
  // What the instance was prepared with; 0 before.
  double sampleRate() const noexcept { return context_->sampleRate; }
  int blockSize() const noexcept { return context_->blockSize; }

  // `in` and `out` hold `frames` samples, frames <= the prepared block size; they may not alias.
  void process(const double* in, double* out, int frames) noexcept {
    double* inputs[] = {const_cast<double*>(in)};
    double* outputs[] = {out};
    effect_->processDoubleReplacing(effect_, inputs, outputs, frames);
  }

  void setParameter(int index, float value) noexcept;
  float parameter(int index) const noexcept;
  void setProgram(int index) noexcept;  // 0-based; the plug-in ignores indices out of its range
  int program() const noexcept;

  int numParameters() const noexcept { return effect_->numParams; }
  int numPrograms() const noexcept { return effect_->numPrograms; }

  std::string parameterName(int index) const;
  std::string parameterLabel(int index) const;
  std::string parameterDisplay(int index) const;
  std::string programName() const;
  std::optional<std::string> programNameIndexed(int index) const;
  std::optional<std::string> effectName() const;
  std::optional<std::string> productString() const;
  std::optional<std::string> vendorString() const;
  VstIntPtr vendorVersion() const;
  VstIntPtr category() const;
  VstIntPtr vstVersion() const;

  const AEffect& record() const noexcept { return *effect_; }
  const PluginLibrary& library() const noexcept { return *library_; }

 private:
  VstIntPtr dispatch(VstInt32 opcode, VstInt32 index = 0, VstIntPtr value = 0, void* ptr = nullptr,
                     float opt = 0.0f) const;
  std::string text(VstInt32 opcode, VstInt32 index) const;
  std::optional<std::string> answeredText(VstInt32 opcode, VstInt32 index = 0,
                                          VstIntPtr value = 0) const;
  void stop() noexcept;

  std::shared_ptr<const PluginLibrary> library_;
  std::unique_ptr<HostContext> context_;  // the record's `user` points here: its address is fixed
  Orv_TypeIF* handle_ = nullptr;
  AEffect* effect_ = nullptr;
  bool running_ = false;
};

}  // namespace tarnwell::host
