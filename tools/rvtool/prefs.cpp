// rvtool prefs: the host's preference files, shown by section or written
// again at the version that a save writes.
//
// A file is taken as the main file first and as the outline tool's file when
// its root is another; its records start from zeros, so a key that the file
// lacks shows (and is written) as 0 or empty text. The keys come from the
// lists of the public header, in file order.
#include <CLI/CLI.hpp>

#include <cinttypes>
#include <cstdio>
#include <memory>
#include <type_traits>

#include "commands.h"
#include "failure.h"
#include "frame/error_codes.h"
#include "rvdataaccess.h"

namespace rvtool {
namespace {

/// The records of both files, from zeros.
struct PreferenceRecords {
  bool outlineTool = false;  // the file is the outline tool's
  RVPREFUSERSETUP userSetup{};
  RVPREFPLOTPREVIEW plotPreview{};
  RVPREFPLOT plot{};
  RVPREFTOMBOENV tomboEnv{};
  RVPREFFUNCTION function{};
  RVPREFCUTPREVIEW cutPreview{};
  RVPREFDOTBRIDGE dotbridge{};
  RVPREFOUTLINETOOL outline{};
};

std::unique_ptr<PreferenceRecords> LoadAny(const std::string& file) {
  auto r = std::make_unique<PreferenceRecords>();
  const uint32_t code = RvLoadKFPreference(file.c_str(), &r->userSetup, &r->plotPreview, &r->plot, &r->tomboEnv,
                                           &r->function, &r->cutPreview, &r->dotbridge);
  if (code == rv::kErrXmlMissing && RvLoadOTPreference(file.c_str(), &r->outline) == 0) {
    r->outlineTool = true;
    return r;
  }
  Check(code, "loading the preferences", file);
  return r;
}

/// A field's value in the text form of the file (a text up to its width).
template <class Field>
std::string ValueText(const Field& field) {
  char text[64];
  if constexpr (std::is_array_v<Field>) {
    std::size_t n = 0;
    while (n < sizeof field && field[n] != '\0') ++n;
    return std::string(field, n);
  } else if constexpr (std::is_same_v<Field, double>) {
    std::snprintf(text, sizeof text, "%lf", field);
  } else if constexpr (std::is_same_v<Field, float>) {
    std::snprintf(text, sizeof text, "%f", double(field));
  } else if constexpr (std::is_signed_v<Field>) {
    std::snprintf(text, sizeof text, "%" PRId32, int32_t(field));
  } else {
    std::snprintf(text, sizeof text, "%" PRIu32, uint32_t(field));
  }
  return text;
}

/// "[Section]" and a line "Group/Key = value" per key.
class SectionPrinter {
 public:
  SectionPrinter(std::ostream& out, const char* section) : m_out(out) { out << "[" << section << "]\n"; }
  template <class Field>
  void operator()(const char* group, const char* key, const Field& field) {
    m_out << (*group != '\0' ? std::string(group) + "/" : std::string()) << key << " = " << ValueText(field)
          << "\n";
  }

 private:
  std::ostream& m_out;
};

#define RVTOOL_PRINT_KEY(group, key, field) print(group, key, record.field);

void PrintMain(const PreferenceRecords& r, std::ostream& out) {
  {
    const auto& record = r.userSetup;
    SectionPrinter print(out, "PlotterUserSetup");
    RV_PREF_USERSETUP_KEYS(RVTOOL_PRINT_KEY)
  }
  {
    const auto& record = r.plotPreview;
    SectionPrinter print(out, "PlotPreview");
    RV_PREF_PLOTPREVIEW_KEYS(RVTOOL_PRINT_KEY)
  }
  {
    const auto& record = r.plot;
    SectionPrinter print(out, "Plot");
    RV_PREF_PLOT_KEYS(RVTOOL_PRINT_KEY)
  }
  {
    const auto& record = r.tomboEnv;
    SectionPrinter print(out, "TomboEnv");
    RV_PREF_TOMBOENV_KEYS(RVTOOL_PRINT_KEY)
  }
  {
    const auto& record = r.function;
    SectionPrinter print(out, "Function");
    RV_PREF_FUNCTION_KEYS(RVTOOL_PRINT_KEY)
  }
  {
    const auto& record = r.cutPreview;
    SectionPrinter print(out, "CutPreview");
    RV_PREF_CUTPREVIEW_KEYS(RVTOOL_PRINT_KEY)
  }
  {
    const auto& record = r.dotbridge;
    SectionPrinter print(out, "Dotbridge");
    RV_PREF_DOTBRIDGE_KEYS(RVTOOL_PRINT_KEY)
  }
}

void PrintOutlineTool(const PreferenceRecords& r, std::ostream& out) {
  const auto& record = r.outline;
  SectionPrinter print(out, "OutlineTool");
  RV_PREF_OUTLINETOOL_KEYS(RVTOOL_PRINT_KEY)
}

#undef RVTOOL_PRINT_KEY

}  // namespace

int RunPrefsShow(const PrefsOptions& options, std::ostream& out) {
  const auto records = LoadAny(options.file);
  out << "file: " << options.file << (records->outlineTool ? " (outline tool)\n" : " (main)\n");
  if (records->outlineTool) {
    PrintOutlineTool(*records, out);
  } else {
    PrintMain(*records, out);
  }
  return 0;
}

int RunPrefsUpgrade(const PrefsOptions& options, std::ostream& out) {
  const auto r = LoadAny(options.file);
  const char* outPath = options.output.c_str();
  if (r->outlineTool) {
    Check(RvSaveOTPreference(outPath, &r->outline), "writing the preferences", options.output);
  } else {
    Check(RvSaveKFPreference(outPath, &r->userSetup, &r->plotPreview, &r->plot, &r->tomboEnv, &r->function,
                             &r->cutPreview, &r->dotbridge),
          "writing the preferences", options.output);
  }
  out << "written: " << options.output << (r->outlineTool ? " (outline tool, version 1.00)\n" : " (main, version 8.00)\n");
  return 0;
}

Subcommand AddPrefsCommand(CLI::App& app) {
  auto options = std::make_shared<PrefsOptions>();
  CLI::App* command = app.add_subcommand("prefs", "Show a preference file or write it at the current version.");
  command->require_subcommand(1);
  command->footer(
      "A file is read as the main preference file, or as the outline tool's when its root says so.\n"
      "Keys that the file lacks show as 0 or empty text; an older main file is brought up to date.");
  CLI::App* show = command->add_subcommand("show", "Print the values of a preference file by section.");
  show->add_option("FILE", options->file, "Preference file to read")->required();
  CLI::App* upgrade = command->add_subcommand(
      "upgrade", "Write a preference file again at the version a save writes (main 8.00, outline tool 1.00).");
  upgrade->add_option("FILE", options->file, "Preference file to read")->required();
  upgrade->add_option("-o,--output", options->output, "Preference file to write")->required();
  return {command, [options, show](std::ostream& out) {
            return show->parsed() ? RunPrefsShow(*options, out) : RunPrefsUpgrade(*options, out);
          }};
}

}  // namespace rvtool
