// Fuzz target: condition and favourite files of every machine family.
// The first byte chooses the machine type and the file name; the rest is the
// file. Loading, importing, saving and reloading must never crash, and a file
// that the library saved must parse again.
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include <unistd.h>

#include "rvdataaccess.h"

namespace {

std::string TempPath(const char* name) {
  return "/tmp/rv_fuzz_cond_" + std::to_string(getpid()) + "_" + name;
}

bool Write(const std::string& path, const uint8_t* data, size_t size) {
  std::FILE* f = std::fopen(path.c_str(), "wb");
  if (f == nullptr) return false;
  bool ok = std::fwrite(data, 1, size, f) == size;
  return std::fclose(f) == 0 && ok;
}

int32_t Touch(void* ctx, const char* name, const CondPair* pair) {
  auto* sum = static_cast<size_t*>(ctx);
  *sum += std::string(name).size() + pair->record->Tool[0];
  return 0;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size < 1) return 0;
  const uint16_t type = uint16_t(data[0] % 19);
  const bool current = (data[0] & 0x80) != 0;
  const std::string path = TempPath(current ? "CurrentTQCondition.xml" : "in.xml");
  const std::string out = TempPath("out.xml");
  if (!Write(path, data + 1, size - 1)) return 0;

  RvDeleteAllCutCondition();
  RvLoadCutCondition(type, path.c_str());
  RvImportCutCondition(path.c_str());
  size_t sum = 0;
  RvCutConditionTrace(&sum, Touch);
  if (RvSaveCutCondition(out.c_str()) == 0) {
    int32_t before = 0;
    RvCutConditionTrace(&before, [](void* ctx, const char*, const CondPair*) -> int32_t {
      ++*static_cast<int32_t*>(ctx);
      return 0;
    });
    RvDeleteAllCutCondition();
    // A table may hold empty texts (tools of another family's file), which
    // come back as missing elements (15); anything else is a broken file.
    uint32_t code = RvLoadCutCondition(type, out.c_str());
    if (code != 0 && code != 15) {
      std::fprintf(stderr, "a saved file doesn't load again: code %u, type %u\n", code, type);
      std::abort();
    }
  }
  std::vector<FavoriteEntry> lists(4 * RV_FAVORITE_COUNT);
  FavoriteEntry* l = lists.data();
  if (RvReadFavoriteFile(type, path.c_str(), l, l + 250, l + 500, l + 750) == 0) {
    RvWriteFavoriteFile(type, out.c_str(), l, l + 250, l + 500, l + 750);
  }
  RvDeleteAllCutCondition();
  std::remove(path.c_str());
  std::remove(out.c_str());
  return 0;
}
