// Pictures of a drawing: the SVG's elements and coordinates and the view.
// (PNG pictures and pictures that can't be written: through the tool.)
#include <gtest/gtest.h>
#include <pugixml.hpp>

#include "failure.h"
#include "picture.h"

namespace {

using rvtool::PictureOptions;
using rvtool::Scene;
using rvtool::Stroke;

// Two cuts: a closed square (10,10)-(30,30) from (10,10), and an open line
// (40,10)-(40,30) from its top.
Scene TwoCuts() {
  Scene scene;
  scene.strokes = {Stroke{{{10, 10}, {30, 10}, {30, 30}, {10, 30}, {10, 10}}, true},
                   Stroke{{{40, 30}, {40, 10}}, false}};
  scene.bounds = rvtool::Bounds{10, 10, 40, 30, false};
  return scene;
}

TEST(ToolPicture, PictureTypeComesFromTheExtension) {
  EXPECT_EQ(rvtool::PictureTypeOf("a/b.svg"), rvtool::PictureType::Svg);
  EXPECT_EQ(rvtool::PictureTypeOf("B.PNG"), rvtool::PictureType::Png);
  EXPECT_THROW(rvtool::PictureTypeOf("svg"), rvtool::Failure);
}

TEST(ToolPicture, SvgHoldsCutsTravelStartsAndBoxInAViewWithAMargin) {
  PictureOptions options;
  options.title = "a <b> & c";
  pugi::xml_document doc;
  ASSERT_TRUE(doc.load_string(rvtool::SvgOfScene(TwoCuts(), options).c_str()));
  const pugi::xml_node root = doc.child("svg");
  EXPECT_STREQ(root.child_value("title"), "a <b> & c");
  // The view: the cuts (10..40 x 10..30) and the origin, so 0..40 x 0..30,
  // with a margin of 3 % of the larger extent (1.2) on every side.
  EXPECT_STREQ(root.attribute("viewBox").value(), "0 0 42.4 32.4");
  EXPECT_STREQ(root.attribute("width").value(), "42.4mm");
  using Texts = std::vector<std::string>;
  auto values = [&](const char* id, const char* element, const char* a, const char* b = nullptr) {
    Texts out;
    for (pugi::xml_node n : root.find_child_by_attribute("g", "id", id).children(element))
      out.push_back(n.attribute(a).value() + (b ? std::string(",") + n.attribute(b).value() : ""));
    return out;
  };
  // SVG x = x + 1.2, SVG y = 31.2 - y.
  EXPECT_EQ(values("cuts", "path", "d"),
            (Texts{"M11.2 21.2L31.2 21.2 31.2 1.2 11.2 1.2 11.2 21.2Z", "M41.2 1.2L41.2 21.2"}));
  EXPECT_STREQ(root.find_child_by_attribute("g", "id", "cuts").attribute("stroke").value(), "black");
  // Travel: origin to (10,10), then from the square's end (10,10) to (40,30).
  EXPECT_EQ(values("travel", "path", "d"), (Texts{"M1.2 31.2L11.2 21.2", "M11.2 21.2L41.2 1.2"}));
  EXPECT_TRUE(root.find_child_by_attribute("g", "id", "travel").attribute("stroke-dasharray"));
  EXPECT_EQ(values("starts", "circle", "cx", "cy"), (Texts{"11.2,21.2", "41.2,1.2"}));
  const pugi::xml_node box = root.find_child_by_attribute("rect", "id", "box");
  EXPECT_EQ(std::string(box.attribute("x").value()) + "," + box.attribute("y").value() + " " +
                box.attribute("width").value() + "x" + box.attribute("height").value(),
            "11.2,1.2 30x20");

  // Without travel the origin stays out: 10..40 x 10..30, margin 3 % of 30.
  // Nothing to cut: the origin, 1 mm at least, margin 3 % of 1.
  for (auto [scene, travel, viewBox] :
       {std::tuple{TwoCuts(), false, "0 0 31.8 21.8"}, std::tuple{Scene{}, true, "0 0 1.06 1.06"}}) {
    options.travel = travel;
    ASSERT_TRUE(doc.load_string(rvtool::SvgOfScene(scene, options).c_str()));
    EXPECT_STREQ(doc.child("svg").attribute("viewBox").value(), viewBox);
    EXPECT_EQ(!!doc.child("svg").find_child_by_attribute("g", "id", "travel"), travel);
    EXPECT_EQ(!!doc.child("svg").find_child_by_attribute("rect", "id", "box"), !scene.strokes.empty());
  }
}

}  // namespace
