// The milling export of CL jobs: CRvCLFormat's export operation.
#include "formats/cl_import.h"
#include "frame/error_codes.h"

namespace rv {

uint32_t CRvCLFormat::ExportFromRIF(void* /*context*/) { return kErrNoDirection; }

}  // namespace rv
