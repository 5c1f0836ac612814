#include "host/settle.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace tarnwell::host {

std::int64_t settleFrames(double sampleRate, int blockFrames) noexcept {
  const auto wanted = static_cast<std::int64_t>(std::ceil(kSettleSeconds * sampleRate));
  const std::int64_t blocks = std::max<std::int64_t>(2, (wanted + blockFrames - 1) / blockFrames);
  return blocks * blockFrames;
}

void settle(PluginInstance& instance) {
  const int block = instance.blockSize();
  const std::vector<double> silence(block, 0.0);
  std::vector<double> out(block);
  const std::int64_t frames = settleFrames(instance.sampleRate(), block);
  for (std::int64_t done = 0; done < frames; done += block) {
    instance.process(silence.data(), out.data(), block);
  }
}

}  // namespace tarnwell::host
