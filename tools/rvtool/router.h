// Router jobs of `rvtool plot`: a drawing divided into tiles along y, and the
// offset paths of a milling job.
//
// Tiles are filed in the main table under "Tile1", "Tile2", ... (bottom
// strip first) and in a tile table whose order the library registers; the
// tiled export writes them one after the other. The milling export asks the
// host for each pass's offset path: rvtool has the library make it, through
// the frame step of the hatching generator.
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

/// The offset maker of the milling export. The library offsets the outline:
/// the art is copied into the work layer "Rivlen_HatchingWorkLayer" and the
/// hatching generator's frame step (generate 2) offsets it by `offset`
/// millimetres through the library's clipper (square corners), outward for a
/// positive offset; the result is the first child of
/// "Rivlen_HatchingFrameLayer" and stays in the document. Both layers are
/// made at the end of the document when the maker is built; the frames are
/// filed in a table of the maker's own. Offset 0 gives the art itself.
class OffsetMaker {
 public:
  /// Makes the two layers and the table in the active document `document`.
  /// Throws Failure.
  explicit OffsetMaker(int16_t document);
  /// The makeOffsetArt callback; `user` is the OffsetMaker. Returns the code
  /// of a failed library call, 1 when the offset leaves nothing.
  static uint32_t Make(void* user, void* art, double offset, void** result);

 private:
  int16_t m_document;
  int16_t m_table = -1;
};

}  // namespace rvtool
