#include "amp/program.h"

#include <cstring>

#include "amp/parameter_index.h"
#include "amp/parameter_table.h"

namespace {
constexpr char kUnnamed[] = "Init";
}  // namespace

TarnwellProgram::TarnwellProgram()
    : deep(tarnwell::controlFacts(kParamDeep)->startValue),
      volume(tarnwell::controlFacts(kParamVolume)->startValue),
      treble(tarnwell::controlFacts(kParamTreble)->startValue),
      bass(tarnwell::controlFacts(kParamBass)->startValue),
      master(tarnwell::controlFacts(kParamMaster)->startValue),
      name{} {
  std::strncpy(name, kUnnamed, sizeof name - 1);
}

TarnwellProgram::~TarnwellProgram() = default;

std::atomic<float>* TarnwellProgram::value(VstInt32 index) noexcept {
  switch (index) {
    case kParamDeep:
      return &deep;
    case kParamVolume:
      return &volume;
    case kParamTreble:
      return &treble;
    case kParamBass:
      return &bass;
    case kParamMaster:
      return &master;
    default:
      return nullptr;
  }
}
