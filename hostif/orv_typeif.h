// The handle the entry points return: it carries the address of one effect's AEffect record and
// owns nothing. The host deletes it through the virtual destructor, before or after closing the
// effect; either way the effect is untouched (it dies on effClose through its record).
#pragma once

#include "hostif/vst_abi.h"

class Orv_TypeIF {
 public:
  Orv_TypeIF() = default;
  Orv_TypeIF(const Orv_TypeIF&) = delete;
  Orv_TypeIF& operator=(const Orv_TypeIF&) = delete;
  virtual ~Orv_TypeIF() = default;

  AEffect* aeffect = nullptr;
};

// The two exported names of one operation: asks the host for its version, creates one effect
// through createPluginFilter and returns a new handle on its record. Returns null when the handle
// cannot be allocated, when the host answers version 0 or when creating the effect throws.
extern "C" {
__attribute__((visibility("default"))) Orv_TypeIF* getinterface(audioMasterCallback audioMaster);
__attribute__((visibility("default"))) Orv_TypeIF* OrvTypeIF(audioMasterCallback audioMaster);
}
