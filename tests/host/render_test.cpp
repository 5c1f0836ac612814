// `tarnwell render` end to end: the output holds, sample for sample, what the loader produces block
// by block with the same settings, in the format the user asked for.
#include <gtest/gtest.h>

#include "host_test_support.h"

namespace {

using namespace host_test;

struct FileCase {
  const char* name;
  int channels;
  int rate;
  int subtype;
  long frames;
  int block;  // 0: the command's default
};

std::string pluginUnderTest() {
  return kRealPlugin.empty() ? testPlugin("fake").string() : std::string(kRealPlugin);
}

class RenderMatchesLoader : public testing::TestWithParam<FileCase> {};

TEST_P(RenderMatchesLoader, SampleForSample) {
  const FileCase& c = GetParam();
  const ScratchDir dir;
  const auto in = dir / "in.wav";
  const auto out = dir / "out.wav";
  writeAudio(in, c.channels, c.rate, SF_FORMAT_WAV | c.subtype, c.frames,
             [&](long i, int ch) { return testSignal(i, ch, c.rate); });

  std::vector<std::string> args = {"render",   in,       out,        "--plugin", pluginUnderTest(),
                                   "--format", "DOUBLE", "--volume", "7",        "-q"};
  if (c.block > 0) args.insert(args.end(), {"--block", std::to_string(c.block)});
  const Result result = runCommand(args);
  ASSERT_EQ(result.exitCode, 0) << result.err;
  EXPECT_EQ(result.out, "");  // -q

  const Audio input = readAudio(in);
  const Audio output = readAudio(out);
  EXPECT_EQ(output.info.channels, c.channels);
  EXPECT_EQ(output.info.samplerate, c.rate);
  EXPECT_EQ(output.info.frames, c.frames);
  EXPECT_EQ(output.info.format, SF_FORMAT_WAV | SF_FORMAT_DOUBLE);
  const auto expected = referenceRender(pluginUnderTest(), input,
                                        {.volume = 7, .blockFrames = c.block ? c.block : 4096});
  ASSERT_EQ(output.samples.size(), expected.size());
  for (std::size_t i = 0; i < expected.size(); ++i) {
    ASSERT_EQ(output.samples[i], expected[i]) << "sample " << i;
  }
}

INSTANTIATE_TEST_SUITE_P(
    Render, RenderMatchesLoader,
    testing::Values(FileCase{"Mono44k16bit", 1, 44100, SF_FORMAT_PCM_16, 20000, 0},
                    FileCase{"Stereo48kFloat", 2, 48000, SF_FORMAT_FLOAT, 20000, 0},
                    FileCase{"Stereo44kFloat", 2, 44100, SF_FORMAT_FLOAT, 9000, 0},
                    FileCase{"Mono48k16bit", 1, 48000, SF_FORMAT_PCM_16, 9000, 0},
                    FileCase{"ManyBlocksWithAShortLastOne", 2, 48000, SF_FORMAT_PCM_16, 100003,
                             1000}),
    [](const auto& info) { return std::string(info.param.name); });

TEST(Render, KeepsTheInputFormatAndCanChangeIt) {
  const ScratchDir dir;
  const auto in = dir / "in.wav";
  writeAudio(in, 2, 44100, SF_FORMAT_WAV | SF_FORMAT_PCM_16, 4410,
             [](long i, int ch) { return testSignal(i, ch, 44100); });
  const std::string plugin = testPlugin("fake");

  ASSERT_EQ(runCommand({"render", in, dir / "same.wav", "--plugin", plugin, "-q"}).exitCode, 0);
  EXPECT_EQ(readAudio(dir / "same.wav").info.format, SF_FORMAT_WAV | SF_FORMAT_PCM_16);

  ASSERT_EQ(runCommand({"render", in, dir / "f.wav", "--plugin", plugin, "--format", "float", "-q"})
                .exitCode,
            0);
  EXPECT_EQ(readAudio(dir / "f.wav").info.format, SF_FORMAT_WAV | SF_FORMAT_FLOAT);
}

TEST(Render, ProgramAndDialsReachThePlugin) {
  const ScratchDir dir;
  const auto in = dir / "in.wav";
  writeAudio(in, 1, 44100, SF_FORMAT_WAV | SF_FORMAT_FLOAT, 2000,
             [](long i, int) { return testSignal(i, 0, 44100); });
  const std::string plugin = testPlugin("fake");

  // The stand-in's program 2 ("Loud") has VOLUME 0.9, shown as dial 9.10.
  const Result loud =
      runCommand({"render", in, dir / "loud.wav", "--plugin", plugin, "--program", "2"});
  ASSERT_EQ(loud.exitCode, 0) << loud.err;
  EXPECT_NE(loud.out.find("program 2 \"Loud\": DEEP 1.00, VOLUME 9.10"), std::string::npos)
      << loud.out;
  const Audio input = readAudio(in);
  EXPECT_EQ(readAudio(dir / "loud.wav").samples,
            roundedToFloat(referenceRender(plugin, input, {.program = 2})));

  const Result dialled = runCommand({"render", in, dir / "d.wav", "--plugin", plugin, "--program",
                                     "2", "--volume", "3.25", "--deep", "ON"});
  ASSERT_EQ(dialled.exitCode, 0) << dialled.err;
  EXPECT_NE(dialled.out.find("DEEP 10.00, VOLUME 3.25"), std::string::npos) << dialled.out;
}

TEST(Render, WarnsWhenAnIntegerFormatClips) {
  const ScratchDir dir;
  const auto in = dir / "in.wav";
  writeAudio(in, 1, 44100, SF_FORMAT_WAV | SF_FORMAT_PCM_16, 4410, [](long, int) { return 0.9; });
  const std::string plugin = testPlugin("fake");

  // VOLUME at 10 doubles the signal in the stand-in: 1.8 at the peak.
  const Result clipped =
      runCommand({"render", in, dir / "a.wav", "--plugin", plugin, "--volume", "10", "-q"});
  EXPECT_EQ(clipped.exitCode, 0);
  EXPECT_NE(clipped.err.find("warning:"), std::string::npos);
  EXPECT_NE(clipped.err.find("clipped"), std::string::npos);
  EXPECT_NE(clipped.err.find("+5.1 dBFS"), std::string::npos) << clipped.err;
  EXPECT_LE(readAudio(dir / "a.wav").samples.back(), 1.0);

  const Result floating = runCommand({"render", in, dir / "b.wav", "--plugin", plugin, "--volume",
                                      "10", "--format", "FLOAT", "-q"});
  EXPECT_EQ(floating.exitCode, 0);
  EXPECT_EQ(floating.err, "");
  EXPECT_NEAR(readAudio(dir / "b.wav").samples.back(), 1.8, 1e-4);
}

TEST(Render, ReplacesAnExistingOutputOnlyWhenAsked) {
  const ScratchDir dir;
  const auto in = dir / "in.wav";
  const auto out = dir / "out.wav";
  writeAudio(in, 1, 44100, SF_FORMAT_WAV | SF_FORMAT_FLOAT, 1000, [](long, int) { return 0.25; });
  writeAudio(out, 1, 8000, SF_FORMAT_WAV | SF_FORMAT_PCM_16, 10, [](long, int) { return 0.0; });
  const std::string plugin = testPlugin("fake");

  EXPECT_EQ(runCommand({"render", in, out, "--plugin", plugin, "-q"}).exitCode, 1);
  EXPECT_EQ(readAudio(out).info.samplerate, 8000);
  EXPECT_EQ(runCommand({"render", in, out, "--plugin", plugin, "--overwrite", "-q"}).exitCode, 0);
  EXPECT_EQ(readAudio(out).info.samplerate, 44100);
  EXPECT_EQ(dir.entries(), (std::vector<std::string>{"in.wav", "out.wav"}));
}

}  // namespace
