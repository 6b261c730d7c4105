#include "model/data_access.h"

namespace rv {

CRvDataAccess& CRvDataAccess::Instance() {
  static CRvDataAccess instance;
  return instance;
}

CRvDataAccess::~CRvDataAccess() = default;

}  // namespace rv
