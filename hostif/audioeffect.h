// AudioEffect: the root of every effect. It owns the AEffect record a host holds, turns each
// request arriving through that record into one virtual operation, keeps the state every effect
// has and wraps the core host-callback requests.
//
// Contract with the host:
// - The record's function pointers are static trampolines that find the instance in
//   cEffect.object. effClose runs close(), deletes the instance and answers 1.
// - Opcodes 0..24 are handled by AudioEffect::dispatcher; any other opcode answers 0 (AudioEffectX
//   adds 25..79). Boolean results cross the boundary as 1 or 0.
// - Every request made to the host passes &cEffect first, zero for unnamed arguments and 0.0 as
//   opt; without a host callback each request gives a fixed answer instead.
// - No operation of this class throws, and none reaches the host as an exception: the trampolines
//   answer 0 when an effect's override throws.
//
// Threads: dispatcher, parameter and text operations run on the host's control threads, the
// process operations on its audio thread. This class takes no lock; an effect that shares state
// between threads guards it itself.
//
// The virtual operations are declared in the order the host-side vtable expects: a module host
// compiled separately calls them by slot, so never reorder, insert or remove one.
#pragma once

#include "hostif/aeffeditor.h"
#include "hostif/vst_abi.h"

class AudioEffect {
 public:
  AudioEffect(audioMasterCallback host, VstInt32 programCount, VstInt32 paramCount);
  AudioEffect(const AudioEffect&) = delete;
  AudioEffect& operator=(const AudioEffect&) = delete;
  virtual ~AudioEffect();

  virtual VstIntPtr dispatcher(VstInt32 opcode, VstInt32 index, VstIntPtr value, void* ptr,
                               float opt);

  virtual void open() {}
  virtual void close() {}
  virtual void suspend() {}
  virtual void resume() {}

  virtual void setSampleRate(float newSampleRate) { sampleRate = newSampleRate; }
  virtual void setBlockSize(VstInt32 newBlockSize) { blockSize = newBlockSize; }

  virtual void processReplacing(float** inputs, float** outputs,
                                VstInt32 sampleFrames) noexcept = 0;
  virtual void processDoubleReplacing(double** /*inputs*/, double** /*outputs*/,
                                      VstInt32 /*sampleFrames*/) noexcept {}

  virtual void setParameter(VstInt32 /*index*/, float /*value*/) {}
  virtual float getParameter(VstInt32 /*index*/) { return 0.0f; }
  // setParameter, then tells the host (audioMasterAutomate) so it can record the change.
  virtual void setParameterAutomated(VstInt32 index, float value);

  virtual VstInt32 getProgram() { return curProgram; }
  virtual void setProgram(VstInt32 program) { curProgram = program; }
  virtual void setProgramName(char* /*name*/) {}
  virtual void getProgramName(char* name) { name[0] = 0; }

  virtual void getParameterLabel(VstInt32 /*index*/, char* label) { label[0] = 0; }
  virtual void getParameterDisplay(VstInt32 /*index*/, char* text) { text[0] = 0; }
  virtual void getParameterName(VstInt32 /*index*/, char* text) { text[0] = 0; }

  virtual VstInt32 getChunk(void** /*data*/, bool /*isPreset*/) { return 0; }
  virtual VstInt32 setChunk(void* /*data*/, VstInt32 /*byteSize*/, bool /*isPreset*/) { return 0; }

  // The four setters below only change the record; the host is not told.
  virtual void setUniqueID(VstInt32 iD) { cEffect.uniqueID = iD; }
  virtual void setNumInputs(VstInt32 inputs) { cEffect.numInputs = inputs; }
  virtual void setNumOutputs(VstInt32 outputs) { cEffect.numOutputs = outputs; }

  virtual void canProcessReplacing(bool state) { setFlag(effFlagsCanReplacing, state); }
  virtual void canDoubleReplacing(bool state) { setFlag(effFlagsCanDoubleReplacing, state); }
  virtual void programsAreChunks(bool state) { setFlag(effFlagsProgramChunks, state); }
  virtual void setInitialDelay(VstInt32 delay) { cEffect.initialDelay = delay; }

  virtual AEffEditor* getEditor() { return editor; }
  virtual AEffect* getAeffect() { return &cEffect; }
  virtual float getSampleRate() { return sampleRate; }
  virtual VstInt32 getBlockSize() { return blockSize; }

