// Files of the test writer read by an independent CMX reader, cmx2raw: the
// same number of shapes with the same extents as the library's drawing.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <regex>
#include <string>
#include <vector>

#include "cmx_writer.h"
#include "model/data_access.h"
#include "test_support.h"

namespace {

using namespace cmxtest;
using rv::CRvArt;
using rv::CRvDataAccess;

constexpr double kMillimetresPerInch = 25.4;
constexpr double kTolerance = 0.01;  // mm; cmx2raw prints 4 decimals of an inch

struct Extent {
  double minX = 1e300, minY = 1e300, maxX = -1e300, maxY = -1e300;
  void Add(double x, double y) {
    minX = std::min(minX, x), maxX = std::max(maxX, x);
    minY = std::min(minY, y), maxY = std::max(maxY, y);
  }
  double Width() const { return maxX - minX; }
  double Height() const { return maxY - minY; }
};

// Per shape its width and height, sorted; the whole drawing last.
std::vector<std::pair<double, double>> Sizes(std::vector<Extent> shapes) {
  Extent all;
  std::vector<std::pair<double, double>> sizes;
  for (const Extent& e : shapes) {
    sizes.emplace_back(e.Width(), e.Height());
    all.Add(e.minX, e.minY), all.Add(e.maxX, e.maxY);
  }
  // Sorted on a grid coarser than the readers' rounding, so equal sizes tie.
  std::sort(sizes.begin(), sizes.end(), [](const auto& a, const auto& b) {
    return std::pair(std::lround(a.first * 10), std::lround(a.second * 10)) <
           std::pair(std::lround(b.first * 10), std::lround(b.second * 10));
  });
  sizes.emplace_back(all.Width(), all.Height());
  return sizes;
}

// cmx2raw's shapes: one drawPath line each, coordinates in inches.
std::vector<Extent> ReaderShapes(const std::string& path) {
  std::unique_ptr<FILE, int (*)(FILE*)> pipe(popen(("cmx2raw '" + path + "' 2>/dev/null").c_str(), "r"), &pclose);
  std::vector<Extent> shapes;
  if (!pipe) return shapes;
  std::string out;
  char buffer[4096];
  while (std::fgets(buffer, sizeof buffer, pipe.get()) != nullptr) out += buffer;
  const std::regex coordinate(R"(svg:([xy])[12]?: (-?[0-9.]+)in)");
  std::size_t start = 0;
  while ((start = out.find("drawPath", start)) != std::string::npos) {
    const std::size_t end = out.find('\n', start);
    const std::string line = out.substr(start, end - start);
    Extent e;
    std::vector<double> xs, ys;
    for (std::sregex_iterator it(line.begin(), line.end(), coordinate), last; it != last; ++it) {
      ((*it)[1] == "x" ? xs : ys).push_back(std::stod((*it)[2]) * kMillimetresPerInch);
    }
    for (std::size_t i = 0; i < std::min(xs.size(), ys.size()); ++i) e.Add(xs[i], ys[i]);
    shapes.push_back(e);
    start = end;
  }
  return shapes;
}

// The library's shapes: every path or compound that isn't inside a compound
// (`shapes` has room reserved, so that `shape` stays valid).
void CollectShapes(CRvArt* art, std::vector<Extent>& shapes, Extent* shape) {
  CRvDataAccess& store = CRvDataAccess::Instance();
  const int16_t type = store.GetArtType(art);
  if (type == rv::kArtBezier) {
    for (int32_t i = 0; i < store.GetPathSegmentCount(art); ++i) {
      const RVBEZIERPOINT b = store.GetBezierPoint(art, i);
      for (const RVPOINT& p : {b.anchor, b.in, b.out}) shape->Add(p.x, p.y);
    }
    return;
  }
  if (shape == nullptr && (type == rv::kArtPath || type == rv::kArtCompound)) {
    shapes.emplace_back();
    shape = &shapes.back();
  }
  for (CRvArt* c = store.GetArtFirstChild(art); c; c = store.GetArtSibling(c)) CollectShapes(c, shapes, shape);
}

std::vector<Extent> LibraryShapes(const std::string& path) {
  std::vector<Extent> shapes;
  int16_t index = -1;
  if (RvImCMXToRIF(path.c_str(), 0, &index, nullptr) != 0) return shapes;
  CRvDataAccess& store = CRvDataAccess::Instance();
  shapes.reserve(1000);
  for (int16_t i = 0; i < store.GetLayerCount(); ++i) CollectShapes(store.GetLayer(i), shapes, nullptr);
  return shapes;
}

File Curves() {
  File f;
  f.right = 1000000, f.top = 800000;
  Layer layer("curves");
  layer.Add(BeginLayer("curves"));
  layer.Add(PolyCurve({{100000, 100000, kClosedMove}, {300000, 100000, kLine}, {300000, 250000, kLine}},
                      Box(100000, 250000, 300000, 100000)));
  layer.Add(PolyCurve({{400000, 400000, kMove}, {500000, 400000, kLine}, {600000, 600000, kMove},
                       {650000, 700000, kControl}, {800000, 720000, kControl}, {900000, 600000, kCurve},
                       {900000, 500000, kLine}},
                      Box(400000, 720000, 900000, 400000)));
  layer.Add(EndLayer());
  f.pages.push_back(Page{1, {layer}});
  return f;
}

File RectanglesInGroups() {
  File f;
  f.left = -200000, f.bottom = -100000, f.right = 800000, f.top = 700000;
  Layer layer("boxes");
  layer.Add(BeginLayer("boxes")).Add(BeginGroup(Box(0, 500000, 600000, 0)));
  layer.Add(Rectangle(100000, 100000, 50001, 30000)).Add(BeginGroup(Box(0, 500000, 600000, 0)));
  layer.Add(Rectangle(400000, 300000, 200000, 400000)).Add(EndGroup()).Add(EndGroup());
  layer.Add(Rectangle(-100000, 600000, 60000, 60000)).Add(EndLayer());
  f.pages.push_back(Page{1, {layer}});
  return f;
}

TEST(CmxIndependentReader, SeesTheShapesOfTheLibrary) {
  if (std::system("command -v cmx2raw >/dev/null 2>&1") != 0) GTEST_SKIP() << "cmx2raw (libcdr-tools) isn't installed";
  rvtest::TempDir dir;
  std::vector<std::string> paths = {std::string(RV_SAMPLES_DIR) + "/shapes.cmx"};
  for (const auto& [name, file] : {std::pair{"curves.cmx", Curves()}, std::pair{"boxes.cmx", RectanglesInGroups()}}) {
    ASSERT_TRUE(rvtest::WriteFile(dir.file(name), file.Build()));
    paths.push_back(dir.file(name));
  }
  if (const char* samples = std::getenv("RV_CMX_WRITE_SAMPLE")) {
    File both = Curves();
    both.pages[0].layers.push_back(RectanglesInGroups().pages[0].layers[0]);
    rvtest::WriteFile(samples, both.Build());
  }
  for (const std::string& path : paths) {
    const auto reader = Sizes(ReaderShapes(path));
    const auto library = Sizes(LibraryShapes(path));
    ASSERT_GT(reader.size(), 2u) << path;
    ASSERT_EQ(reader.size(), library.size()) << path;
    for (std::size_t i = 0; i < reader.size(); ++i) {
      EXPECT_NEAR(reader[i].first, library[i].first, kTolerance) << path << " shape " << i;
      EXPECT_NEAR(reader[i].second, library[i].second, kTolerance) << path << " shape " << i;
    }
  }
}

}  // namespace
