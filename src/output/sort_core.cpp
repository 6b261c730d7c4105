#include "output/sort_core.h"

#include <algorithm>
#include <cmath>

#include "output/number_format.h"

namespace rv {

void SortEntriesByKey(std::vector<RVSORTENTRY>& entries) {
  std::stable_sort(entries.begin(), entries.end(),
                   [](const RVSORTENTRY& a, const RVSORTENTRY& b) { return a.key < b.key; });
}

int16_t RefinePercent(std::size_t done, std::size_t total) {
  const double p = 50.0 + double(done) / double(total) * 50.0;
  return int16_t(TruncToInt32(p));
}

IntRect IntegerBox(const RVRECT& bounds) {
  const int32_t left = TruncToInt32(bounds.left + 0.5);
  const int32_t right = TruncToInt32(bounds.right + 0.5);
  const int32_t top = TruncToInt32(bounds.top + 0.5);
  const int32_t bottom = TruncToInt32(bounds.bottom + 0.5);
  IntRect r;
  r.left = std::min(left, right);
  r.right = std::max(left, right);
  r.top = std::min(top, bottom);
  r.bottom = std::max(top, bottom);
  return r;
}

bool MostlyOneBlock(const std::vector<RVSORTENTRY>& entries) {
  std::size_t run = 0, longest = 0;
  for (std::size_t k = 0; k < entries.size(); ++k) {
    run = k != 0 && entries[k].key == entries[k - 1].key ? run + 1 : 1;
    longest = std::max(longest, run);
  }
  return 2 * longest >= entries.size();
}

}  // namespace rv
