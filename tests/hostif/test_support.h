// Shared fixtures of the host-interface tests: a recording host callback and an effect that keeps
// every default.
#pragma once

#include <map>
#include <ostream>
#include <vector>

#include "hostif/orv_typebase.h"

struct HostCall {
  AEffect* effect;
  VstInt32 opcode, index;
  VstIntPtr value;
  void* ptr;
  float opt;
  bool operator==(const HostCall&) const = default;
  friend void PrintTo(const HostCall& c, std::ostream* os) {
    *os << "{opcode " << c.opcode << ", index " << c.index << ", value " << c.value << ", ptr "
        << c.ptr << ", opt " << c.opt << "}";
  }
};

// What recordingHost saw and what it answers per host opcode (0 when not set). Tests run on one
// thread, so one recorder serves them all; clear it first.
struct HostRecorder {
  std::vector<HostCall> calls;
  std::map<VstInt32, VstIntPtr> answers;
  void clear() { calls.clear(), answers.clear(); }
};
inline HostRecorder gHost;

inline VstIntPtr recordingHost(AEffect* effect, VstInt32 opcode, VstInt32 index, VstIntPtr value,
                               void* ptr, float opt) {
  gHost.calls.push_back({effect, opcode, index, value, ptr, opt});
  const auto answer = gHost.answers.find(opcode);
  return answer == gHost.answers.end() ? 0 : answer->second;
}

// An effect with every default; exposes the fields a test needs to see or set.
struct PlainEffect : Orv_TypeBase {
  explicit PlainEffect(audioMasterCallback host = nullptr, VstInt32 programs = 16)
      : Orv_TypeBase(host, programs, 6) {}
  void processReplacing(float**, float**, VstInt32) noexcept override {}
  using AudioEffect::cEffect, AudioEffect::curProgram, AudioEffect::sampleRate;
};

inline char gMarker[64];
inline void* const kPtr = gMarker;  // a pointer a test hands over and then recognises

inline VstIntPtr send(AEffect* e, VstInt32 opcode, VstInt32 index = 5, VstIntPtr value = 9,
                      void* ptr = kPtr, float opt = 0.5f) {
  return e->dispatcher(e, opcode, index, value, ptr, opt);
}
