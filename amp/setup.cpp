// Sample-rate set-up: everything that depends on the host rate. Runs on the host thread that sends
// effSetSampleRate, never during a block. New filters start with zero state, so a set-up also
// clears the memory of the whole chain; a repeated rate changes nothing.
#include <algorithm>
#include <cmath>
#include <limits>
#include <new>
#include <utility>

#include "amp/design_tables.h"
#include "amp/filter_bank.h"
#include "amp/tarnwell.h"

namespace {

// The rate-dependent parts built before anything old is touched; whatever it holds when it
// goes out of scope (the new parts after a failure, the old ones after a commit) is freed.
struct RateParts {
  IIRFilter** first = nullptr;
  IIRFilter** eq = nullptr;
  IIRFilter** master = nullptr;
  IIRFilter** final = nullptr;
  IIRFilter* outHighPass = nullptr;
  double* buffer = nullptr;
  VstInt32 numFirst, numEq, numMaster, numFinal;

  RateParts(VstInt32 nFirst, VstInt32 nEq, VstInt32 nMaster, VstInt32 nFinal)
      : numFirst(nFirst), numEq(nEq), numMaster(nMaster), numFinal(nFinal) {}
  RateParts(const RateParts&) = delete;
  RateParts& operator=(const RateParts&) = delete;
  ~RateParts() {
    freeBank(first, numFirst);
    freeBank(eq, numEq);
    freeBank(master, numMaster);
    freeBank(final, numFinal);
    delete outHighPass;
    delete[] buffer;
  }

  bool complete() const { return first && eq && master && final && outHighPass && buffer; }
};

// The rate truncated toward zero; rates beyond the integer range saturate (they only need to
// differ from 48000).
VstInt32 truncateRate(double rate) {
  constexpr double kLimit = static_cast<double>(std::numeric_limits<VstInt32>::max());
  return rate < kLimit ? static_cast<VstInt32>(rate) : std::numeric_limits<VstInt32>::max();
}

}  // namespace

void Tarnwell::setSampleRate(float newRate) {
  const double r = newRate;
  // A rate that is not a finite positive number is ignored.
  if (!(r > 0.0) || !std::isfinite(r)) return;
  if (r == curSampleRate) return;

  const VstInt32 newIntRate = truncateRate(r);
  const OversamplingSet& os =
      newIntRate == kSevenfoldRate ? kOversampling48000 : kOversamplingOther;
  const double factorD = os.factor;

  RateParts parts(numFirstFilters, numEqFilters, numMasterFilters, numFinalFilters);
  parts.first = buildBank(numFirstFilters, num_First, freq_First, q_First, gain_First, r);
  parts.eq = buildBank(numEqFilters, num_EQ, freq_EQ, q_EQ, gain_EQ, r);
  parts.master =
      buildBank(numMasterFilters, &num_Master, &freq_Master, &q_Master, &gain_Master, r * factorD);
  parts.final = buildBank(numFinalFilters, num_Final, freq_Final, q_Final, gain_Final, r);
  parts.outHighPass = buildFilter(OutHighPassDesign::num, OutHighPassDesign::freq,
                                  OutHighPassDesign::q, OutHighPassDesign::gain, r);
  parts.buffer = new (std::nothrow) double[os.factor]();
  // Out of memory: the old state stays whole and the rate is not taken, so a retry rebuilds.
  if (!parts.complete() || !useClipTablesFor(r, factorD)) return;

  curSampleRate = r;
  intSampleRate = newIntRate;
  std::copy(std::begin(os.a), std::end(os.a), osCoefA);
  std::copy(std::begin(os.b), std::end(os.b), osCoefB);
  osFactor = os.factor;
  osFactorD = factorD;
  appliedTrim = trimGain;
  std::fill(std::begin(osUpState), std::end(osUpState), 0.0);
  std::fill(std::begin(osDownState), std::end(osDownState), 0.0);

  std::swap(osBuffer, parts.buffer);
  std::swap(firstFilters, parts.first);
  std::swap(eqFilters, parts.eq);
  std::swap(masterFilters, parts.master);
  std::swap(finalFilters, parts.final);
  std::swap(outHighPass, parts.outHighPass);

  lastBass = -1.0f;
  lastTreble = -1.0f;
  lastMaster = 0.0;
  lastVolume = 0.0;
  lastDeep = 0.0f;
}
