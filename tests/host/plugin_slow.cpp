// The stand-in effect, taking a millisecond per block: long enough renders to interrupt.
#include <time.h>

#include "fake_effect.h"

Orv_TypeIF* getinterface(audioMasterCallback host) {
  Orv_TypeIF* handle = fake::create(host);
  handle->aeffect->processDoubleReplacing = [](AEffect* e, double** in, double** out, VstInt32 n) {
    const timespec pause{0, 1000000};
    nanosleep(&pause, nullptr);
    fake::Effect::process(e, in, out, n);
  };
  return handle;
}
