// A JACK client that plays a bass-like tone into the amp running as a JACK client (jalv) and
// records what comes back, then checks the take against the amp library's own output of the same
// tone: equal within float rounding once aligned by the graph's delay.
//
//   jack_probe AMP_CLIENT TREBLE_DIAL
//
// The server is the one JACK_DEFAULT_SERVER names; the probe waits for it and for the amp's
// ports (generous timeouts, for a loaded machine), connects tone -> AMP:in and AMP:out -> take,
// and plays from the first cycle after both connections stand. The amp has run on silence
// until then, as the reference does. Exit 0 when the take is the amp's, 1 when it is not, 2 when
// the server, the amp or the connections cannot be reached.
//
// The process callback obeys the audio-thread rule: it only reads and writes buffers prepared
// beforehand and calls nothing but jack_port_get_buffer.
#include <jack/jack.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "amp/parameter_table.h"
#include "hostif/audioeffect.h"

namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

constexpr auto kReachTimeout = 30s;
constexpr auto kTakeTimeout = 120s;

struct Probe {
  jack_port_t* tone = nullptr;
  jack_port_t* take = nullptr;
  std::vector<float> signal;    // played from the first cycle after `playing` turns true
  std::vector<float> recorded;  // as long as signal
  std::size_t position = 0;     // audio thread only
  std::atomic<bool> playing{false};
  std::atomic<bool> done{false};
};

int process(jack_nframes_t frames, void* arg) noexcept {
  Probe& p = *static_cast<Probe*>(arg);
  auto* out = static_cast<float*>(jack_port_get_buffer(p.tone, frames));
  const auto* in = static_cast<const float*>(jack_port_get_buffer(p.take, frames));
  const bool live = p.playing.load(std::memory_order_acquire) && !p.done.load();
  for (jack_nframes_t i = 0; i < frames; ++i) {
    const std::size_t k = p.position + i;
    const bool inTake = live && k < p.signal.size();
    out[i] = inTake ? p.signal[k] : 0.0f;
    if (inTake) p.recorded[k] = in[i];
  }
  if (live) {
    p.position += frames;
    if (p.position >= p.signal.size()) p.done.store(true, std::memory_order_release);
  }
  return 0;
}

bool waitFor(auto condition, std::chrono::seconds limit) {
  const auto end = Clock::now() + limit;
  while (!condition()) {
    if (Clock::now() > end) return false;
    std::this_thread::sleep_for(50ms);
  }
  return true;
}

int fail(const char* what) {
  std::fprintf(stderr, "jack_probe: %s\n", what);
  return 2;
}

// Two low sines at DI level (peak about -6 dBFS), then a short tail of silence.
std::vector<float> bassTone(double rate) {
  const std::size_t length = static_cast<std::size_t>(rate * 1.5);
  std::vector<float> s(length, 0.0f);
  for (std::size_t i = 0; i < length * 4 / 5; ++i) {
    const double t = 6.283185307179586 * static_cast<double>(i) / rate;
    s[i] = static_cast<float>(0.35 * std::sin(55.0 * t) + 0.15 * std::sin(165.0 * t));
  }
  return s;
}

// The amp library's output for the same history: a second of silence in the server's periods,
// then the tone.
std::vector<float> reference(const std::vector<float>& tone, double rate, int period,
                             float treble) {
  std::unique_ptr<AudioEffect> amp(createPluginFilter(nullptr));
  amp->setSampleRate(static_cast<float>(rate));
  amp->setBlockSize(period);
  amp->resume();
  amp->setParameter(kParamTreble, tarnwell::valueOfDial(treble));
  std::vector<double> block(period);
  double* io = block.data();
  for (int b = 0; b * period < static_cast<int>(rate); ++b) {
    std::fill(block.begin(), block.end(), 0.0);
    amp->processDoubleReplacing(&io, &io, period);
  }
  std::vector<float> out(tone.size());
  for (std::size_t start = 0; start < tone.size(); start += period) {
    const std::size_t n = std::min<std::size_t>(period, tone.size() - start);
    std::copy(tone.begin() + start, tone.begin() + start + n, block.begin());
    amp->processDoubleReplacing(&io, &io, static_cast<int>(n));
    std::copy(block.begin(), block.begin() + n, out.begin() + start);
  }
  return out;
}

