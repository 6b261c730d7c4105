// Fuzz target: arbitrary bytes as a CMX file through the import. Every
// failure must be one of the import's documented codes, and nothing may
// crash, hang, leak or allocate beyond what the bytes can hold.
#include <cstddef>
#include <cstdint>
#include <cstdlib>

#include "formats/cmx_container.h"
#include "frame/error_codes.h"
#include "model/data_access.h"

namespace {

bool Documented(uint32_t code) {
  switch (code) {
    case 0:
    case rv::kErrFileShort:
    case rv::kErrFileSeek:
    case rv::kErrNoLayer:
    case rv::kErrCmxNotCmx:
    case rv::kErrCmxIndexMismatch:
    case rv::kErrCmxMissing:
    case rv::kErrCmxLayerName:
    case rv::kErrCmxNodeBeforeMove:
    case rv::kErrCmxLoop:
    case rv::kErrCmxNesting:
      return true;
    default:
      return false;
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  rv::CRvDataAccess& store = rv::CRvDataAccess::Instance();
  if (rv::Guard([&] { store.CreateDocument(0); }) != 0) std::abort();
  if (!Documented(rv::ImportCmxBytes(data, size, nullptr))) std::abort();
  // Document indexes are never reused until the store is emptied; empty it so
  // that a long run doesn't reach the limit of 32767 documents.
  if (RvGiDeleteActiveDocument() != 0) std::abort();
  if (RvGiDeleteAllDocuments() != 0) std::abort();
  return 0;
}
