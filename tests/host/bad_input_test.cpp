// Bad input never costs the user a file: one line on stderr, the exit code sox would give (1 for
// usage, 2 for files and the plug-in), the input untouched and nothing left in the output folder.
#include <gtest/gtest.h>
#include <signal.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <thread>

#include "host_test_support.h"

namespace {

using namespace host_test;

struct BadCase {
  const char* name;
  std::vector<std::string> args;  // IN, OUT and PLUGIN stand for the paths below
  int exitCode;
  const char* message;  // part of the one line on stderr
};

class BadInput : public testing::TestWithParam<BadCase> {};

TEST_P(BadInput, LeavesNoFileBehind) {
  const BadCase& c = GetParam();
  const ScratchDir dir;
  const auto in = dir / "in.wav";
  writeAudio(in, 1, 44100, SF_FORMAT_WAV | SF_FORMAT_PCM_16, 1000,
             [](long i, int) { return testSignal(i, 0, 44100); });
  std::FILE* text = std::fopen((dir / "notes.txt").c_str(), "w");
  std::fputs("not audio\n", text);
  std::fclose(text);
  const Audio before = readAudio(in);
  const auto listing = dir.entries();

  std::vector<std::string> args;
  for (const std::string& a : c.args) {
    if (a == "IN")
      args.push_back(in);
    else if (a == "OUT")
      args.push_back(dir / "out.wav");
    else if (a == "PLUGIN")
      args.push_back(testPlugin("fake"));
    else if (a.starts_with("DIR/"))
      args.push_back(dir / a.substr(4));
    else
      args.push_back(a);
  }
  const Result result = runCommand(args);
  EXPECT_EQ(result.exitCode, c.exitCode) << result.err;
  EXPECT_NE(result.err.find(c.message), std::string::npos) << result.err;
  EXPECT_EQ(std::count(result.err.begin(), result.err.end(), '\n'), 1) << result.err;
  EXPECT_EQ(dir.entries(), listing);
  EXPECT_EQ(readAudio(in).samples, before.samples);
}

INSTANTIATE_TEST_SUITE_P(
    Command, BadInput,
    testing::Values(BadCase{"KnobAboveTen",
                            {"render", "IN", "OUT", "--plugin", "PLUGIN", "--volume", "11"},
                            1,
                            "dial position"},
                    BadCase{"KnobNotANumber",
                            {"render", "IN", "OUT", "--plugin", "PLUGIN", "--bass", "loud"},
                            1,
                            "dial position"},
                    BadCase{"KnobNaN",
                            {"render", "IN", "OUT", "--plugin", "PLUGIN", "--treble", "nan"},
                            1,
                            "dial position"},
                    BadCase{"ProgramZero",
                            {"render", "IN", "OUT", "--plugin", "PLUGIN", "--program", "0"},
                            1,
                            "--program"},
                    BadCase{"ProgramSeventeen",
                            {"render", "IN", "OUT", "--plugin", "PLUGIN", "--program", "17"},
                            1,
                            "--program"},
                    BadCase{"ProgramThePluginLacks",
                            {"render", "IN", "OUT", "--plugin", "PLUGIN", "--program", "3"},
                            1,
                            "no program 3"},
                    BadCase{"DeepMaybe",
                            {"render", "IN", "OUT", "--plugin", "PLUGIN", "--deep", "maybe"},
                            1,
                            "--deep"},
                    BadCase{"UnknownFormat",
                            {"render", "IN", "OUT", "--plugin", "PLUGIN", "--format", "PCM_12"},
                            1,
                            "unknown format"},
                    BadCase{"BlockZero",
                            {"render", "IN", "OUT", "--plugin", "PLUGIN", "--block", "0"},
                            1,
                            "--block"},
                    BadCase{"NoOutput", {"render", "IN"}, 1, "OUT"},
                    BadCase{"NoCommand", {}, 1, "subcommand"},
                    BadCase{"OutputIsInput",
                            {"render", "IN", "IN", "--plugin", "PLUGIN", "--overwrite"},
                            1,
                            "is the input file itself"},
                    BadCase{"OutputIsInputByAnotherPath",
                            {"render", "IN", "DIR/./in.wav", "--plugin", "PLUGIN", "--overwrite"},
                            1,
                            "is the input file itself"},
                    BadCase{"OutputIsADirectory",
                            {"render", "IN", "DIR/", "--plugin", "PLUGIN"},
                            1,
                            "is a directory"},
                    BadCase{"MissingInput",
                            {"render", "DIR/none.wav", "OUT", "--plugin", "PLUGIN"},
                            2,
                            "cannot read"},
                    BadCase{"InputNotAudio",
                            {"render", "DIR/notes.txt", "OUT", "--plugin", "PLUGIN"},
                            2,
                            "cannot read"},
                    BadCase{"UnwritableOutput",
                            {"render", "IN", "DIR/missing/out.wav", "--plugin", "PLUGIN"},
                            2,
                            "cannot write"},
                    BadCase{"PluginMissing",
                            {"render", "IN", "OUT", "--plugin", "DIR/none.so"},
                            2,
                            "plug-in not found"},
                    BadCase{"PluginNotALibrary",
                            {"render", "IN", "OUT", "--plugin", "DIR/notes.txt"},
                            2,
                            "cannot load plug-in"},
                    BadCase{"FormatTheContainerLacks",
                            {"render", "IN", "OUT", "--plugin", "PLUGIN", "--format", "PCM_S8"},
                            1,
                            "cannot write"}),
    [](const auto& info) { return std::string(info.param.name); });

TEST(BadInput, PluginThatRefusesIsAFailureWithNoOutput) {
  for (const char* kind :
       {"no_entry", "null_handle", "refusing", "bad_magic", "single_precision"}) {
    const ScratchDir dir;
    const auto in = dir / "in.wav";
    writeAudio(in, 1, 44100, SF_FORMAT_WAV | SF_FORMAT_FLOAT, 100, [](long, int) { return 0.1; });
    const Result result = runCommand({"render", in, dir / "out.wav", "--plugin", testPlugin(kind)});
    EXPECT_EQ(result.exitCode, 2) << kind;
    EXPECT_EQ(std::count(result.err.begin(), result.err.end(), '\n'), 1) << result.err;
    EXPECT_EQ(dir.entries(), std::vector<std::string>{"in.wav"}) << kind;
  }
}

TEST(BadInput, InterruptedRenderLeavesNoTemporaryFile) {
  const ScratchDir dir;
  const auto in = dir / "in.wav";
  writeAudio(in, 1, 44100, SF_FORMAT_WAV | SF_FORMAT_FLOAT, 44100 * 4,
             [](long, int) { return 0.1; });
  // The slow stand-in takes a millisecond per 64-frame block: about three seconds in all.
  const pid_t pid = startCommand(
      {"render", in, dir / "out.wav", "--plugin", testPlugin("slow"), "--block", "64", "-q"});
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(10);
  while (dir.entries().size() < 2 && std::chrono::steady_clock::now() < deadline) {
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
  }
  ASSERT_EQ(dir.entries().size(), 2u) << "no temporary file appeared";
  EXPECT_TRUE(dir.entries()[0].starts_with(".out.wav.tarnwell-"));
  kill(pid, SIGINT);
  EXPECT_EQ(waitCommand(pid), -SIGINT);
  EXPECT_EQ(dir.entries(), std::vector<std::string>{"in.wav"});
}

}  // namespace
