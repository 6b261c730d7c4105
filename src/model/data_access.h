// CRvDataAccess: the one door through which the exports reach the drawing.
#pragma once

#include <cstdint>

#include "frame/progress.h"

namespace rv {

class CRvDataAccess {
 public:
  /// The process-wide store, made at first use, destroyed at exit.
  static CRvDataAccess& Instance();
  virtual ~CRvDataAccess();

  ProgressCallbacks m_progress;
  uint16_t m_useMajor = 1;  // version pair the host asked for (only stored)
  uint16_t m_useMinor = 3;

  /// The stored pair as one 32-bit value, low half first.
  uint32_t UseVersion() const { return uint32_t(m_useMajor) | (uint32_t(m_useMinor) << 16); }

 private:
  CRvDataAccess() = default;
};

}  // namespace rv
