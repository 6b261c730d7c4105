// CRvPointSort: register marks set freely by the user, put into the order in
// which they lie round their common centre.
//
// The host calls it through RvFreeTomboSort; nothing inside the library
// uses it. It sees only the points of the record, never a drawing.
#pragma once

#include <vector>

#include "rvdataaccess.h"

namespace rv {

class CRvPointSort {
 public:
  /// The process-wide object; it holds nothing between calls.
  static CRvPointSort& Instance();
  virtual ~CRvPointSort() = default;

  /// Orders `points` round their centre, beginning with the first of them
  /// as given. Points of equal angle keep whatever order the exchange sort
  /// leaves them in.
  void SortRound(std::vector<RVPOINT>& points) const;

  /// The export's work: sorts the first `input.count` points into
  /// `output.points`; `output.count` isn't written. The records may be one.
  void FreeTomboSort(const RVTOMBOPOINTS& input, RVTOMBOPOINTS& output) const;

 private:
  CRvPointSort() = default;
};

}  // namespace rv
