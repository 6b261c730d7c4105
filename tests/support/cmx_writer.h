// A small writer of CMX files for the tests: a RIFF head with the header
// fields, one "page" chunk of commands per page, and the layer, page and
// master indexes that point into them. Commands and tags are built as bytes,
// so that a test can also write what a careful writer never would.
#pragma once

#include <cstdint>
#include <cstring>
#include <string>
#include <utility>
#include <vector>

namespace cmxtest {

/// Little-endian bytes.
class Bytes {
 public:
  Bytes& u8(uint8_t v) { return raw(&v, 1); }
  Bytes& u16(uint16_t v) { return le(v, 2); }
  Bytes& i16(int16_t v) { return le(uint16_t(v), 2); }
  Bytes& u32(uint32_t v) { return le(v, 4); }
  Bytes& i32(int32_t v) { return le(uint32_t(v), 4); }
  Bytes& f64(double v) {
    uint64_t bits;
    std::memcpy(&bits, &v, 8);
    return le(bits, 8);
  }
  /// `text` padded with zeros (or cut) to `size` bytes.
  Bytes& text(const std::string& text, std::size_t size) {
    std::string t = text.substr(0, size);
    t.resize(size, '\0');
    m_s += t;
    return *this;
  }
  Bytes& add(const std::string& bytes) {
    m_s += bytes;
    return *this;
  }
  const std::string& str() const { return m_s; }
  std::size_t size() const { return m_s.size(); }

 private:
  Bytes& raw(const void* p, std::size_t n) {
    m_s.append(static_cast<const char*>(p), n);
    return *this;
  }
  Bytes& le(uint64_t v, int n) {
    for (int i = 0; i < n; ++i) m_s += char((v >> (8 * i)) & 0xFF);
    return *this;
  }
  std::string m_s;
};

/// A tag: its byte, its total size and its data.
inline std::string Tag(uint8_t id, const std::string& data) {
  return Bytes().u8(id).u16(uint16_t(data.size() + 3)).add(data).str();
}
inline std::string EndTag() { return "\xFF"; }

/// A command of `code` with `body`, in the short form, or in the long form
/// (size -1, then the 4-byte size).
inline std::string Command(int16_t code, const std::string& body, bool longForm = false) {
  if (longForm) return Bytes().i16(-1).i32(int32_t(body.size() + 8)).i16(code).add(body).str();
  return Bytes().i16(int16_t(body.size() + 4)).i16(code).add(body).str();
}

inline std::string Box(int32_t left, int32_t top, int32_t right, int32_t bottom) {
  return Bytes().i32(left).i32(top).i32(right).i32(bottom).str();
}

inline std::string BeginLayer(const std::string& name) {
  const std::string spec = Bytes().i16(1).i16(1).u32(0).u32(0).u16(uint16_t(name.size())).add(name).str();
  return Command(11, Tag(1, spec) + Tag(2, Bytes().u16(1).str()) + EndTag());
}
inline std::string EndLayer() { return Command(12, ""); }
inline std::string BeginGroup(const std::string& box) {
  return Command(13, Tag(1, Bytes().add(box).u16(0).u32(0).u32(0).str()) + EndTag());
}
inline std::string EndGroup() { return Command(14, ""); }

/// Node types of poly-curve points.
enum : uint8_t { kMove = 0x00, kClosedMove = 0x08, kLine = 0x40, kCurve = 0x80, kControl = 0xC0 };

struct Node {
  int32_t x, y;
  uint8_t type;
};

/// A poly-curve with its points and bounding box. In the long form the
/// point tag's 16-bit size is left wrong (0xFFFF), as a long curve has it.
inline std::string PolyCurve(const std::vector<Node>& nodes, const std::string& box, bool longForm = false) {
  Bytes points;
  points.i16(int16_t(nodes.size()));
  for (const Node& n : nodes) points.i32(n.x).i32(n.y);
  for (const Node& n : nodes) points.u8(n.type);
  std::string pointTag = Tag(2, points.str());
  if (longForm) pointTag[1] = pointTag[2] = '\xFF';
  const std::string attributes = Tag(1, Bytes().u8(0).str());
  return Command(67, attributes + pointTag + Tag(3, box) + EndTag(), longForm);
}

/// A rectangle by centre and size; the bounding box follows in the same tag.
inline std::string Rectangle(int32_t cx, int32_t cy, int32_t width, int32_t height) {
  const std::string box = Box(cx - width / 2, cy + height / 2, cx + width / 2, cy - height / 2);
  const std::string spec = Bytes().i32(cx).i32(cy).i32(width).i32(height).i32(0).i32(0).add(box).str();
  return Command(68, Tag(1, Bytes().u8(0).str()) + Tag(2, spec) + EndTag());
}

/// One layer of a page: its index name and its command stream. A jump added
/// with AddJump goes to a place of the stream, given from the stream's start.
struct Layer {
  explicit Layer(std::string layerName = "") : name(std::move(layerName)) {}
  std::string name;
  std::string stream;
  std::vector<std::pair<std::size_t, std::size_t>> jumps;  // offset of the u32 field, target in the stream

