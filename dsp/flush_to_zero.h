// Scope guard for the SSE flush-to-zero mode: results that would be denormal become zero while it
// lives. Denormal inputs are still read as they are (DAZ stays as the caller had it).
//
// The constructor saves the calling thread's MXCSR and sets FTZ; the destructor restores the saved
// word on every path out of the scope. Both are single instructions, fit for the audio thread.
// Needs SSE (always on x86-64; -msse2 on 32-bit x86).
#pragma once

#include <xmmintrin.h>

class FlushToZeroGuard {
 public:
  FlushToZeroGuard() noexcept : saved_(_mm_getcsr()) { _mm_setcsr(saved_ | kFlushToZero); }
  ~FlushToZeroGuard() { _mm_setcsr(saved_); }

  FlushToZeroGuard(const FlushToZeroGuard&) = delete;
  FlushToZeroGuard& operator=(const FlushToZeroGuard&) = delete;

 private:
  static constexpr unsigned int kFlushToZero = 0x8000;  // MXCSR bit 15

  unsigned int saved_;
};