// The largest difference between the take and the reference delayed by `lag` samples, over the
// part of the take that the delayed reference covers.
double largestDifference(const std::vector<float>& take, const std::vector<float>& expected,
                         std::size_t lag) {
  double largest = 0.0;
  for (std::size_t i = lag; i < take.size(); ++i) {
    largest = std::max(largest, std::fabs(static_cast<double>(take[i]) - expected[i - lag]));
  }
  return largest;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 3) {
    std::fprintf(stderr, "usage: jack_probe AMP_CLIENT TREBLE_DIAL\n");
    return 2;
  }
  const std::string ampClient = argv[1];
  const float treble = std::strtof(argv[2], nullptr);

  // Quiet while the server may still be starting; its complaints would only repeat the wait.
  jack_set_error_function([](const char*) {});
  jack_client_t* client = nullptr;
  waitFor(
      [&] {
        client = jack_client_open("tarnwell-probe", JackNoStartServer, nullptr);
        return client != nullptr;
      },
      kReachTimeout);
  if (client == nullptr) return fail("no JACK server to join");
  jack_set_error_function([](const char* message) { std::fprintf(stderr, "JACK: %s\n", message); });

  Probe probe;
  const double rate = jack_get_sample_rate(client);
  const int period = static_cast<int>(jack_get_buffer_size(client));
  probe.signal = bassTone(rate);
  probe.recorded.assign(probe.signal.size(), 0.0f);
  probe.tone = jack_port_register(client, "tone", JACK_DEFAULT_AUDIO_TYPE, JackPortIsOutput, 0);
  probe.take = jack_port_register(client, "take", JACK_DEFAULT_AUDIO_TYPE, JackPortIsInput, 0);
  if (probe.tone == nullptr || probe.take == nullptr) return fail("cannot register ports");
  jack_set_process_callback(client, process, &probe);
  if (jack_activate(client) != 0) return fail("cannot activate");

  const std::string ampIn = ampClient + ":in", ampOut = ampClient + ":out";
  const bool ampThere = waitFor(
      [&] {
        return jack_port_by_name(client, ampIn.c_str()) != nullptr &&
               jack_port_by_name(client, ampOut.c_str()) != nullptr;
      },
      kReachTimeout);
  if (!ampThere) {
    jack_client_close(client);
    return fail(("the amp's ports " + ampIn + " and " + ampOut + " never appeared").c_str());
  }
  // The amp's ports exist before its client is active, and only an active client connects.
  const bool connected = waitFor(
      [&] {
        const int toAmp = jack_connect(client, jack_port_name(probe.tone), ampIn.c_str());
        const int fromAmp = jack_connect(client, ampOut.c_str(), jack_port_name(probe.take));
        return (toAmp == 0 || toAmp == EEXIST) && (fromAmp == 0 || fromAmp == EEXIST);
      },
      kReachTimeout);
  if (!connected) {
    jack_client_close(client);
    return fail("cannot connect to the amp");
  }
  probe.playing.store(true, std::memory_order_release);
  const bool recorded = waitFor([&] { return probe.done.load(); }, kTakeTimeout);
  jack_deactivate(client);
  jack_client_close(client);
  if (!recorded) return fail("the take never finished: is the server running?");

  // The graph delays the amp's answer by whole periods (0 when the amp runs after the probe in a
  // cycle); the best of the first few is the alignment.
  const std::vector<float> expected = reference(probe.signal, rate, period, treble);
  std::size_t bestLag = 0;
  double best = INFINITY;
  for (std::size_t lag = 0; lag <= 4 * static_cast<std::size_t>(period); ++lag) {
    const double d = largestDifference(probe.recorded, expected, lag);
    if (d < best) best = d, bestLag = lag;
  }
  double peak = 0.0;
  for (float x : probe.recorded) peak = std::max(peak, std::fabs(static_cast<double>(x)));
  std::printf("period %d, delay %zu samples, take peak %.6f, largest difference %.3g\n", period,
              bestLag, peak, best);

  // Float rounding of the output is about 6e-8 at the take's peak; the margin allows for the
  // different length of silence before the tone.
  if (!(peak > 0.05) || !(best <= 1e-6)) {
    std::fprintf(stderr, "jack_probe: the take is not the amp's output\n");
    return 1;
  }
  return 0;
}
