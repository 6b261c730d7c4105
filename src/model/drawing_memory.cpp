#include "model/drawing_memory.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <new>

#include "frame/large_pages.h"

namespace rv {

namespace {

// Every block starts with a head: its chunk, or null for a heap block.
// Blocks are aligned for doubles and pointers, all that a drawing stores.
constexpr std::size_t kHead = sizeof(void*);
constexpr std::size_t kStep = 8;
constexpr std::size_t kLargestPooled = 4096;  // with the head
constexpr std::size_t kFirstChunkBytes = std::size_t(4) << 10;
constexpr std::size_t kChunkBytes = std::size_t(64) << 10;
// A pool whose chunks hold this much takes its next ones as large pages:
// a large drawing then costs a fault per large page instead of per small
// one, while a small drawing never maps more than it needs.
constexpr std::size_t kLargeChunksAfter = std::size_t(1) << 20;

std::size_t& Tally() {
  static std::size_t bytes = 0;
  return bytes;
}

std::size_t& StorageTally() {
  static std::size_t bytes = 0;
  return bytes;
}

/// The whole size of a block for `bytes`: head included, in steps of 8.
std::size_t BlockSize(std::size_t bytes) { return (std::max<std::size_t>(bytes, 8) + kHead + kStep - 1) / kStep * kStep; }

}  // namespace

struct DrawingPool::Chunk {
  DrawingPool* pool;  // null once the pool is gone
  std::size_t live;   // blocks handed out and not freed
  std::size_t used;   // bytes cut from `data`
  std::size_t size;   // bytes of `data`
  bool large;         // a large page of its own, not a heap block
  alignas(8) unsigned char data[1];
};

namespace {

// A chunk with `size` bytes of data; a large one fills its large page.
DrawingPool::Chunk* NewChunk(DrawingPool* pool, bool large, std::size_t size) {
  void* raw = large ? AllocateLargePages(kLargePageBytes) : std::malloc(offsetof(DrawingPool::Chunk, data) + size);
  if (raw == nullptr) throw std::bad_alloc();
  StorageTally() += offsetof(DrawingPool::Chunk, data) + size;
  auto* chunk = static_cast<DrawingPool::Chunk*>(raw);
  chunk->pool = pool, chunk->live = 0, chunk->used = 0, chunk->size = size, chunk->large = large;
  return chunk;
}

void ReleaseChunk(DrawingPool::Chunk* chunk) noexcept {
  StorageTally() -= offsetof(DrawingPool::Chunk, data) + chunk->size;
  if (chunk->large) {
    FreeLargePages(chunk, kLargePageBytes);
  } else {
    std::free(chunk);
  }
}

}  // namespace

DrawingPool*& CurrentDrawingPool() {
  static DrawingPool* pool = nullptr;
  return pool;
}

std::size_t DrawingBytes() { return Tally(); }

std::size_t DrawingStorageBytes() { return StorageTally(); }

void* DrawingPool::Allocate(std::size_t bytes) {
  const std::size_t total = BlockSize(bytes);
  if (total > kLargestPooled) return nullptr;
  void*& head = m_free[total / kStep];
  unsigned char* block;
  Chunk* chunk;
  if (head != nullptr) {
    block = static_cast<unsigned char*>(head);
    head = *reinterpret_cast<void**>(block + kHead);
    chunk = *reinterpret_cast<Chunk**>(block);
  } else {
    auto room = [](const Chunk* c) { return c == nullptr ? 0 : c->size - c->used; };
    // The tail of the chunk before the current one takes the blocks that
    // fit it, so that a large block starting a chunk wastes little.
    if (room(m_side) >= total) {
      chunk = m_side;
    } else {
      if (room(m_current) < total) {
        // Chunks grow with the document: a small one wastes little, also
        // when an art that outlives the document keeps its chunk.
        const bool large = m_chunkBytes >= kLargeChunksAfter;
        const std::size_t size = large                  ? kLargePageBytes - offsetof(Chunk, data)
                                 : m_current == nullptr ? kFirstChunkBytes
                                                        : std::min(2 * m_current->size, kChunkBytes);
        // Room in the list first, so that a chunk once made is never lost.
        if (m_chunks.size() == m_chunks.capacity()) m_chunks.reserve(2 * m_chunks.size() + 8);
        Chunk* next = NewChunk(this, large, size);
        m_chunkBytes += next->size;
        if (room(m_current) > room(m_side)) m_side = m_current;
        m_current = next;
        m_chunks.push_back(m_current);
      }
      chunk = m_current;
    }
    block = chunk->data + chunk->used;
    chunk->used += total;
    *reinterpret_cast<Chunk**>(block) = chunk;
  }
  ++chunk->live;
  return block + kHead;
}

void DrawingPool::Recycle(void* block, std::size_t total) noexcept {
  void*& head = m_free[total / kStep];
  *reinterpret_cast<void**>(static_cast<unsigned char*>(block) + kHead) = head;
  head = block;
}

DrawingPool::~DrawingPool() {
  if (CurrentDrawingPool() == this) CurrentDrawingPool() = nullptr;
  for (Chunk* chunk : m_chunks) {
    if (chunk->live == 0) {
      ReleaseChunk(chunk);
    } else {
      chunk->pool = nullptr;  // goes with its last block
    }
  }
}

void* AllocateDrawing(std::size_t bytes) {
  if (bytes > std::size_t(PTRDIFF_MAX)) throw std::bad_alloc();  // no block size can hold it
  DrawingPool* pool = CurrentDrawingPool();
  void* p = pool != nullptr ? pool->Allocate(bytes) : nullptr;
  if (p == nullptr) {
    const std::size_t total = BlockSize(bytes);
    auto* block = static_cast<unsigned char*>(std::malloc(total));
    if (block == nullptr) throw std::bad_alloc();
    StorageTally() += total;
    *reinterpret_cast<DrawingPool::Chunk**>(block) = nullptr;
    p = block + kHead;
  }
  Tally() += bytes;
  return p;
}

void FreeDrawing(void* p, std::size_t bytes) noexcept {
  if (p == nullptr) return;
  Tally() -= bytes;
  unsigned char* block = static_cast<unsigned char*>(p) - kHead;
  DrawingPool::Chunk* chunk = *reinterpret_cast<DrawingPool::Chunk**>(block);
  const std::size_t total = BlockSize(bytes);
  if (chunk == nullptr) {
    StorageTally() -= total;
    std::free(block);
    return;
  }
  --chunk->live;
  if (chunk->pool != nullptr) {
    chunk->pool->Recycle(block, total);
  } else if (chunk->live == 0) {
    ReleaseChunk(chunk);
  }
}

}  // namespace rv
