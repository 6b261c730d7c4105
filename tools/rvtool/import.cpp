// The importers of the library that the tool reads drawings with.
//
// The format of a file is chosen by its first bytes, not by its name: each
// row of kImporters says which heads it takes, the first row that takes a
// head imports the file, and the plot import takes everything else.
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <string>

#include "drawing.h"
#include "frame/error_codes.h"
#include "failure.h"
#include "progress.h"
#include "rvdataaccess.h"

namespace rvtool {
namespace {

/// The first bytes of a file, as many as it has up to kHeadSize.
struct FileHead {
  static constexpr std::size_t kHeadSize = 64;
  unsigned char bytes[kHeadSize] = {};
  std::size_t size = 0;
};

FileHead ReadHead(const std::string& path) {
  FileHead head;
  if (std::FILE* file = std::fopen(path.c_str(), "rb")) {
    head.size = std::fread(head.bytes, 1, FileHead::kHeadSize, file);
    std::fclose(file);
  }
  return head;
}

/// One format that the tool can read: whether a head is of this format, and
/// the library's import of it into a new document (its index to `*index`).
struct Importer {
  const char* format;
  bool (*takes)(const FileHead& head);
  uint32_t (*import)(const std::string& path, double unitScale, int16_t* index);
};

bool AnyHead(const FileHead&) { return true; }

// CMX drawings: a RIFF file of the form "CMX1".
bool CmxHead(const FileHead& head) {
  return head.size >= 12 && std::memcmp(head.bytes, "RIFF", 4) == 0 && std::memcmp(head.bytes + 8, "CMX1", 4) == 0;
}
uint32_t ImportCmx(const std::string& path, double, int16_t* index) {
  return RvImCMXToRIF(path.c_str(), 0, index, nullptr);
}

// Plot command files (HP-GL and the single-letter dialect, written jobs
// included).
uint32_t ImportPlot(const std::string& path, double unitScale, int16_t* index) {
  return RvImPLTToRIF(path.c_str(), 0, index, &unitScale);
}

// ITW layouts begin with "IW"; their font files lie in the layout's own
// folder. A character missing from its font is drawn as a cross, and the
// import counts as done.
bool ItwHead(const FileHead& head) { return head.size >= 2 && head.bytes[0] == 'I' && head.bytes[1] == 'W'; }

uint32_t ImportItw(const std::string& path, double, int16_t* index) {
  constexpr uint32_t kMissingCharacter = 32;
  std::string folder = std::filesystem::path(path).parent_path().string();
  folder += folder.empty() ? "./" : "/";
  int16_t fileByte = 0;
  const uint32_t code = RvImItwToRIF(path.c_str(), folder.c_str(), folder.c_str(), 0, index, &fileByte);
  if (code != kMissingCharacter) return code;
  std::fprintf(stderr, "rvtool: '%s': characters missing from their fonts are drawn as crosses\n", path.c_str());
  return 0;
}

constexpr Importer kImporters[] = {
    {"ITW layout", ItwHead, ImportItw},
    {"CMX drawing", CmxHead, ImportCmx},
    {"plot file", AnyHead, ImportPlot},
};

// What the tool can tell about a file before the library reads it: a folder,
// a file that can't be read and an empty file each get their own line (the
// library would only say that the file can't be opened or draws nothing).
void CheckInputFile(const std::string& path) {
  std::error_code error;
  const std::filesystem::file_status status = std::filesystem::status(path, error);
  if (!std::filesystem::exists(status)) return;  // the library's "can't be opened" says it
  if (std::filesystem::is_directory(status))
    throw ToolFailure("import", path, "it is a folder, not a file", kFileStatus);
  if (::access(path.c_str(), R_OK) != 0)
    throw ToolFailure("import", path, std::string("the file can't be read: ") + std::strerror(errno), kFileStatus);
  if (std::filesystem::is_regular_file(status) && std::filesystem::file_size(path, error) == 0 && !error)
    throw ToolFailure("import", path, "the file is empty", kNoDrawingStatus);
}

Document ImportDrawing(const std::string& path, double unitScale) {
  CheckInputFile(path);
  const FileHead head = ReadHead(path);
  for (const Importer& importer : kImporters) {
    if (!importer.takes(head)) continue;
    int16_t index = -1;
    const uint32_t code = importer.import(path, unitScale, &index);
    // A failed import may leave its new document behind: it goes with `document`.
    Document document(index);
    if (code == rv::kNothingMade)
      throw ToolFailure("import", path, "the file draws nothing (code 1)", kNoDrawingStatus);
    Check(code, "import", path);
    return document;
  }
  return Document(-1);
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
