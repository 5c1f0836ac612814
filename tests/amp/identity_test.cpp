// What a host reads from a fresh instance through the record: identity, counts, flags, module
// description, and the two entry points.
#include <gtest/gtest.h>

#include <cstring>

#include "loaded_plugin.h"

namespace amp_test {
namespace {

TEST(Identity, RecordAnnouncesAMonoDoublePrecisionEffect) {
  LoadedPlugin plugin;
  const AEffect* e = plugin.effect();
  ASSERT_NE(e, nullptr);
  EXPECT_EQ(e->magic, kEffectMagic);
  EXPECT_EQ(e->uniqueID, 0x42313030);
  EXPECT_EQ(std::memcmp(&e->uniqueID, "001B", 4), 0);
  EXPECT_EQ(e->numInputs, 1);
  EXPECT_EQ(e->numOutputs, 1);
  EXPECT_EQ(e->numPrograms, 16);
  EXPECT_EQ(e->numParams, 6);
  EXPECT_EQ(e->flags, effFlagsCanReplacing | effFlagsCanDoubleReplacing);
}

TEST(Identity, NamesVersionAndCategory) {
  LoadedPlugin plugin;
  char text[kVstMaxProductStrLen + 1];
  std::memset(text, 'x', sizeof text);
  EXPECT_EQ(plugin.dispatch(effGetEffectName, 0, 0, text), 1);
  EXPECT_STREQ(text, "NEW Tarnwell");
  std::memset(text, 'x', sizeof text);
  EXPECT_EQ(plugin.dispatch(effGetProductString, 0, 0, text), 1);
  EXPECT_STREQ(text, "NEW Tarnwell");
  std::memset(text, 'x', sizeof text);
  EXPECT_EQ(plugin.dispatch(effGetVendorString, 0, 0, text), 0);
  EXPECT_EQ(text[0], 'x');
  EXPECT_EQ(plugin.dispatch(effGetVendorVersion), 1000);
  EXPECT_EQ(plugin.dispatch(effGetPlugCategory), kPlugCategEffect);
  EXPECT_EQ(plugin.dispatch(effGetProgram), 0);
}

TEST(Identity, ModuleDescriptionIsOneMonoJackEachWayForAnyJack) {
  LoadedPlugin plugin;
  Orv_TypeBase* module = plugin.module();
  EXPECT_EQ(module->getNumOfInJacks(), 1);
  EXPECT_EQ(module->getNumOfOutJacks(), 1);
  for (const VstInt32 jack : {-1, 0, 1, 100}) {
    EXPECT_EQ(module->getNumOfInSig(jack), 1);
    EXPECT_EQ(module->getNumOfOutSig(jack), 1);
    EXPECT_EQ(module->getStartNumInSig(jack), 0);
    EXPECT_EQ(module->getStartNumOutSig(jack), 0);
  }
  EXPECT_EQ(module->getDryInSigNum(), -1);
  EXPECT_EQ(module->getHeaderVersion(), 1);
}

TEST(Identity, BothEntryPointsMakeSeparateInstances) {
  LoadedPlugin first(entryPoint("getinterface"));
  LoadedPlugin second(entryPoint("OrvTypeIF"));
  ASSERT_NE(first.effect(), nullptr);
  ASSERT_NE(second.effect(), nullptr);
  EXPECT_NE(first.effect(), second.effect());
  EXPECT_EQ(second.effect()->uniqueID, first.effect()->uniqueID);
  first.setParameter(3, 0.9f);
  EXPECT_EQ(second.getParameter(3), 0.5f);
}

TEST(Identity, ClosingAnInstanceThatNeverSawARateIsClean) {
  // Only the program bank and the mutex exist; the sanitizer builds check nothing leaks.
  LoadedPlugin plugin;
  EXPECT_EQ(plugin.getParameter(1), 0.0f);
}

}  // namespace
}  // namespace amp_test
