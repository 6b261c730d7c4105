#include "formats/itw_import.h"

#include <algorithm>
#include <cctype>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <initializer_list>
#include <numbers>
#include <optional>

#include "frame/error_codes.h"
#include "frame/frame.h"
#include "geometry/convert_pt.h"
#include "model/art.h"
#include "model/data_access.h"

namespace rv {

namespace {

constexpr uint16_t kGraphicRecord = 0xFFFF;
constexpr double kBulgeUnit = 10000.0;
constexpr uint8_t kFrameFlags = 1;
constexpr uint8_t kBaselineFlags = 21;
constexpr uint8_t kDrawnPathFlags = 7;
constexpr uint8_t kContourCompoundFlags = 255;
constexpr uint16_t kSymbolGroupFrom = 8000;
constexpr uint32_t kMissingCharacter = 32;
// A stroke contour that ends this close to its start (cell units) is closed.
constexpr double kStrokeCloseDistance = 50.0;
// Arcs of stroke data whose radius (document units) lies outside these are
// dropped.
constexpr double kArcRadiusMin = 0.025;
constexpr double kArcRadiusMax = 32000.0;
// A cell is distorted when its sides or diagonals differ by more than the
// diagonal over this.
constexpr double kDistortionRatio = 141.0;
constexpr int kMaxArcChords = 100;
// The warning cross spans these cell coordinates.
constexpr double kCrossNear = 500.0;
constexpr double kCrossFar = 4500.0;

const RVCOLOR kRed{nullptr, 1, {255, 0, 0, 0}};
const RVCOLOR kBlue{nullptr, 1, {0, 0, 255, 0}};

// Stroke fonts drawn one compound per contour.
constexpr const char* kPerContourFonts[] = {"KAISYOA1", "KAISYOA2", "KAISYOB1", "KAISYOB2", "KAISYOC",
                                            "KAISYOD",  "KAISYOE",  "KAISYOF",  "GYOUSYO",  "REISYO",
                                            "HENTAI",   "ASAMA",    "CHIKUMA"};

// The vertical forms: two ranges and a list of single codes that follow the
// second range.
constexpr uint16_t kVerticalRangeA = 8482, kVerticalRangeAEnd = 8559, kVerticalTargetA = 11042;
constexpr uint16_t kVerticalRangeB = 8560, kVerticalRangeBEnd = 8574, kVerticalTargetB = 11297;
constexpr uint16_t kVerticalSingleTarget = 11312;
constexpr uint16_t kVerticalSingles[] = {9249, 9251, 9253, 9255, 9257, 9283, 9315, 9317, 9319, 9326, 9505,
                                         9507, 9509, 9511, 9513, 9539, 9571, 9573, 9575, 9582, 9589, 9590};

// Installed-font codes that go to the user-defined area.
constexpr uint16_t kUserAreaFirst = 30242, kUserAreaLast = 30589;
constexpr uint16_t kUserAreaStepA = 30303, kUserAreaStepB = 30334;
constexpr uint16_t kUserAreaShiftA = 31263, kUserAreaShiftB = 31264, kUserAreaShiftC = 31102;
constexpr uint16_t kSingleByteLimit = 128;

// The eight anchors of a curved run, as weights of P0 to P3, in 32nds.
constexpr double kCurveWeightUnit = 32.0;
constexpr int kCurveWeights[8][4] = {{18, 13, 1, 0}, {8, 20, 4, 0},  {2, 21, 9, 0},  {0, 16, 16, 0},
                                     {0, 9, 21, 2},  {0, 4, 20, 8},  {0, 1, 13, 18}, {0, 0, 0, 32}};

RVPOINT operator-(const RVPOINT& a, const RVPOINT& b) { return RVPOINT{a.x - b.x, a.y - b.y}; }
double Distance(const RVPOINT& a, const RVPOINT& b) { return std::hypot(a.x - b.x, a.y - b.y); }
RVPOINT Middle(const RVPOINT& a, const RVPOINT& b) { return RVPOINT{(a.x + b.x) / 2.0, (a.y + b.y) / 2.0}; }

RVRECT Union(const RVRECT& a, const RVRECT& b) {
  return RVRECT{std::max(a.top, b.top), std::min(a.left, b.left), std::max(a.right, b.right),
                std::min(a.bottom, b.bottom)};
}

bool EqualsIgnoringCase(const std::string& a, const char* b) {
  const std::size_t n = std::strlen(b);
  if (a.size() != n) return false;
  for (std::size_t i = 0; i < n; ++i) {
    if (std::toupper(static_cast<unsigned char>(a[i])) != static_cast<unsigned char>(b[i])) return false;
  }
  return true;
}

uint16_t StrokeGroupMode(const std::string& fontFile) {
  for (const char* name : kPerContourFonts) {
    if (EqualsIgnoringCase(fontFile, name)) return kGroupPerContour;
  }
  return 1;
}

ItwCorners ReadCorners(ByteCursor& in) {
  ItwCorners corners{};
  for (RVPOINT& c : corners) {
    c.x = in.ReadI32LE() / kItwUnit;
    c.y = in.ReadI32LE() / kItwUnit;
  }
  return corners;
}

RVBEZIERPOINT Anchor(const RVPOINT& p) {
  RVBEZIERPOINT point{};
  point.anchor = point.in = point.out = p;
  return point;
}

RVARCPOINT ArcPoint(const RVPOINT& from, const RVPOINT& centre, int16_t direction) {
  RVARCPOINT point{};
  point.from = from;
  point.centre = centre;
  point.direction = direction;
  return point;
}

/// The first point of a component, if it has one.
std::optional<RVPOINT> FirstPoint(CRvArt* component) {
  switch (component->GetType()) {
    case kArtBezier: {
      const auto& bezier = static_cast<CRvBezier&>(*component);
      if (bezier.GetPointCount() > 0) return bezier.GetPoint(0).anchor;
      break;
    }
    case kArtArc: {
      const auto& arc = static_cast<CRvArc&>(*component);
      if (arc.GetPointCount() > 0) return arc.GetPoint(0).from;
      break;
    }
    case kArtSpline: {
      const auto& spline = static_cast<CRvSpline&>(*component);
      if (spline.GetPointCount() > 0) return spline.GetPoint(0);
      break;
    }
    default:
      break;
  }
  return std::nullopt;
}

/// The arc points of this import are chains: a piece runs from one point's
/// `from` to the next point's, or to the first point of the next component
/// (of the first one in a closed path). Each point gets that end as its `to`,
/// with the swept angle, so that every reader of arc points draws the same
/// pieces; the last point of an open path ends where it starts.
void CompleteArcChains(CRvArt* path) {
  CRvDataAccess& store = CRvDataAccess::Instance();
  std::vector<CRvArt*> components;
  for (CRvArt* c = store.GetArtFirstChild(path); c != nullptr; c = store.GetArtSibling(c)) components.push_back(c);
  const bool closed = store.GetPathClosed(path) == 1;
  for (std::size_t k = 0; k < components.size(); ++k) {
    if (components[k]->GetType() != kArtArc) continue;
    std::optional<RVPOINT> next;
    for (std::size_t j = k + 1; j < components.size() && !next; ++j) next = FirstPoint(components[j]);
    for (std::size_t j = 0; j <= k && closed && !next; ++j) next = FirstPoint(components[j]);
    std::vector<RVARCPOINT>& points = static_cast<CRvArc*>(components[k])->m_points;
    for (std::size_t i = 0; i < points.size(); ++i) {
      RVARCPOINT& p = points[i];
      const std::optional<RVPOINT> end = i + 1 < points.size() ? std::optional<RVPOINT>(points[i + 1].from) : next;
      p.to = end.value_or(p.from);
      const bool piece = end.has_value() && p.direction != 0;
      p.sweep = piece ? CRvConvertPt::CenterAngle(p, p.to, false) * 180.0 / std::numbers::pi : 0.0;
    }
  }
}

/// Sets the path's bounds from its components and returns them.
RVRECT SetOwnBounds(CRvArt* path) {
  CRvDataAccess& store = CRvDataAccess::Instance();
  CompleteArcChains(path);
  RVRECT bounds{};
  store.GetPathBounds(path, bounds);
  store.SetBoundingBox(path, bounds);
  return bounds;
}

/// True when the four sides, or the two diagonals, of the cell differ by more
/// than the diagonal over kDistortionRatio.
bool IsDistorted(const ItwCorners& c) {
  const double diagonal = Distance(c[0], c[2]);
  const double e = diagonal / kDistortionRatio;
  const double side = Distance(c[0], c[1]);
  return std::fabs(side - Distance(c[1], c[2])) > e || std::fabs(side - Distance(c[2], c[3])) > e ||
         std::fabs(side - Distance(c[3], c[0])) > e || std::fabs(diagonal - Distance(c[1], c[3])) > e;
}

}  // namespace

// ---------------------------------------------------------------------------
// Cell and code helpers
// ---------------------------------------------------------------------------

RVPOINT MapToCell(const ItwCorners& c, double x, double y) {
  const double u = x / kItwCellSide;
  const double v = y / kItwCellSide;
  const double bx = c[0].x - c[1].x + c[2].x - c[3].x;
  const double by = c[0].y - c[1].y + c[2].y - c[3].y;
  return RVPOINT{c[0].x + (c[1].x - c[0].x) * u + (c[3].x - c[0].x) * v + bx * u * v,
                 c[0].y + (c[1].y - c[0].y) * u + (c[3].y - c[0].y) * v + by * u * v};
}

double CornerArea(const ItwCorners& c) {
  double area = 0.0;
  for (std::size_t i = 0; i < 4; ++i) {
    const RVPOINT& a = c[i];
    const RVPOINT& b = c[(i + 1) % 4];
    area += a.x * b.y - a.y * b.x;
  }
  return area;
}

uint16_t VerticalForm(uint16_t code) {
  if (code >= kVerticalRangeA && code <= kVerticalRangeAEnd) return uint16_t(code - kVerticalRangeA + kVerticalTargetA);
  if (code >= kVerticalRangeB && code <= kVerticalRangeBEnd) return uint16_t(code - kVerticalRangeB + kVerticalTargetB);
  for (std::size_t i = 0; i < std::size(kVerticalSingles); ++i) {
    if (kVerticalSingles[i] == code) return uint16_t(kVerticalSingleTarget + i);
  }
  return code;
}

uint16_t InstalledFontCode(uint16_t code) {
  if (code < kSingleByteLimit) return code;
  if (code >= kUserAreaFirst && code <= kUserAreaLast) {
    if (code <= kUserAreaStepA) return uint16_t(code + kUserAreaShiftA);
    if (code <= kUserAreaStepB) return uint16_t(code + kUserAreaShiftB);
    return uint16_t(code + kUserAreaShiftC);
  }
  return JisToShiftJis(code);
}

// ---------------------------------------------------------------------------
// The stroke walk
// ---------------------------------------------------------------------------

namespace {

/// Draws one run of stroke data into a character's cell.
class CRvStrokeWalk {
 public:
  CRvStrokeWalk(CRvArt* group, const ItwCharacter& ch, uint16_t groupMode, const RVCOLOR& colour,
                const std::string& colourName)
      : m_store(CRvDataAccess::Instance()),
        m_group(group),
        m_ch(ch),
        m_groupMode(groupMode),
        m_colour(colour),
        m_colourName(colourName),
        m_distorted(IsDistorted(ch.cell)),
        m_mirrored(CornerArea(ch.cell) > 0.0) {}

