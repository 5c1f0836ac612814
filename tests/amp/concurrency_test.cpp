// An audio thread processes while other threads change parameters and programs, read texts, and
// set other instances to new rates (which republishes the shared waveshaper tables). Run under
// ThreadSanitizer (label `concurrency`): any data race fails it.
#include <gtest/gtest.h>

#include <atomic>
#include <cmath>
#include <thread>
#include <vector>

#include "loaded_plugin.h"

namespace amp_test {
namespace {

TEST(Concurrency, AudioThreadWithParameterProgramAndRateChangesElsewhere) {
  LoadedPlugin amp;
  amp.setSampleRate(44100.0f);
  std::atomic<bool> running{true};
  std::atomic<bool> allFinite{true};

  std::thread audio([&] {
    std::vector<double> in = testSignal(128, 44100.0, 0.7), out(128);
    for (int block = 0; block < 1500; ++block) {
      amp.process(in.data(), out.data(), 128);
      for (const double v : out) {
        if (!std::isfinite(v)) allFinite = false;
      }
    }
    running = false;
  });

  std::thread control([&] {
    int step = 0;
    while (running) {
      amp.setParameter(1 + step % 5, static_cast<float>((step * 37) % 100) / 100.0f);
      if (step % 50 == 0) amp.setProgram(step / 50 % 16);
      ++step;
    }
  });

  std::thread reader([&] {
    char text[kVstMaxProgNameLen + 1];
    float sum = 0.0f;
    while (running) {
      for (int index = 0; index < 6; ++index) {
        sum += amp.getParameter(index);
        amp.dispatch(effGetParamDisplay, index, 0, text);
      }
    }
    EXPECT_TRUE(std::isfinite(sum));
  });

  std::thread otherInstances([&] {
    const float rates[] = {48000.0f, 44100.0f, 96000.0f};
    int k = 0;
    while (running) {
      LoadedPlugin other;
      other.setSampleRate(rates[k++ % 3]);
    }
  });

  audio.join();
  control.join();
  reader.join();
  otherInstances.join();
  EXPECT_TRUE(allFinite);
}

}  // namespace
}  // namespace amp_test
