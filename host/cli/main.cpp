// tarnwell: renders audio files through the NEW Tarnwell bass amp plug-in, describes the plug-in,
// plays a demo and draws what the knobs and the drive do. Exit codes: 0 success, 1 usage error,
// 2 processing or file error.
#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <new>
#include <string>

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

// What was printed must have reached standard output: a full disk or a closed pipe is a failure.
int finish(int code) {
  if (std::fflush(stdout) != 0 || std::ferror(stdout) != 0) {
    const std::string reason = std::strerror(errno);
    return fail(kExitFailure, ("cannot write standard output: " + reason).c_str());
  }
  return code;
}

int run(CLI::App* renderApp, CLI::App* infoApp, CLI::App* demoApp, CLI::App* plotApp,
        RenderCommand& render, const InfoCommand& info, const DemoCommand& demo,
        const PlotCommand& plot) {
  try {
    if (renderApp->parsed()) return runRender(render);
    if (infoApp->parsed()) return runInfo(info);
    if (demoApp->parsed()) return runDemo(demo);
    if (plotApp->parsed()) return runPlot(plot);
    return kExitUsage;
  } catch (const UsageError& error) {
    return fail(kExitUsage, error.what());
  } catch (const std::bad_alloc&) {  // the buffers grow with --block and the channels
    return fail(kExitFailure, "not enough memory; a smaller --block needs less");
  } catch (const std::exception& error) {
    return fail(kExitFailure, error.what());
  }
}

int runCommandLine(int argc, char** argv) {
  // Beyond a file-size limit a write then fails with an error the command reports and cleans up
  // after, instead of the signal ending it with a partial file.
  std::signal(SIGXFSZ, SIG_IGN);
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
    return finish(app.exit(error) == 0 ? kExitSuccess : kExitUsage);
  }

  return finish(run(renderApp, infoApp, demoApp, plotApp, render, info, demo, plot));
}

}  // namespace

int main(int argc, char** argv) {
  try {
    return runCommandLine(argc, argv);
  } catch (...) {  // even the message could not be written: the exit code must still say so
    return kExitFailure;
  }
}
