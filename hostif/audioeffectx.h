// AudioEffectX: the extended effect interface. Adds the effect opcodes 25..79, the host queries
// an effect may make, speaker-arrangement bookkeeping and the capability texts (can_do.h). No
// fields of its own.
//
// Contract:
// - dispatcher handles 25..79 and passes every other opcode to AudioEffect::dispatcher. Deprecated
//   opcodes answer 0; boolean results cross as 1 or 0.
// - Each host query asks the host callback with &cEffect first; without a callback it returns the
//   fixed answer noted beside it. None throws.
// - Speaker arrangements made by allocateArrangement hold exactly numChannels speaker records
//   after the two header words (8 + 112 * numChannels bytes, zero-filled) and belong to whoever
//   holds the pointer; release them with deallocateArrangement.
//
// Threads: whichever host thread calls; no locks.
//
// The virtual operations continue AudioEffect's slot order; never reorder, insert or remove one.
#pragma once

#include "hostif/audioeffect.h"
#include "hostif/can_do.h"
#include "hostif/vst_abi.h"

class AudioEffectX : public AudioEffect {
 public:
  AudioEffectX(audioMasterCallback host, VstInt32 programCount, VstInt32 paramCount)
      : AudioEffect(host, programCount, paramCount) {}

  VstIntPtr dispatcher(VstInt32 opcode, VstInt32 index, VstIntPtr value, void* ptr,
                       float opt) override;
  // Asks the host for MIDI (audioMasterWantMidi) when the effect is a synth or can receive MIDI.
  void resume() override;

  virtual bool canParameterBeAutomated(VstInt32 /*index*/) { return true; }
  virtual bool string2parameter(VstInt32 /*index*/, char* /*text*/) { return false; }
  virtual bool getParameterProperties(VstInt32 /*index*/, VstParameterProperties* /*p*/) {
    return false;
  }
  // Tell the host a parameter gesture starts or ends; false without a callback.
  virtual bool beginEdit(VstInt32 index);
  virtual bool endEdit(VstInt32 index);
  virtual bool getProgramNameIndexed(VstInt32 /*category*/, VstInt32 /*index*/, char* /*text*/) {
    return false;
  }
  virtual bool beginSetProgram() { return false; }
  virtual bool endSetProgram() { return false; }
  virtual VstInt32 beginLoadBank(VstPatchChunkInfo* /*info*/) { return 0; }
  virtual VstInt32 beginLoadProgram(VstPatchChunkInfo* /*info*/) { return 0; }

  virtual bool ioChanged();
  // Sets sampleRate to 44100, then to the host's rate when it answers one > 0; returns it.
  virtual float updateSampleRate();
  // Takes the host's block size when it answers one > 0; returns blockSize.
  virtual VstInt32 updateBlockSize();
  virtual VstInt32 getInputLatency();
  virtual VstInt32 getOutputLatency();
  virtual bool getInputProperties(VstInt32 /*index*/, VstPinProperties* /*properties*/) {
    return false;
  }
  virtual bool getOutputProperties(VstInt32 /*index*/, VstPinProperties* /*properties*/) {
    return false;
  }
  virtual bool setSpeakerArrangement(VstSpeakerArrangement* /*pluginInput*/,
                                     VstSpeakerArrangement* /*pluginOutput*/) {
    return false;
  }
  virtual bool getSpeakerArrangement(VstSpeakerArrangement** pluginInput,
                                     VstSpeakerArrangement** pluginOutput);
  virtual bool setBypass(bool /*onOff*/) { return false; }
  virtual bool setPanLaw(VstInt32 /*type*/, float /*value*/) { return false; }
  virtual bool setProcessPrecision(VstInt32 /*precision*/) { return false; }
  virtual VstInt32 getNumMidiInputChannels() { return 0; }
  virtual VstInt32 getNumMidiOutputChannels() { return 0; }

  virtual VstTimeInfo* getTimeInfo(VstInt32 filter);
  virtual VstInt32 getCurrentProcessLevel();
  virtual VstInt32 getAutomationState();
  virtual VstInt32 processEvents(VstEvents* /*events*/) { return 0; }
  virtual VstInt32 startProcess() { return 0; }
  virtual VstInt32 stopProcess() { return 0; }
  virtual bool processVariableIo(VstVariableIo* /*varIo*/) { return false; }
  virtual VstInt32 setTotalSampleToProcess(VstInt32 value) { return value; }

  virtual bool getHostVendorString(char* text);
  virtual bool getHostProductString(char* text);
  virtual VstInt32 getHostVendorVersion();
  virtual VstIntPtr hostVendorSpecific(VstInt32 lArg1, VstIntPtr lArg2, void* ptrArg,
                                       float floatArg);
  virtual bool canHostDo(char* text);
  virtual VstInt32 getHostLanguage();

  virtual void isSynth(bool state = true) { setFlag(effFlagsIsSynth, state); }
  virtual void noTail(bool state = true) { setFlag(effFlagsNoSoundInStop, state); }
  virtual VstInt32 getGetTailSize() { return 0; }
  virtual void* getDirectory();

  virtual bool getEffectName(char* /*name*/) { return false; }
  virtual bool getVendorString(char* /*text*/) { return false; }
  virtual bool getProductString(char* /*text*/) { return false; }
  virtual VstInt32 getVendorVersion() { return 0; }
  virtual VstIntPtr vendorSpecific(VstInt32 /*lArg*/, VstIntPtr /*lArg2*/, void* /*ptrArg*/,
                                   float /*floatArg*/) {
    return 0;
  }
  virtual VstInt32 canDo(char* /*text*/) { return 0; }
  virtual VstInt32 getVstVersion() { return kVstVersion; }
  // kPlugCategSynth when effFlagsIsSynth is set, else kPlugCategUnknown.
  virtual VstPlugCategory getPlugCategory();