  /// Walks the steps; calls `addBounds` with the bounds of each finished
  /// contour.
  template <class AddBounds>
  void Walk(const std::vector<StrokeStep>& steps, AddBounds&& addBounds) {
    if (m_groupMode < kGroupPerContour) {
      m_compound = m_store.CreateArt(kArtCompound, kLastChild, m_group);
      m_store.SetPathAttrFlag(m_compound, uint8_t(m_groupMode));
    }
    uint16_t prev = kStrokeClose;
    for (const StrokeStep& step : steps) {
      if (prev == kStrokeClose) BeginContour(step);
      if (prev == kStrokeArc && EndArc(step)) prev = kStrokeLine;
      switch (step.op) {
        case kStrokeLine:
          if (prev != kStrokeLine) NewComponent(kArtBezier);
          m_store.AddBezierPoint(m_component, Anchor(Map(step.x, step.y)));
          break;
        case kStrokeArc:
          m_arc = step;
          break;
        case kStrokeClose:
          EndContour(step, prev, addBounds);
          break;
        case kStrokeSpline:
        case kStrokeSplineStart:
          if ((prev != kStrokeSpline && prev != kStrokeSplineStart) || step.op == kStrokeSplineStart) {
            NewComponent(kArtSpline);
          }
          m_store.AddSplinePoint(m_component, Map(step.x, step.y));
          break;
        default:
          break;
      }
      prev = step.op;
    }
  }

