// Reading back a milling job: the cuts of a router job written in the HP-GL
// dialects, each marked with the depth it runs at, so that a picture tells
// the passes apart (and shows where the tool rises over a micro joint).
#pragma once

#include <string>

#include "geometry.h"

namespace rvtool {

/// Whether the job holds depth words ("JZ"): a milling job.
bool IsMillingJob(const std::string& job);

/// The cuts of a milling job in the order of the job: "PU x,y" moves, "PD x,y"
/// cuts, "PU" lifts, and each "JZ" depth word ends the cut at work; the cut
/// goes on at the new depth. A stroke's shade is the number of its depth in
/// the order in which the job first names it. Values are multiplied by
/// `unit` (millimetres per device unit); other words are passed over.
/// `depths` gets the number of different depths.
Scene SceneOfMillingJob(const std::string& job, double unit, int& depths);

}  // namespace rvtool
