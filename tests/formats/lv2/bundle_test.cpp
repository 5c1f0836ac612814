// The bundle as a host reads it through lilv from the build tree: identity, features, and ports
// whose names, symbols, ranges and defaults are exactly the control table's.
#include <gtest/gtest.h>
#include <lv2/core/lv2.h>

#include <string>

#include "amp/parameter_table.h"
#include "lilv_host.h"

namespace {

using lv2_test::Node;
using lv2_test::plugin;
using lv2_test::uri;
namespace lv2 = tarnwell::lv2;

std::string text(const LilvNode* node) {
  return node != nullptr ? lilv_node_as_string(node) : "(none)";
}

TEST(Lv2Bundle, IdentityAndScheduling) {
  const LilvPlugin* p = plugin();
  Node name(lilv_plugin_get_name(p));
  EXPECT_EQ(text(name), lv2::kPluginName);
  EXPECT_FALSE(lilv_plugin_has_latency(p));

  LilvNodes* required = lilv_plugin_get_required_features(p);
  EXPECT_EQ(lilv_nodes_size(required), 0u) << "a host needs nothing to run the amp";
  lilv_nodes_free(required);
  LilvNodes* optional = lilv_plugin_get_optional_features(p);
  EXPECT_TRUE(lilv_nodes_contains(optional, uri(LV2_CORE__hardRTCapable)));
  lilv_nodes_free(optional);
  // In place safe: the property that would forbid it is absent.
  LilvNodes* properties = lilv_plugin_get_value(p, uri(LV2_CORE__inPlaceBroken));
  EXPECT_EQ(lilv_nodes_size(properties), 0u);
  lilv_nodes_free(properties);
}

TEST(Lv2Bundle, PortsAreTheControlTable) {
  const LilvPlugin* p = plugin();
  ASSERT_EQ(lilv_plugin_get_num_ports(p), lv2::kNumPorts);
  const struct {
    std::uint32_t index;
    const char* direction;
    std::string_view symbol;
  } audio[] = {{lv2::kAudioIn, LV2_CORE__InputPort, lv2::kAudioInSymbol},
               {lv2::kAudioOut, LV2_CORE__OutputPort, lv2::kAudioOutSymbol}};
  for (const auto& a : audio) {
    const LilvPort* port = lilv_plugin_get_port_by_index(p, a.index);
    EXPECT_TRUE(lilv_port_is_a(p, port, uri(LV2_CORE__AudioPort)));
    EXPECT_TRUE(lilv_port_is_a(p, port, uri(a.direction)));
    EXPECT_EQ(text(lilv_port_get_symbol(p, port)), a.symbol);
  }

  std::vector<float> minimum(lv2::kNumPorts), maximum(lv2::kNumPorts), start(lv2::kNumPorts);
  lilv_plugin_get_port_ranges_float(p, minimum.data(), maximum.data(), start.data());
  for (std::size_t k = 0; k < tarnwell::kControls.size(); ++k) {
    const tarnwell::ControlFacts& facts = tarnwell::kControls[k];
    SCOPED_TRACE(std::string(facts.name));
    const std::uint32_t index = lv2::controlPort(k);
    const LilvPort* port = lilv_plugin_get_port_by_index(p, index);
    EXPECT_TRUE(lilv_port_is_a(p, port, uri(LV2_CORE__ControlPort)));
    EXPECT_TRUE(lilv_port_is_a(p, port, uri(LV2_CORE__InputPort)));
    EXPECT_EQ(text(lilv_port_get_symbol(p, port)), facts.symbol);
    Node name(lilv_port_get_name(p, port));
    EXPECT_EQ(text(name), facts.name);

    const bool isSwitch = facts.kind == tarnwell::ControlKind::kSwitch;
    EXPECT_EQ(lilv_port_has_property(p, port, uri(LV2_CORE__toggled)), isSwitch);
    // The switch reads 0 or 1; a knob its dial; the default is the start-up program's value.
    EXPECT_EQ(minimum[index], isSwitch ? 0.0f : 1.0f);
    EXPECT_EQ(maximum[index], isSwitch ? 1.0f : 10.0f);
    EXPECT_EQ(start[index],
              isSwitch ? facts.startValue : static_cast<float>(tarnwell::dialOf(facts.startValue)));
  }
}

}  // namespace
