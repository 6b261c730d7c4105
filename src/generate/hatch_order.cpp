#include "generate/hatch_order.h"

namespace rv {

// Until the order rules are in, the lines keep the clipper's order.

void CollectRegions(HatchWork& work) { work.regionBoxes.clear(); }

void MergeRegions(HatchWork&) {}

void FindMeshLines(HatchWork& work) { work.meshLines.clear(); }

void OrderLines(HatchWork& work) {
  work.sortDataSet.clear();
  work.regionBoxes.clear();
  work.meshLines.clear();
}

}  // namespace rv
