// RvImCLToRIF: the working layer as the plot interpreter builds it, the
// result layer with one Bezier per path, the layer names, the documents that
// mode 0 replaces, and where the path element values go.
#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <tuple>
#include <vector>

#include "drawing_text.h"
#include "rvdataaccess.h"
#include "test_support.h"

namespace {

using rvtest::PointText;

/// Layer `index` of the active document (null when there is none).
void* LayerAt(int16_t index) {
  void* layer = nullptr;
  RvGiGetLayer(&layer, index);
  return layer;
}
int16_t LayerCount() {
  int16_t count = -1;
  RvGiGetLayerCount(&count);
  return count;
}

/// A layer as text: its name, then per path its components (type letter and
/// point count: "B7", "A1") and " closed" for a closed path, " |" between paths.
std::string LayerText(int16_t index) {
  void* layer = LayerAt(index);
  if (layer == nullptr) return "no layer";
  const rvtest::LayerReading reading = rvtest::ReadLayer(layer);
  std::string s = "[" + reading.name + "]";
  for (const rvtest::PathReading& path : reading.paths) {
    s += std::string(&path == &reading.paths.front() ? "" : " |") + " ";
    for (void* component : rvtest::Children(path.art)) {
      int16_t type = 0;
      int32_t count = 0;
      RvGiGetArtType(component, &type);
      RvGiGetPathSegmentCount(component, &count);
      s += (type == 2 ? "B" : type == 5 ? "A" : "?") + std::to_string(count);
    }
    if (path.closed == 1) s += " closed";
  }
  return s;
}

/// The anchors of the first Bezier of the first path of layer `index`.
std::string Anchors(int16_t index) {
  void* bezier = rvtest::Children(rvtest::Children(LayerAt(index)).at(0)).at(0);
  int32_t count = 0;
  RvGiGetPathSegmentCount(bezier, &count);
  std::string s;
  for (int32_t i = 0; i < count; ++i) {
    RVBEZIERPOINT p{};
    RvGiGetPathSegment(bezier, i, &p);
    s += (s.empty() ? "" : " ") + PointText(p.anchor.x, p.anchor.y);
  }
  return s;
}

struct ClImport {
  rvtest::TempDir dir;
  uint32_t Run(const std::string& commands, const char* layerName = nullptr, int16_t mode = 0,
               int16_t* index = nullptr) {
    const std::string file = dir.file("job.cl");
    rvtest::WriteFile(file, commands);
    int16_t own = -1;
    const double scale = 1.0;
    return RvImCLToRIF(file.c_str(), mode, index != nullptr ? index : &own, &scale, layerName);
  }
};

TEST(ClImport, ResultPathsHaveOneBezierWhileTheWorkingLayerKeepsItsArcs) {
  ClImport im;
  const std::vector<std::tuple<std::string, std::string, std::string>> rows = {
      // commands, result layer (index 0), working layer (index 1)
      // a circle is six pieces of 60 degrees: seven points, closed
      {"CI10;", "[CLPlotFileLayer] B7 closed", "[CLTempFileLayer] A1 closed"},
      // a line, an arc, a line: one Bezier; the joints stand twice
      {"PD10,0;AA10,10,90;PA0,20;", "[CLPlotFileLayer] B7", "[CLTempFileLayer] B2A1B2"},
      // two strokes stay two paths, in file order
      {"PD10,0;PU0,5;PD10,5,10,15;", "[CLPlotFileLayer] B2 | B3", "[CLTempFileLayer] B2 | B3"},
  };
  for (const auto& [commands, result, work] : rows) {
    SCOPED_TRACE(commands);
    ASSERT_EQ(im.Run(commands), 0u);
    EXPECT_EQ(LayerCount(), 2);
    EXPECT_EQ(LayerText(0), result);
    EXPECT_EQ(LayerText(1), work);
  }
  // The anchors of line, arc (two pieces of 45 degrees) and line.
  ASSERT_EQ(im.Run("PD10,0;AA10,10,90;PA0,20;"), 0u);
  EXPECT_EQ(Anchors(0), "0,0 10,0 10,0 17.071,2.929 20,10 20,10 0,20");
}

TEST(ClImport, ModeZeroReplacesEveryDocumentAndTheLayerIsNamedAsAsked) {
  ClImport im;
  int16_t index = -1;
  const std::vector<std::tuple<const char*, std::string>> names = {
      // layerName, name of the result layer
      {nullptr, "CLPlotFileLayer"},
      {"", ""},
      {"CLPlotFileLayer2", "CLPlotFileLayer2"},
  };
  for (const auto& [name, expected] : names) {
    ASSERT_EQ(im.Run("PD10,0;", name), 0u);
    char text[64] = {'?', 0};
    RvGiGetLayerName(LayerAt(0), text);
    EXPECT_EQ(std::string(text), expected);
  }
  // Three documents, then a mode 0 import of a file that isn't there: only
  // the new, empty document is left, and indexes start again at 0.
  for (int i = 0; i < 3; ++i) RvGiCreateDocument(0, &index);
  const double scale = 0.0;
  EXPECT_EQ(RvImCLToRIF(im.dir.file("missing.cl").c_str(), 0, &index, &scale, nullptr), 0x01000201u);
  EXPECT_EQ(index, 0);
  EXPECT_EQ(RvGiSetActiveDocument(1), 0x09001D01u);
  // Mode 1 adds to the document: two more layers in front of the old two.
  index = -1;
  ASSERT_EQ(im.Run("PD10,0;", "first", 0, &index), 0u);
  ASSERT_EQ(im.Run("CI5;", "second", 1, &index), 0u);
  EXPECT_EQ(LayerCount(), 4);
  EXPECT_EQ(LayerText(0), "[second] B7 closed");
  EXPECT_EQ(LayerText(2), "[first] B2");
  // A file that draws nothing: 1, and only the working layer.
  EXPECT_EQ(im.Run("PU;PA10,10;"), 1u);
  EXPECT_EQ(LayerText(0), "[CLTempFileLayer]");
  EXPECT_EQ(LayerText(1), "no layer");
}

TEST(ClImport, PathElementValuesComeFromPenUpMovesAndNeverReachTheResult) {
  ClImport im;
  // The first stroke is ended by a pen-up move, the second by the end of the
  // file.
  ASSERT_EQ(im.Run("JT17;VT0,1;PD10,0;PU20,0;PD30,0;"), 0u);
  auto values = [](int16_t layerIndex, std::size_t path) {
    void* art = rvtest::Children(LayerAt(layerIndex)).at(path);
    int16_t element = 9, value = 9;
    const uint32_t code = RvGiGetPathElementAtVCut(art, &element, &value);
    return code != 0 ? "code " + std::to_string(code) : std::to_string(element) + "," + std::to_string(value);
  };
  EXPECT_EQ(values(1, 0), "0,1");
  EXPECT_EQ(values(1, 1), "code " + std::to_string(0x06001001u));
  EXPECT_EQ(values(0, 0), "code " + std::to_string(0x06001001u));
  EXPECT_EQ(values(0, 1), "code " + std::to_string(0x06001001u));
  // The attribute flags do travel.
  EXPECT_EQ(rvtest::ReadLayer(LayerAt(0)).paths.at(0).flags, 7);
}

}  // namespace
