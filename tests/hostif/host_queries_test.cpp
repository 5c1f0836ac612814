// What the effect asks of the host: each request's exact arguments with &cEffect first, how the
// answer is read, and the fixed answer when there is no host callback.

#include <gtest/gtest.h>

#include <cstring>

#include "test_support.h"

namespace {

VstIntPtr asInt(const void* p) {
  return reinterpret_cast<VstIntPtr>(p);
}
const VstIntPtr kPtrValue = asInt(kPtr);
auto* const kOffline = static_cast<VstOfflineTask*>(kPtr);

struct Query {
  const char* name;
  VstIntPtr (*ask)(PlainEffect&);
  HostCall expected;  // effect is always &cEffect
  VstIntPtr answer;
  VstIntPtr result;
  VstIntPtr resultWithoutHost;
};

const Query kQueries[] = {
    {"getMasterVersion",
     [](PlainEffect& e) -> VstIntPtr { return e.getMasterVersion(); },
     {nullptr, audioMasterVersion, 0, 0, nullptr, 0},
     2400,
     2400,
     1},
    {"getMasterVersion of 0",
     [](PlainEffect& e) -> VstIntPtr { return e.getMasterVersion(); },
     {nullptr, audioMasterVersion, 0, 0, nullptr, 0},
     0,
     1,
     1},
    {"getCurrentUniqueId",
     [](PlainEffect& e) -> VstIntPtr { return e.getCurrentUniqueId(); },
     {nullptr, audioMasterCurrentId, 0, 0, nullptr, 0},
     77,
     77,
     0},
    {"masterIdle",
     [](PlainEffect& e) -> VstIntPtr { return e.masterIdle(); },
     {nullptr, audioMasterIdle, 0, 0, nullptr, 0},
     3,
     3,
     0},
    {"isInputConnected",
     [](PlainEffect& e) -> VstIntPtr { return e.isInputConnected(3); },
     {nullptr, audioMasterPinConnected, 3, 0, nullptr, 0},
     0,
     1,
     1},
    {"isOutputConnected",
     [](PlainEffect& e) -> VstIntPtr { return e.isOutputConnected(3); },
     {nullptr, audioMasterPinConnected, 3, 1, nullptr, 0},
     1,
     0,
     1},
    {"getTimeInfo",
     [](PlainEffect& e) { return asInt(e.getTimeInfo(7)); },
     {nullptr, audioMasterGetTime, 0, 7, nullptr, 0},
     kPtrValue,
     kPtrValue,
     0},
    {"sendVstEventsToHost 1",
     [](PlainEffect& e) -> VstIntPtr {
       return e.sendVstEventsToHost(static_cast<VstEvents*>(kPtr));
     },
     {nullptr, audioMasterProcessEvents, 0, 0, kPtr, 0},
     1,
     1,
     0},
    {"sendVstEventsToHost 2",
     [](PlainEffect& e) -> VstIntPtr {
       return e.sendVstEventsToHost(static_cast<VstEvents*>(kPtr));
     },
     {nullptr, audioMasterProcessEvents, 0, 0, kPtr, 0},
     2,
     0,
     0},
    {"ioChanged",
     [](PlainEffect& e) -> VstIntPtr { return e.ioChanged(); },
     {nullptr, audioMasterIOChanged, 0, 0, nullptr, 0},
     5,
     1,
     0},
    {"sizeWindow",
     [](PlainEffect& e) -> VstIntPtr { return e.sizeWindow(640, 480); },
     {nullptr, audioMasterSizeWindow, 640, 480, nullptr, 0},
     1,
     1,
     0},
    {"getInputLatency",
     [](PlainEffect& e) -> VstIntPtr { return e.getInputLatency(); },
     {nullptr, audioMasterGetInputLatency, 0, 0, nullptr, 0},
     64,
     64,
     0},
    {"getOutputLatency",
     [](PlainEffect& e) -> VstIntPtr { return e.getOutputLatency(); },
     {nullptr, audioMasterGetOutputLatency, 0, 0, nullptr, 0},
     32,
     32,
     0},
    {"getCurrentProcessLevel",
     [](PlainEffect& e) -> VstIntPtr { return e.getCurrentProcessLevel(); },
     {nullptr, audioMasterGetCurrentProcessLevel, 0, 0, nullptr, 0},
     2,
     2,
     0},
    {"getAutomationState",
     [](PlainEffect& e) -> VstIntPtr { return e.getAutomationState(); },
     {nullptr, audioMasterGetAutomationState, 0, 0, nullptr, 0},
     4,
     4,
     0},
    {"offlineStart",
     [](PlainEffect& e) -> VstIntPtr {
       return e.offlineStart(static_cast<VstAudioFile*>(kPtr), 3, 2);
     },
     {nullptr, audioMasterOfflineStart, 2, 3, kPtr, 0},
     9,
     1,
     0},
    {"offlineRead",
     [](PlainEffect& e) -> VstIntPtr { return e.offlineRead(kOffline, kVstOfflinePeaks, true); },
     {nullptr, audioMasterOfflineRead, 1, kVstOfflinePeaks, kPtr, 0},
     1,
     1,
     0},
    {"offlineWrite",
     [](PlainEffect& e) -> VstIntPtr { return e.offlineWrite(kOffline, kVstOfflineMarker); },
     {nullptr, audioMasterOfflineWrite, 0, kVstOfflineMarker, kPtr, 0},
     0,
     0,
     0},
    {"offlineGetCurrentPass",
     [](PlainEffect& e) -> VstIntPtr { return e.offlineGetCurrentPass(); },
     {nullptr, audioMasterOfflineGetCurrentPass, 0, 0, nullptr, 0},
     5,
     1,
     0},
    {"offlineGetCurrentMetaPass",
     [](PlainEffect& e) -> VstIntPtr { return e.offlineGetCurrentMetaPass(); },
     {nullptr, audioMasterOfflineGetCurrentMetaPass, 0, 0, nullptr, 0},
     5,
     1,
     0},
    {"getHostVendorString",
     [](PlainEffect& e) -> VstIntPtr { return e.getHostVendorString(static_cast<char*>(kPtr)); },
     {nullptr, audioMasterGetVendorString, 0, 0, kPtr, 0},
     1,
     1,
     0},
    {"getHostProductString",
     [](PlainEffect& e) -> VstIntPtr { return e.getHostProductString(static_cast<char*>(kPtr)); },
     {nullptr, audioMasterGetProductString, 0, 0, kPtr, 0},
     1,
     1,
     0},
    {"getHostVendorVersion",
     [](PlainEffect& e) -> VstIntPtr { return e.getHostVendorVersion(); },
     {nullptr, audioMasterGetVendorVersion, 0, 0, nullptr, 0},
     1200,
     1200,
     0},
    {"hostVendorSpecific",
     [](PlainEffect& e) { return e.hostVendorSpecific(4, 5, kPtr, 0.25f); },
     {nullptr, audioMasterVendorSpecific, 4, 5, kPtr, 0.25f},
     6,
     6,
     0},
    {"canHostDo",
     [](PlainEffect& e) -> VstIntPtr { return e.canHostDo(static_cast<char*>(kPtr)); },
     {nullptr, audioMasterCanDo, 0, 0, kPtr, 0},
     -1,
     1,
     0},
    {"getHostLanguage",
     [](PlainEffect& e) -> VstIntPtr { return e.getHostLanguage(); },
     {nullptr, audioMasterGetLanguage, 0, 0, nullptr, 0},
     2,
     2,
     0},
    {"getDirectory",
     [](PlainEffect& e) { return asInt(e.getDirectory()); },
     {nullptr, audioMasterGetDirectory, 0, 0, nullptr, 0},
     kPtrValue,
     kPtrValue,
     0},
    {"updateDisplay",
     [](PlainEffect& e) -> VstIntPtr { return e.updateDisplay(); },
     {nullptr, audioMasterUpdateDisplay, 0, 0, nullptr, 0},
     1,
     1,
     0},
    {"beginEdit",
     [](PlainEffect& e) -> VstIntPtr { return e.beginEdit(3); },
     {nullptr, audioMasterBeginEdit, 3, 0, nullptr, 0},
     1,
     1,
     0},
    {"endEdit",
     [](PlainEffect& e) -> VstIntPtr { return e.endEdit(3); },
     {nullptr, audioMasterEndEdit, 3, 0, nullptr, 0},
     1,
     1,
     0},
    {"openFileSelector",
     [](PlainEffect& e) -> VstIntPtr {
       return e.openFileSelector(static_cast<VstFileSelect*>(kPtr));
     },
     {nullptr, audioMasterOpenFileSelector, 0, 0, kPtr, 0},
     1,
     1,
     0},
    {"closeFileSelector",
     [](PlainEffect& e) -> VstIntPtr {
       return e.closeFileSelector(static_cast<VstFileSelect*>(kPtr));
     },
     {nullptr, audioMasterCloseFileSelector, 0, 0, kPtr, 0},
     1,
     1,
     0},
    {"__tempoAt",
     [](PlainEffect& e) -> VstIntPtr { return e.__tempoAtDeprecated(100); },
     {nullptr, audioMasterTempoAt, 0, 100, nullptr, 0},
     120,
     120,
     0},
    {"__getNumAutomatableParameters",
     [](PlainEffect& e) -> VstIntPtr { return e.__getNumAutomatableParametersDeprecated(); },
     {nullptr, audioMasterGetNumAutomatableParameters, 0, 0, nullptr, 0},
     8,
     8,
     0},
    {"__getParameterQuantization",
     [](PlainEffect& e) -> VstIntPtr { return e.__getParameterQuantizationDeprecated(); },
     {nullptr, audioMasterGetParameterQuantization, 0, 0, nullptr, 0},
     8,
     8,
     0},
    {"__needIdle",
     [](PlainEffect& e) -> VstIntPtr { return e.__needIdleDeprecated(); },
     {nullptr, audioMasterNeedIdle, 0, 0, nullptr, 0},
     3,
     1,
     0},
    {"__getPreviousPlug",
     [](PlainEffect& e) { return asInt(e.__getPreviousPlugDeprecated(3)); },
     {nullptr, audioMasterGetPreviousPlug, 0, 0, nullptr, 0},
     kPtrValue,
     kPtrValue,
     0},
    {"__getNextPlug",
     [](PlainEffect& e) { return asInt(e.__getNextPlugDeprecated(3)); },
     {nullptr, audioMasterGetNextPlug, 0, 0, nullptr, 0},
     kPtrValue,
     kPtrValue,
     0},
    {"__willProcessReplacing",
     [](PlainEffect& e) -> VstIntPtr { return e.__willProcessReplacingDeprecated(); },
     {nullptr, audioMasterWillReplaceOrAccumulate, 0, 0, nullptr, 0},
     2,
     2,
     0},
    {"__getOutputSpeakerArrangement",
     [](PlainEffect& e) { return asInt(e.__getOutputSpeakerArrangementDeprecated()); },
     {nullptr, audioMasterGetOutputSpeakerArrangement, 0, 0, nullptr, 0},
     kPtrValue,
     kPtrValue,
     0},
    {"__getInputSpeakerArrangement",
     [](PlainEffect& e) { return asInt(e.__getInputSpeakerArrangementDeprecated()); },
     {nullptr, audioMasterGetInputSpeakerArrangement, 0, 0, nullptr, 0},
     kPtrValue,
     kPtrValue,
     0},
    {"__openWindow",
     [](PlainEffect& e) {
       return asInt(e.__openWindowDeprecated(static_cast<__VstWindowDeprecated*>(kPtr)));
     },
     {nullptr, audioMasterOpenWindow, 0, 0, kPtr, 0},
     kPtrValue,
     kPtrValue,
     0},
    {"__closeWindow",
     [](PlainEffect& e) -> VstIntPtr {
       return e.__closeWindowDeprecated(static_cast<__VstWindowDeprecated*>(kPtr));
     },
     {nullptr, audioMasterCloseWindow, 0, 0, kPtr, 0},
     1,
     1,
     0},
    {"__getChunkFile",
     [](PlainEffect& e) -> VstIntPtr { return e.__getChunkFileDeprecated(kPtr); },
     {nullptr, audioMasterGetChunkFile, 0, 0, kPtr, 0},
     1,
     1,
     0},
    {"__wantEvents",
     [](PlainEffect& e) -> VstIntPtr { return e.__wantEventsDeprecated(1), 0; },
     {nullptr, audioMasterWantMidi, 0, 1, nullptr, 0},
     0,
     0,
     0},
    {"__setOutputSamplerate",
     [](PlainEffect& e) -> VstIntPtr { return e.__setOutputSamplerateDeprecated(48000.0f), 0; },
     {nullptr, audioMasterSetOutputSampleRate, 0, 0, nullptr, 48000.0f},
     0,
     0,
     0},
    {"setParameterAutomated",
     [](PlainEffect& e) -> VstIntPtr { return e.setParameterAutomated(2, 0.75f), 0; },
     {nullptr, audioMasterAutomate, 2, 0, nullptr, 0.75f},
     0,
     0,
     0},
};

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
    recorder().answers[q.expected.opcode] = q.answer;
    EXPECT_EQ(q.ask(effect), q.result);
    ASSERT_EQ(recorder().calls.size(), 1u);
    const HostCall& c = recorder().calls[0];
    EXPECT_EQ(c.effect, effect.getAeffect());
    EXPECT_EQ(c.opcode, q.expected.opcode);
    EXPECT_EQ(c.index, q.expected.index);
    EXPECT_EQ(c.value, q.expected.value);
    EXPECT_EQ(c.ptr, q.expected.ptr);
    EXPECT_EQ(c.opt, q.expected.opt);
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
