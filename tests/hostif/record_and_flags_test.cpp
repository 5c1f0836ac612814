// The AEffect record a new effect hands the host, the operations that change it, and the record's
// process and parameter functions reaching the instance.

#include <gtest/gtest.h>

#include <algorithm>

#include "test_support.h"

namespace {

TEST(Record, NewEffectFillsTheRecordAndZeroesTheRest) {
  PlainEffect fx(nullptr, 16);
  const AEffect& r = *fx.getAeffect();
  EXPECT_EQ(&r, &fx.cEffect);
  EXPECT_EQ(r.magic, 0x56737450);
  EXPECT_TRUE(r.dispatcher && r.process && r.setParameter && r.getParameter && r.processReplacing &&
              r.processDoubleReplacing);
  EXPECT_EQ(r.numPrograms, 16);
  EXPECT_EQ(r.numParams, 6);
  EXPECT_EQ(r.numInputs, 1);
  EXPECT_EQ(r.numOutputs, 2);
  EXPECT_EQ(r.flags, effFlagsCanReplacing);
  EXPECT_EQ(r.ioRatio, 1.0f);
  EXPECT_EQ(r.object, static_cast<AudioEffect*>(&fx));
  EXPECT_EQ(r.uniqueID, 0x4E6F4566);
  EXPECT_EQ(r.version, 1);
  EXPECT_TRUE(r.resvd1 == 0 && r.resvd2 == 0 && r.initialDelay == 0 && r.realQualities == 0 &&
              r.offQualities == 0 && r.user == nullptr);
  EXPECT_EQ(std::count(std::begin(r.future), std::end(r.future), 0), 56);
  EXPECT_EQ(fx.getSampleRate(), 44100.0f);
  EXPECT_EQ(fx.getBlockSize(), 1024);
  EXPECT_EQ(fx.getProgram(), 0);
  EXPECT_EQ(fx.getEditor(), nullptr);
}

TEST(Record, SettersWriteTheRecordOrTheFields) {
  PlainEffect fx;
  fx.setUniqueID(fourCharCode('0', '0', '1', 'B'));
  fx.setNumInputs(3);
  fx.setNumOutputs(4);
  fx.setInitialDelay(5);
  fx.__setRealtimeQualitiesDeprecated(6);
  fx.__setOfflineQualitiesDeprecated(7);
  fx.__setBlockSizeAndSampleRateDeprecated(64, 22050.0f);
  EXPECT_EQ(fx.getSampleRate(), 22050.0f);
  fx.setSampleRate(96000.0f);
  const AEffect& r = fx.cEffect;
  EXPECT_EQ(r.uniqueID, 0x30303142);
  EXPECT_TRUE(r.numInputs == 3 && r.numOutputs == 4 && r.initialDelay == 5);
  EXPECT_TRUE(r.realQualities == 6 && r.offQualities == 7);
  EXPECT_EQ(fx.getBlockSize(), 64);
  EXPECT_EQ(fx.getSampleRate(), 96000.0f);
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
  } fx;
  AEffect* e = fx.getAeffect();
  e->processReplacing(e, nullptr, nullptr, 1);
  e->processDoubleReplacing(e, nullptr, nullptr, 2);
  e->process(e, nullptr, nullptr, 3);
  EXPECT_TRUE(fx.replacing == 1 && fx.doubles == 2 && fx.deprecated == 3);
  e->setParameter(e, 2, 0.5f);
  EXPECT_EQ(e->getParameter(e, 2), 5.0f);
  fx.setParameterAutomated(3, 0.25f);  // stored although no host is told
  EXPECT_EQ(fx.stored, 3.25f);
}

// setEditor takes ownership; this static editor is detached again before the effect ends.
AEffEditor gEditor;
using Setter = void (*)(PlainEffect&, bool);

TEST(Flags, EachSetterChangesOnlyItsOwnBit) {
  const std::pair<Setter, VstInt32> setters[] = {
      {[](PlainEffect& e, bool on) { e.setEditor(on ? &gEditor : nullptr); }, effFlagsHasEditor},
      {[](PlainEffect& e, bool on) { e.__hasClipDeprecated(on); }, effFlagsHasClip},
      {[](PlainEffect& e, bool on) { e.__hasVuDeprecated(on); }, effFlagsHasVu},
      {[](PlainEffect& e, bool on) { e.__canMonoDeprecated(on); }, effFlagsCanMono},
      {[](PlainEffect& e, bool on) { e.canProcessReplacing(on); }, effFlagsCanReplacing},
      {[](PlainEffect& e, bool on) { e.programsAreChunks(on); }, effFlagsProgramChunks},
      {[](PlainEffect& e, bool on) { e.isSynth(on); }, effFlagsIsSynth},
      {[](PlainEffect& e, bool on) { e.noTail(on); }, effFlagsNoSoundInStop},
      {[](PlainEffect& e, bool on) { e.__wantAsyncOperationDeprecated(on); }, effFlagsExtIsAsync},
      {[](PlainEffect& e, bool on) { e.__hasExternalBufferDeprecated(on); }, effFlagsExtHasBuffer},
      {[](PlainEffect& e, bool on) { e.canDoubleReplacing(on); }, effFlagsCanDoubleReplacing},
  };
  for (const auto& [set, bit] : setters) {
    for (VstInt32 before : {0, ~0, 0x5A5A5A5A}) {
      PlainEffect fx;
      fx.cEffect.flags = before;
      set(fx, true);
      EXPECT_EQ(fx.cEffect.flags, before | bit) << bit;
      set(fx, false);
      EXPECT_EQ(fx.cEffect.flags, before & ~bit) << bit;
    }
  }
}

}  // namespace
