// Fuzz target: arbitrary bytes as an ITW layout through RvImItwToRIF, with a
// fixed small stroke font beside it (wide and plain index, a per-contour font
// and a symbol font, all in a folder named USER so that the indexes are
// plain). The result is one of the documented codes; nothing may crash, hang
// or leak.
#include <sys/stat.h>
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "rvdataaccess.h"

namespace {

struct Step {
  int op = 0, x = 0, y = 0, cx = 0, cy = 0, direction = 0;
};

void Put16(std::string& out, int v) {
  out += char(v & 0xFF);
  out += char((v >> 8) & 0xFF);
}
void Put32(std::string& out, uint32_t v) {
  Put16(out, int(v & 0xFFFF));
  Put16(out, int(v >> 16));
}

// Codes 65 to 69: lines, an arc, a full circle, a spline, and a contour that
// doesn't come back to its start.
std::vector<std::vector<Step>> Glyphs() {
  return {
      {{1, 500, 500}, {1, 4500, 500}, {1, 4500, 4500}, {3, 500, 500}},
      {{1, 500, 2500}, {2, 500, 2500, 2500, 2500, 1}, {1, 4500, 2500}, {3, 4500, 4500}},
      {{2, 2500, 1000, 2500, 2500, -1}, {3, 2500, 1000}},
      {{5, 500, 500}, {4, 2500, 4500}, {4, 4500, 500}, {3, 500, 520}},
      {{1, 0, 0}, {2, 5000, 0, 2500, 0, 1}, {2, 0, 0, 2500, 0, 1}, {3, 0, 0}, {1, 100, 100}, {3, 4000, 100}},
  };
}

void WriteFile(const std::string& path, const std::string& bytes) {
  std::FILE* f = std::fopen(path.c_str(), "wb");
  if (f == nullptr) std::abort();
  if (!bytes.empty() && std::fwrite(bytes.data(), 1, bytes.size(), f) != bytes.size()) std::abort();
  std::fclose(f);
}

void WriteFont(const std::string& base, bool wide) {
  std::string index, data;
  int code = 65;
  for (const std::vector<Step>& glyph : Glyphs()) {
    std::string run;
    for (const Step& s : glyph) {
      Put16(run, s.op), Put16(run, s.x), Put16(run, s.y);
      if (s.op == 2) Put16(run, s.cx), Put16(run, s.cy), Put16(run, s.direction);
    }
    Put16(run, 0), Put16(run, 0), Put16(run, 0);
    Put16(index, code);
    if (wide) Put16(index, 0), Put16(index, code == 66 ? 2 : 0x8000);
    Put32(index, uint32_t(data.size()));
    Put16(index, int(run.size()));
    data += run;
    ++code;
  }
  WriteFile(base + (wide ? ".TBW" : ".TBL"), index);
  WriteFile(base + (wide ? ".DAW" : ".DAT"), data);
}

struct Setup {
  std::string input;
  std::string fonts;
  Setup() {
    char name[] = "/tmp/fuzz_itw_import_XXXXXX";
    if (mkdtemp(name) == nullptr) std::abort();
    input = std::string(name) + "/layout.itw";
    fonts = std::string(name) + "/USER/";
    if (mkdir(fonts.c_str(), 0700) != 0) std::abort();
    for (const char* font : {"USERF", "GYOUSYO", "SYM", "KAMON3"}) {
      WriteFont(fonts + font, true);
      WriteFont(fonts + font, false);
    }
  }
};

const Setup& TheSetup() {
  static const Setup setup;
  return setup;
}

}  // namespace

// fontconfig leaves one block of its parsed configuration unreferenced for the
// life of the process; the leak checker passes over it.
extern "C" const char* __lsan_default_suppressions() { return "leak:libfontconfig.so\n"; }

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const Setup& setup = TheSetup();
  WriteFile(setup.input, std::string(reinterpret_cast<const char*>(data), size));
  int16_t index = -1;
  int16_t fileByte = -1;
  const uint32_t code =
      RvImItwToRIF(setup.input.c_str(), setup.fonts.c_str(), setup.fonts.c_str(), 0, &index, &fileByte);
  switch (code) {
    case 0:
    case 32:
    case 0x01000301:  // a record past the end
    case 0x07001E01:  // a wrong mark
    case 0x07007001:  // a name too long
    case 0x07001001:  // an art that can't be made
      break;
    default:
      std::abort();
  }
  if (RvGiDeleteActiveDocument() != 0) std::abort();
  // Document indexes are never reused until the store is emptied; empty it so
  // that a long run doesn't reach the limit of 32767 documents.
  if (RvGiDeleteAllDocuments() != 0) std::abort();
  return 0;
}
