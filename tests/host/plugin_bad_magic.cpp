// A record that is not an effect's: the magic is wrong.
#include "hostif/orv_typeif.h"

namespace {
AEffect record{};
}

Orv_TypeIF* getinterface(audioMasterCallback) {
  record.magic = fourCharCode('N', 'o', 'p', 'e');
  auto* handle = new Orv_TypeIF;
  handle->aeffect = &record;
  return handle;
}
