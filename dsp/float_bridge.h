// FloatBridge: runs a double-precision block process on single-precision buffers,
//   out[i] = float(process(double(in[i]))),
// widening each piece into one double buffer, processing it into the other and rounding the result
// back to float (round to nearest).
//
// Contract:
// - A block longer than capacity() runs as consecutive pieces of capacity() samples, the last one
//   shorter; each piece is one call of the process, so one block of whatever it runs.
// - `in` and `out` may be the same buffer: a piece is read whole before any of it is written.
// - A block of zero or fewer samples is passed on once with its length, so the process sees the
//   very calls a double-precision caller would make.
//
// Threads: the constructor allocates (control thread); run() allocates nothing, calls no library
// function and takes no lock (audio thread). A bridge moves with its buffers.
#pragma once

#include <algorithm>
#include <memory>

class FloatBridge {
 public:
  // Buffers for pieces of `capacity` samples, at least one. Throws std::bad_alloc.
  explicit FloatBridge(int capacity)
      : capacity_(std::max(capacity, 1)), in_(new double[capacity_]), out_(new double[capacity_]) {}

  int capacity() const noexcept { return capacity_; }

  // `process(double* in, double* out, int frames)` must be noexcept; it may clobber `in`.
  template <class Process>
  void run(const float* in, float* out, int frames, Process&& process) noexcept {
    if (frames <= 0) {
      process(in_.get(), out_.get(), frames);
      return;
    }
    for (int done = 0; done < frames;) {
      const int n = std::min(frames - done, capacity_);
      for (int i = 0; i < n; ++i) in_[i] = in[done + i];
      process(in_.get(), out_.get(), n);
      for (int i = 0; i < n; ++i) out[done + i] = static_cast<float>(out_[i]);
      done += n;
    }
  }

 private:
  int capacity_;
  std::unique_ptr<double[]> in_;
  std::unique_ptr<double[]> out_;
};
