// What a Linux host's plug-in scanner does with a VST 2.4 file, for the install check: open it,
// find VSTPluginMain (or the older `main`), create an effect with a host that answers only its
// version, check the record's magic, ask the effect's name and close it again.
// Prints the name and exits 0; one line on stderr and exit 1 when a host would not list the file.
#include <dlfcn.h>

#include <cstdio>

#include "hostif/vst_abi.h"

namespace {

using EntryProc = AEffect* (*)(audioMasterCallback);

VstIntPtr answerVersionOnly(AEffect*, VstInt32 opcode, VstInt32, VstIntPtr, void*, float) {
  return opcode == audioMasterVersion ? kVstVersion : 0;
}

int refuse(const char* file, const char* why) {
  std::fprintf(stderr, "vst_scan: %s: %s\n", file, why);
  return 1;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) return refuse("usage", "vst_scan PLUGIN.so");
  const char* file = argv[1];
  void* library = dlopen(file, RTLD_NOW | RTLD_LOCAL);
  if (library == nullptr) return refuse(file, dlerror());
  void* entry = dlsym(library, "VSTPluginMain");
  if (entry == nullptr) entry = dlsym(library, "main");
  if (entry == nullptr) return refuse(file, "no VSTPluginMain or main");

  AEffect* effect = reinterpret_cast<EntryProc>(entry)(answerVersionOnly);
  if (effect == nullptr || effect->magic != kEffectMagic) return refuse(file, "no VST 2.4 effect");
  char name[256] = {};  // hosts give more room than the 32 characters a name may take
  effect->dispatcher(effect, effOpen, 0, 0, nullptr, 0.0f);
  effect->dispatcher(effect, effGetEffectName, 0, 0, name, 0.0f);
  effect->dispatcher(effect, effClose, 0, 0, nullptr, 0.0f);
  std::printf("%s\n", name);
  return 0;
}
