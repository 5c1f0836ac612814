// The stand-in effect behind the usual entry point.
#include "fake_effect.h"

Orv_TypeIF* getinterface(audioMasterCallback host) {
  return fake::create(host);
}
