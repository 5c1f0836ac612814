// The command's subcommands. Each add* function declares one subcommand with its options and
// --help on the application; run* runs it once parsed and returns the exit code, or throws
// UsageError, RunError or PluginError for main to report.
#pragma once

#include <CLI/CLI.hpp>
#include <filesystem>
#include <string>

#include "host/cli/render.h"

namespace tarnwell::cli {

struct RenderCommand {
  RenderRequest request;
  std::string deep;
  std::string format;
};
CLI::App* addRender(CLI::App& app, RenderCommand& command);
int runRender(RenderCommand& command);

struct InfoCommand {
  std::filesystem::path plugin;
  bool json = false;
};
CLI::App* addInfo(CLI::App& app, InfoCommand& command);
int runInfo(const InfoCommand& command);

struct DemoCommand {
  std::filesystem::path directory = ".";
  std::filesystem::path plugin;
};
CLI::App* addDemo(CLI::App& app, DemoCommand& command);
int runDemo(const DemoCommand& command);

}  // namespace tarnwell::cli
