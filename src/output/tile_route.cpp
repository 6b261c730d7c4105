// The tile route of CRvRVLFormat: a job that the host divided into tiles is
// written one tile after the other along the second axis. Each tile is
// placed by its own bounds, starts where the tile before it ended (originY
// grows in the format's copy of the parameters) and may be framed.
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>

#include "frame/frame.h"
#include "frame/progress.h"
#include "geometry/affine.h"
#include "model/data_access.h"
#include "model/refmap.h"
#include "output/art_sort.h"
#include "output/both_sides.h"
#include "output/placement.h"
#include "output/rvl_format.h"

namespace rv {

namespace {

/// Tile keys are at most this long, terminator included.
constexpr std::size_t kTileKeySize = 128;

bool IsEmpty(const RVRECT& r) { return r.top == 0.0 && r.left == 0.0 && r.right == 0.0 && r.bottom == 0.0; }

RVRECT Union(const RVRECT& a, const RVRECT& b) {
  return RVRECT{std::max(a.top, b.top), std::min(a.left, b.left), std::max(a.right, b.right),
                std::min(a.bottom, b.bottom)};
}

int16_t MainTable() { return MapIndex(RefMapStore::Instance().refMapIndex); }

}  // namespace

void CRvRVLFormat::SetTiles(const RVTILEPARAM& tiles, double* finalOriginY) {
  m_tileMode = 1;
  m_tilePrefix.assign(tiles.prefix, strnlen(tiles.prefix, sizeof tiles.prefix));
  m_tiles.clear();
  if (tiles.tiles != nullptr && tiles.tileCount > 0) m_tiles.assign(tiles.tiles, tiles.tiles + tiles.tileCount);
  m_finalOriginY = finalOriginY;
}

void CRvRVLFormat::TileRoute() {
  const std::size_t count = m_tiles.size();
  for (std::size_t t = 0; t < count; ++t) {
    // The laser dialect takes the tiles from the last to the first.
    m_currentTile = &m_tiles[m_param.dialect == 5 ? count - 1 - t : t];
    char key[kTileKeySize];
    std::snprintf(key, sizeof key, "%s%d", m_tilePrefix.c_str(), int(m_currentTile->number));
    m_currentKey = key;
    PlaceTile();
    if (plotter::HonoursStartPoints(m_param.plotterClass) && m_param.optimizeStartPoints != 0) {
      RefMapStore::Instance().Trace(MainTable(), kRefMapOutput, true, [&](CRvArt* art, void*) {
        StartPointPass(art);
        return 0u;
      });
    }
    WriteTileArts();
    if (m_param.drawTileFrames != 0) WriteTileFrames();
    if (m_param.drawFrame != 0) WriteFrame();
    AdvanceOriginY();
  }
  m_param.originY += m_param.tileGap;
  if (m_finalOriginY != nullptr) *m_finalOriginY = m_param.originY;
}

void CRvRVLFormat::PlaceTile() {
  CRvRIFMemoryData& doc = CRvDataAccess::Instance().ActiveDocument();
  RVRECT rect{};
  Check(RvGiGetArtsBoundsByKey(&rect, m_currentKey.c_str()));
  if (m_param.drawTileFrames != 0) {
    for (const RVRECT& r : m_currentTile->rects) {
      if (IsEmpty(r)) continue;
      rect = IsEmpty(rect) ? r : Union(rect, r);
    }
  }
  if (m_param.expandDocument == 1) {
    // Each tile grows from the document box as it was before the job.
    if (!m_savedDocument) {
      doc.GetDocBoundBox(m_savedDocBox);
      doc.GetPlotBoundBox(m_savedPlotBox);
      m_savedDocument = true;
    }
    doc.SetDocBoundBox(GrowByMargins(m_param, m_savedDocBox));
    rect = GrowByMargins(m_param, rect);
  }
  doc.SetPlotBoundBox(rect);
  RVRIFMATRIX placement = BasePlacement(m_param, rect);
  ConcatJobOffsets(placement, m_param, rect);
  SetPlacement(placement, rect);
}

void CRvRVLFormat::WriteTileArts() {
  RefMapStore& maps = RefMapStore::Instance();
  const int16_t main = MainTable();
  const uint16_t cls = m_param.plotterClass;
  if (m_param.sortArts != 0) {
    if (plotter::IsMilling(cls)) {
      // Sorted tiles of a router go through the cutting writer.
      CRvArtSortByBounds sort(m_placement, m_param);
      Check(sort.SortByKey(m_progressContext, m_currentKey, 0));
      m_artTotal = int32_t(sort.size());
      sort.forEach(*this, CuttingWriterThunk);
    } else if (cls == 0) {
      CRvBlockBubbleSort sort(m_placement, m_param);
      Check(sort.SortByKey(m_progressContext, m_currentKey, 1));
      WriteSorted(sort);
    } else {
      CRvArtSortByBounds sort(m_placement, m_param);
      Check(sort.SortByKey(m_progressContext, m_currentKey, 1));
      WriteSorted(sort);
    }
    return;
  }
  maps.MatchTrace(main, m_currentKey, kRefMapOutput, true, [&](CRvArt* art, void*) {
    if ((art->AttrFlags() & kAttrExcluded) == 0) ++m_artTotal;
    return 0u;
  });
  Progress().BeginStage(m_progressContext);
  if (plotter::IsMilling(cls)) {
    maps.MatchTrace(main, m_currentKey, kRefMapOutput, false,
                    [&](CRvArt* art, void*) { return MillingWriterThunk(this, art); });
    return;
  }
  if (cls != 0) {
    std::vector<RVINSIDEPATH> collected;
    maps.CollectKeyArts(main, m_currentKey, collected);
    std::vector<RVINSIDEPATH> list = ClosedPathsOf(collected);
    InsidePass(list);
    if (!plotter::SkipsBothSides(cls)) {
      maps.MatchTrace(main, m_currentKey, kRefMapOutput, true,
                      [&](CRvArt* art, void*) { return EntryBothSidesCutInfo(this, art); });
    }
  }
  maps.MatchTrace(main, m_currentKey, kRefMapOutput, true,
                  [&](CRvArt* art, void*) { return CuttingWriterThunk(this, art); });
}

void CRvRVLFormat::WriteTileFrames() {
  const bool exchange = plotter::ExchangesXY(m_param.plotterClass);
  const double u = m_param.deviceUnit;
  for (const RVRECT& r : m_currentTile->rects) {
    if (IsEmpty(r)) continue;
    const RVPOINT p = Apply(m_flip, Apply(m_placement, RVPOINT{r.left, r.top}));
    const RVPOINT q = Apply(m_flip, Apply(m_placement, RVPOINT{r.right, r.bottom}));
    double a = p.x, b = p.y, c = q.x, d = q.y;
    if (exchange) {
      std::swap(a, b);
      std::swap(c, d);
    }
    std::string block;
    AppendRow(block, kRowMove, {d / u, a / u});
    AppendRow(block, kRowDraw, {d / u, c / u});
    AppendRow(block, kRowDraw, {b / u, c / u});
    AppendRow(block, kRowDraw, {b / u, a / u});
    AppendRow(block, kRowDraw, {d / u, a / u});
    AppendRow(block, kRowMove, {d / u, a / u});
    WriteBytes(block);
  }
}

void CRvRVLFormat::AdvanceOriginY() {
  const RVRECT& r = m_placementRect;
  const RVPOINT leftTop = Apply(m_placement, RVPOINT{r.left, r.top});
  const RVPOINT leftBottom = Apply(m_placement, RVPOINT{r.left, r.bottom});
  const RVPOINT rightBottom = Apply(m_placement, RVPOINT{r.right, r.bottom});
  // The quarter turns lay the tile's width along the second axis; any other
  // rotation leaves the job unturned.
  const bool turned = m_param.rotation == kQuarterTurn || m_param.rotation == kThreeQuarterTurn;
  const double extent = turned ? std::fabs(leftBottom.y - rightBottom.y) : std::fabs(leftTop.y - leftBottom.y);
  m_param.originY += extent + m_param.tileGap;
  if (m_param.drawFrame != 0) m_param.originY += 2.0 * m_param.frameMarginY;
}

}  // namespace rv
