// Fuzz target: arbitrary bytes as a plot file through RvImPLTToRIF. The
// content of a file never fails the import (the result is 0, or 1 when
// nothing is drawn), and nothing may crash, hang or leak.
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "rvdataaccess.h"

namespace {

const std::string& InputPath() {
  static const std::string path = [] {
    char name[] = "/tmp/fuzz_plt_import_XXXXXX";
    const int fd = mkstemp(name);
    if (fd < 0) std::abort();
    close(fd);
    return std::string(name);
  }();
  return path;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string& path = InputPath();
  std::FILE* f = std::fopen(path.c_str(), "wb");
  if (f == nullptr) std::abort();
  if (size != 0 && std::fwrite(data, 1, size, f) != size) std::abort();
  std::fclose(f);

  int16_t index = -1;
  const double scale = 0.0;
  const uint32_t code = RvImPLTToRIF(path.c_str(), 0, &index, &scale);
  if (code != 0 && code != 1) std::abort();
  if (RvGiDeleteActiveDocument() != 0) std::abort();
  // Document indexes are never reused until the store is emptied; empty it so
  // that a long run doesn't reach the limit of 32767 documents.
  if (RvGiDeleteAllDocuments() != 0) std::abort();
  return 0;
}
