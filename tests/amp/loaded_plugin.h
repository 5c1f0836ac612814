// The plug-in as a host sees it: tarnwell.so loaded with dlopen, an instance made through an entry
// point, and every request sent through the AEffect record. The library stays loaded for the
// whole test program.
#pragma once

#include <atomic>
#include <vector>

#include "hostif/orv_typebase.h"
#include "hostif/orv_typeif.h"

namespace amp_test {

using EntryProc = Orv_TypeIF* (*)(audioMasterCallback);

// The named entry point of tarnwell.so; fails the test program if it is missing.
EntryProc entryPoint(const char* name = "getinterface");

// Answers audioMasterVersion with 2400 and everything else with 0; counts every request.
VstIntPtr testHost(AEffect* effect, VstInt32 opcode, VstInt32 index, VstIntPtr value, void* ptr,
                   float opt);
extern std::atomic<long> hostRequests;

class LoadedPlugin {
 public:
  explicit LoadedPlugin(EntryProc entry = entryPoint());
  ~LoadedPlugin();  // effClose through the record
  LoadedPlugin(const LoadedPlugin&) = delete;
  LoadedPlugin& operator=(const LoadedPlugin&) = delete;

  AEffect* effect() const { return effect_; }
  // The instance's module description, reached through the record's object field.
  Orv_TypeBase* module() const { return static_cast<Orv_TypeBase*>(effect_->object); }

  VstIntPtr dispatch(VstInt32 opcode, VstInt32 index = 0, VstIntPtr value = 0, void* ptr = nullptr,
                     float opt = 0.0f);
  void setSampleRate(float rate) { dispatch(effSetSampleRate, 0, 0, nullptr, rate); }
  void setProgram(VstInt32 program) { dispatch(effSetProgram, 0, program); }
  void setParameter(VstInt32 index, float value) { effect_->setParameter(effect_, index, value); }
  float getParameter(VstInt32 index) { return effect_->getParameter(effect_, index); }

  // One block; `in` may equal `out`.
  void process(double* in, double* out, VstInt32 frames);
  // Runs `input` through in blocks of `block` samples and returns the output.
  std::vector<double> render(const std::vector<double>& input, int block);

 private:
  AEffect* effect_ = nullptr;
};

// A test signal: a bass-like mix of two sines and noise at the given peak level.
std::vector<double> testSignal(int frames, double rate, double level, unsigned seed = 1);

}  // namespace amp_test
