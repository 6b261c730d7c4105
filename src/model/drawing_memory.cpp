#include "model/drawing_memory.h"

#include <cstdlib>
#include <new>

namespace rv {

namespace {

// One tally for the process, like the store that owns the drawings; the
// library runs on one thread at a time.
std::size_t& Tally() {
  static std::size_t bytes = 0;
  return bytes;
}

}  // namespace

std::size_t DrawingBytes() { return Tally(); }

void* AllocateDrawing(std::size_t bytes) {
  void* p = std::malloc(bytes == 0 ? 1 : bytes);
  if (p == nullptr) throw std::bad_alloc();
  Tally() += bytes;
  return p;
}

void FreeDrawing(void* p, std::size_t bytes) noexcept {
  if (p == nullptr) return;
  Tally() -= bytes;
  std::free(p);
}

}  // namespace rv
