// tarnwell: renders audio files through the NEW Tarnwell bass amp plug-in, describes the plug-in,
// plays a demo and draws what the knobs and the drive do. Exit codes: 0 success, 1 usage error,
// 2 processing or file error.
#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <cstdio>

#include "host/cli/build_facts.h"
#include "host/cli/commands.h"
#include "host/cli/errors.h"
#include "host/cli/plugin_path.h"
#include "host/plugin_error.h"

namespace {

using namespace tarnwell::cli;

int fail(int code, const char* message) {
  fmt::print(stderr, "tarnwell: {}\n", message);
  return code;
}

}  // namespace

int main(int argc, char** argv) {
  CLI::App app{
      "Renders audio through the NEW Tarnwell bass amp plug-in (mono; each channel of a file runs\n"
      "through its own amp). Exit codes: 0 success, 1 usage error, 2 processing or file error.",
      "tarnwell"};
  app.require_subcommand(1);
  app.set_version_flag("--version", fmt::format("tarnwell {}", kVersion));
  app.footer(
      fmt::format("Run 'tarnwell COMMAND --help' for the options of each command.\n"
                  "Without --plugin the amp is looked for as {} beside this command, then in\n"
                  "{} from this command's folder, where make install and the package put it.",
                  kPluginFileName, kInstalledPluginFolder));
  app.failure_message([](const CLI::App*, const CLI::Error& error) {
    return fmt::format("tarnwell: {} (see --help)\n", error.what());
  });

  RenderCommand render;
  InfoCommand info;
  DemoCommand demo;
  PlotCommand plot;
  CLI::App* renderApp = addRender(app, render);
  CLI::App* infoApp = addInfo(app, info);
  CLI::App* demoApp = addDemo(app, demo);
  CLI::App* plotApp = addPlot(app, plot);

  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    return app.exit(error) == 0 ? kExitSuccess : kExitUsage;
  }

  try {
    if (renderApp->parsed()) return runRender(render);
    if (infoApp->parsed()) return runInfo(info);
    if (demoApp->parsed()) return runDemo(demo);
    if (plotApp->parsed()) return runPlot(plot);
    return kExitUsage;
  } catch (const UsageError& error) {
    return fail(kExitUsage, error.what());
  } catch (const std::exception& error) {
    return fail(kExitFailure, error.what());
  }
}
