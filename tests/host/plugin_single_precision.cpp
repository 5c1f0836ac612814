// The stand-in effect without its double-precision process: a render host cannot use it.
#include "fake_effect.h"

Orv_TypeIF* getinterface(audioMasterCallback host) {
  Orv_TypeIF* handle = fake::create(host);
  handle->aeffect->flags &= ~effFlagsCanDoubleReplacing;
  return handle;
}
