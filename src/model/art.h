// The art tree: layers, groups, compounds, paths and their components.
//
// A container owns its children through a doubly linked list (stable
// positions, constant-time unlink). Components own flat arrays of points. An
// art owns its attribute record, plot info, colour records and tags.
#pragma once

#include <array>
#include <cstdint>
#include <list>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "model/drawing_memory.h"
#include "model/pooled_text.h"
#include "model/tag_list.h"
#include "rvdataaccess.h"

namespace rv {

/// Art type numbers as GetType returns them and as the API uses them.
enum ArtType : int16_t {
  kArtLayer = 0,
  kArtGroup = 1,
  kArtBezier = 2,
  kArtCompound = 3,
  kArtPath = 4,
  kArtArc = 5,
  kArtSpline = 6,
  kArtAbstract = 7,  // CRvArt and CRvPathComponent themselves
};

/// Where a new art is linked (RvGiCreateArt, RvGiCopyArt, RvGiCopyPath).
enum ArtPosition : int16_t {
  kFirstInLayer = 0,  ///< first in the current layer
  kInFrontOf = 1,     ///< in front of the reference, in its parent
  kBehind = 2,        ///< behind the reference, in its parent
  kLastInLayer = 3,   ///< last in the current layer
  kFirstChild = 4,    ///< first child of the reference
  kLastChild = 5,     ///< last child of the reference
};

/// The colour records of a path: its fill and its stroke.
enum ColorUse : int16_t { kFillColor = 1, kStrokeColor = 2 };

/// Attribute flag bits that the library itself reads.
constexpr uint8_t kAttrCounted = 2;    // counts for bounds by flag
constexpr uint8_t kAttrExcluded = 16;  // left out of every output and sort pass

/// Arts, the records that an art makes as it goes and its child lists live
/// in the drawing's storage.
struct InDrawing {
  static void* operator new(std::size_t size) { return AllocateDrawing(size); }
  static void operator delete(void* p, std::size_t size) noexcept { FreeDrawing(p, size); }
};

/// Plot info of an art, made at first write.
struct PlotInfo : InDrawing {
  int32_t patternId = -1;
  int32_t plotValue = 0;
  PooledText plotText;
  int16_t vcutElement = -1;
  int16_t vcutValue = 0;
};

/// Attribute record of an art, made at first write. The low 16 bits of `word`
/// are the attribute flags, the high 16 bits the start segment.
struct PathAttr : InDrawing {
  uint32_t word = 0;
  std::unique_ptr<PlotInfo> plotInfo;
};

/// A colour held by an art: the public record with its name filled in.
struct ColorRecord : InDrawing {
  PooledText name;
  uint16_t kind = 0;
  std::array<uint8_t, 4> c{};
};

class CRvArt;
class CRvContainerArt;
using ChildItems = std::list<CRvArt*, DrawingAllocator<CRvArt*>>;
using ChildPos = ChildItems::iterator;

/// Children of a container. Owns its arts and destroys them in list order
/// (each art before its own children, without recursion, so that deep trees
/// can't exhaust the stack), unless ownership was handed on
/// (see ReleaseOwnership).
class ChildList {
 public:
  ChildList() = default;
  ChildList(const ChildList&) = delete;
  ChildList& operator=(const ChildList&) = delete;
  ~ChildList();

  ChildItems& items() { return m_items; }
  const ChildItems& items() const { return m_items; }
  /// From now on the list only refers to its arts; someone else owns them.
  void ReleaseOwnership() { m_owning = false; }
  bool owning() const { return m_owning; }

 private:
  ChildItems m_items;
  bool m_owning = true;
};

/// Arts are allocated in the drawing's storage (drawing_memory.h).
class CRvArt : public InDrawing {
 public:
  CRvArt();
  /// Copies parent, bounds, matrix and the owned flag; not the attribute
  /// record, not the tags.
  CRvArt(const CRvArt& source);
  CRvArt& operator=(const CRvArt&) = delete;
  virtual ~CRvArt();

  // ---- children (containers override these; leaves have none) ----
  /// Links `child` first (0) or last (1). Returns false when the container's
  /// type filter refuses it or `where` is another number; the caller then
  /// still owns the child.
  virtual bool AddChild(int16_t where, CRvArt* child);
  /// Links `child` first (0), last (1), behind `node` (2) or in front of it (3).
  virtual bool InsertChild(int16_t where, ChildPos node, CRvArt* child);
  /// First (0) or last (1) child; null otherwise or when there is none.
  virtual CRvArt* GetChild(int16_t where) const;
  /// First (0), last (1), the one after `node` (2) or before it (3).
  virtual CRvArt* GetRelative(int16_t where, ChildPos node) const;
  /// Unlinks the entry at `node` without destroying its art.
  virtual void RemoveChild(ChildPos node);
  /// The first position holding `child`, or none.
  virtual std::optional<ChildPos> FindChild(const CRvArt* child);
  virtual int16_t GetType() const { return kArtAbstract; }
  /// True for the four containers (layer, group, compound, path).
  virtual bool IsContainer() const { return false; }
  /// Bounds of the art's own geometry; the base has none and leaves `out`.
  virtual uint32_t GetBounds(RVRECT& out);

