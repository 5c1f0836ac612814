#include "hostif/effect_record.h"

#include "hostif/audioeffect.h"

AEffect* createEffectRecord(audioMasterCallback audioMaster) noexcept {
  try {
    if (!audioMaster || audioMaster(nullptr, audioMasterVersion, 0, 0, nullptr, 0.0f) == 0) {
      return nullptr;
    }
    AudioEffect* effect = createPluginFilter(audioMaster);
    return effect ? effect->getAeffect() : nullptr;
  } catch (...) {
    return nullptr;
  }
}
