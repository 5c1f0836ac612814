#include "amp/program.h"

#include <cstring>

#include "amp/parameter_index.h"

namespace {
constexpr char kUnnamed[] = "Init";
}  // namespace

TarnwellProgram::TarnwellProgram()
    : deep(0.0f), volume(0.5f), treble(0.5f), bass(0.5f), master(0.5f), name{} {
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