  // ---- attribute word and plot info ----
  uint8_t AttrFlags() const { return m_attr ? uint8_t(m_attr->word) : 0; }
  uint16_t StartSegment() const { return m_attr ? uint16_t(m_attr->word >> 16) : 0; }
  PathAttr& EnsureAttr();
  PlotInfo& EnsurePlotInfo();
  const PlotInfo* GetPlotInfo() const { return m_attr ? m_attr->plotInfo.get() : nullptr; }

  // ---- tags ----
  void SetTag(std::string_view key, std::string_view value) { m_tags.Set(key, value); }
  /// The value of `key`, valid until the next SetTag; raises 0x06001A01
  /// when there is no such tag.
  std::string_view GetTag(std::string_view key) const;
  bool HasTag(std::string_view key) const { return m_tags.Find(key).has_value(); }

  /// The art's matrix; the identity unless another was set.
  const RVRIFMATRIX& Matrix() const;
  void SetMatrix(const RVRIFMATRIX& matrix);

  CRvArt* m_parent = nullptr;
  RVRECT m_bounds{};
  std::unique_ptr<PathAttr> m_attr;
  TagList m_tags;
  int m_attrOwned = 0;

 private:
  struct MatrixDeleter {
    void operator()(RVRIFMATRIX* m) const noexcept { FreeDrawing(m, sizeof *m); }
  };
  // Held only when it isn't the identity, bit for bit: most arts keep it.
  // In the drawing's storage, as the art is.
  std::unique_ptr<RVRIFMATRIX, MatrixDeleter> m_matrix;

 public:

  // Where the art was linked last: the container and the list position. The
  // containers keep this exact (set on link, cleared on unlink), so that a
  // container finds a child of its own in constant time. It is not copied.
  CRvContainerArt* m_listOwner = nullptr;
  ChildPos m_listPos{};
};

/// Shared body of the four containers: a child list with a type filter.
class CRvContainerArt : public CRvArt {
 public:
  CRvContainerArt() = default;
  CRvContainerArt(const CRvContainerArt& source) : CRvArt(source) {}

  bool AddChild(int16_t where, CRvArt* child) override;
  bool InsertChild(int16_t where, ChildPos node, CRvArt* child) override;
  CRvArt* GetChild(int16_t where) const override;
  CRvArt* GetRelative(int16_t where, ChildPos node) const override;
  void RemoveChild(ChildPos node) override;
  std::optional<ChildPos> FindChild(const CRvArt* child) override;
  bool IsContainer() const override { return true; }

  std::size_t ChildCount() const { return m_children.items().size(); }
  /// Whether the list still owns its arts (a compound converted into a group
  /// only refers to its former paths, and takes no new children).
  bool OwnsChildren() const { return m_children.owning(); }
  ChildList m_children;

 protected:
  /// Whether an art of this type may be linked here.
  virtual bool Accepts(const CRvArt& child) const = 0;
  /// Records `pos` as the child's place in this list.
  void NoteLinked(ChildPos pos);
};

class CRvLayer : public CRvContainerArt {
 public:
  CRvLayer() = default;
  int16_t GetType() const override { return kArtLayer; }
  /// Unlinks only when `node` is in this layer's list.
  void RemoveChild(ChildPos node) override;

  /// Copies the colour into `out`; a layer always reports its colour found.
  bool GetColor(RVCOLOR& out) const;
  void SetColor(const RVCOLOR& color, const std::string& name);
  void SetColorName(const std::string& name);
  /// Raises 0x03000901 when the layer has no colour.
  std::string GetColorName() const;
  const std::string& GetName() const { return m_name; }
  void SetName(const std::string& name) { m_name = name; }

  std::unique_ptr<ColorRecord> m_color;
  std::string m_name;

 protected:
  bool Accepts(const CRvArt&) const override { return true; }
};

class CRvGroup : public CRvContainerArt {
 public:
  CRvGroup() = default;
  /// Copies no children and no selection.
  CRvGroup(const CRvGroup& source) : CRvContainerArt(source) {}
  int16_t GetType() const override { return kArtGroup; }

