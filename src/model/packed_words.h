// 32-bit words inside the packed blocks of the drawing's storage (tags,
// pooled texts): lengths at any alignment, read and written bytewise.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace rv {

inline constexpr std::size_t kPackedWord = sizeof(uint32_t);

inline uint32_t ReadPackedWord(const unsigned char* at) {
  uint32_t v;
  std::memcpy(&v, at, kPackedWord);
  return v;
}

/// Writes the low 32 bits of v; returns the place behind the word.
inline unsigned char* WritePackedWord(unsigned char* at, std::size_t v) {
  const auto w = uint32_t(v);
  std::memcpy(at, &w, kPackedWord);
  return at + kPackedWord;
}

}  // namespace rv
