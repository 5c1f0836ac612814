// The entry of the standard VST 2.4 form, under the name Linux hosts look up, VSTPluginMain, and
// under main, which older hosts look up. Both hand the host the AEffect record of one new effect
// made by createPluginFilter (which the binary defines), or null when the host answers version 0,
// gives no callback or creating the effect throws. Everything else in the plug-in stays hidden.

#include "hostif/effect_record.h"

extern "C" __attribute__((visibility("default"))) AEffect* VSTPluginMain(
    audioMasterCallback audioMaster) {
  return createEffectRecord(audioMaster);
}

// C++ keeps the name main for a program's own function, so the assembler label gives the export
// its name.
extern "C" __attribute__((visibility("default"))) AEffect* vstPluginMainOldName(
    audioMasterCallback audioMaster) __asm__("main");

AEffect* vstPluginMainOldName(audioMasterCallback audioMaster) {
  return createEffectRecord(audioMaster);
}
