// Orv_TypeBase: the module description a module host reads from an effect, beside the VST 2.4
// interface: jacks (connectors) and the signals (channels) on them, a way to format any
// parameter value without setting it, a header version and two notification hooks. The host
// reaches these on the instance named by the AEffect record's object field; nothing inside the
// effect calls them.
//
// Threads: any; the defaults read constants or a field fixed at construction.
//
// The eleven operations continue AudioEffectX's slot order; never reorder, insert or remove one.
#pragma once

#include "hostif/audioeffectx.h"

// The module host's listener; passed by pointer only and never called here.
class Orv_VstListner;

class Orv_TypeBase : public AudioEffectX {
 public:
  Orv_TypeBase(audioMasterCallback host, VstInt32 programCount, VstInt32 paramCount)
      : AudioEffectX(host, programCount, paramCount), headerVersion(1) {}

  virtual VstInt32 getNumOfInJacks() { return 1; }
  virtual VstInt32 getNumOfOutJacks() { return 1; }
  virtual VstInt32 getNumOfInSig(VstInt32 /*jack*/) { return 2; }
  virtual VstInt32 getNumOfOutSig(VstInt32 /*jack*/) { return 1; }
  // Number of the jack's first signal among all input (output) signals.
  virtual VstInt32 getStartNumInSig(VstInt32 /*jack*/) { return 0; }
  virtual VstInt32 getStartNumOutSig(VstInt32 /*jack*/) { return 0; }
  // Input signal carrying the unprocessed signal; -1 for none.
  virtual VstInt32 getDryInSigNum() { return -1; }
  // The listener is not stored.
  virtual void setListner(Orv_VstListner* /*listener*/) {}
  // Writes the display text `value` would have at `index`, without setting it. The default
  // leaves text untouched.
  virtual void getParameterDisplayOf(VstInt32 /*index*/, float /*value*/, char* /*text*/) {}
  virtual VstInt32 getHeaderVersion() { return headerVersion; }
  virtual void setTime(float /*time*/) {}

 protected:
  VstInt32 headerVersion;
};
