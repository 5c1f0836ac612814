// The standard form's audio thread runs float blocks of changing length while a control thread
// announces new block sizes, switches processing on and changes parameters, as a careless host
// might; under ThreadSanitizer any race on the scratch fails.
#include <gtest/gtest.h>

#include <atomic>
#include <cmath>
#include <thread>

#include "daw_host.h"

TEST(Concurrency, FloatBlocksWhileTheHostAnnouncesBlockSizes) {
  DawInstance amp("VSTPluginMain");
  amp.prepare(48000.0f, 256);
  std::atomic<bool> running{true}, allFinite{true};
  std::thread audio([&] {
    std::vector<float> io = noise(2048, 0.7);
    for (int block = 0; block < 1500; ++block) {
      amp.process(io.data(), io.data(), 1 + (block * 97) % 2048);
      for (const float v : io) allFinite = allFinite && std::isfinite(v);
    }
    running = false;
  });
  std::thread control([&] {
    const VstIntPtr sizes[] = {64, 1024, 32, 256, 2048};
    for (int step = 0; running; ++step) {
      amp.dispatch(effSetBlockSize, 0, sizes[step % 5]);
      if (step % 3 == 0) amp.dispatch(effMainsChanged, 0, 1);
      amp.setParameter(1 + step % 5, static_cast<float>((step * 37) % 100) / 100.0f);
    }
  });
  audio.join();
  control.join();
  EXPECT_TRUE(allFinite);
}
