// The command against a hostile environment: bad arguments, odd files and names, links, limits,
// signals and a full disk. Each case costs the user no file: one clear line, the documented exit
// code, every file as it was, nothing left behind.
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstring>
#include <sstream>

#include "host_test_support.h"

namespace {

using namespace host_test;

// in.wav holds 1000 frames; beside it a text file, a FIFO, a dangling link, a loop of links, and
// in.wav with its header's rate set to 0.
void furnish(const ScratchDir& dir) {
  writeAudio(dir / "in.wav", 1, 44100, SF_FORMAT_PCM_16, 1000);
  std::ofstream(dir / "notes.txt") << "not audio\n";
  mkfifo((dir / "fifo").c_str(), 0600);
  fs::create_symlink("missing.wav", dir / "dangling.wav");
  fs::create_symlink("loop-b", dir / "loop-a");
  fs::create_symlink("loop-a", dir / "loop-b");
  std::string wav = slurp(dir / "in.wav");
  const auto rate = wav.find("fmt ") + 12;  // chunk id, size, format tag, channels
  wav.replace(rate, 4, std::string(4, '\0'));
  std::ofstream(dir / "rate0.wav", std::ios::binary) << wav;
}

std::vector<std::string> words(const std::string& command, const ScratchDir& dir) {
  std::vector<std::string> args;
  std::istringstream in(command);
  for (std::string word; in >> word; args.push_back(word)) {
    if (word == "IN" || word == "OUT") word = dir / (word == "IN" ? "in.wav" : "out.wav");
    if (word == "EMPTY") word.clear();
    if (word.starts_with("DIR/")) word = dir / word.substr(4);
    if (word.starts_with('@')) word = testPlugin(word.substr(1));
  }
  return args;
}

TEST(Hostile, BadInputCostsNoFile) {
  // IN, OUT and DIR/name stand for paths in the test's folder, @kind for a stand-in plug-in.
  const std::tuple<std::string, int, std::string> cases[] = {
      {"render IN OUT --plugin @fake --volume 11", 1, "dial position"},
      {"render IN OUT --plugin @fake --bass loud", 1, "dial position"},
      {"render IN OUT --plugin @fake --treble nan", 1, "dial position"},
      {"render IN OUT --plugin @fake --volume 0x5", 1, "'0x5' is not a dial position"},
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
      {"render IN DIR/ --plugin @fake --overwrite", 1, "is a directory"},
      {"render IN DIR/notes.txt --plugin @fake", 1, "exists; add --overwrite"},
      {"render IN DIR/fifo --plugin @fake --overwrite", 1, "is a FIFO; only a regular file"},
      {"render IN EMPTY --plugin @fake", 1, "the output file name is empty"},
      {"render IN DIR/dangling.wav --plugin @fake", 2, "link to a file that does not exist"},
      {"render IN DIR/loop-a --plugin @fake --overwrite", 2, "loop of symbolic links"},
      {"render IN DIR/missing/out.wav --plugin @fake", 2, "cannot write"},
      {"render DIR/none.wav OUT --plugin @fake", 2, "cannot read"},
      {"render DIR/notes.txt OUT --plugin @fake", 2, "cannot read"},
      {"render DIR/rate0.wav OUT --plugin @fake", 2, "its header gives a sample rate of 0 Hz"},
      {"render IN OUT --plugin DIR/none.so", 2, "plug-in not found"},
      {"render IN OUT --plugin DIR/notes.txt", 2, "cannot load plug-in"},
      {"render IN OUT --plugin @no_entry", 2, "exports neither"},
      {"render IN OUT --plugin @no_double", 2, "double precision"},
  };
  for (const auto& [command, exitCode, message] : cases) {
    SCOPED_TRACE(command);
    const ScratchDir dir;
    furnish(dir);
    const auto before = dir.files();
    const Result result = runCommand(words(command, dir));
    EXPECT_EQ(result.exitCode, exitCode) << result.err;
    expectHas(result.err, {message});
    EXPECT_EQ(std::ranges::count(result.err, '\n'), 1) << result.err;
    EXPECT_EQ(dir.files(), before);
  }
}

TEST(Hostile, LimitsAndFullDisksEndInAMessageNotASignal) {
  const ScratchDir dir;
  writeAudio(dir / "in.wav", 1, 44100, SF_FORMAT_PCM_16, 44100);
  const Result limited = runCommand(
      {"render", dir / "in.wav", dir / "out.wav", "--plugin", testPlugin("fake")}, kCommand, [] {
        const rlimit small{20000, 20000};  // bytes: a fifth of the output
        setrlimit(RLIMIT_FSIZE, &small);
      });
  EXPECT_EQ(limited.exitCode, 2);
  expectHas(limited.err, {"File too large"});
  EXPECT_EQ(dir.files().size(), 1u);

  const Result full = runCommand({"info", "--json"}, kCommand, {}, "/dev/full");
  EXPECT_EQ(full.exitCode, 2);
  expectHas(full.err, {"cannot write standard output: No space left on device"});
}

TEST(Hostile, AnInterruptedRenderLeavesNoTemporaryFileAndIgnoredSignalsStayIgnored) {
  // Ctrl-C, a kill, a closed terminal, Ctrl-\ and a CPU-time limit; 0 stands for SIGINT and SIGHUP
  // ignored from the start, as under nohup or in a shell's background job: the render carries on.
  for (const int sent : {SIGINT, SIGTERM, SIGHUP, SIGQUIT, SIGXCPU, 0}) {
    SCOPED_TRACE(sent != 0 ? strsignal(sent) : "ignored");
    const ScratchDir dir;
    writeAudio(dir / "in.wav", 1, 44100, SF_FORMAT_FLOAT, 4 * 44100L);
    // The slow stand-in takes a millisecond per 64-frame block: about three seconds in all. Sent
    // once the temporary file holds data, the signal lands mid-render.
    const pid_t pid = startCommand({"render", dir / "in.wav", dir / "out.wav", "--plugin",
                                    testPlugin("slow"), "--block", "64"},
                                   "/dev/null", "/dev/null", kCommand, [sent] {
                                     const rlimit noCore{0, 0};
                                     setrlimit(RLIMIT_CORE, &noCore);
                                     if (sent == 0)
                                       signal(SIGINT, SIG_IGN), signal(SIGHUP, SIG_IGN);
                                   });
    const auto rendering = [&] {
      const auto [name, bytes] = *dir.files().begin();  // sorts before in.wav
      return name.starts_with(".out.wav.tarnwell-") && !bytes.empty();
    };
    for (int wait = 0; wait < 2000 && !rendering(); ++wait) usleep(5000);
    ASSERT_TRUE(rendering()) << "no temporary file beside OUT filling up";
    if (sent != 0) {
      kill(pid, sent);
      EXPECT_EQ(waitCommand(pid), -sent);
      EXPECT_EQ(dir.files().size(), 1u);
    } else {
      kill(pid, SIGINT);
      kill(pid, SIGHUP);
      EXPECT_EQ(waitCommand(pid), 0);
      EXPECT_EQ(readAudio(dir / "out.wav").info.frames, 4 * 44100L);
    }
  }
}

TEST(Hostile, LongNamesLinksAndReplacedFilesAreWrittenAsAUserExpects) {
  const ScratchDir dir;
  const std::string in = dir / "in.wav", plugin = testPlugin("fake");
  writeAudio(in, 1, 44100, SF_FORMAT_FLOAT, 2000);
  const std::vector<double> want = referenceRender(plugin, readAudio(in), {});

  // The longest names a file system takes leave no room for a suffix on the temporary file.
  for (const std::size_t length : {239u, 255u}) {
    const std::string name = std::string(length - 4, 'n') + ".wav";
    succeeds({"render", in, dir / name, "--plugin", plugin, "-q"});
    EXPECT_TRUE(holds(readAudio(dir / name), want)) << length;
    fs::remove(dir / name);
  }

  // A link is written through and stays a link; the file it names keeps its permission bits.
  writeAudio(dir / "take.wav", 1, 44100, SF_FORMAT_FLOAT, 10);
  fs::permissions(dir / "take.wav",
                  fs::perms::owner_read | fs::perms::owner_write | fs::perms::group_read);
  fs::create_symlink("take.wav", dir / "latest.wav");
  succeeds({"render", in, dir / "latest.wav", "--plugin", plugin, "--overwrite", "-q"});
  EXPECT_TRUE(fs::is_symlink(dir / "latest.wav"));
  EXPECT_TRUE(holds(readAudio(dir / "take.wav"), want));
  EXPECT_EQ(fs::status(dir / "take.wav").permissions(),
            fs::perms::owner_read | fs::perms::owner_write | fs::perms::group_read);
  EXPECT_EQ(dir.files().size(), 3u);
}

TEST(Hostile, ATruncatedFileRendersWhatItHoldsAndSaysWhatWasMissing) {
  const ScratchDir dir;
  writeAudio(dir / "full.wav", 1, 44100, SF_FORMAT_PCM_16, 10000);
  const std::string full = slurp(dir / "full.wav");
  std::ofstream(dir / "cut.wav", std::ios::binary) << full.substr(0, full.size() - 6000UL * 2);
  const Result result = runCommand({"render", dir / "cut.wav", dir / "out.wav", "--plugin",
                                    testPlugin("fake"), "--format", "DOUBLE", "-q"});
  EXPECT_EQ(result.exitCode, 0);
  expectHas(result.err, {"warning: " + dir / "cut.wav" +
                         " ends 6000 frames before its header says; rendered the 4000 frames"});
  Audio head = readAudio(dir / "full.wav");
  head.samples.resize(4000);
  head.info.frames = 4000;
  EXPECT_TRUE(holds(readAudio(dir / "out.wav"), referenceRender(testPlugin("fake"), head, {})));
}

TEST(Hostile, ABarePluginNameIsAFileInTheWorkingFolder) {
  const ScratchDir dir;
  writeAudio(dir / "in.wav", 1, 44100, SF_FORMAT_FLOAT, 100);
  fs::copy_file(testPlugin("fake"), dir / "amp.so");
  const auto inDir = [&] {
    if (chdir(dir.path.c_str()) != 0) _exit(126);
  };
  EXPECT_EQ(
      runCommand({"render", "in.wav", "out.wav", "--plugin", "amp.so"}, kCommand, inDir).exitCode,
      0);
  // Known to the system loader, but not here.
  const Result system =
      runCommand({"render", "in.wav", "b.wav", "--plugin", "libm.so.6"}, kCommand, inDir);
  EXPECT_EQ(system.exitCode, 2);
  expectHas(system.err, {"plug-in not found: libm.so.6"});
}

}  // namespace
