// The block procedure: lock, flush-to-zero, tone-stack redesign on a change of DEEP, BASS or
// TREBLE, VOLUME and MASTER ramps across the block, the chain (chain.h), take-over of the applied
// values, restore, unlock. Audio thread only.
#include <algorithm>
#include <mutex>

#include "amp/chain.h"
#include "amp/tarnwell.h"
#include "dsp/flush_to_zero.h"

namespace {

// Finite test as plain arithmetic: inf - inf and NaN - NaN are NaN.
bool finite(double x) noexcept {
  return x - x == 0.0;
}

void refreshIfNonFinite(IIRFilter& f) noexcept {
  if (!finite(f.z1) || !finite(f.z2)) f.refresh();
}

// Plain loops rather than std::copy/std::fill, which may become library calls.
void copyValues(const double* from, double* to, int count) noexcept {
  for (int k = 0; k < count; ++k) to[k] = from[k];
}

void fillValues(double* to, int count, double value) noexcept {
  for (int k = 0; k < count; ++k) to[k] = value;
}

void zeroIfNonFinite(double* s, int count) noexcept {
  bool ok = true;
  for (int k = 0; k < count; ++k) ok = ok && finite(s[k]);
  if (!ok) fillValues(s, count, 0.0);
}

}  // namespace

void Tarnwell::processDoubleReplacing(double** inputs, double** outputs,
                                      VstInt32 sampleFrames) noexcept {
  std::lock_guard<RecursiveMutex> lock(mutex);
  FlushToZeroGuard flushToZero;

  const int n = sampleFrames;
  if (n > 0 &&
      (inputs == nullptr || outputs == nullptr || inputs[0] == nullptr || outputs[0] == nullptr)) {
    return;  // no buffers to work on: nothing processed, nothing taken over
  }
  const double* in = n > 0 ? inputs[0] : nullptr;
  double* out = n > 0 ? outputs[0] : nullptr;

  const Clipper* clip0 = clip[0].load(std::memory_order_acquire);
  const Clipper* clip1 = clip[1].load(std::memory_order_acquire);
  if (osBuffer == nullptr || clip0 == nullptr || clip1 == nullptr) {
    // Before the first set-up there is no chain: the block is silence.
    fillValues(out, n, 0.0);
    return;
  }

  // The live values, read once for the whole block.
  const float curDeep = deep.load(std::memory_order_relaxed);
  const float curTreble = treble.load(std::memory_order_relaxed);
  const float curBass = bass.load(std::memory_order_relaxed);
  const double curVolume = volume.load(std::memory_order_relaxed);
  const double curMaster = master.load(std::memory_order_relaxed);

  // Exact comparisons; a NaN counts as a change.
  if (curDeep != lastDeep || curBass != lastBass || curTreble != lastTreble) {
    // A 0-sample block starts its ramps with length 1, so the filters stay finite.
    redesignToneStack(curDeep, curTreble, curBass, std::max(n, 1));
  }

  const double r = n > 1 ? 1.0 / (n - 1) : 0.0;

  chain::Block block;
  block.volumeStep = (curVolume - lastVolume) * r;
  block.masterStep = (curMaster - lastMaster) * r;
  block.lastVolume = lastVolume;
  block.lastMaster = lastMaster;
  // A MASTER gain that is not finite silences the block instead of reaching the second shaper.
  if (!finite(block.lastMaster) || !finite(block.masterStep)) {
    block.lastMaster = 0.0;
    block.masterStep = 0.0;
  }
  // A trim that is not finite gives silence rather than a non-finite output.
  block.trim = finite(appliedTrim) ? appliedTrim : 0.0;
  block.clip0 = clip0;
  block.clip1 = clip1;
  copyValues(osUpState, block.up, 5);
  copyValues(osDownState, block.down, 5);
  for (int k = 0; k < 2; ++k) block.first[k].load(*firstFilters[k]);
  for (int k = 0; k < 7; ++k) block.eq[k].load(*eqFilters[k]);
  block.masterStage.load(*masterFilters[0]);
  for (int k = 0; k < 2; ++k) block.final[k].load(*finalFilters[k]);
  block.outHighPass.load(*outHighPass);

  // The tone stack glides over the first rampEnd samples, then runs with fixed coefficients.
  int rampEnd = 0;
  for (int k = 0; k < 7; ++k) rampEnd = std::max(rampEnd, chain::rampSamplesLeft(*eqFilters[k], n));

  // The oversampling coefficients are those of the factor (set-up loads the same set).
  if (osFactor == 7) {
    block.run<7>(in, out, n, rampEnd);
  } else {
    block.run<8>(in, out, n, rampEnd);
  }

  copyValues(block.up, osUpState, 5);
  copyValues(block.down, osDownState, 5);
  for (int k = 0; k < 2; ++k) block.first[k].store(*firstFilters[k]);
  for (int k = 0; k < 7; ++k) block.eq[k].store(*eqFilters[k]);
  block.masterStage.store(*masterFilters[0]);
  for (int k = 0; k < 2; ++k) block.final[k].store(*finalFilters[k]);
  block.outHighPass.store(*outHighPass);

  lastDeep = curDeep;
  lastVolume = curVolume;
  lastTreble = curTreble;
  lastBass = curBass;
  lastMaster = curMaster;

  clearNonFiniteState();
}

void Tarnwell::clearNonFiniteState() noexcept {
  for (int k = 0; k < numFirstFilters; ++k) refreshIfNonFinite(*firstFilters[k]);
  for (int k = 0; k < numEqFilters; ++k) {
    IIRFilter& f = *eqFilters[k];
    refreshIfNonFinite(f);
    // A ramp that started from a non-finite design lands on the new one at once.
    bool rampFinite = true;
    for (int j = 0; j < IIRFilter::kNumCoefs; ++j) {
      rampFinite = rampFinite && finite(f.prevCoef[j]) && finite(f.stepCoef[j]);
    }
    if (!rampFinite) {
      copyValues(f.coef, f.prevCoef, IIRFilter::kNumCoefs);
      fillValues(f.stepCoef, IIRFilter::kNumCoefs, 0.0);
      f.rampPos = f.rampLen + 1.0;
    }
  }
  for (int k = 0; k < numMasterFilters; ++k) refreshIfNonFinite(*masterFilters[k]);
  for (int k = 0; k < numFinalFilters; ++k) refreshIfNonFinite(*finalFilters[k]);
  refreshIfNonFinite(*outHighPass);
  zeroIfNonFinite(osUpState, 5);
  zeroIfNonFinite(osDownState, 5);
}
