// The six parameters through the record (stores, reads, texts, properties) and the bank of sixteen
// programs that hold their values (selection, names).
#include <gtest/gtest.h>

#include "loaded_plugin.h"

TEST(Parameters, TextsAndStores) {
  LoadedPlugin plugin;
  const char* names[] = {"DEEP", "VOLUME", "TREBLE", "BASS", "MASTER"};
  for (int i = 1; i <= 5; ++i) {
    EXPECT_EQ(plugin.text(effGetParamName, i), names[i - 1]);
    EXPECT_EQ(plugin.text(effGetParamLabel, i), "");
  }
  // Unknown indices store nothing, read 0 and leave text buffers untouched.
  for (const VstInt32 index : {0, 6, -1}) {
    plugin.setParameter(index, 0.7f);
    EXPECT_EQ(plugin.getParameter(index), 0.0f);
    for (const VstInt32 opcode : {effGetParamName, effGetParamLabel, effGetParamDisplay}) {
      EXPECT_EQ(plugin.text(opcode, index), std::string(64, 'x')) << opcode;
    }
    char probe[kVstMaxParamStrLen + 1] = "untouch";
    plugin.module()->getParameterDisplayOf(index, 0.5f, probe);
    EXPECT_STREQ(probe, "untouch");
  }
  // Knobs display 1 to 10 and store without clamping; DEEP is on only at exactly 1.
  const struct {
    VstInt32 index;
    float value;
    const char* display;
  } cases[] = {{2, 0.25f, " 3.25"}, {3, 0.0f, " 1.00"}, {4, 1.0f, " 10.00"}, {5, 0.5f, " 5.50"},
               {2, 2.0f, " 19.00"}, {1, 1.0f, "on"},    {1, 0.0f, "off"},    {1, 0.5f, "off"}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.display);
    plugin.setParameter(c.index, c.value);
    EXPECT_EQ(plugin.getParameter(c.index), c.value);
    EXPECT_EQ(plugin.text(effGetParamDisplay, c.index), c.display);
    char of[kVstMaxParamStrLen + 1];
    plugin.module()->getParameterDisplayOf(c.index, c.value, of);
    EXPECT_STREQ(of, c.display);
  }
  char field[kVstMaxParamStrLen + 1] = "xxxxxxxx";
  plugin.dispatch(effGetParamDisplay, 1, 0, field);
  EXPECT_EQ(std::memcmp(field, "off\0\0\0\0\0", 8), 0);  // zeros across the whole field
}

TEST(Parameters, PropertiesFillOnlyTheRecord) {
  LoadedPlugin plugin;
  unsigned char space[sizeof(VstParameterProperties) + 8];  // room to show a write past the record
  const auto properties = [&](VstInt32 index) {
    std::memset(space, 0x5a, sizeof space);
    return plugin.dispatch(effGetParameterProperties, index, 0, space);
  };
  for (VstInt32 index = 0; index <= 5; ++index) {
    VstParameterProperties expected{};  // every other field cleared; index 0 answers false
    expected.flags = index == 1  ? kVstParameterIsSwitch
                     : index > 1 ? kVstParameterUsesFloatStep
                                 : 0;
    expected.stepFloat = index > 1 ? 0.01f : 0.0f;
    EXPECT_EQ(properties(index), index == 0 ? 0 : 1) << index;
    EXPECT_EQ(std::memcmp(space, &expected, sizeof expected), 0) << index;
    for (std::size_t i = sizeof expected; i < sizeof space; ++i) EXPECT_EQ(space[i], 0x5a) << index;
  }
  EXPECT_EQ(properties(6), 0);  // untouched
  EXPECT_EQ(space[0], 0x5a);
  EXPECT_EQ(plugin.dispatch(effGetParameterProperties, 2, 0, nullptr), 0);
}

TEST(Programs, NamesAreNumberedOnlyForTheCurrentUnnamedProgram) {
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
  // Names are stored cut to 23 characters, and renumbered only when exactly "Init".
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
  EXPECT_EQ(plugin.getParameter(2), 0.3f);
  plugin.setProgram(16);  // out of range: the current program stays
  plugin.setProgram(-1);
  EXPECT_EQ(plugin.dispatch(effGetProgram), 1);
}
