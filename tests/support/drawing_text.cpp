#include "drawing_text.h"

#include <algorithm>
#include <cstdio>

namespace rvtest {
namespace {

constexpr std::size_t kMaxChildren = 1000000;

std::string ArcPointText(const RVARCPOINT& a) {
  return PointText(a.from.x, a.from.y) + ">" + PointText(a.to.x, a.to.y) + "@" + PointText(a.centre.x, a.centre.y) + ":" +
         Num(a.sweep) + (a.direction == 1 ? "+" : "-");
}

int16_t TypeOf(void* art) {
  int16_t type = -1;
  RvGiGetArtType(art, &type);
  return type;
}

void ReadInto(void* art, LayerReading& reading) {
  for (void* child : Children(art)) {
    const int16_t type = TypeOf(child);
    if (type == 1 || type == 3) {
      ++(type == 1 ? reading.groups : reading.compounds);
      ReadInto(child, reading);
      continue;
    }
    if (type != 4) continue;
    PathReading p;
    p.art = child;
    p.shape = ShapeOf(child);
    RvGiGetArtBounds(child, &p.bounds);
    RvGiGetPathSegmentCount(child, &p.points);
    RvGiGetPathClosed(child, &p.closed);
    RvGiGetPathElementAtVCut(child, &p.vcutElement, &p.vcutValue);
    RvGiGetPathAttrFlag(child, &p.flags);
    RvGiGetPathColor(2, child, &p.stroke, &p.strokeFound);
    char name[256] = {};
    RvGiGetPathColorName(2, child, name);
    p.strokeName = name;
    reading.points += p.points;
    RVRECT& e = reading.extent;
    e = {std::max(e.top, p.bounds.top), std::min(e.left, p.bounds.left), std::max(e.right, p.bounds.right),
         std::min(e.bottom, p.bounds.bottom)};
    reading.paths.push_back(std::move(p));
  }
}

void TreeInto(void* art, int depth, std::string& out) {
  for (void* child : Children(art)) {
    out += std::string(std::size_t(2 * depth), ' ');
    const int16_t type = TypeOf(child);
    if (type == 1 || type == 3) {
      out += type == 1 ? "group\n" : "compound\n";
      TreeInto(child, depth + 1, out);
    } else if (type == 4) {
      int32_t closed = 0;
      RvGiGetPathClosed(child, &closed);
      out += std::string("path ") + (closed == 1 ? "closed " : "") + ShapeOf(child) + "\n";
    } else {
      out += "art " + std::to_string(type) + "\n";
    }
  }
}

}  // namespace

std::string Num(double v) {
  char buf[32];
  std::snprintf(buf, sizeof buf, "%.10g", v + 0.0);
  return buf;
}

std::vector<void*> Children(void* art) {
  std::vector<void*> out;
  void* child = nullptr;
  if (RvGiGetArtFirstChild(art, &child) != 0) return out;
  while (child != nullptr && out.size() < kMaxChildren) {
    out.push_back(child);
    if (RvGiGetArtSibling(child, &child) != 0) break;
  }
  return out;
}

std::string ComponentText(void* component) {
  const int16_t kind = TypeOf(component);
  int32_t n = 0;
  RvGiGetPathSegmentCount(component, &n);
  std::string part = kind == 2 ? "B(" : kind == 5 ? "A(" : "?(";
  for (int32_t i = 0; i < n; ++i) {
    if (i > 0) part += " ";
    if (kind == 2) {
      RVBEZIERPOINT b{};
      RvGiGetBezierPoint(component, i, &b);
      part += PointText(b.anchor.x, b.anchor.y);
      const auto at = [&](const RVPOINT& h) { return h.x == b.anchor.x && h.y == b.anchor.y; };
      if (!at(b.in) || !at(b.out)) part += "{" + PointText(b.in.x, b.in.y) + ";" + PointText(b.out.x, b.out.y) + "}";
    } else if (kind == 5) {
      RVARCPOINT a{};
      RvGiGetArcPoint(component, i, &a);
      part += ArcPointText(a);
    }
  }
  return part + ")";
}

std::string ShapeOf(void* path) {
  std::string shape;
  for (void* component : Children(path)) shape += (shape.empty() ? "" : " ") + ComponentText(component);
  return shape;
}

std::string LayerReading::Shapes() const {
  std::string s;
  for (const PathReading& p : paths) s += (s.empty() ? "" : " | ") + p.shape + (p.closed == 1 ? " closed" : "");
  return s;
}

LayerReading ReadLayer(void* layer) {
  LayerReading reading;
  char name[256] = {};
  if (layer != nullptr) RvGiGetLayerName(layer, name);
  reading.name = name;
  if (layer != nullptr) ReadInto(layer, reading);
  return reading;
}

std::string TreeText(void* art) {
  std::string out;
  TreeInto(art, 0, out);
  return out;
}

}  // namespace rvtest
