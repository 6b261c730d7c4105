#include "formats/glyph_outline.h"

#include <fontconfig/fontconfig.h>
#include <ft2build.h>
#include FT_FREETYPE_H
#include FT_OUTLINE_H
#include <iconv.h>

#include <cerrno>
#include <map>
#include <utility>

namespace rv {

namespace {

constexpr int64_t kFixedOne = kGlyphFixedOne;
constexpr uint8_t kJisFirst = 0x21;
constexpr uint8_t kJisLast = 0x7E;
constexpr uint8_t kEucHigh = 0x80;

/// One iconv conversion, closed with its owner.
class Converter {
 public:
  Converter(const char* to, const char* from) : m_handle(iconv_open(to, from)) {}
  ~Converter() {
    if (Valid()) iconv_close(m_handle);
  }
  Converter(const Converter&) = delete;
  Converter& operator=(const Converter&) = delete;

  bool Valid() const { return m_handle != reinterpret_cast<iconv_t>(-1); }

  /// Converts all of `in`; false when a byte can't be converted.
  bool Convert(const std::string& in, std::string& out) const {
    out.clear();
    if (!Valid()) return false;
    iconv(m_handle, nullptr, nullptr, nullptr, nullptr);  // back to the initial state
    std::string source = in;
    char* inPtr = source.data();
    std::size_t inLeft = source.size();
    char buffer[256];
    while (inLeft > 0) {
      char* outPtr = buffer;
      std::size_t outLeft = sizeof buffer;
      const std::size_t done = iconv(m_handle, &inPtr, &inLeft, &outPtr, &outLeft);
      out.append(buffer, std::size_t(outPtr - buffer));
      if (done == std::size_t(-1) && errno != E2BIG) return false;
    }
    char* outPtr = buffer;
    std::size_t outLeft = sizeof buffer;
    if (iconv(m_handle, nullptr, nullptr, &outPtr, &outLeft) == std::size_t(-1)) return false;
    out.append(buffer, std::size_t(outPtr - buffer));
    return true;
  }

 private:
  iconv_t m_handle;
};

/// The Shift-JIS code as the bytes it stands for.
std::string ShiftJisBytes(uint16_t code) {
  if (code < 0x100) return std::string(1, char(code));
  return std::string{char(code >> 8), char(code & 0xFF)};
}

/// Collects the contours of one FreeType outline, scaled to the cell.
class OutlineCollector {
 public:
  OutlineCollector(int64_t unitsPerEm, bool vertical) : m_unitsPerEm(unitsPerEm), m_vertical(vertical) {}

  bool Collect(FT_Outline& outline) {
    FT_Outline_Funcs funcs{};
    funcs.move_to = &MoveTo;
    funcs.line_to = &LineTo;
    funcs.conic_to = &ConicTo;
    funcs.cubic_to = &CubicTo;
    return FT_Outline_Decompose(&outline, &funcs, this) == 0;
  }
  GlyphOutline Take() { return std::move(m_outline); }

 private:
  GlyphPoint Scale(const FT_Vector* v) const {
    const int64_t x = int64_t(v->x) * kGlyphCellHeight * kFixedOne / m_unitsPerEm;
    const int64_t y = int64_t(v->y) * kGlyphCellHeight * kFixedOne / m_unitsPerEm;
    if (!m_vertical) return GlyphPoint{int32_t(x), int32_t(y)};
    // The quarter turn of a vertical face, with its baseline moved.
    return GlyphPoint{int32_t(kGlyphAscent * kFixedOne - y), int32_t(x - kGlyphDescent * kFixedOne)};
  }
  GlyphRun& Run(bool quadratic) {
    std::vector<GlyphRun>& runs = m_outline.back().runs;
    if (quadratic || runs.empty() || runs.back().quadratic) runs.push_back(GlyphRun{quadratic, {}});
    return runs.back();
  }
  static OutlineCollector& Self(void* user) { return *static_cast<OutlineCollector*>(user); }
  static int MoveTo(const FT_Vector* to, void* user) {
    OutlineCollector& self = Self(user);
    self.m_outline.push_back(GlyphContour{self.Scale(to), {}});
    return 0;
  }
  static int LineTo(const FT_Vector* to, void* user) {
    OutlineCollector& self = Self(user);
    if (self.m_outline.empty()) return 1;
    self.Run(false).points.push_back(self.Scale(to));
    return 0;
  }
  // A quadratic piece is a run of its own: one control point and its end.
  static int ConicTo(const FT_Vector* control, const FT_Vector* to, void* user) {
    OutlineCollector& self = Self(user);
    if (self.m_outline.empty()) return 1;
    self.Run(true).points = {self.Scale(control), self.Scale(to)};
    return 0;
  }
  // A cubic piece (outline fonts of the PostScript kind) becomes a run of
  // exactly three points, which the import draws as one piece.
  static int CubicTo(const FT_Vector* c1, const FT_Vector* c2, const FT_Vector* to, void* user) {
    OutlineCollector& self = Self(user);
    if (self.m_outline.empty()) return 1;
    self.Run(true).points = {self.Scale(c1), self.Scale(c2), self.Scale(to)};
    return 0;
  }

  int64_t m_unitsPerEm;
  bool m_vertical;
  GlyphOutline m_outline;
};

class CRvInstalledOutlines : public CRvGlyphOutlines {
 public:
  CRvInstalledOutlines() : m_toUtf8("UTF-8", "CP932"), m_toUnicode("UTF-32LE", "CP932") {
    if (FT_Init_FreeType(&m_library) != 0) m_library = nullptr;
  }
  ~CRvInstalledOutlines() override {
    for (auto& [key, face] : m_faces) {
      if (face != nullptr) FT_Done_Face(face);
    }
    if (m_library != nullptr) FT_Done_FreeType(m_library);
  }
  CRvInstalledOutlines(const CRvInstalledOutlines&) = delete;
  CRvInstalledOutlines& operator=(const CRvInstalledOutlines&) = delete;

