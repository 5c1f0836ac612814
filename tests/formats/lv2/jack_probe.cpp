// A JACK client that plays a bass-like tone into the amp running as a JACK client (jalv) and
// records what comes back, then checks the take against the amp library's own output of the same
// tone: equal within float rounding once aligned by the graph's delay.
//
//   jack_probe AMP_CLIENT TREBLE_DIAL
//
// The server is the one JACK_DEFAULT_SERVER names; the probe waits for it and for the amp's
// ports (generous timeouts, for a loaded machine) and connects tone -> AMP:in, AMP:out -> take.
// Each take starts at a cycle boundary after the amp has run on silence, as the reference does.
// A take that an xrun disturbed (a late client skips cycles, so the take slips against the tone)
// is played again after the amp has settled; if every take is disturbed, only the level is
// checked. Exit 0 when the take is the amp's, 1 when it is not, 2 when the server, the amp or
// the connections cannot be reached.
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
#include "amp/tarnwell.h"
#include "hostif/audioeffect.h"

namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

constexpr auto kReachTimeout = 30s;
constexpr auto kTakeTimeout = 60s;
constexpr auto kSettle = 2s;  // the amp's tail after a take is far below float rounding by then
constexpr int kTakes = 5;

struct Probe {
  jack_port_t* tone = nullptr;
  jack_port_t* take = nullptr;
  std::vector<float> signal;    // played from the first cycle of a take
  std::vector<float> recorded;  // as long as signal
  std::atomic<int> requested{0};
  std::atomic<int> finished{0};
  std::atomic<int> xruns{0};
  int current = 0;           // audio thread only: the take being played
  std::size_t position = 0;  // audio thread only; the signal's length when no take runs
};

int process(jack_nframes_t frames, void* arg) noexcept {
  Probe& p = *static_cast<Probe*>(arg);
  auto* out = static_cast<float*>(jack_port_get_buffer(p.tone, frames));
  const auto* in = static_cast<const float*>(jack_port_get_buffer(p.take, frames));
  const int wanted = p.requested.load(std::memory_order_acquire);
  if (wanted != p.current) {
    p.current = wanted;
    p.position = 0;
  }
  const std::size_t length = p.signal.size();
  for (jack_nframes_t i = 0; i < frames; ++i) {
    const std::size_t k = p.position + i;
    out[i] = k < length ? p.signal[k] : 0.0f;
    if (k < length) p.recorded[k] = in[i];
  }
  if (p.position < length) {
    p.position += frames;
    if (p.position >= length) p.finished.store(p.current, std::memory_order_release);
  }
  return 0;
}

int countXrun(void* arg) noexcept {
  static_cast<Probe*>(arg)->xruns.fetch_add(1);
  return 0;
}

bool waitFor(auto condition, std::chrono::seconds limit) {
  const auto end = Clock::now() + limit;
  while (!condition()) {
    if (Clock::now() > end) return false;
    std::this_thread::sleep_for(20ms);
  }
  return true;
}

int fail(const std::string& what) {
  std::fprintf(stderr, "jack_probe: %s\n", what.c_str());
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
  std::unique_ptr<AudioEffect> amp = std::make_unique<Tarnwell>(nullptr);
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

double rms(const std::vector<float>& s) {
  double sum = 0.0;
  for (float x : s) sum += static_cast<double>(x) * x;
  return std::sqrt(sum / static_cast<double>(s.size()));
}

// A clean take: the amp's output, delayed by whole periods of the graph (0 when the amp runs
// after the probe in a cycle), equal within float rounding.
bool matches(const std::vector<float>& take, const std::vector<float>& expected, int period) {
  std::size_t bestLag = 0;
  double best = INFINITY;
  for (std::size_t lag = 0; lag <= 4 * static_cast<std::size_t>(period); ++lag) {
    const double d = largestDifference(take, expected, lag);
    if (d < best) best = d, bestLag = lag;
  }
  std::printf("delay %zu samples, largest difference %.3g\n", bestLag, best);
  // A float's rounding step at the take's peak is about 6e-8.
  return best <= 1e-6;
}

// A disturbed take: finite, and at the amp's level.
bool soundsLikeTheAmp(const std::vector<float>& take, const std::vector<float>& expected) {
  for (float x : take) {
    if (!std::isfinite(x)) return false;
  }
  const double ratio = rms(take) / rms(expected);
  std::printf("level against the reference: %.3f\n", ratio);
  return ratio > 0.5 && ratio < 2.0;
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
  probe.position = probe.signal.size();
  probe.tone = jack_port_register(client, "tone", JACK_DEFAULT_AUDIO_TYPE, JackPortIsOutput, 0);
  probe.take = jack_port_register(client, "take", JACK_DEFAULT_AUDIO_TYPE, JackPortIsInput, 0);
  if (probe.tone == nullptr || probe.take == nullptr) return fail("cannot register ports");
  jack_set_process_callback(client, process, &probe);
  jack_set_xrun_callback(client, countXrun, &probe);
  if (jack_activate(client) != 0) return fail("cannot activate");

  const std::string ampIn = ampClient + ":in", ampOut = ampClient + ":out";
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
    return fail("cannot connect to the amp's ports " + ampIn + " and " + ampOut);
  }

  const std::vector<float> expected = reference(probe.signal, rate, period, treble);
  int exit = 1;
  for (int take = 1; take <= kTakes; ++take) {
    std::this_thread::sleep_for(kSettle);
    const int xrunsBefore = probe.xruns.load();
    probe.requested.store(take, std::memory_order_release);
    if (!waitFor([&] { return probe.finished.load(std::memory_order_acquire) == take; },
                 kTakeTimeout)) {
      exit = fail("the take never finished: is the server running?");
      break;
    }
    std::this_thread::sleep_for(200ms);  // an xrun of the last cycles is reported a little later
    const bool clean = probe.xruns.load() == xrunsBefore;
    std::printf("take %d (period %d, %s): ", take, period, clean ? "clean" : "xruns");
    if (clean) {
      exit = matches(probe.recorded, expected, period) ? 0 : 1;
      break;
    }
    std::printf("played again\n");
    if (take == kTakes) {
      std::printf("every take disturbed by xruns; ");
      exit = soundsLikeTheAmp(probe.recorded, expected) ? 0 : 1;
    }
  }
  jack_deactivate(client);
  jack_client_close(client);
  if (exit == 1) std::fprintf(stderr, "jack_probe: the take is not the amp's output\n");
  return exit;
}
