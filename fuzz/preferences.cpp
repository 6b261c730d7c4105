// Fuzz target: both preference loaders. The first byte chooses the file
// (bit 0: the outline tool's, else the main one); the rest is the file.
// A load must never write outside its records nor touch the bytes that no
// key carries; a file that a save wrote must load again, and after one more
// save and load the saved bytes must stay the same.
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>

#include <unistd.h>

#include "rvdataaccess.h"

namespace {

constexpr uint8_t kGuard = 0xCD;

/// A record between two guard zones.
template <class Record>
struct Guarded {
  uint8_t before[32];
  Record record;
  uint8_t after[32];

  Guarded() {
    std::memset(this, 0, sizeof *this);
    std::memset(before, kGuard, sizeof before);
    std::memset(after, kGuard, sizeof after);
  }
  void Check(const char* what) const {
    for (std::size_t i = 0; i < sizeof before; ++i) {
      if (before[i] != kGuard || after[i] != kGuard) {
        std::fprintf(stderr, "a load wrote outside the record %s\n", what);
        std::abort();
      }
    }
  }
};

struct KF {
  Guarded<RVPREFUSERSETUP> userSetup;
  Guarded<RVPREFPLOTPREVIEW> plotPreview;
  Guarded<RVPREFPLOT> plot;
  Guarded<RVPREFTOMBOENV> tomboEnv;
  Guarded<RVPREFFUNCTION> function;
  Guarded<RVPREFCUTPREVIEW> cutPreview;
  Guarded<RVPREFDOTBRIDGE> dotbridge;

  KF() { std::memset(cutPreview.record.reserved, 0x5A, sizeof cutPreview.record.reserved); }
  uint32_t Load(const std::string& path) {
    uint32_t code = RvLoadKFPreference(path.c_str(), &userSetup.record, &plotPreview.record, &plot.record,
                                       &tomboEnv.record, &function.record, &cutPreview.record, &dotbridge.record);
    userSetup.Check("PlotterUserSetup");
    plotPreview.Check("PlotPreview");
    plot.Check("Plot");
    tomboEnv.Check("TomboEnv");
    function.Check("Function");
    cutPreview.Check("CutPreview");
    dotbridge.Check("Dotbridge");
    for (uint8_t b : cutPreview.record.reserved) {
      if (b != 0x5A) {
        std::fprintf(stderr, "a load wrote the reserved bytes of CutPreview\n");
        std::abort();
      }
    }
    return code;
  }
  uint32_t Save(const std::string& path) const {
    return RvSaveKFPreference(path.c_str(), &userSetup.record, &plotPreview.record, &plot.record, &tomboEnv.record,
                              &function.record, &cutPreview.record, &dotbridge.record);
  }
};

struct OT {
  Guarded<RVPREFOUTLINETOOL> outlineTool;
  uint32_t Load(const std::string& path) {
    uint32_t code = RvLoadOTPreference(path.c_str(), &outlineTool.record);
    outlineTool.Check("OutlineTool");
    return code;
  }
  uint32_t Save(const std::string& path) const { return RvSaveOTPreference(path.c_str(), &outlineTool.record); }
};

std::string TempPath(const char* name) { return "/tmp/rv_fuzz_prefs_" + std::to_string(getpid()) + "_" + name; }

bool Write(const std::string& path, const uint8_t* data, size_t size) {
  std::FILE* f = std::fopen(path.c_str(), "wb");
  if (f == nullptr) return false;
  bool ok = std::fwrite(data, 1, size, f) == size;
  return std::fclose(f) == 0 && ok;
}

std::string Read(const std::string& path) {
  std::string bytes;
  if (std::FILE* f = std::fopen(path.c_str(), "rb")) {
    char buf[4096];
    for (size_t n; (n = std::fread(buf, 1, sizeof buf, f)) > 0;) bytes.append(buf, n);
    std::fclose(f);
  }
  return bytes;
}

void Fail(const char* what) {
  std::fprintf(stderr, "%s\n", what);
  std::abort();
}

/// Loads the input, saves, and runs two more save and load rounds.
template <class Records>
void Exercise(const std::string& in) {
  const std::string a = TempPath("a.xml"), b = TempPath("b.xml"), c = TempPath("c.xml");
  auto first = std::make_unique<Records>();
  first->Load(in);
  if (first->Save(a) != 0) Fail("a save failed");
  auto second = std::make_unique<Records>();
  if (second->Load(a) != 0) Fail("a saved file doesn't load again");
  if (second->Save(b) != 0) Fail("a save failed");
  auto third = std::make_unique<Records>();
  if (third->Load(b) != 0) Fail("a saved file doesn't load again");
  if (third->Save(c) != 0) Fail("a save failed");
  if (Read(b) != Read(c)) Fail("saving a loaded file again changes its bytes");
  std::remove(a.c_str());
  std::remove(b.c_str());
  std::remove(c.c_str());
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size < 1) return 0;
  const std::string in = TempPath("in.xml");
  if (!Write(in, data + 1, size - 1)) return 0;
  if ((data[0] & 1) != 0) {
    Exercise<OT>(in);
  } else {
    Exercise<KF>(in);
  }
  std::remove(in.c_str());
  return 0;
}
