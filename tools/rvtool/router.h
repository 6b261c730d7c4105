// Router jobs of `rvtool plot`: a drawing divided into tiles along y, and the
// offset paths of a milling job.
//
// Tiles are filed in the main table under "Tile1", "Tile2", ... (bottom
// strip first) and in a tile table whose order the library registers; the
// tiled export writes them one after the other. The milling export asks the
// host for each pass's offset path: rvtool makes it itself, from the
// flattened outline, as unlinked arts that live as long as the document.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "filing.h"
#include "rvdataaccess.h"

namespace rvtool {

/// The prefix of the tile keys.
constexpr const char* kTilePrefix = "Tile";

/// Divides the bounds of the filed paths into `count` strips of equal height
/// along y and files each path, by the centre of its bounds, in the main
/// table `map` under the key of its strip; the same keys go into a tile
/// table, whose order is registered. Each tile's first rectangle is its
/// strip. Throws Failure.
std::vector<RVTILE> FileTiles(const std::vector<FiledKey>& groups, int16_t map, int count);

/// The offset maker of the milling export: a closed art's outline moved
/// `offset` millimetres outward (inward for a negative offset), corners
/// mitred (at most twice the offset out), as a new closed path that isn't
/// linked into any layer. Offset 0 gives the art itself. `user` is unused.
/// Returns the code of a failed library call.
uint32_t MakeOffsetArt(void* user, void* art, double offset, void** result);

/// The outline `points` (closed, without the repeated start) moved `offset`
/// outward; the mitre at a sharp corner reaches at most 2 |offset| out.
std::vector<RVPOINT> OffsetOutline(const std::vector<RVPOINT>& points, double offset);

}  // namespace rvtool
