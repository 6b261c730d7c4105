#include "drawing.h"
#include "failure.h"

namespace rvtool {

Document ImportDrawing(const std::string& path, double) {
  // Interim: the library has no importer yet.
  throw ToolFailure("import", path, "this build has no plot import", 70);
}

}  // namespace rvtool
