// The bank of sixteen programs: selection, values written into the current program, names.
#include <gtest/gtest.h>

#include "loaded_plugin.h"

TEST(Programs, UnnamedProgramsAreNumberedOnlyForTheCurrentOne) {
  LoadedPlugin plugin;
  EXPECT_EQ(plugin.text(effGetProgramName), "Init 1");
  plugin.setProgram(3);
  EXPECT_EQ(plugin.dispatch(effGetProgram), 3);
  EXPECT_EQ(plugin.text(effGetProgramName), "Init 4");
  plugin.setProgram(15);
  EXPECT_EQ(plugin.text(effGetProgramName), "Init 16");
  VstIntPtr result = 0;
  EXPECT_EQ(plugin.text(effGetProgramNameIndexed, 3, &result), "Init");
  EXPECT_EQ(result, 1);
  for (const VstInt32 index : {16, -1}) {  // out of range: untouched
    EXPECT_EQ(plugin.text(effGetProgramNameIndexed, index, &result), std::string(64, 'x'));
    EXPECT_EQ(result, 0);
  }
}

TEST(Programs, NamesAreStoredCutTo23CharactersAndRenumberedOnlyForExactlyInit) {
  LoadedPlugin plugin;
  const auto setName = [&](std::string name) {
    plugin.dispatch(effSetProgramName, 0, 0, name.data());
  };
  plugin.setProgram(2);
  setName("Growl");
  EXPECT_EQ(plugin.text(effGetProgramName), "Growl");
  EXPECT_EQ(plugin.text(effGetProgramNameIndexed, 2), "Growl");
  setName("A name far longer than twenty-three");
  EXPECT_EQ(plugin.text(effGetProgramName), "A name far longer than ");
  plugin.setProgram(5);
  for (const char* kept : {"init", "Init ", "Init2"}) {
    setName(kept);
    EXPECT_EQ(plugin.text(effGetProgramName), kept);
  }
  setName("Init");
  EXPECT_EQ(plugin.text(effGetProgramName), "Init 6");
}

TEST(Programs, ParameterChangesAreWrittenIntoTheCurrentProgram) {
  LoadedPlugin plugin;
  const float defaults[] = {0.0f, 0.0f, 0.5f, 0.5f, 0.5f, 0.5f};
  for (int i = 0; i <= 5; ++i) EXPECT_EQ(plugin.getParameter(i), defaults[i]) << i;
  plugin.setParameter(3, 0.8f);
  plugin.setParameter(1, 1.0f);
  plugin.setProgram(1);
  for (int i = 1; i <= 5; ++i) EXPECT_EQ(plugin.getParameter(i), defaults[i]) << i;
  plugin.setParameter(2, 0.3f);
  plugin.setProgram(0);
  EXPECT_EQ(plugin.getParameter(3), 0.8f);
  EXPECT_EQ(plugin.getParameter(1), 1.0f);
  EXPECT_EQ(plugin.getParameter(2), 0.5f);
  plugin.setProgram(1);
  plugin.setProgram(1);  // selecting the current program again changes nothing
  EXPECT_EQ(plugin.getParameter(2), 0.3f);
  plugin.setProgram(16);  // out of range: the current program stays
  plugin.setProgram(-1);
  EXPECT_EQ(plugin.dispatch(effGetProgram), 1);
}
