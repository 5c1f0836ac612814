// What a host reads from a fresh instance beyond the command's info (the vendor it leaves
// unanswered, the module description for any jack), and the entry points.
#include <gtest/gtest.h>

#include "loaded_plugin.h"

TEST(Identity, AnswersNoVendorAndEachModuleQueryWhateverTheJack) {
  LoadedPlugin plugin;
  const AEffect& e = *plugin.effect();
  EXPECT_TRUE(e.magic == kEffectMagic && e.numPrograms == 16 && e.numParams == 6);
  VstIntPtr result = 1;
  EXPECT_EQ(plugin.text(effGetVendorString, 0, &result), std::string(64, 'x'));
  EXPECT_EQ(result, 0);
  Orv_TypeBase* module = plugin.module();
  for (const VstInt32 jack : {-1, 0, 1, 100}) {
    EXPECT_TRUE(module->getNumOfInSig(jack) == 1 && module->getNumOfOutSig(jack) == 1) << jack;
    EXPECT_TRUE(module->getStartNumInSig(jack) == 0 && module->getStartNumOutSig(jack) == 0);
  }
}

TEST(Identity, BothEntryPointsMakeSeparateInstances) {
  LoadedPlugin first(entryPoint("getinterface")), second(entryPoint("OrvTypeIF"));
  ASSERT_TRUE(first.effect() && second.effect() && first.effect() != second.effect());
  EXPECT_EQ(second.effect()->uniqueID, first.effect()->uniqueID);
  first.setParameter(3, 0.9f);
  EXPECT_EQ(second.getParameter(3), 0.5f);
}
