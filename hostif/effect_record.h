// What every entry point does before it answers the host: asks for the host's version, creates
// the effect through createPluginFilter and returns its AEffect record.
//
// Null when there is no callback to ask, when the host answers version 0 (it predates the
// interface) or when anything on the way throws: no exception reaches the host from here.
// Runs on whichever thread the host loads plug-ins on; no lock, no state of its own.
#pragma once

#include "hostif/vst_abi.h"

AEffect* createEffectRecord(audioMasterCallback audioMaster) noexcept;
