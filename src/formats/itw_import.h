// ITW import: a layout of text frames and graphics, drawn into one new layer.
//
// The file holds a head, a table of fonts and a body of records. A text frame
// becomes a group with the frame's outline (four corners, or a ring sector
// when the frame is bulged), optional baselines, and one compound per
// character, drawn into the character's four-cornered cell from a stroke font
// (stroke_font.h), a symbol font, or an installed outline font
// (glyph_outline.h). A graphic record becomes a group with one path of
// straight, arc and spline runs. The file is read whole and parsed from
// memory, so tests and fuzz targets can feed bytes.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

#include "formats/byte_cursor.h"
#include "formats/file_frame.h"
#include "formats/glyph_outline.h"
#include "formats/stroke_font.h"
#include "rvdataaccess.h"

namespace rv {

class CRvArt;

/// The first two bytes of an ITW file ("IW"), and the mark of a font record.
constexpr uint16_t kItwFileMark = 22345;
constexpr uint16_t kItwFontMark = 40;
/// Record sizes.
constexpr std::size_t kItwHeadSize = 88;
constexpr std::size_t kItwFrameSize = 62;
constexpr std::size_t kItwCharacterSize = 60;
constexpr std::size_t kItwVertexSize = 24;
/// Font and file names of the font table are shorter than this.
constexpr std::size_t kItwNameLimit = 50;
/// The side of a character cell in stroke and outline units.
constexpr double kItwCellSide = 5000.0;
/// Lengths in the file are hundredths of the document unit.
constexpr double kItwUnit = 100.0;
/// Group mode of the stroke fonts drawn one compound per contour.
constexpr uint16_t kGroupPerContour = 65535;

/// A record of the font table.
struct ItwFont {
  uint16_t id = 0;
  uint16_t kind = 0;  // 0 stroke font, 1 installed font, any other symbol font
  std::string name;
  std::string file;
};

/// The four corners of a frame or a cell, in document units.
using ItwCorners = std::array<RVPOINT, 4>;

/// A character record.
struct ItwCharacter {
  uint16_t fontId = 0;
  ItwCorners cell{};
  uint16_t code = 0;
  uint16_t subNumber = 0;
  int32_t width = 0;   // hundredths
  int32_t height = 0;  // hundredths
  uint8_t rgb[3] = {0, 0, 0};
};

/// The point of a 5000 by 5000 cell at (x, y), mapped bilinearly onto the four
/// corners: c1 + (c2 - c1) u + (c4 - c1) v + (c1 - c2 + c3 - c4) u v.
RVPOINT MapToCell(const ItwCorners& corners, double x, double y);
/// Twice the signed area of the four corners.
double CornerArea(const ItwCorners& corners);
/// The code that a stroke font draws in vertical writing: codes 8482 to 8559,
/// 8560 to 8574 and 22 single codes have vertical forms; others stay.
uint16_t VerticalForm(uint16_t code);
/// The Shift-JIS code of an installed-font character: codes below 128 stay,
/// 30242 to 30589 go to the user-defined area, others are JIS codes (0 when
/// outside the 94 by 94 area).
uint16_t InstalledFontCode(uint16_t code);

/// The ITW format strategy: import only.
class CRvItwFormat : public CRvFormatStrategy {
 public:
  /// `fontFolder`, `userFontFolder`: folder names that end in a separator
  /// (null counts as empty). `fileByte`: receives the byte at offset 77 (may
  /// be null). `outlines`: the glyph outlines to use (null: the installed
  /// fonts).
  CRvItwFormat(const char* fontFolder, const char* userFontFolder, int16_t* fileByte,
               CRvGlyphOutlines* outlines = nullptr);
  ~CRvItwFormat() override;

  /// Opens the file and remembers its path for the whole read.
  uint32_t Open(const std::string& path, const std::string& mode) override;
  /// Reads the opened file whole and imports it (see ImportBytes).
  uint32_t ImportToRIF() override;
  /// 0x01001101: this format only reads.
  uint32_t ExportFromRIF(void* context) override;

  /// Imports an ITW file given as bytes into a new layer at the front of the
  /// active document. 0, 32 when a character was missing from its font (its
  /// cell is crossed), or the code of the failure.
  uint32_t ImportBytes(const uint8_t* data, std::size_t size);

 private:
  void ReadHead(ByteCursor& in);
  void ReadFontTable(ByteCursor& in, uint16_t count);
  void ReadRecord(ByteCursor& in);
  void ReadTextFrame(ByteCursor& in, uint16_t itemCount, const ItwCorners& corners, uint16_t horizontal,
                     int16_t bulge, bool vertical, bool horizontalLine);
  void ReadGraphic(ByteCursor& in, uint16_t itemCount, const ItwCorners& corners, const uint8_t* rgb,
                   bool vertical, bool horizontalLine);
  void DrawFramePath(CRvArt* path, const ItwCorners& corners, uint16_t horizontal, double t);
  void AddBaseline(CRvArt* group, const char* name, const RVPOINT& from, const RVPOINT& to);
  void ReadCharacter(ByteCursor& in, CRvArt* group, uint16_t horizontal);
  void DrawStrokeCharacter(CRvArt* group, const ItwCharacter& ch, const ItwFont& font);
  void DrawSymbolCharacter(CRvArt* group, const ItwCharacter& ch, const ItwFont& font);
  void DrawInstalledCharacter(CRvArt* group, const ItwCharacter& ch, const ItwFont& font);
  void DrawStrokes(CRvArt* group, const ItwCharacter& ch, const std::vector<uint8_t>& run, uint16_t groupMode);
  void DrawWarningCross(CRvArt* group);
  void SetLayerBounds();
  void SetColour(const uint8_t* rgb);
  void AddToBounds(const RVRECT& rect);
  CRvGlyphOutlines& Outlines();

  std::string m_path;
  std::string m_fontFolder;
  std::string m_userFontFolder;
  CRvArt* m_layer = nullptr;
  RVRECT m_bounds{};
  ItwCorners m_corners{};
  std::string m_colourName;
  RVCOLOR m_colour{};
  uint32_t m_warning = 0;
  int16_t* m_fileByte;
  std::vector<ItwFont> m_fonts;
  std::unordered_map<uint16_t, std::size_t> m_firstFontOf;  // font id -> index in m_fonts
  CRvStrokeFontFiles m_strokeFiles;
  CRvGlyphOutlines* m_outlines;
  std::unique_ptr<CRvGlyphOutlines> m_installedOutlines;
};

}  // namespace rv
