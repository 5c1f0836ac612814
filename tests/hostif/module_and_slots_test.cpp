// The module description of Orv_TypeBase, and the vtable slot order a separately compiled module
// host relies on: slot numbers counted from the published order, not from the headers, must
// reach the right operations on a real object.

#include <gtest/gtest.h>

#include <cstring>

#include "test_support.h"

namespace {

TEST(ModuleDescription, DefaultsIgnoreTheJackAndTheHooksChangeNothing) {
  PlainEffect fx;
  for (VstInt32 jack : {-1, 0, 1, 100}) {
    EXPECT_EQ(fx.getNumOfInSig(jack), 2);
    EXPECT_EQ(fx.getNumOfOutSig(jack), 1);
    EXPECT_EQ(fx.getStartNumInSig(jack), 0);
    EXPECT_EQ(fx.getStartNumOutSig(jack), 0);
  }
  EXPECT_EQ(fx.getNumOfInJacks(), 1);
  EXPECT_EQ(fx.getNumOfOutJacks(), 1);
  EXPECT_EQ(fx.getDryInSigNum(), -1);

  const AEffect before = fx.cEffect;
  fx.setListner(static_cast<Orv_VstListner*>(kPtr));
  fx.setTime(12.5f);
  char text[16] = "untouched";
  fx.getParameterDisplayOf(1, 0.5f, text);
  EXPECT_STREQ(text, "untouched");
  EXPECT_EQ(std::memcmp(&before, &fx.cEffect, sizeof before), 0);
  EXPECT_EQ(fx.getHeaderVersion(), 1);
}

// Calls the operation in slot n of obj's vtable, as a host compiled elsewhere would. The
// destructor takes slots 0 and 1; AudioEffectX's operations start at 51, Orv_TypeBase's at 153.
template <typename R, typename... Args>
R callSlot(AudioEffect& obj, int n, Args... args) {
  void** vtable = *reinterpret_cast<void***>(&obj);
  return reinterpret_cast<R (*)(AudioEffect*, Args...)>(vtable[n])(&obj, args...);
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
  SlotProbe p;
  p.setSampleRate(48000.0f);
  EXPECT_EQ((callSlot<VstIntPtr, VstInt32, VstInt32, VstIntPtr, void*, float>(
                p, 2, effGetVstVersion, 0, 0, nullptr, 0.0f)),
            2400);                                         // dispatcher
  EXPECT_EQ((callSlot<float, VstInt32>(p, 12, 4)), 2.0f);  // getParameter
  EXPECT_EQ((callSlot<VstInt32>(p, 14)), 11);              // getProgram
  EXPECT_EQ((callSlot<AEffect*>(p, 31)), &p.cEffect);      // getAeffect
  EXPECT_EQ((callSlot<float>(p, 32)), 48000.0f);           // getSampleRate
  char text[16];
  callSlot<void, VstInt32, char*, VstInt32>(p, 43, 1050, text, 8);  // int2string
  EXPECT_STREQ(text, "1050");
  callSlot<void, VstInt32>(p, 50, 9);  // __setOfflineQualitiesDeprecated
  EXPECT_EQ(p.cEffect.offQualities, 9);

  EXPECT_TRUE((callSlot<bool, VstInt32>(p, 51, 3)));  // canParameterBeAutomated
  EXPECT_FALSE((callSlot<bool, VstInt32>(p, 51, 2)));
  EXPECT_EQ((callSlot<VstInt32>(p, 96)), 1000);                      // getVendorVersion
  EXPECT_EQ((callSlot<VstPlugCategory>(p, 100)), kPlugCategEffect);  // getPlugCategory
  EXPECT_EQ((callSlot<VstInt32, VstInt32, void*>(p, 102, 0, nullptr)),
            -1);                                        // getCurrentMidiProgram
  EXPECT_EQ((callSlot<VstInt32>(p, 129)), 1);           // __getNumCategoriesDeprecated
  EXPECT_FALSE((callSlot<bool, void*>(p, 152, kPtr)));  // __getChunkFileDeprecated

  EXPECT_EQ((callSlot<VstInt32>(p, 153)), 1);                 // getNumOfInJacks
  EXPECT_EQ((callSlot<VstInt32, VstInt32>(p, 155, 5)), 105);  // getNumOfInSig
  EXPECT_EQ((callSlot<VstInt32>(p, 159)), -7);                // getDryInSigNum
  EXPECT_EQ((callSlot<VstInt32>(p, 162)), 1);                 // getHeaderVersion
  callSlot<void, float>(p, 163, 1.5f);                        // setTime, the last slot
  EXPECT_EQ(p.time, 1.5f);
}

}  // namespace