  int m_selected = 0;

 protected:
  bool Accepts(const CRvArt&) const override { return true; }
};

class CRvCompound : public CRvContainerArt {
 public:
  CRvCompound() = default;
  CRvCompound(const CRvCompound& source) : CRvContainerArt(source) {}
  int16_t GetType() const override { return kArtCompound; }

  /// Orders the paths by ascending half perimeter, 2*(right - left) +
  /// 2*(top - bottom) of CRvPath::GetBounds, with a stable merge: equal
  /// measures keep their order. Raises what GetBounds raises.
  void SortChildren();

 protected:
  bool Accepts(const CRvArt& child) const override { return child.GetType() == kArtPath; }
};

class CRvPath : public CRvContainerArt {
 public:
  CRvPath() = default;
  /// Copies the flags and both colour records, not the children.
  CRvPath(const CRvPath& source);
  int16_t GetType() const override { return kArtPath; }

  /// Colour of `use` (1 fill, 2 stroke): true with kind and components, or
  /// false with `out` untouched. Raises 0x05000901 for another use.
  bool GetColor(int16_t use, RVCOLOR& out) const;
  /// Raises 0x05000A01 for a use that the kind doesn't allow.
  void SetColor(int16_t use, const RVCOLOR& color, const std::string& name);
  /// Renames an existing record; raises 0x06000A01 for another use.
  void SetColorName(int16_t use, const std::string& name);
  /// The name, or "None" without a record; raises 0x05000901 for another use.
  std::string GetColorName(int16_t use) const;
  std::size_t GetComponentCount() const { return ChildCount(); }
  /// Sum of the point counts of the components, in list order.
  int32_t GetPointTotal() const;

  /// The true extent of the components in the path's own coordinates (the
  /// matrix isn't applied; m_bounds isn't read). Returns 0x05000801 for a
  /// path without children or with a child that isn't a component. A
  /// component without points adds nothing and doesn't join its neighbours.
  uint32_t GetBounds(RVRECT& out) override;
  /// Signed area of the first child with the art's matrix applied to the
  /// anchors, starting at the start segment. 0 without a first child, for a
  /// first child without points, and for an arc as first child; a spline
  /// counts as the polygon of its points.
  double GetArea() const;

  std::unique_ptr<ColorRecord> m_fill;
  std::unique_ptr<ColorRecord> m_stroke;
  int m_clockwise = 0;
  int m_closed = 0;

 protected:
  bool Accepts(const CRvArt& child) const override;
};

/// Base of the three path components.
class CRvPathComponent : public CRvArt {
 public:
  CRvPathComponent() = default;
  CRvPathComponent(const CRvPathComponent& source) : CRvArt(source) {}
  virtual int32_t GetPointCount() const = 0;
};

class CRvBezier : public CRvPathComponent {
 public:
  CRvBezier() = default;
  CRvBezier(const CRvBezier& source);
  int16_t GetType() const override { return kArtBezier; }
  int32_t GetPointCount() const override { return int32_t(m_points.size()); }

  void AddPoint(const RVBEZIERPOINT& p) { m_points.push_back(p); }
  /// Appends n points, growing the array to exactly its new size.
  void AppendPoints(const RVBEZIERPOINT* p, std::size_t n) {
    if (m_points.capacity() - m_points.size() < n) m_points.reserve(m_points.size() + n);
    m_points.insert(m_points.end(), p, p + n);
  }
  /// Inserts before index i; i of 0 or less inserts at the front, i at or
  /// past the count appends.
  void InsertPoint(int32_t i, const RVBEZIERPOINT& p);
  /// Removes point i and inserts p in its place. i must be valid.
  void ReplacePoint(int32_t i, const RVBEZIERPOINT& p) { m_points[std::size_t(i)] = p; }
  void RemovePoint(int32_t i) { m_points.erase(m_points.begin() + i); }
  const RVBEZIERPOINT& GetPoint(int32_t i) const { return m_points[std::size_t(i)]; }
  int32_t GetNextIndex(int32_t i) const { return i + 1 >= GetPointCount() ? 0 : i + 1; }
  int32_t GetPrevIndex(int32_t i) const { return i == 0 ? GetPointCount() - 1 : i - 1; }
  /// Reverses the run of the curve: the order of the points, `in` and `out`
  /// of each, and the stored start handles. Fewer than 2 points: nothing.
  void Reverse();
  /// Rotates the points left by `index` (0 <= index < count): the point at
  /// `index` comes first. Nothing else changes.
  void Rotate(int32_t index);
  /// Makes the point at `index` the first one. A closed curve (closed != 0)
  /// stores its start twice and keeps that shape: the first record has
  /// in = anchor, the last repeats the first anchor with out = anchor, and
  /// the `in` handle of the start is stored (StartIn). 0 <= index < count.
  void MakeFirst(int32_t index, bool closed);
  uint8_t GetPointFlag(int32_t i) const { return m_points[std::size_t(i)].flags; }
  void SetPointFlag(int32_t i, uint8_t f) { m_points[std::size_t(i)].flags = f; }
  void OrPointFlag(int32_t i, uint8_t f) { m_points[std::size_t(i)].flags |= f; }