 private:
  RVPOINT Map(double x, double y) const { return MapToCell(m_ch.cell, x, y); }

  void BeginContour(const StrokeStep& step) {
    m_first = step;
    if (m_groupMode == kGroupPerContour) {
      m_compound = m_store.CreateArt(kArtCompound, kLastChild, m_group);
      m_store.SetPathAttrFlag(m_compound, kContourCompoundFlags);
    }
    m_path = m_store.CreateArt(kArtPath, kLastChild, m_compound);
    m_store.SetPathAttrFlag(m_path, kDrawnPathFlags);
    m_store.SetPathColor(kFillColor, m_path, m_colour, m_colourName);
    m_store.SetPathColor(kStrokeColor, m_path, m_colour, m_colourName);
    m_component = nullptr;
    m_componentType = kArtAbstract;
  }

  void NewComponent(int16_t type) {
    m_component = m_store.CreateArt(type, kLastChild, m_path);
    m_componentType = type;
  }
  bool Current(int16_t type) const { return m_component != nullptr && m_componentType == type; }

  /// Ends the pending arc at the point of `step`. True when the arc was
  /// flattened into a Bezier (the walk then counts as on a straight run).
  bool EndArc(const StrokeStep& step) {
    const RVPOINT s{double(m_arc.x), double(m_arc.y)};
    const RVPOINT c{double(m_arc.cx), double(m_arc.cy)};
    const RVPOINT e{double(step.x), double(step.y)};
    const RVPOINT sMapped = Map(s.x, s.y);
    const RVPOINT cMapped = Map(c.x, c.y);
    const RVPOINT eMapped = Map(e.x, e.y);
    if ((s.x != e.x || s.y != e.y) && sMapped.x == eMapped.x && sMapped.y == eMapped.y) return false;
    const double radius = Distance(sMapped, cMapped);
    if (!(radius >= kArcRadiusMin && radius <= kArcRadiusMax) || m_arc.direction == 0) return false;
    if (!m_distorted) {
      if (!Current(kArtArc)) NewComponent(kArtArc);
      const int16_t direction = m_mirrored ? int16_t(-m_arc.direction) : m_arc.direction;
      m_store.AddArcPoint(m_component, ArcPoint(sMapped, cMapped, direction));
      return false;
    }
    if (!Current(kArtBezier)) NewComponent(kArtBezier);
    const double phi = CRvConvertPt::CenterAngle(ArcPoint(s, c, m_arc.direction), e, true);
    const double r = Distance(s, c);
    const double k = std::max(std::fabs(double(m_ch.width)), std::fabs(double(m_ch.height))) / kItwCellSide;
    const double chords = std::fabs(r * phi * k) / 2.0;
    const int n = 1 + int(std::min(chords, double(kMaxArcChords)));
    const int count = std::min(n, kMaxArcChords);
    const double start = std::atan2(s.y - c.y, s.x - c.x);
    for (int i = 0; i <= count; ++i) {
      const double angle = start - i * (phi / count) * m_arc.direction;
      m_store.AddBezierPoint(m_component, Anchor(Map(c.x + r * std::cos(angle), c.y + r * std::sin(angle))));
    }
    return true;
  }

