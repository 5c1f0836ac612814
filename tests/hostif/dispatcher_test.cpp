// Routing of every opcode through the record's dispatcher: which operation runs with which
// arguments, and what crosses back to the host.

#include <gtest/gtest.h>

#include <climits>
#include <concepts>
#include <cstdio>
#include <cstring>
#include <string>

#include "test_support.h"

namespace {

constexpr VstIntPtr kAnswer = 42;

template <std::integral I>
std::string arg(I v) {
  return std::to_string(v);
}
std::string arg(bool b) {
  return b ? "true" : "false";
}
std::string arg(float f) {
  char s[32];
  std::snprintf(s, sizeof s, "%g", f);
  return s;
}
std::string arg(const void* p) {
  return p == kPtr ? "ptr" : p ? "other" : "null";
}

template <typename... Args>
std::string call(const char* name, Args... args) {
  std::string s(name);
  s.push_back('(');
  ((s.append(arg(args)).push_back(',')), ...);
  if (s.back() == ',') s.pop_back();
  s.push_back(')');
  return s;
}

// Logs each operation the dispatcher reaches; answers kAnswer or true.
class LoggingEffect : public PlainEffect {
 public:
  std::string log;
  void note(std::string s) { log += s; }

  void open() override { note(call("open")); }
  void close() override { note(call("close")); }
  void suspend() override { note(call("suspend")); }
  void resume() override { note(call("resume")); }
  void setSampleRate(float r) override { note(call("setSampleRate", r)); }
  void setBlockSize(VstInt32 n) override { note(call("setBlockSize", n)); }
  VstInt32 getProgram() override { return note(call("getProgram")), kAnswer; }
  void setProgram(VstInt32 p) override { note(call("setProgram", p)); }
  void setProgramName(char* s) override { note(call("setProgramName", s)); }
  void getProgramName(char* s) override { note(call("getProgramName", s)); }
  void getParameterLabel(VstInt32 i, char* s) override { note(call("getParameterLabel", i, s)); }
  void getParameterDisplay(VstInt32 i, char* s) override {
    note(call("getParameterDisplay", i, s));
  }
  void getParameterName(VstInt32 i, char* s) override { note(call("getParameterName", i, s)); }
  VstInt32 getChunk(void** d, bool p) override { return note(call("getChunk", d, p)), kAnswer; }
  VstInt32 setChunk(void* d, VstInt32 n, bool p) override {
    return note(call("setChunk", d, n, p)), kAnswer;
  }
  VstInt32 processEvents(VstEvents* e) override { return note(call("processEvents", e)), kAnswer; }
  bool canParameterBeAutomated(VstInt32 i) override {
    return note(call("canBeAutomated", i)), true;
  }
  bool string2parameter(VstInt32 i, char* s) override {
    return note(call("string2parameter", i, s)), true;
  }
  bool getProgramNameIndexed(VstInt32 c, VstInt32 i, char* s) override {
    return note(call("getProgramNameIndexed", c, i, s)), true;
  }
  bool getInputProperties(VstInt32 i, VstPinProperties* p) override {
    return note(call("getInputProperties", i, p)), true;
  }
  bool getOutputProperties(VstInt32 i, VstPinProperties* p) override {
    return note(call("getOutputProperties", i, p)), true;
  }
  VstPlugCategory getPlugCategory() override { return note(call("category")), kPlugCategRoomFx; }
  bool offlineNotify(VstAudioFile* f, VstInt32 n, bool s) override {
    return note(call("offlineNotify", f, n, s)), true;
  }
  bool offlinePrepare(VstOfflineTask* t, VstInt32 n) override {
    return note(call("offlinePrepare", t, n)), true;
  }
  bool offlineRun(VstOfflineTask* t, VstInt32 n) override {
    return note(call("offlineRun", t, n)), true;
  }
  bool processVariableIo(VstVariableIo* v) override { return note(call("varIo", v)), true; }
  bool setSpeakerArrangement(VstSpeakerArrangement* i, VstSpeakerArrangement* o) override {
    return note(call("setSpeakerArrangement", i, o)), true;
  }
  bool setBypass(bool b) override { return note(call("setBypass", b)), true; }
  bool getEffectName(char* s) override { return note(call("getEffectName", s)), true; }
  bool getVendorString(char* s) override { return note(call("getVendorString", s)), true; }
  bool getProductString(char* s) override { return note(call("getProductString", s)), true; }
  VstInt32 getVendorVersion() override { return note(call("getVendorVersion")), kAnswer; }
  VstIntPtr vendorSpecific(VstInt32 a, VstIntPtr b, void* p, float f) override {
    return note(call("vendorSpecific", a, b, p, f)), kAnswer;
  }
  VstInt32 canDo(char* s) override { return note(call("canDo", s)), kAnswer; }
  VstInt32 getGetTailSize() override { return note(call("tail")), kAnswer; }
  bool getParameterProperties(VstInt32 i, VstParameterProperties* p) override {
    return note(call("getParameterProperties", i, p)), true;
  }
  VstInt32 getVstVersion() override { return note(call("getVstVersion")), kAnswer; }
  VstInt32 getMidiProgramName(VstInt32 c, MidiProgramName* n) override {
    return note(call("midiProgramName", c, n)), kAnswer;
  }
  VstInt32 getCurrentMidiProgram(VstInt32 c, MidiProgramName* n) override {
    return note(call("currentMidiProgram", c, n)), kAnswer;
  }
  VstInt32 getMidiProgramCategory(VstInt32 c, MidiProgramCategory* n) override {
    return note(call("midiProgramCategory", c, n)), kAnswer;
  }
  bool hasMidiProgramsChanged(VstInt32 c) override {
    return note(call("midiProgramsChanged", c)), true;
  }
  bool getMidiKeyName(VstInt32 c, MidiKeyName* k) override {
    return note(call("midiKeyName", c, k)), true;
  }
  bool beginSetProgram() override { return note(call("beginSetProgram")), true; }
  bool endSetProgram() override { return note(call("endSetProgram")), true; }
  bool getSpeakerArrangement(VstSpeakerArrangement** i, VstSpeakerArrangement** o) override {
    return note(call("getSpeakerArrangement", i, o)), true;
  }
  VstInt32 getNextShellPlugin(char* s) override { return note(call("shellNext", s)), kAnswer; }
  VstInt32 startProcess() override { return note(call("startProcess")), kAnswer; }
  VstInt32 stopProcess() override { return note(call("stopProcess")), kAnswer; }
  VstInt32 setTotalSampleToProcess(VstInt32 v) override {
    return note(call("totalSamples", v)), kAnswer;
  }
  bool setPanLaw(VstInt32 t, float v) override { return note(call("setPanLaw", t, v)), true; }
  VstInt32 beginLoadBank(VstPatchChunkInfo* p) override {
    return note(call("beginLoadBank", p)), kAnswer;
  }
  VstInt32 beginLoadProgram(VstPatchChunkInfo* p) override {
    return note(call("beginLoadProgram", p)), kAnswer;
  }
  bool setProcessPrecision(VstInt32 p) override {
    return note(call("setProcessPrecision", p)), true;
  }
  VstInt32 getNumMidiInputChannels() override { return note(call("midiIn")), kAnswer; }
  VstInt32 getNumMidiOutputChannels() override { return note(call("midiOut")), kAnswer; }
};

struct Route {
  VstInt32 opcode;
  const char* expectedCall;  // empty: no operation runs
  VstIntPtr expectedResult;
};

// Every row is sent with index 5, value 9, ptr kPtr and opt 0.5.
constexpr Route kRoutes[] = {
    {effOpen, "open()", 0},
    {effClose, "close()", 0},
    {effSetProgram, "setProgram(9)", 0},
    {effGetProgram, "getProgram()", kAnswer},
    {effSetProgramName, "setProgramName(ptr)", 0},
    {effGetProgramName, "getProgramName(ptr)", 0},
    {effGetParamLabel, "getParameterLabel(5,ptr)", 0},
    {effGetParamDisplay, "getParameterDisplay(5,ptr)", 0},
    {effGetParamName, "getParameterName(5,ptr)", 0},
    {effGetVu, "", 0},
    {effSetSampleRate, "setSampleRate(0.5)", 0},
    {effSetBlockSize, "setBlockSize(9)", 0},
    {effMainsChanged, "resume()", 0},
    {effEditGetRect, "", 0},
    {effEditOpen, "", 0},
    {effEditClose, "", 0},
    {effEditDraw, "", 0},
    {effEditMouse, "", 0},
    {effEditKey, "", 0},
    {effEditIdle, "", 0},
    {effEditTop, "", 0},
    {effEditSleep, "", 0},
    {effIdentify, "", 0x4E764566},
    {effGetChunk, "getChunk(ptr,true)", kAnswer},
    {effSetChunk, "setChunk(ptr,9,true)", kAnswer},
    {effProcessEvents, "processEvents(ptr)", kAnswer},
    {effCanBeAutomated, "canBeAutomated(5)", 1},
    {effString2Parameter, "string2parameter(5,ptr)", 1},
    {effGetNumProgramCategories, "", 0},
    {effGetProgramNameIndexed, "getProgramNameIndexed(9,5,ptr)", 1},
    {effCopyProgram, "", 0},
    {effConnectInput, "", 0},
    {effConnectOutput, "", 0},
    {effGetInputProperties, "getInputProperties(5,ptr)", 1},
    {effGetOutputProperties, "getOutputProperties(5,ptr)", 1},
    {effGetPlugCategory, "category()", kPlugCategRoomFx},
    {effGetCurrentPosition, "", 0},
    {effGetDestinationBuffer, "", 0},
    {effOfflineNotify, "offlineNotify(ptr,9,true)", 1},
    {effOfflinePrepare, "offlinePrepare(ptr,9)", 1},
    {effOfflineRun, "offlineRun(ptr,9)", 1},
    {effProcessVarIo, "varIo(ptr)", 1},
    {effSetSpeakerArrangement, "setSpeakerArrangement(other,ptr)", 1},
    {effSetBlockSizeAndSampleRate, "", 0},
    {effSetBypass, "setBypass(true)", 1},
    {effGetEffectName, "getEffectName(ptr)", 1},
    {effGetErrorText, "", 0},
    {effGetVendorString, "getVendorString(ptr)", 1},
    {effGetProductString, "getProductString(ptr)", 1},
    {effGetVendorVersion, "getVendorVersion()", kAnswer},
    {effVendorSpecific, "vendorSpecific(5,9,ptr,0.5)", kAnswer},
    {effCanDo, "canDo(ptr)", kAnswer},
    {effGetTailSize, "tail()", kAnswer},
    {effIdle, "", 0},
    {effGetIcon, "", 0},
    {effSetViewPosition, "", 0},
    {effGetParameterProperties, "getParameterProperties(5,ptr)", 1},
    {effKeysRequired, "", 0},
    {effGetVstVersion, "getVstVersion()", kAnswer},
    {effEditKeyDown, "", 0},
    {effEditKeyUp, "", 0},
    {effSetEditKnobMode, "", 0},
    {effGetMidiProgramName, "midiProgramName(5,ptr)", kAnswer},
    {effGetCurrentMidiProgram, "currentMidiProgram(5,ptr)", kAnswer},
    {effGetMidiProgramCategory, "midiProgramCategory(5,ptr)", kAnswer},
    {effHasMidiProgramsChanged, "midiProgramsChanged(5)", 1},
    {effGetMidiKeyName, "midiKeyName(5,ptr)", 1},
    {effBeginSetProgram, "beginSetProgram()", 1},
    {effEndSetProgram, "endSetProgram()", 1},
    {effGetSpeakerArrangement, "getSpeakerArrangement(other,ptr)", 1},
    {effShellGetNextPlugin, "shellNext(ptr)", kAnswer},
    {effStartProcess, "startProcess()", kAnswer},
    {effStopProcess, "stopProcess()", kAnswer},
    {effSetTotalSampleToProcess, "totalSamples(9)", kAnswer},
    {effSetPanLaw, "setPanLaw(9,0.5)", 1},
    {effBeginLoadBank, "beginLoadBank(ptr)", kAnswer},
    {effBeginLoadProgram, "beginLoadProgram(ptr)", kAnswer},
    {effSetProcessPrecision, "setProcessPrecision(9)", 1},
    {effGetNumMidiInputChannels, "midiIn()", kAnswer},
    {effGetNumMidiOutputChannels, "midiOut()", kAnswer},
    {-1, "", 0},
    {80, "", 0},
    {INT_MIN, "", 0},
    {INT_MAX, "", 0},
};
static_assert(std::size(kRoutes) == 80 + 4, "one row per opcode 0..79, then unknown ones");

VstIntPtr send(AEffect* e, VstInt32 opcode, VstInt32 index = 5, VstIntPtr value = 9,
               void* ptr = kPtr, float opt = 0.5f) {
  return e->dispatcher(e, opcode, index, value, ptr, opt);
}

TEST(Dispatcher, EveryOpcodeReachesItsOperationWithItsArguments) {
  for (const Route& route : kRoutes) {
    LoggingEffect effect;
    SCOPED_TRACE(route.opcode);
    // Through the record effClose would delete this stack object; its own test covers that path.
    const VstIntPtr result = route.opcode == effClose
                                 ? effect.dispatcher(effClose, 5, 9, kPtr, 0.5f)
                                 : send(effect.getAeffect(), route.opcode);
    EXPECT_EQ(result, route.expectedResult);
    EXPECT_EQ(effect.log, route.expectedCall);
  }
}

TEST(Dispatcher, ArgumentVariantsPickTheOtherBranch) {
  LoggingEffect effect;
  AEffect* e = effect.getAeffect();
  send(e, effMainsChanged, 0, 0);
  send(e, effMainsChanged, 0, 2);
  send(e, effGetChunk, 0);
  send(e, effSetBypass, 0, 0);
  send(e, effOfflineNotify, 0);
  EXPECT_EQ(effect.log,
            "suspend()resume()getChunk(ptr,false)setBypass(false)offlineNotify(ptr,9,false)");
}

TEST(Dispatcher, SetProgramIgnoresIndicesOutsideTheBank) {
  PlainEffect effect(nullptr, 4);
  AEffect* e = effect.getAeffect();
  for (VstIntPtr bad : {VstIntPtr{-1}, VstIntPtr{4}, VstIntPtr{1} << 40}) {
    send(e, effSetProgram, 0, bad);
    EXPECT_EQ(effect.curProgram, 0) << bad;
  }
  send(e, effSetProgram, 0, 3);
  EXPECT_EQ(send(e, effGetProgram), 3);
}

TEST(Dispatcher, PlainAudioEffectAnswersZeroToExtendedOpcodes) {
  struct Bare : AudioEffect {
    Bare() : AudioEffect(nullptr, 1, 1) {}
    void processReplacing(float**, float**, VstInt32) noexcept override {}
  } bare;
  for (VstInt32 opcode = effProcessEvents; opcode <= effGetNumMidiOutputChannels; ++opcode) {
    EXPECT_EQ(send(bare.getAeffect(), opcode), 0) << opcode;
  }
}

TEST(Dispatcher, DefaultsAnswerAsDocumented) {
  PlainEffect effect;
  AEffect* e = effect.getAeffect();
  EXPECT_EQ(send(e, effCanBeAutomated, 1234), 1);
  EXPECT_EQ(send(e, effGetPlugCategory), kPlugCategUnknown);
  EXPECT_EQ(send(e, effGetVstVersion), 2400);
  EXPECT_EQ(send(e, effGetCurrentMidiProgram), -1);
  EXPECT_EQ(send(e, effSetTotalSampleToProcess, 0, 512), 512);
  EXPECT_EQ(send(e, effSetBlockSizeAndSampleRate, 0, 64, nullptr, 8000.0f), 0);
  EXPECT_EQ(effect.blockSize, 1024);
  EXPECT_EQ(effect.sampleRate, 44100.0f);

  int marker = 0;
  auto* in = reinterpret_cast<VstSpeakerArrangement*>(&marker);
  auto* out = in;
  EXPECT_EQ(send(e, effGetSpeakerArrangement, 0, reinterpret_cast<VstIntPtr>(&in), &out), 0);
  EXPECT_EQ(in, nullptr);
  EXPECT_EQ(out, nullptr);

  // Text getters of the base write an empty string; the extended ones write nothing.
  for (VstInt32 op : {effGetProgramName, effGetParamLabel, effGetParamDisplay, effGetParamName}) {
    char text[8] = "xyz";
    send(e, op, 0, 0, text);
    EXPECT_STREQ(text, "") << op;
  }
  for (VstInt32 op : {effString2Parameter, effGetEffectName, effGetVendorString,
                      effGetProductString, effGetProgramNameIndexed, effShellGetNextPlugin}) {
    char text[8] = "xyz";
    EXPECT_EQ(send(e, op, 0, 0, text), 0) << op;
    EXPECT_STREQ(text, "xyz") << op;
  }
}

struct RecordingEditor : AEffEditor {
  std::string log;
  int* destroyed = nullptr;
  ~RecordingEditor() override { ++*destroyed; }
  bool getRect(ERect** rect) override { return log += call("getRect", rect), true; }
  bool open(void* window) override { return log += call("open", window), true; }
  void close() override { log += call("close"); }
  void idle() override { log += call("idle"); }
  bool onKeyDown(VstKeyCode& k) override { return log += key("down", k), true; }
  bool onKeyUp(VstKeyCode& k) override { return log += key("up", k), false; }
  bool setKnobMode(VstInt32 m) override { return log += call("knob", m), true; }
  static std::string key(const char* name, const VstKeyCode& k) {
    return call(name, k.character, k.virt, k.modifier);
  }
};

TEST(Dispatcher, EditorRequestsReachAnAttachedEditor) {
  int destroyed = 0;
  {
    PlainEffect effect;
    AEffect* e = effect.getAeffect();
    auto* editor = new RecordingEditor;
    editor->destroyed = &destroyed;
    effect.setEditor(editor);
    EXPECT_EQ(send(e, effEditGetRect), 1);
    EXPECT_EQ(send(e, effEditOpen), 1);
    EXPECT_EQ(send(e, effEditClose), 0);
    EXPECT_EQ(send(e, effEditIdle), 0);
    EXPECT_EQ(send(e, effEditKeyDown, 'a', 0x1ff, kPtr, 3.9f), 1);
    EXPECT_EQ(send(e, effEditKeyUp, 'b', 2, kPtr, -1.5f), 0);
    EXPECT_EQ(send(e, effEditKeyDown, 'c', 0, kPtr, 1e20f), 1);
    EXPECT_EQ(send(e, effSetEditKnobMode, 0, 2), 1);
    EXPECT_EQ(editor->log,
              "getRect(ptr)open(ptr)close()idle()down(97,255,3)up(98,2,255)down(99,0,0)knob(2)");
  }
  EXPECT_EQ(destroyed, 1) << "the effect owns its editor";
}

TEST(Dispatcher, WithoutEditorRectRequestLeavesPointerUntouched) {
  PlainEffect effect;
  ERect* rect = reinterpret_cast<ERect*>(kPtr);
  EXPECT_EQ(send(effect.getAeffect(), effEditGetRect, 0, 0, &rect), 0);
  EXPECT_EQ(rect, reinterpret_cast<ERect*>(kPtr));
}

int gClosed = 0;
int gDestroyed = 0;

TEST(Dispatcher, CloseThroughTheRecordClosesAndDeletesTheInstance) {
  struct Counted : PlainEffect {
    void close() override { ++gClosed; }
    ~Counted() override { ++gDestroyed; }
  };
  gClosed = gDestroyed = 0;
  AEffect* e = (new Counted)->getAeffect();
  EXPECT_EQ(e->dispatcher(e, effClose, 0, 0, nullptr, 0.0f), 1);
  EXPECT_EQ(gClosed, 1);
  EXPECT_EQ(gDestroyed, 1);
}

TEST(Dispatcher, ExceptionsFromAnOverrideStopAtTheRecord) {
  struct Throwing : PlainEffect {
    VstInt32 getVstVersion() override { throw 1; }
    void setParameter(VstInt32, float) override { throw 2; }
    float getParameter(VstInt32) override { throw 3; }
    void close() override { throw 4; }
    ~Throwing() override { ++gDestroyed; }
  };
  gDestroyed = 0;
  AEffect* e = (new Throwing)->getAeffect();
  EXPECT_EQ(send(e, effGetVstVersion), 0);
  e->setParameter(e, 0, 0.5f);
  EXPECT_EQ(e->getParameter(e, 0), 0.0f);
  EXPECT_EQ(e->dispatcher(e, effClose, 0, 0, nullptr, 0.0f), 1);
  EXPECT_EQ(gDestroyed, 1);
}

}  // namespace