  virtual VstInt32 getMidiProgramName(VstInt32 /*channel*/, MidiProgramName* /*name*/) { return 0; }
  virtual VstInt32 getCurrentMidiProgram(VstInt32 /*channel*/, MidiProgramName* /*current*/) {
    return -1;
  }
  virtual VstInt32 getMidiProgramCategory(VstInt32 /*channel*/, MidiProgramCategory* /*cat*/) {
    return 0;
  }
  virtual bool hasMidiProgramsChanged(VstInt32 /*channel*/) { return false; }
  virtual bool getMidiKeyName(VstInt32 /*channel*/, MidiKeyName* /*keyName*/) { return false; }

  virtual bool updateDisplay();
  virtual bool sizeWindow(VstInt32 width, VstInt32 height);
  // Not sent to the host at all when ptr is null.
  virtual bool openFileSelector(VstFileSelect* ptr);
  virtual bool closeFileSelector(VstFileSelect* ptr);
  virtual VstInt32 getNextShellPlugin(char* /*name*/) { return 0; }

  // Releases *arrangement if set, then stores a new zero-filled one of nbChannels speakers; false
  // (and *arrangement null) when it cannot be allocated.
  virtual bool allocateArrangement(VstSpeakerArrangement** arrangement, VstInt32 nbChannels);
  // Releases *arrangement if set and nulls it; always true.
  virtual bool deallocateArrangement(VstSpeakerArrangement** arrangement);
  // Copies one speaker; the name is cut to 63 characters and always terminated.
  virtual bool copySpeaker(VstSpeakerProperties* to, VstSpeakerProperties* from);
  // Replaces *to by a copy of from, through the three operations above.
  virtual bool matchArrangement(VstSpeakerArrangement** to, VstSpeakerArrangement* from);

  virtual bool offlineRead(VstOfflineTask* offline, VstOfflineOption option,
                           bool readSource = true);
  virtual bool offlineWrite(VstOfflineTask* offline, VstOfflineOption option);
  virtual bool offlineStart(VstAudioFile* audioFiles, VstInt32 numAudioFiles,
                            VstInt32 numNewAudioFiles);
  virtual VstInt32 offlineGetCurrentPass();
  virtual VstInt32 offlineGetCurrentMetaPass();
  virtual bool offlineNotify(VstAudioFile* /*ptr*/, VstInt32 /*numAudioFiles*/, bool /*start*/) {
    return false;
  }
  virtual bool offlinePrepare(VstOfflineTask* /*offline*/, VstInt32 /*count*/) { return false; }
  virtual bool offlineRun(VstOfflineTask* /*offline*/, VstInt32 /*count*/) { return false; }
  virtual VstInt32 offlineGetNumPasses() { return 0; }
  virtual VstInt32 offlineGetNumMetaPasses() { return 0; }

  // Kept for the slot order; the dispatcher never calls them.
  virtual void __wantEventsDeprecated(VstInt32 filter = 1);
  virtual VstInt32 __tempoAtDeprecated(VstInt32 pos);
  virtual VstInt32 __getNumAutomatableParametersDeprecated();
  virtual VstInt32 __getParameterQuantizationDeprecated();
  virtual VstInt32 __getNumCategoriesDeprecated() { return 1; }
  virtual bool __copyProgramDeprecated(VstInt32 /*destination*/) { return false; }
  virtual bool __needIdleDeprecated();
  virtual AEffect* __getPreviousPlugDeprecated(VstInt32 input);
  virtual AEffect* __getNextPlugDeprecated(VstInt32 output);
  virtual void __inputConnectedDeprecated(VstInt32 /*index*/, bool /*state*/) {}
  virtual void __outputConnectedDeprecated(VstInt32 /*index*/, bool /*state*/) {}
  virtual VstInt32 __willProcessReplacingDeprecated();
  virtual void __wantAsyncOperationDeprecated(bool state = true) {
    setFlag(effFlagsExtIsAsync, state);
  }
  virtual void __hasExternalBufferDeprecated(bool state = true) {
    setFlag(effFlagsExtHasBuffer, state);
  }
  virtual VstInt32 __reportCurrentPositionDeprecated() { return 0; }
  virtual float* __reportDestinationBufferDeprecated() { return nullptr; }
  virtual void __setOutputSamplerateDeprecated(float samplerate);
  virtual VstSpeakerArrangement* __getInputSpeakerArrangementDeprecated();
  virtual VstSpeakerArrangement* __getOutputSpeakerArrangementDeprecated();
  virtual void* __openWindowDeprecated(__VstWindowDeprecated* window);
  virtual bool __closeWindowDeprecated(__VstWindowDeprecated* window);
  virtual void __setBlockSizeAndSampleRateDeprecated(VstInt32 newBlockSize, float newSampleRate) {
    blockSize = newBlockSize;
    sampleRate = newSampleRate;
  }
  virtual bool __getErrorTextDeprecated(char* /*text*/) { return false; }
  virtual void* __getIconDeprecated() { return nullptr; }
  virtual bool __setViewPositionDeprecated(VstInt32 /*x*/, VstInt32 /*y*/) { return false; }
  virtual VstInt32 __fxIdleDeprecated() { return 0; }
  virtual bool __keysRequiredDeprecated() { return false; }
  virtual bool __getChunkFileDeprecated(void* nativePath);

  // Sends events to the host; true only when the host answers exactly 1.
  bool sendVstEventsToHost(VstEvents* events);
};
