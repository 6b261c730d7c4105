#include "frame/large_pages.h"

#include <sys/mman.h>

#include <cstdint>

namespace rv {

void* AllocateLargePage() noexcept {
  // Twice the size, then the ends beyond the aligned block go back.
  const std::size_t span = 2 * kLargePageBytes;
  void* raw = mmap(nullptr, span, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  if (raw == MAP_FAILED) return nullptr;
  const auto start = reinterpret_cast<std::uintptr_t>(raw);
  const std::uintptr_t aligned = (start + kLargePageBytes - 1) & ~std::uintptr_t(kLargePageBytes - 1);
  if (aligned > start) munmap(raw, aligned - start);
  const std::uintptr_t end = aligned + kLargePageBytes;
  if (start + span > end) munmap(reinterpret_cast<void*>(end), start + span - end);
  void* block = reinterpret_cast<void*>(aligned);
  (void)madvise(block, kLargePageBytes, MADV_HUGEPAGE);  // a hint: small pages work too
  return block;
}

void FreeLargePage(void* block) noexcept {
  if (block != nullptr) munmap(block, kLargePageBytes);
}

}  // namespace rv
