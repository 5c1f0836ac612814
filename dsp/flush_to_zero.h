// Scope guard for the flush-to-zero mode: results that would be denormal become zero while it
// lives (fp_control.h says what each processor does with denormal operands).
//
// The constructor saves the calling thread's whole control word and sets the flush-to-zero bit;
// the destructor restores the saved word on every path out of the scope, so the caller's rounding
// and other modes come back as they were. Both are single instructions, fit for the audio thread.
#pragma once

#include "dsp/fp_control.h"

class FlushToZeroGuard {
 public:
  FlushToZeroGuard() noexcept : saved_(fpcontrol::read()) {
    fpcontrol::write(saved_ | fpcontrol::kFlushToZero);
  }
  ~FlushToZeroGuard() { fpcontrol::write(saved_); }

  FlushToZeroGuard(const FlushToZeroGuard&) = delete;
  FlushToZeroGuard& operator=(const FlushToZeroGuard&) = delete;

 private:
  fpcontrol::Word saved_;
};
