// What the effect asks of the host: each request's exact arguments with &cEffect first, how the
// answer is read, and the fixed answer when there is no host callback.

#include <gtest/gtest.h>

#include <cstring>

#include "test_support.h"

namespace {

VstIntPtr asInt(const void* p) {
  return reinterpret_cast<VstIntPtr>(p);
}
VstIntPtr asInt(VstIntPtr v) {
  return v;
}
const VstIntPtr kP = asInt(kPtr);
auto* const kOffline = static_cast<VstOfflineTask*>(kPtr);
template <typename T>
T* as() {
  return static_cast<T*>(kPtr);
}

// A query without arguments, by its member.
template <auto query>
VstIntPtr ask(PlainEffect& e) {
  return asInt((e.*query)());
}

using E = PlainEffect;

struct Query {
  const char* name;
  VstIntPtr (*ask)(PlainEffect&);
  VstInt32 opcode;
  VstInt32 index;
  VstIntPtr value;
  void* ptr;
  float opt;
  VstIntPtr answer;
  VstIntPtr result;
  VstIntPtr resultWithoutHost;
};

// clang-format off
const Query kQueries[] = {
  // name, call, expected opcode, index, value, ptr, opt, host answer, result, result without host
  {"getMasterVersion", ask<&E::getMasterVersion>,
   audioMasterVersion, 0, 0, nullptr, 0, 2400, 2400, 1},
  {"getMasterVersion 0", ask<&E::getMasterVersion>, audioMasterVersion, 0, 0, nullptr, 0, 0, 1, 1},
  {"getCurrentUniqueId", ask<&E::getCurrentUniqueId>,
   audioMasterCurrentId, 0, 0, nullptr, 0, 77, 77, 0},
  {"masterIdle", ask<&E::masterIdle>, audioMasterIdle, 0, 0, nullptr, 0, 3, 3, 0},
  {"isInputConnected", [](E& e) -> VstIntPtr { return e.isInputConnected(3); },
   audioMasterPinConnected, 3, 0, nullptr, 0, 0, 1, 1},
  {"isOutputConnected", [](E& e) -> VstIntPtr { return e.isOutputConnected(3); },
   audioMasterPinConnected, 3, 1, nullptr, 0, 1, 0, 1},
  {"setParameterAutomated", [](E& e) -> VstIntPtr { return e.setParameterAutomated(2, 0.75f), 0; },
   audioMasterAutomate, 2, 0, nullptr, 0.75f, 0, 0, 0},
  {"getTimeInfo", [](E& e) { return asInt(e.getTimeInfo(7)); },
   audioMasterGetTime, 0, 7, nullptr, 0, kP, kP, 0},
  {"sendVstEventsToHost 1",
   [](E& e) -> VstIntPtr { return e.sendVstEventsToHost(as<VstEvents>()); },
   audioMasterProcessEvents, 0, 0, kPtr, 0, 1, 1, 0},
  {"sendVstEventsToHost 2",
   [](E& e) -> VstIntPtr { return e.sendVstEventsToHost(as<VstEvents>()); },
   audioMasterProcessEvents, 0, 0, kPtr, 0, 2, 0, 0},
  {"ioChanged", ask<&E::ioChanged>, audioMasterIOChanged, 0, 0, nullptr, 0, 5, 1, 0},
  {"sizeWindow", [](E& e) -> VstIntPtr { return e.sizeWindow(640, 480); },
   audioMasterSizeWindow, 640, 480, nullptr, 0, 1, 1, 0},
  {"getInputLatency", ask<&E::getInputLatency>,
   audioMasterGetInputLatency, 0, 0, nullptr, 0, 64, 64, 0},
  {"getOutputLatency", ask<&E::getOutputLatency>,
   audioMasterGetOutputLatency, 0, 0, nullptr, 0, 32, 32, 0},
  {"getCurrentProcessLevel", ask<&E::getCurrentProcessLevel>,
   audioMasterGetCurrentProcessLevel, 0, 0, nullptr, 0, 2, 2, 0},
  {"getAutomationState", ask<&E::getAutomationState>,
   audioMasterGetAutomationState, 0, 0, nullptr, 0, 4, 4, 0},
  {"offlineStart", [](E& e) -> VstIntPtr { return e.offlineStart(as<VstAudioFile>(), 3, 2); },
   audioMasterOfflineStart, 2, 3, kPtr, 0, 9, 1, 0},
  {"offlineRead", [](E& e) -> VstIntPtr { return e.offlineRead(kOffline, kVstOfflinePeaks, true); },
   audioMasterOfflineRead, 1, kVstOfflinePeaks, kPtr, 0, 1, 1, 0},
  {"offlineWrite", [](E& e) -> VstIntPtr { return e.offlineWrite(kOffline, kVstOfflineMarker); },
   audioMasterOfflineWrite, 0, kVstOfflineMarker, kPtr, 0, 0, 0, 0},
  {"offlineGetCurrentPass", ask<&E::offlineGetCurrentPass>,
   audioMasterOfflineGetCurrentPass, 0, 0, nullptr, 0, 5, 1, 0},
  {"offlineGetCurrentMetaPass", ask<&E::offlineGetCurrentMetaPass>,
   audioMasterOfflineGetCurrentMetaPass, 0, 0, nullptr, 0, 5, 1, 0},
  {"getHostVendorString", [](E& e) -> VstIntPtr { return e.getHostVendorString(as<char>()); },
   audioMasterGetVendorString, 0, 0, kPtr, 0, 1, 1, 0},
  {"getHostProductString", [](E& e) -> VstIntPtr { return e.getHostProductString(as<char>()); },
   audioMasterGetProductString, 0, 0, kPtr, 0, 1, 1, 0},
  {"getHostVendorVersion", ask<&E::getHostVendorVersion>,
   audioMasterGetVendorVersion, 0, 0, nullptr, 0, 1200, 1200, 0},
  {"hostVendorSpecific", [](E& e) { return e.hostVendorSpecific(4, 5, kPtr, 0.25f); },
   audioMasterVendorSpecific, 4, 5, kPtr, 0.25f, 6, 6, 0},
  {"canHostDo", [](E& e) -> VstIntPtr { return e.canHostDo(as<char>()); },
   audioMasterCanDo, 0, 0, kPtr, 0, -1, 1, 0},
  {"getHostLanguage", ask<&E::getHostLanguage>, audioMasterGetLanguage, 0, 0, nullptr, 0, 2, 2, 0},
  {"getDirectory", ask<&E::getDirectory>, audioMasterGetDirectory, 0, 0, nullptr, 0, kP, kP, 0},
  {"updateDisplay", ask<&E::updateDisplay>, audioMasterUpdateDisplay, 0, 0, nullptr, 0, 1, 1, 0},
  {"beginEdit", [](E& e) -> VstIntPtr { return e.beginEdit(3); },
   audioMasterBeginEdit, 3, 0, nullptr, 0, 1, 1, 0},
  {"endEdit", [](E& e) -> VstIntPtr { return e.endEdit(3); },
   audioMasterEndEdit, 3, 0, nullptr, 0, 1, 1, 0},
  {"openFileSelector", [](E& e) -> VstIntPtr { return e.openFileSelector(as<VstFileSelect>()); },
   audioMasterOpenFileSelector, 0, 0, kPtr, 0, 1, 1, 0},
  {"closeFileSelector", [](E& e) -> VstIntPtr { return e.closeFileSelector(as<VstFileSelect>()); },
   audioMasterCloseFileSelector, 0, 0, kPtr, 0, 1, 1, 0},
  {"__wantEvents", [](E& e) -> VstIntPtr { return e.__wantEventsDeprecated(1), 0; },
   audioMasterWantMidi, 0, 1, nullptr, 0, 0, 0, 0},
  {"__tempoAt", [](E& e) -> VstIntPtr { return e.__tempoAtDeprecated(100); },
   audioMasterTempoAt, 0, 100, nullptr, 0, 120, 120, 0},
  {"__getNumAutomatableParameters", ask<&E::__getNumAutomatableParametersDeprecated>,
   audioMasterGetNumAutomatableParameters, 0, 0, nullptr, 0, 8, 8, 0},
  {"__getParameterQuantization", ask<&E::__getParameterQuantizationDeprecated>,
   audioMasterGetParameterQuantization, 0, 0, nullptr, 0, 8, 8, 0},
  {"__needIdle", ask<&E::__needIdleDeprecated>, audioMasterNeedIdle, 0, 0, nullptr, 0, 3, 1, 0},
  {"__getPreviousPlug", [](E& e) { return asInt(e.__getPreviousPlugDeprecated(3)); },
   audioMasterGetPreviousPlug, 0, 0, nullptr, 0, kP, kP, 0},
  {"__getNextPlug", [](E& e) { return asInt(e.__getNextPlugDeprecated(3)); },
   audioMasterGetNextPlug, 0, 0, nullptr, 0, kP, kP, 0},
  {"__willProcessReplacing", ask<&E::__willProcessReplacingDeprecated>,
   audioMasterWillReplaceOrAccumulate, 0, 0, nullptr, 0, 2, 2, 0},
  {"__setOutputSamplerate",
   [](E& e) -> VstIntPtr { return e.__setOutputSamplerateDeprecated(48000.0f), 0; },
   audioMasterSetOutputSampleRate, 0, 0, nullptr, 48000.0f, 0, 0, 0},
  {"__getOutputSpeakerArrangement", ask<&E::__getOutputSpeakerArrangementDeprecated>,
   audioMasterGetOutputSpeakerArrangement, 0, 0, nullptr, 0, kP, kP, 0},
  {"__getInputSpeakerArrangement", ask<&E::__getInputSpeakerArrangementDeprecated>,
   audioMasterGetInputSpeakerArrangement, 0, 0, nullptr, 0, kP, kP, 0},
  {"__openWindow",
   [](E& e) { return asInt(e.__openWindowDeprecated(as<__VstWindowDeprecated>())); },
   audioMasterOpenWindow, 0, 0, kPtr, 0, kP, kP, 0},
  {"__closeWindow",
   [](E& e) -> VstIntPtr { return e.__closeWindowDeprecated(as<__VstWindowDeprecated>()); },
   audioMasterCloseWindow, 0, 0, kPtr, 0, 1, 1, 0},
  {"__getChunkFile", [](E& e) -> VstIntPtr { return e.__getChunkFileDeprecated(kPtr); },
   audioMasterGetChunkFile, 0, 0, kPtr, 0, 1, 1, 0},
};
// clang-format on

class HostQueries : public ::testing::Test {
 protected:
  void SetUp() override { recorder().clear(); }
};

TEST_F(HostQueries, RecorderSeesWhatTheEffectSends) {
  PlainEffect effect(recordingHost);
  recorder().answers[audioMasterVersion] = 2400;
  EXPECT_EQ(effect.getMasterVersion(), 2400);
  ASSERT_EQ(recorder().calls.size(), 1u);
  EXPECT_EQ(recorder().calls[0].opcode, audioMasterVersion);
}

TEST_F(HostQueries, EachSendsExactlyItsRequestAndReadsTheAnswer) {
  for (const Query& q : kQueries) {
    SCOPED_TRACE(q.name);
    recorder().clear();
    PlainEffect effect(recordingHost);
    recorder().answers[q.opcode] = q.answer;
    EXPECT_EQ(q.ask(effect), q.result);
    ASSERT_EQ(recorder().calls.size(), 1u);
    const HostCall& c = recorder().calls[0];
    EXPECT_EQ(c.effect, effect.getAeffect());
    EXPECT_EQ(c.opcode, q.opcode);
    EXPECT_EQ(c.index, q.index);
    EXPECT_EQ(c.value, q.value);
    EXPECT_EQ(c.ptr, q.ptr);
    EXPECT_EQ(c.opt, q.opt);
  }
}

TEST_F(HostQueries, WithoutHostEachGivesItsFixedAnswer) {
  for (const Query& q : kQueries) {
    PlainEffect effect;
    EXPECT_EQ(q.ask(effect), q.resultWithoutHost) << q.name;
  }
}

TEST_F(HostQueries, NullPointersAreNotSentToTheHost) {
  PlainEffect effect(recordingHost);
  recorder().answers[audioMasterOpenFileSelector] = 1;
  EXPECT_FALSE(effect.openFileSelector(nullptr));
  EXPECT_FALSE(effect.closeFileSelector(nullptr));
  EXPECT_FALSE(effect.__getChunkFileDeprecated(nullptr));
  EXPECT_TRUE(recorder().calls.empty());
}

TEST_F(HostQueries, SetParameterAutomatedStoresEvenWithoutHost) {
  struct Storing : PlainEffect {
    float stored = 0.0f;
    void setParameter(VstInt32, float v) override { stored = v; }
  } effect;
  effect.setParameterAutomated(1, 0.25f);
  EXPECT_EQ(effect.stored, 0.25f);
}

TEST_F(HostQueries, UpdateSampleRateFallsBackTo44100) {
  PlainEffect effect(recordingHost);
  effect.sampleRate = 48000.0f;
  EXPECT_EQ(effect.updateSampleRate(), 44100.0f);
  EXPECT_EQ(effect.sampleRate, 44100.0f);
  recorder().answers[audioMasterGetSampleRate] = 48000;
  EXPECT_EQ(effect.updateSampleRate(), 48000.0f);
  EXPECT_EQ(effect.getSampleRate(), 48000.0f);

  PlainEffect alone;
  alone.sampleRate = 96000.0f;
  EXPECT_EQ(alone.updateSampleRate(), 44100.0f);
}

TEST_F(HostQueries, UpdateBlockSizeKeepsTheOldSizeUnlessTheHostGivesOne) {
  PlainEffect effect(recordingHost);
  recorder().answers[audioMasterGetBlockSize] = -5;
  EXPECT_EQ(effect.updateBlockSize(), 1024);
  recorder().answers[audioMasterGetBlockSize] = 512;
  EXPECT_EQ(effect.updateBlockSize(), 512);
  EXPECT_EQ(PlainEffect().updateBlockSize(), 1024);
}

TEST_F(HostQueries, ResumeAsksForMidiOnlyForSynthsAndMidiReceivers) {
  struct MidiEffect : PlainEffect {
    VstInt32 answer = 0;
    char asked[32] = "";
    MidiEffect() : PlainEffect(recordingHost) {}
    VstInt32 canDo(char* text) override {
      std::strncpy(asked, text, sizeof asked - 1);
      return answer;
    }
  };
  auto midiRequests = [] {
    int n = 0;
    for (const HostCall& c : recorder().calls) n += c.opcode == audioMasterWantMidi && c.value == 1;
    return n;
  };
  MidiEffect effect;
  effect.resume();
  EXPECT_STREQ(effect.asked, "receiveVstMidiEvent");
  effect.answer = 2;
  effect.resume();
  EXPECT_EQ(midiRequests(), 0);
  effect.answer = 1;
  effect.resume();
  EXPECT_EQ(midiRequests(), 1);
  effect.answer = 0;
  effect.isSynth(true);
  effect.dispatcher(effMainsChanged, 0, 1, nullptr, 0.0f);
  EXPECT_EQ(midiRequests(), 2);
}

}  // namespace
