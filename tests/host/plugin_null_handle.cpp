// An entry point that returns no handle at all.
#include "hostif/orv_typeif.h"

Orv_TypeIF* getinterface(audioMasterCallback) {
  return nullptr;
}
