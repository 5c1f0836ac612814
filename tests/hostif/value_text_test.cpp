// The value-to-text operations: the decimal format, its derived forms and the bounded writes.

#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <cstring>
#include <string>

#include "test_support.h"

namespace {

// Runs one write into a canary-filled buffer; nothing past text[maxLen] may change.
std::string written(VstInt32 maxLen, auto write) {
  char text[32];
  std::memset(text, '#', sizeof text);
  write(text, maxLen);
  EXPECT_EQ(text[maxLen], 0);
  EXPECT_EQ(std::string(text + maxLen + 1, sizeof text - maxLen - 1),
            std::string(sizeof text - maxLen - 1, '#'))
      << "written past the limit";
  return text;
}

using FloatText = void (AudioEffect::*)(float, char*, VstInt32);
constexpr FloatText F = &AudioEffect::float2string, dB = &AudioEffect::dB2string,
                    Hz = &AudioEffect::Hz2string, ms = &AudioEffect::ms2string;

struct FloatCase {
  FloatText op;
  float value;
  VstInt32 maxLen;
  const char* text;
};

// Hz and ms at a sample rate of 48000.
// clang-format off
constexpr FloatCase kFloatCases[] = {
    {F, 0.0f, 8, " 0.00"}, {F, 0.0049f, 8, " 0.00"}, {F, -0.0049f, 8, " 0.00"},
    {F, -0.0051f, 8, "-0.01"}, {F, 1.5f, 8, " 1.50"}, {F, -1.5f, 8, "-1.50"},
    {F, 2.345f, 8, " 2.35"}, {F, 0.125f, 8, " 0.12"}, {F, 9.999f, 8, " 10.00"},
    {F, 1234.5f, 8, " 1234.50"}, {F, 123456.7f, 8, " 123456."}, {F, -10000000.0f, 8, "Huge!"},
    {F, 100000000.0f, 8, "Huge!"}, {F, -9999.99f, 8, "-9999.99"}, {F, 12345.67f, 8, " 12345.6"},
    {F, -1234567.0f, 8, "-1234567"}, {F, 1234567.0f, 8, " 1234567"},
    {F, 12345678.0f, 8, "12345678"}, {F, INFINITY, 8, "Huge!"}, {F, -INFINITY, 8, "Huge!"},
    {F, NAN, 8, "Huge!"},
    {dB, 1.0f, 8, " 0.00"}, {dB, 0.5f, 8, "-6.02"}, {dB, 0.001f, 8, "-60.00"},
    {dB, 0.0f, 8, "-Inf"}, {dB, -1.0f, 8, "-Inf"},
    {Hz, 480.0f, 8, " 100.00"}, {Hz, 0.0f, 8, " 0.00"},
    {ms, 480.0f, 8, " 10.00"}, {ms, 48000.0f, 8, " 1000.00"},
    // bounded writes keep the first characters
    {F, 1234.5f, 4, " 123"}, {F, -1.5f, 6, "-1.50"}, {F, 1.0f, 0, ""}, {dB, 0.0f, 2, "-I"},
    {F, 1e9f, 3, "Hug"},
};
// clang-format on

TEST(ValueText, FloatFormsTable) {
  PlainEffect fx;
  fx.setSampleRate(48000.0f);
  for (const FloatCase& c : kFloatCases) {
    EXPECT_EQ(written(c.maxLen, [&](char* t, VstInt32 n) { (fx.*c.op)(c.value, t, n); }), c.text)
        << c.value << " at maxLen " << c.maxLen;
  }
}

TEST(ValueText, Int2StringTable) {
  struct IntCase {
    VstInt32 value, maxLen;
    const char* text;
  };
  constexpr IntCase kCases[] = {{0, 16, "0"},
                                {7, 16, "7"},
                                {1050, 16, "1050"},
                                {-42, 16, "-42"},
                                {99999999, 16, "99999999"},
                                {100000000, 16, "Huge!"},
                                {-123456789, 16, "-123456789"},
                                {-999999999, 16, "-999999999"},
                                {-1000000000, 16, "Huge!"},
                                {INT_MIN, 16, "Huge!"},
                                {INT_MAX, 16, "Huge!"},
                                {1050, 2, "10"},
                                {-42, 3, "-42"}};
  PlainEffect fx;
  for (const IntCase& c : kCases) {
    EXPECT_EQ(written(c.maxLen, [&](char* t, VstInt32 n) { fx.int2string(c.value, t, n); }), c.text)
        << c.value << " at maxLen " << c.maxLen;
  }
}

TEST(ValueText, DerivedFormsGoThroughTheVirtualFloat2String) {
  struct Spy : PlainEffect {
    float seen = 0.0f;
    void float2string(float value, char* text, VstInt32) override { seen = value, text[0] = 0; }
  } fx;
  char text[16];
  fx.dB2string(0.5f, text, 8);
  EXPECT_NEAR(fx.seen, -6.0206f, 1e-4f);
  fx.Hz2string(441.0f, text, 8);
  EXPECT_EQ(fx.seen, 100.0f);
  fx.ms2string(44100.0f, text, 8);
  EXPECT_EQ(fx.seen, 1000.0f);
}

}  // namespace
