// Fuzz target: arbitrary bytes as a plot file, imported from memory the way
// RvImPLTToRIF imports a file. The content of a file never fails the import
// (the result is 0, or 1 when nothing is drawn), and nothing may crash, hang
// or leak.
#include <cstddef>
#include <cstdint>
#include <cstdlib>

#include "formats/plt_import.h"
#include "frame/frame.h"
#include "model/data_access.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const uint32_t code = rv::Guard([&] {
    rv::CRvDataAccess::Instance().CreateDocument(0);
    rv::ImportPlotBytes(data, size, nullptr);
  });
  if (code != 0 && code != 1) std::abort();
  // Document indexes are never reused until the store is emptied; empty it so
  // that a long run doesn't reach the limit of 32767 documents.
  if (RvGiDeleteAllDocuments() != 0) std::abort();
  return 0;
}
