// The module description of Orv_TypeBase, and the vtable slot order a separately compiled module
// host relies on: the slot names below are written down independently of the headers, and calls
// through those slot numbers on a real object must reach the right operations.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <iterator>
#include <string_view>

#include "test_support.h"

namespace {

TEST(ModuleDescription, DefaultsIgnoreTheirJackArgument) {
  PlainEffect effect;
  for (VstInt32 jack : {-1, 0, 1, 100}) {
    EXPECT_EQ(effect.getNumOfInJacks(), 1);
    EXPECT_EQ(effect.getNumOfOutJacks(), 1);
    EXPECT_EQ(effect.getNumOfInSig(jack), 2);
    EXPECT_EQ(effect.getNumOfOutSig(jack), 1);
    EXPECT_EQ(effect.getStartNumInSig(jack), 0);
    EXPECT_EQ(effect.getStartNumOutSig(jack), 0);
    EXPECT_EQ(effect.getDryInSigNum(), -1);
  }
  EXPECT_EQ(effect.getHeaderVersion(), 1);
}

TEST(ModuleDescription, HooksChangeNothingObservable) {
  PlainEffect effect;
  AEffect before;
  std::memcpy(&before, effect.getAeffect(), sizeof before);
  effect.setListner(reinterpret_cast<Orv_VstListner*>(kPtr));
  effect.setTime(12.5f);
  char text[16] = "untouched";
  effect.getParameterDisplayOf(1, 0.5f, text);
  EXPECT_STREQ(text, "untouched");
  EXPECT_EQ(std::memcmp(&before, effect.getAeffect(), sizeof before), 0);
  EXPECT_EQ(effect.getHeaderVersion(), 1);
}

// Virtual operations in slot order. The destructor takes two slots (complete and deleting).
constexpr std::string_view kSlots[] = {
    "~", "~", "dispatcher", "open", "close", "suspend", "resume", "setSampleRate", "setBlockSize",
    "processReplacing", "processDoubleReplacing", "setParameter", "getParameter",
    "setParameterAutomated", "getProgram", "setProgram", "setProgramName", "getProgramName",
    "getParameterLabel", "getParameterDisplay", "getParameterName", "getChunk", "setChunk",
    "setUniqueID", "setNumInputs", "setNumOutputs", "canProcessReplacing", "canDoubleReplacing",
    "programsAreChunks", "setInitialDelay", "getEditor", "getAeffect", "getSampleRate",
    "getBlockSize", "getMasterVersion", "getCurrentUniqueId", "masterIdle", "isInputConnected",
    "isOutputConnected", "dB2string", "Hz2string", "ms2string", "float2string", "int2string",
    "__processDeprecated", "__getVuDeprecated", "__hasVuDeprecated", "__hasClipDeprecated",
    "__canMonoDeprecated", "__setRealtimeQualitiesDeprecated", "__setOfflineQualitiesDeprecated",
    // AudioEffectX
    "canParameterBeAutomated", "string2parameter", "getParameterProperties", "beginEdit", "endEdit",
    "getProgramNameIndexed", "beginSetProgram", "endSetProgram", "beginLoadBank",
    "beginLoadProgram", "ioChanged", "updateSampleRate", "updateBlockSize", "getInputLatency",
    "getOutputLatency", "getInputProperties", "getOutputProperties", "setSpeakerArrangement",
    "getSpeakerArrangement", "setBypass", "setPanLaw", "setProcessPrecision",
    "getNumMidiInputChannels", "getNumMidiOutputChannels", "getTimeInfo", "getCurrentProcessLevel",
    "getAutomationState", "processEvents", "startProcess", "stopProcess", "processVariableIo",
    "setTotalSampleToProcess", "getHostVendorString", "getHostProductString",
    "getHostVendorVersion", "hostVendorSpecific", "canHostDo", "getHostLanguage", "isSynth",
    "noTail", "getGetTailSize", "getDirectory", "getEffectName", "getVendorString",
    "getProductString", "getVendorVersion", "vendorSpecific", "canDo", "getVstVersion",
    "getPlugCategory", "getMidiProgramName", "getCurrentMidiProgram", "getMidiProgramCategory",
    "hasMidiProgramsChanged", "getMidiKeyName", "updateDisplay", "sizeWindow", "openFileSelector",
    "closeFileSelector", "getNextShellPlugin", "allocateArrangement", "deallocateArrangement",
    "copySpeaker", "matchArrangement", "offlineRead", "offlineWrite", "offlineStart",
    "offlineGetCurrentPass", "offlineGetCurrentMetaPass", "offlineNotify", "offlinePrepare",
    "offlineRun", "offlineGetNumPasses", "offlineGetNumMetaPasses", "__wantEventsDeprecated",
    "__tempoAtDeprecated", "__getNumAutomatableParametersDeprecated",
    "__getParameterQuantizationDeprecated", "__getNumCategoriesDeprecated",
    "__copyProgramDeprecated", "__needIdleDeprecated", "__getPreviousPlugDeprecated",
    "__getNextPlugDeprecated", "__inputConnectedDeprecated", "__outputConnectedDeprecated",
    "__willProcessReplacingDeprecated", "__wantAsyncOperationDeprecated",
    "__hasExternalBufferDeprecated", "__reportCurrentPositionDeprecated",
    "__reportDestinationBufferDeprecated", "__setOutputSamplerateDeprecated",
    "__getInputSpeakerArrangementDeprecated", "__getOutputSpeakerArrangementDeprecated",
    "__openWindowDeprecated", "__closeWindowDeprecated", "__setBlockSizeAndSampleRateDeprecated",
    "__getErrorTextDeprecated", "__getIconDeprecated", "__setViewPositionDeprecated",
    "__fxIdleDeprecated", "__keysRequiredDeprecated", "__getChunkFileDeprecated",
    // Orv_TypeBase
    "getNumOfInJacks", "getNumOfOutJacks", "getNumOfInSig", "getNumOfOutSig", "getStartNumInSig",
    "getStartNumOutSig", "getDryInSigNum", "setListner", "getParameterDisplayOf",
    "getHeaderVersion", "setTime"};
static_assert(std::size(kSlots) == 2 + 49 + 102 + 11);

// Calls the operation in the named slot of obj's vtable, as a host compiled elsewhere would.
template <typename R, typename... Args>
R callSlot(AudioEffect& obj, std::string_view name, Args... args) {
  const auto slot = std::find(std::begin(kSlots), std::end(kSlots), name) - std::begin(kSlots);
  using Fn = R (*)(AudioEffect*, Args...);
  void** vtable = *reinterpret_cast<void***>(&obj);
  return reinterpret_cast<Fn>(vtable[slot])(&obj, args...);
}

// Distinct answers, so a call that lands one slot off gives a wrong one.
struct SlotProbe : PlainEffect {
  float getParameter(VstInt32 index) override { return 0.5f * index; }
  VstInt32 getProgram() override { return 11; }
  bool canParameterBeAutomated(VstInt32 index) override { return index == 3; }
  VstInt32 getVendorVersion() override { return 1000; }
  VstPlugCategory getPlugCategory() override { return kPlugCategEffect; }
  VstInt32 getNumOfInSig(VstInt32 jack) override { return 100 + jack; }
  VstInt32 getDryInSigNum() override { return -7; }
  void setTime(float t) override { time = t; }
  float time = 0.0f;
};

TEST(SlotOrder, CallsBySlotNumberReachTheRightOperations) {
  SlotProbe probe;
  probe.setSampleRate(48000.0f);
  probe.setProgram(0);
  EXPECT_EQ((callSlot<VstIntPtr, VstInt32, VstInt32, VstIntPtr, void*, float>(
                probe, "dispatcher", effGetVstVersion, 0, 0, nullptr, 0.0f)),
            2400);
  EXPECT_EQ((callSlot<float, VstInt32>(probe, "getParameter", 4)), 2.0f);
  EXPECT_EQ((callSlot<VstInt32>(probe, "getProgram")), 11);
  EXPECT_EQ((callSlot<float>(probe, "getSampleRate")), 48000.0f);
  EXPECT_EQ((callSlot<AEffect*>(probe, "getAeffect")), probe.getAeffect());
  char text[16];
  callSlot<void, VstInt32, char*, VstInt32>(probe, "int2string", 1050, text, 8);
  EXPECT_STREQ(text, "1050");
  callSlot<void, VstInt32>(probe, "__setOfflineQualitiesDeprecated", 9);
  EXPECT_EQ(probe.cEffect.offQualities, 9);

  EXPECT_TRUE((callSlot<bool, VstInt32>(probe, "canParameterBeAutomated", 3)));
  EXPECT_FALSE((callSlot<bool, VstInt32>(probe, "canParameterBeAutomated", 2)));
  EXPECT_EQ((callSlot<VstInt32>(probe, "getVendorVersion")), 1000);
  EXPECT_EQ((callSlot<VstPlugCategory>(probe, "getPlugCategory")), kPlugCategEffect);
  EXPECT_EQ(
      (callSlot<VstInt32, VstInt32, MidiProgramName*>(probe, "getCurrentMidiProgram", 0, nullptr)),
      -1);
  EXPECT_EQ((callSlot<VstInt32>(probe, "__getNumCategoriesDeprecated")), 1);
  EXPECT_FALSE((callSlot<bool, void*>(probe, "__getChunkFileDeprecated", kPtr)));

  EXPECT_EQ((callSlot<VstInt32>(probe, "getNumOfInJacks")), 1);
  EXPECT_EQ((callSlot<VstInt32, VstInt32>(probe, "getNumOfInSig", 5)), 105);
  EXPECT_EQ((callSlot<VstInt32>(probe, "getDryInSigNum")), -7);
  EXPECT_EQ((callSlot<VstInt32>(probe, "getHeaderVersion")), 1);
  callSlot<void, float>(probe, "setTime", 1.5f);
  EXPECT_EQ(probe.time, 1.5f);
}

}  // namespace
