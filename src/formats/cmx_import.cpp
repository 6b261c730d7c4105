#include "formats/cmx_import.h"

#include <algorithm>

#include "formats/cmx_container.h"
#include "frame/error_codes.h"
#include "frame/frame.h"
#include "model/data_access.h"

namespace rv {

namespace {

constexpr int16_t kPositionFirstInLayer = 0;
constexpr int16_t kPositionFirstChild = 4;

// Node types of a poly-curve point: the two high bits say what the node
// does, bit 3 of a move closes its subpath.
constexpr uint8_t kNodeKindMask = 0xC0;
constexpr uint8_t kNodeMove = 0x00;
constexpr uint8_t kNodeLine = 0x40;
constexpr uint8_t kNodeCurve = 0x80;
constexpr uint8_t kNodeClosed = 0x08;
// A node type of 63 or less is a move: it ends the run of the node before.
constexpr uint8_t kFirstDrawingNode = 0x40;

constexpr std::size_t kTagHeadSize = 3;  // tag byte and 16-bit size
constexpr std::size_t kLayerSpecSkip = 12;  // page number, layer number, flags, tally
constexpr uint16_t kIdentityMatrix = 1;
constexpr std::size_t kLensDoubles = 8;
constexpr std::size_t kPointSize = 9;  // two i32 and the node type byte

// Tags of the commands that make arts.
constexpr uint8_t kTagLayerSpec = 1, kTagLayerMatrix = 2, kTagLayerLens = 3;
constexpr uint8_t kTagGroupSpec = 1;
constexpr uint8_t kTagPoints = 2, kTagBounds = 3;
constexpr uint8_t kTagRectangleSpec = 2;

bool IsMove(uint8_t type) { return (type & kNodeKindMask) == kNodeMove; }
bool EndsRun(const std::vector<uint8_t>& types, std::size_t i) {
  return i + 1 == types.size() || types[i + 1] < kFirstDrawingNode;
}

}  // namespace

int CountCmxSubpaths(const std::vector<uint8_t>& types) {
  int count = 0;
  bool counted = false;
  for (uint8_t type : types) {
    if (IsMove(type) && !counted) {
      ++count;
      counted = true;
    } else {
      counted = false;
    }
  }
  return count;
}

void CheckCmxNodes(const std::vector<uint8_t>& types) {
  bool started = false;
  for (std::size_t i = 0; i < types.size(); ++i) {
    const uint8_t kind = types[i] & kNodeKindMask;
    if (kind == kNodeMove && !EndsRun(types, i)) started = true;
    if ((kind == kNodeLine || kind == kNodeCurve) && !started) Raise(kErrCmxNodeBeforeMove);
    if (kind == kNodeCurve && i < 2) Raise(kErrCmxNodeBeforeMove);
  }
}

CRvCMXCommandReader::CRvCMXCommandReader(CRvDataAccess& store, ByteCursor& cursor, const CmxHeader& header)
    : m_store(store),
      m_cursor(cursor),
      m_coordinates{header.bboxLeft, header.bboxBottom, header.factor},
      m_visited(cursor.Size() + 1, false) {}

void CRvCMXCommandReader::ReadLayer(std::size_t offset) {
  m_cursor.Seek(offset);
  ReadCommands(nullptr);
}

// ---------------------------------------------------------------------------
// The command walk
// ---------------------------------------------------------------------------

CmxCommandHead CRvCMXCommandReader::ReadHead() {
  CmxCommandHead head;
  head.start = m_cursor.Tell();
  if (m_visited[head.start]) Raise(kErrCmxLoop);
  m_visited[head.start] = true;
  const int16_t size = m_cursor.ReadI16LE();
  if (size < 0) {
    head.longForm = true;
    const int32_t longSize = m_cursor.ReadI32LE();
    head.next = static_cast<long long>(m_cursor.Tell()) + longSize - 6;
  } else {
    head.next = static_cast<long long>(m_cursor.Tell()) + size - 2;
  }
  head.code = m_cursor.ReadI16LE();
  return head;
}

void CRvCMXCommandReader::SeekTo(long long offset) {
  if (offset < 0) Raise(kErrFileSeek);
  m_cursor.Seek(std::size_t(offset));
}

// A group's walk is one level of `callers`: instead of calling itself for a
// group, the walk keeps the parents of the enclosing walks on a stack, whose
// depth is capped. A walk ends at end layer, end group or a code outside
// 2..111; its caller then goes on right behind that command's code.
void CRvCMXCommandReader::ReadCommands(CRvArt* parent) {
  std::vector<CRvArt*> callers;
  for (;;) {
    const CmxCommandHead head = ReadHead();
    if (head.code < 2 || head.code > kCmxJumpAbsolute || head.code == kCmxEndLayer || head.code == kCmxEndGroup) {
      if (callers.empty()) return;
      parent = callers.back();
      callers.pop_back();
      continue;
    }
    switch (head.code) {
      case kCmxBeginLayer:
        if (CRvArt* layer = ReadBeginLayer()) parent = layer;
        break;
      case kCmxBeginGroup: {
        if (callers.size() >= kCmxMaxGroupDepth) Raise(kErrCmxNesting);
        CRvArt* group = ReadBeginGroup(parent);
        SeekTo(head.next);
        callers.push_back(parent);
        parent = group;
        continue;
      }
      case kCmxPolyCurve:
        ReadPolyCurve(parent, head.longForm);
        break;
      case kCmxRectangle:
        ReadRectangle(parent);
        break;
      case kCmxJumpAbsolute:
        m_cursor.Skip(kTagHeadSize);
        SeekTo(m_cursor.ReadU32LE());
        continue;
      default:
        break;
    }
    SeekTo(head.next);
  }
}

long long CRvCMXCommandReader::ReadTagEnd() {
  const uint16_t tagSize = m_cursor.ReadU16LE();
  return static_cast<long long>(m_cursor.Tell()) + tagSize - static_cast<long long>(kTagHeadSize);
}

// The first tag is read whatever its byte; after it, 255 ends the list. A
// tag whose size can't hold its own head ends the list too.
template <class Handler>
void CRvCMXCommandReader::ReadTags(Handler&& handle) {
  uint8_t tag = m_cursor.ReadU8();
  long long end = ReadTagEnd();
  if (static_cast<long long>(m_cursor.Tell()) > end) return;
  for (;;) {
    handle(tag, end);
    SeekTo(end);
    tag = m_cursor.ReadU8();
    if (tag == kCmxEndTag) return;
    end = ReadTagEnd();
    if (static_cast<long long>(m_cursor.Tell()) > end) return;
  }
}

CRvArt* CRvCMXCommandReader::CreateFirst(int16_t type, CRvArt* parent) {
  if (parent == nullptr) return m_store.CreateArt(type, kPositionFirstInLayer, nullptr);
  return m_store.CreateArt(type, kPositionFirstChild, parent);
}

void CRvCMXCommandReader::ReadBoundingBox(CRvArt* art) {
  const int32_t left = m_cursor.ReadI32LE();
  const int32_t top = m_cursor.ReadI32LE();
  const int32_t right = m_cursor.ReadI32LE();
  const int32_t bottom = m_cursor.ReadI32LE();
  if (art == nullptr) return;
  RVRECT rect{};
  rect.top = m_coordinates.Y(top);
  rect.left = m_coordinates.X(left);
  rect.right = m_coordinates.X(right);
  rect.bottom = m_coordinates.Y(bottom);
  m_store.SetBoundingBox(art, rect);
}

void CRvCMXCommandReader::PassBoundsToChildren(CRvArt* art) {
  CRvArt* child = m_store.GetArtFirstChild(art);
  if (child == nullptr) return;
  const RVRECT bounds = m_store.GetArtBounds(art);
  for (; child != nullptr; child = m_store.GetArtSibling(child)) m_store.SetBoundingBox(child, bounds);
}

// ---------------------------------------------------------------------------
// Layers and groups
// ---------------------------------------------------------------------------

// The document's layers by name are gathered once per import: a layer made
// here has a name that no layer had, so the map stays true.
CRvArt* CRvCMXCommandReader::LayerNamed(const std::string& name) {
  if (!m_layersGathered) {
    for (const auto& layer : m_store.ActiveDocument().Layers()) m_layersByName[layer->GetName()] = layer.get();
    m_layersGathered = true;
  }
  CRvArt*& layer = m_layersByName[name];
  if (layer == nullptr) {
    layer = m_store.CreateLayer(0, nullptr);
    m_store.SetLayerName(layer, name);
  }
  return layer;
}

// The layer of a name is the last of the document's layers with exactly that
// name; a name that no layer has makes a new layer at the front.
CRvArt* CRvCMXCommandReader::ReadBeginLayer() {
  CRvArt* layer = nullptr;
  ReadTags([&](uint8_t tag, long long&) {
    if (tag == kTagLayerSpec) {
      m_cursor.Skip(kLayerSpecSkip);
      const uint16_t length = m_cursor.ReadU16LE();
      if (length > kCmxMaxLayerName) Raise(kErrCmxLayerName);
      const std::string name = m_cursor.ReadText(length);
      layer = LayerNamed(name);
    } else if (tag == kTagLayerMatrix) {
      RVRIFMATRIX m{1.0, 0.0, 0.0, 1.0, 0.0, 0.0};
      if (m_cursor.ReadU16LE() != kIdentityMatrix) {
        m.a = m_cursor.ReadF64LE();
        m.b = m_cursor.ReadF64LE();
        m.c = m_cursor.ReadF64LE();
        m.d = m_cursor.ReadF64LE();
        m.tx = m_cursor.ReadF64LE();
        m.ty = m_cursor.ReadF64LE();
      }
      if (layer != nullptr) m_store.SetArtMatrix(layer, m);
    } else if (tag == kTagLayerLens) {
      // A lens: its values have no effect on the drawing.
      if (m_cursor.ReadU8() != 0) m_cursor.Skip(kLensDoubles * sizeof(double));
    }
  });
  return layer;
}

CRvArt* CRvCMXCommandReader::ReadBeginGroup(CRvArt* parent) {
  CRvArt* group = CreateFirst(kArtGroup, parent);
  ReadTags([&](uint8_t tag, long long&) {
    if (tag != kTagGroupSpec) return;
    ReadBoundingBox(group);
    m_cursor.Skip(2);  // group count
    m_cursor.Skip(4);  // tally
    m_cursor.Skip(4);  // end of group
  });
  return group;
}

// ---------------------------------------------------------------------------
// Poly-curves and rectangles
// ---------------------------------------------------------------------------

void CRvCMXCommandReader::ReadPolyCurve(CRvArt* parent, bool longForm) {
  CRvArt* art = nullptr;
  ReadTags([&](uint8_t tag, long long& end) {
    if (tag == kTagPoints) {
      // A negative count reads as no points.
      const std::size_t count = std::size_t(std::max<int16_t>(m_cursor.ReadI16LE(), 0));
      m_cursor.NeedItems(count, kPointSize);
      std::vector<RVPOINT> points(count);
      for (RVPOINT& p : points) {
        const int32_t x = m_cursor.ReadI32LE();
        p = m_coordinates.Point(x, m_cursor.ReadI32LE());
      }
      std::vector<uint8_t> types(count);
      m_cursor.ReadBytes(types.data(), count);
      // A long poly-curve outgrows the 16-bit tag size: its data ends here.
      if (longForm) end = static_cast<long long>(m_cursor.Tell());
      art = BuildPolyCurve(parent, points, types);
    } else if (tag == kTagBounds) {
      ReadBoundingBox(art);
      if (art != nullptr) PassBoundsToChildren(art);
    }
  });
}

// Each path holds one Bezier component. A line or curve node first appends
// the pending point (its out handle now known), then becomes the pending
// point; the last node of a run appends itself with its out handle on the
// anchor.
CRvArt* CRvCMXCommandReader::BuildPolyCurve(CRvArt* parent, const std::vector<RVPOINT>& points,
                                             const std::vector<uint8_t>& types) {
  CheckCmxNodes(types);
  CRvArt* art = nullptr;
  CRvArt* container = parent;
  const bool compound = CountCmxSubpaths(types) > 1;
  if (compound) {
    art = CreateFirst(kArtCompound, parent);
    container = art;
  }
  CRvArt* bezier = nullptr;
  RVBEZIERPOINT b{};
  auto finishRun = [&](std::size_t i) {
    if (!EndsRun(types, i)) return;
    b.out = b.anchor;
    m_store.AddBezierPoint(bezier, b);
  };
  for (std::size_t i = 0; i < types.size(); ++i) {
    const uint8_t kind = types[i] & kNodeKindMask;
    if (kind == kNodeLine) {
      b.out = b.anchor;
      m_store.AddBezierPoint(bezier, b);
      b.anchor = b.in = points[i];
      finishRun(i);
    } else if (kind == kNodeCurve) {
      b.out = points[i - 2];
      m_store.AddBezierPoint(bezier, b);
      b.in = points[i - 1];
      b.anchor = points[i];
      finishRun(i);
    } else if (kind == kNodeMove && !EndsRun(types, i)) {
      CRvArt* path = CreateFirst(kArtPath, container);
      if (!compound && art == nullptr) art = path;
      bezier = m_store.CreateArt(kArtBezier, kPositionFirstChild, path);
      m_store.SetPathClosed(path, (types[i] & kNodeClosed) != 0 ? 1 : 0);
      b = RVBEZIERPOINT{};
      b.anchor = b.in = points[i];
    }
  }
  return art;
}

void CRvCMXCommandReader::ReadRectangle(CRvArt* parent) {
  CRvArt* path = CreateFirst(kArtPath, parent);
  CRvArt* bezier = m_store.CreateArt(kArtBezier, kPositionFirstChild, path);
  ReadTags([&](uint8_t tag, long long&) {
    if (tag != kTagRectangleSpec) return;
    const int64_t cx = int64_t(m_cursor.ReadI32LE()) - m_coordinates.left;
    const int64_t cy = int64_t(m_cursor.ReadI32LE()) - m_coordinates.bottom;
    const int32_t w = m_cursor.ReadI32LE() / 2;  // halves truncated towards zero
    const int32_t h = m_cursor.ReadI32LE() / 2;
    const double f = m_coordinates.factor;
    const int64_t corners[4][2] = {{cx - w, cy + h}, {cx + w, cy + h}, {cx + w, cy - h}, {cx - w, cy - h}};
    for (const auto& corner : corners) {
      RVBEZIERPOINT p{};
      p.anchor = p.in = p.out = RVPOINT{double(corner[0]) * f, double(corner[1]) * f};
      m_store.AddBezierPoint(bezier, p);
    }
    m_store.SetPathClosed(path, 1);
    m_cursor.Skip(8);  // corner radius and angle: a rectangle comes in upright and sharp
    ReadBoundingBox(path);
    m_store.SetBoundingBox(bezier, m_store.GetArtBounds(path));
  });
}

}  // namespace rv
