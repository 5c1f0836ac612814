// The standard form's scratch is allocated on the control thread, and memory running out there is
// survived; that its process functions allocate nothing is checked with the float path.
#include <gtest/gtest.h>

#include <atomic>
#include <vector>

#include "daw_host.h"

extern std::atomic<long> allocations;      // every operator new, counted in alloc_counter.cpp
extern std::atomic<bool> failAllocations;  // makes every operator new fail

namespace {

TEST(Allocation, TheScratchIsSizedOnTheControlThread) {
  long before = allocations.load();
  DawInstance standard("VSTPluginMain");
  ASSERT_GT(allocations.load(), before) << "the counter sees the plug-in's allocations";
  standard.setSampleRate(48000.0f);
  before = allocations.load();
  standard.dispatch(effSetBlockSize, 0, 64);
  EXPECT_GT(allocations.load(), before);
}

TEST(Allocation, OutOfMemoryKeepsThePiecesUntilProcessingIsSwitchedOnAgain) {
  DawInstance standard("VSTPluginMain"), original;
  standard.prepare(44100.0f, 64);
  original.prepare(44100.0f, 64);
  failAllocations = true;
  standard.dispatch(effSetBlockSize, 0, 256);
  failAllocations = false;
  original.dispatch(effSetBlockSize, 0, 256);

  std::vector<float> io = noise(512, 0.5);
  std::vector<double> reference(io.begin(), io.end());
  standard.setParameter(3, 0.8f);
  original.setParameter(3, 0.8f);
  standard.process(io.data(), io.data(), 256);  // still in pieces of 64
  for (int start = 0; start < 256; start += 64) {
    original.process(&reference[start], &reference[start], 64);
  }
  standard.dispatch(effMainsChanged, 0, 1);  // prepares the announced 256
  standard.setParameter(3, 0.1f);
  original.setParameter(3, 0.1f);
  standard.process(&io[256], &io[256], 256);
  original.process(&reference[256], &reference[256], 256);
  for (int i = 0; i < 512; ++i) ASSERT_EQ(io[i], static_cast<float>(reference[i])) << i;
}

}  // namespace
