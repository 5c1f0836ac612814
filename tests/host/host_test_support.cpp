#include "host_test_support.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <fstream>
#include <memory>
#include <numbers>
#include <sstream>
#include <stdexcept>

#include "host/plugin_instance.h"

extern char** environ;

namespace host_test {

std::filesystem::path testPlugin(std::string_view kind) {
  return std::filesystem::path(kPluginDir) / ("test_plugin_" + std::string(kind) + ".so");
}

ScratchDir::ScratchDir() {
  std::string pattern = (std::filesystem::temp_directory_path() / "tarnwell-host-XXXXXX").native();
  if (mkdtemp(pattern.data()) == nullptr) throw std::runtime_error("mkdtemp failed");
  path_ = pattern;
}

ScratchDir::~ScratchDir() {
  std::error_code ignored;
  std::filesystem::remove_all(path_, ignored);
}

std::vector<std::string> ScratchDir::entries() const {
  std::vector<std::string> names;
  for (const auto& entry : std::filesystem::directory_iterator(path_)) {
    names.push_back(entry.path().filename().string());
  }
  std::ranges::sort(names);
  return names;
}

double testSignal(long frame, int channel, int rate) {
  const double t = static_cast<double>(frame) / rate;
  const double hz = 55.0 * (channel + 1);
  return 0.5 * std::exp(-1.5 * std::fmod(t, 0.5)) * std::sin(2.0 * std::numbers::pi * hz * t);
}

void writeAudio(const std::filesystem::path& path, int channels, int rate, int format, long frames,
                const std::function<double(long, int)>& sample) {
  SF_INFO info{};
  info.channels = channels;
  info.samplerate = rate;
  info.format = format;
  SNDFILE* file = sf_open(path.c_str(), SFM_WRITE, &info);
  if (file == nullptr) throw std::runtime_error("cannot write " + path.string());
  std::vector<double> frame(channels);
  for (long i = 0; i < frames; ++i) {
    for (int c = 0; c < channels; ++c) frame[c] = sample(i, c);
    sf_writef_double(file, frame.data(), 1);
  }
  sf_close(file);
}

Audio readAudio(const std::filesystem::path& path) {
  Audio audio;
  SNDFILE* file = sf_open(path.c_str(), SFM_READ, &audio.info);
  if (file == nullptr) throw std::runtime_error("cannot read " + path.string());
  audio.samples.resize(static_cast<std::size_t>(audio.info.frames) * audio.info.channels);
  sf_readf_double(file, audio.samples.data(), audio.info.frames);
  sf_close(file);
  return audio;
}

namespace {

std::string slurp(const std::filesystem::path& path) {
  std::ifstream in(path);
  std::stringstream text;
  text << in.rdbuf();
  return text.str();
}

pid_t spawn(const std::vector<std::string>& args, const char* out, const char* err) {
  std::vector<char*> argv;
  std::string command(kCommand);
  argv.push_back(command.data());
  std::vector<std::string> copies = args;
  for (std::string& a : copies) argv.push_back(a.data());
  argv.push_back(nullptr);

  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
  posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, out, O_WRONLY | O_CREAT | O_TRUNC,
                                   0600);
  posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, err, O_WRONLY | O_CREAT | O_TRUNC,
                                   0600);
  pid_t pid = -1;
  const int failed = posix_spawn(&pid, command.c_str(), &actions, nullptr, argv.data(), environ);
  posix_spawn_file_actions_destroy(&actions);
  if (failed != 0) throw std::runtime_error("cannot start " + command);
  return pid;
}

}  // namespace

Result runCommand(const std::vector<std::string>& args) {
  const ScratchDir logs;
  const auto out = logs / "stdout";
  const auto err = logs / "stderr";
  const int code = waitCommand(spawn(args, out.c_str(), err.c_str()));
  return {code, slurp(out), slurp(err)};
}

pid_t startCommand(const std::vector<std::string>& args) {
  return spawn(args, "/dev/null", "/dev/null");
}

int waitCommand(pid_t pid) {
  int status = 0;
  waitpid(pid, &status, 0);
  return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
}

std::vector<double> referenceRender(const std::filesystem::path& plugin, const Audio& input,
                                    const Settings& settings) {
  using tarnwell::host::PluginInstance;
  const int channels = input.info.channels;
  const long frames = static_cast<long>(input.info.frames);
  const auto library = tarnwell::host::PluginLibrary::open(plugin);
  std::vector<double> output(input.samples.size());
  std::vector<double> dry(settings.blockFrames);
  std::vector<double> wet(settings.blockFrames);
  for (int c = 0; c < channels; ++c) {
    PluginInstance amp(library);
    if (settings.program > 0) amp.setProgram(settings.program - 1);
    if (settings.volume > 0) amp.setParameter(2, static_cast<float>((settings.volume - 1.0) / 9.0));
    amp.prepare(input.info.samplerate, settings.blockFrames);
    for (long start = 0; start < frames; start += settings.blockFrames) {
      const int n = static_cast<int>(std::min<long>(settings.blockFrames, frames - start));
      for (int i = 0; i < n; ++i) dry[i] = input.samples[(start + i) * channels + c];
      amp.process(dry.data(), wet.data(), n);
      for (int i = 0; i < n; ++i) output[(start + i) * channels + c] = wet[i];
    }
  }
  return output;
}

std::vector<double> roundedToFloat(std::vector<double> samples) {
  for (double& s : samples) s = static_cast<float>(s);
  return samples;
}

}  // namespace host_test
