// AudioEffectX's requests to the host. Each one asks only when there is a host callback and
// otherwise returns the fixed answer a host that knows nothing would imply.

#include "hostif/audioeffectx.h"

namespace {

constexpr float kFallbackSampleRate = 44100.0f;

}  // namespace

bool AudioEffectX::sendVstEventsToHost(VstEvents* events) {
  return audioMaster ? callHost(audioMasterProcessEvents, 0, 0, events) == 1 : false;
}

VstTimeInfo* AudioEffectX::getTimeInfo(VstInt32 filter) {
  return audioMaster ? reinterpret_cast<VstTimeInfo*>(callHost(audioMasterGetTime, 0, filter))
                     : nullptr;
}

bool AudioEffectX::ioChanged() {
  return audioMaster ? callHost(audioMasterIOChanged) != 0 : false;
}

bool AudioEffectX::sizeWindow(VstInt32 width, VstInt32 height) {
  return audioMaster ? callHost(audioMasterSizeWindow, width, height) != 0 : false;
}

float AudioEffectX::updateSampleRate() {
  sampleRate = kFallbackSampleRate;
  if (audioMaster) {
    const VstIntPtr answer = callHost(audioMasterGetSampleRate);
    if (answer > 0) sampleRate = static_cast<float>(answer);
  }
  return sampleRate;
}

VstInt32 AudioEffectX::updateBlockSize() {
  if (audioMaster) {
    const VstIntPtr answer = callHost(audioMasterGetBlockSize);
    if (answer > 0) blockSize = static_cast<VstInt32>(answer);
  }
  return blockSize;
}

VstInt32 AudioEffectX::getInputLatency() {
  return audioMaster ? static_cast<VstInt32>(callHost(audioMasterGetInputLatency)) : 0;
}

VstInt32 AudioEffectX::getOutputLatency() {
  return audioMaster ? static_cast<VstInt32>(callHost(audioMasterGetOutputLatency)) : 0;
}

VstInt32 AudioEffectX::getCurrentProcessLevel() {
  return audioMaster ? static_cast<VstInt32>(callHost(audioMasterGetCurrentProcessLevel)) : 0;
}

VstInt32 AudioEffectX::getAutomationState() {
  return audioMaster ? static_cast<VstInt32>(callHost(audioMasterGetAutomationState)) : 0;
}

bool AudioEffectX::offlineStart(VstAudioFile* audioFiles, VstInt32 numAudioFiles,
                                VstInt32 numNewAudioFiles) {
  return audioMaster
             ? callHost(audioMasterOfflineStart, numNewAudioFiles, numAudioFiles, audioFiles) != 0
             : false;
}

bool AudioEffectX::offlineRead(VstOfflineTask* offline, VstOfflineOption option, bool readSource) {
  return audioMaster ? callHost(audioMasterOfflineRead, readSource ? 1 : 0, option, offline) != 0
                     : false;
}

bool AudioEffectX::offlineWrite(VstOfflineTask* offline, VstOfflineOption option) {
  return audioMaster ? callHost(audioMasterOfflineWrite, 0, option, offline) != 0 : false;
}

VstInt32 AudioEffectX::offlineGetCurrentPass() {
  return audioMaster && callHost(audioMasterOfflineGetCurrentPass) != 0 ? 1 : 0;
}

VstInt32 AudioEffectX::offlineGetCurrentMetaPass() {
  return audioMaster && callHost(audioMasterOfflineGetCurrentMetaPass) != 0 ? 1 : 0;
}

bool AudioEffectX::getHostVendorString(char* text) {
  return audioMaster ? callHost(audioMasterGetVendorString, 0, 0, text) != 0 : false;
}

bool AudioEffectX::getHostProductString(char* text) {
  return audioMaster ? callHost(audioMasterGetProductString, 0, 0, text) != 0 : false;
}

VstInt32 AudioEffectX::getHostVendorVersion() {
  return audioMaster ? static_cast<VstInt32>(callHost(audioMasterGetVendorVersion)) : 0;
}

VstIntPtr AudioEffectX::hostVendorSpecific(VstInt32 lArg1, VstIntPtr lArg2, void* ptrArg,
                                           float floatArg) {
  return audioMaster ? callHost(audioMasterVendorSpecific, lArg1, lArg2, ptrArg, floatArg) : 0;
}

