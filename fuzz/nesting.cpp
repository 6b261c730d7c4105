// Fuzz target: the nesting judgment, two ways. The bytes make a few paths
// whose corners sit on a coarse grid, so that they share corners and sides,
// run along each other and lie in each other; some are long enough for
// many chords, some have a curved handle or a matrix. The flags-only
// judgment must give every path the flag of the plain algorithm, and fail
// with the same code where that fails.
//
// Layout: per path a head byte (bits 0-3 corner count, bit 4 open, bit 5 a
// curved handle, bit 6 a matrix, bit 7 long sides), then a byte per corner:
// the low nibble x, the high nibble y on the grid.
#include <cstdint>
#include <cstdlib>
#include <vector>

#include "frame/frame.h"
#include "geometry/judge.h"
#include "rvdataaccess.h"

namespace {

constexpr int kMaxPaths = 10;
// Grid lines: even steps, and steps that don't round evenly.
constexpr double kGrid[16] = {0, 1, 2, 2.5, 3, 4.025, 5, 6, 7.1, 8, 9, 10, 10.225, 11, 12, 13};

void* AddPath(const uint8_t*& at, const uint8_t* end) {
  const uint8_t head = *at++;
  const int count = (head & 15) + 1;
  const double scale = (head & 128) != 0 ? 40.0 : 1.0;
  void* path = nullptr;
  void* bezier = nullptr;
  RvGiCreateArt(4, 3, nullptr, &path);
  RvGiCreateArt(2, 5, path, &bezier);
  RVBEZIERPOINT first{};
  for (int i = 0; i < count && at < end; ++i) {
    const uint8_t b = *at++;
    RVBEZIERPOINT p{};
    p.anchor = {kGrid[b & 15] * scale, kGrid[b >> 4] * scale};
    p.in = p.out = p.anchor;
    if (i == 1 && (head & 32) != 0) p.out.x += 3.0;
    if (i == 0) first = p;
    RvGiAddBezierPoint(bezier, &p);
  }
  if ((head & 16) == 0) RvGiAddBezierPoint(bezier, &first);
  RvGiSetPathClosed(path, (head & 16) == 0 ? 1 : 0);
  if ((head & 64) != 0) {
    const RVRIFMATRIX shift{1, 0, 0, 1, 0.5, 0};
    RvGiSetArtMatrix(path, &shift);
  }
  return path;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  int16_t document = -1;
  void* layer = nullptr;
  if (RvGiCreateDocument(0, &document) != 0 || RvGiCreateLayer(1, nullptr, &layer) != 0) std::abort();
  std::vector<RVINSIDEPATH> flags;
  const uint8_t* at = data;
  const uint8_t* end = data + size;
  while (at < end && flags.size() < kMaxPaths) flags.push_back({AddPath(at, end), 0});
  for (bool invert : {false, true}) {
    std::vector<RVINSIDEPATH> fast = flags, plain = flags;
    const uint32_t fastCode = rv::Guard([&] { rv::JudgeNestingFlags(fast.data(), fast.size(), invert); });
    const uint32_t plainCode = rv::Guard([&] { rv::JudgeInsideOutsidePlain(plain.data(), plain.size(), invert); });
    if (fastCode != plainCode) std::abort();
    // The same judgment on a thread, started in the reverse order and
    // finished in this one, handed over ahead or not.
    std::vector<RVINSIDEPATH> late = flags;
    rv::NestingJob job({flags.rbegin(), flags.rend()}, 0);
    if (job.Readable() && fastCode != 0) std::abort();  // read by the thread, the paths can be judged
    if (size % 2 == 0) job.Order(flags, invert);
    if (rv::Guard([&] { job.Finish(late.data(), late.size(), invert); }) != fastCode) std::abort();
    if (fastCode != 0) continue;
    for (std::size_t k = 0; k < late.size(); ++k) {
      if (late[k].art != fast[k].art || late[k].inside != fast[k].inside) std::abort();
    }
    for (const RVINSIDEPATH& p : plain) {
      bool found = false;
      for (const RVINSIDEPATH& f : fast) {
        if (f.art == p.art) found = true, (f.inside != p.inside ? std::abort() : void());
      }
      if (!found) std::abort();
    }
  }
  if (RvGiDeleteAllDocuments() != 0) std::abort();
  return 0;
}
