#include "model/tag_list.h"

#include <cstring>
#include <limits>
#include <new>

#include "model/drawing_memory.h"
#include "model/packed_words.h"

namespace rv {

namespace {

// One pair of a block: where it starts and ends, its key and value.
struct Pair {
  const unsigned char* begin;
  const unsigned char* end;
  std::string_view key, value;
};

template <class F>
void ForEachPair(const unsigned char* block, F&& f) {
  if (block == nullptr) return;
  const unsigned char* at = block + kPackedWord;
  const unsigned char* const end = block + ReadPackedWord(block);
  while (at < end) {
    const uint32_t keyLength = ReadPackedWord(at), valueLength = ReadPackedWord(at + kPackedWord);
    const char* text = reinterpret_cast<const char*>(at + 2 * kPackedWord);
    const Pair pair{at, at + 2 * kPackedWord + keyLength + valueLength, {text, keyLength}, {text + keyLength, valueLength}};
    if (!f(pair)) return;
    at = pair.end;
  }
}

}  // namespace

std::optional<std::string_view> TagList::Find(std::string_view key) const {
  std::optional<std::string_view> found;
  ForEachPair(m_block, [&](const Pair& p) {
    if (p.key == key) found = p.value;
    return p.key < key;
  });
  return found;
}

void TagList::Set(std::string_view key, std::string_view value) {
  // Where the pair goes: in front of the first key not below it, in place
  // of an equal key.
  const unsigned char* before = m_block == nullptr ? nullptr : m_block + kPackedWord;
  const unsigned char* after = m_block == nullptr ? nullptr : m_block + ReadPackedWord(m_block);
  const unsigned char* const end = after;
  ForEachPair(m_block, [&](const Pair& p) {
    if (p.key < key) {
      before = p.end;
      return true;
    }
    after = p.key == key ? p.end : p.begin;
    return false;
  });
  const std::size_t head = m_block == nullptr ? 0 : std::size_t(before - (m_block + kPackedWord));
  const std::size_t tail = m_block == nullptr ? 0 : std::size_t(end - after);
  const std::size_t pair = 2 * kPackedWord + key.size() + value.size();
  if (key.size() > std::numeric_limits<uint32_t>::max() / 2 || value.size() > std::numeric_limits<uint32_t>::max() / 2 ||
      head + tail + pair > std::numeric_limits<uint32_t>::max() - kPackedWord) {
    throw std::bad_alloc();
  }
  const std::size_t size = kPackedWord + head + pair + tail;
  // The new block is written before the old one goes: the value may lie in it.
  auto* block = static_cast<unsigned char*>(AllocateDrawing(size));
  unsigned char* at = WritePackedWord(block, size);
  if (head != 0) std::memcpy(at, m_block + kPackedWord, head);
  at = WritePackedWord(WritePackedWord(at + head, key.size()), value.size());
  if (!key.empty()) std::memcpy(at, key.data(), key.size());
  if (!value.empty()) std::memcpy(at + key.size(), value.data(), value.size());
  if (tail != 0) std::memcpy(at + key.size() + value.size(), after, tail);
  Release();
  m_block = block;
}

void TagList::Release() noexcept {
  if (m_block != nullptr) FreeDrawing(m_block, ReadPackedWord(m_block));
  m_block = nullptr;
}

}  // namespace rv
