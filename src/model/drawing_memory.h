// The storage of drawings.
//
// Every art object and the records it makes (InDrawing in art.h), every
// point array of a path component and node of a child list
// (DrawingAllocator), every art's block of tags and every pooled text is
// allocated through here. Each document owns a DrawingPool: what is made
// while the document is active comes from the pool's chunks, small blocks
// cut one after the other, and a freed block waits in a list of its size
// for the next of that size. Destroying a document destroys its arts; the
// pool then gives back every chunk whose blocks are all free. A chunk that still holds a live block (an art
// unlinked from the document, which stays readable for the life of the
// process, or an art made here and linked into another document) stays
// until that block is freed, and then goes. Chunks grow from 4 KiB to
// 64 KiB; once a pool's chunks hold 1 MiB, each further chunk is one large
// page of 2 MiB (frame/large_pages.h), so a large drawing costs a fault
// per large page, and a block that outlives its document keeps at most
// that much. Large blocks, and blocks made while no document is active,
// come from the heap.
//
// Two tallies can be read at any time: the bytes asked for by all of the
// above (documents, forgotten documents and unlinked arts together),
// and the bytes of storage that holds them (chunks and heap blocks). Tests
// read them to show that memory comes back; benchmarks divide them by the
// points of an import. The library runs one call at a time, so there are
// no locks.
#pragma once

#include <array>
#include <cstddef>
#include <vector>

namespace rv {

/// Bytes asked for by the drawings alive now.
std::size_t DrawingBytes();
/// Bytes of storage that holds them: chunks and heap blocks.
std::size_t DrawingStorageBytes();
/// Allocates `bytes` for the drawing, from the active document's pool when
/// there is one (std::bad_alloc on failure).
void* AllocateDrawing(std::size_t bytes);
/// Releases what AllocateDrawing gave for the same `bytes`.
void FreeDrawing(void* p, std::size_t bytes) noexcept;

/// The storage of one document.
class DrawingPool {
 public:
  DrawingPool() = default;
  DrawingPool(const DrawingPool&) = delete;
  DrawingPool& operator=(const DrawingPool&) = delete;
  /// Gives back the chunks with no live block; the others stay, on their
  /// own, until their last block is freed.
  ~DrawingPool();

  /// A block of at least `bytes` (the caller counts the tally).
  void* Allocate(std::size_t bytes);

  struct Chunk;
  /// A freed block of a chunk of this pool, `total` bytes with its head.
  void Recycle(void* block, std::size_t total) noexcept;

 private:
  static constexpr std::size_t kClasses = 4096 / 8 + 1;
  std::vector<Chunk*> m_chunks;
  std::size_t m_chunkBytes = 0;  // of all chunks made
  Chunk* m_current = nullptr;  // blocks are cut from here
  Chunk* m_side = nullptr;     // the tail of an earlier chunk, for blocks that fit it
  std::array<void*, kClasses> m_free{};  // freed blocks by size / 8
};

/// The pool that allocations go to now: the active document's, or none.
/// Set by the store.
DrawingPool*& CurrentDrawingPool();

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
