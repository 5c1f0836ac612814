// Routing of every opcode through the record's dispatcher: which operation runs with which
// arguments and what crosses back to the host; editor requests; closing through the record.

#include <gtest/gtest.h>

#include <concepts>
#include <string>

#include "test_support.h"

namespace {

constexpr VstIntPtr K = 42;  // what every logged operation answers (true when it answers a bool)
std::string gLog;            // what the logging effect and its editor were asked, in order

// Logs a call as "name(arg,arg)"; the marker pointer reads "ptr".
struct Log {
  static std::string arg(std::integral auto v) { return std::to_string(v); }
  static std::string arg(bool b) { return b ? "true" : "false"; }
  static std::string arg(const void* p) { return p == kPtr ? "ptr" : p ? "other" : "null"; }
  static std::string arg(float f) { return std::to_string(f); }
  template <typename R = VstInt32>
  static R hit(const char* name, auto... a) {
    std::string s = std::string(name) + '(';
    ((s += arg(a) + ','), ...);
    if (s.back() == ',') s.pop_back();
    gLog += s + ')';
    return static_cast<R>(K);
  }
};

struct LoggingEditor : AEffEditor, Log {
  ~LoggingEditor() override { hit<void>("~editor"); }
  bool getRect(ERect** rect) override { return hit<bool>("getRect", rect); }
  bool open(void* window) override { return hit<bool>("editOpen", window); }
  void close() override { hit<void>("editClose"); }
  void idle() override { hit<void>("idle"); }
  bool onKeyDown(VstKeyCode& k) override {
    return hit<bool>("down", k.character, k.virt, k.modifier);
  }
  bool onKeyUp(VstKeyCode& k) override { return hit<bool>("up", k.character, k.virt, k.modifier); }
  bool setKnobMode(VstInt32 m) override { return hit<bool>("knob", m); }
};

// Logs each operation the dispatcher reaches, and owns a logging editor.
struct LoggingEffect : PlainEffect, Log {
  using B = bool;
  using I = VstInt32;
  using P = VstIntPtr;
  using SA = VstSpeakerArrangement;
  LoggingEffect() { setEditor(new LoggingEditor); }
  void __processDeprecated(float**, float**, I n) noexcept override { hit<void>("accumulate", n); }
  void setParameter(I i, float v) override { hit<void>("setParameter", i, v); }
  void open() override { hit<void>("open"); }
  void close() override { hit<void>("close"); }
  void suspend() override { hit<void>("suspend"); }
  void resume() override { hit<void>("resume"); }
  void setSampleRate(float r) override { hit<void>("setSampleRate", r); }
  void setBlockSize(I n) override { hit<void>("setBlockSize", n); }
  I getProgram() override { return hit("getProgram"); }
  void setProgram(I p) override { hit<void>("setProgram", p); }
  void setProgramName(char* s) override { hit<void>("setProgramName", s); }
  void getProgramName(char* s) override { hit<void>("getProgramName", s); }
  void getParameterLabel(I i, char* s) override { hit<void>("getParameterLabel", i, s); }
  void getParameterDisplay(I i, char* s) override { hit<void>("getParameterDisplay", i, s); }
  void getParameterName(I i, char* s) override { hit<void>("getParameterName", i, s); }
  I getChunk(void** d, B p) override { return hit("getChunk", d, p); }
  I setChunk(void* d, I n, B p) override { return hit("setChunk", d, n, p); }
  I processEvents(VstEvents* e) override { return hit("processEvents", e); }
  B canParameterBeAutomated(I i) override { return hit<B>("canBeAutomated", i); }
  B string2parameter(I i, char* s) override { return hit<B>("string2parameter", i, s); }
  B getProgramNameIndexed(I c, I i, char* s) override { return hit<B>("indexed", c, i, s); }
  B getInputProperties(I i, VstPinProperties* p) override { return hit<B>("inProps", i, p); }
  B getOutputProperties(I i, VstPinProperties* p) override { return hit<B>("outProps", i, p); }
  VstPlugCategory getPlugCategory() override { return hit<VstPlugCategory>("category"); }
  B offlineNotify(VstAudioFile* f, I n, B s) override { return hit<B>("offlineNotify", f, n, s); }
  B offlinePrepare(VstOfflineTask* t, I n) override { return hit<B>("offlinePrepare", t, n); }
  B offlineRun(VstOfflineTask* t, I n) override { return hit<B>("offlineRun", t, n); }
  B processVariableIo(VstVariableIo* v) override { return hit<B>("varIo", v); }
  B setSpeakerArrangement(SA* i, SA* o) override { return hit<B>("setSpeakers", i, o); }
  B setBypass(B b) override { return hit<B>("setBypass", b); }
  B getEffectName(char* s) override { return hit<B>("getEffectName", s); }
  B getVendorString(char* s) override { return hit<B>("getVendorString", s); }
  B getProductString(char* s) override { return hit<B>("getProductString", s); }
  I getVendorVersion() override { return hit("getVendorVersion"); }
  P vendorSpecific(I a, P b, void* p, float f) override { return hit<P>("vendor", a, b, p, f); }
  I canDo(char* s) override { return hit("canDo", s); }
  I getGetTailSize() override { return hit("tail"); }
  B getParameterProperties(I i, VstParameterProperties* p) override { return hit<B>("prop", i, p); }
  I getVstVersion() override { return hit("getVstVersion"); }
  I getMidiProgramName(I c, MidiProgramName* n) override { return hit("midiProgName", c, n); }
  I getCurrentMidiProgram(I c, MidiProgramName* n) override { return hit("curMidiProg", c, n); }
  I getMidiProgramCategory(I c, MidiProgramCategory* n) override { return hit("midiCat", c, n); }
  B hasMidiProgramsChanged(I c) override { return hit<B>("midiProgsChanged", c); }
  B getMidiKeyName(I c, MidiKeyName* k) override { return hit<B>("midiKeyName", c, k); }
  B beginSetProgram() override { return hit<B>("beginSetProgram"); }
  B endSetProgram() override { return hit<B>("endSetProgram"); }
  B getSpeakerArrangement(SA** i, SA** o) override { return hit<B>("getSpeakers", i, o); }
  I getNextShellPlugin(char* s) override { return hit("shellNext", s); }
  I startProcess() override { return hit("startProcess"); }
  I stopProcess() override { return hit("stopProcess"); }
  I setTotalSampleToProcess(I v) override { return hit("totalSamples", v); }
  B setPanLaw(I t, float v) override { return hit<B>("setPanLaw", t, v); }
  I beginLoadBank(VstPatchChunkInfo* p) override { return hit("beginLoadBank", p); }
  I beginLoadProgram(VstPatchChunkInfo* p) override { return hit("beginLoadProgram", p); }
  B setProcessPrecision(I p) override { return hit<B>("setPrecision", p); }
  I getNumMidiInputChannels() override { return hit("midiIn"); }
  I getNumMidiOutputChannels() override { return hit("midiOut"); }
};

struct Route {
  const char* call;  // empty: no operation runs
  VstIntPtr result;
};

// Row n is opcode n, each sent with index 5, value 9, ptr kPtr and opt 0.5.
// clang-format off
constexpr Route kRoutes[] = {
    /*  0 */ {"open()", 0}, {"close()", 0}, {"setProgram(9)", 0}, {"getProgram()", K},
    /*  4 */ {"setProgramName(ptr)", 0}, {"getProgramName(ptr)", 0},
    /*  6 */ {"getParameterLabel(5,ptr)", 0}, {"getParameterDisplay(5,ptr)", 0},
    /*  8 */ {"getParameterName(5,ptr)", 0}, {"", 0}, {"setSampleRate(0.500000)", 0},
    /* 11 */ {"setBlockSize(9)", 0}, {"resume()", 0}, {"getRect(ptr)", 1}, {"editOpen(ptr)", 1},
    /* 15 */ {"editClose()", 0}, {"", 0}, {"", 0}, {"", 0}, {"idle()", 0}, {"", 0}, {"", 0},
    /* 22 */ {"", 0x4E764566}, {"getChunk(ptr,true)", K}, {"setChunk(ptr,9,true)", K},
    /* 25 */ {"processEvents(ptr)", K}, {"canBeAutomated(5)", 1}, {"string2parameter(5,ptr)", 1},
    /* 28 */ {"", 0}, {"indexed(9,5,ptr)", 1}, {"", 0}, {"", 0}, {"", 0}, {"inProps(5,ptr)", 1},
    /* 34 */ {"outProps(5,ptr)", 1}, {"category()", K}, {"", 0}, {"", 0},
    /* 38 */ {"offlineNotify(ptr,9,true)", 1}, {"offlinePrepare(ptr,9)", 1},
    /* 40 */ {"offlineRun(ptr,9)", 1}, {"varIo(ptr)", 1}, {"setSpeakers(other,ptr)", 1}, {"", 0},
    /* 44 */ {"setBypass(true)", 1}, {"getEffectName(ptr)", 1}, {"", 0},
    /* 47 */ {"getVendorString(ptr)", 1}, {"getProductString(ptr)", 1}, {"getVendorVersion()", K},
    /* 50 */ {"vendor(5,9,ptr,0.500000)", K}, {"canDo(ptr)", K}, {"tail()", K}, {"", 0}, {"", 0},
    /* 55 */ {"", 0}, {"prop(5,ptr)", 1}, {"", 0}, {"getVstVersion()", K}, {"down(5,9,0)", 1},
    /* 60 */ {"up(5,9,0)", 1}, {"knob(9)", 1}, {"midiProgName(5,ptr)", K},
    /* 63 */ {"curMidiProg(5,ptr)", K}, {"midiCat(5,ptr)", K}, {"midiProgsChanged(5)", 1},
    /* 66 */ {"midiKeyName(5,ptr)", 1}, {"beginSetProgram()", 1}, {"endSetProgram()", 1},
    /* 69 */ {"getSpeakers(other,ptr)", 1}, {"shellNext(ptr)", K}, {"startProcess()", K},
    /* 72 */ {"stopProcess()", K}, {"totalSamples(9)", K}, {"setPanLaw(9,0.500000)", 1},
    /* 75 */ {"beginLoadBank(ptr)", K}, {"beginLoadProgram(ptr)", K}, {"setPrecision(9)", 1},
    /* 78 */ {"midiIn()", K}, {"midiOut()", K},
};
// clang-format on
static_assert(std::size(kRoutes) == 80);

TEST(Dispatcher, EveryOpcodeReachesItsOperationWithItsArguments) {
  for (VstInt32 opcode = -1; opcode <= 80; ++opcode) {
    SCOPED_TRACE(opcode);
    const Route route = opcode >= 0 && opcode < 80 ? kRoutes[opcode] : Route{"", 0};
    LoggingEffect fx;
    gLog.clear();
    // Through the record effClose would delete this stack object; a test below covers that path.
    const VstIntPtr result = opcode == effClose ? fx.dispatcher(effClose, 5, 9, kPtr, 0.5f)
                                                : send(fx.getAeffect(), opcode);
    EXPECT_EQ(result, route.result);
    EXPECT_EQ(gLog, route.call);
  }
}

TEST(Dispatcher, RecordFunctionsAndOtherArgumentsReachTheInstanceWhichOwnsItsEditor) {
  {
    LoggingEffect fx;
    AEffect* e = fx.getAeffect();
    gLog.clear();
    const VstInt32 zeroArgs[] = {effMainsChanged, effGetChunk, effSetBypass, effOfflineNotify};
    for (VstInt32 op : zeroArgs) send(e, op, 0, 0);
    send(e, effEditKeyDown, 'a', 0x1ff, kPtr, 3.9f);  // key codes keep the low 8 bits
    send(e, effEditKeyUp, 'b', 2, kPtr, -1.5f);
    send(e, effEditKeyDown, 'c', 0, kPtr, 1e20f);
    e->process(e, nullptr, nullptr, 3);
    e->setParameter(e, 4, 0.5f);
    fx.setParameterAutomated(6, 0.25f);  // stored although there is no host to tell
  }
  EXPECT_EQ(gLog,
            "suspend()getChunk(ptr,false)setBypass(false)offlineNotify(ptr,0,false)"
            "down(97,255,3)up(98,2,255)down(99,0,0)accumulate(3)"
            "setParameter(4,0.500000)setParameter(6,0.250000)~editor()");
}

TEST(Dispatcher, DefaultsAnswerAsDocumented) {
  PlainEffect fx;
  AEffect* e = fx.getAeffect();
  for (VstIntPtr bad : {VstIntPtr{-1}, VstIntPtr{16}, VstIntPtr{1} << 40}) {
    send(e, effSetProgram, 0, bad);
    EXPECT_EQ(fx.curProgram, 0) << bad;
  }
  send(e, effSetProgram, 0, 15);
  EXPECT_EQ(send(e, effGetProgram), 15);
  EXPECT_EQ(send(e, effCanBeAutomated, 1234), 1);
  EXPECT_EQ(send(e, effSetTotalSampleToProcess, 0, 512), 512);
  EXPECT_EQ(send(e, effGetPlugCategory), kPlugCategUnknown);
  fx.isSynth(true);
  EXPECT_EQ(send(e, effGetPlugCategory), kPlugCategSynth);

  auto *in = static_cast<VstSpeakerArrangement*>(kPtr), *out = in;
  EXPECT_EQ(send(e, effGetSpeakerArrangement, 0, reinterpret_cast<VstIntPtr>(&in), &out), 0);
  EXPECT_TRUE(in == nullptr && out == nullptr);
  auto* rect = static_cast<ERect*>(kPtr);  // no editor: 0, and the rectangle is left alone
  for (VstInt32 op : {13, 14, 59, 60, 61}) EXPECT_EQ(send(e, op, 0, 0, &rect), 0) << op;
  EXPECT_EQ(rect, kPtr);

  // Text getters of the base write an empty string; the extended ones write nothing. Without a
  // buffer every text request answers 0 (and must not crash writing the empty string).
  EXPECT_EQ(send(e, effSetProgramName, 1, 0, nullptr), 0);
  for (VstInt32 op : {5, 6, 7, 8, 27, 29, 45, 47, 48, 70}) {
    char text[8] = "xyz";
    EXPECT_EQ(send(e, op, 0, 0, text), 0) << op;
    EXPECT_STREQ(text, op < effProcessEvents ? "" : "xyz") << op;
    EXPECT_EQ(send(e, op, 1, 0, nullptr), 0) << op;
  }
}

TEST(Dispatcher, EffCloseThroughTheRecordClosesAndDeletesEvenWhenOverridesThrow) {
  static int closed = 0, destroyed = 0;
  struct Throwing : PlainEffect {
    VstInt32 getVstVersion() override { throw 1; }
    void setParameter(VstInt32, float) override { throw 2; }
    float getParameter(VstInt32) override { throw 3; }
    void close() override { ++closed, throw 4; }
    ~Throwing() override { ++destroyed; }
  };
  AEffect* e = (new Throwing)->getAeffect();
  EXPECT_EQ(send(e, effGetVstVersion), 0);
  e->setParameter(e, 0, 0.5f);
  EXPECT_EQ(e->getParameter(e, 0), 0.0f);
  EXPECT_EQ(send(e, effClose), 1);
  EXPECT_TRUE(closed == 1 && destroyed == 1);
}

}  // namespace
