// The stand-in effect behind the twin entry point only.
#include "fake_effect.h"

Orv_TypeIF* OrvTypeIF(audioMasterCallback host) {
  return fake::create(host);
}