  /// The `in` handle of the start of a closed curve. Until it is set (or
  /// moved by a sort or reversal) it is the `in` handle of the last record,
  /// which repeats the start.
  RVPOINT StartIn() const;
  /// Whether the start's `in` handle, and the value that it takes on
  /// reversal, are stored.
  bool HasStartIn() const { return m_start && m_start->inSet; }
  bool HasStartOut() const { return m_start && m_start->outSet; }
  /// The stored value that the start's `in` handle takes on reversal.
  RVPOINT StartOut() const { return m_start ? m_start->out : RVPOINT{}; }
  void SetStartIn(const RVPOINT& p) {
    StartHandles& start = Start();
    start.in = p;
    start.inSet = true;
  }

  DrawingVector<RVBEZIERPOINT> m_points;

 private:
  // The stored handles of the start of a closed curve, made when the first
  // is set: most curves never have them.
  struct StartHandles : InDrawing {
    RVPOINT in{};   // `in` handle of the start, once set
    RVPOINT out{};  // the value that `in` takes on reversal
    bool inSet = false;
    bool outSet = false;
  };
  std::unique_ptr<StartHandles> m_start;

  StartHandles& Start() {
    if (!m_start) m_start = std::make_unique<StartHandles>();
    return *m_start;
  }
};

class CRvArc : public CRvPathComponent {
 public:
  CRvArc() = default;
  CRvArc(const CRvArc& source) = default;
  int16_t GetType() const override { return kArtArc; }
  int32_t GetPointCount() const override { return int32_t(m_points.size()); }

  void AddPoint(const RVARCPOINT& p) { m_points.push_back(p); }
  void RemovePoint(int32_t i) { m_points.erase(m_points.begin() + i); }
  const RVARCPOINT& GetPoint(int32_t i) const { return m_points[std::size_t(i)]; }

  DrawingVector<RVARCPOINT> m_points;
};

class CRvSpline : public CRvPathComponent {
 public:
  CRvSpline() = default;
  CRvSpline(const CRvSpline& source) = default;
  int16_t GetType() const override { return kArtSpline; }
  int32_t GetPointCount() const override { return int32_t(m_points.size()); }

  void AddPoint(const RVPOINT& p) { m_points.push_back(p); }
  const RVPOINT& GetPoint(int32_t i) const { return m_points[std::size_t(i)]; }

  DrawingVector<RVPOINT> m_points;
};

/// The three-point test of arc bounds: 1 when p0 equals p1; 0 when p2 equals
/// p0 or p1, when the points are nearly collinear (|d| < 1.0) or when their
/// circle is wider than a radius of 14000.0; otherwise 1 for d > 0 and -1 for
/// d <= 0, with d = (y1 - y2)(x2 - x0) - (y2 - y0)(x1 - x2). Taken as
/// (start, end, q) it gives 1 when q lies on the counter-clockwise arc from
/// start to end.
int ThreePointTest(const RVPOINT& p0, const RVPOINT& p1, const RVPOINT& p2);

/// Bounds helpers shared by the path walk: widen `box` by a point, a line,
/// a curve (flattened as areas and judgments do) or an arc piece.
void MergePoint(RVRECT& box, const RVPOINT& p);
void MergeCurve(RVRECT& box, const RVBEZIERPOINT& a, const RVBEZIERPOINT& b);
void MergeArcPiece(RVRECT& box, const RVPOINT& start, const RVPOINT& end, const RVPOINT& centre,
                   int16_t direction);

/// The art behind a handle (no check).
inline CRvArt* ArtOf(void* handle) { return static_cast<CRvArt*>(handle); }

/// True for the three component types.
inline bool IsComponentType(int16_t type) {
  return type == kArtBezier || type == kArtArc || type == kArtSpline;
}

/// Makes an empty art of `type` (1 to 6), or null for another type.
std::unique_ptr<CRvArt> MakeArt(int16_t type);

/// Makes a copy of `source` by the copying rules of its class (types 1 to 6),
/// or null for another type.
std::unique_ptr<CRvArt> CopyArt(const CRvArt& source);

}  // namespace rv
