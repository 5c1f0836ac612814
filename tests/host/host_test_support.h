// Shared by the host tests: scratch folders, audio files, the command run as a user runs it, and
// the reference render (each channel through its own loader instance, block by block).
#pragma once

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sndfile.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "host/plugin_instance.h"
#include "host/settle.h"

namespace host_test {

namespace fs = std::filesystem;
using tarnwell::host::PluginInstance;
using tarnwell::host::PluginLibrary;

inline const std::string kAmp = TARNWELL_PLUGIN;
inline const std::string kCommand = TARNWELL_COMMAND;

inline std::string testPlugin(const std::string& kind) {
  return TEST_PLUGIN_DIR "/test_plugin_" + kind + ".so";
}

inline std::string slurp(const fs::path& path) {
  std::ifstream in(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), {}};
}

// A fresh folder, removed with all it holds at the end of the test.
struct ScratchDir {
  std::string path = fs::temp_directory_path() / "tarnwell-host-XXXXXX";
  ScratchDir() {
    if (mkdtemp(path.data()) == nullptr) throw std::runtime_error("no scratch folder");
  }
  ScratchDir(const ScratchDir&) = delete;
  ~ScratchDir() { fs::remove_all(path, ignored); }
  std::error_code ignored;
  std::string operator/(const std::string& name) const { return fs::path(path) / name; }
  // name -> bytes of a file, where a link points, or the kind of anything else (never opened)
  std::map<std::string, std::string> files() const {
    std::map<std::string, std::string> files;
    for (const auto& entry : fs::directory_iterator(path)) {
      std::string& what = files[entry.path().filename()];
      if (entry.is_symlink()) {
        what = "-> " + fs::read_symlink(entry).string();
      } else if (entry.is_regular_file()) {
        what = slurp(entry);
      } else {
        what = "type " + std::to_string(static_cast<int>(entry.status().type()));
      }
    }
    return files;
  }
};

struct Audio {
  SF_INFO info{};
  std::vector<double> samples;  // interleaved
};

// By default a different low sine per channel, peaking at -6 dBFS.
inline void writeAudio(const fs::path& path, int channels, int rate, int subtype, long frames,
                       std::function<double(long, int)> sample = {}) {
  if (!sample) sample = [](long i, int c) { return 0.5 * std::sin(0.008 * (c + 1) * i); };
  SF_INFO info{0, rate, channels, SF_FORMAT_WAV | subtype, 0, 0};
  std::vector<double> samples(frames * channels);
  for (long i = 0; i < frames * channels; ++i)
    samples[i] = sample(i / channels, static_cast<int>(i % channels));
  SNDFILE* file = sf_open(path.c_str(), SFM_WRITE, &info);
  sf_writef_double(file, samples.data(), frames);
  sf_close(file);
}

inline Audio readAudio(const fs::path& path) {
  Audio audio;
  SNDFILE* file = sf_open(path.c_str(), SFM_READ, &audio.info);
  audio.samples.resize(audio.info.frames * audio.info.channels);
  sf_readf_double(file, audio.samples.data(), audio.info.frames);
  sf_close(file);
  return audio;
}

// Starts the command (the built one unless another copy is named) with its output into the files;
// `inChild` runs in the new process just before the command replaces it (a working folder, a
// limit, a signal disposition).
inline pid_t startCommand(std::vector<std::string> args, const std::string& out = "/dev/null",
                          const std::string& err = "/dev/null",
                          const std::string& command = TARNWELL_COMMAND,
                          const std::function<void()>& inChild = {}) {
  args.insert(args.begin(), command);
  std::vector<char*> argv;
  argv.reserve(args.size() + 1);
  for (std::string& a : args) argv.push_back(a.data());
  argv.push_back(nullptr);
  const pid_t pid = fork();
  if (pid != 0) return pid;
  dup2(open(out.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600), STDOUT_FILENO);
  dup2(open(err.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600), STDERR_FILENO);
  if (inChild) inChild();
  execv(argv[0], argv.data());
  _exit(127);
}

inline int waitCommand(pid_t pid) {  // the exit code, or -signal when a signal ended it
  int status = 0;
  waitpid(pid, &status, 0);
  return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
}

struct Result {
  int exitCode;
  std::string out, err;
};
inline Result runCommand(const std::vector<std::string>& args,
                         const std::string& command = TARNWELL_COMMAND,
                         const std::function<void()>& inChild = {},
                         const std::string& stdoutTo = "") {  // none: captured
  const ScratchDir logs;
  const std::string out = stdoutTo.empty() ? logs / "out" : stdoutTo;
  const int code = waitCommand(startCommand(args, out, logs / "err", command, inChild));
  return {code, stdoutTo.empty() ? slurp(out) : "", slurp(logs / "err")};
}

inline std::string succeeds(const std::vector<std::string>& args) {  // the command's stdout
  const Result result = runCommand(args);
  EXPECT_EQ(result.exitCode, 0) << result.err;
  return result.out;
}

inline void expectHas(const std::string& text, std::initializer_list<std::string> parts) {
  for (const std::string& part : parts)
    EXPECT_NE(text.find(part), std::string::npos) << part << "\nnot in\n" << text;
}

struct Settings {
  int program = 0;    // as users count; 0 keeps the start-up program
  double volume = 0;  // dial 1..10; 0 leaves it
  int block = 4096;
};
inline std::vector<double> referenceRender(const std::string& plugin, const Audio& input,
                                           const Settings& s) {
  const int channels = input.info.channels;
  const auto library = PluginLibrary::open(plugin);
  std::vector<double> output(input.samples.size()), dry(s.block), wet(s.block);
  for (int c = 0; c < channels; ++c) {
    PluginInstance amp(library);
    if (s.program > 0) amp.setProgram(s.program - 1);
    if (s.volume > 0) amp.setParameter(2, static_cast<float>((s.volume - 1.0) / 9.0));
    amp.prepare(input.info.samplerate, s.block);
    tarnwell::host::settle(amp);
    for (long start = 0; start < input.info.frames; start += s.block) {
      const int n = static_cast<int>(std::min<long>(s.block, input.info.frames - start));
      for (int i = 0; i < n; ++i) dry[i] = input.samples[(start + i) * channels + c];
      amp.process(dry.data(), wet.data(), n);
      for (int i = 0; i < n; ++i) output[(start + i) * channels + c] = wet[i];
    }
  }
  return output;
}

// The file holds `want` as its format stores it (float or double here).
inline testing::AssertionResult holds(const Audio& file, std::vector<double> want) {
  const bool single = (file.info.format & SF_FORMAT_SUBMASK) == SF_FORMAT_FLOAT;
  for (double& s : want) s = single ? static_cast<float>(s) : s;
  if (file.samples.size() != want.size()) return testing::AssertionFailure() << "length differs";
  const auto [got, wanted] = std::ranges::mismatch(file.samples, want);
  if (got == file.samples.end()) return testing::AssertionSuccess();
  return testing::AssertionFailure()
         << "sample " << got - file.samples.begin() << ": " << *got << " != " << *wanted;
}

}  // namespace host_test
