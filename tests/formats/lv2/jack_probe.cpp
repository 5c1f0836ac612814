// A JACK client that plays a bass-like tone into the amp running as a JACK client (jalv), records
// what comes back and checks the take against the amp library's output of the same tone: equal
// within float rounding once aligned by the graph's delay.
//
//   jack_probe AMP_CLIENT TREBLE_DIAL
//
// The server is the one JACK_DEFAULT_SERVER names. Each take starts at a cycle boundary after the
// amp has run on silence, as the reference does. A take that an xrun disturbed (a late client
// skips cycles, so the take slips against the tone) is played again. Exit 0 when the take is the
// amp's, 1 when it is not, 2 when the server or the amp's ports cannot be reached, 77 when every
// take was disturbed.
//
// The process callback only reads and writes buffers prepared beforehand and calls nothing but
// jack_port_get_buffer.
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
#include "amp/tarnwell.h"
#include "hostif/audioeffect.h"

namespace {

using namespace std::chrono_literals;

struct Probe {
  jack_port_t* tone = nullptr;
  jack_port_t* take = nullptr;
  std::vector<float> signal, recorded;  // equally long
  std::atomic<int> requested{0}, finished{0}, xruns{0};
  int current = 0;           // audio thread only: the take being played
  std::size_t position = 0;  // audio thread only; the signal's length when no take runs
};

int process(jack_nframes_t frames, void* arg) noexcept {
  Probe& p = *static_cast<Probe*>(arg);
  auto* out = static_cast<float*>(jack_port_get_buffer(p.tone, frames));
  const auto* in = static_cast<const float*>(jack_port_get_buffer(p.take, frames));
  if (const int wanted = p.requested.load(std::memory_order_acquire); wanted != p.current) {
    p.current = wanted;
    p.position = 0;
  }
  const std::size_t length = p.signal.size();
  for (jack_nframes_t i = 0; i < frames; ++i) {
    const std::size_t k = p.position + i;
    out[i] = k < length ? p.signal[k] : 0.0f;
    if (k < length) p.recorded[k] = in[i];
  }
  if (p.position < length && (p.position += frames) >= length)
    p.finished.store(p.current, std::memory_order_release);
  return 0;
}

// Polls for up to a minute: generous, for a loaded machine.
bool waitFor(auto condition) {
  for (int tries = 0; tries < 3000; ++tries) {
    if (condition()) return true;
    std::this_thread::sleep_for(20ms);
  }
  return false;
}

// Two low sines at DI level (peak about -6 dBFS), then a short tail of silence.
std::vector<float> bassTone(double rate) {
  std::vector<float> s(static_cast<std::size_t>(rate * 1.5), 0.0f);
  for (std::size_t i = 0; i < s.size() * 4 / 5; ++i) {
    const double t = 6.283185307179586 * static_cast<double>(i) / rate;
    s[i] = static_cast<float>(0.35 * std::sin(55.0 * t) + 0.15 * std::sin(165.0 * t));
  }
  return s;
}

// The amp library's output for the same history: a second of silence, then the tone, in the
// server's periods.
std::vector<float> reference(const std::vector<float>& tone, double rate, int period,
                             float treble) {
  std::unique_ptr<AudioEffect> amp = std::make_unique<Tarnwell>(nullptr);
  amp->setSampleRate(static_cast<float>(rate));
  amp->setBlockSize(period);
  amp->resume();
  amp->setParameter(kParamTreble, tarnwell::valueOfDial(treble));
  std::vector<double> history((static_cast<std::size_t>(rate) / period + 1) * period, 0.0);
  history.insert(history.end(), tone.begin(), tone.end());
  for (std::size_t start = 0; start < history.size(); start += period) {
    double* block = &history[start];
    const auto frames = std::min<std::size_t>(period, history.size() - start);
    amp->processDoubleReplacing(&block, &block, static_cast<int>(frames));
  }
  return std::vector<float>(history.end() - tone.size(), history.end());
}

// A take is the amp's output delayed by whole periods of the graph (0 when the amp runs after the
// probe in a cycle), equal within float rounding (a step is about 6e-8 at the take's peak).
bool matches(const std::vector<float>& take, const std::vector<float>& expected, int period) {
  double best = INFINITY;
  std::size_t bestLag = 0;
  for (std::size_t lag = 0; lag <= 4 * static_cast<std::size_t>(period); ++lag) {
    double largest = 0.0;
    for (std::size_t i = lag; i < take.size(); ++i)
      largest = std::max(largest, std::fabs(static_cast<double>(take[i]) - expected[i - lag]));
    if (largest < best) best = largest, bestLag = lag;
  }
  std::printf("delay %zu samples, largest difference %.3g\n", bestLag, best);
  return best <= 1e-6;
}

int fail(const std::string& what) {
  std::fprintf(stderr, "jack_probe: %s\n", what.c_str());
  return 2;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 3) {
    std::fprintf(stderr, "usage: jack_probe AMP_CLIENT TREBLE_DIAL\n");
    return 2;
  }
  jack_client_t* client = jack_client_open("tarnwell-probe", JackNoStartServer, nullptr);
  if (client == nullptr) return fail("no JACK server to join");