bool AudioEffectX::canHostDo(char* text) {
  return audioMaster ? callHost(audioMasterCanDo, 0, 0, text) != 0 : false;
}

VstInt32 AudioEffectX::getHostLanguage() {
  return audioMaster ? static_cast<VstInt32>(callHost(audioMasterGetLanguage)) : 0;
}

void* AudioEffectX::getDirectory() {
  return audioMaster ? reinterpret_cast<void*>(callHost(audioMasterGetDirectory)) : nullptr;
}

bool AudioEffectX::updateDisplay() {
  return audioMaster ? callHost(audioMasterUpdateDisplay) != 0 : false;
}

bool AudioEffectX::beginEdit(VstInt32 index) {
  return audioMaster ? callHost(audioMasterBeginEdit, index) != 0 : false;
}

bool AudioEffectX::endEdit(VstInt32 index) {
  return audioMaster ? callHost(audioMasterEndEdit, index) != 0 : false;
}

bool AudioEffectX::openFileSelector(VstFileSelect* ptr) {
  return audioMaster && ptr ? callHost(audioMasterOpenFileSelector, 0, 0, ptr) != 0 : false;
}

bool AudioEffectX::closeFileSelector(VstFileSelect* ptr) {
  return audioMaster && ptr ? callHost(audioMasterCloseFileSelector, 0, 0, ptr) != 0 : false;
}

void AudioEffectX::__wantEventsDeprecated(VstInt32 filter) {
  if (audioMaster) callHost(audioMasterWantMidi, 0, filter);
}

VstInt32 AudioEffectX::__tempoAtDeprecated(VstInt32 pos) {
  return audioMaster ? static_cast<VstInt32>(callHost(audioMasterTempoAt, 0, pos)) : 0;
}

VstInt32 AudioEffectX::__getNumAutomatableParametersDeprecated() {
  return audioMaster ? static_cast<VstInt32>(callHost(audioMasterGetNumAutomatableParameters)) : 0;
}

VstInt32 AudioEffectX::__getParameterQuantizationDeprecated() {
  return audioMaster ? static_cast<VstInt32>(callHost(audioMasterGetParameterQuantization)) : 0;
}

bool AudioEffectX::__needIdleDeprecated() {
  return audioMaster ? callHost(audioMasterNeedIdle) != 0 : false;
}

// The pin number is not part of the request.
AEffect* AudioEffectX::__getPreviousPlugDeprecated(VstInt32 /*input*/) {
  return audioMaster ? reinterpret_cast<AEffect*>(callHost(audioMasterGetPreviousPlug)) : nullptr;
}

AEffect* AudioEffectX::__getNextPlugDeprecated(VstInt32 /*output*/) {
  return audioMaster ? reinterpret_cast<AEffect*>(callHost(audioMasterGetNextPlug)) : nullptr;
}

VstInt32 AudioEffectX::__willProcessReplacingDeprecated() {
  return audioMaster ? static_cast<VstInt32>(callHost(audioMasterWillReplaceOrAccumulate)) : 0;
}

void AudioEffectX::__setOutputSamplerateDeprecated(float samplerate) {
  if (audioMaster) callHost(audioMasterSetOutputSampleRate, 0, 0, nullptr, samplerate);
}

VstSpeakerArrangement* AudioEffectX::__getInputSpeakerArrangementDeprecated() {
  return audioMaster ? reinterpret_cast<VstSpeakerArrangement*>(
                           callHost(audioMasterGetInputSpeakerArrangement))
                     : nullptr;
}

VstSpeakerArrangement* AudioEffectX::__getOutputSpeakerArrangementDeprecated() {
  return audioMaster ? reinterpret_cast<VstSpeakerArrangement*>(
                           callHost(audioMasterGetOutputSpeakerArrangement))
                     : nullptr;
}

void* AudioEffectX::__openWindowDeprecated(__VstWindowDeprecated* window) {
  return audioMaster ? reinterpret_cast<void*>(callHost(audioMasterOpenWindow, 0, 0, window))
                     : nullptr;
}

bool AudioEffectX::__closeWindowDeprecated(__VstWindowDeprecated* window) {
  return audioMaster ? callHost(audioMasterCloseWindow, 0, 0, window) != 0 : false;
}

bool AudioEffectX::__getChunkFileDeprecated(void* nativePath) {
  return audioMaster && nativePath ? callHost(audioMasterGetChunkFile, 0, 0, nativePath) != 0
                                   : false;
}
