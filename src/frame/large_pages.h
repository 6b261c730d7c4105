// Blocks of large pages, for storage that fills whole megabytes.
//
// Fresh memory costs a fault per small page on first touch; a block aligned
// to the large-page size and marked for large pages takes one fault per
// large page where the system grants them, and still works, page by page,
// where it doesn't. The drawing pools take their large chunks from here,
// and the passes over a whole drawing their largest arrays
// (LargeArrayAllocator). Linux only (mmap and madvise); nothing else in the
// library maps memory. Under AddressSanitizer the blocks come from the
// heap instead, where the sanitizer watches them.
#pragma once

#include <cstddef>
#include <new>
#include <vector>

namespace rv {

/// Bytes of a large page: 2 MiB on x86-64 and arm64 Linux.
inline constexpr std::size_t kLargePageBytes = std::size_t(2) << 20;

/// A block of `bytes` rounded up to whole large pages, aligned to a large
/// page; null when the system has no memory to map.
void* AllocateLargePages(std::size_t bytes) noexcept;
/// Gives back a block of AllocateLargePages for the same `bytes`.
void FreeLargePages(void* block, std::size_t bytes) noexcept;

/// The allocator of arrays that grow to megabytes: an array of 1 MiB or
/// more takes large pages, a smaller one the heap. Stateless: the size
/// given back tells where a block came from.
template <class T>
struct LargeArrayAllocator {
  using value_type = T;
  static constexpr std::size_t kLargeFrom = std::size_t(1) << 20;
  LargeArrayAllocator() = default;
  template <class U>
  LargeArrayAllocator(const LargeArrayAllocator<U>&) noexcept {}
  T* allocate(std::size_t n) {
    if (n > std::size_t(-1) / sizeof(T)) throw std::bad_alloc();
    if (n * sizeof(T) < kLargeFrom) return static_cast<T*>(::operator new(n * sizeof(T)));
    void* block = AllocateLargePages(n * sizeof(T));
    if (block == nullptr) throw std::bad_alloc();
    return static_cast<T*>(block);
  }
  void deallocate(T* p, std::size_t n) noexcept {
    if (n * sizeof(T) < kLargeFrom) {
      ::operator delete(p);  // unsized: not every compiler declares the sized form
    } else {
      FreeLargePages(p, n * sizeof(T));
    }
  }
  template <class U>
  bool operator==(const LargeArrayAllocator<U>&) const noexcept {
    return true;
  }
};

/// An array that may grow to megabytes.
template <class T>
using LargeArray = std::vector<T, LargeArrayAllocator<T>>;

}  // namespace rv
