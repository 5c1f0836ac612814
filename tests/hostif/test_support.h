// Shared fixtures of the host-interface tests: a recording host callback and effects that keep
// every default or log what the dispatcher calls.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "hostif/orv_typebase.h"

struct HostCall {
  AEffect* effect;
  VstInt32 opcode;
  VstInt32 index;
  VstIntPtr value;
  void* ptr;
  float opt;
};

// What recordingHost saw and what it answers (per host opcode; 0 when not set). Tests run on one
// thread, so one recorder serves them all; clear() it first.
struct HostRecorder {
  std::vector<HostCall> calls;
  std::map<VstInt32, VstIntPtr> answers;
  void clear() {
    calls.clear();
    answers.clear();
  }
};
HostRecorder& recorder();
VstIntPtr recordingHost(AEffect* effect, VstInt32 opcode, VstInt32 index, VstIntPtr value,
                        void* ptr, float opt);

// An effect with every default; exposes the fields a test needs to see or set.
class PlainEffect : public Orv_TypeBase {
 public:
  explicit PlainEffect(audioMasterCallback host = nullptr, VstInt32 programs = 16,
                       VstInt32 params = 6)
      : Orv_TypeBase(host, programs, params) {}
  void processReplacing(float**, float**, VstInt32) noexcept override {}

  using AudioEffect::blockSize;
  using AudioEffect::cEffect;
  using AudioEffect::curProgram;
  using AudioEffect::sampleRate;
};

// A pointer a test hands over and then recognises.
inline char gMarker[64];
inline void* const kPtr = gMarker;
