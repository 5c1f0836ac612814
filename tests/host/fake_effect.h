// A small stand-in effect for the loader and command tests, compiled into the test plug-in
// modules. It has the amp's parameter layout (0 unused, 1 DEEP, 2 VOLUME, 3 TREBLE, 4 BASS,
// 5 MASTER) and two programs, and processes y = 2 * VOLUME * s with s <- (x + s) / 2: state that
// carries across blocks, so a host that mixed up channels or instances would show it.
//
// It records every host request and the handle's deletion in a log the tests read through the
// exported fakeEffectLog(), and answers effVendorSpecific with the sample rate its host reports to
// this very instance.
#pragma once

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstring>

#include "hostif/orv_typeif.h"

namespace fake {

constexpr int kHandleDeleted = 1000;
constexpr int kLogCapacity = 256;

struct Log {
  std::array<int, kLogCapacity> events{};
  int size = 0;
};
inline Log log;

inline void note(int event) {
  if (log.size < kLogCapacity) log.events[log.size++] = event;
}

struct Program {
  const char* name;
  float volume;
};
constexpr Program kPrograms[] = {{"Clean", 0.5f}, {"Loud", 0.9f}};
constexpr const char* kParameterNames[] = {"", "DEEP", "VOLUME", "TREBLE", "BASS", "MASTER"};
constexpr int kNumParams = 6;
constexpr int kNumPrograms = 2;

class Handle : public Orv_TypeIF {
 public:
  ~Handle() override { note(kHandleDeleted); }
};

struct Effect {
  AEffect record{};
  audioMasterCallback host;
  std::array<float, kNumParams> values{};
  int program = 0;
  double state = 0.0;

  explicit Effect(audioMasterCallback callback) : host(callback) {
    record.magic = kEffectMagic;
    record.dispatcher = &dispatch;
    record.setParameter = [](AEffect* e, VstInt32 i, float v) {
      if (i >= 0 && i < kNumParams) self(e)->values[i] = v;
    };
    record.getParameter = [](AEffect* e, VstInt32 i) {
      return i >= 0 && i < kNumParams ? self(e)->values[i] : 0.0f;
    };
    record.processDoubleReplacing = &process;
    record.numPrograms = kNumPrograms;
    record.numParams = kNumParams;
    record.numInputs = 1;
    record.numOutputs = 1;
    record.flags = effFlagsCanReplacing | effFlagsCanDoubleReplacing;
    record.uniqueID = fourCharCode('F', 'a', 'k', 'e');
    record.object = this;
    values[2] = kPrograms[0].volume;
  }

  static Effect* self(AEffect* e) { return static_cast<Effect*>(e->object); }

  static void process(AEffect* e, double** in, double** out, VstInt32 n) {
    Effect& fx = *self(e);
    const double gain = 2.0 * fx.values[2];
    for (VstInt32 i = 0; i < n; ++i) {
      fx.state = 0.5 * (in[0][i] + fx.state);
      out[0][i] = gain * fx.state;
    }
  }

  static VstIntPtr dispatch(AEffect* e, VstInt32 opcode, VstInt32 index, VstIntPtr value, void* ptr,
                            float) {
    note(opcode);
    Effect* fx = self(e);
    auto* text = static_cast<char*>(ptr);
    switch (opcode) {
      case effClose:
        delete fx;
        return 1;
      case effSetProgram:
        if (value >= 0 && value < kNumPrograms) {
          fx->program = static_cast<int>(value);
          fx->values[2] = kPrograms[value].volume;
        }
        return 0;
      case effGetProgram:
        return fx->program;
      case effGetProgramName:
        std::snprintf(text, kVstMaxProgNameLen, "%s", kPrograms[fx->program].name);
        return 0;
      case effGetProgramNameIndexed:
        if (index < 0 || index >= kNumPrograms) return 0;
        std::snprintf(text, kVstMaxProgNameLen, "%s", kPrograms[index].name);
        return 1;
      case effGetParamName:
        if (index > 0 && index < kNumParams) std::snprintf(text, 9, "%s", kParameterNames[index]);
        return 0;
      case effGetParamDisplay:
        if (index > 0 && index < kNumParams)
          std::snprintf(text, 9, "%.2f", 1 + 9 * fx->values[index]);
        return 0;
      case effGetEffectName:
        std::snprintf(text, kVstMaxEffectNameLen, "Fake");
        return 1;
      case effVendorSpecific:
        return fx->host(e, audioMasterGetSampleRate, 0, 0, nullptr, 0.0f);
      default:
        return 0;
    }
  }
};

// The entry point's work: refuse a host that answers version 0, else a new effect and handle.
inline Orv_TypeIF* create(audioMasterCallback host) {
  if (host(nullptr, audioMasterVersion, 0, 0, nullptr, 0.0f) == 0) return nullptr;
  auto* handle = new Handle;
  handle->aeffect = &(new Effect(host))->record;
  return handle;
}

}  // namespace fake

extern "C" __attribute__((visibility("default"))) const fake::Log* fakeEffectLog() {
  return &fake::log;
}
