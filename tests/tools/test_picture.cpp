// Pictures of a drawing: the SVG's elements and coordinates, the PNG's
// structure and colours.
#include <gtest/gtest.h>
#include <pugixml.hpp>

#include <cmath>

#include "api_drawing.h"
#include "failure.h"
#include "geometry.h"
#include "picture.h"
#include "picture_check.h"
#include "test_support.h"

namespace {

using rvtool::PictureOptions;
using rvtool::Scene;
using rvtool::Stroke;

// Two cuts: a closed square (10,10)-(30,30) from (10,10), and an open line
// (40,10)-(40,30) from its top.
Scene TwoCuts() {
  Scene scene;
  Stroke square;
  square.closed = true;
  square.points = {{10, 10}, {30, 10}, {30, 30}, {10, 30}, {10, 10}};
  Stroke line;
  line.points = {{40, 30}, {40, 10}};
  scene.strokes = {square, line};
  for (const Stroke& s : scene.strokes)
    for (const RVPOINT& p : s.points) scene.bounds.Add(p);
  return scene;
}

TEST(ToolPicture, PictureTypeComesFromTheExtension) {
  EXPECT_EQ(rvtool::PictureTypeOf("a/b.svg"), rvtool::PictureType::Svg);
  EXPECT_EQ(rvtool::PictureTypeOf("B.PNG"), rvtool::PictureType::Png);
  EXPECT_THROW(rvtool::PictureTypeOf("b.jpg"), rvtool::Failure);
  EXPECT_THROW(rvtool::PictureTypeOf("svg"), rvtool::Failure);
}

TEST(ToolPicture, SvgHoldsCutsTravelStartsAndBox) {
  PictureOptions options;
  options.title = "a <b> & c";
  const std::string svg = rvtool::SvgOfScene(TwoCuts(), options);
  pugi::xml_document doc;
  ASSERT_TRUE(doc.load_string(svg.c_str())) << svg;
  pugi::xml_node root = doc.child("svg");
  ASSERT_TRUE(root);
  EXPECT_STREQ(root.child_value("title"), "a <b> & c");
  // The view: the cuts (10..40 x 10..30) and the origin, so 0..40 x 0..30,
  // with a margin of 3 % of the larger extent (1.2) on every side.
  EXPECT_STREQ(root.attribute("viewBox").value(), "0 0 42.4 32.4");
  EXPECT_STREQ(root.attribute("width").value(), "42.4mm");

  auto group = [&](const char* id) { return root.find_child_by_attribute("g", "id", id); };
  // SVG x = x + 1.2, SVG y = 31.2 - y.
  std::vector<std::string> cuts;
  for (pugi::xml_node p : group("cuts").children("path")) cuts.push_back(p.attribute("d").value());
  EXPECT_EQ(cuts, (std::vector<std::string>{"M11.2 21.2L31.2 21.2 31.2 1.2 11.2 1.2 11.2 21.2Z",
                                            "M41.2 1.2L41.2 21.2"}));
  EXPECT_STREQ(group("cuts").attribute("stroke").value(), "black");
  // Travel: origin to (10,10), then from the square's end (10,10) to (40,30).
  std::vector<std::string> travel;
  for (pugi::xml_node p : group("travel").children("path")) travel.push_back(p.attribute("d").value());
  EXPECT_EQ(travel, (std::vector<std::string>{"M1.2 31.2L11.2 21.2", "M11.2 21.2L41.2 1.2"}));
  EXPECT_TRUE(group("travel").attribute("stroke-dasharray"));
  std::vector<std::string> starts;
  for (pugi::xml_node c : group("starts").children("circle"))
    starts.push_back(std::string(c.attribute("cx").value()) + "," + c.attribute("cy").value());
  EXPECT_EQ(starts, (std::vector<std::string>{"11.2,21.2", "41.2,1.2"}));
  pugi::xml_node box = root.find_child_by_attribute("rect", "id", "box");
  ASSERT_TRUE(box);
  EXPECT_STREQ(box.attribute("x").value(), "11.2");
  EXPECT_STREQ(box.attribute("y").value(), "1.2");
  EXPECT_STREQ(box.attribute("width").value(), "30");
  EXPECT_STREQ(box.attribute("height").value(), "20");
}

TEST(ToolPicture, SvgWithoutTravelLeavesTheOriginOut) {
  PictureOptions options;
  options.travel = false;
  const std::string svg = rvtool::SvgOfScene(TwoCuts(), options);
  pugi::xml_document doc;
  ASSERT_TRUE(doc.load_string(svg.c_str()));
  EXPECT_FALSE(doc.child("svg").find_child_by_attribute("g", "id", "travel"));
  // 10..40 x 10..30 with a margin of 3 % of 30.
  EXPECT_STREQ(doc.child("svg").attribute("viewBox").value(), "0 0 31.8 21.8");
}

TEST(ToolPicture, EmptySceneStillGivesAPicture) {
  const std::string svg = rvtool::SvgOfScene(Scene{}, PictureOptions{});
  pugi::xml_document doc;
  ASSERT_TRUE(doc.load_string(svg.c_str()));
  EXPECT_FALSE(doc.child("svg").find_child_by_attribute("rect", "id", "box"));
  EXPECT_STREQ(doc.child("svg").attribute("viewBox").value(), "0 0 1.06 1.06");
}

TEST(ToolPicture, PngIsWellFormedSizedByTheDrawingAndShowsEveryKind) {
  rvtest::TempDir dir;
  const std::string path = dir.file("two.png");
  PictureOptions options;
  options.pixelWidth = 424;  // 10 pixels a millimetre over 42.4 mm
  rvtool::WritePicture(TwoCuts(), path, options);
  const tooltest::PngSummary png = tooltest::CheckPng(path);
  ASSERT_TRUE(png.valid) << png.problem;
  EXPECT_EQ(png.width, 424);
  EXPECT_EQ(png.height, 324);
  EXPECT_GT(png.black, 500);   // 60 mm of cuts at 10 pixels a millimetre
  EXPECT_GT(png.white, 424 * 324 / 2);
  EXPECT_GT(png.red, 20);      // two start marks
  EXPECT_GT(png.blue, 100);    // 50 mm of dashed travel
}

TEST(ToolPicture, PngOfAnApiDrawing) {
  tooltest::ApiDrawing drawing;
  rvtest::TempDir dir;
  const std::string path = dir.file("api.png");
  rvtool::WritePicture(rvtool::SceneOfActiveDocument(), path, PictureOptions{});
  const tooltest::PngSummary png = tooltest::CheckPng(path);
  ASSERT_TRUE(png.valid) << png.problem;
  EXPECT_EQ(png.width, 1200);
  EXPECT_GT(png.black, 1000);
}

TEST(ToolPicture, UnwritablePictureIsAnOutputFailure) {
  try {
    rvtool::WritePicture(TwoCuts(), "/nonexistent-folder/x.png", PictureOptions{});
    FAIL() << "no failure";
  } catch (const rvtool::Failure& failure) {
    EXPECT_EQ(failure.status(), rvtool::kOutputStatus);
    EXPECT_NE(std::string(failure.what()).find("/nonexistent-folder/x.png"), std::string::npos);
  }
  EXPECT_THROW(rvtool::WritePicture(TwoCuts(), "/nonexistent-folder/x.svg", PictureOptions{}),
               rvtool::Failure);
}

}  // namespace
