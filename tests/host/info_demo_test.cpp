// `tarnwell info` and `tarnwell demo`, and the help every command carries.
#include <gtest/gtest.h>

#include "host_test_support.h"

namespace {

using namespace host_test;

bool contains(const std::string& text, std::string_view part) {
  return text.find(part) != std::string::npos;
}

TEST(Info, DescribesTheStandIn) {
  const Result text = runCommand({"info", "--plugin", testPlugin("fake")});
  ASSERT_EQ(text.exitCode, 0) << text.err;
  EXPECT_TRUE(contains(text.out, "Fake\n"));
  EXPECT_TRUE(contains(text.out, "unique ID       ekaF (0x46616B65)")) << text.out;
  EXPECT_TRUE(contains(text.out, "flags           0x1010 (canReplacing, canDoubleReplacing)"));
  EXPECT_TRUE(contains(text.out, "   2  VOLUME    5.50\n"));
  EXPECT_TRUE(contains(text.out, "   2  Loud\n"));
  EXPECT_TRUE(contains(text.out, "Module description: not offered"));

  const Result json = runCommand({"info", "--plugin", testPlugin("fake"), "--json"});
  ASSERT_EQ(json.exitCode, 0) << json.err;
  EXPECT_TRUE(contains(json.out, R"("uniqueId": {"chars": "ekaF", "hex": "0x46616B65")"));
  EXPECT_TRUE(
      contains(json.out, R"({"index": 2, "name": "VOLUME", "display": "5.50", "label": ""},)"));
  EXPECT_TRUE(contains(json.out, R"("module": null)"));
}

TEST(Info, DescribesTheAmp) {
  if (kRealPlugin.empty()) GTEST_SKIP() << "the amp plug-in is not part of this build";
  // Found beside the command, as a user runs it.
  const Result text = runCommand({"info"});
  ASSERT_EQ(text.exitCode, 0) << text.err;
  EXPECT_TRUE(contains(text.out, "NEW Tarnwell\n"));
  EXPECT_TRUE(contains(text.out, "unique ID       001B (0x42313030)"));
  EXPECT_TRUE(contains(text.out, "category        effect (1)"));
  EXPECT_TRUE(contains(text.out, "vendor version  1000"));
  EXPECT_TRUE(contains(text.out, "   1  DEEP      off\n"));
  EXPECT_TRUE(contains(text.out, "  16  Init\n"));
  EXPECT_TRUE(contains(text.out, "    jack 0: 1 signal(s) from 0\n"));
  EXPECT_TRUE(contains(text.out, "  dry input       none\n"));

  const Result json = runCommand({"info", "--json"});
  ASSERT_EQ(json.exitCode, 0) << json.err;
  EXPECT_TRUE(contains(json.out, R"("inputJacks": [{"signals": 1, "firstSignal": 0}])"));
  EXPECT_TRUE(contains(json.out, R"("dryInputSignal": -1, "headerVersion": 1)"));
}

TEST(Demo, WritesTheDryRiffAndItsRender) {
  const ScratchDir dir;
  const auto target = dir / "new" / "folder";
  const std::string plugin =
      kRealPlugin.empty() ? testPlugin("fake").string() : std::string(kRealPlugin);
  const Result result = runCommand({"demo", target, "--plugin", plugin});
  ASSERT_EQ(result.exitCode, 0) << result.err;
  EXPECT_TRUE(contains(result.out, (target / "demo-dry.wav").string() + "  peak -6.0 dBFS"))
      << result.out;
  EXPECT_TRUE(contains(result.out, (target / "demo-amp.wav").string()));

  const Audio dry = readAudio(target / "demo-dry.wav");
  EXPECT_EQ(dry.info.samplerate, 44100);
  EXPECT_EQ(dry.info.channels, 1);
  EXPECT_GE(dry.info.frames, 3 * 44100);
  EXPECT_LE(dry.info.frames, 10 * 44100);
  // The amp's render is the loader's render of the dry file at the start-up program.
  EXPECT_EQ(readAudio(target / "demo-amp.wav").samples,
            roundedToFloat(referenceRender(plugin, dry, {})));

  // The riff is the same on every run.
  const auto again = dir / "again";
  ASSERT_EQ(runCommand({"demo", again, "--plugin", plugin}).exitCode, 0);
  EXPECT_EQ(readAudio(again / "demo-dry.wav").samples, dry.samples);
}

TEST(Help, EveryCommandExplainsItself) {
  for (const char* command : {"render", "info", "demo"}) {
    const Result result = runCommand({command, "--help"});
    EXPECT_EQ(result.exitCode, 0) << command;
    EXPECT_TRUE(contains(result.out, "Example: tarnwell " + std::string(command))) << result.out;
  }
  const Result render = runCommand({"render", "--help"});
  EXPECT_TRUE(contains(render.out, "1 to 16 as users count"));
  EXPECT_TRUE(contains(runCommand({"--help"}).out, "Exit codes: 0 success, 1 usage error"));
}

}  // namespace
