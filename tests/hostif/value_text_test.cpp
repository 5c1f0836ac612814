// The value-to-text operations: the decimal format, its derived forms and the bounded writes.

#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cmath>
#include <cstring>

#include "test_support.h"

namespace {

using E = PlainEffect;
using Write = void (*)(E&, double, char*, VstInt32);
constexpr Write F = [](E& e, double v, char* t, VstInt32 n) { e.float2string(v, t, n); };
constexpr Write dB = [](E& e, double v, char* t, VstInt32 n) { e.dB2string(v, t, n); };
constexpr Write Hz = [](E& e, double v, char* t, VstInt32 n) { e.Hz2string(v, t, n); };
constexpr Write ms = [](E& e, double v, char* t, VstInt32 n) { e.ms2string(v, t, n); };
constexpr Write I = [](E& e, double v, char* t, VstInt32 n) { e.int2string(VstInt32(v), t, n); };

struct TextCase {
  Write op;
  double value;
  VstInt32 maxLen;
  const char* text;
};

// Hz and ms at a sample rate of 48000.
// clang-format off
constexpr TextCase kCases[] = {
    {F, 0.0, 8, " 0.00"}, {F, 0.0049, 8, " 0.00"}, {F, -0.0049, 8, " 0.00"},
    // -0.005 as a float equals the half hundredth, so it is not zeroed: the sign stays
    {F, -0.0051, 8, "-0.01"}, {F, -0.005, 8, "-0.00"}, {F, 1.5, 8, " 1.50"}, {F, -1.5, 8, "-1.50"},
    {F, 2.345, 8, " 2.35"},
    {F, 0.125, 8, " 0.12"}, {F, 9.999, 8, " 10.00"}, {F, 1234.5, 8, " 1234.50"},
    {F, 123456.7, 8, " 123456."}, {F, -10000000.0, 8, "Huge!"}, {F, 100000000.0, 8, "Huge!"},
    {F, -9999.99, 8, "-9999.99"}, {F, 12345.67, 8, " 12345.6"}, {F, -1234567.0, 8, "-1234567"},
    {F, 1234567.0, 8, " 1234567"}, {F, 12345678.0, 8, "12345678"}, {F, INFINITY, 8, "Huge!"},
    {F, -INFINITY, 8, "Huge!"}, {F, NAN, 8, "Huge!"},
    {dB, 1.0, 8, " 0.00"}, {dB, 0.5, 8, "-6.02"}, {dB, 0.001, 8, "-60.00"}, {dB, 0.0, 8, "-Inf"},
    {dB, -1.0, 8, "-Inf"}, {Hz, 480.0, 8, " 100.00"}, {Hz, 0.0, 8, " 0.00"},
    {ms, 480.0, 8, " 10.00"}, {ms, 48000.0, 8, " 1000.00"},
    {I, 0, 16, "0"}, {I, 7, 16, "7"}, {I, 1050, 16, "1050"}, {I, -42, 16, "-42"},
    {I, 99999999, 16, "99999999"}, {I, 100000000, 16, "Huge!"}, {I, -123456789, 16, "-123456789"},
    {I, -999999999, 16, "-999999999"}, {I, -1000000000, 16, "Huge!"}, {I, INT_MIN, 16, "Huge!"},
    {I, INT_MAX, 16, "Huge!"},
    // bounded writes keep the first characters, also when the decimals are cut
    {F, 1234.5, 4, " 123"}, {F, 1.5, 4, " 1.5"}, {F, -1.5, 6, "-1.50"}, {F, 1.0, 0, ""},
    {dB, 0.0, 2, "-I"}, {F, 1e9, 3, "Hug"}, {I, 1050, 2, "10"}, {I, -42, 3, "-42"},
};
// clang-format on

TEST(ValueText, EveryFormWritesItsTextWithinTheLimit) {
  PlainEffect fx;
  fx.setSampleRate(48000.0f);
  for (const TextCase& c : kCases) {
    SCOPED_TRACE(testing::Message() << c.value << " at maxLen " << c.maxLen);
    char text[32];
    std::memset(text, '#', sizeof text);
    c.op(fx, c.value, text, c.maxLen);
    EXPECT_STREQ(text, c.text);
    EXPECT_EQ(text[c.maxLen], 0);
    EXPECT_EQ(std::count(text + c.maxLen + 1, std::end(text), '#'), 31 - c.maxLen) << "overrun";
  }
}

}  // namespace