  template <class AddBounds>
  void EndContour(const StrokeStep& step, uint16_t prev, AddBounds&& addBounds) {
    const RVPOINT point = Map(step.x, step.y);
    bool appended = false;
    const uint32_t failed = Guard([&] {
      if (prev == kStrokeLine) {
        m_store.AddBezierPoint(m_component, Anchor(point));
        appended = true;
      } else if (prev == kStrokeArc) {
        if (m_distorted && Current(kArtBezier)) m_store.AddBezierPoint(m_component, Anchor(point));
        if (!m_distorted && Current(kArtArc)) m_store.AddArcPoint(m_component, ArcPoint(point, point, 0));
        appended = true;
      } else if (prev == kStrokeSpline || prev == kStrokeSplineStart) {
        m_store.AddSplinePoint(m_component, point);
        appended = true;
      }
    });
    if (failed != 0 || !appended) return;
    const double gap = std::hypot(double(step.x) - m_first.x, double(step.y) - m_first.y);
    m_store.SetPathClosed(m_path, gap <= kStrokeCloseDistance ? 1 : 0);
    // A contour that draws nothing has no bounds to add.
    RVRECT bounds{};
    if (Guard([&] { bounds = SetOwnBounds(m_path); }) == 0) addBounds(bounds);
  }

