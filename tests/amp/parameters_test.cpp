// The six parameters through the record: stores, reads, texts and properties.
#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "loaded_plugin.h"

namespace amp_test {
namespace {

std::string text(LoadedPlugin& plugin, VstInt32 opcode, VstInt32 index) {
  char buffer[kVstMaxParamStrLen + 1];
  std::memset(buffer, 'x', sizeof buffer);
  plugin.dispatch(opcode, index, 0, buffer);
  return std::string(buffer, strnlen(buffer, sizeof buffer));
}

TEST(Parameters, FreshInstanceHoldsProgramZero) {
  LoadedPlugin plugin;
  const float expected[] = {0.0f, 0.0f, 0.5f, 0.5f, 0.5f, 0.5f};
  for (int i = 0; i < 6; ++i) EXPECT_EQ(plugin.getParameter(i), expected[i]) << "index " << i;
}

TEST(Parameters, NamesAndEmptyLabels) {
  LoadedPlugin plugin;
  const char* names[] = {"DEEP", "VOLUME", "TREBLE", "BASS", "MASTER"};
  for (int i = 1; i <= 5; ++i) {
    EXPECT_EQ(text(plugin, effGetParamName, i), names[i - 1]);
    EXPECT_EQ(text(plugin, effGetParamLabel, i), "");
  }
}

TEST(Parameters, UnknownIndicesStoreNothingAndLeaveBuffersUntouched) {
  LoadedPlugin plugin;
  plugin.setParameter(0, 0.7f);
  plugin.setParameter(6, 0.7f);
  plugin.setParameter(-1, 0.7f);
  EXPECT_EQ(plugin.getParameter(0), 0.0f);
  EXPECT_EQ(plugin.getParameter(6), 0.0f);
  for (const VstInt32 index : {0, 6, -3}) {
    for (const VstInt32 opcode : {effGetParamName, effGetParamLabel, effGetParamDisplay}) {
      EXPECT_EQ(text(plugin, opcode, index), "xxxxxxxxx") << "opcode " << opcode;
    }
  }
  char probe[kVstMaxParamStrLen + 1] = "untouch";
  plugin.module()->getParameterDisplayOf(0, 0.5f, probe);
  EXPECT_STREQ(probe, "untouch");
}

TEST(Parameters, KnobsDisplayOneToTenAndStoreWithoutClamping) {
  LoadedPlugin plugin;
  struct Case {
    VstInt32 index;
    float value;
    const char* display;
  };
  const Case cases[] = {{2, 0.25f, " 3.25"},
                        {3, 0.0f, " 1.00"},
                        {4, 1.0f, " 10.00"},
                        {5, 0.5f, " 5.50"},
                        {2, 2.0f, " 19.00"}};
  for (const Case& c : cases) {
    plugin.setParameter(c.index, c.value);
    EXPECT_EQ(plugin.getParameter(c.index), c.value);
    EXPECT_EQ(text(plugin, effGetParamDisplay, c.index), c.display);
    char of[kVstMaxParamStrLen + 1];
    plugin.module()->getParameterDisplayOf(c.index, c.value, of);
    EXPECT_STREQ(of, c.display);
  }
}

TEST(Parameters, DeepShowsOnOnlyForExactlyOne) {
  LoadedPlugin plugin;
  const std::pair<float, const char*> cases[] = {{1.0f, "on"}, {0.0f, "off"}, {0.5f, "off"}};
  for (const auto& [value, display] : cases) {
    plugin.setParameter(1, value);
    EXPECT_EQ(text(plugin, effGetParamDisplay, 1), display);
  }
  // The short text is padded with zeros across the whole 8-byte buffer.
  char buffer[kVstMaxParamStrLen + 1];
  std::memset(buffer, 'x', sizeof buffer);
  plugin.dispatch(effGetParamDisplay, 1, 0, buffer);
  for (int i = 3; i < kVstMaxParamStrLen; ++i) EXPECT_EQ(buffer[i], 0);
}

TEST(Parameters, Properties) {
  LoadedPlugin plugin;
  VstParameterProperties p;
  std::memset(&p, 0x5a, sizeof p);
  EXPECT_EQ(plugin.dispatch(effGetParameterProperties, 1, 0, &p), 1);
  EXPECT_EQ(p.flags, kVstParameterIsSwitch);
  EXPECT_EQ(p.stepFloat, 0.0f);
  EXPECT_STREQ(p.label, "");
  EXPECT_EQ(p.category, 0);

  for (int index = 2; index <= 5; ++index) {
    std::memset(&p, 0x5a, sizeof p);
    EXPECT_EQ(plugin.dispatch(effGetParameterProperties, index, 0, &p), 1);
    EXPECT_EQ(p.flags, kVstParameterUsesFloatStep);
    EXPECT_EQ(p.stepFloat, 0.01f);
    EXPECT_EQ(p.smallStepFloat, 0.0f);
    EXPECT_EQ(p.largeStepFloat, 0.0f);
  }

  // Index 0: cleared, but false. Out of range: untouched.
  std::memset(&p, 0x5a, sizeof p);
  EXPECT_EQ(plugin.dispatch(effGetParameterProperties, 0, 0, &p), 0);
  const VstParameterProperties cleared{};
  EXPECT_EQ(std::memcmp(&p, &cleared, sizeof p), 0);
  std::memset(&p, 0x5a, sizeof p);
  EXPECT_EQ(plugin.dispatch(effGetParameterProperties, 6, 0, &p), 0);
  EXPECT_EQ(reinterpret_cast<unsigned char*>(&p)[0], 0x5a);
  EXPECT_EQ(plugin.dispatch(effGetParameterProperties, 2, 0, nullptr), 0);
}

TEST(Parameters, RecordOfExactly152BytesIsNeverWrittenPast) {
  LoadedPlugin plugin;
  unsigned char space[sizeof(VstParameterProperties) + 8];
  std::memset(space, 0x5a, sizeof space);
  for (int index = 0; index <= 5; ++index) {
    plugin.dispatch(effGetParameterProperties, index, 0, space);
  }
  for (std::size_t i = sizeof(VstParameterProperties); i < sizeof space; ++i) {
    EXPECT_EQ(space[i], 0x5a) << "byte " << i;
  }
}

}  // namespace
}  // namespace amp_test
