// Speaker-arrangement bookkeeping of AudioEffectX. An arrangement made here is one calloc'd block:
// the two header words, then exactly numChannels speaker records (not the eight the record
// declares), released with free by deallocateArrangement.

#include <cstdint>
#include <cstdlib>
#include <cstring>

#include "hostif/audioeffectx.h"

namespace {

constexpr std::size_t kHeaderBytes = offsetof(VstSpeakerArrangement, speakers);
constexpr std::size_t kSpeakerBytes = sizeof(VstSpeakerProperties);
constexpr std::size_t kNameChars = sizeof(VstSpeakerProperties::name) - 1;

static_assert(kHeaderBytes == 8 && kSpeakerBytes == 112);

// Speaker i of an arrangement that may hold more than the eight speakers the record declares.
VstSpeakerProperties* speakerAt(VstSpeakerArrangement* arrangement, VstInt32 i) {
  VstSpeakerProperties* first = arrangement->speakers;
  return first + i;
}

}  // namespace

bool AudioEffectX::allocateArrangement(VstSpeakerArrangement** arrangement, VstInt32 nbChannels) {
  if (!arrangement) return false;
  if (*arrangement) {
    std::free(*arrangement);
    *arrangement = nullptr;
  }
  // A negative count, or one whose size the address space cannot hold, fails like calloc would.
  if (nbChannels < 0) return false;
  const std::uint64_t bytes = kHeaderBytes + kSpeakerBytes * static_cast<std::uint64_t>(nbChannels);
  if (bytes > SIZE_MAX) return false;
  void* block = std::calloc(1, static_cast<std::size_t>(bytes));
  if (!block) return false;
  *arrangement = static_cast<VstSpeakerArrangement*>(block);
  (*arrangement)->numChannels = nbChannels;
  return true;
}

bool AudioEffectX::deallocateArrangement(VstSpeakerArrangement** arrangement) {
  if (arrangement && *arrangement) {
    std::free(*arrangement);
    *arrangement = nullptr;
  }
  return true;
}

bool AudioEffectX::copySpeaker(VstSpeakerProperties* to, VstSpeakerProperties* from) {
  if (!to || !from) return false;
  // At most 63 characters, zero-filled behind them: the name always ends within its 64 bytes.
  const void* end = std::memchr(from->name, 0, kNameChars);
  const std::size_t length =
      end ? static_cast<std::size_t>(static_cast<const char*>(end) - from->name) : kNameChars;
  std::memcpy(to->name, from->name, length);
  std::memset(to->name + length, 0, sizeof to->name - length);
  to->type = from->type;
  to->azimuth = from->azimuth;
  to->elevation = from->elevation;
  to->radius = from->radius;
  to->reserved = from->reserved;
  std::memcpy(to->future, from->future, sizeof to->future);
  return true;
}

bool AudioEffectX::matchArrangement(VstSpeakerArrangement** to, VstSpeakerArrangement* from) {
  if (!from) return false;
  if (!deallocateArrangement(to)) return false;
  if (!allocateArrangement(to, from->numChannels)) return false;
  (*to)->type = from->type;
  for (VstInt32 i = 0; i < (*to)->numChannels; ++i) {
    if (!copySpeaker(speakerAt(*to, i), speakerAt(from, i))) return false;
  }
  return true;
}
