// The tally of a drawing's storage.
//
// Every art object (CRvArt's own operator new) and every point array of a
// path component (DrawingVector) is allocated through here, so the bytes
// that all drawings hold - documents, forgotten documents and unlinked arts
// together - can be read at any time. The tally is what tests read to show
// that memory comes back, and what benchmarks divide by the points of an
// import. It counts the bytes asked for, not the heap's own overhead, and
// nothing else of the library (tags, names, lists, RefMap tables).
#pragma once

#include <cstddef>
#include <vector>

namespace rv {

/// Bytes held now by arts and point arrays.
std::size_t DrawingBytes();
/// Allocates `bytes` for the drawing (std::bad_alloc on failure).
void* AllocateDrawing(std::size_t bytes);
/// Releases what AllocateDrawing gave for the same `bytes`.
void FreeDrawing(void* p, std::size_t bytes) noexcept;

/// The allocator of the point arrays.
template <class T>
struct DrawingAllocator {
  using value_type = T;
  DrawingAllocator() = default;
  template <class U>
  DrawingAllocator(const DrawingAllocator<U>&) noexcept {}
  T* allocate(std::size_t n) { return static_cast<T*>(AllocateDrawing(n * sizeof(T))); }
  void deallocate(T* p, std::size_t n) noexcept { FreeDrawing(p, n * sizeof(T)); }
  template <class U>
  bool operator==(const DrawingAllocator<U>&) const noexcept {
    return true;
  }
};

/// A point array of a path component.
template <class T>
using DrawingVector = std::vector<T, DrawingAllocator<T>>;

}  // namespace rv
