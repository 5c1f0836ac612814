// The `tarnwell` command end to end: a render holds what the loader produces block by block; bad
// input or an interruption costs no file; info, demo and help say what they should.
#include <gtest/gtest.h>
#include <signal.h>
#include <unistd.h>

#include <sstream>

#include "host_test_support.h"

namespace {

using namespace host_test;

std::string succeeds(const std::vector<std::string>& args) {  // the command's stdout
  const Result result = runCommand(args);
  EXPECT_EQ(result.exitCode, 0) << result.err;
  return result.out;
}

void expectHas(const std::string& text, std::initializer_list<std::string> parts) {
  for (const std::string& part : parts)
    EXPECT_NE(text.find(part), std::string::npos) << part << "\nnot in\n" << text;
}

TEST(Render, EqualsTheLoaderBlockByBlock) {
  // Channels, rate, subtype, frames, block frames: the last case ends on a short block.
  const std::tuple<int, int, int, int, int> cases[] = {{1, 44100, SF_FORMAT_PCM_16, 20000, 4096},
                                                       {2, 48000, SF_FORMAT_FLOAT, 20000, 4096},
                                                       {2, 44100, SF_FORMAT_FLOAT, 9000, 4096},
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
  writeAudio(in, 1, 44100, SF_FORMAT_FLOAT, 2000);
  // The stand-in's program 2 ("Loud") has VOLUME 0.9, shown as dial 9.10.
  expectHas(succeeds({"render", in, out, "--plugin", plugin, "--program", "2"}),
            {R"(program 2 "Loud": DEEP 1.00, VOLUME 9.10)"});
  EXPECT_EQ(readAudio(out).info.format, SF_FORMAT_WAV | SF_FORMAT_FLOAT);
  EXPECT_TRUE(holds(readAudio(out), referenceRender(plugin, readAudio(in), {.program = 2})));

  expectHas(succeeds({"render", in, out, "--plugin", plugin, "--program", "2", "--volume", "3.25",
                      "--deep", "ON", "--overwrite"}),
            {"DEEP 10.00, VOLUME 3.25"});
  const Settings dialled{.program = 2, .volume = 3.25};
  EXPECT_TRUE(holds(readAudio(out), referenceRender(plugin, readAudio(in), dialled)));
  EXPECT_EQ(dir.files().size(), 2u);
}

TEST(Render, WarnsWhenAnIntegerFormatClips) {
  const ScratchDir dir;
  const std::string in = dir / "in.wav", plugin = testPlugin("fake");
  writeAudio(in, 1, 44100, SF_FORMAT_PCM_16, 4410, [](long, int) { return 0.9; });
  // VOLUME at 10 doubles the signal in the stand-in: 1.8 at the peak.
  const Result clipped =
      runCommand({"render", in, dir / "a.wav", "--plugin", plugin, "--volume", "10", "-q"});
  EXPECT_EQ(clipped.exitCode, 0);
  expectHas(clipped.err, {"warning:", "clipped", "+5.1 dBFS"});

  EXPECT_EQ(succeeds({"render", in, dir / "b.wav", "--plugin", plugin, "--volume", "10", "--format",
                      "FLOAT", "-q"}),
            "");
  EXPECT_NEAR(readAudio(dir / "b.wav").samples.back(), 1.8, 1e-4);
}

TEST(Render, BadInputCostsNoFile) {
  // One line on stderr, exit 1 for usage and 2 for files and the plug-in, every file untouched.
  // IN, OUT and DIR/name stand for paths in the test's folder, @kind for a stand-in plug-in.
  const std::tuple<std::string, int, std::string> cases[] = {
      {"render IN OUT --plugin @fake --volume 11", 1, "dial position"},
      {"render IN OUT --plugin @fake --bass loud", 1, "dial position"},
      {"render IN OUT --plugin @fake --treble nan", 1, "dial position"},
      {"render IN OUT --plugin @fake --program 0", 1, "--program"},
      {"render IN OUT --plugin @fake --program 17", 1, "--program"},
      {"render IN OUT --plugin @fake --program 3", 1, "no program 3"},
      {"render IN OUT --plugin @fake --deep maybe", 1, "--deep"},
      {"render IN OUT --plugin @fake --format PCM_12", 1, "unknown format"},
      {"render IN OUT --plugin @fake --format PCM_S8", 1, "cannot write"},
      {"render IN OUT --plugin @fake --block 0", 1, "--block"},
      {"render IN", 1, "OUT"},
      {"", 1, "subcommand"},
      {"render IN IN --plugin @fake --overwrite", 1, "is the input file itself"},
      {"render IN DIR/./in.wav --plugin @fake --overwrite", 1, "is the input file itself"},
      {"render IN DIR/ --plugin @fake", 1, "is a directory"},
      {"render IN DIR/notes.txt --plugin @fake", 1, "exists; add --overwrite"},
      {"render DIR/none.wav OUT --plugin @fake", 2, "cannot read"},
      {"render DIR/notes.txt OUT --plugin @fake", 2, "cannot read"},
      {"render IN DIR/missing/out.wav --plugin @fake", 2, "cannot write"},
      {"render IN OUT --plugin DIR/none.so", 2, "plug-in not found"},
      {"render IN OUT --plugin DIR/notes.txt", 2, "cannot load plug-in"},
      {"render IN OUT --plugin @no_entry", 2, "exports neither"},
      {"render IN OUT --plugin @no_double", 2, "double precision"},
  };
  for (const auto& [command, exitCode, message] : cases) {
    SCOPED_TRACE(command);
    const ScratchDir dir;
    writeAudio(dir / "in.wav", 1, 44100, SF_FORMAT_PCM_16, 1000);
    std::ofstream(dir / "notes.txt") << "not audio\n";
    const auto before = dir.files();
    std::vector<std::string> args;
    std::istringstream words(command);
    for (std::string word; words >> word; args.push_back(word)) {
      if (word == "IN" || word == "OUT") word = dir / (word == "IN" ? "in.wav" : "out.wav");
      if (word.starts_with("DIR/")) word = dir / word.substr(4);
      if (word.starts_with('@')) word = testPlugin(word.substr(1));
    }
    const Result result = runCommand(args);
    EXPECT_EQ(result.exitCode, exitCode) << result.err;
    expectHas(result.err, {message});
    EXPECT_EQ(std::ranges::count(result.err, '\n'), 1) << result.err;
    EXPECT_EQ(dir.files(), before);
  }
}

TEST(Render, InterruptedRenderLeavesNoTemporaryFile) {
  const ScratchDir dir;
  writeAudio(dir / "in.wav", 1, 44100, SF_FORMAT_FLOAT, 4 * 44100);
  // The slow stand-in takes a millisecond per 64-frame block: about three seconds in all. Sent
  // once the temporary file holds data, the signal lands mid-render.
  const pid_t pid = startCommand(
      {"render", dir / "in.wav", dir / "out.wav", "--plugin", testPlugin("slow"), "--block", "64"});
  const auto rendering = [&] {
    const auto [name, bytes] = *dir.files().begin();  // sorts before in.wav
    return name.starts_with(".out.wav.tarnwell-") && !bytes.empty();
  };
  for (int wait = 0; wait < 2000 && !rendering(); ++wait) usleep(5000);
  ASSERT_TRUE(rendering()) << "no temporary file beside OUT filling up";
  kill(pid, SIGINT);
  EXPECT_EQ(waitCommand(pid), -SIGINT);
  EXPECT_EQ(dir.files().size(), 1u);
}

TEST(Info, DescribesThePluginAndItsModuleOnlyWhenOffered) {
  expectHas(succeeds({"info"}),  // the amp beside the command, as a user runs it
            {"NEW Tarnwell\n", "  product         NEW Tarnwell\n", "vendor version  1000",
             "unique ID       001B (0x42313030)", "category        effect (1)",
             "  inputs          1\n  outputs         1\n",
             "flags           0x1010 (canReplacing, canDoubleReplacing)", "   1  DEEP      off\n",
             "   2  VOLUME    5.50\n", "  16  Init\n",
             "output jacks    1\n    jack 0: 1 signal(s) from 0\n", "  dry input       none\n"});
  expectHas(succeeds({"info", "--json"}),
            {R"("uniqueId": {"chars": "001B", "hex": "0x42313030")",
             R"({"index": 2, "name": "VOLUME", "display": "5.50", "label": ""},)",
             R"("inputJacks": [{"signals": 1, "firstSignal": 0}])",
             R"("dryInputSignal": -1, "headerVersion": 1)"});
  // The stand-in's object is no module of this family: no description, and no crash asking.
  expectHas(succeeds({"info", "--plugin", testPlugin("fake")}), {"description: not offered"});
  expectHas(succeeds({"info", "--plugin", testPlugin("fake"), "--json"}), {R"("module": null)"});
}

TEST(Demo, WritesTheSameDryRiffEveryTimeAndItsRender) {
  const ScratchDir dir;
  const std::string target = dir / "new/folder";
  expectHas(succeeds({"demo", target}),
            {target + "/demo-dry.wav  peak -6.0 dBFS", target + "/demo-amp.wav"});
  const Audio dry = readAudio(target + "/demo-dry.wav");
  EXPECT_EQ(dry.info.samplerate, 44100);
  EXPECT_EQ(dry.info.channels, 1);
  EXPECT_TRUE(dry.info.frames >= 3 * 44100 && dry.info.frames <= 10 * 44100) << dry.info.frames;
  // The amp's render is the loader's render of the dry file at the start-up program.
  EXPECT_TRUE(holds(readAudio(target + "/demo-amp.wav"), referenceRender(kAmp, dry, {})));

  succeeds({"demo", dir / "again"});
  EXPECT_EQ(readAudio(dir / "again/demo-dry.wav").samples, dry.samples);
}

TEST(Help, EveryCommandExplainsItself) {
  for (const std::string command : {"render", "info", "demo"})
    expectHas(succeeds({command, "--help"}), {"Example: tarnwell " + command});
  expectHas(succeeds({"render", "--help"}), {"1 to 16 as users count"});
  expectHas(succeeds({"--help"}), {"Exit codes: 0 success, 1 usage error"});
}

}  // namespace
