// The bank of sixteen programs. A program change loads the program's five values through
// setParameter (one lock per value, none across the change); the name operations take no lock.
// curProgram is read and written through atomic_ref, so a setParameter on another thread reads it
// well-defined.
#include <atomic>
#include <cstdio>
#include <cstring>

#include "amp/tarnwell.h"

namespace {

constexpr char kUnnamed[] = "Init";

void copyName(char* dest, const char* name) {
  std::strncpy(dest, name, kVstMaxProgNameLen - 1);
  dest[kVstMaxProgNameLen - 1] = 0;
}

}  // namespace

VstInt32 Tarnwell::getProgram() {
  return std::atomic_ref<VstInt32>(curProgram).load(std::memory_order_relaxed);
}

void Tarnwell::setProgram(VstInt32 program) {
  TarnwellProgram& record = programs[program];
  std::atomic_ref<VstInt32>(curProgram).store(program, std::memory_order_relaxed);
  for (VstInt32 index = kParamDeep; index <= kParamMaster; ++index) {
    setParameter(index, record.value(index)->load(std::memory_order_relaxed));
  }
}

void Tarnwell::setProgramName(char* name) {
  copyName(programs[getProgram()].name, name);
}

void Tarnwell::getProgramName(char* name) {
  const VstInt32 current = getProgram();
  const char* stored = programs[current].name;
  if (std::strcmp(stored, kUnnamed) == 0) {
    std::snprintf(name, kVstMaxProgNameLen, "%s %d", kUnnamed, static_cast<int>(current) + 1);
  } else {
    std::strcpy(name, stored);
  }
}

bool Tarnwell::getProgramNameIndexed(VstInt32 /*category*/, VstInt32 index, char* text) {
  if (index < 0 || index >= kNumPrograms) return false;
  std::strcpy(text, programs[index].name);
  return true;
}