  Layer& Add(const std::string& command) {
    stream += command;
    return *this;
  }
  Layer& AddJump(std::size_t target) {
    const std::string jump = Command(111, Tag(1, Bytes().u32(0).str()) + EndTag());
    jumps.emplace_back(stream.size() + 7, target);
    stream += jump;
    return *this;
  }
};

struct Page {
  int16_t number = 1;
  std::vector<Layer> layers;
};

/// A whole file. Coordinates are in units of `factor` metres.
struct File {
  std::string version = "2";
  double factor = 1e-7;  // 1/254000 inch, as CMX files of 32-bit coordinates have it
  int32_t left = 0, top = 0, right = 0, bottom = 0;
  std::vector<Page> pages;
  bool pageIndexInMaster = true;

  bool RecordSizes() const { return !version.empty() && version[0] == '2'; }

  std::string Build() const {
    // Pages first, then their layer indexes, the page index and the master.
    std::string body;
    const std::size_t base = 20 + 120;
    std::vector<std::vector<uint32_t>> layerOffsets;
    std::vector<uint32_t> pageOffsets;
    for (const Page& page : pages) {
      pageOffsets.push_back(uint32_t(base + body.size()));
      std::string stream = BeginPage();
      std::vector<uint32_t> offsets;
      for (const Layer& layer : page.layers) {
        const std::size_t start = base + body.size() + 8 + stream.size();
        offsets.push_back(uint32_t(start));
        std::string s = layer.stream;
        for (const auto& [field, target] : layer.jumps) {
          const std::string v = Bytes().u32(uint32_t(start + target)).str();
          s.replace(field, 4, v);
        }
        stream += s;
      }
      stream += Command(10, "");
      body += Chunk("page", stream);
      layerOffsets.push_back(offsets);
    }
    std::vector<uint32_t> layerIndexOffsets;
    for (std::size_t p = 0; p < pages.size(); ++p) {
      layerIndexOffsets.push_back(uint32_t(base + body.size()));
      Bytes ix;
      ix.i16(int16_t(pages[p].layers.size())).i16(pages[p].number);
      for (std::size_t l = 0; l < pages[p].layers.size(); ++l) {
        const std::string& name = pages[p].layers[l].name;
        if (RecordSizes()) ix.u16(uint16_t(10 + name.size()));
        ix.u32(layerOffsets[p][l]).u16(uint16_t(name.size())).add(name).u32(0);
      }
      body += Chunk("ixlr", ix.str());
    }
    const uint32_t pageIndex = uint32_t(base + body.size());
    Bytes ixpg;
    ixpg.i16(int16_t(pages.size()));
    for (std::size_t p = 0; p < pages.size(); ++p) {
      if (RecordSizes()) ixpg.u16(18);
      ixpg.u32(pageOffsets[p]).u32(layerIndexOffsets[p]).u32(0).u32(0);
    }
    body += Chunk("ixpg", ixpg.str());
    const uint32_t master = uint32_t(base + body.size());
    Bytes ixmr;
    ixmr.u16(1).u16(6).i16(pageIndexInMaster ? 2 : 1);
    ixmr.u16(3).u32(0);  // a section the import doesn't use
    if (pageIndexInMaster) ixmr.u16(2).u32(pageIndex);
    body += Chunk("ixmr", ixmr.str());

    Bytes head;
    head.text("CMX1", 4).text("cont", 4).u32(120);
    head.text("Corel Metafile Exchange Image", 32).text("Linux", 16).text("2", 4).text("4", 2);
    head.text(version, 4).text("0", 4).u16(35).f64(factor);
    head.u32(0).u32(0).u32(0).u32(master).u32(0).u32(0);
    head.i32(left).i32(top).i32(right).i32(bottom).u32(0).u32(0);
    const std::string riff = head.str() + body;
    return Bytes().text("RIFF", 4).u32(uint32_t(riff.size())).add(riff).str();
  }

  /// A RIFF chunk, padded to an even size.
  static std::string Chunk(const char* id, std::string data) {
    std::string chunk = Bytes().text(id, 4).u32(uint32_t(data.size())).add(data).str();
    if (chunk.size() % 2 != 0) chunk += '\0';
    return chunk;
  }

  std::string BeginPage() const {
    const std::string spec = Bytes().u16(1).u32(0).add(Box(left, top, right, bottom)).i32(0).str();
    return Command(9, Tag(1, spec) + Tag(2, Bytes().u16(1).str()) + EndTag());
  }
};

}  // namespace cmxtest
