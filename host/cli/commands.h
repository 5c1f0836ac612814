// The command's subcommands. Each add* function declares one subcommand with its options and
// --help on the application; run* runs it once parsed and returns the exit code, or throws
// UsageError, RunError or PluginError for main to report.
#pragma once

#include <CLI/CLI.hpp>
#include <array>
#include <filesystem>
#include <optional>
#include <string>

#include "amp/parameter_table.h"
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

struct PlotCommand {
  std::string kind;
  std::filesystem::path output;
  std::filesystem::path csv;
  std::filesystem::path plugin;
  std::optional<int> program;
  std::array<std::optional<std::string>, kControls.size()> controls;  // as given, kControls order
  double rate = 48000.0;
  std::string note = "A1";
  double level = -12.0;
  std::string size = "1200x700";
  bool overwrite = false;
};
CLI::App* addPlot(CLI::App& app, PlotCommand& command);
int runPlot(const PlotCommand& command);

}  // namespace tarnwell::cli
