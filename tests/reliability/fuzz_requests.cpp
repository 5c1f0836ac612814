// libFuzzer target: one plug-in instance driven through arbitrary sequences of host requests
// decoded from the input bytes: dispatcher calls with any opcode, index and value (pointer
// arguments always point at valid, sized records), parameter stores of any float, program and
// sample-rate changes, and blocks of 0 to 4096 samples of silence, noise, +-1e6, NaN or infinity.
//
// It asserts: no crash or sanitizer report; every output sample finite; silence before the first
// set-up; a stored parameter reads back unchanged; and, while every parameter lies in 0..1 and the
// block's input is finite, |out| within the bound derived in output_bound.h.
#include <fuzzer/FuzzedDataProvider.h>

#include <algorithm>
#include <cfloat>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <memory>
#include <string>
#include <vector>

#include "hostif/orv_typeif.h"
#include "tests/reliability/output_bound.h"
#include "tests/reliability/plugin_host.h"
#include "tests/reliability/test_signal.h"

namespace {

using reliability::PluginInstance;
using reliability::Signal;

constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();
constexpr float kInf = std::numeric_limits<float>::infinity();

constexpr float kRates[] = {1.0f,     8000.0f,  22050.0f, 44100.0f,  48000.0f,
                            48000.5f, 88200.0f, 96000.0f, 192000.0f, 384000.0f,
                            0.0f,     -0.0f,    -1.0f,    -48000.0f, kNaN,
                            kInf,     -kInf,    1e30f,    FLT_MAX,   FLT_TRUE_MIN};
constexpr float kValues[] = {0.0f,        1.0f,         0.5f, -0.0f, 0.25f,  0.75f,
                             0.50000006f, -1.0f,        2.0f, 1e30f, -1e30f, FLT_MAX,
                             -FLT_MAX,    FLT_TRUE_MIN, kNaN, kInf,  -kInf};

constexpr int kMaxBlock = 4096;
constexpr int kMaxRequests = 96;
// Keeps one input fast enough for thousands of runs a minute under the sanitizers.
constexpr std::int64_t kSampleBudget = 3 * kMaxBlock;
constexpr std::size_t kRecordBytes = 512;  // larger than any record a request may fill

enum class Request : std::uint8_t {
  kDispatch,
  kSetParameter,
  kSetProgram,
  kSetSampleRate,
  kProcess,
  kReopen,
  kMaxValue = kReopen
};

[[noreturn]] void fail(const char* what, double detail) {
  std::fprintf(stderr, "reliability_fuzz: %s (%.17g)\n", what, detail);
  std::abort();
}

bool sameValue(float a, float b) {
  return (std::isnan(a) && std::isnan(b)) || std::memcmp(&a, &b, sizeof a) == 0;
}

float pickFloat(FuzzedDataProvider& in, const float* table, std::size_t size) {
  if (in.ConsumeBool()) return table[in.ConsumeIntegralInRange<std::size_t>(0, size - 1)];
  const std::uint32_t bits = in.ConsumeIntegral<std::uint32_t>();
  float f;
  std::memcpy(&f, &bits, sizeof f);
  return f;
}

// Half the time the meaningful small range, otherwise any 32-bit value.
VstInt32 pickSmallOrAny(FuzzedDataProvider& in, VstInt32 lo, VstInt32 hi) {
  return in.ConsumeBool() ? in.ConsumeIntegralInRange<VstInt32>(lo, hi)
                          : in.ConsumeIntegral<VstInt32>();
}

class Session {
 public:
  Session() { open(); }

  void run(FuzzedDataProvider& in) {
    for (int r = 0; r < kMaxRequests && in.remaining_bytes() > 0; ++r) {
      switch (in.ConsumeEnum<Request>()) {
        case Request::kDispatch:
          dispatch(in);
          break;
        case Request::kSetParameter:
          setParameter(in);
          break;
        case Request::kSetProgram:
          plugin_->setProgram(pickSmallOrAny(in, -1, 17));
          break;
        case Request::kSetSampleRate:
          setSampleRate(pickFloat(in, kRates, std::size(kRates)));
          break;
        case Request::kProcess:
          process(in);
          break;
        case Request::kReopen:
          open();
          break;
      }
    }
  }

 private:
  void open() {
    plugin_.reset();
    plugin_ = std::make_unique<PluginInstance>(getinterface);
    if (plugin_->effect() == nullptr) fail("entry point returned no instance", 0.0);
    rate_ = -1.0;
    samplesSinceSetUp_ = 0;
  }

  // The plug-in ignores rates that are not finite and positive, and a repeat of the current one.
  void setSampleRate(float rate) {
    plugin_->setSampleRate(rate);
    const double r = rate;
    if (std::isfinite(r) && r > 0.0 && r != rate_) {
      rate_ = r;
      samplesSinceSetUp_ = 0;
    }
  }

  void setParameter(FuzzedDataProvider& in) {
    const VstInt32 index = pickSmallOrAny(in, -1, 6);
    const float value = pickFloat(in, kValues, std::size(kValues));
    plugin_->setParameter(index, value);
    const float back = plugin_->getParameter(index);
    if (index >= 1 && index <= 5 && !sameValue(back, value))
      fail("parameter read back changed", back);
    if ((index < 1 || index > 5) && back != 0.0f) fail("unknown parameter reads non-zero", back);
  }

