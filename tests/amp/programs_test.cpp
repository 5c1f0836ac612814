// The bank of sixteen programs: selection, values written into the current program, names.
#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "loaded_plugin.h"

namespace amp_test {
namespace {

std::string programName(LoadedPlugin& plugin) {
  char name[kVstMaxProgNameLen + 1] = {};
  plugin.dispatch(effGetProgramName, 0, 0, name);
  return name;
}

std::string indexedName(LoadedPlugin& plugin, VstInt32 index, VstIntPtr* result = nullptr) {
  char name[kVstMaxProgNameLen + 1];
  std::memset(name, 'x', sizeof name);
  name[kVstMaxProgNameLen] = 0;
  const VstIntPtr r = plugin.dispatch(effGetProgramNameIndexed, index, 0, name);
  if (result != nullptr) *result = r;
  return name;
}

void rename(LoadedPlugin& plugin, const char* name) {
  char buffer[64] = {};
  std::strncpy(buffer, name, sizeof buffer - 1);
  plugin.dispatch(effSetProgramName, 0, 0, buffer);
}

TEST(Programs, UnnamedProgramsAreNumberedOnlyForTheCurrentOne) {
  LoadedPlugin plugin;
  EXPECT_EQ(programName(plugin), "Init 1");
  plugin.setProgram(3);
  EXPECT_EQ(plugin.dispatch(effGetProgram), 3);
  EXPECT_EQ(programName(plugin), "Init 4");
  plugin.setProgram(15);
  EXPECT_EQ(programName(plugin), "Init 16");
  VstIntPtr result = 0;
  EXPECT_EQ(indexedName(plugin, 3, &result), "Init");
  EXPECT_EQ(result, 1);
}

TEST(Programs, IndexedNameOutOfRangeLeavesTheBufferUntouched) {
  LoadedPlugin plugin;
  for (const VstInt32 index : {16, -1}) {
    VstIntPtr result = 1;
    EXPECT_EQ(indexedName(plugin, index, &result), std::string(kVstMaxProgNameLen, 'x'));
    EXPECT_EQ(result, 0);
  }
}

TEST(Programs, NamesAreStoredCutTo23CharactersAndRenumberedOnlyForExactlyInit) {
  LoadedPlugin plugin;
  plugin.setProgram(2);
  rename(plugin, "Growl");
  EXPECT_EQ(programName(plugin), "Growl");
  EXPECT_EQ(indexedName(plugin, 2), "Growl");
  rename(plugin, "A name far longer than twenty-three");
  EXPECT_EQ(programName(plugin), "A name far longer than ");
  plugin.setProgram(5);
  for (const char* kept : {"init", "Init ", "Init2"}) {
    rename(plugin, kept);
    EXPECT_EQ(programName(plugin), kept);
  }
  rename(plugin, "Init");
  EXPECT_EQ(programName(plugin), "Init 6");
}

TEST(Programs, ParameterChangesAreWrittenIntoTheCurrentProgram) {
  LoadedPlugin plugin;
  plugin.setParameter(3, 0.8f);
  plugin.setParameter(1, 1.0f);
  plugin.setProgram(1);
  const float defaults[] = {0.0f, 0.0f, 0.5f, 0.5f, 0.5f, 0.5f};
  for (int i = 1; i <= 5; ++i) EXPECT_EQ(plugin.getParameter(i), defaults[i]) << "index " << i;
  plugin.setParameter(2, 0.3f);
  plugin.setProgram(0);
  EXPECT_EQ(plugin.getParameter(3), 0.8f);
  EXPECT_EQ(plugin.getParameter(1), 1.0f);
  EXPECT_EQ(plugin.getParameter(2), 0.5f);
  plugin.setProgram(1);
  EXPECT_EQ(plugin.getParameter(2), 0.3f);
  plugin.setProgram(1);  // selecting the current program again changes nothing
  EXPECT_EQ(plugin.getParameter(2), 0.3f);
}

TEST(Programs, HostRangeCheckKeepsTheCurrentProgram) {
  LoadedPlugin plugin;
  plugin.setProgram(4);
  plugin.setProgram(16);
  plugin.setProgram(-1);
  EXPECT_EQ(plugin.dispatch(effGetProgram), 4);
}

}  // namespace
}  // namespace amp_test
