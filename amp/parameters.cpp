// The six parameters: values, names, display texts and properties. setParameter is the single
// writer and holds the effect's mutex for each store; every reader reads one atomic once, without
// the lock. No value is clamped.
#include <cstring>
#include <mutex>
#include <string>
#include <string_view>

#include "amp/parameter_table.h"
#include "amp/tarnwell.h"

namespace {

bool isControl(VstInt32 index) {
  return tarnwell::controlFacts(index) != nullptr;
}

// Bounded copy of a table text, padded with zeros to the 8-byte parameter text buffer.
void copyText(std::string_view from, char* text) {
  std::strncpy(text, std::string(from).c_str(), kVstMaxParamStrLen);
}

}  // namespace

void Tarnwell::setParameter(VstInt32 index, float value) {
  std::lock_guard<RecursiveMutex> lock(mutex);
  std::atomic<float>* stored = programs[getProgram()].value(index);
  if (stored == nullptr) return;
  stored->store(value, std::memory_order_relaxed);
  switch (index) {
    case kParamDeep:
      deep.store(value, std::memory_order_relaxed);
      break;
    case kParamVolume:
      volume.store(value, std::memory_order_relaxed);
      break;
    case kParamTreble:
      treble.store(value, std::memory_order_relaxed);
      break;
    case kParamBass:
      bass.store(value, std::memory_order_relaxed);
      break;
    case kParamMaster:
      master.store(value, std::memory_order_relaxed);
      break;
  }
}

float Tarnwell::getParameter(VstInt32 index) {
  switch (index) {
    case kParamDeep:
      return deep.load(std::memory_order_relaxed);
    case kParamVolume:
      return static_cast<float>(volume.load(std::memory_order_relaxed));
    case kParamTreble:
      return treble.load(std::memory_order_relaxed);
    case kParamBass:
      return bass.load(std::memory_order_relaxed);
    case kParamMaster:
      return static_cast<float>(master.load(std::memory_order_relaxed));
    default:
      return 0.0f;
  }
}

void Tarnwell::getParameterName(VstInt32 index, char* text) {
  if (const tarnwell::ControlFacts* facts = tarnwell::controlFacts(index)) {
    copyText(facts->name, text);
  }
}

void Tarnwell::getParameterLabel(VstInt32 index, char* label) {
  if (isControl(index)) label[0] = 0;
}

void Tarnwell::getParameterDisplay(VstInt32 index, char* text) {
  // The live value as a float: exact for the float fields, and the value the host set for the
  // two double fields, which only ever hold floats.
  if (isControl(index)) getParameterDisplayOf(index, getParameter(index), text);
}

void Tarnwell::getParameterDisplayOf(VstInt32 index, float value, char* text) {
  const tarnwell::ControlFacts* facts = tarnwell::controlFacts(index);
  if (facts == nullptr) return;
  if (facts->kind == tarnwell::ControlKind::kSwitch) {
    copyText(value == tarnwell::kSwitchOnValue ? tarnwell::kSwitchOn : tarnwell::kSwitchOff, text);
    return;
  }
  float2string(static_cast<float>(tarnwell::dialOf(value)), text, kVstMaxParamStrLen);
}

bool Tarnwell::getParameterProperties(VstInt32 index, VstParameterProperties* p) {
  if (p == nullptr || index < 0 || index >= kNumParams) return false;
  // Only the standard 152-byte record is written: a plain host's record has no room for more.
  std::memset(p, 0, sizeof *p);
  if (index == kParamPlaceholder) return false;
  getParameterLabel(index, p->label);
  if (tarnwell::controlFacts(index)->kind == tarnwell::ControlKind::kSwitch) {
    p->flags = kVstParameterIsSwitch;
  } else {
    p->flags = kVstParameterUsesFloatStep;
    p->stepFloat = tarnwell::kKnobStep;
  }
  return true;
}
