// A minimal host that drives one plug-in instance through its boundary only: an entry point, the
// AEffect record's dispatcher, parameter functions and double-precision process function. It is
// what a strict validator sees; nothing here knows the effect's classes.
//
// The entry point is passed in, so the same code serves a plug-in linked into the program and one
// loaded from the shared library. An instance is used from one thread at a time, except that
// parameters may be set from another thread while it processes, as a host's automation does.
#pragma once

#include <atomic>

#include "hostif/orv_typeif.h"
#include "hostif/vst_abi.h"

namespace reliability {

using EntryProc = Orv_TypeIF* (*)(audioMasterCallback);

// Host callback: answers audioMasterVersion with 2400 and everything else with 0. Counts the
// version requests, so a test can prove the plug-in really calls it.
VstIntPtr hostCallback(AEffect* effect, VstInt32 opcode, VstInt32 index, VstIntPtr value, void* ptr,
                       float opt);
extern std::atomic<long> versionRequests;

class PluginInstance {
 public:
  // Creates an instance through `entry` and opens it. effect() is null if the entry point
  // returned no instance.
  explicit PluginInstance(EntryProc entry);
  // Closes the instance through its record (effClose), unless close() already did.
  ~PluginInstance();

  PluginInstance(const PluginInstance&) = delete;
  PluginInstance& operator=(const PluginInstance&) = delete;

  AEffect* effect() const { return effect_; }

  VstIntPtr dispatch(VstInt32 opcode, VstInt32 index = 0, VstIntPtr value = 0, void* ptr = nullptr,
                     float opt = 0.0f);
  void setSampleRate(float rate) { dispatch(effSetSampleRate, 0, 0, nullptr, rate); }
  void setProgram(int program) { dispatch(effSetProgram, 0, program); }
  void setParameter(VstInt32 index, float value);
  float getParameter(VstInt32 index);

  // One block through processDoubleReplacing, one input and one output channel; `in` may equal
  // `out`.
  void process(double* in, double* out, VstInt32 frames);

  // Dispatches effClose; the record is gone afterwards.
  void close();

 private:
  AEffect* effect_ = nullptr;
};

}  // namespace reliability
