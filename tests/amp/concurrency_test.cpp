// An audio thread processes while others change parameters and programs, read texts and set other
// instances to new rates (republishing the shared tables); under ThreadSanitizer any race fails.
#include <gtest/gtest.h>

#include <atomic>
#include <thread>

#include "loaded_plugin.h"

TEST(Concurrency, AudioThreadWithParameterProgramAndRateChangesElsewhere) {
  LoadedPlugin amp;
  amp.setSampleRate(44100.0f);
  std::atomic<bool> running{true}, allFinite{true};
  std::thread audio([&] {
    std::vector<double> in = testSignal(128, 44100.0, 0.7), out(128);
    for (int block = 0; block < 1500; ++block) {
      amp.process(in.data(), out.data(), 128);
      for (const double v : out) allFinite = allFinite && std::isfinite(v);
    }
    running = false;
  });
  std::thread control([&] {
    for (int step = 0; running; ++step) {
      amp.setParameter(1 + step % 5, static_cast<float>((step * 37) % 100) / 100.0f);
      if (step % 50 == 0) amp.setProgram(step / 50 % 16);
    }
  });
  std::thread reader([&] {
    while (running) {
      for (int index = 0; index < 6; ++index) {
        EXPECT_GE(amp.getParameter(index), 0.0f);
        amp.text(effGetParamDisplay, index);
      }
    }
  });
  std::thread otherInstances([&] {
    const float rates[] = {48000.0f, 44100.0f, 96000.0f};
    for (int k = 0; running; ++k) LoadedPlugin().setSampleRate(rates[k % 3]);
  });
  for (std::thread* t : {&audio, &control, &reader, &otherInstances}) t->join();
  EXPECT_TRUE(allFinite);
}