  bool Outline(const std::string& fontName, uint16_t shiftJisCode, GlyphOutline& out) override {
    out.clear();
    const bool vertical = !fontName.empty() && fontName[0] == kVerticalFaceMark;
    FT_Face face = Face(vertical ? fontName.substr(1) : fontName);
    const uint32_t unicode = ToUnicode(shiftJisCode);
    if (face == nullptr || unicode == 0) return false;
    const FT_UInt glyph = FT_Get_Char_Index(face, unicode);
    if (glyph == 0 || face->units_per_EM == 0) return false;
    if (FT_Load_Glyph(face, glyph, FT_LOAD_NO_SCALE | FT_LOAD_NO_BITMAP | FT_LOAD_NO_HINTING) != 0) return false;
    if (face->glyph->format != FT_GLYPH_FORMAT_OUTLINE) return false;
    OutlineCollector collector(face->units_per_EM, vertical);
    if (!collector.Collect(face->glyph->outline)) return false;
    out = collector.Take();
    return true;
  }

 private:
  /// The face of the family `name`, or the one that fontconfig offers in its
  /// place (preferring faces with Japanese glyphs); null when none opens.
  FT_Face Face(const std::string& name) {
    auto known = m_names.find(name);
    if (known != m_names.end()) return known->second;
    FT_Face face = OpenFace(name);
    m_names.emplace(name, face);
    return face;
  }

  FT_Face OpenFace(const std::string& name) {
    if (m_library == nullptr) return nullptr;
    std::string family;
    if (!m_toUtf8.Convert(name, family)) family = name;
    FcPattern* pattern = FcPatternCreate();
    if (pattern == nullptr) return nullptr;
    FcPatternAddString(pattern, FC_FAMILY, reinterpret_cast<const FcChar8*>(family.c_str()));
    FcPatternAddString(pattern, FC_LANG, reinterpret_cast<const FcChar8*>("ja"));
    FcPatternAddBool(pattern, FC_SCALABLE, FcTrue);
    FcConfigSubstitute(nullptr, pattern, FcMatchPattern);
    FcDefaultSubstitute(pattern);
    FcResult result = FcResultNoMatch;
    FcPattern* match = FcFontMatch(nullptr, pattern, &result);
    FcPatternDestroy(pattern);
    if (match == nullptr) return nullptr;
    FcChar8* file = nullptr;
    int index = 0;
    std::pair<std::string, int> key;
    const bool found = FcPatternGetString(match, FC_FILE, 0, &file) == FcResultMatch;
    if (found) {
      FcPatternGetInteger(match, FC_INDEX, 0, &index);
      key = {reinterpret_cast<const char*>(file), index};
    }
    FcPatternDestroy(match);
    if (!found) return nullptr;
    auto open = m_faces.find(key);
    if (open != m_faces.end()) return open->second;
    FT_Face face = nullptr;
    if (FT_New_Face(m_library, key.first.c_str(), key.second, &face) != 0) face = nullptr;
    m_faces.emplace(key, face);
    return face;
  }

  uint32_t ToUnicode(uint16_t shiftJisCode) const {
    std::string utf32;
    if (!m_toUnicode.Convert(ShiftJisBytes(shiftJisCode), utf32) || utf32.size() != 4) return 0;
    const auto* b = reinterpret_cast<const uint8_t*>(utf32.data());
    return uint32_t(b[0]) | (uint32_t(b[1]) << 8) | (uint32_t(b[2]) << 16) | (uint32_t(b[3]) << 24);
  }

  FT_Library m_library = nullptr;
  Converter m_toUtf8;
  Converter m_toUnicode;
  std::map<std::string, FT_Face> m_names;                 // family name -> face (not owned)
  std::map<std::pair<std::string, int>, FT_Face> m_faces;  // font file and index -> face (owned)
};

/// The arithmetic form of the conversion, for codes that iconv has no
/// character for (empty places of the 94 by 94 area).
uint16_t JisToShiftJisByRule(uint8_t row, uint8_t cell) {
  const unsigned lead = ((row + 1u) >> 1) + (row <= 0x5E ? 0x70u : 0xB0u);
  unsigned trail = cell + ((row & 1u) != 0 ? (cell >= 0x60 ? 0x20u : 0x1Fu) : 0x7Eu);
  return uint16_t((lead << 8) | trail);
}

}  // namespace

std::unique_ptr<CRvGlyphOutlines> MakeInstalledGlyphOutlines() { return std::make_unique<CRvInstalledOutlines>(); }

uint16_t JisToShiftJis(uint16_t jis) {
  const uint8_t row = uint8_t(jis >> 8);
  const uint8_t cell = uint8_t(jis & 0xFF);
  if (row < kJisFirst || row > kJisLast || cell < kJisFirst || cell > kJisLast) return 0;
  const Converter toShiftJis("CP932", "EUC-JP");
  std::string out;
  const std::string euc{char(row | kEucHigh), char(cell | kEucHigh)};
  if (toShiftJis.Convert(euc, out) && out.size() == 2) {
    return uint16_t((uint8_t(out[0]) << 8) | uint8_t(out[1]));
  }
  return JisToShiftJisByRule(row, cell);
}

}  // namespace rv