  Probe probe;
  const double rate = jack_get_sample_rate(client);
  const int period = static_cast<int>(jack_get_buffer_size(client));
  probe.signal = bassTone(rate);
  probe.recorded.assign(probe.signal.size(), 0.0f);
  probe.position = probe.signal.size();
  probe.tone = jack_port_register(client, "tone", JACK_DEFAULT_AUDIO_TYPE, JackPortIsOutput, 0);
  probe.take = jack_port_register(client, "take", JACK_DEFAULT_AUDIO_TYPE, JackPortIsInput, 0);
  jack_set_process_callback(client, process, &probe);
  jack_set_xrun_callback(
      client,
      [](void* p) {
        static_cast<Probe*>(p)->xruns.fetch_add(1);
        return 0;
      },
      &probe);
  if (probe.tone == nullptr || probe.take == nullptr || jack_activate(client) != 0)
    return fail("cannot register or activate the probe");

  // The amp's ports exist before its client is active, and only an active client connects.
  const std::string ampIn = std::string(argv[1]) + ":in", ampOut = std::string(argv[1]) + ":out";
  const bool connected = waitFor([&] {
    const int toAmp = jack_connect(client, jack_port_name(probe.tone), ampIn.c_str());
    const int fromAmp = jack_connect(client, ampOut.c_str(), jack_port_name(probe.take));
    return (toAmp == 0 || toAmp == EEXIST) && (fromAmp == 0 || fromAmp == EEXIST);
  });
  const std::vector<float> expected =
      reference(probe.signal, rate, period, std::strtof(argv[2], nullptr));
  int exit = connected ? 77 : fail("cannot connect to the amp's ports " + ampIn + " and " + ampOut);
  for (int take = 1; take <= 5 && exit == 77; ++take) {
    std::this_thread::sleep_for(2s);  // the amp's tail of the last take is far below rounding
    const int xrunsBefore = probe.xruns.load();
    probe.requested.store(take, std::memory_order_release);
    if (!waitFor([&] { return probe.finished.load(std::memory_order_acquire) == take; })) {
      exit = fail("the take never finished: is the server running?");
    } else {
      std::this_thread::sleep_for(200ms);  // an xrun of the last cycles is reported a little later
      const bool clean = probe.xruns.load() == xrunsBefore;
      std::printf("take %d (period %d): %s", take, period, clean ? "" : "xruns, played again\n");
      if (clean) exit = matches(probe.recorded, expected, period) ? 0 : 1;
    }
  }
  jack_deactivate(client);
  jack_client_close(client);
  if (exit == 1) std::fprintf(stderr, "jack_probe: the take is not the amp's output\n");
  if (exit == 77) std::printf("every take disturbed by xruns\n");
  return exit;
}
