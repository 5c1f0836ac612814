// Command-line checks shared by the subcommands: a dial position on the plug-in's 1-to-10 scale
// (a plain decimal number: "nan", "0x5" and "1e1" are not positions) and an encoding name from the
// --format table.
#pragma once

#include <CLI/CLI.hpp>

namespace tarnwell::cli {

CLI::Validator dialPosition();
CLI::Validator encodingName();

}  // namespace tarnwell::cli
