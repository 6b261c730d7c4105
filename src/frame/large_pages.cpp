#include "frame/large_pages.h"

#include <sys/mman.h>

#include <cstdint>
#include <new>

// Under AddressSanitizer the blocks come from the heap, where the sanitizer
// sees them.
#if defined(__SANITIZE_ADDRESS__)
#define RV_LARGE_PAGES_FROM_HEAP 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define RV_LARGE_PAGES_FROM_HEAP 1
#endif
#endif

namespace rv {

namespace {

std::size_t WholePages(std::size_t bytes) { return (bytes + kLargePageBytes - 1) / kLargePageBytes * kLargePageBytes; }

}  // namespace

void* AllocateLargePages(std::size_t bytes) noexcept {
  if (bytes == 0 || bytes > (std::size_t(1) << 46)) return nullptr;
  const std::size_t size = WholePages(bytes);
#ifdef RV_LARGE_PAGES_FROM_HEAP
  return ::operator new(size, std::align_val_t(kLargePageBytes), std::nothrow);
#else
  // A large page more than asked for, then the ends beyond the aligned
  // block go back.
  const std::size_t span = size + kLargePageBytes;
  void* raw = mmap(nullptr, span, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  if (raw == MAP_FAILED) return nullptr;
  const auto start = reinterpret_cast<std::uintptr_t>(raw);
  const std::uintptr_t aligned = (start + kLargePageBytes - 1) & ~std::uintptr_t(kLargePageBytes - 1);
  if (aligned > start) munmap(raw, aligned - start);
  const std::uintptr_t end = aligned + size;
  if (start + span > end) munmap(reinterpret_cast<void*>(end), start + span - end);
  void* block = reinterpret_cast<void*>(aligned);
  (void)madvise(block, size, MADV_HUGEPAGE);  // a hint: small pages work too
  return block;
#endif
}

void FreeLargePages(void* block, std::size_t bytes) noexcept {
  if (block == nullptr) return;
#ifdef RV_LARGE_PAGES_FROM_HEAP
  (void)bytes;
  ::operator delete(block, std::align_val_t(kLargePageBytes));
#else
  munmap(block, WholePages(bytes));
#endif
}

}  // namespace rv
