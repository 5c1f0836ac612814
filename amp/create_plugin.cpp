#include "amp/tarnwell.h"

// The one effect this library provides. A throwing constructor releases the storage and the
// exception passes on to the entry point.
AudioEffect* createPluginFilter(audioMasterCallback audioMaster) {
  return new Tarnwell(audioMaster);
}
