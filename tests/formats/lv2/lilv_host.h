// The LV2 form as a host finds it: one lilv world that loads the bundle from the build tree
// (TARNWELL_LV2_BUNDLE) for the whole test program, and instances driven through lilv.
#pragma once

#include <lilv/lilv.h>
#include <lv2/atom/atom.h>
#include <lv2/buf-size/buf-size.h>
#include <lv2/options/options.h>
#include <lv2/urid/urid.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "formats/lv2/ports.h"

namespace lv2_test {

// A lilv node released at the end of its scope.
struct Node {
  LilvNode* node;
  explicit Node(LilvNode* n) : node(n) {}
  ~Node() { lilv_node_free(node); }
  Node(const Node&) = delete;
  Node& operator=(const Node&) = delete;
  operator const LilvNode*() const { return node; }
};

inline LilvWorld* world() {
  static LilvWorld* const loaded = [] {
    LilvWorld* w = lilv_world_new();
    const std::string dir = std::string(TARNWELL_LV2_BUNDLE) + "/";
    Node bundle(lilv_new_file_uri(w, nullptr, dir.c_str()));
    lilv_world_load_bundle(w, bundle);
    return w;
  }();
  return loaded;
}

inline Node uri(const char* text) {
  return Node(lilv_new_uri(world(), text));
}

// The amp's plug-in record; aborts the test program when the bundle does not offer it.
inline const LilvPlugin* plugin() {
  Node id = uri(tarnwell::lv2::kPluginUri);
  const LilvPlugin* p = lilv_plugins_get_by_uri(lilv_world_get_all_plugins(world()), id);
  if (p == nullptr) {
    std::fprintf(stderr, "%s not found in %s\n", tarnwell::lv2::kPluginUri, TARNWELL_LV2_BUNDLE);
    std::abort();
  }
  return p;
}

// The features a host passes to announce its longest block: urid:map and options with
// buf-size maxBlockLength. Maps only the two URIs it needs.
class BlockLengthFeatures {
 public:
  explicit BlockLengthFeatures(std::int32_t maxBlock) : maxBlock_(maxBlock) {
    options_[0] = {LV2_OPTIONS_INSTANCE,
                   0,
                   map(this, LV2_BUF_SIZE__maxBlockLength),
                   sizeof maxBlock_,
                   map(this, LV2_ATOM__Int),
                   &maxBlock_};
    options_[1] = {LV2_OPTIONS_INSTANCE, 0, 0, 0, 0, nullptr};
  }
  BlockLengthFeatures(const BlockLengthFeatures&) = delete;
  BlockLengthFeatures& operator=(const BlockLengthFeatures&) = delete;

  const LV2_Feature* const* get() const { return features_; }

 private:
  static LV2_URID map(LV2_URID_Map_Handle, const char* text) {
    const std::string uri = text;
    return uri == LV2_BUF_SIZE__maxBlockLength ? 1
           : uri == LV2_ATOM__Int              ? 2
                                               : 100;  // 100: no match
  }

  std::int32_t maxBlock_;
  LV2_URID_Map map_{nullptr, map};
  LV2_Options_Option options_[2];
  LV2_Feature mapFeature_{LV2_URID__map, &map_};
  LV2_Feature optionsFeature_{LV2_OPTIONS__options, options_};
  const LV2_Feature* features_[3] = {&mapFeature_, &optionsFeature_, nullptr};
};

// One instance with its control readings, connected and activated; `out` may be `in`.
class Instance {
 public:
  Instance(double rate, const LV2_Feature* const* features = nullptr)
      : instance_(lilv_plugin_instantiate(plugin(), rate, features)) {
    if (instance_ == nullptr) return;
    for (std::size_t k = 0; k < tarnwell::kControls.size(); ++k) {
      controls_[k] = tarnwell::lv2::portRange(tarnwell::kControls[k]).start;
      lilv_instance_connect_port(instance_, tarnwell::lv2::controlPort(k), &controls_[k]);
    }
    lilv_instance_activate(instance_);
  }
  ~Instance() {
    if (instance_ == nullptr) return;
    lilv_instance_deactivate(instance_);
    lilv_instance_free(instance_);
  }
  Instance(const Instance&) = delete;
  Instance& operator=(const Instance&) = delete;

  bool valid() const { return instance_ != nullptr; }
  LilvInstance* get() const { return instance_; }
  // The reading of the control at `position` in kControls, in port units.
  void set(std::size_t position, float reading) { controls_[position] = reading; }

  void run(const float* in, float* out, std::uint32_t frames) {
    lilv_instance_connect_port(instance_, tarnwell::lv2::kAudioIn, const_cast<float*>(in));
    lilv_instance_connect_port(instance_, tarnwell::lv2::kAudioOut, out);
    lilv_instance_run(instance_, frames);
  }

 private:
  LilvInstance* instance_;
  float controls_[tarnwell::kControls.size()];
};

}  // namespace lv2_test
