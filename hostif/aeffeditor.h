// The editor interface an effect may attach with AudioEffect::setEditor. The dispatcher routes the
// editor requests here; every default answers "not handled" and touches nothing, so an effect
// without a window (or with a partial one) stays well-behaved.
//
// Thread: the host's UI thread. The owning effect deletes its editor through the virtual
// destructor.
#pragma once

#include "hostif/vst_abi.h"

class AEffEditor {
 public:
  AEffEditor() = default;
  AEffEditor(const AEffEditor&) = delete;
  AEffEditor& operator=(const AEffEditor&) = delete;
  virtual ~AEffEditor() = default;

  // Stores the editor's rectangle in *rect when it has one; the default has none.
  virtual bool getRect(ERect** /*rect*/) { return false; }
  // Opens the editor inside the host's native window.
  virtual bool open(void* /*window*/) { return false; }
  virtual void close() {}
  virtual void idle() {}
  virtual bool onKeyDown(VstKeyCode& /*keyCode*/) { return false; }
  virtual bool onKeyUp(VstKeyCode& /*keyCode*/) { return false; }
  virtual bool setKnobMode(VstInt32 /*mode*/) { return false; }
};
