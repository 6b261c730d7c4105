// The generators on a page of shapes: hatching and contour of 1000 closed
// shapes of 200 points each, beside the same ClipperLib calls made directly
// on the same polygons (the floor that the generators' own work adds to).
// The shapes are wobbly rings of 4 mm in a grid 10 mm apart.
#include <benchmark/benchmark.h>
#include <polyclipping/clipper.hpp>

#include <cmath>
#include <vector>

#include "rvdataaccess.h"

namespace {

constexpr int kColumns = 40;
constexpr double kPitch = 0.5;
constexpr double kContourOffset = -1.0;  // steps of 0.9 mm

std::vector<std::vector<RVPOINT>> Shapes(int count, int points) {
  std::vector<std::vector<RVPOINT>> shapes;
  for (int s = 0; s < count; ++s) {
    const double cx = 10.0 * (s % kColumns), cy = 10.0 * (s / kColumns);
    std::vector<RVPOINT> shape;
    for (int i = 0; i < points; ++i) {
      const double t = 2 * M_PI * i / points;
      const double r = 4.0 + 0.4 * std::sin(7 * t + s);
      shape.push_back({cx + r * std::cos(t), cy + r * std::sin(t)});
    }
    shapes.push_back(std::move(shape));
  }
  return shapes;
}

// A fresh document whose work layer holds the shapes; one table serves as
// the current table and as the table of hatching plots.
int16_t FillWorkLayer(const std::vector<std::vector<RVPOINT>>& shapes) {
  RvGiDeleteRefMapTable();
  RvGiDeleteAllDocuments();
  int16_t document = -1, map = -1;
  void* work = nullptr;
  RvGiCreateDocument(0, &document);
  RvGiCreateLayer(1, nullptr, &work);
  RvGiSetLayerName(work, "Rivlen_HatchingWorkLayer");
  RvGiCreateRefMapTable(&map);
  RvGiSetRefMapIndex(map);
  RvGiSetRefMapHatchingPlotIndex(map);
  for (const auto& shape : shapes) {
    void* path = nullptr;
    void* bezier = nullptr;
    RvGiCreateArt(4, 5, work, &path);
    RvGiCreateArt(2, 5, path, &bezier);
    for (std::size_t i = 0; i <= shape.size(); ++i) {
      RVBEZIERPOINT p{};
      p.anchor = p.in = p.out = shape[i % shape.size()];
      RvGiAddBezierPoint(bezier, &p);
    }
    RvGiSetPathClosed(path, 1);
    RvGiSetPathAttrFlag(path, 7);
    RvGiSetPathPlotInfo(path, 0, "B");
  }
  return document;
}

ClipperLib::Paths GridPaths(const std::vector<std::vector<RVPOINT>>& shapes) {
  ClipperLib::Paths paths;
  for (const auto& shape : shapes) {
    ClipperLib::Path path;
    for (const RVPOINT& p : shape) path.emplace_back(ClipperLib::cInt(p.x * 1000.0), ClipperLib::cInt(p.y * 1000.0));
    paths.push_back(std::move(path));
  }
  return paths;
}

void BM_Hatching(benchmark::State& state) {
  const auto shapes = Shapes(int(state.range(0)), 200);
  RVHATCHINGINFO info;
  RvInitializeHatchingInfo(&info);
  info.pitch = kPitch;
  for (auto _ : state) {
    state.PauseTiming();
    int16_t document = FillWorkLayer(shapes);
    state.ResumeTiming();
    if (RvCreateHatching(&document, &info) != 0) state.SkipWithError("hatching failed");
  }
  state.SetComplexityN(state.range(0));
}

// The floor: the offset at 0 and the clip of the same line stack.
void BM_HatchingClipperFloor(benchmark::State& state) {
  const ClipperLib::Paths paths = GridPaths(Shapes(int(state.range(0)), 200));
  for (auto _ : state) {
    ClipperLib::ClipperOffset offset(2.0, 0.25);
    offset.AddPaths(paths, ClipperLib::jtSquare, ClipperLib::etClosedPolygon);
    ClipperLib::PolyTree shapesTree;
    offset.Execute(shapesTree, 0.0);
    ClipperLib::Paths outlines;
    ClipperLib::PolyTreeToPaths(shapesTree, outlines);
    ClipperLib::Clipper clipper;
    clipper.AddPaths(outlines, ClipperLib::ptClip, true);
    const ClipperLib::IntRect box = clipper.GetBounds();  // top is the smaller y here
    const ClipperLib::cInt step = ClipperLib::cInt(kPitch * 1000.0);
    for (ClipperLib::cInt y = box.top + step / 2; y < box.bottom; y += step) {
      clipper.AddPath({{box.left, y}, {box.right, y}}, ClipperLib::ptSubject, false);
    }
    ClipperLib::PolyTree lines;
    clipper.Execute(ClipperLib::ctIntersection, lines, ClipperLib::pftNonZero, ClipperLib::pftNonZero);
    benchmark::DoNotOptimize(lines.Total());
  }
  state.SetComplexityN(state.range(0));
}

void BM_Contour(benchmark::State& state) {
  const auto shapes = Shapes(int(state.range(0)), 200);
  RVCONTOURINFO info;
  RvInitializeContourInfo(&info);
  info.offset = kContourOffset;
  info.cornerLines = 0;
  for (auto _ : state) {
    state.PauseTiming();
    int16_t document = FillWorkLayer(shapes);
    state.ResumeTiming();
    if (RvCreateContour(&document, &info) != 0) state.SkipWithError("contour failed");
  }
  state.SetComplexityN(state.range(0));
}

// The floor: for each echo, the normalising offset at 0 and the shrink.
void BM_ContourClipperFloor(benchmark::State& state) {
  const ClipperLib::Paths paths = GridPaths(Shapes(int(state.range(0)), 200));
  const double step = (kContourOffset + 0.1) * 1000.0;
  for (auto _ : state) {
    for (int level = 1;; ++level) {
      ClipperLib::ClipperOffset offset(2.0, 0.25);
      offset.AddPaths(paths, ClipperLib::jtSquare, ClipperLib::etClosedPolygon);
      ClipperLib::PolyTree tree;
      offset.Execute(tree, 0.0);
      offset.Clear();
      for (ClipperLib::PolyNode* node = tree.GetFirst(); node != nullptr; node = node->GetNext()) {
        offset.AddPath(node->Contour, ClipperLib::jtSquare, ClipperLib::etClosedPolygon);
      }
      tree.Clear();
      offset.Execute(tree, step * level);
      if (tree.GetFirst() == nullptr) break;
    }
  }
  state.SetComplexityN(state.range(0));
}

BENCHMARK(BM_Hatching)->Arg(250)->Arg(1000)->Unit(benchmark::kMillisecond)->Complexity();
BENCHMARK(BM_HatchingClipperFloor)->Arg(250)->Arg(1000)->Unit(benchmark::kMillisecond)->Complexity();
BENCHMARK(BM_Contour)->Arg(250)->Arg(1000)->Unit(benchmark::kMillisecond)->Complexity();
BENCHMARK(BM_ContourClipperFloor)->Arg(250)->Arg(1000)->Unit(benchmark::kMillisecond)->Complexity();

}  // namespace
