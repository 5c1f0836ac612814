#include "amp/tarnwell.h"

#include <cstring>

#include "amp/filter_bank.h"
#include "amp/identity.h"
#include "amp/tone_stack_design.h"

namespace {

using tarnwell::kEffectName;
// Little-endian memory reads "001B".
constexpr VstInt32 kUniqueId = 0x42313030;
constexpr VstInt32 kNumFirstFilters = 2;
constexpr VstInt32 kNumEqFilters = 7;
constexpr VstInt32 kNumMasterFilters = 1;
constexpr VstInt32 kNumFinalFilters = 2;

// Copies `text` into a host buffer of `size` bytes, cut to fit with its terminating zero.
void copyBounded(char* dest, const char* text, std::size_t size) {
  std::strncpy(dest, text, size - 1);
  dest[size - 1] = 0;
}

}  // namespace

Tarnwell::Tarnwell(audioMasterCallback host)
    : Orv_TypeBase(host, kNumPrograms, kNumParams),
      programs(nullptr),
      numFirstFilters(kNumFirstFilters),
      numEqFilters(kNumEqFilters),
      numMasterFilters(kNumMasterFilters),
      numFinalFilters(kNumFinalFilters),
      osUpState{},
      osDownState{},
      firstFilters(nullptr),
      eqFilters(nullptr),
      masterFilters(nullptr),
      finalFilters(nullptr),
      outHighPass(nullptr),
      trimGain(kTrimGain),
      deep(1.0f),
      treble(1.0f),
      bass(1.0f),
      volume(1.0),
      master(1.0),
      lastDeep(0.0f),
      lastTreble(0.0f),
      lastBass(0.0f),
      lastVolume(0.0),
      lastMaster(0.0),
      osCoefA{},
      osCoefB{},
      intSampleRate(44100),
      curSampleRate(-1.0),
      osFactor(0),
      osFactorD(0.0),
      osBuffer(nullptr),
      appliedTrim(0.0),
      freqOffset(kFreqOffset) {
  canDoubleReplacing(true);
  programs = new TarnwellProgram[kNumPrograms];
  setProgram(0);
  cEffect.uniqueID = kUniqueId;
  cEffect.numInputs = 1;
  cEffect.numOutputs = 1;
}

Tarnwell::~Tarnwell() {
  freeBank(firstFilters, numFirstFilters);
  freeBank(eqFilters, numEqFilters);
  freeBank(masterFilters, numMasterFilters);
  freeBank(finalFilters, numFinalFilters);
  delete[] programs;
  delete[] osBuffer;
  delete outHighPass;
}

bool Tarnwell::getEffectName(char* name) {
  copyBounded(name, kEffectName, kVstMaxEffectNameLen);
  return true;
}

bool Tarnwell::getProductString(char* text) {
  copyBounded(text, kEffectName, kVstMaxProductStrLen);
  return true;
}
