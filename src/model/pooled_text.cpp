#include "model/pooled_text.h"

#include <cstring>
#include <limits>
#include <new>

#include "model/drawing_memory.h"

namespace rv {

namespace {

constexpr std::size_t kLength = sizeof(uint32_t);

uint32_t LengthOf(const unsigned char* block) {
  uint32_t n;
  std::memcpy(&n, block, kLength);
  return n;
}

}  // namespace

std::string_view PooledText::View() const {
  if (m_block == nullptr) return {};
  return {reinterpret_cast<const char*>(m_block + kLength), LengthOf(m_block)};
}

void PooledText::Assign(std::string_view text) {
  unsigned char* block = nullptr;
  if (!text.empty()) {
    if (text.size() > std::numeric_limits<uint32_t>::max() - kLength) throw std::bad_alloc();
    // The new block is written before the old one goes: the text may lie in it.
    block = static_cast<unsigned char*>(AllocateDrawing(kLength + text.size()));
    const auto n = uint32_t(text.size());
    std::memcpy(block, &n, kLength);
    std::memcpy(block + kLength, text.data(), text.size());
  }
  Release();
  m_block = block;
}

void PooledText::Release() noexcept {
  if (m_block != nullptr) FreeDrawing(m_block, kLength + LengthOf(m_block));
  m_block = nullptr;
}

}  // namespace rv
