#include "generate/clipper.h"

#include <polyclipping/clipper.hpp>

#include <cmath>

#include "frame/error_codes.h"
#include "frame/frame.h"
#include "geometry/affine.h"
#include "model/data_access.h"
#include "model/refmap.h"

namespace rv {

namespace {

namespace CL = ClipperLib;

constexpr int16_t kLayerAtFront = 0;          // where a new result layer goes
constexpr uint8_t kResultFlags = 7;           // attribute flags and RefMap info of every new art
constexpr uint16_t kUnsetMark = 65535;        // a line mark that nothing has set
constexpr std::size_t kLinePointCount = 2;    // a clipped hatch line has two points

// Runs `body`, turning a failure of ClipperLib into the library's code.
template <class Body>
auto Guarded(Body&& body) {
  try {
    return body();
  } catch (const CL::clipperException&) {
    Raise(kErrClipFailed);
  }
}

CL::Path ToPath(const RVCURVEPOINT* points, int32_t count) {
  CL::Path path;
  if (points == nullptr || count <= 0) return path;
  path.reserve(std::size_t(count));
  for (int32_t i = 0; i < count; ++i) {
    path.emplace_back(CRvClipper::ToGrid(points[i].point.x), CRvClipper::ToGrid(points[i].point.y));
  }
  return path;
}

RVPOINT ToPoint(const CL::IntPoint& p, const RVRIFMATRIX& matrix) {
  return Apply(matrix, RVPOINT{CRvClipper::FromGrid(p.X), CRvClipper::FromGrid(p.Y)});
}

// Makes the arts of one PolyTree in a layer (see CRvClipper::ExecuteToArts).
class TreeToArts {
 public:
  TreeToArts(const std::string& layerName, const ClipArtParams& params)
      : m_store(CRvDataAccess::Instance()), m_layerName(layerName), m_params(params) {}

  void Run(const CL::PolyTree& tree) {
    CRvArt* layer = FindOrCreateLayer();
    for (CL::PolyNode* node = tree.GetFirst(); node != nullptr; node = node->GetNext()) {
      // Holes are made only with their outline; islands inside them are
      // reached by the walk afterwards and stand on their own.
      if (node->IsHole()) continue;
      if (node->ChildCount() == 0) {
        CRvArt* path = MakePath(layer, *node);
        File(path);
        continue;
      }
      MakeCompound(layer, *node);
    }
  }

 private:
  CRvArt* FindOrCreateLayer() {
    CRvArt* layer = m_store.GetLayerFromName(m_layerName);
    if (layer != nullptr) return layer;
    CRvLayer* made = m_store.CreateLayer(kLayerAtFront, nullptr);
    m_store.SetLayerName(made, m_layerName);
    return made;
  }

  // The outline first and then its holes, each as the first child of the
  // compound, so that the outline ends up last.
  void MakeCompound(CRvArt* layer, const CL::PolyNode& outline) {
    CRvArt* compound = m_store.CreateArt(kArtCompound, kFirstChild, layer);
    MakePath(compound, outline);
    m_store.SetBoundingBox(compound, m_box);
    for (const CL::PolyNode* hole : outline.Childs) MakePath(compound, *hole);
    m_store.SetPathAttrFlag(compound, kResultFlags);
    File(compound);
  }

  CRvArt* MakePath(CRvArt* parent, const CL::PolyNode& node) {
    CRvArt* path = m_store.CreateArt(kArtPath, kFirstChild, parent);
    CRvArt* bezier = m_store.CreateArt(kArtBezier, kFirstChild, path);
    bool first = true;
    RVBEZIERPOINT start{};
    for (const CL::IntPoint& p : node.Contour) {
      RVBEZIERPOINT b{};
      b.anchor = b.in = b.out = ToPoint(p, m_params.matrix);
      Widen(b.anchor, first);
      if (first) start = b;
      first = false;
      m_store.AddBezierPoint(bezier, b);
    }
    m_store.SetPathAttrFlag(path, kResultFlags);
    const bool closed = !node.IsOpen();
    m_store.SetPathClosed(path, closed ? 1 : 0);
    if (closed && !node.Contour.empty()) m_store.AddBezierPoint(bezier, start);  // a closed path stores its start twice
    m_store.SetBoundingBox(path, m_box);
    m_store.SetPathPlotInfo(path, m_params.plotInfoNumber, m_params.plotInfoText);
    return path;
  }

  void Widen(const RVPOINT& p, bool first) {
    if (first) {
      m_box = RVRECT{p.y, p.x, p.x, p.y};
      return;
    }
    if (p.y > m_box.top) m_box.top = p.y;
    if (p.x < m_box.left) m_box.left = p.x;
    if (p.x > m_box.right) m_box.right = p.x;
    if (p.y < m_box.bottom) m_box.bottom = p.y;
  }

  void File(CRvArt* art) {
    RefMapStore::Instance().Table(m_params.refMapIndex).Add(m_params.refMapKey, kResultFlags, art);
  }

