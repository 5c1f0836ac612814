// The callback through which a plug-in asks its host. A render host can answer the version (2400),
// the sample rate and block size it drives the instance at, its vendor and product strings and its
// capabilities; every other request answers 0.
//
// Each instance finds its own HostContext through the record's `user` field, which belongs to the
// host. Requests made before that field is set (the entry point asks for the version with no record
// at all) get the answers that need no context: the version, the strings and the capabilities.
//
// Thread: any. The callback reads the context and writes only into the plug-in's buffer.
#pragma once

#include <string_view>

#include "hostif/vst_abi.h"

namespace tarnwell::host {

struct HostContext {
  double sampleRate = 0.0;  // 0 until the instance is prepared
  VstInt32 blockSize = 0;
};

struct HostIdentity {
  static constexpr VstIntPtr kVersion = kVstVersion;
  static constexpr std::string_view kVendor = "Tarnwell";
  static constexpr std::string_view kProduct = "tarnwell render host";
  static constexpr VstIntPtr kVendorVersion = 1000;
  // The instance is started and stopped around processing with effStartProcess/effStopProcess.
  static constexpr std::string_view kCanDo[] = {"startStopProcess"};
};

VstIntPtr hostCallback(AEffect* effect, VstInt32 opcode, VstInt32 index, VstIntPtr value, void* ptr,
                       float opt);

}  // namespace tarnwell::host
