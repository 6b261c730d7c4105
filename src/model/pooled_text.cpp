#include "model/pooled_text.h"

#include <cstring>
#include <limits>
#include <new>

#include "model/drawing_memory.h"
#include "model/packed_words.h"

namespace rv {

std::string_view PooledText::View() const {
  if (m_block == nullptr) return {};
  return {reinterpret_cast<const char*>(m_block + kPackedWord), ReadPackedWord(m_block)};
}

void PooledText::Assign(std::string_view text) {
  unsigned char* block = nullptr;
  if (!text.empty()) {
    if (text.size() > std::numeric_limits<uint32_t>::max() - kPackedWord) throw std::bad_alloc();
    // The new block is written before the old one goes: the text may lie in it.
    block = static_cast<unsigned char*>(AllocateDrawing(kPackedWord + text.size()));
    std::memcpy(WritePackedWord(block, text.size()), text.data(), text.size());
  }
  Release();
  m_block = block;
}

void PooledText::Release() noexcept {
  if (m_block != nullptr) FreeDrawing(m_block, kPackedWord + ReadPackedWord(m_block));
  m_block = nullptr;
}

}  // namespace rv
