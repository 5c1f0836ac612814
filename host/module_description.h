// The module description an effect of this family offers beside the VST 2.4 interface: its jacks,
// the signals on each, the dry input signal and the header version, read through the Orv_TypeBase
// operations of the instance that the record's `object` field names.
//
// Those operations are reached by virtual call, so calling them on a foreign object would crash.
// describeModule first checks, without calling anything, that `object` is laid out as an effect of
// this family around this very record; a plug-in that fails the check offers no description.
//
// Thread: control thread.
#pragma once

#include <optional>
#include <vector>

#include "host/plugin_instance.h"

namespace tarnwell::host {

struct JackDescription {
  int signals;
  int firstSignal;
};

struct ModuleDescription {
  std::vector<JackDescription> inputs;
  std::vector<JackDescription> outputs;
  int dryInputSignal;  // -1: none
  int headerVersion;
};

std::optional<ModuleDescription> describeModule(const PluginInstance& instance);

}  // namespace tarnwell::host