  void dispatch(FuzzedDataProvider& in) {
    const VstInt32 opcode = pickSmallOrAny(in, -1, 81);
    const VstInt32 index = pickSmallOrAny(in, -2, 20);
    VstIntPtr value = in.ConsumeBool() ? in.ConsumeIntegralInRange<VstIntPtr>(-2, 20)
                                       : in.ConsumeIntegral<VstIntPtr>();
    const float opt = pickFloat(in, kValues, std::size(kValues));

    alignas(16) unsigned char record[kRecordBytes] = {};
    void* ptr = record;
    // Texts the plug-in reads: fuzz bytes, always terminated.
    const std::string text = in.ConsumeRandomLengthString(kRecordBytes - 1);
    std::memcpy(record, text.data(), text.size());

    VstSpeakerArrangement inArrangement{}, outArrangement{};
    VstSpeakerArrangement* inSlot = nullptr;
    VstSpeakerArrangement* outSlot = nullptr;
    switch (opcode) {
      case effClose:
        return;  // only at the end of the session
      case effSetSpeakerArrangement:
        inArrangement.numChannels = in.ConsumeIntegralInRange<VstInt32>(0, 8);
        outArrangement.numChannels = in.ConsumeIntegralInRange<VstInt32>(0, 8);
        value = in.ConsumeBool() ? reinterpret_cast<VstIntPtr>(&inArrangement) : 0;
        ptr = in.ConsumeBool() ? &outArrangement : nullptr;
        break;
      case effGetSpeakerArrangement:
        value = in.ConsumeBool() ? reinterpret_cast<VstIntPtr>(&inSlot) : 0;
        ptr = in.ConsumeBool() ? &outSlot : nullptr;
        break;
      case effSetChunk:
        value = in.ConsumeIntegralInRange<VstIntPtr>(0, kRecordBytes);
        break;
      case effSetSampleRate:
        setSampleRate(opt);
        return;
      case effGetParameterProperties:
        // A null record is part of this request's contract; text buffers never are.
        if (in.ConsumeBool()) ptr = nullptr;
        break;
      default:
        break;
    }
    plugin_->dispatch(opcode, index, value, ptr, opt);
  }

  void process(FuzzedDataProvider& in) {
    int n = in.ConsumeIntegralInRange<int>(0, kMaxBlock);
    const auto signal = static_cast<Signal>(
        in.ConsumeIntegralInRange<int>(0, static_cast<int>(Signal::kCount) - 1));
    const bool inPlace = in.ConsumeBool();
    n = static_cast<int>(std::min<std::int64_t>(n, budget_));
    budget_ -= n;

    reliability::fill(signal, noise_, input_.data(), n);
    double* out = inPlace ? input_.data() : output_.data();
    if (!inPlace) std::fill(output_.begin(), output_.begin() + n, kUnwritten);

    bool paramsInRange = true;
    for (VstInt32 p = 1; p <= 5; ++p) {
      const float v = plugin_->getParameter(p);
      paramsInRange = paramsInRange && v >= 0.0f && v <= 1.0f;
    }
    plugin_->process(input_.data(), out, n);

    const bool setUp = rate_ > 0.0;
    const bool bounded = setUp && paramsInRange && reliability::isFinite(signal);
    const double bound = bounded ? reliability::outputBound(rate_, samplesSinceSetUp_ + n) : 0.0;
    for (int i = 0; i < n; ++i) {
      if (!std::isfinite(out[i])) fail("non-finite output sample", out[i]);
      if (!setUp && out[i] != 0.0) fail("sound before the first set-up", out[i]);
      // |out| <= 1 * L1(down) * L1(hp30) * L1(lp2700) * L1(hp20) * 1.2 * 0.562341325, the L1
      // norms computed in output_bound.cpp at this rate: at 44100 Hz 1.7902 * 1.9957 * 1 *
      // 1.9972 * 0.6748 = 4.815; at 8000 Hz, where the 2700 Hz pole turns negative, 6.075. The
      // norms grow with the samples since the set-up, so the block's last sample has the widest
      // bound.
      if (bounded && std::fabs(out[i]) > bound) fail("output beyond the derived bound", out[i]);
    }
    if (setUp) samplesSinceSetUp_ += n;
  }

  static constexpr double kUnwritten = 1234.5;

  std::unique_ptr<PluginInstance> plugin_;
  double rate_ = -1.0;  // the set-up rate as the plug-in took it; -1 before the first
  std::int64_t samplesSinceSetUp_ = 0;
  std::int64_t budget_ = kSampleBudget;
  reliability::NoiseSource noise_{0x5EED};
  std::vector<double> input_ = std::vector<double>(kMaxBlock);
  std::vector<double> output_ = std::vector<double>(kMaxBlock);
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  FuzzedDataProvider in(data, size);
  Session session;
  session.run(in);
  return 0;  // the session's destructor closes the instance through effClose
}
