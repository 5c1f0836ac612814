// libFuzzer target: one instance driven through arbitrary sequences of host requests: dispatcher
// calls with any opcode, index and value (pointer arguments always at valid, sized records;
// effClose only at the end), parameter stores of any float, program and sample-rate changes, and
// blocks of 0 to 4096 samples of silence, noise, +-1e6, NaN or infinity. Asserted: no crash or
// sanitizer report; every output sample finite; silence before the first set-up; a parameter reads
// back as stored; and, while every parameter lies in 0..1 and the input is finite, |out| within
// the bound derived in output_bound.h.
#include <fuzzer/FuzzedDataProvider.h>

#include <algorithm>
#include <bit>
#include <cfloat>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "tests/reliability/output_bound.h"
#include "tests/reliability/plugin_host.h"

namespace {

constexpr float kNaN = NAN, kInf = INFINITY;
constexpr float kRates[] = {1.0f,     8000.0f,  22050.0f, 44100.0f,  48000.0f,
                            48000.5f, 88200.0f, 96000.0f, 192000.0f, 384000.0f,
                            0.0f,     -0.0f,    -1.0f,    -48000.0f, kNaN,
                            kInf,     -kInf,    1e30f,    FLT_MAX,   FLT_TRUE_MIN};
constexpr float kValues[] = {0.0f,        1.0f,         0.5f, -0.0f, 0.25f,  0.75f,
                             0.50000006f, -1.0f,        2.0f, 1e30f, -1e30f, FLT_MAX,
                             -FLT_MAX,    FLT_TRUE_MIN, kNaN, kInf,  -kInf};
// Inputs, the finite ones first: silence, noise in [-1, 1), +1e6, -1e6, +-1e6 alternating; NaN,
// +inf, -inf, noise with a NaN every 97th sample.
constexpr double kLevels[] = {0.0, 0.0, 1e6, -1e6, 1e6, kNaN, kInf, -kInf, kNaN};
constexpr int kFiniteInputs = 5, kMaxBlock = 4096, kMaxRequests = 96;
constexpr std::size_t kRecordBytes = 512;  // more than any record a request fills

[[noreturn]] void fail(const char* what, double detail) {
  std::fprintf(stderr, "reliability_fuzz: %s (%.17g)\n", what, detail);
  std::abort();
}

// Half the time an entry of `table`, otherwise any bit pattern.
template <std::size_t N>
float pickFloat(FuzzedDataProvider& in, const float (&table)[N]) {
  if (in.ConsumeBool()) return table[in.ConsumeIntegralInRange<std::size_t>(0, N - 1)];
  return std::bit_cast<float>(in.ConsumeIntegral<std::uint32_t>());
}

// Half the time the meaningful range, otherwise any value.
template <typename T>
T pickSmallOrAny(FuzzedDataProvider& in, T lo, T hi) {
  return in.ConsumeBool() ? in.ConsumeIntegralInRange<T>(lo, hi) : in.ConsumeIntegral<T>();
}

class Session {
 public:
  void run(FuzzedDataProvider& in) {
    using Handler = void (Session::*)(FuzzedDataProvider&);  // in make_corpus.py's order
    constexpr Handler kHandlers[] = {&Session::dispatch,   &Session::setParameter,
                                     &Session::setProgram, &Session::setRate,
                                     &Session::process,    &Session::reopen};
    reopen(in);
    for (int r = 0; r < kMaxRequests && in.remaining_bytes() > 0; ++r)
      (this->*kHandlers[in.ConsumeIntegralInRange<std::size_t>(0, std::size(kHandlers) - 1)])(in);
  }  // the instance closes through effClose with the session

 private:
  void reopen(FuzzedDataProvider&) {
    plugin_.reset();
    plugin_ = std::make_unique<reliability::PluginInstance>(getinterface);
    if (plugin_->effect() == nullptr) fail("entry point returned no instance", 0.0);
    rate_ = -1.0;
  }
  void setProgram(FuzzedDataProvider& in) { plugin_->setProgram(pickSmallOrAny(in, -1, 17)); }
  void setRate(FuzzedDataProvider& in) { setSampleRate(pickFloat(in, kRates)); }

