// Regions, mesh and the order of hatch lines.
//
// The hatching run (hatching.cpp) calls CollectRegions, MergeRegions and
// FindMeshLines once the box of the offset shapes is known and before the
// line stack is made, and OrderLines once the lines are clipped. All of it
// works on the run's HatchWork in the turned space; CollectRegions and
// FindMeshLines read the offset layer of the active document.
#pragma once

#include "generate/hatch_work.h"

namespace rv {

/// Fills work.regionBoxes with the boxes of the offset shapes.
void CollectRegions(HatchWork& work);
/// Merges region boxes that lie within the box margins of each other.
void MergeRegions(HatchWork& work);
/// Fills work.meshLines from the outlines of the offset shapes.
void FindMeshLines(HatchWork& work);
/// Puts work.lines in the order of the cheapest order rule and writes the
/// order log; empties the rule costs, regions and mesh lines afterwards.
void OrderLines(HatchWork& work);

}  // namespace rv
