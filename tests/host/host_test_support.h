// Shared by the host tests: where the command and the plug-ins are, a scratch directory per test,
// audio files made and read with the audio library, the command run as a user runs it, and the
// reference render done with the loader alone.
#pragma once

#include <sndfile.h>
#include <sys/types.h>

#include <filesystem>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace host_test {

constexpr std::string_view kCommand = TARNWELL_COMMAND;
constexpr std::string_view kRealPlugin = TARNWELL_PLUGIN;  // empty when the amp is not built
constexpr std::string_view kPluginDir = TEST_PLUGIN_DIR;

std::filesystem::path testPlugin(std::string_view kind);  // tests/plugins/test_plugin_<kind>.so

// A fresh directory, removed with everything in it at the end of the test.
class ScratchDir {
 public:
  ScratchDir();
  ~ScratchDir();
  ScratchDir(const ScratchDir&) = delete;
  ScratchDir& operator=(const ScratchDir&) = delete;
  const std::filesystem::path& path() const { return path_; }
  std::filesystem::path operator/(std::string_view name) const { return path_ / name; }
  std::vector<std::string> entries() const;  // file names, sorted

 private:
  std::filesystem::path path_;
};

struct Audio {
  SF_INFO info{};
  std::vector<double> samples;  // interleaved
};

// A deterministic test signal: decaying tones per channel around -6 dBFS, different per channel.
double testSignal(long frame, int channel, int rate);

void writeAudio(const std::filesystem::path& path, int channels, int rate, int format, long frames,
                const std::function<double(long, int)>& sample);
Audio readAudio(const std::filesystem::path& path);

struct Result {
  int exitCode;  // -signal when a signal ended it
  std::string out;
  std::string err;
};
Result runCommand(const std::vector<std::string>& args);
pid_t startCommand(const std::vector<std::string>& args);  // output discarded
int waitCommand(pid_t pid);                                // as Result::exitCode

struct Settings {
  int program = 0;    // 1-based; 0 keeps the start-up program
  double volume = 0;  // dial 1..10; 0 leaves it
  int blockFrames = 4096;
};
// Each channel through its own instance, block by block, as the command should do it.
std::vector<double> referenceRender(const std::filesystem::path& plugin, const Audio& input,
                                    const Settings& settings);

// The samples as a float file stores them.
std::vector<double> roundedToFloat(std::vector<double> samples);

}  // namespace host_test
