// The exported entry points, driven as a host drives them. This file defines the factory the
// entry points call, creating a counting test effect.

#include <gtest/gtest.h>

#include <stdexcept>

#include "hostif/orv_typeif.h"
#include "test_support.h"

namespace {

struct EntryEffect;

struct Factory {
  int created = 0;
  int destroyed = 0;
  bool throwInConstructor = false;
  int getAeffectCallsBeforeThrow = -1;  // -1: never throws
  EntryEffect* last = nullptr;
} gFactory;

struct EntryEffect : PlainEffect {
  explicit EntryEffect(audioMasterCallback host) : PlainEffect(host) {
    if (gFactory.throwInConstructor) throw std::runtime_error("no effect today");
    ++gFactory.created;
  }
  ~EntryEffect() override { ++gFactory.destroyed; }
  AEffect* getAeffect() override {
    if (gFactory.getAeffectCallsBeforeThrow-- == 0) throw 1;
    return PlainEffect::getAeffect();
  }
};

class EntryPoints : public ::testing::TestWithParam<Orv_TypeIF* (*)(audioMasterCallback)> {
 protected:
  void SetUp() override {
    gFactory = Factory{};
    recorder().clear();
    recorder().answers[audioMasterVersion] = 2400;
  }
  Orv_TypeIF* enter() { return GetParam()(recordingHost); }
  static VstIntPtr close(AEffect* e) { return e->dispatcher(e, effClose, 0, 0, nullptr, 0.0f); }
};

}  // namespace

AudioEffect* createPluginFilter(audioMasterCallback audioMaster) {
  return gFactory.last = new EntryEffect(audioMaster);
}

namespace {

TEST_P(EntryPoints, AskTheHostVersionFirstWithNoEffect) {
  Orv_TypeIF* handle = enter();
  ASSERT_NE(handle, nullptr);
  ASSERT_GE(recorder().calls.size(), 1u);
  const HostCall& c = recorder().calls[0];
  EXPECT_EQ(c.effect, nullptr);
  EXPECT_EQ(c.opcode, audioMasterVersion);
  EXPECT_EQ(c.index, 0);
  EXPECT_EQ(c.value, 0);
  EXPECT_EQ(c.ptr, nullptr);
  EXPECT_EQ(c.opt, 0.0f);
  EXPECT_EQ(handle->aeffect, gFactory.last->getAeffect());
  EXPECT_EQ(handle->aeffect->magic, kEffectMagic);
  close(handle->aeffect);
  delete handle;
}

TEST_P(EntryPoints, OnlyVersionZeroRefuses) {
  for (VstIntPtr version : {0, 1, 2, 2400}) {
    recorder().answers[audioMasterVersion] = version;
    Orv_TypeIF* handle = enter();
    EXPECT_EQ(handle != nullptr, version != 0) << version;
    if (handle) {
      close(handle->aeffect);
      delete handle;
    }
  }
  EXPECT_EQ(gFactory.created, 3);
  EXPECT_EQ(gFactory.destroyed, 3);
}

TEST_P(EntryPoints, NoCallbackIsARefusal) {
  EXPECT_EQ(GetParam()(nullptr), nullptr);
  EXPECT_EQ(gFactory.created, 0);
}

TEST_P(EntryPoints, ExceptionsWhileCreatingGiveNoEffect) {
  gFactory.throwInConstructor = true;
  EXPECT_EQ(enter(), nullptr);
  gFactory.throwInConstructor = false;
  gFactory.getAeffectCallsBeforeThrow = 0;
  EXPECT_EQ(enter(), nullptr);
  close(gFactory.last->PlainEffect::getAeffect());

  auto throwingHost = +[](AEffect*, VstInt32, VstInt32, VstIntPtr, void*, float) -> VstIntPtr {
    throw std::logic_error("host fails");
  };
  EXPECT_EQ(GetParam()(throwingHost), nullptr);
}

TEST_P(EntryPoints, ExceptionWhileFillingTheHandlePropagates) {
  gFactory.getAeffectCallsBeforeThrow = 1;  // the factory's call succeeds, the handle's throws
  EXPECT_THROW(enter(), int);
  ASSERT_EQ(gFactory.created, 1);
  close(gFactory.last->PlainEffect::getAeffect());
}

TEST_P(EntryPoints, EachCallMakesItsOwnInstance) {
  Orv_TypeIF* a = enter();
  Orv_TypeIF* b = enter();
  ASSERT_TRUE(a && b);
  EXPECT_NE(a, b);
  EXPECT_NE(a->aeffect, b->aeffect);
  EXPECT_NE(a->aeffect->object, b->aeffect->object);
  EXPECT_EQ(gFactory.created, 2);
  close(a->aeffect);
  close(b->aeffect);
  delete a;
  delete b;
}

TEST_P(EntryPoints, DeletingTheHandleLeavesTheEffectToEffClose) {
  Orv_TypeIF* handle = enter();
  ASSERT_NE(handle, nullptr);
  AEffect* e = handle->aeffect;
  delete handle;
  EXPECT_EQ(gFactory.destroyed, 0);
  EXPECT_EQ(e->dispatcher(e, effGetVstVersion, 0, 0, nullptr, 0.0f), 2400);
  e->dispatcher(e, effSetProgram, 0, 3, nullptr, 0.0f);
  EXPECT_EQ(e->dispatcher(e, effGetProgram, 0, 0, nullptr, 0.0f), 3);
  EXPECT_EQ(close(e), 1);
  EXPECT_EQ(gFactory.destroyed, 1);
}

INSTANTIATE_TEST_SUITE_P(BothNames, EntryPoints, ::testing::Values(&getinterface, &OrvTypeIF),
                         [](const auto& info) {
                           return info.param == &getinterface ? "getinterface" : "OrvTypeIF";
                         });

}  // namespace
