// Writers of ITW layouts and stroke font files for the tests, after the byte
// layouts of the formats (all integers little-endian).
#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace rvtest {

/// Little-endian bytes.
struct Bytes {
  std::string b;
  Bytes& u8(unsigned v) { b += char(v & 0xFF); return *this; }
  Bytes& u16(unsigned v) { return u8(v).u8(v >> 8); }
  Bytes& i16(int v) { return u16(unsigned(v) & 0xFFFF); }
  Bytes& u32(uint32_t v) { return u16(v & 0xFFFF).u16(v >> 16); }
  Bytes& i32(int32_t v) { return u32(uint32_t(v)); }
  Bytes& zeros(std::size_t n) { b.append(n, '\0'); return *this; }
  Bytes& text(const std::string& s) { b += s; return *this; }
};

/// Four corners in hundredths: c1 to c4.
using Corners = std::vector<std::pair<int32_t, int32_t>>;

struct ItwFontRecord {
  unsigned id = 1, kind = 0;
  std::string name, file;
};

/// The head and the font table.
inline Bytes ItwHead(const std::vector<ItwFontRecord>& fonts, unsigned fileByte = 7) {
  Bytes out;
  out.u16(22345).zeros(75).u8(fileByte).u16(unsigned(fonts.size())).zeros(8);
  for (const ItwFontRecord& f : fonts) {
    out.u16(40).zeros(2).u16(f.id).u16(f.kind);
    out.u8(unsigned(f.name.size())).text(f.name).u8(unsigned(f.file.size())).text(f.file);
  }
  return out;
}

/// A frame record: kind 0xFFFF for a graphic record, else a text frame.
inline void ItwFrame(Bytes& out, unsigned itemCount, const Corners& c, unsigned kind, unsigned horizontal,
                     bool verticalLine, bool horizontalLine, int bulge, uint32_t colour = 0) {
  out.zeros(2).u16(itemCount);
  for (const auto& [x, y] : c) out.i32(x).i32(y);
  out.u32(colour).u16(kind).u16(horizontal).zeros(14).u8(verticalLine).u8(horizontalLine).i16(bulge);
}

inline void ItwCharacter(Bytes& out, unsigned fontId, const Corners& cell, unsigned code, unsigned subNumber,
                         int32_t width, int32_t height, unsigned r = 0, unsigned g = 0, unsigned b = 0) {
  out.zeros(2).u16(fontId);
  for (const auto& [x, y] : cell) out.i32(x).i32(y);
  out.u16(code).u16(subNumber).zeros(4).i32(width).i32(height).u8(r).u8(g).u8(b).zeros(5);
}

inline void ItwVertex(Bytes& out, unsigned op, int direction, int32_t x, int32_t y, int32_t cx = 0, int32_t cy = 0) {
  out.u16(op).i16(direction).i32(x).i32(y).i32(cx).i32(cy).i32(0);
}

/// One step of stroke data; arcs (op 2) take a centre and a direction.
struct Stroke {
  unsigned op;
  int x, y, cx = 0, cy = 0, direction = 0;
};

/// A stroke font: characters by code (and sub-number and flags for the wide
/// index). Writes the index and data files.
struct StrokeFontWriter {
  struct Glyph {
    unsigned code;
    int flags;
    std::vector<Stroke> steps;
  };
  std::vector<Glyph> glyphs;

  static std::string Run(const std::vector<Stroke>& steps) {
    Bytes run;
    for (const Stroke& s : steps) {
      run.u16(s.op).i16(s.x).i16(s.y);
      if (s.op == 2) run.i16(s.cx).i16(s.cy).i16(s.direction);
    }
    run.u16(0).i16(0).i16(0);
    return run.b;
  }
  /// Wide index (12-byte records) and its data.
  std::pair<std::string, std::string> Wide() const {
    Bytes index, data;
    for (const Glyph& g : glyphs) {
      const std::string run = Run(g.steps);
      index.u16(g.code).zeros(2).i16(g.flags).u32(uint32_t(data.b.size())).u16(unsigned(run.size()));
      data.text(run);
    }
    return {index.b, data.b};
  }
  /// Plain index (8-byte records) and its data.
  std::pair<std::string, std::string> Plain() const {
    Bytes index, data;
    for (const Glyph& g : glyphs) {
      const std::string run = Run(g.steps);
      index.u16(g.code).u32(uint32_t(data.b.size())).u16(unsigned(run.size()));
      data.text(run);
    }
    return {index.b, data.b};
  }
};

}  // namespace rvtest
