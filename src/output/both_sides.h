// Both-sides cut: sharp corners of closed shapes that the blade approaches
// from both sides. The pass marks corners and inserts joint points; the split
// turns such a path into open pieces in cutting order.
#pragma once

#include <cstdint>
#include <vector>

#include "model/art.h"

namespace rv {

class CRvRVLFormat;

/// Bits of RVBEZIERPOINT::flags that the pass sets and the split reads.
constexpr uint8_t kFlagCorner = 32;           // direction changes by more than 1 degree
constexpr uint8_t kFlagBothSidesCorner = 64;  // approached from both sides
constexpr uint8_t kFlagJoint = 128;           // joint point inserted by the pass

/// The both-sides pass over one art (a RefMap trace callback: `format` is
/// the running CRvRVLFormat). Marks corners by the placement of the export
/// and inserts joint points where the condition's DivideCut asks for them;
/// tags the art. Shows "EntryBothSidesCutInfo:Error" on a failure and
/// returns its code.
uint32_t EntryBothSidesCutInfo(void* format, void* art);

/// Splits an art marked by the pass into open paths beside it, in cutting
/// order, appended to (or, for an in-to-out art, put in front of) `pieces`.
/// Shows the same message on a failure; the pieces made so far stay listed.
uint32_t SplitBothSidesCut(CRvRVLFormat& format, CRvArt* art, std::vector<CRvArt*>& pieces);

}  // namespace rv
