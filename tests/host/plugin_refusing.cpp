// An entry point that refuses: a handle without a record.
#include "hostif/orv_typeif.h"

Orv_TypeIF* getinterface(audioMasterCallback) {
  return new Orv_TypeIF;
}
