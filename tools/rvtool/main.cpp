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
    "Exit status:\n"
    "  0        success\n"
    "  1        a file can't be opened, read or written (also a folder given as a file)\n"
    "  2 to 10  a failure of the library, by the module of its code: 2 store, 3 document,\n"
    "           5 path, 6 art (also a cancelled export), 7 file content, 8 matrix,\n"
    "           9 selection, 10 sort (also a cancelled sort)\n"
    "  11 to 15 the XML codes of the library as they are\n"
    "  16       the library's code 65535 (an XML operation failed)\n"
    "  17       any other code of the library\n"
    "  64       a bad command line\n"
    "  65       the input is empty or draws nothing, or nothing was made\n"
    "  70       an internal failure (out of memory)\n"
    "  73       a picture or file of the tool can't be written\n"
    "  130      Ctrl-C outside a step that the library can cancel";

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
    rvtool::AddHatchCommand,
    rvtool::AddContourCommand,
    rvtool::AddPrefsCommand,
    rvtool::AddPreviewCommand,
    rvtool::AddMillCommand,
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
    return rvtool::kInternalStatus;
  }
  return 0;
}
