#include "formats/vst2/tarnwell_vst2.h"

// The one effect the standard form provides. A throwing constructor releases the storage and the
// exception passes on to the entry point.
AudioEffect* createPluginFilter(audioMasterCallback audioMaster) {
  return new TarnwellVst2(audioMaster);
}