  // Host queries: 1, 0, 0, true and true without a host callback.
  virtual VstInt32 getMasterVersion();
  virtual VstInt32 getCurrentUniqueId();
  virtual VstInt32 masterIdle();
  virtual bool isInputConnected(VstInt32 input);
  virtual bool isOutputConnected(VstInt32 output);

  // Value-to-text. Each writes at most maxLen characters and a zero byte at text[maxLen], so text
  // holds at least maxLen + 1 bytes.
  // "-Inf" for value <= 0, else float2string(20 log10(value)).
  virtual void dB2string(float value, char* text, VstInt32 maxLen);
  // float2string(sampleRate / samples); a zero period reads as 0 Hz.
  virtual void Hz2string(float samples, char* text, VstInt32 maxLen);
  // float2string(samples * 1000 / sampleRate).
  virtual void ms2string(float samples, char* text, VstInt32 maxLen);
  // Sign place (space or '-'), integer digits, '.', two decimals rounded half away from zero in
  // single precision: 0.0 -> " 0.00", -1.5 -> "-1.50", 1234.5 -> " 1234.50".
  virtual void float2string(float value, char* text, VstInt32 maxLen);
  // Decimal digits with '-' before negatives; "Huge!" from 100000000 on.
  virtual void int2string(VstInt32 value, char* text, VstInt32 maxLen);

  // Kept for the slot order; the dispatcher never calls them.
  virtual void __processDeprecated(float** /*inputs*/, float** /*outputs*/,
                                   VstInt32 /*sampleFrames*/) noexcept {}
  virtual float __getVuDeprecated() { return 0.0f; }
  virtual void __hasVuDeprecated(bool state) { setFlag(effFlagsHasVu, state); }
  virtual void __hasClipDeprecated(bool state) { setFlag(effFlagsHasClip, state); }
  virtual void __canMonoDeprecated(bool state) { setFlag(effFlagsCanMono, state); }
  virtual void __setRealtimeQualitiesDeprecated(VstInt32 qualities) {
    cEffect.realQualities = qualities;
  }
  virtual void __setOfflineQualitiesDeprecated(VstInt32 qualities) {
    cEffect.offQualities = qualities;
  }

  // Takes ownership of the editor (null detaches) and announces it through effFlagsHasEditor.
  void setEditor(AEffEditor* newEditor);

 protected:
  // The trampolines stored in cEffect; each forwards to the instance in effect->object.
  static VstIntPtr dispatchEffectClass(AEffect* effect, VstInt32 opcode, VstInt32 index,
                                       VstIntPtr value, void* ptr, float opt) noexcept;
  static void processClassReplacing(AEffect* effect, float** inputs, float** outputs,
                                    VstInt32 sampleFrames) noexcept;
  static void processClassDoubleReplacing(AEffect* effect, double** inputs, double** outputs,
                                          VstInt32 sampleFrames) noexcept;
  static void __processClassDeprecated(AEffect* effect, float** inputs, float** outputs,
                                       VstInt32 sampleFrames) noexcept;
  static void setParameterClass(AEffect* effect, VstInt32 index, float value) noexcept;
  static float getParameterClass(AEffect* effect, VstInt32 index) noexcept;

  // Sets or clears one bit of cEffect.flags; no other bit changes.
  void setFlag(VstInt32 bit, bool state) noexcept {
    cEffect.flags = state ? (cEffect.flags | bit) : (cEffect.flags & ~bit);
  }
  bool hasFlag(VstInt32 bit) const noexcept { return (cEffect.flags & bit) != 0; }

  // One request to the host with &cEffect first. Only call with a host callback present.
  VstIntPtr callHost(VstInt32 opcode, VstInt32 index = 0, VstIntPtr value = 0, void* ptr = nullptr,
                     float opt = 0.0f) {
    return audioMaster(&cEffect, opcode, index, value, ptr, opt);
  }

  audioMasterCallback audioMaster;
  AEffEditor* editor;
  float sampleRate;
  VstInt32 blockSize;
  VstInt32 numPrograms;
  VstInt32 numParams;
  VstInt32 curProgram;
  AEffect cEffect;
};

// Creates the one effect this library provides. Defined by the effect; the entry points call it.
// Throws what the effect's constructor throws (the storage is released first).
AudioEffect* createPluginFilter(audioMasterCallback audioMaster);
