// Speaker arrangements: allocation size and contents, copying, matching through the virtual
// operations. Under AddressSanitizer the block sizes and releases are checked too.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <string>

#include "test_support.h"

namespace {

// The declared array holds eight speakers; an allocated arrangement may hold more.
VstSpeakerProperties& speaker(VstSpeakerArrangement* a, int i) {
  return reinterpret_cast<VstSpeakerProperties*>(reinterpret_cast<char*>(a) +
                                                 offsetof(VstSpeakerArrangement, speakers))[i];
}

TEST(SpeakerArrangement, AllocationHoldsExactlyItsSpeakersZeroFilled) {
  PlainEffect fx;
  VstSpeakerArrangement* a = nullptr;
  ASSERT_TRUE(fx.allocateArrangement(&a, 2));
  const auto* bytes = reinterpret_cast<const char*>(a);
  EXPECT_TRUE(a->numChannels == 2 && a->type == 0);
  EXPECT_EQ(std::count(bytes + 8, bytes + 8 + 2L * 112, 0), 2 * 112);
  ASSERT_TRUE(fx.allocateArrangement(&a, 10));  // releases the first block
  EXPECT_TRUE(a->numChannels == 10 && speaker(a, 9).type == 0);
  EXPECT_TRUE(!fx.allocateArrangement(&a, -1) && a == nullptr);  // an impossible size
  EXPECT_FALSE(fx.allocateArrangement(nullptr, 1));
  ASSERT_TRUE(fx.allocateArrangement(&a, 1));
  EXPECT_TRUE(fx.deallocateArrangement(&a) && a == nullptr && fx.deallocateArrangement(&a));
}

TEST(SpeakerArrangement, CopySpeakerCopiesEveryFieldAndCutsTheNameTo63Characters) {
  PlainEffect fx;
  VstSpeakerProperties from{0.5f, -0.25f, 2.0f, 3.0f, {}, 7, {}}, to{};
  std::memset(to.name, 'x', sizeof to.name);
  std::memset(from.name, 'L', sizeof from.name);  // 64 characters, not terminated
  for (int i = 0; i < 28; ++i) from.future[i] = static_cast<char>(i + 1);
  ASSERT_TRUE(fx.copySpeaker(&to, &from));
  EXPECT_EQ(std::string(to.name), std::string(63, 'L'));
  std::memcpy(to.name, from.name, sizeof to.name);  // the rest of the record is an exact copy
  EXPECT_EQ(std::memcmp(&to, &from, sizeof to), 0);
  std::strcpy(from.name, "L");
  ASSERT_TRUE(fx.copySpeaker(&to, &from));
  EXPECT_EQ(std::count(to.name + 1, to.name + 64, 0), 63) << "short names are zero-padded";
  EXPECT_FALSE(fx.copySpeaker(nullptr, &from) || fx.copySpeaker(&to, nullptr));
}

TEST(SpeakerArrangement, MatchCopiesEveryChannelThroughTheVirtualOperations) {
  struct Counting : PlainEffect {
    int copies = 0;
    bool copySpeaker(VstSpeakerProperties* to, VstSpeakerProperties* from) override {
      return ++copies, PlainEffect::copySpeaker(to, from);
    }
  } fx;
  VstSpeakerArrangement *from = nullptr, *to = nullptr;
  ASSERT_TRUE(fx.allocateArrangement(&from, 10) && fx.allocateArrangement(&to, 1));
  from->type = 3;
  for (int i = 0; i < 10; ++i) speaker(from, i).type = 100 + i;
  ASSERT_TRUE(fx.matchArrangement(&to, from));
  ASSERT_TRUE(fx.copies == 10 && to->type == 3 && to->numChannels == 10);
  for (int i = 0; i < 10; ++i) EXPECT_EQ(speaker(to, i).type, 100 + i);
  EXPECT_FALSE(fx.matchArrangement(&to, nullptr));
  ASSERT_TRUE(to && to->numChannels == 10) << "a null source leaves the target alone";
  from->numChannels = 0;
  ASSERT_TRUE(fx.matchArrangement(&to, from) && to->numChannels == 0);
  fx.deallocateArrangement(&to);
  fx.deallocateArrangement(&from);
}

}  // namespace
