// The value-to-text operations: the decimal format, its derived forms and the bounded writes.

#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <cstring>
#include <limits>
#include <string>

#include "test_support.h"

namespace {

constexpr char kCanary = '#';

// Runs one write into a canary-filled buffer and checks that nothing past text[maxLen] changed.
template <typename Write>
std::string written(VstInt32 maxLen, Write write) {
  char text[32];
  std::memset(text, kCanary, sizeof text);
  write(text, maxLen);
  for (std::size_t i = static_cast<std::size_t>(maxLen) + 1; i < sizeof text; ++i) {
    EXPECT_EQ(text[i], kCanary) << "byte " << i << " written past the limit";
  }
  EXPECT_EQ(text[maxLen], 0);
  return text;
}

struct FloatCase {
  float value;
  const char* text;
};

constexpr FloatCase kFloatCases[] = {
    {0.0f, " 0.00"},           {0.0049f, " 0.00"},       {-0.0049f, " 0.00"},
    {-0.0051f, "-0.01"},       {1.5f, " 1.50"},          {-1.5f, "-1.50"},
    {2.345f, " 2.35"},         {0.125f, " 0.12"},        {9.999f, " 10.00"},
    {1234.5f, " 1234.50"},     {123456.7f, " 123456."},  {-10000000.0f, "Huge!"},
    {100000000.0f, "Huge!"},   {-9999.99f, "-9999.99"},  {12345.67f, " 12345.6"},
    {-1234567.0f, "-1234567"}, {1234567.0f, " 1234567"}, {12345678.0f, "12345678"},
    {INFINITY, "Huge!"},       {-INFINITY, "Huge!"},     {NAN, "Huge!"},
};

TEST(ValueText, Float2StringTable) {
  PlainEffect effect;
  for (const FloatCase& c : kFloatCases) {
    EXPECT_EQ(written(8, [&](char* t, VstInt32 n) { effect.float2string(c.value, t, n); }), c.text)
        << c.value;
  }
}

struct IntCase {
  VstInt32 value;
  const char* text;
};

constexpr IntCase kIntCases[] = {
    {0, "0"},
    {7, "7"},
    {1050, "1050"},
    {-42, "-42"},
    {99999999, "99999999"},
    {100000000, "Huge!"},
    {-123456789, "-123456789"},
    {-999999999, "-999999999"},
    {-1000000000, "Huge!"},
    {INT_MIN, "Huge!"},
    {INT_MAX, "Huge!"},
};

TEST(ValueText, Int2StringTable) {
  PlainEffect effect;
  for (const IntCase& c : kIntCases) {
    EXPECT_EQ(written(16, [&](char* t, VstInt32 n) { effect.int2string(c.value, t, n); }), c.text)
        << c.value;
  }
}

TEST(ValueText, DerivedForms) {
  PlainEffect effect;
  auto dB = [&](float v) {
    return written(8, [&](char* t, VstInt32 n) { effect.dB2string(v, t, n); });
  };
  auto hz = [&](float v) {
    return written(8, [&](char* t, VstInt32 n) { effect.Hz2string(v, t, n); });
  };
  auto ms = [&](float v) {
    return written(8, [&](char* t, VstInt32 n) { effect.ms2string(v, t, n); });
  };
  EXPECT_EQ(dB(1.0f), " 0.00");
  EXPECT_EQ(dB(0.5f), "-6.02");
  EXPECT_EQ(dB(0.001f), "-60.00");
  EXPECT_EQ(dB(0.0f), "-Inf");
  EXPECT_EQ(dB(-1.0f), "-Inf");
  EXPECT_EQ(hz(441.0f), " 100.00");
  EXPECT_EQ(hz(0.0f), " 0.00");
  EXPECT_EQ(ms(441.0f), " 10.00");
  EXPECT_EQ(ms(44100.0f), " 1000.00");
  effect.setSampleRate(48000.0f);
  EXPECT_EQ(hz(480.0f), " 100.00");
  EXPECT_EQ(ms(480.0f), " 10.00");
}

TEST(ValueText, DerivedFormsGoThroughTheVirtualFloat2String) {
  struct Spy : PlainEffect {
    float seen = 0.0f;
    void float2string(float value, char* text, VstInt32) override {
      seen = value;
      text[0] = 0;
    }
  } effect;
  char text[16];
  effect.dB2string(0.5f, text, 8);
  EXPECT_NEAR(effect.seen, -6.0206f, 1e-4f);
  effect.Hz2string(441.0f, text, 8);
  EXPECT_EQ(effect.seen, 100.0f);
  effect.ms2string(44100.0f, text, 8);
  EXPECT_EQ(effect.seen, 1000.0f);
}

TEST(ValueText, BoundedWritesKeepTheFirstCharacters) {
  PlainEffect effect;
  EXPECT_EQ(written(4, [&](char* t, VstInt32 n) { effect.float2string(1234.5f, t, n); }), " 123");
  EXPECT_EQ(written(6, [&](char* t, VstInt32 n) { effect.float2string(-1.5f, t, n); }), "-1.50");
  EXPECT_EQ(written(0, [&](char* t, VstInt32 n) { effect.float2string(1.0f, t, n); }), "");
  EXPECT_EQ(written(2, [&](char* t, VstInt32 n) { effect.int2string(1050, t, n); }), "10");
  EXPECT_EQ(written(3, [&](char* t, VstInt32 n) { effect.int2string(-42, t, n); }), "-42");
  EXPECT_EQ(written(2, [&](char* t, VstInt32 n) { effect.dB2string(0.0f, t, n); }), "-I");
  EXPECT_EQ(written(3, [&](char* t, VstInt32 n) { effect.float2string(1e9f, t, n); }), "Hug");
}

}  // namespace