  CRvDataAccess& m_store;
  CRvArt* m_group;
  const ItwCharacter& m_ch;
  uint16_t m_groupMode;
  const RVCOLOR& m_colour;
  const std::string& m_colourName;
  bool m_distorted;
  bool m_mirrored;
  CRvArt* m_compound = nullptr;
  CRvArt* m_path = nullptr;
  CRvArt* m_component = nullptr;
  int16_t m_componentType = kArtAbstract;
  StrokeStep m_first;
  StrokeStep m_arc;
};

}  // namespace

// ---------------------------------------------------------------------------
// The format
// ---------------------------------------------------------------------------

CRvItwFormat::CRvItwFormat(const char* fontFolder, const char* userFontFolder, int16_t* fileByte,
                           CRvGlyphOutlines* outlines)
    : m_fontFolder(fontFolder != nullptr ? fontFolder : ""),
      m_userFontFolder(userFontFolder != nullptr ? userFontFolder : ""),
      m_fileByte(fileByte),
      m_outlines(outlines) {}

CRvItwFormat::~CRvItwFormat() = default;

uint32_t CRvItwFormat::Open(const std::string& path, const std::string& mode) {
  m_path = path;
  return CRvFormatStrategy::Open(path, mode);
}

uint32_t CRvItwFormat::ImportToRIF() {
  std::vector<uint8_t> bytes;
  const uint32_t code = Guard([&] { bytes = ReadWholeFile(m_path); });
  if (code != 0) return code;
  return ImportBytes(bytes.data(), bytes.size());
}

uint32_t CRvItwFormat::ExportFromRIF(void*) { return kErrNoDirection; }

uint32_t CRvItwFormat::ImportBytes(const uint8_t* data, std::size_t size) {
  const uint32_t code = Guard([&] {
    m_warning = 0;
    m_layer = CRvDataAccess::Instance().CreateLayer(0, nullptr);
    // What is left of the file to read is what the cursor has left.
    ByteCursor in(data, size);
    ReadHead(in);
    while (!in.AtEnd()) ReadRecord(in);
    SetLayerBounds();
  });
  return code != 0 ? code : m_warning;
}

void CRvItwFormat::ReadHead(ByteCursor& in) {
  const uint16_t mark = in.ReadU16LE();
  in.Skip(75);
  const uint8_t fileByte = in.ReadU8();
  const uint16_t fontCount = in.ReadU16LE();
  in.Skip(8);
  if (mark != kItwFileMark) Raise(kErrItwMark);
  if (m_fileByte != nullptr) *m_fileByte = fileByte;
  ReadFontTable(in, fontCount);
}

void CRvItwFormat::ReadFontTable(ByteCursor& in, uint16_t count) {
  m_fonts.clear();
  m_firstFontOf.clear();
  for (uint16_t i = 0; i < count; ++i) {
    if (in.ReadU16LE() != kItwFontMark) Raise(kErrItwMark);
    in.Skip(2);
    ItwFont font;
    font.id = in.ReadU16LE();
    font.kind = in.ReadU16LE();
    const uint8_t nameLength = in.ReadU8();
    if (nameLength >= kItwNameLimit) Raise(kErrItwNameLength);
    font.name = in.ReadText(nameLength);
    const uint8_t fileLength = in.ReadU8();
    if (fileLength >= kItwNameLimit) Raise(kErrItwNameLength);
    font.file = in.ReadText(fileLength);
    m_firstFontOf.emplace(font.id, m_fonts.size());  // the first record of an id counts
    m_fonts.push_back(std::move(font));
  }
}

void CRvItwFormat::ReadRecord(ByteCursor& in) {
  in.Skip(2);
  const uint16_t itemCount = in.ReadU16LE();
  const ItwCorners corners = ReadCorners(in);
  uint8_t rgb[4];
  in.ReadBytes(rgb, 4);
  const uint16_t kind = in.ReadU16LE();
  const uint16_t horizontal = in.ReadU16LE();
  in.Skip(14);
  const bool vertical = in.ReadU8() != 0;
  const bool horizontalLine = in.ReadU8() != 0;
  const int16_t bulge = in.ReadI16LE();
  if (kind == kGraphicRecord) {
    ReadGraphic(in, itemCount, corners, rgb, vertical, horizontalLine);
  } else {
    ReadTextFrame(in, itemCount, corners, horizontal, bulge, vertical, horizontalLine);
  }
}

void CRvItwFormat::SetColour(const uint8_t* rgb) {
  char name[32];
  std::snprintf(name, sizeof name, "R=%d,G=%d,B=%d", rgb[0], rgb[1], rgb[2]);
  m_colourName = name;
  m_colour = RVCOLOR{nullptr, 1, {rgb[0], rgb[1], rgb[2], 0}};
}

void CRvItwFormat::AddToBounds(const RVRECT& rect) { m_bounds = Union(m_bounds, rect); }

CRvGlyphOutlines& CRvItwFormat::Outlines() {
  if (m_outlines != nullptr) return *m_outlines;
  if (!m_installedOutlines) m_installedOutlines = MakeInstalledGlyphOutlines();
  return *m_installedOutlines;
}

// ---------------------------------------------------------------------------
// Text frames and graphics
// ---------------------------------------------------------------------------

void CRvItwFormat::ReadTextFrame(ByteCursor& in, uint16_t itemCount, const ItwCorners& corners,
                                 uint16_t horizontal, int16_t bulge, bool vertical, bool horizontalLine) {
  CRvDataAccess& store = CRvDataAccess::Instance();
  CRvArt* group = store.CreateArt(kArtGroup, kLastChild, m_layer);
  CRvArt* path = store.CreateArt(kArtPath, kLastChild, group);
  store.SetPathAttrFlag(path, kFrameFlags);
  store.SetPathColor(kStrokeColor, path, kRed, "Frame");
  double t = bulge / kBulgeUnit;
  if (std::fabs(t) > 1.0) t = 0.0;
  DrawFramePath(path, corners, horizontal, t);
  store.SetPathClosed(path, 1);
  const RVRECT frame = SetOwnBounds(path);
  store.SetBoundingBox(group, frame);
  m_bounds = frame;
  const ItwCorners& c = corners;
  if (vertical) {
    if (t == 0.0) {
      AddBaseline(group, "Vertical BaseLine", Middle(c[0], c[1]), Middle(c[2], c[3]));
    } else {
      const double x = (frame.left + frame.right) / 2.0;
      AddBaseline(group, "Vertical BaseLine", RVPOINT{x, frame.top}, RVPOINT{x, frame.bottom});
    }
  }
  if (horizontalLine) {
    if (t == 0.0) {
      AddBaseline(group, "Horizontal BaseLine", Middle(c[0], c[3]), Middle(c[1], c[2]));
    } else {
      const double y = (frame.top + frame.bottom) / 2.0;
      AddBaseline(group, "Horizontal BaseLine", RVPOINT{frame.left, y}, RVPOINT{frame.right, y});
    }
  }
  for (uint16_t i = 0; i < itemCount; ++i) ReadCharacter(in, group, horizontal);
  store.SetBoundingBox(group, m_bounds);
}

// A bulged frame is a ring sector: two straight sides and two arcs about one
// centre, the arcs being chains in which a piece runs from one point's `from`
// to the next point's.
void CRvItwFormat::DrawFramePath(CRvArt* path, const ItwCorners& c, uint16_t horizontal, double t) {
  CRvDataAccess& store = CRvDataAccess::Instance();
  auto addBezier = [&](std::initializer_list<RVPOINT> anchors) {
    CRvArt* bezier = store.CreateArt(kArtBezier, kLastChild, path);
    for (const RVPOINT& p : anchors) store.AddBezierPoint(bezier, Anchor(p));
  };
  auto addArc = [&](std::initializer_list<RVARCPOINT> points) {
    CRvArt* arc = store.CreateArt(kArtArc, kLastChild, path);
    for (const RVARCPOINT& p : points) store.AddArcPoint(arc, p);
  };
  if (t == 0.0) {
    addBezier({c[0], c[1], c[2], c[3]});
    return;
  }
  const double theta = 4.0 * std::atan(t);
  const bool across = horizontal != 0;
  const RVPOINT& chordFrom = across ? (t > 0 ? c[3] : c[0]) : (t > 0 ? c[0] : c[1]);
  const RVPOINT& chordTo = across ? (t > 0 ? c[2] : c[1]) : (t > 0 ? c[3] : c[2]);
  const RVPOINT& base = chordFrom;
  const double radius = std::fabs(Distance(chordFrom, chordTo) / 2.0 / std::sin(theta / 2.0));
  const double g = std::numbers::pi / 2.0 - std::fabs(theta / 2.0);
  const double s = CornerArea(c) < 0.0 ? 1.0 : -1.0;
  const RVPOINT side = across ? c[1] - c[0] : c[3] - c[0];
  const double a = std::atan2(side.y, side.x);
  const double b = s * theta < 0.0 ? a + g : a - g;
  const RVPOINT centre{base.x + radius * std::cos(b), base.y + radius * std::sin(b)};
  const int16_t d = int16_t(t > 0 ? -s : s);
  if (across) {
    addArc({ArcPoint(c[0], centre, d)});
    addBezier({c[1]});
    addArc({ArcPoint(c[2], centre, int16_t(-d))});
    addBezier({c[3]});
  } else {
    addBezier({c[0]});
    addArc({ArcPoint(c[1], centre, d)});
    addBezier({c[2]});
    addArc({ArcPoint(c[3], centre, int16_t(-d)), ArcPoint(c[0], c[0], 0)});
  }
}

void CRvItwFormat::AddBaseline(CRvArt* group, const char* name, const RVPOINT& from, const RVPOINT& to) {
  CRvDataAccess& store = CRvDataAccess::Instance();
  CRvArt* path = store.CreateArt(kArtPath, kLastChild, group);
  store.SetPathAttrFlag(path, kBaselineFlags);
  store.SetPathColor(kStrokeColor, path, kBlue, name);
  CRvArt* bezier = store.CreateArt(kArtBezier, kLastChild, path);
  store.AddBezierPoint(bezier, Anchor(from));
  store.AddBezierPoint(bezier, Anchor(to));
  store.SetPathClosed(path, 0);
  SetOwnBounds(path);
}

void CRvItwFormat::ReadGraphic(ByteCursor& in, uint16_t itemCount, const ItwCorners& c, const uint8_t* rgb,
                               bool vertical, bool horizontalLine) {
  CRvDataAccess& store = CRvDataAccess::Instance();
  SetColour(rgb);
  const RVRECT rect{c[0].y, c[0].x, c[2].x, c[2].y};
  CRvArt* group = store.CreateArt(kArtGroup, kLastChild, m_layer);
  store.SetBoundingBox(group, rect);
  if (vertical) {
    const double x = (rect.left + rect.right) / 2.0;
    AddBaseline(group, "Vertical BaseLine", RVPOINT{x, rect.top}, RVPOINT{x, rect.bottom});
  }
  if (horizontalLine) {
    const double y = (rect.top + rect.bottom) / 2.0;
    AddBaseline(group, "Horizontal BaseLine", RVPOINT{rect.left, y}, RVPOINT{rect.right, y});
  }
  CRvArt* path = store.CreateArt(kArtPath, kLastChild, group);
  store.SetPathAttrFlag(path, kDrawnPathFlags);
  store.SetPathColor(kStrokeColor, path, m_colour, m_colourName);
  store.SetBoundingBox(path, rect);
  in.NeedItems(itemCount, kItwVertexSize);
  CRvArt* component = nullptr;
  uint16_t prev = 0;
  RVPOINT first{};
  for (uint16_t i = 0; i < itemCount; ++i) {
    const uint16_t op = in.ReadU16LE();
    const int16_t direction = in.ReadI16LE();
    const RVPOINT p{in.ReadI32LE() / kItwUnit, in.ReadI32LE() / kItwUnit};
    const RVPOINT centre{in.ReadI32LE() / kItwUnit, in.ReadI32LE() / kItwUnit};
    in.Skip(4);
    if (i == 0) first = p;
    switch (op) {
      case kStrokeLine:
        if (prev != kStrokeLine) component = store.CreateArt(kArtBezier, kLastChild, path);
        store.AddBezierPoint(component, Anchor(p));
        break;
      case kStrokeArc:
        if (prev != kStrokeArc) component = store.CreateArt(kArtArc, kLastChild, path);
        store.AddArcPoint(component, ArcPoint(p, centre, direction));
        break;
      case kStrokeClose:
        if (prev == kStrokeLine) {
          store.AddBezierPoint(component, Anchor(p));
        } else if (prev == kStrokeArc) {
          store.AddArcPoint(component, ArcPoint(p, p, 0));
        } else if (prev == kStrokeSpline || prev == kStrokeSplineStart) {
          store.AddSplinePoint(component, p);
        } else {
          break;
        }
        store.SetPathClosed(path, p.x == first.x && p.y == first.y ? 1 : 0);
        break;
      case kStrokeSpline:
      case kStrokeSplineStart:
        if (prev != kStrokeSpline) component = store.CreateArt(kArtSpline, kLastChild, path);
        store.AddSplinePoint(component, p);
        break;
      default:
        break;
    }
    prev = op;
  }
  CompleteArcChains(path);
}

// ---------------------------------------------------------------------------
// Characters
// ---------------------------------------------------------------------------

void CRvItwFormat::ReadCharacter(ByteCursor& in, CRvArt* group, uint16_t horizontal) {
  ItwCharacter ch;
  in.Skip(2);
  ch.fontId = in.ReadU16LE();
  ch.cell = ReadCorners(in);
  ch.code = in.ReadU16LE();
  ch.subNumber = in.ReadU16LE();
  in.Skip(4);
  ch.width = in.ReadI32LE();
  ch.height = in.ReadI32LE();
  in.ReadBytes(ch.rgb, 3);
  in.Skip(5);
  m_corners = ch.cell;
  SetColour(ch.rgb);
  const auto found = m_firstFontOf.find(ch.fontId);
  if (found == m_firstFontOf.end()) return;
  const ItwFont* font = &m_fonts[found->second];
  if (font->kind == 0) {
    if (horizontal == 0) ch.code = VerticalForm(ch.code);
    DrawStrokeCharacter(group, ch, *font);
  } else if (font->kind == 1) {
    DrawInstalledCharacter(group, ch, *font);
  } else {
    DrawSymbolCharacter(group, ch, *font);
  }
}

void CRvItwFormat::DrawStrokeCharacter(CRvArt* group, const ItwCharacter& ch, const ItwFont& font) {
  const std::string& folder = font.file.find("USER") != std::string::npos ? m_userFontFolder : m_fontFolder;
  const std::string wide = m_userFontFolder + font.file;
  std::optional<std::vector<uint8_t>> run = m_strokeFiles.FindWide(wide + ".TBW", wide + ".DAW", ch.code, ch.subNumber);
  if (!run && ch.subNumber != 0) {
    m_warning = kMissingCharacter;
    Trace("Font = %s, Code = %x, Sno = %d\n", font.file.c_str(), unsigned(ch.code), int(ch.subNumber));
    DrawWarningCross(group);
    return;
  }
  if (!run) run = m_strokeFiles.FindPlain(folder + font.file + ".TBL", folder + font.file + ".DAT", ch.code);
  if (run) DrawStrokes(group, ch, *run, StrokeGroupMode(font.file));
}

void CRvItwFormat::DrawSymbolCharacter(CRvArt* group, const ItwCharacter& ch, const ItwFont& font) {
  const std::string& folder = font.file.find("KAMON3") != std::string::npos ? m_userFontFolder : m_fontFolder;
  const std::string base = folder + font.file;
  const std::optional<std::vector<uint8_t>> run = m_strokeFiles.FindPlain(base + ".TBL", base + ".DAT", ch.code);
  if (run) DrawStrokes(group, ch, *run, ch.code >= kSymbolGroupFrom ? 1 : 0);
}

void CRvItwFormat::DrawStrokes(CRvArt* group, const ItwCharacter& ch, const std::vector<uint8_t>& run,
                               uint16_t groupMode) {
  const std::vector<StrokeStep> steps = ParseStrokeRun(run);
  const uint32_t code = Guard([&] {
    CRvStrokeWalk walk(group, ch, groupMode, m_colour, m_colourName);
    walk.Walk(steps, [&](const RVRECT& bounds) { AddToBounds(bounds); });
  });
  if (code != 0) Raise(kErrItwRecord);
}

void CRvItwFormat::DrawWarningCross(CRvArt* group) {
  CRvDataAccess& store = CRvDataAccess::Instance();
  const double ends[2][4] = {{kCrossNear, kCrossNear, kCrossFar, kCrossFar},
                             {kCrossFar, kCrossNear, kCrossNear, kCrossFar}};
  for (const auto& e : ends) {
    CRvArt* path = store.CreateArt(kArtPath, kLastChild, group);
    store.SetPathAttrFlag(path, kFrameFlags);
    store.SetPathColor(kStrokeColor, path, kRed, "Warning");
    CRvArt* bezier = store.CreateArt(kArtBezier, kLastChild, path);
    store.AddBezierPoint(bezier, Anchor(MapToCell(m_corners, e[0], e[1])));
    store.AddBezierPoint(bezier, Anchor(MapToCell(m_corners, e[2], e[3])));
    store.SetPathClosed(path, 0);
    SetOwnBounds(path);
  }
}

// An outline point: the fraction dropped, turned into the cell's axes (a
// vertical face has x and y exchanged).
struct OutlinePoint {
  double x;
  double y;
};

void CRvItwFormat::DrawInstalledCharacter(CRvArt* group, const ItwCharacter& ch, const ItwFont& font) {
  GlyphOutline outline;
  if (!Outlines().Outline(font.name, InstalledFontCode(ch.code), outline)) return;
  const bool vertical = !font.name.empty() && font.name[0] == kVerticalFaceMark;
  CRvDataAccess& store = CRvDataAccess::Instance();
  CRvArt* compound = store.CreateArt(kArtCompound, kLastChild, group);
  store.SetPathAttrFlag(compound, 0);
  auto whole = [](const GlyphPoint& p) { return OutlinePoint{double(p.x / kGlyphFixedOne), double(p.y / kGlyphFixedOne)}; };
  auto toCell = [&](const OutlinePoint& p) {
    return vertical ? MapToCell(ch.cell, p.y + kGlyphDescent, p.x) : MapToCell(ch.cell, p.x, kGlyphAscent - p.y);
  };
  for (const GlyphContour& contour : outline) {
    CRvArt* path = store.CreateArt(kArtPath, kLastChild, compound);
    store.SetPathAttrFlag(path, kDrawnPathFlags);
    store.SetPathAttrFlag(compound, 1);
    store.SetPathColor(kFillColor, path, m_colour, m_colourName);
    store.SetPathColor(kStrokeColor, path, m_colour, m_colourName);
    CRvArt* bezier = store.CreateArt(kArtBezier, kLastChild, path);
    const OutlinePoint start = whole(contour.start);
    OutlinePoint last = start;
    auto append = [&](const OutlinePoint& p) {
      store.AddBezierPoint(bezier, Anchor(toCell(p)));
      last = p;
    };
    append(start);
    for (const GlyphRun& run : contour.runs) {
      const std::size_t n = run.points.size();
      std::size_t i = 0;
      while (i < n) {
        if (!run.quadratic || n - i == 1) {
          append(whole(run.points[i++]));
          continue;
        }
        OutlinePoint p[4] = {last, {}, {}, {}};
        if (n - i == 3) {
          p[1] = whole(run.points[i]);
          p[2] = whole(run.points[i + 1]);
          p[3] = whole(run.points[i + 2]);
          i += 3;
        } else {
          const OutlinePoint q1 = whole(run.points[i]);
          const OutlinePoint q2 = whole(run.points[i + 1]);
          p[1] = {(p[0].x + q1.x) / 2.0, (p[0].y + q1.y) / 2.0};
          p[2] = {(q1.x + q2.x) / 2.0, (q1.y + q2.y) / 2.0};
          p[3] = q2;
          i += 2;
        }
        for (const auto& w : kCurveWeights) {
          OutlinePoint anchor{0.0, 0.0};
          for (int j = 0; j < 4; ++j) {
            anchor.x += p[j].x * w[j] / kCurveWeightUnit;
            anchor.y += p[j].y * w[j] / kCurveWeightUnit;
          }
          append(anchor);
        }
      }
    }
    if (last.x != start.x || last.y != start.y) append(start);
    store.SetPathClosed(path, 1);
    AddToBounds(SetOwnBounds(path));
  }
}

// ---------------------------------------------------------------------------
// Layer bounds
// ---------------------------------------------------------------------------

void CRvItwFormat::SetLayerBounds() {
  CRvDataAccess& store = CRvDataAccess::Instance();
  RVRECT bounds{};
  bool first = true;
  for (CRvArt* child = store.GetArtFirstChild(m_layer); child != nullptr; child = store.GetArtSibling(child)) {
    const RVRECT rect = store.GetArtBounds(child);
    bounds = first ? rect : Union(bounds, rect);
    first = false;
  }
  bounds.top += 1.0;
  bounds.right += 1.0;
  bounds.left -= 1.0;
  bounds.bottom -= 1.0;
  store.SetBoundingBox(m_layer, bounds);
}

}  // namespace rv
