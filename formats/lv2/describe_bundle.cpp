// Writes the bundle's description from the control table, so the ports a host lists can never
// drift from the parameters the amp has:
//
//   lv2_describe BUNDLE_DIR BINARY MINOR MICRO
//
// BUNDLE_DIR/manifest.ttl names the plug-in and its binary; BUNDLE_DIR/tarnwell.ttl holds the
// identity, features and ports. Each file is written beside its place and renamed into it, so a
// failed run leaves no half-written description. Exit 0 on success, 2 when a file cannot be
// written. Runs at build time only.
#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <system_error>
#include <utility>

#include "formats/lv2/ports.h"

namespace {

using namespace tarnwell;
using namespace tarnwell::lv2;

constexpr std::string_view kPrefixes =
    "@prefix doap:  <http://usefulinc.com/ns/doap#> .\n"
    "@prefix lv2:   <http://lv2plug.in/ns/lv2core#> .\n"
    "@prefix rdfs:  <http://www.w3.org/2000/01/rdf-schema#> .\n";

// A Turtle decimal: the shortest fixed form that reads back as the same float, with a point.
std::string decimal(float value) {
  char text[32];
  const auto [end, ec] = std::to_chars(text, text + sizeof text, value, std::chars_format::fixed);
  std::string s(text, ec == std::errc() ? end : text);
  if (s.find('.') == std::string::npos) s += ".0";
  return s;
}

std::string manifest(std::string_view binary) {
  std::ostringstream ttl;
  ttl << kPrefixes << "\n<" << kPluginUri << ">\n"
      << "    a lv2:Plugin ;\n"
      << "    lv2:binary <" << binary << "> ;\n"
      << "    rdfs:seeAlso <tarnwell.ttl> .\n";
  return ttl.str();
}

void audioPort(std::ostringstream& ttl, std::uint32_t index, std::string_view direction,
               std::string_view symbol, std::string_view name) {
  ttl << "        a lv2:AudioPort , lv2:" << direction << " ;\n"
      << "        lv2:index " << index << " ;\n"
      << "        lv2:symbol \"" << symbol << "\" ;\n"
      << "        lv2:name \"" << name << "\"\n";
}

void controlPort(std::ostringstream& ttl, std::size_t position) {
  const ControlFacts& facts = kControls[position];
  const PortRange range = portRange(facts);
  ttl << "        a lv2:ControlPort , lv2:InputPort ;\n"
      << "        lv2:index " << lv2::controlPort(position) << " ;\n"
      << "        lv2:symbol \"" << facts.symbol << "\" ;\n"
      << "        lv2:name \"" << facts.name << "\" ;\n"
      << "        lv2:default " << decimal(range.start) << " ;\n"
      << "        lv2:minimum " << decimal(range.minimum) << " ;\n"
      << "        lv2:maximum " << decimal(range.maximum);
  if (facts.kind == ControlKind::kSwitch) ttl << " ;\n        lv2:portProperty lv2:toggled";
  ttl << "\n";
}

std::string description(int minor, int micro) {
  std::ostringstream ttl;
  ttl << "@prefix bufsz: <http://lv2plug.in/ns/ext/buf-size#> .\n"
      << kPrefixes << "@prefix opts:  <http://lv2plug.in/ns/ext/options#> .\n"
      << "@prefix urid:  <http://lv2plug.in/ns/ext/urid#> .\n\n"
      << "# In place safe (no lv2:inPlaceBroken) and without delay, so no latency port.\n"
      << "<" << kPluginUri << ">\n"
      << "    a lv2:Plugin , lv2:SimulatorPlugin ;\n"
      << "    doap:name \"" << kPluginName << "\" ;\n"
      << "    doap:license <urn:tarnwell:license:proprietary> ;\n"
      << "    rdfs:comment \"A bass guitar amplifier: mono in, mono out. "
         "Knobs on the 1-to-10 dial, 5.5 the middle.\" ;\n"
      << "    lv2:minorVersion " << minor << " ;\n"
      << "    lv2:microVersion " << micro << " ;\n"
      << "    lv2:optionalFeature lv2:hardRTCapable , opts:options , urid:map ;\n"
      << "    opts:supportedOption bufsz:maxBlockLength ;\n"
      << "    lv2:port [\n";
  audioPort(ttl, kAudioIn, "InputPort", kAudioInSymbol, "In");
  ttl << "    ] , [\n";
  audioPort(ttl, kAudioOut, "OutputPort", kAudioOutSymbol, "Out");
  for (std::size_t k = 0; k < kControls.size(); ++k) {
    ttl << "    ] , [\n";
    controlPort(ttl, k);
  }
  ttl << "    ] .\n";
  return ttl.str();
}

bool writeInPlace(const std::filesystem::path& path, const std::string& text) {
  std::filesystem::path pending = path;
  pending += ".pending";
  {
    std::ofstream file(pending, std::ios::binary | std::ios::trunc);
    file << text;
    if (!file.flush()) {
      std::error_code ignored;
      std::filesystem::remove(pending, ignored);
      return false;
    }
  }
  std::error_code ec;
  std::filesystem::rename(pending, path, ec);
  return !ec;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 5) {
    std::fprintf(stderr, "usage: lv2_describe BUNDLE_DIR BINARY MINOR MICRO\n");
    return 1;
  }
  const std::filesystem::path bundle = argv[1];
  const int minor = std::atoi(argv[3]);
  const int micro = std::atoi(argv[4]);
  std::error_code ec;
  std::filesystem::create_directories(bundle, ec);
  for (const auto& [name, text] : {std::pair{"manifest.ttl", manifest(argv[2])},
                                   std::pair{"tarnwell.ttl", description(minor, micro)}}) {
    if (!writeInPlace(bundle / name, text)) {
      std::fprintf(stderr, "lv2_describe: cannot write %s\n", (bundle / name).c_str());
      return 2;
    }
  }
  return 0;
}
