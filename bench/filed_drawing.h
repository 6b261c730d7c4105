// A drawing for the export and sort benchmarks: a new document with one
// layer and a main RefMap table, and open paths of straight segments filed
// in it.
#pragma once

#include <cstdint>

#include "rvdataaccess.h"

namespace rvbench {

struct FiledDrawing {
  int16_t document = -1;
  int16_t map = -1;
  void* layer = nullptr;
};

/// Creates the document, its layer and a RefMap table made the main one.
inline FiledDrawing NewFiledDrawing() {
  FiledDrawing d;
  RvGiCreateDocument(0, &d.document);
  RvGiCreateLayer(1, nullptr, &d.layer);
  RvGiCreateRefMapTable(&d.map);
  RvGiSetRefMapIndex(d.map);
  return d;
}

/// Adds an open path through `count` records, for output (flag 2), with
/// bounds `box`, filed under `key`.
inline void AddFiledPath(const FiledDrawing& d, const char* key, const RVBEZIERPOINT* points, int count,
                         const RVRECT& box) {
  void* path = nullptr;
  void* bezier = nullptr;
  RvGiCreateArt(4, 5, d.layer, &path);
  RvGiCreateArt(2, 5, path, &bezier);
  for (int i = 0; i < count; ++i) RvGiAddBezierPoint(bezier, &points[i]);
  RvGiSetPathAttrFlag(path, 2);
  RvGiSetBoundingBox(path, &box);
  RvGiAddRefMapData(d.map, key, 2, path);
}

}  // namespace rvbench
