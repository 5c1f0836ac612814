// The command as installed under a prefix: it finds the plug-in beside itself first, then in the
// prefix's lib/tarnwell/, whatever folder or link it is started from; when neither holds it, it
// names both places and writes nothing.
#include <gtest/gtest.h>

#include "host_test_support.h"

namespace {

using namespace host_test;

// A prefix like /usr or /usr/local holding a copy of the built command as bin/tarnwell.
struct InstalledTree {
  ScratchDir scratch;
  fs::path prefix = fs::canonical(scratch.path);
  std::string command = prefix / "bin/tarnwell";

  InstalledTree() {
    fs::create_directories(prefix / "bin");
    fs::copy_file(TARNWELL_COMMAND, command);
  }
  void place(const std::string& plugin, const std::string& where) const {
    fs::create_directories((prefix / where).parent_path());
    fs::copy_file(plugin, prefix / where);
  }
  Result run(const std::vector<std::string>& args) const { return runCommand(args, command); }
};

std::string loadedLibrary(const Result& result) {
  EXPECT_EQ(result.exitCode, 0) << result.err;
  const std::string key = "  library         ";
  const auto start = result.out.find(key);
  if (start == std::string::npos) return "no library line in:\n" + result.out;
  const auto end = result.out.find(" (entry point", start);
  return result.out.substr(start + key.size(), end - start - key.size());
}

TEST(InstalledCommand, FindsThePluginBesideItselfFirstThenInLibTarnwell) {
  const InstalledTree tree;
  tree.place(kAmp, "lib/tarnwell/tarnwell.so");
  EXPECT_EQ(loadedLibrary(tree.run({"info"})), tree.prefix / "lib/tarnwell/tarnwell.so");
  // Started through a link elsewhere, as from /usr/local/bin to an /opt tree.
  const ScratchDir elsewhere;
  fs::create_symlink(tree.command, elsewhere / "tarnwell");
  EXPECT_EQ(loadedLibrary(runCommand({"info"}, elsewhere / "tarnwell")),
            tree.prefix / "lib/tarnwell/tarnwell.so");

  tree.place(testPlugin("fake"), "bin/tarnwell.so");
  EXPECT_EQ(loadedLibrary(tree.run({"info"})), tree.prefix / "bin/tarnwell.so");
}

TEST(InstalledCommand, WithoutThePluginNamesBothFoldersAndWritesNothing) {
  const InstalledTree tree;
  const ScratchDir work;
  writeAudio(work / "in.wav", 1, 44100, SF_FORMAT_PCM_16, 100);
  const std::string expected =
      "tarnwell: tarnwell.so not found in " + (tree.prefix / "bin").string() + " or " +
      (tree.prefix / "lib/tarnwell").string() + " (name one with --plugin PATH)\n";
  for (const std::vector<std::string>& args :
       {std::vector<std::string>{"info"}, {"render", work / "in.wav", work / "out.wav"}}) {
    const Result result = tree.run(args);
    EXPECT_EQ(result.exitCode, 2) << args[0];
    EXPECT_EQ(result.err, expected) << args[0];
  }
  EXPECT_EQ(work.files().size(), 1u);
}

}  // namespace
