#include "router.h"

#include <algorithm>
#include <cmath>
#include <cstring>

#include "drawing.h"
#include "failure.h"
#include "geometry.h"

namespace rvtool {
namespace {

constexpr uint8_t kOutputInfo = 2;     // RefMap info bit: the entry is output
constexpr int16_t kUnlinked = 9;       // art position that links the art nowhere
constexpr int16_t kLastChild = 5;      // art position: last child of the reference
constexpr double kMaxMitre = 2.0;      // a mitre reaches at most this many offsets out

double SignedArea(const std::vector<RVPOINT>& p) {
  double sum = 0;
  for (std::size_t i = 0; i < p.size(); ++i) {
    const RVPOINT& a = p[i];
    const RVPOINT& b = p[(i + 1) % p.size()];
    sum += a.x * b.y - b.x * a.y;
  }
  return sum / 2;
}

// The outward normal of the edge a -> b of a counter-clockwise outline.
RVPOINT Normal(const RVPOINT& a, const RVPOINT& b) {
  const double dx = b.x - a.x, dy = b.y - a.y;
  const double length = std::hypot(dx, dy);
  return length == 0 ? RVPOINT{0, 0} : RVPOINT{dy / length, -dx / length};
}

}  // namespace

std::vector<RVTILE> FileTiles(const std::vector<FiledKey>& groups, int16_t map, int count) {
  const std::string operation = "filing the tiles";
  Bounds all;
  std::vector<std::pair<void*, RVPOINT>> centres;
  for (const FiledKey& group : groups) {
    for (void* path : group.paths) {
      RVRECT r{};
      Check(RvGiGetArtBounds(path, &r), operation, "");
      const RVPOINT centre{(r.left + r.right) / 2, (r.top + r.bottom) / 2};
      all.Add(RVPOINT{std::fmin(r.left, r.right), std::fmin(r.top, r.bottom)});
      all.Add(RVPOINT{std::fmax(r.left, r.right), std::fmax(r.top, r.bottom)});
      centres.emplace_back(path, centre);
    }
  }
  std::vector<RVTILE> tiles(static_cast<std::size_t>(count));
  const double height = all.height() / count;
  for (int i = 0; i < count; ++i) {
    RVTILE& t = tiles[static_cast<std::size_t>(i)];
    std::memset(&t, 0, sizeof t);
    t.number = i + 1;
    t.rects[0] = RVRECT{all.bottom + height * (i + 1), all.left, all.right, all.bottom + height * i};
  }
  int16_t tileMap = -1;
  Check(RvGiCreateRefMapTable(&tileMap), operation, "");
  // A key's arts stand newest first: file backwards to cut in drawing order.
  for (auto it = centres.rbegin(); it != centres.rend(); ++it) {
    int strip = height > 0 ? static_cast<int>((it->second.y - all.bottom) / height) : 0;
    strip = std::min(std::max(strip, 0), count - 1);
    const std::string key = kTilePrefix + std::to_string(strip + 1);
    Check(RvGiAddRefMapData(map, key.c_str(), kOutputInfo, it->first), operation, "");
    Check(RvGiAddRefMapData(tileMap, key.c_str(), kOutputInfo, it->first), operation, "");
  }
  RvGiSetRefMapTileIndex(tileMap);
  if (RvGiRegistTileCutOrder(kTilePrefix, count) != 0) throw Failure("the tile table can't be ordered", 70);
  return tiles;
}

std::vector<RVPOINT> OffsetOutline(const std::vector<RVPOINT>& points, double offset) {
  std::vector<RVPOINT> p = points;
  if (p.size() < 3) return p;
  // Work counter-clockwise, so that the normals point outward.
  const bool clockwise = SignedArea(p) < 0;
  if (clockwise) std::reverse(p.begin(), p.end());
  std::vector<RVPOINT> out(p.size());
  for (std::size_t i = 0; i < p.size(); ++i) {
    const RVPOINT& prev = p[(i + p.size() - 1) % p.size()];
    const RVPOINT& next = p[(i + 1) % p.size()];
    const RVPOINT n1 = Normal(prev, p[i]), n2 = Normal(p[i], next);
    const double cosine = n1.x * n2.x + n1.y * n2.y;
    // The mitre: along the sum of the normals, 1 / cos(half angle) out.
    double reach = 1.0 + cosine > 1e-9 ? 1.0 / (1.0 + cosine) : 0.0;
    const RVPOINT sum{n1.x + n2.x, n1.y + n2.y};
    const double sumLength = std::hypot(sum.x, sum.y);
    if (sumLength * reach > kMaxMitre) reach = sumLength > 0 ? kMaxMitre / sumLength : 0.0;
    out[i] = RVPOINT{p[i].x + offset * sum.x * reach, p[i].y + offset * sum.y * reach};
  }
  if (clockwise) std::reverse(out.begin(), out.end());
  return out;
}

uint32_t MakeOffsetArt(void*, void* art, double offset, void** result) {
  if (offset == 0.0) {
    *result = art;
    return 0;
  }
  Stroke outline;
  try {
    outline = FlattenPath(art);
  } catch (const Failure&) {
    return 0x06001001u;  // the art can't be read as a path
  }
  if (outline.points.size() > 1 && outline.points.front().x == outline.points.back().x &&
      outline.points.front().y == outline.points.back().y) {
    outline.points.pop_back();
  }
  const std::vector<RVPOINT> moved = OffsetOutline(outline.points, offset);
  void* path = nullptr;
  void* bezier = nullptr;
  uint32_t code = RvGiCreateArt(kTypePath, kUnlinked, nullptr, &path);
  if (code == 0) code = RvGiCreateArt(kTypeBezier, kLastChild, path, &bezier);
  for (std::size_t i = 0; code == 0 && i < moved.size(); ++i) {
    RVBEZIERPOINT q{};
    q.anchor = q.in = q.out = moved[i];
    code = RvGiAddBezierPoint(bezier, &q);
  }
  if (code == 0) code = RvGiSetPathClosed(path, 1);
  if (code == 0) *result = path;
  return code;
}

}  // namespace rvtool
