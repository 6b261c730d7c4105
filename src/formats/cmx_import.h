// CMX import, the drawing: the walk over the command stream of a layer and
// the tag readers that turn its commands into arts.
//
// A stream is a chain of small tagged commands. Five make something: begin
// layer, begin group, poly-curve, rectangle and the absolute jump; every
// other command is passed over by its length. Only geometry is taken: fills,
// outlines and colours stay behind, so every art has the colours that its
// creation gives it. New arts become the first child of their parent, so that
// inside each parent the arts stand in the reverse of the file's order.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "formats/byte_cursor.h"
#include "rvdataaccess.h"

namespace rv {

class CRvArt;
class CRvDataAccess;
struct CmxHeader;

/// Command codes of the stream.
enum CmxCommandCode : int16_t {
  kCmxBeginLayer = 11,
  kCmxEndLayer = 12,
  kCmxBeginGroup = 13,
  kCmxEndGroup = 14,
  kCmxPolyCurve = 67,
  kCmxRectangle = 68,
  kCmxJumpAbsolute = 111,
};

/// The tag byte that ends a tag list.
inline constexpr uint8_t kCmxEndTag = 255;
/// Room for a layer name; a longer one is refused (kErrCmxLayerName).
inline constexpr std::size_t kCmxMaxLayerName = 112;
/// Deepest nesting of groups; a deeper one is refused (kErrCmxNesting).
inline constexpr std::size_t kCmxMaxGroupDepth = 256;

/// File coordinates to document millimetres: relative to the lower left
/// corner of the file's bounding box, times the factor.
struct CmxCoordinates {
  int32_t left = 0;
  int32_t bottom = 0;
  double factor = 0.0;

  double X(int64_t x) const { return double(x - left) * factor; }
  double Y(int64_t y) const { return double(y - bottom) * factor; }
  RVPOINT Point(int32_t x, int32_t y) const { return RVPOINT{X(x), Y(y)}; }
};

/// The head of one command.
struct CmxCommandHead {
  std::size_t start = 0;  ///< offset of the size field
  long long next = 0;     ///< offset of the next command (may lie outside the file)
  bool longForm = false;  ///< the size came in 4 bytes behind a negative 2-byte size
  int16_t code = 0;
};

/// Reads the command streams of one file. It remembers every command offset
/// it has read, over all layers of the import, so that a jump or a length
/// that leads back ends the walk (kErrCmxLoop) instead of running forever.
class CRvCMXCommandReader {
 public:
  /// Makes its arts in `store`, the store of the active document.
  CRvCMXCommandReader(CRvDataAccess& store, ByteCursor& cursor, const CmxHeader& header);

  /// Walks the commands from `offset` on with no parent: arts go first into
  /// the current layer until a begin-layer command names a layer.
  void ReadLayer(std::size_t offset);

 private:
  void ReadCommands(CRvArt* parent);
  CmxCommandHead ReadHead();
  void SeekTo(long long offset);
  /// Runs `handle(tag, end)` for each tag of the command at the cursor; the
  /// handler may move `end`, where the next tag begins.
  template <class Handler>
  void ReadTags(Handler&& handle);
  long long ReadTagEnd();

  CRvArt* ReadBeginLayer();
  /// The last layer of the document with exactly `name`, or a new one at the
  /// front.
  CRvArt* LayerNamed(const std::string& name);
  CRvArt* ReadBeginGroup(CRvArt* parent);
  void ReadPolyCurve(CRvArt* parent, bool longForm);
  void ReadRectangle(CRvArt* parent);

  /// The art of one poly-curve: a path, or a compound of several.
  CRvArt* BuildPolyCurve(CRvArt* parent, const std::vector<RVPOINT>& points, const std::vector<uint8_t>& types);
  /// Reads left, top, right, bottom and gives them to `art` as its bounds
  /// (only read when there is no art).
  void ReadBoundingBox(CRvArt* art);
  /// Gives the bounds of `art` to each of its children.
  void PassBoundsToChildren(CRvArt* art);
  /// A new art of `type` as first child of `parent` (first in the current
  /// layer with no parent).
  CRvArt* CreateFirst(int16_t type, CRvArt* parent);

  CRvDataAccess& m_store;
  ByteCursor& m_cursor;
  CmxCoordinates m_coordinates;
  std::vector<bool> m_visited;  ///< one mark per file offset where a command began
  std::map<std::string, CRvArt*> m_layersByName;  ///< the last layer of each name
  bool m_layersGathered = false;
};

/// Counts the subpaths of a poly-curve: a move counts unless the node before
/// it was a counted move.
int CountCmxSubpaths(const std::vector<uint8_t>& types);

/// Refuses (kErrCmxNodeBeforeMove) a node list with a line or curve node
/// before the first move that starts a subpath, or a curve node without two
/// points before it, before any art of it is made.
void CheckCmxNodes(const std::vector<uint8_t>& types);

}  // namespace rv
