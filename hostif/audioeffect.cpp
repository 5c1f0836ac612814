#include "hostif/audioeffect.h"

#include <cstring>

namespace {

constexpr VstInt32 kDefaultUniqueId = fourCharCode('N', 'o', 'E', 'f');
constexpr VstInt32 kIdentifyAnswer = fourCharCode('N', 'v', 'E', 'f');
constexpr float kDefaultSampleRate = 44100.0f;
constexpr VstInt32 kDefaultBlockSize = 1024;

VstIntPtr asBool(bool b) noexcept {
  return b ? 1 : 0;
}

AudioEffect* instanceOf(AEffect* effect) noexcept {
  return effect ? static_cast<AudioEffect*>(effect->object) : nullptr;
}

}  // namespace

AudioEffect::AudioEffect(audioMasterCallback host, VstInt32 programCount, VstInt32 paramCount)
    : audioMaster(host),
      editor(nullptr),
      sampleRate(kDefaultSampleRate),
      blockSize(kDefaultBlockSize),
      numPrograms(programCount),
      numParams(paramCount),
      curProgram(0) {
  std::memset(&cEffect, 0, sizeof cEffect);
  cEffect.magic = kEffectMagic;
  cEffect.dispatcher = dispatchEffectClass;
  cEffect.process = __processClassDeprecated;
  cEffect.setParameter = setParameterClass;
  cEffect.getParameter = getParameterClass;
  cEffect.numPrograms = numPrograms;
  cEffect.numParams = numParams;
  cEffect.numInputs = 1;
  cEffect.numOutputs = 2;
  cEffect.flags = effFlagsCanReplacing;
  cEffect.ioRatio = 1.0f;
  cEffect.object = this;
  cEffect.uniqueID = kDefaultUniqueId;
  cEffect.version = 1;
  cEffect.processReplacing = processClassReplacing;
  cEffect.processDoubleReplacing = processClassDoubleReplacing;
}

AudioEffect::~AudioEffect() {
  delete editor;
}

void AudioEffect::setEditor(AEffEditor* newEditor) {
  editor = newEditor;
  setFlag(effFlagsHasEditor, newEditor != nullptr);
}

void AudioEffect::setParameterAutomated(VstInt32 index, float value) {
  setParameter(index, value);
  if (audioMaster) callHost(audioMasterAutomate, index, 0, nullptr, value);
}

VstInt32 AudioEffect::getMasterVersion() {
  if (!audioMaster) return 1;
  const auto version = static_cast<VstInt32>(callHost(audioMasterVersion));
  return version == 0 ? 1 : version;
}

VstInt32 AudioEffect::getCurrentUniqueId() {
  return audioMaster ? static_cast<VstInt32>(callHost(audioMasterCurrentId)) : 0;
}

VstInt32 AudioEffect::masterIdle() {
  return audioMaster ? static_cast<VstInt32>(callHost(audioMasterIdle)) : 0;
}

// The host answers 0 for a connected pin.
bool AudioEffect::isInputConnected(VstInt32 input) {
  return audioMaster ? callHost(audioMasterPinConnected, input, 0) == 0 : true;
}

bool AudioEffect::isOutputConnected(VstInt32 output) {
  return audioMaster ? callHost(audioMasterPinConnected, output, 1) == 0 : true;
}

VstIntPtr AudioEffect::dispatcher(VstInt32 opcode, VstInt32 index, VstIntPtr value, void* ptr,
                                  float opt) {
  // A text request without a buffer is answered 0 without touching one.
  auto* text = static_cast<char*>(ptr);
  switch (opcode) {
    case effOpen:
      open();
      return 0;
    case effClose:
      close();
      return 0;
    case effSetProgram:
      // Only valid indices reach setProgram.
      if (value >= 0 && value < numPrograms) setProgram(static_cast<VstInt32>(value));
      return 0;
    case effGetProgram:
      return getProgram();
    case effSetProgramName:
      if (text) setProgramName(text);
      return 0;
    case effGetProgramName:
      if (text) getProgramName(text);
      return 0;
    case effGetParamLabel:
      if (text) getParameterLabel(index, text);
      return 0;
    case effGetParamDisplay:
      if (text) getParameterDisplay(index, text);
      return 0;
    case effGetParamName:
      if (text) getParameterName(index, text);
      return 0;
    case effSetSampleRate:
      setSampleRate(opt);
      return 0;
    case effSetBlockSize:
      setBlockSize(static_cast<VstInt32>(value));
      return 0;
    case effMainsChanged:
      if (value == 0) {
        suspend();
      } else {
        resume();
      }
      return 0;
    case effEditGetRect:
      return editor ? asBool(editor->getRect(static_cast<ERect**>(ptr))) : 0;
    case effEditOpen:
      return editor ? asBool(editor->open(ptr)) : 0;
    case effEditClose:
      if (editor) editor->close();
      return 0;
    case effEditIdle:
      if (editor) editor->idle();
      return 0;
    case effIdentify:
      return kIdentifyAnswer;
    case effGetChunk:
      return getChunk(static_cast<void**>(ptr), index != 0);
    case effSetChunk:
      return setChunk(ptr, static_cast<VstInt32>(value), index != 0);
    default:
      // effGetVu, the deprecated editor requests and everything unknown.
      return 0;
  }
}

// An exception thrown by an effect's override must not unwind into the host: it answers 0.
VstIntPtr AudioEffect::dispatchEffectClass(AEffect* effect, VstInt32 opcode, VstInt32 index,
                                           VstIntPtr value, void* ptr, float opt) noexcept {
  AudioEffect* instance = instanceOf(effect);
  if (!instance) return 0;
  if (opcode == effClose) {
    try {
      instance->dispatcher(opcode, index, value, ptr, opt);
    } catch (...) {
      // The host is closing whatever close() reported; the instance goes regardless.
    }
    delete instance;
    return 1;
  }
  try {
    return instance->dispatcher(opcode, index, value, ptr, opt);
  } catch (...) {
    return 0;
  }
}

void AudioEffect::processClassReplacing(AEffect* effect, float** inputs, float** outputs,
                                        VstInt32 sampleFrames) noexcept {
  if (AudioEffect* instance = instanceOf(effect)) {
    instance->processReplacing(inputs, outputs, sampleFrames);
  }
}

void AudioEffect::processClassDoubleReplacing(AEffect* effect, double** inputs, double** outputs,
                                              VstInt32 sampleFrames) noexcept {
  if (AudioEffect* instance = instanceOf(effect)) {
    instance->processDoubleReplacing(inputs, outputs, sampleFrames);
  }
}

void AudioEffect::__processClassDeprecated(AEffect* effect, float** inputs, float** outputs,
                                           VstInt32 sampleFrames) noexcept {
  if (AudioEffect* instance = instanceOf(effect)) {
    instance->__processDeprecated(inputs, outputs, sampleFrames);
  }
}

void AudioEffect::setParameterClass(AEffect* effect, VstInt32 index, float value) noexcept {
  AudioEffect* instance = instanceOf(effect);
  if (!instance) return;
  try {
    instance->setParameter(index, value);
  } catch (...) {
    // Nothing stored: the same as an index the effect does not know.
  }
}

float AudioEffect::getParameterClass(AEffect* effect, VstInt32 index) noexcept {
  AudioEffect* instance = instanceOf(effect);
  if (!instance) return 0.0f;
  try {
    return instance->getParameter(index);
  } catch (...) {
    return 0.0f;
  }
}
