#include "test_support.h"

HostRecorder& recorder() {
  static HostRecorder r;
  return r;
}

VstIntPtr recordingHost(AEffect* effect, VstInt32 opcode, VstInt32 index, VstIntPtr value,
                        void* ptr, float opt) {
  HostRecorder& r = recorder();
  r.calls.push_back({effect, opcode, index, value, ptr, opt});
  const auto answer = r.answers.find(opcode);
  return answer == r.answers.end() ? 0 : answer->second;
}
