#include "host/cli/dial_validator.h"

#include <fmt/format.h>

#include <charconv>
#include <cmath>

#include "host/cli/sample_format.h"
#include "host/cli/tone_settings.h"

namespace tarnwell::cli {

CLI::Validator dialPosition() {
  return CLI::Validator(
      [](std::string& text) -> std::string {
        // Plain decimals only: no hexadecimal, exponent, sign or spaces.
        double value = 0.0;
        const char* end = text.data() + text.size();
        const auto [stop, error] =
            std::from_chars(text.data(), end, value, std::chars_format::fixed);
        if (error != std::errc{} || stop != end || !std::isfinite(value) || value < Dial::kMin ||
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
