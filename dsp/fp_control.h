// The calling thread's floating-point control word, read and written as a whole: MXCSR on x86
// (SSE), FPCR on AArch64. Each access is a single instruction, fit for the audio thread.
//
// kFlushToZero makes results that would be denormal zero. On x86 denormal operands still count
// (DAZ is a separate bit, left as the caller has it); AArch64's FZ also reads denormal operands as
// zero. The chain meets a denormal operand only in the host's input samples, and its first stage
// scales them by coefficients below 1, which gives a denormal, so zero, on both.
//
// On a target with neither word there is no flush-to-zero control: the word reads 0 and writing
// it does nothing, so denormal results are kept there.
#pragma once

#include <cstdint>

#if defined(__SSE__)
#include <xmmintrin.h>
#endif

namespace fpcontrol {

#if defined(__SSE__)

using Word = unsigned int;
constexpr Word kFlushToZero = 0x8000;  // MXCSR.FTZ, bit 15
constexpr Word kRoundUpward = 0x4000;  // MXCSR.RC = 10

inline Word read() noexcept {
  return _mm_getcsr();
}
inline void write(Word word) noexcept {
  _mm_setcsr(word);
}

#elif defined(__aarch64__)

using Word = std::uint64_t;
constexpr Word kFlushToZero = Word{1} << 24;  // FPCR.FZ
constexpr Word kRoundUpward = Word{1} << 22;  // FPCR.RMode = 01

inline Word read() noexcept {
  Word word;
  asm volatile("mrs %0, fpcr" : "=r"(word));
  return word;
}
// The clobber keeps the compiler from moving memory accesses of the block across the switch.
inline void write(Word word) noexcept {
  asm volatile("msr fpcr, %0" : : "r"(word) : "memory");
}

#else

using Word = unsigned int;
constexpr Word kFlushToZero = 0;
constexpr Word kRoundUpward = 0;

inline Word read() noexcept {
  return 0;
}
inline void write(Word) noexcept {}

#endif

}  // namespace fpcontrol
