// The value-to-text operations of AudioEffect. Every text goes into the caller's buffer through
// the two bounded writers below: at most maxLen characters, then a zero byte at text[maxLen].

#include <cmath>
#include <cstdint>
#include <cstring>

#include "hostif/audioeffect.h"

namespace {

constexpr char kHuge[] = "Huge!";
constexpr char kMinusInf[] = "-Inf";

// Half of the last printed decimal, added in single precision before the digits are cut.
constexpr float kHalfHundredth = 0.005f;
// Beyond these magnitudes the eight-character budget cannot hold the number.
constexpr double kMaxNegative = 9999999.0;
constexpr double kMaxPositive = 99999999.0;
// Integer digits that still leave room for the point (six) and for two decimals (four).
constexpr int kMaxDigitsWithPoint = 6;
constexpr int kMaxDigitsWithDecimals = 4;
constexpr int kMaxIntegerDigits = 8;
constexpr int kDisplayWidth = 8;

constexpr VstInt32 kIntHugeFrom = 100000000;
constexpr std::int64_t kIntDivisors[] = {100000000, 10000000, 1000000, 100000, 10000,
                                         1000,      100,      10,      1};

// A negative limit leaves no room even for the terminator: nothing is written.
void boundedCopy(char* text, const char* s, VstInt32 maxLen) {
  if (maxLen < 0) return;
  std::strncpy(text, s, static_cast<std::size_t>(maxLen));
  text[maxLen] = 0;
}

void boundedAppend(char* text, const char* s, VstInt32 maxLen) {
  if (maxLen < 0) return;
  const std::size_t used = std::strlen(text);
  const auto room = static_cast<std::size_t>(maxLen);
  if (used < room) std::strncat(text, s, room - used);
  text[maxLen] = 0;
}

char digitChar(int digit) {
  return static_cast<char>('0' + digit);
}

// The digit a positive, non-integral remainder starts with; 0 for none.
int leadingDigit(double mantissa) {
  return mantissa > 0.0 ? static_cast<int>(std::fmod(mantissa, 10.0)) : 0;
}

}  // namespace

void AudioEffect::float2string(float value, char* text, VstInt32 maxLen) {
  // Not a number is outside the printable range too.
  if (std::isnan(value)) {
    boundedCopy(text, kHuge, maxLen);
    return;
  }
  float v = value;
  if (std::fabs(v) < kHalfHundredth) v = 0.0f;
  if (v < 0.0f) {
    v = v - kHalfHundredth;
  } else if (v > 0.0f) {
    v = v + kHalfHundredth;
  }

  double d = v;
  const bool negative = d < 0.0;
  if (negative) d = -d;
  if ((negative && d > kMaxNegative) || d > kMaxPositive) {
    boundedCopy(text, kHuge, maxLen);
    return;
  }

  // Least significant digit first; scaling by 0.1 (not dividing by 10) keeps the fraction that
  // the remainder then truncates away.
  char reversed[kMaxIntegerDigits];
  int count = 0;
  double integ = std::floor(d);
  do {
    reversed[count++] = digitChar(static_cast<int>(std::fmod(integ, 10.0)));
    integ = integ * 0.1;
  } while (integ >= 1.0 && count < kMaxIntegerDigits);

  char s[kMaxIntegerDigits + 3];
  int n = 0;
  s[n++] = negative ? '-' : ' ';
  for (int i = count - 1; i >= 0; --i) s[n++] = reversed[i];
  // Seven or eight integer digits print whole without the point; eight drop the (blank) sign
  // place, so every text stays within eight characters.
  if (count <= kMaxDigitsWithPoint) s[n++] = '.';
  s[n] = 0;
  boundedCopy(text, n > kDisplayWidth ? s + 1 : s, maxLen);
  if (count >= kMaxDigitsWithPoint) return;

  double mantissa = (d - std::trunc(d)) * 100.0;
  const int hundredths = leadingDigit(mantissa);
  mantissa = mantissa * 0.1;
  const int tenths = leadingDigit(mantissa);
  // With five integer digits only the tenths fit.
  const char decimals[3] = {digitChar(tenths),
                            count <= kMaxDigitsWithDecimals ? digitChar(hundredths) : '\0', 0};
  boundedAppend(text, decimals, maxLen);
}

void AudioEffect::int2string(VstInt32 value, char* text, VstInt32 maxLen) {
  // Magnitudes from 1000000000 on would need a tenth digit the text has no place for.
  if (value >= kIntHugeFrom || value <= -10 * static_cast<std::int64_t>(kIntHugeFrom)) {
    boundedCopy(text, kHuge, maxLen);
    return;
  }
  std::int64_t magnitude = value;
  if (value < 0) {
    boundedCopy(text, "-", maxLen);
    magnitude = -magnitude;
  } else {
    boundedCopy(text, value == 0 ? "0" : "", maxLen);
  }

  bool started = false;
  for (const std::int64_t divisor : kIntDivisors) {
    const std::int64_t digit = magnitude / divisor;
    magnitude -= digit * divisor;
    started = started || digit >= 1;
    if (started) {
      const char s[2] = {digitChar(static_cast<int>(digit)), 0};
      boundedAppend(text, s, maxLen);
    }
  }
}

void AudioEffect::dB2string(float value, char* text, VstInt32 maxLen) {
  if (value <= 0.0f) {
    boundedCopy(text, kMinusInf, maxLen);
    return;
  }
  float2string(static_cast<float>(20.0 * std::log10(static_cast<double>(value))), text, maxLen);
}

void AudioEffect::Hz2string(float samples, char* text, VstInt32 maxLen) {
  const float sr = getSampleRate();
  float2string(samples == 0.0f ? 0.0f : sr / samples, text, maxLen);
}

void AudioEffect::ms2string(float samples, char* text, VstInt32 maxLen) {
  float2string(samples * 1000.0f / getSampleRate(), text, maxLen);
}
