// What a host compiled elsewhere sees of a plain effect: the record's fields, the module
// description, and the vtable slot order (slot numbers counted from the published order,
// not from the headers, must reach the right operations on a real object).

#include <gtest/gtest.h>

#include <algorithm>

#include "test_support.h"

namespace {

TEST(Record, NewEffectFillsTheRecordAndZeroesTheRest) {
  PlainEffect fx(nullptr, 16);
  const AEffect& r = *fx.getAeffect();
  EXPECT_EQ(&r, &fx.cEffect);
  EXPECT_TRUE(r.dispatcher && r.process && r.setParameter && r.getParameter && r.processReplacing &&
              r.processDoubleReplacing);
  EXPECT_TRUE(r.magic == 0x56737450 && r.numPrograms == 16 && r.numParams == 6);
  EXPECT_TRUE(r.numInputs == 1 && r.numOutputs == 2 && r.flags == effFlagsCanReplacing);
  EXPECT_TRUE(r.uniqueID == 0x4E6F4566 && r.version == 1 && r.ioRatio == 1.0f);
  EXPECT_EQ(r.object, static_cast<AudioEffect*>(&fx));
  EXPECT_TRUE(r.resvd1 == 0 && r.resvd2 == 0 && r.initialDelay == 0 && r.realQualities == 0 &&
              r.offQualities == 0 && r.user == nullptr);
  EXPECT_EQ(std::count(std::begin(r.future), std::end(r.future), 0), 56);
  EXPECT_TRUE(fx.getSampleRate() == 44100.0f && fx.getBlockSize() == 1024);
  EXPECT_TRUE(fx.getProgram() == 0 && fx.getEditor() == nullptr);
}

TEST(Record, EachFlagSetterSetsAndClearsOnlyItsOwnBit) {
  using Setter = void (*)(PlainEffect&, bool);
  const struct {
    VstInt32 bit;
    Setter set;
  } cases[] = {
      {effFlagsHasEditor,
       [](PlainEffect& e, bool on) {
         AEffEditor* old = e.getEditor();  // setEditor stores; the old editor is ours to delete
         e.setEditor(on ? new AEffEditor : nullptr);
         delete old;
       }},
      {effFlagsHasClip, [](PlainEffect& e, bool on) { e.__hasClipDeprecated(on); }},
      {effFlagsHasVu, [](PlainEffect& e, bool on) { e.__hasVuDeprecated(on); }},
      {effFlagsCanMono, [](PlainEffect& e, bool on) { e.__canMonoDeprecated(on); }},
      {effFlagsCanReplacing, [](PlainEffect& e, bool on) { e.canProcessReplacing(on); }},
      {effFlagsProgramChunks, [](PlainEffect& e, bool on) { e.programsAreChunks(on); }},
      {effFlagsIsSynth, [](PlainEffect& e, bool on) { e.isSynth(on); }},
      {effFlagsNoSoundInStop, [](PlainEffect& e, bool on) { e.noTail(on); }},
      {effFlagsExtIsAsync, [](PlainEffect& e, bool on) { e.__wantAsyncOperationDeprecated(on); }},
      {effFlagsExtHasBuffer, [](PlainEffect& e, bool on) { e.__hasExternalBufferDeprecated(on); }},
      {effFlagsCanDoubleReplacing, [](PlainEffect& e, bool on) { e.canDoubleReplacing(on); }},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.bit);
    for (VstInt32 others : {0, ~0}) {
      PlainEffect fx;
      fx.cEffect.flags = others & ~c.bit;
      c.set(fx, false);  // clearing a clear bit keeps it clear
      EXPECT_EQ(fx.cEffect.flags, others & ~c.bit);
      c.set(fx, true);
      EXPECT_EQ(fx.cEffect.flags, others | c.bit);
      c.set(fx, false);
      EXPECT_EQ(fx.cEffect.flags, others & ~c.bit);
    }
  }
}

// Calls the operation in slot n of obj's vtable, as a host compiled elsewhere would. The
// destructor takes slots 0 and 1; AudioEffectX's operations start at 51, Orv_TypeBase's at 153.
template <typename R, typename... Args>
R callSlot(AudioEffect& obj, int n, Args... args) {
  void** vtable = *reinterpret_cast<void***>(&obj);
  return reinterpret_cast<R (*)(AudioEffect*, Args...)>(vtable[n])(&obj, args...);
}
using I = VstInt32;

TEST(SlotOrder, ModuleDescriptionDefaultsInTheirSlotsIgnoreTheJackAndChangeNothing) {
  PlainEffect fx;
  EXPECT_TRUE(callSlot<I>(fx, 153) == 1 && callSlot<I>(fx, 154) == 1);  // in and out jacks
  for (I jack : {-1, 0, 1, 100}) {
    EXPECT_EQ((callSlot<I, I>(fx, 155, jack)), 2);  // getNumOfInSig
    EXPECT_EQ((callSlot<I, I>(fx, 156, jack)), 1);  // getNumOfOutSig
    EXPECT_TRUE((callSlot<I, I>(fx, 157, jack)) == 0 && (callSlot<I, I>(fx, 158, jack)) == 0);
  }
  EXPECT_EQ(callSlot<I>(fx, 159), -1);   // getDryInSigNum
  callSlot<void, void*>(fx, 160, kPtr);  // setListner
  char text[16] = "untouched";
  callSlot<void, I, float, char*>(fx, 161, 1, 0.5f, text);  // getParameterDisplayOf
  EXPECT_STREQ(text, "untouched");
  EXPECT_EQ(callSlot<I>(fx, 162), 1);     // getHeaderVersion
  callSlot<void, float>(fx, 163, 12.5f);  // setTime, the last
}

TEST(SlotOrder, EffectAndExtensionOperationsInTheirSlots) {
  struct Probe : PlainEffect {  // distinct answers, so a call one slot off gives a wrong one
    float getParameter(I index) override { return 0.5f * index; }
    bool canParameterBeAutomated(I index) override { return index == 3; }
  } p;
  EXPECT_EQ((callSlot<VstIntPtr, I, I, VstIntPtr, void*, float>(p, 2, 58, 0, 0, nullptr, 0.0f)),
            2400);                                  // dispatcher, effGetVstVersion
  EXPECT_EQ((callSlot<float, I>(p, 12, 4)), 2.0f);  // getParameter
  char text[16];
  callSlot<void, I, char*, I>(p, 43, 1050, text, 8);  // int2string
  EXPECT_STREQ(text, "1050");
  callSlot<void, I>(p, 50, 9);  // __setOfflineQualitiesDeprecated, AudioEffect's last
  EXPECT_EQ(p.cEffect.offQualities, 9);
  EXPECT_TRUE((callSlot<bool, I>(p, 51, 3)) && !(callSlot<bool, I>(p, 51, 2)));  // canBeAutomated
  EXPECT_EQ((callSlot<I, I, void*>(p, 102, 0, nullptr)), -1);  // getCurrentMidiProgram
  EXPECT_FALSE((callSlot<bool, void*>(p, 152, kPtr)));         // __getChunkFileDeprecated
}

}  // namespace
