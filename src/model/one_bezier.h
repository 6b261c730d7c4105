// One Bezier per path: the copy of a path whose components are joined into a
// single Bezier component, arcs turned into Bezier points on the way.
//
// The CL import, the CL router's work layer and the cut preview all want a
// path whose only child is one Bezier, so that the judgments, offsets and
// flat point lists that follow read a single array of points. This file
// makes that copy through the store's commands; it reads no layer by name
// and never changes the source path.
#pragma once

#include <cstdint>

#include "model/art.h"

namespace rv {

class CRvDataAccess;

/// Joins the components of `source` (a path) into one Bezier under `copy`
/// (a path without children), in list order: the first Bezier component is
/// copied as it stands, later ones add their points behind the output's last
/// point; each arc point adds the Bezier points of its arc (pieces of at most
/// 60 degrees), making the output first if there is none. Splines and other
/// children are left out. Where a Bezier and an arc meet, their shared point
/// stands twice. Returns the output Bezier, or null when no component gave
/// one. Raises the codes of the store and of the arc conversion.
CRvArt* JoinComponentsIntoBezier(CRvDataAccess& store, CRvArt* copy, const CRvArt* source);

/// The plain copy of a path that the one-Bezier walks make: `RvGiCopyArt`
/// (no children, no attribute record) as last child of `parent`, with the
/// source's closed flag and its attribute flags added as properties.
CRvArt* CopyPathShell(CRvDataAccess& store, CRvArt* parent, const CRvArt* source);

}  // namespace rv