  CRvDataAccess& m_store;
  const std::string& m_layerName;
  const ClipArtParams& m_params;
  RVRECT m_box{};
};

}  // namespace

struct CRvClipper::Engine {
  CL::Clipper clipper{0};
  CL::ClipperOffset offset{kMiterLimit, kArcTolerance};
};

CRvClipper& CRvClipper::Instance() {
  static CRvClipper instance;
  return instance;
}

CRvClipper::CRvClipper() : m_engine(std::make_unique<Engine>()) { m_engine->offset.Clear(); }

CRvClipper::~CRvClipper() = default;

int64_t CRvClipper::ToGrid(double mm) {
  if (!(std::fabs(mm) <= kMaxCoordinate)) Raise(kErrClipCoordinate);
  return static_cast<int64_t>(mm * kGridPerMm);  // truncated toward zero: 1.9999 mm is 1999
}

void CRvClipper::AddOffsetPath(const RVCURVEPOINT* points, int32_t count, ClipEnd end) {
  const CL::Path path = ToPath(points, count);
  Guarded([&] {
    m_engine->offset.AddPath(path, CL::JoinType(m_joinType), CL::EndType(end));
  });
}

bool CRvClipper::AddClipPath(const RVCURVEPOINT* points, int32_t count, bool closed, ClipRole role) {
  if (role == ClipRole::kClip && !closed) return false;
  CL::Path path = ToPath(points, count);
  return Guarded([&] { return m_engine->clipper.AddPath(path, CL::PolyType(role), closed); });
}

bool CRvClipper::AddLines(std::vector<RVHATCHLINE> lines) {
  bool added = false;
  CL::Path path(kLinePointCount);
  for (const RVHATCHLINE& line : lines) {
    path[0] = CL::IntPoint(ToGrid(line.x1), ToGrid(line.y1));
    path[1] = CL::IntPoint(ToGrid(line.x2), ToGrid(line.y2));
    added = Guarded([&] { return m_engine->clipper.AddPath(path, CL::ptSubject, false); });
  }
  return added;
}

std::vector<RVHATCHLINE> CRvClipper::ExecuteToLines(ClipOperation operation, ClipFill fill) {
  CL::PolyTree tree;
  Guarded([&] {
    m_engine->clipper.Execute(CL::ClipType(operation), tree, CL::PolyFillType(fill), CL::PolyFillType(fill));
  });
  // Every result of clipping open lines is open, and open results are the
  // root's children, in the order in which the tree lists all its nodes.
  std::vector<RVHATCHLINE> lines;
  lines.reserve(tree.Childs.size());
  for (auto it = tree.Childs.rbegin(); it != tree.Childs.rend(); ++it) {
    const CL::Path& contour = (*it)->Contour;
    if (contour.size() != kLinePointCount) continue;
    lines.push_back(RVHATCHLINE{FromGrid(contour[1].X), FromGrid(contour[1].Y), FromGrid(contour[0].X),
                                FromGrid(contour[0].Y), kUnsetMark, kUnsetMark});
  }
  return lines;
}

int32_t CRvClipper::ExecuteToArts(ClipOperation operation, ClipFill fill, const std::string& layerName,
                                  const ClipArtParams& params) {
  CL::PolyTree tree;
  Guarded([&] {
    m_engine->clipper.Execute(CL::ClipType(operation), tree, CL::PolyFillType(fill), CL::PolyFillType(fill));
  });
  if (tree.GetFirst() == nullptr) return 1;
  TreeToArts(layerName, params).Run(tree);
  return 0;
}

int32_t CRvClipper::OffsetToArts(double deltaMm, const std::string& layerName, const ClipArtParams& params) {
  ToGrid(deltaMm);  // refuses an offset that isn't finite or is too large
  CL::PolyTree tree;
  Guarded([&] {
    if (deltaMm < 0.0) {
      // Before shrinking, the paths become what ClipperLib makes of them at
      // offset 0, with holes as paths of their own.
      m_engine->offset.Execute(tree, 0.0);
      m_engine->offset.Clear();
      for (CL::PolyNode* node = tree.GetFirst(); node != nullptr; node = node->GetNext()) {
        m_engine->offset.AddPath(node->Contour, CL::JoinType(m_joinType), CL::etClosedPolygon);
      }
      tree.Clear();
    }
    m_engine->offset.Execute(tree, deltaMm * kGridPerMm);
  });
  if (tree.GetFirst() == nullptr) return 1;
  TreeToArts(layerName, params).Run(tree);
  return 0;
}

void CRvClipper::SetMiterLimit(double limit) { m_engine->offset.MiterLimit = limit; }

void CRvClipper::SetArcTolerance(double tolerance) { m_engine->offset.ArcTolerance = tolerance; }

void CRvClipper::ClearOffset() { m_engine->offset.Clear(); }

void CRvClipper::ClearClipper() { m_engine->clipper.Clear(); }

}  // namespace rv
