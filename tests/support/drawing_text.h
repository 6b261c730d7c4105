// A drawing read back through the exported API and written as text, so that
// import and generator tests compare rows of input and expected text.
//
// A Bezier component reads "B(x,y x,y ...)", with "{in;out}" behind an anchor
// whose handles lie elsewhere; an arc component "A(from>to@centre:sweep+ ...)"
// with '-' for clockwise; numbers have ten significant digits.
#pragma once

#include <cfloat>
#include <cstdint>
#include <string>
#include <vector>

#include "rvdataaccess.h"

namespace rvtest {

/// A number as the tests write it: ten significant digits, no "-0".
std::string Num(double v);
inline std::string PointText(double x, double y) { return Num(x) + "," + Num(y); }

/// The children of `art`, walked with first child and siblings (at most
/// 1 000 000, so that a broken sibling chain ends the walk).
std::vector<void*> Children(void* art);

/// One component (Bezier or arc) as text.
std::string ComponentText(void* component);
/// The components of a path as text, one space between two.
std::string ShapeOf(void* path);

/// What a test wants to know of one path.
struct PathReading {
  void* art = nullptr;
  std::string shape;  ///< ShapeOf
  int32_t closed = -1, points = 0;
  RVRECT bounds{};
  uint8_t flags = 0;
  std::string strokeName;  ///< the name of the stroke colour ("None" without one)
  RVCOLOR stroke{};
  int32_t strokeFound = 0;
  int16_t vcutElement = 0, vcutValue = 0;
};

/// The paths of a layer in their order; compounds and groups are entered.
struct LayerReading {
  std::string name;
  std::vector<PathReading> paths;
  RVRECT extent{-DBL_MAX, DBL_MAX, -DBL_MAX, DBL_MAX};  ///< union of the path bounds
  int32_t points = 0;
  int32_t compounds = 0, groups = 0;

  /// Every path's shape, " closed" behind a closed one, " | " between two.
  std::string Shapes() const;
};

LayerReading ReadLayer(void* layer);

/// The tree below `art` as text: one line per art, indented by depth,
/// "group", "compound" or "path [closed] SHAPE".
std::string TreeText(void* art);

}  // namespace rvtest
