// AudioEffectX's dispatcher for the extended opcodes 25..79 and the defaults that need a body.

#include "hostif/audioeffectx.h"

namespace {

VstIntPtr asBool(bool b) noexcept {
  return b ? 1 : 0;
}

// The low 8 bits of opt truncated toward zero; a value no integer holds reads as 0.
unsigned char lowByteOf(float opt) noexcept {
  constexpr float kIntLimit = 2147483648.0f;
  if (!(opt > -kIntLimit && opt < kIntLimit)) return 0;
  return static_cast<unsigned char>(static_cast<VstInt32>(opt) & 0xff);
}

VstKeyCode keyCodeOf(VstInt32 index, VstIntPtr value, float opt) noexcept {
  VstKeyCode key{};
  key.character = index;
  key.virt = static_cast<unsigned char>(value & 0xff);
  key.modifier = lowByteOf(opt);
  return key;
}

}  // namespace

VstIntPtr AudioEffectX::dispatcher(VstInt32 opcode, VstInt32 index, VstIntPtr value, void* ptr,
                                   float opt) {
  // A text request without a buffer is answered 0 without touching one.
  auto* text = static_cast<char*>(ptr);
  switch (opcode) {
    case effProcessEvents:
      return processEvents(static_cast<VstEvents*>(ptr));
    case effCanBeAutomated:
      return asBool(canParameterBeAutomated(index));
    case effString2Parameter:
      return text ? asBool(string2parameter(index, text)) : 0;
    case effGetProgramNameIndexed:
      return text ? asBool(getProgramNameIndexed(static_cast<VstInt32>(value), index, text)) : 0;
    case effGetInputProperties:
      return asBool(getInputProperties(index, static_cast<VstPinProperties*>(ptr)));
    case effGetOutputProperties:
      return asBool(getOutputProperties(index, static_cast<VstPinProperties*>(ptr)));
    case effGetPlugCategory:
      return getPlugCategory();
    case effOfflineNotify:
      return asBool(
          offlineNotify(static_cast<VstAudioFile*>(ptr), static_cast<VstInt32>(value), index != 0));
    case effOfflinePrepare:
      return asBool(
          offlinePrepare(static_cast<VstOfflineTask*>(ptr), static_cast<VstInt32>(value)));
    case effOfflineRun:
      return asBool(offlineRun(static_cast<VstOfflineTask*>(ptr), static_cast<VstInt32>(value)));
    case effProcessVarIo:
      return asBool(processVariableIo(static_cast<VstVariableIo*>(ptr)));
    case effSetSpeakerArrangement:
      return asBool(setSpeakerArrangement(reinterpret_cast<VstSpeakerArrangement*>(value),
                                          static_cast<VstSpeakerArrangement*>(ptr)));
    case effSetBypass:
      return asBool(setBypass(value != 0));
    case effGetEffectName:
      return text ? asBool(getEffectName(text)) : 0;
    case effGetVendorString:
      return text ? asBool(getVendorString(text)) : 0;
    case effGetProductString:
      return text ? asBool(getProductString(text)) : 0;
    case effGetVendorVersion:
      return getVendorVersion();
    case effVendorSpecific:
      return vendorSpecific(index, value, ptr, opt);
    case effCanDo:
      return canDo(text);
    case effGetTailSize:
      return getGetTailSize();
    case effGetParameterProperties:
      return asBool(getParameterProperties(index, static_cast<VstParameterProperties*>(ptr)));
    case effGetVstVersion:
      return getVstVersion();
    case effEditKeyDown:
      if (!editor) return 0;
      {
        VstKeyCode key = keyCodeOf(index, value, opt);
        return asBool(editor->onKeyDown(key));
      }
    case effEditKeyUp:
      if (!editor) return 0;
      {
        VstKeyCode key = keyCodeOf(index, value, opt);
        return asBool(editor->onKeyUp(key));
      }
    case effSetEditKnobMode:
      return editor ? asBool(editor->setKnobMode(static_cast<VstInt32>(value))) : 0;
    case effGetMidiProgramName:
      return getMidiProgramName(index, static_cast<MidiProgramName*>(ptr));
    case effGetCurrentMidiProgram:
      return getCurrentMidiProgram(index, static_cast<MidiProgramName*>(ptr));
    case effGetMidiProgramCategory:
      return getMidiProgramCategory(index, static_cast<MidiProgramCategory*>(ptr));
    case effHasMidiProgramsChanged:
      return asBool(hasMidiProgramsChanged(index));
    case effGetMidiKeyName:
      return asBool(getMidiKeyName(index, static_cast<MidiKeyName*>(ptr)));
    case effBeginSetProgram:
      return asBool(beginSetProgram());
    case effEndSetProgram:
      return asBool(endSetProgram());
    case effGetSpeakerArrangement:
      return asBool(getSpeakerArrangement(reinterpret_cast<VstSpeakerArrangement**>(value),
                                          static_cast<VstSpeakerArrangement**>(ptr)));
    case effShellGetNextPlugin:
      return getNextShellPlugin(text);
    case effStartProcess:
      return startProcess();
    case effStopProcess:
      return stopProcess();
    case effSetTotalSampleToProcess:
      return setTotalSampleToProcess(static_cast<VstInt32>(value));
    case effSetPanLaw:
      return asBool(setPanLaw(static_cast<VstInt32>(value), opt));
    case effBeginLoadBank:
      return beginLoadBank(static_cast<VstPatchChunkInfo*>(ptr));
    case effBeginLoadProgram:
      return beginLoadProgram(static_cast<VstPatchChunkInfo*>(ptr));
    case effSetProcessPrecision:
      return asBool(setProcessPrecision(static_cast<VstInt32>(value)));
    case effGetNumMidiInputChannels:
      return getNumMidiInputChannels();
    case effGetNumMidiOutputChannels:
      return getNumMidiOutputChannels();
    default:
      // 0..24, the deprecated extended opcodes and everything unknown.
      return AudioEffect::dispatcher(opcode, index, value, ptr, opt);
  }
}

void AudioEffectX::resume() {
  // canDo takes a writable text by the interface's signature; it only reads it.
  const bool wantsMidi = hasFlag(effFlagsIsSynth) ||
                         canDo(const_cast<char*>(PlugCanDos::canDoReceiveVstMidiEvent)) == 1;
  if (wantsMidi) __wantEventsDeprecated(1);
}

VstPlugCategory AudioEffectX::getPlugCategory() {
  return hasFlag(effFlagsIsSynth) ? kPlugCategSynth : kPlugCategUnknown;
}

bool AudioEffectX::getSpeakerArrangement(VstSpeakerArrangement** pluginInput,
                                         VstSpeakerArrangement** pluginOutput) {
  // The host may pass no place to write to.
  if (pluginInput) *pluginInput = nullptr;
  if (pluginOutput) *pluginOutput = nullptr;
  return false;
}
