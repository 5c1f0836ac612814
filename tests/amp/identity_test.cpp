// What a host reads from a fresh instance (record, texts, module description); the entry points.
#include <gtest/gtest.h>

#include "loaded_plugin.h"

TEST(Identity, AnnouncesTheMonoDoublePrecisionEffectNEWTarnwell) {
  LoadedPlugin plugin;
  const AEffect* e = plugin.effect();
  ASSERT_NE(e, nullptr);
  EXPECT_EQ(e->magic, kEffectMagic);
  EXPECT_EQ(std::memcmp(&e->uniqueID, "001B", 4), 0);
  EXPECT_EQ(e->numInputs, 1);
  EXPECT_EQ(e->numOutputs, 1);
  EXPECT_EQ(e->numPrograms, 16);
  EXPECT_EQ(e->numParams, 6);
  EXPECT_EQ(e->flags, effFlagsCanReplacing | effFlagsCanDoubleReplacing);
  VstIntPtr result = 0;
  EXPECT_EQ(plugin.text(effGetEffectName, 0, &result), "NEW Tarnwell");
  EXPECT_EQ(result, 1);
  EXPECT_EQ(plugin.text(effGetProductString, 0, &result), "NEW Tarnwell");
  EXPECT_EQ(result, 1);
  EXPECT_EQ(plugin.text(effGetVendorString, 0, &result), std::string(64, 'x'));
  EXPECT_EQ(result, 0);
  EXPECT_EQ(plugin.dispatch(effGetVendorVersion), 1000);
  EXPECT_EQ(plugin.dispatch(effGetPlugCategory), kPlugCategEffect);
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
  LoadedPlugin first(entryPoint("getinterface")), second(entryPoint("OrvTypeIF"));
  ASSERT_TRUE(first.effect() && second.effect() && first.effect() != second.effect());
  EXPECT_EQ(second.effect()->uniqueID, first.effect()->uniqueID);
  first.setParameter(3, 0.9f);
  EXPECT_EQ(second.getParameter(3), 0.5f);
}
