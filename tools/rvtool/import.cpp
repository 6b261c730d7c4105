// The importers of the library that the tool reads drawings with, chosen by
// the first bytes of the file.
#include <cstdio>
#include <filesystem>
#include <fstream>

#include "drawing.h"
#include "failure.h"
#include "progress.h"
#include "rvdataaccess.h"

namespace rvtool {
namespace {

/// The result of an ITW import when a character was missing from its font.
constexpr uint32_t kItwMissingCharacter = 32;

std::string FirstBytes(const std::string& path, std::size_t count) {
  std::ifstream in(path, std::ios::binary);
  std::string head(count, '\0');
  in.read(head.data(), std::streamsize(count));
  head.resize(std::size_t(in.gcount()));
  return head;
}

// Plot command files (HP-GL and the single-letter dialect, written jobs
// included) whatever their extension.
uint32_t ImportPlot(const std::string& path, double unitScale, int16_t* index) {
  return RvImPLTToRIF(path.c_str(), 0, index, &unitScale);
}

// ITW layouts, with their font files in the layout's own folder.
uint32_t ImportItw(const std::string& path, double, int16_t* index) {
  std::string folder = std::filesystem::path(path).parent_path().string();
  folder += folder.empty() ? "./" : "/";
  int16_t fileByte = 0;
  const uint32_t code = RvImItwToRIF(path.c_str(), folder.c_str(), folder.c_str(), 0, index, &fileByte);
  if (code != kItwMissingCharacter) return code;
  std::fprintf(stderr, "rvtool: '%s': characters missing from their fonts are drawn as crosses\n", path.c_str());
  return 0;
}

/// One row per kind of file: the bytes it begins with (empty: any file) and
/// its import.
struct Importer {
  const char* head;
  uint32_t (*import)(const std::string& path, double unitScale, int16_t* index);
};

constexpr Importer kImporters[] = {
    {"IW", ImportItw},
    {"", ImportPlot},
};

Document ImportDrawing(const std::string& path, double unitScale) {
  const std::string head = FirstBytes(path, 16);
  const Importer* importer = &kImporters[0];
  while (head.compare(0, std::char_traits<char>::length(importer->head), importer->head) != 0) ++importer;
  int16_t index = -1;
  const uint32_t code = importer->import(path, unitScale, &index);
  // A failed import may leave its new document behind: it goes with `document`.
  Document document(index);
  Check(code, "import", path);
  return document;
}

}  // namespace

Document ImportAndActivate(const std::string& command, const std::string& path, double unitScale) {
  Document document = [&] {
    ProgressBar progress(IsTerminal());
    progress.Stage("import", path);
    return ImportDrawing(path, unitScale);
  }();
  if (Interrupted()) throw ToolFailure(command, path, "interrupted", kInterruptedStatus);
  document.Activate();
  return document;
}

}  // namespace rvtool
