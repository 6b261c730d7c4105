#include "model/tag_list.h"

#include <cstring>
#include <limits>
#include <new>

#include "model/drawing_memory.h"

namespace rv {

namespace {

constexpr std::size_t kWord = sizeof(uint32_t);

uint32_t ReadWord(const unsigned char* at) {
  uint32_t v;
  std::memcpy(&v, at, kWord);
  return v;
}

unsigned char* WriteWord(unsigned char* at, std::size_t v) {
  const uint32_t w = uint32_t(v);
  std::memcpy(at, &w, kWord);
  return at + kWord;
}

// One pair of a block: where it starts and ends, its key and value.
struct Pair {
  const unsigned char* begin;
  const unsigned char* end;
  std::string_view key, value;
};

template <class F>
void ForEachPair(const unsigned char* block, F&& f) {
  if (block == nullptr) return;
  const unsigned char* at = block + kWord;
  const unsigned char* const end = block + ReadWord(block);
  while (at < end) {
    const uint32_t keyLength = ReadWord(at), valueLength = ReadWord(at + kWord);
    const char* text = reinterpret_cast<const char*>(at + 2 * kWord);
    const Pair pair{at, at + 2 * kWord + keyLength + valueLength, {text, keyLength}, {text + keyLength, valueLength}};
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
  const unsigned char* before = m_block == nullptr ? nullptr : m_block + kWord;
  const unsigned char* after = m_block == nullptr ? nullptr : m_block + ReadWord(m_block);
  const unsigned char* const end = after;
  ForEachPair(m_block, [&](const Pair& p) {
    if (p.key < key) {
      before = p.end;
      return true;
    }
    after = p.key == key ? p.end : p.begin;
    return false;
  });
  const std::size_t head = m_block == nullptr ? 0 : std::size_t(before - (m_block + kWord));
  const std::size_t tail = m_block == nullptr ? 0 : std::size_t(end - after);
  const std::size_t pair = 2 * kWord + key.size() + value.size();
  if (key.size() > std::numeric_limits<uint32_t>::max() / 2 || value.size() > std::numeric_limits<uint32_t>::max() / 2 ||
      head + tail + pair > std::numeric_limits<uint32_t>::max() - kWord) {
    throw std::bad_alloc();
  }
  const std::size_t size = kWord + head + pair + tail;
  // The new block is written before the old one goes: the value may lie in it.
  auto* block = static_cast<unsigned char*>(AllocateDrawing(size));
  unsigned char* at = WriteWord(block, size);
  if (head != 0) std::memcpy(at, m_block + kWord, head);
  at = WriteWord(WriteWord(at + head, key.size()), value.size());
  if (!key.empty()) std::memcpy(at, key.data(), key.size());
  if (!value.empty()) std::memcpy(at + key.size(), value.data(), value.size());
  if (tail != 0) std::memcpy(at + key.size() + value.size(), after, tail);
  Release();
  m_block = block;
}

void TagList::Release() noexcept {
  if (m_block != nullptr) FreeDrawing(m_block, ReadWord(m_block));
  m_block = nullptr;
}

}  // namespace rv
