// The importers of the library that the tool reads drawings with.
#include <cstring>
#include <fstream>

#include "drawing.h"
#include "failure.h"
#include "progress.h"
#include "rvdataaccess.h"

namespace rvtool {
namespace {

// The first bytes of a file, as many as the longest file mark needs.
constexpr std::size_t kHeadSize = 12;

std::string FileHead(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  std::string head(kHeadSize, '\0');
  in.read(head.data(), std::streamsize(head.size()));
  head.resize(std::size_t(in.gcount()));
  return head;
}

// CMX drawings: a RIFF file of the form "CMX1".
bool IsCmx(const std::string& head) {
  return head.size() >= 12 && head.compare(0, 4, "RIFF") == 0 && head.compare(8, 4, "CMX1") == 0;
}
bool AnyFile(const std::string&) { return true; }

uint32_t ImportCmx(const std::string& path, double, int16_t* index) {
  return RvImCMXToRIF(path.c_str(), 0, index, nullptr);
}
// Plot command files (HP-GL and the single-letter dialect, written jobs
// included) whatever their extension.
uint32_t ImportPlot(const std::string& path, double unitScale, int16_t* index) {
  return RvImPLTToRIF(path.c_str(), 0, index, &unitScale);
}

// One row per kind of file, chosen by the file's first bytes, not its name:
// the first row whose mark matches imports the file; the last takes any.
struct Importer {
  bool (*matches)(const std::string& head);
  uint32_t (*import)(const std::string& path, double unitScale, int16_t* index);
};
constexpr Importer kImporters[] = {
    {IsCmx, ImportCmx},
    {AnyFile, ImportPlot},
};

Document ImportDrawing(const std::string& path, double unitScale) {
  const std::string head = FileHead(path);
  int16_t index = -1;
  uint32_t code = 0;
  for (const Importer& importer : kImporters) {
    if (!importer.matches(head)) continue;
    code = importer.import(path, unitScale, &index);
    break;
  }
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
