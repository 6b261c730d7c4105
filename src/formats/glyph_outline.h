// Glyph outlines of installed fonts: the one platform step of the ITW import.
//
// The import draws a character of an installed outline font from its outline
// as a list of closed contours, each a start point and runs that are either
// straight or quadratic, in a cell whose em height is 5000 units, with points
// in 16.16 fixed point and y up from the baseline. CRvGlyphOutlines is that
// one operation; the installed fonts are reached through fontconfig (the face
// by family name) and FreeType (the outline), and the codes of characters
// travel as Shift-JIS, converted through iconv.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace rv {

/// The em height of the cell that outlines are given in.
constexpr int32_t kGlyphCellHeight = 5000;
/// A vertical face turns its glyphs a quarter turn counter-clockwise and moves
/// them so that the baseline of the upright glyph lies kGlyphAscent from the
/// top of the cell and kGlyphDescent from its bottom.
constexpr int32_t kGlyphAscent = 4305;
constexpr int32_t kGlyphDescent = 695;

/// A font name that begins with this names the vertical face of a family.
constexpr char kVerticalFaceMark = '@';

/// One unit in the 16.16 fixed point of outline points.
constexpr int32_t kGlyphFixedOne = 65536;

/// A point of an outline, 16.16 fixed point.
struct GlyphPoint {
  int32_t x = 0;
  int32_t y = 0;
};

/// A run of an outline. A straight run lists the ends of its lines. A
/// quadratic run lists control points, the last one on the curve.
struct GlyphRun {
  bool quadratic = false;
  std::vector<GlyphPoint> points;
};

/// One closed contour: its start and its runs; a contour whose last run
/// doesn't end at the start is closed by a straight line.
struct GlyphContour {
  GlyphPoint start;
  std::vector<GlyphRun> runs;
};

using GlyphOutline = std::vector<GlyphContour>;

/// The outline of a character of an installed font.
class CRvGlyphOutlines {
 public:
  virtual ~CRvGlyphOutlines() = default;
  /// Fills `out` with the outline of the character `shiftJisCode` (a single
  /// byte below 256, else lead byte and trail byte) of the face `fontName`
  /// (Shift-JIS text; a leading '@' asks for the vertical face of the family).
  /// False when no face or no glyph for the character is found; `out` is then
  /// empty. A glyph without contours (a space) gives true and no contours.
  virtual bool Outline(const std::string& fontName, uint16_t shiftJisCode, GlyphOutline& out) = 0;
};

/// The outlines of the fonts installed on this system. Faces found once are
/// kept for the life of the object.
std::unique_ptr<CRvGlyphOutlines> MakeInstalledGlyphOutlines();

/// A JIS X 0208 code (row and cell bytes 0x21 to 0x7E) as Shift-JIS; 0 for a
/// code outside the 94 by 94 area.
uint16_t JisToShiftJis(uint16_t jis);

}  // namespace rv
