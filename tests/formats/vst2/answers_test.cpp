// The standard form answers every request exactly as tarnwell.so does: the record, every opcode
// with a spread of indices and values, the parameter functions and what each asks of its host;
// and, as tarnwell.so's entry, no effect for hosts that refuse or fail, nor when memory runs out.
#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <cstring>
#include <tuple>

#include "daw_host.h"

extern std::atomic<bool> failAllocations;  // makes every operator new fail (alloc_counter.cpp)

namespace {

// The record as a host reads it, function pointers aside (each binary has its own).
void expectSameRecord(const AEffect& standard, const AEffect& original) {
  const auto fields = [](const AEffect& e) {
    return std::tuple(e.magic, e.numPrograms, e.numParams, e.numInputs, e.numOutputs, e.flags,
                      e.initialDelay, e.realQualities, e.offQualities, e.ioRatio, e.uniqueID,
                      e.version);
  };
  EXPECT_EQ(fields(standard), fields(original));
  EXPECT_EQ(std::memcmp(standard.future, original.future, sizeof standard.future), 0);
  EXPECT_TRUE(standard.dispatcher && standard.setParameter && standard.getParameter &&
              standard.process && standard.processReplacing && standard.processDoubleReplacing);
}

// One request with its own 1024-byte buffer of 'x' (ending in a zero byte, so it also reads as a
// text); for the speaker-arrangement requests `value` carries an address inside that buffer.
struct Answer {
  VstIntPtr result;
  std::array<char, 1024> buffer;
};

Answer ask(DawInstance& instance, VstInt32 opcode, VstInt32 index, VstIntPtr value) {
  Answer answer{};
  answer.buffer.fill('x');
  answer.buffer.back() = 0;
  if (opcode == effSetSpeakerArrangement || opcode == effGetSpeakerArrangement) {
    value = reinterpret_cast<VstIntPtr>(answer.buffer.data() + 512);
  }
  answer.result = instance.dispatch(opcode, index, value, answer.buffer.data(), 44100.0f);
  if (opcode == effSetSpeakerArrangement || opcode == effGetSpeakerArrangement) {
    answer.buffer.fill(0);  // where the buffer lives differs; only the result is comparable
  }
  return answer;
}

class Answers : public ::testing::TestWithParam<const char*> {};

TEST_P(Answers, EveryRequestAnswersAsTarnwellSo) {
  DawInstance standard(GetParam()), original;
  ASSERT_NE(standard.effect(), nullptr);
  ASSERT_NE(original.effect(), nullptr);
  expectSameRecord(*standard.effect(), *original.effect());
  EXPECT_EQ(standard.hostRequests(), original.hostRequests());

  // Both take the same requests in the same order, so program changes, names, rates and block
  // sizes set by earlier requests shape the later answers alike.
  for (VstInt32 opcode = -1; opcode <= effGetNumMidiOutputChannels + 1; ++opcode) {
    if (opcode == effClose) continue;
    for (const VstInt32 index : {-1, 0, 1, 2, 3, 4, 5, 6, 15, 16}) {
      for (const VstIntPtr value : {-1, 0, 1, 3, 15, 16, 64}) {
        const Answer s = ask(standard, opcode, index, value);
        const Answer o = ask(original, opcode, index, value);
        ASSERT_EQ(s.result, o.result) << opcode << ' ' << index << ' ' << value;
        ASSERT_EQ(s.buffer, o.buffer) << opcode << ' ' << index << ' ' << value;
      }
    }
  }
  for (VstInt32 index = -1; index <= 6; ++index) {
    for (const float value : {0.0f, 0.25f, 1.0f, 0.7f}) {
      standard.setParameter(index, value);
      original.setParameter(index, value);
      ASSERT_EQ(standard.getParameter(index), original.getParameter(index)) << index;
      const Answer s = ask(standard, effGetParamDisplay, index, 0);
      ASSERT_EQ(s.buffer, ask(original, effGetParamDisplay, index, 0).buffer) << index;
    }
  }
  expectSameRecord(*standard.effect(), *original.effect());
  EXPECT_EQ(standard.hostRequests(), original.hostRequests());
}

INSTANTIATE_TEST_SUITE_P(BothEntryNames, Answers, ::testing::Values("VSTPluginMain", "main"));

TEST(Entry, HostsThatRefuseOrFailAndMemoryRunningOutGetNoEffect) {
  const auto entry = standardEntry();
  failAllocations = true;
  EXPECT_EQ(entry(loggingHost), nullptr);
  failAllocations = false;
  unclaimedRequests.clear();
  EXPECT_EQ(entry(nullptr), nullptr);
  EXPECT_EQ(entry([](AEffect*, VstInt32, VstInt32, VstIntPtr, void*, float) -> VstIntPtr {
              return 0;  // a host from before the interface
            }),
            nullptr);
  EXPECT_EQ(
      entry([](AEffect*, VstInt32, VstInt32, VstIntPtr, void*, float) -> VstIntPtr { throw 1; }),
      nullptr);
}

}  // namespace
