// rvtool: plot files in, plot jobs and pictures out, through librvdataaccess.
#include <CLI/CLI.hpp>

#include <cstdio>
#include <exception>
#include <iostream>
#include <vector>

#include "commands.h"
#include "failure.h"
#include "progress.h"
#include "rvdataaccess.h"

namespace {

constexpr const char* kExitStatusHelp =
    "Exit status: 0 success; 64 a bad command line; 73 a picture that can't be\n"
    "written; 130 Ctrl-C outside a step that the library can cancel. A failure\n"
    "of the library exits with the module number of its code (1 file, 2 store,\n"
    "3 document, 5 path, 6 art: also a cancelled export, 7 file content,\n"
    "8 matrix, 9 selection, 10 sort: also a cancelled sort), the XML codes\n"
    "11 to 15 as they are, 16 for code 65535 and 17 for any other code.";

std::string VersionText() {
  int16_t major = 0, minor = 0, revision = 0;
  RvGiGetLibVersion(&major, &minor, &revision);
  return "rvtool, librvdataaccess " + std::to_string(major) + "." + std::to_string(minor) + "." +
         std::to_string(revision);
}

}  // namespace

// The subcommands, in the order of `rvtool --help`. A new subcommand is one
// row here and a file with its Add…Command and Run….
constexpr rvtool::SubcommandMaker kSubcommands[] = {
    rvtool::AddInfoCommand,
    rvtool::AddPlotSubcommand,
    rvtool::AddRenderCommand,
    rvtool::AddPreviewCommand,
};

int main(int argc, char** argv) {
  CLI::App app{"rvtool: plot files in, plot jobs (RVL) and pictures out, through librvdataaccess."};
  app.require_subcommand(1);
  app.set_version_flag("--version", VersionText());
  std::vector<rvtool::Subcommand> subcommands;
  for (rvtool::SubcommandMaker make : kSubcommands) subcommands.push_back(make(app));
  app.footer(kExitStatusHelp);

  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& e) {
    if (e.get_exit_code() == 0) return app.exit(e);  // --help, --version
    std::fprintf(stderr, "rvtool: %s\nRun 'rvtool --help' (or 'rvtool COMMAND --help') for the options.\n",
                 e.what());
    return rvtool::kUsageStatus;
  }

  rvtool::InstallInterruptHandler();
  try {
    for (const rvtool::Subcommand& subcommand : subcommands) {
      if (subcommand.command->parsed()) return subcommand.run(std::cout);
    }
  } catch (const rvtool::Failure& failure) {
    std::cout.flush();
    std::fprintf(stderr, "rvtool: %s\n", failure.what());
    return failure.status();
  } catch (const std::exception& e) {
    // The library lets a few failures of the C++ runtime through (a table
    // index out of range, out of memory).
    std::cout.flush();
    std::fprintf(stderr, "rvtool: internal failure: %s\n", e.what());
    return 70;
  }
  return 0;
}
