// One preset: a value for each of the five working parameters, in parameter-index order, and a
// name of at most 23 characters. An unnamed program is called "Init".
//
// Threads: the values are written by setParameter under the effect's mutex and read without it by
// the getters and by setProgram, so each is an atomic float (relaxed: every value stands alone).
// The name belongs to the host's control thread.
#pragma once

#include <atomic>

#include "hostif/vst_abi.h"

class TarnwellProgram {
 public:
  TarnwellProgram();
  TarnwellProgram(const TarnwellProgram&) = delete;
  TarnwellProgram& operator=(const TarnwellProgram&) = delete;
  virtual ~TarnwellProgram();

  // The value of parameter `index` (1..5), or null for any other index.
  std::atomic<float>* value(VstInt32 index) noexcept;

  std::atomic<float> deep;
  std::atomic<float> volume;
  std::atomic<float> treble;
  std::atomic<float> bass;
  std::atomic<float> master;
  char name[kVstMaxProgNameLen];
};
