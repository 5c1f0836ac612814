// The six parameter slots the host sees. Slot 0 is an empty placeholder; 1..5 are the controls.
#pragma once

#include "hostif/vst_abi.h"

enum TarnwellParameter : VstInt32 {
  kParamPlaceholder = 0,
  kParamDeep = 1,
  kParamVolume = 2,
  kParamTreble = 3,
  kParamBass = 4,
  kParamMaster = 5,
  kNumParams = 6,
};

constexpr VstInt32 kNumPrograms = 16;
