// The exported entry points, driven as a host drives them. This file defines the factory the
// entry points call (at its end), creating a counting test effect.

#include <gtest/gtest.h>

#include <stdexcept>
#include <vector>

#include "hostif/orv_typeif.h"
#include "test_support.h"

namespace {

struct Factory {
  int created = 0, destroyed = 0;
  bool throwInConstructor = false;
  int getAeffectCallsBeforeThrow = -1;  // -1: never throws
  AEffect* last = nullptr;
} gFactory;

struct EntryEffect : PlainEffect {
  explicit EntryEffect(audioMasterCallback host) : PlainEffect(host) {
    if (gFactory.throwInConstructor) throw std::runtime_error("no effect today");
    ++gFactory.created;
    gFactory.last = &cEffect;
  }
  ~EntryEffect() override { ++gFactory.destroyed; }
  AEffect* getAeffect() override {
    if (gFactory.getAeffectCallsBeforeThrow-- == 0) throw 1;
    return &cEffect;
  }
};

class EntryPoints : public ::testing::TestWithParam<Orv_TypeIF* (*)(audioMasterCallback)> {
 protected:
  void SetUp() override {
    gFactory = Factory{}, gHost.clear(), gHost.answers[audioMasterVersion] = 2400;
  }
  Orv_TypeIF* enter() { return GetParam()(recordingHost); }
};

TEST_P(EntryPoints, OnlyVersionZeroRefusesAndEachInstanceOutlivesItsHandleUntilEffClose) {
  std::vector<AEffect*> effects;
  for (VstIntPtr version : {0, 1, 2, 2400}) {
    gHost.clear();
    gHost.answers[audioMasterVersion] = version;
    Orv_TypeIF* handle = enter();
    EXPECT_EQ(gHost.calls.at(0), (HostCall{nullptr, audioMasterVersion, 0, 0, nullptr, 0.0f}));
    ASSERT_EQ(handle != nullptr, version != 0) << version;
    if (!handle) continue;
    EXPECT_EQ(handle->aeffect, gFactory.last);
    effects.push_back(handle->aeffect);
    delete handle;
  }
  EXPECT_EQ(GetParam()(nullptr), nullptr) << "no callback is a refusal";
  ASSERT_EQ(effects.size(), 3u);
  EXPECT_TRUE(effects[0] != effects[1] && effects[0]->object != effects[1]->object);
  EXPECT_EQ(gFactory.destroyed, 0);
  send(effects[0], effSetProgram, 0, 3);
  EXPECT_EQ(send(effects[0], effGetProgram), 3);
  for (AEffect* e : effects) EXPECT_EQ(send(e, effClose), 1);
  EXPECT_TRUE(gFactory.created == 3 && gFactory.destroyed == 3);
}

TEST_P(EntryPoints, ExceptionsWhileCreatingGiveNoEffectButFillingTheHandlePropagates) {
  gFactory.throwInConstructor = true;
  EXPECT_EQ(enter(), nullptr);
  gFactory.throwInConstructor = false;
  gFactory.getAeffectCallsBeforeThrow = 0;  // the factory's record request throws
  EXPECT_EQ(enter(), nullptr);
  send(gFactory.last, effClose);
  auto throwingHost = +[](AEffect*, VstInt32, VstInt32, VstIntPtr, void*, float) -> VstIntPtr {
    throw std::logic_error("host fails");
  };
  EXPECT_EQ(GetParam()(throwingHost), nullptr);
  gFactory.getAeffectCallsBeforeThrow = 1;  // the factory's succeeds, the handle's throws
  EXPECT_THROW(enter(), int);
  send(gFactory.last, effClose);
  EXPECT_TRUE(gFactory.created == 2 && gFactory.destroyed == 2);
}

INSTANTIATE_TEST_SUITE_P(BothNames, EntryPoints, ::testing::Values(&getinterface, &OrvTypeIF));

}  // namespace

AudioEffect* createPluginFilter(audioMasterCallback audioMaster) {
  return new EntryEffect(audioMaster);
}
