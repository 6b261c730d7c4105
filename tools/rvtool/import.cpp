// The importers of the library that the tool reads drawings with.
#include "drawing.h"
#include "failure.h"
#include "progress.h"
#include "rvdataaccess.h"

namespace rvtool {
namespace {

// Plot command files (HP-GL and the single-letter dialect, written jobs
// included) whatever their extension.
Document ImportDrawing(const std::string& path, double unitScale) {
  int16_t index = -1;
  const uint32_t code = RvImPLTToRIF(path.c_str(), 0, &index, &unitScale);
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
