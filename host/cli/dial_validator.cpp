#include "host/cli/dial_validator.h"

#include <fmt/format.h>

#include <cmath>
#include <cstdlib>

#include "host/cli/sample_format.h"
#include "host/cli/tone_settings.h"

namespace tarnwell::cli {

CLI::Validator dialPosition() {
  return CLI::Validator(
      [](std::string& text) -> std::string {
        char* end = nullptr;
        const double value = std::strtod(text.c_str(), &end);
        if (text.empty() || *end != '\0' || !std::isfinite(value) || value < Dial::kMin ||
            value > Dial::kMax) {
          return fmt::format("'{}' is not a dial position from {} to {}", text, Dial::kMin,
                             Dial::kMax);
        }
        return {};
      },
      "1..10");
}

CLI::Validator encodingName() {
  return CLI::Validator(
      [](std::string& text) -> std::string {
        if (formatByName(text)) return {};
        return fmt::format("unknown format '{}' (use one of {})", text, formatNameList());
      },
      "");
}

}  // namespace tarnwell::cli
