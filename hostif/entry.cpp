// The library's two exported entry points. Everything else in the plug-in stays hidden.

#include <new>

#include "hostif/audioeffect.h"
#include "hostif/effect_record.h"
#include "hostif/orv_typeif.h"

namespace {

Orv_TypeIF* makeInterface(audioMasterCallback audioMaster) {
  auto* handle = new (std::nothrow) Orv_TypeIF;
  if (!handle) return nullptr;
  AEffect* record = createEffectRecord(audioMaster);
  // Without an effect there is nothing for a handle to carry: the host gets null.
  if (!record) {
    delete handle;
    return nullptr;
  }
  try {
    handle->aeffect = nullptr;
    handle->aeffect = static_cast<AudioEffect*>(record->object)->getAeffect();
  } catch (...) {
    delete handle;
    throw;
  }
  return handle;
}

}  // namespace

extern "C" Orv_TypeIF* getinterface(audioMasterCallback audioMaster) {
  return makeInterface(audioMaster);
}

extern "C" Orv_TypeIF* OrvTypeIF(audioMasterCallback audioMaster) {
  return makeInterface(audioMaster);
}
