// The `tarnwell` command end to end: a render holds what a settled instance of the loader produces
// block by block, whatever the block size; info, demo and help say what they should.
#include <gtest/gtest.h>
#include <signal.h>
#include <unistd.h>

#include <nlohmann/json.hpp>

#include "host_test_support.h"

namespace {

using namespace host_test;

TEST(Render, EqualsTheLoaderBlockByBlock) {
  // Channels, rate, subtype, frames, block frames: the last case ends on a short block.
  const std::tuple<int, int, int, int, int> cases[] = {{1, 44100, SF_FORMAT_PCM_16, 20000, 4096},
                                                       {2, 48000, SF_FORMAT_FLOAT, 20000, 4096},
                                                       {2, 48000, SF_FORMAT_PCM_16, 100003, 1000}};
  for (const auto& [channels, rate, subtype, frames, block] : cases) {
    SCOPED_TRACE(testing::Message() << channels << " x " << frames << " at " << rate << " Hz");
    const ScratchDir dir;
    writeAudio(dir / "in.wav", channels, rate, subtype, frames);
    std::vector<std::string> args = {"render",   dir / "in.wav", dir / "out.wav", "--plugin", kAmp,
                                     "--format", "double",       "--volume",      "7",        "-q"};
    if (block != 4096) args.insert(args.end(), {"--block", std::to_string(block)});  // default
    EXPECT_EQ(succeeds(args), "");

    const Audio output = readAudio(dir / "out.wav");
    EXPECT_EQ(output.info.channels, channels);
    EXPECT_EQ(output.info.samplerate, rate);
    EXPECT_EQ(output.info.format, SF_FORMAT_WAV | SF_FORMAT_DOUBLE);
    const Settings settings{.volume = 7, .block = block};
    EXPECT_TRUE(holds(output, referenceRender(kAmp, readAudio(dir / "in.wav"), settings)));
  }
}

TEST(Render, SoundsTheSameWhateverTheBlockSizeFromTheFirstSample) {
  // A steady low note from the first sample; the amp's fade-in would show in the first 100 ms.
  const ScratchDir dir;
  writeAudio(dir / "in.wav", 1, 48000, SF_FORMAT_PCM_24, 48000,
             [](long i, int) { return 0.5 * std::sin(0.0072 * i); });
  std::string first;
  for (const std::string block : {"4096", "1", "7", "1048576"}) {
    succeeds({"render", dir / "in.wav", dir / block, "--plugin", kAmp, "--format", "DOUBLE",
              "--block", block, "--deep", "on", "-q"});
    if (first.empty()) first = slurp(dir / block);
    EXPECT_TRUE(slurp(dir / block) == first) << "--block " << block << " differs from 4096";
  }
  const std::vector<double> out = readAudio(dir / "4096").samples;
  const auto rms = [&](long from, long to) {
    double sum = 0.0;
    for (long i = from; i < to; ++i) sum += out[i] * out[i];
    return std::sqrt(sum / static_cast<double>(to - from));
  };
  EXPECT_NEAR(20 * std::log10(rms(0, 4800) / rms(24000, 48000)), 0.0, 0.5);
}

TEST(Render, AppliesProgramAndDialsKeepsTheFormatAndOverwritesOnlyWhenAsked) {
  const ScratchDir dir;
  const std::string in = dir / "in.wav", out = dir / "out.wav", plugin = testPlugin("fake");
  writeAudio(in, 1, 44100, SF_FORMAT_FLOAT, 6000);
  // The stand-in's program 2 ("Loud") has VOLUME 0.9, shown as dial 9.10.
  expectHas(succeeds({"render", in, out, "--plugin", plugin, "--program", "2"}),
            {R"(program 2 "Loud": DEEP 1.00, VOLUME 9.10)"});
  EXPECT_EQ(readAudio(out).info.format, SF_FORMAT_WAV | SF_FORMAT_FLOAT);
  EXPECT_TRUE(holds(readAudio(out), referenceRender(plugin, readAudio(in), {.program = 2})));

  // The stand-in spoils a block longer than it was told to expect.
  expectHas(succeeds({"render", in, out, "--plugin", plugin, "--program", "2", "--volume", "3.25",
                      "--deep", "ON", "--overwrite", "--block", "5000"}),
            {"DEEP 10.00, VOLUME 3.25"});
  const Settings dialled{.program = 2, .volume = 3.25, .block = 5000};
  EXPECT_TRUE(holds(readAudio(out), referenceRender(plugin, readAudio(in), dialled)));
  EXPECT_EQ(dir.files().size(), 2u);
}

TEST(Render, WarnsWhenAndOnlyWhenAnIntegerFormatClips) {
  const ScratchDir dir;
  const std::string in = dir / "in.wav", plugin = testPlugin("fake");
  writeAudio(in, 1, 44100, SF_FORMAT_PCM_16, 4410, [](long, int) { return 0.9; });
  // VOLUME at 10 doubles the signal in the stand-in: 1.8 at the peak, beyond full scale from the
  // second sample on.
  const Result clipped =
      runCommand({"render", in, dir / "a.wav", "--plugin", plugin, "--volume", "10", "-q"});
  EXPECT_EQ(clipped.exitCode, 0);
  expectHas(clipped.err, {"warning: 4409 samples clipped", "(peak +5.1 dBFS)"});

  const Result floating = runCommand({"render", in, dir / "b.wav", "--plugin", plugin, "--volume",
                                      "10", "--format", "FLOAT", "-q"});
  EXPECT_EQ(floating.err, "");
  EXPECT_NEAR(readAudio(dir / "b.wav").samples.back(), 1.8, 1e-4);
  // At the start-up VOLUME the stand-in passes the signal on: 0.9, nothing to warn about.
  EXPECT_EQ(runCommand({"render", in, dir / "c.wav", "--plugin", plugin, "-q"}).err, "");
}

TEST(Info, DescribesThePluginAsAHostSeesItAndItsModuleOnlyWhenOffered) {
  expectHas(succeeds({"info"}),  // the amp beside the command, as a user runs it
            {"NEW Tarnwell\n", "  product         NEW Tarnwell\n", "vendor version  1000",
             "unique ID       001B (0x42313030)", "category        effect (1)",
             "  inputs          1\n  outputs         1\n",
             "flags           0x1010 (canReplacing, canDoubleReplacing)", "   1  DEEP      off\n",
             "   2  VOLUME    5.50\n", "   1  Init 1\n", "  16  Init 16\n",
             "output jacks    1\n    jack 0: 1 signal(s) from 0\n", "  dry input       none\n"});
  using Json = nlohmann::json;
  const Json json = Json::parse(succeeds({"info", "--json"}));
  EXPECT_EQ(json["uniqueId"], Json::parse(R"({"chars": "001B", "hex": "0x42313030",
                                               "value": 1110519856})"));
  EXPECT_EQ(json["parameters"][2],
            Json::parse(R"({"index": 2, "name": "VOLUME", "display": "5.50", "label": ""})"));
  EXPECT_EQ(json["programs"][15], Json::parse(R"({"number": 16, "name": "Init 16"})"));
  EXPECT_EQ(json["module"], Json::parse(R"({"inputJacks": [{"signals": 1, "firstSignal": 0}],
      "outputJacks": [{"signals": 1, "firstSignal": 0}], "dryInputSignal": -1,
      "headerVersion": 1})"));
  // The stand-in's object is no module of this family: no description, and no crash asking.
  expectHas(succeeds({"info", "--plugin", testPlugin("fake")}), {"description: not offered"});
  EXPECT_TRUE(Json::parse(succeeds({"info", "--plugin", testPlugin("fake"), "--json"}))["module"]
                  .is_null());
}

TEST(Demo, WritesTheSameDryRiffEveryTimeAndItsRender) {
  const ScratchDir dir;
  const std::string target = dir / "new/folder";
  expectHas(succeeds({"demo", target}),
            {target + "/demo-dry.wav  peak -6.0 dBFS", target + "/demo-amp.wav"});
  const Audio dry = readAudio(target + "/demo-dry.wav");
  EXPECT_EQ(dry.info.samplerate, 44100);
  EXPECT_EQ(dry.info.channels, 1);
  EXPECT_TRUE(dry.info.frames >= 3 * 44100L && dry.info.frames <= 10 * 44100L) << dry.info.frames;
  // The amp's render is the loader's render of the dry file at the start-up program.
  EXPECT_TRUE(holds(readAudio(target + "/demo-amp.wav"), referenceRender(kAmp, dry, {})));

  succeeds({"demo", dir / "again"});
  EXPECT_EQ(readAudio(dir / "again/demo-dry.wav").samples, dry.samples);
}

TEST(Help, EveryCommandExplainsItselfAndVersionIsTheRelease) {
  for (const std::string command : {"render", "info", "demo"})
    expectHas(succeeds({command, "--help"}), {"Example: tarnwell " + command});
  expectHas(succeeds({"render", "--help"}), {"1 to 16 as users count"});
  expectHas(succeeds({"--help"}), {"Exit codes: 0 success, 1 usage error"});
  EXPECT_EQ(succeeds({"--version"}), "tarnwell " TARNWELL_VERSION "\n");
}

}  // namespace
