#include "amp/filter_bank.h"

#include <new>

IIRFilter* buildFilter(VstInt32 num, double freq, double q, double gain,
                       double sampleRate) noexcept {
  // Every field the design may write back is set afresh for each filter.
  filterPrm_tag prm{};
  prm.num = num;
  prm.freq = freq;
  prm.freqLo = 0.0;
  prm.freqHi = 0.0;
  prm.q = q;
  prm.gain = gain;
  prm.sampleRate = sampleRate;
  return new (std::nothrow) IIRFilter(&prm);
}

IIRFilter** buildBank(VstInt32 count, const VstInt32* nums, const double* freqs, const double* qs,
                      const double* gains, double sampleRate) noexcept {
  IIRFilter** bank = new (std::nothrow) IIRFilter*[count]();
  if (bank == nullptr) return nullptr;
  for (VstInt32 i = 0; i < count; ++i) {
    bank[i] = buildFilter(nums[i], freqs[i], qs[i], gains[i], sampleRate);
    if (bank[i] == nullptr) {
      freeBank(bank, count);
      return nullptr;
    }
  }
  return bank;
}

void freeBank(IIRFilter**& bank, VstInt32 count) noexcept {
  if (bank == nullptr) return;
  for (VstInt32 i = 0; i < count; ++i) delete bank[i];
  delete[] bank;
  bank = nullptr;
}
