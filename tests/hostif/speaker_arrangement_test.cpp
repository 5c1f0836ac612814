// Speaker arrangements: allocation size and contents, copying, matching through the virtual
// operations. Run under AddressSanitizer, the block sizes and releases are checked too.

#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "test_support.h"

namespace {

VstSpeakerProperties* speaker(VstSpeakerArrangement* a, int i) {
  return a->speakers + i;
}

TEST(SpeakerArrangement, AllocationHoldsExactlyItsSpeakersZeroFilled) {
  PlainEffect effect;
  VstSpeakerArrangement* a = nullptr;
  ASSERT_TRUE(effect.allocateArrangement(&a, 2));
  ASSERT_NE(a, nullptr);
  EXPECT_EQ(a->numChannels, 2);
  EXPECT_EQ(a->type, 0);
  const auto* bytes = reinterpret_cast<const unsigned char*>(a) + 8;
  for (int i = 0; i < 2 * 112; ++i) ASSERT_EQ(bytes[i], 0) << i;

  VstSpeakerArrangement* first = a;
  speaker(first, 1)->type = 5;
  ASSERT_TRUE(effect.allocateArrangement(&a, 10));  // releases the first block
  EXPECT_EQ(a->numChannels, 10);
  EXPECT_EQ(speaker(a, 9)->type, 0);
  EXPECT_TRUE(effect.deallocateArrangement(&a));
  EXPECT_EQ(a, nullptr);
  EXPECT_TRUE(effect.deallocateArrangement(&a));
}

TEST(SpeakerArrangement, ImpossibleSizesFailWithNullTarget) {
  PlainEffect effect;
  VstSpeakerArrangement* a = nullptr;
  ASSERT_TRUE(effect.allocateArrangement(&a, 1));
  EXPECT_FALSE(effect.allocateArrangement(&a, -1));
  EXPECT_EQ(a, nullptr);
  EXPECT_FALSE(effect.allocateArrangement(nullptr, 1));
}

TEST(SpeakerArrangement, CopySpeakerCutsTheNameTo63Characters) {
  PlainEffect effect;
  VstSpeakerProperties from{}, to{};
  std::memset(to.name, 'x', sizeof to.name);
  const std::string longName(70, 'L');
  std::memcpy(from.name, longName.data(), sizeof from.name);  // not terminated
  from.azimuth = 0.5f;
  from.elevation = -0.25f;
  from.radius = 2.0f;
  from.reserved = 3.0f;
  from.type = 7;
  for (int i = 0; i < 28; ++i) from.future[i] = static_cast<char>(i + 1);
  ASSERT_TRUE(effect.copySpeaker(&to, &from));
  EXPECT_EQ(std::string(to.name), longName.substr(0, 63));
  EXPECT_EQ(to.azimuth, 0.5f);
  EXPECT_EQ(to.elevation, -0.25f);
  EXPECT_EQ(to.radius, 2.0f);
  EXPECT_EQ(to.reserved, 3.0f);
  EXPECT_EQ(to.type, 7);
  EXPECT_EQ(std::memcmp(to.future, from.future, 28), 0);

  std::strcpy(from.name, "L");
  ASSERT_TRUE(effect.copySpeaker(&to, &from));
  for (int i = 1; i < 64; ++i) ASSERT_EQ(to.name[i], 0) << "short names are zero-padded";
  EXPECT_FALSE(effect.copySpeaker(nullptr, &from));
  EXPECT_FALSE(effect.copySpeaker(&to, nullptr));
}

TEST(SpeakerArrangement, MatchCopiesEveryChannelThroughTheVirtualOperations) {
  struct Counting : PlainEffect {
    int copies = 0;
    int failAt = -1;
    bool copySpeaker(VstSpeakerProperties* to, VstSpeakerProperties* from) override {
      return copies++ != failAt && PlainEffect::copySpeaker(to, from);
    }
  } effect;
  VstSpeakerArrangement* from = nullptr;
  ASSERT_TRUE(effect.allocateArrangement(&from, 10));
  from->type = 3;
  for (int i = 0; i < 10; ++i) speaker(from, i)->type = 100 + i;

  VstSpeakerArrangement* to = nullptr;
  ASSERT_TRUE(effect.allocateArrangement(&to, 1));
  ASSERT_TRUE(effect.matchArrangement(&to, from));
  EXPECT_EQ(effect.copies, 10);
  EXPECT_EQ(to->type, 3);
  ASSERT_EQ(to->numChannels, 10);
  for (int i = 0; i < 10; ++i) EXPECT_EQ(speaker(to, i)->type, 100 + i);

  effect.copies = 0;
  effect.failAt = 1;
  EXPECT_FALSE(effect.matchArrangement(&to, from));
  EXPECT_EQ(effect.copies, 2) << "stops at the first failed copy";

  VstSpeakerArrangement* kept = to;
  EXPECT_FALSE(effect.matchArrangement(&to, nullptr));
  EXPECT_EQ(to, kept);

  from->numChannels = 0;
  ASSERT_TRUE(effect.matchArrangement(&to, from));
  EXPECT_EQ(to->numChannels, 0);
  effect.deallocateArrangement(&to);
  from->numChannels = 10;
  effect.deallocateArrangement(&from);
}

}  // namespace
