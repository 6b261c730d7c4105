// Blocks of one large page each, for storage that fills whole megabytes.
//
// Fresh memory costs a fault per small page on first touch; a block aligned
// to the large-page size and marked for large pages takes one fault for the
// lot where the system grants large pages, and still works, page by page,
// where it doesn't. The drawing pools take their large chunks from here.
// Linux only (mmap and madvise); nothing else in the library maps memory.
#pragma once

#include <cstddef>

namespace rv {

/// Bytes of a large-page block: one 2 MiB page of x86-64 and arm64 Linux.
inline constexpr std::size_t kLargePageBytes = std::size_t(2) << 20;

/// A block of kLargePageBytes aligned to that size, or null when the system
/// has no memory to map.
void* AllocateLargePage() noexcept;
/// Gives back a block of AllocateLargePage.
void FreeLargePage(void* block) noexcept;

}  // namespace rv
