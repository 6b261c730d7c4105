// Getting a drawing ready for the cutter.
//
// The job writer draws the Bezier components of a path and passes over arcs
// and splines, and the path judgments (inside tests, start points) read a
// path's first component as a Bezier. A plot import, though, gives a path a
// component per run of lines or arcs. So before a job each path becomes one
// Bezier component, as a host of the library does: arcs turn into Bezier
// pieces (RvMiArcToCurves), splines into straight Bezier points.
#pragma once

namespace rvtool {

/// Replaces the components of `path` by one Bezier component that runs
/// through all of them in order; where two components meet, their shared
/// point (within 0.001 mm) is kept once, with the handle that arrives and the
/// handle that leaves. A path that already is one Bezier, or that has no
/// points, keeps its components. Returns whether the components changed.
/// Throws Failure.
bool PrepareForCutting(void* path);

/// PrepareForCutting for every path of the active document; returns the
/// number of paths whose components changed.
long PrepareAllForCutting();

}  // namespace rvtool
