// The AEffect record a new effect hands the host, and the operations that change it.

#include <gtest/gtest.h>

#include "test_support.h"

namespace {

TEST(Record, NewEffectFillsTheRecordAndZeroesTheRest) {
  PlainEffect effect(nullptr, 16, 6);
  const AEffect& r = *effect.getAeffect();
  EXPECT_EQ(&r, &effect.cEffect);
  EXPECT_EQ(r.magic, 0x56737450);
  EXPECT_NE(r.dispatcher, nullptr);
  EXPECT_NE(r.process, nullptr);
  EXPECT_NE(r.setParameter, nullptr);
  EXPECT_NE(r.getParameter, nullptr);
  EXPECT_NE(r.processReplacing, nullptr);
  EXPECT_NE(r.processDoubleReplacing, nullptr);
  EXPECT_EQ(r.numPrograms, 16);
  EXPECT_EQ(r.numParams, 6);
  EXPECT_EQ(r.numInputs, 1);
  EXPECT_EQ(r.numOutputs, 2);
  EXPECT_EQ(r.flags, effFlagsCanReplacing);
  EXPECT_EQ(r.resvd1, 0);
  EXPECT_EQ(r.resvd2, 0);
  EXPECT_EQ(r.initialDelay, 0);
  EXPECT_EQ(r.realQualities, 0);
  EXPECT_EQ(r.offQualities, 0);
  EXPECT_EQ(r.ioRatio, 1.0f);
  EXPECT_EQ(r.object, static_cast<AudioEffect*>(&effect));
  EXPECT_EQ(r.user, nullptr);
  EXPECT_EQ(r.uniqueID, 0x4E6F4566);
  EXPECT_EQ(r.version, 1);
  for (char c : r.future) EXPECT_EQ(c, 0);
  EXPECT_EQ(effect.getSampleRate(), 44100.0f);
  EXPECT_EQ(effect.getBlockSize(), 1024);
  EXPECT_EQ(effect.getProgram(), 0);
  EXPECT_EQ(effect.getEditor(), nullptr);
}

TEST(Record, ProcessAndParameterFunctionsReachTheInstance) {
  struct Probe : PlainEffect {
    int replacing = 0, doubles = 0, deprecated = 0;
    float stored = 0.0f;
    void processReplacing(float**, float**, VstInt32 n) noexcept override { replacing += n; }
    void processDoubleReplacing(double**, double**, VstInt32 n) noexcept override { doubles += n; }
    void __processDeprecated(float**, float**, VstInt32 n) noexcept override { deprecated += n; }
    void setParameter(VstInt32 i, float v) override { stored = i + v; }
    float getParameter(VstInt32 i) override { return stored * i; }
  } effect;
  AEffect* e = effect.getAeffect();
  e->processReplacing(e, nullptr, nullptr, 1);
  e->processDoubleReplacing(e, nullptr, nullptr, 2);
  e->process(e, nullptr, nullptr, 3);
  e->setParameter(e, 2, 0.5f);
  EXPECT_EQ(e->getParameter(e, 2), 5.0f);
  EXPECT_EQ(effect.replacing, 1);
  EXPECT_EQ(effect.doubles, 2);
  EXPECT_EQ(effect.deprecated, 3);
}

struct FlagSetter {
  const char* name;
  void (*set)(PlainEffect&, bool);
  VstInt32 bit;
};

// setEditor takes ownership; the test editor is a static object the effect must not delete, so
// it is detached again at the end.
AEffEditor gEditor;

const FlagSetter kFlagSetters[] = {
    {"setEditor", [](PlainEffect& e, bool on) { e.setEditor(on ? &gEditor : nullptr); },
     effFlagsHasEditor},
    {"__hasClip", [](PlainEffect& e, bool on) { e.__hasClipDeprecated(on); }, effFlagsHasClip},
    {"__hasVu", [](PlainEffect& e, bool on) { e.__hasVuDeprecated(on); }, effFlagsHasVu},
    {"__canMono", [](PlainEffect& e, bool on) { e.__canMonoDeprecated(on); }, effFlagsCanMono},
    {"canProcessReplacing", [](PlainEffect& e, bool on) { e.canProcessReplacing(on); },
     effFlagsCanReplacing},
    {"programsAreChunks", [](PlainEffect& e, bool on) { e.programsAreChunks(on); },
     effFlagsProgramChunks},
    {"isSynth", [](PlainEffect& e, bool on) { e.isSynth(on); }, effFlagsIsSynth},
    {"noTail", [](PlainEffect& e, bool on) { e.noTail(on); }, effFlagsNoSoundInStop},
    {"__wantAsyncOperation", [](PlainEffect& e, bool on) { e.__wantAsyncOperationDeprecated(on); },
     effFlagsExtIsAsync},
    {"__hasExternalBuffer", [](PlainEffect& e, bool on) { e.__hasExternalBufferDeprecated(on); },
     effFlagsExtHasBuffer},
    {"canDoubleReplacing", [](PlainEffect& e, bool on) { e.canDoubleReplacing(on); },
     effFlagsCanDoubleReplacing},
};

TEST(Flags, EachSetterChangesOnlyItsOwnBit) {
  for (const FlagSetter& s : kFlagSetters) {
    for (VstInt32 before : {VstInt32{0}, VstInt32{~0}, VstInt32{0x5A5A5A5A}}) {
      PlainEffect effect;
      effect.cEffect.flags = before;
      s.set(effect, true);
      EXPECT_EQ(effect.cEffect.flags, before | s.bit) << s.name;
      s.set(effect, false);
      EXPECT_EQ(effect.cEffect.flags, before & ~s.bit) << s.name;
    }
  }
}

TEST(Flags, PlugCategoryFollowsTheSynthFlag) {
  PlainEffect effect;
  AEffect* e = effect.getAeffect();
  EXPECT_EQ(e->dispatcher(e, effGetPlugCategory, 0, 0, nullptr, 0.0f), kPlugCategUnknown);
  effect.isSynth(true);
  EXPECT_EQ(e->dispatcher(e, effGetPlugCategory, 0, 0, nullptr, 0.0f), kPlugCategSynth);
}

TEST(Record, SettersWriteTheRecordOrTheFields) {
  PlainEffect effect;
  effect.setUniqueID(fourCharCode('0', '0', '1', 'B'));
  effect.setNumInputs(3);
  effect.setNumOutputs(4);
  effect.setInitialDelay(5);
  effect.__setRealtimeQualitiesDeprecated(6);
  effect.__setOfflineQualitiesDeprecated(7);
  effect.__setBlockSizeAndSampleRateDeprecated(64, 22050.0f);
  effect.setSampleRate(96000.0f);
  const AEffect& r = effect.cEffect;
  EXPECT_EQ(r.uniqueID, 0x30303142);
  EXPECT_EQ(r.numInputs, 3);
  EXPECT_EQ(r.numOutputs, 4);
  EXPECT_EQ(r.initialDelay, 5);
  EXPECT_EQ(r.realQualities, 6);
  EXPECT_EQ(r.offQualities, 7);
  EXPECT_EQ(effect.getBlockSize(), 64);
  EXPECT_EQ(effect.getSampleRate(), 96000.0f);
}

}  // namespace