  // The plug-in ignores rates that are not finite and positive, and a repeat of the current one.
  void setSampleRate(float rate) {
    plugin_->setSampleRate(rate);
    if (std::isfinite(rate) && rate > 0.0f && rate != rate_) {
      rate_ = rate;
      samplesSinceSetUp_ = 0;
    }
  }

  void setParameter(FuzzedDataProvider& in) {
    const VstInt32 index = pickSmallOrAny(in, -1, 6);
    const float value = pickFloat(in, kValues);
    plugin_->setParameter(index, value);
    const float back = plugin_->getParameter(index), stored = index >= 1 && index <= 5 ? value : 0;
    if (back != stored && !(std::isnan(back) && std::isnan(stored)))
      fail("parameter reads back other than stored (0 if unknown)", back);
  }

  void dispatch(FuzzedDataProvider& in) {
    const VstInt32 opcode = pickSmallOrAny(in, -1, 81), index = pickSmallOrAny(in, -2, 20);
    VstIntPtr value = pickSmallOrAny<VstIntPtr>(in, -2, 20);
    const float opt = pickFloat(in, kValues);
    alignas(16) char record[kRecordBytes] = {};
    void* ptr = record;
    in.ConsumeRandomLengthString(kRecordBytes - 1).copy(record, kRecordBytes);  // terminated
    VstSpeakerArrangement inArrangement{}, outArrangement{};
    VstSpeakerArrangement *inSlot = nullptr, *outSlot = nullptr;
    switch (opcode) {
      case effClose:
        return;
      case effSetSampleRate:
        return setSampleRate(opt);
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
      case effGetParameterProperties:  // a null record is part of this request's contract
        if (in.ConsumeBool()) ptr = nullptr;
        break;
    }
    plugin_->dispatch(opcode, index, value, ptr, opt);
  }

  void process(FuzzedDataProvider& in) {
    const int n = std::min(in.ConsumeIntegralInRange<int>(0, kMaxBlock), budget_);
    const int kind = in.ConsumeIntegralInRange<int>(0, std::size(kLevels) - 1);
    double* out = in.ConsumeBool() ? input_.data() : output_.data();  // in place or not
    budget_ -= n;
    for (int i = 0; i < n; ++i) {
      const bool noisy = kind == 1 || (kind == 8 && i % 97 != 0);
      input_[i] = noisy ? noise_.nextSample() : kind == 4 && i % 2 ? -1e6 : kLevels[kind];
      output_[i] = 1234.5;  // overwritten unless the block runs in place
    }
    bool inRange = true;
    for (VstInt32 p = 1; p <= 5; ++p) {
      const float v = plugin_->getParameter(p);
      inRange = inRange && v >= 0.0f && v <= 1.0f;
    }
    plugin_->process(input_.data(), out, n);

    const bool setUp = rate_ > 0.0, bounded = setUp && inRange && kind < kFiniteInputs;
    // 4.815 at 44100 Hz; 6.075 at 8000 Hz, where the 2700 Hz pole turns negative. The norms grow
    // with the samples since the set-up, so the block's last sample has the widest bound.
    const double bound = bounded ? reliability::outputBound(rate_, samplesSinceSetUp_ + n) : 0.0;
    for (int i = 0; i < n; ++i) {
      if (!std::isfinite(out[i])) fail("non-finite output sample", out[i]);
      if (!setUp && out[i] != 0.0) fail("sound before the first set-up", out[i]);
      if (bounded && std::fabs(out[i]) > bound) fail("output beyond the derived bound", out[i]);
    }
    samplesSinceSetUp_ += n;
  }

  std::unique_ptr<reliability::PluginInstance> plugin_;
  double rate_ = -1.0;  // the rate of the last set-up; -1 before the first
  std::int64_t samplesSinceSetUp_ = 0;
  int budget_ = 3 * kMaxBlock;  // samples per input: thousands of runs a minute under ASan
  reliability::NoiseSource noise_{0x5EED};
  std::vector<double> input_ = std::vector<double>(kMaxBlock), output_ = input_;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  FuzzedDataProvider in(data, size);
  Session().run(in);
  return 0;
}
