// The tags of an art: key and value pairs, keys in bytewise order.
//
// Most arts have no tags, and a tagged art mostly has one, so the pairs sit
// in one block of the drawing's storage: its size, then per pair the lengths
// of key and value and their bytes. An art without tags holds a null block.
// A value read stays valid until the next Set on the same list.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace rv {

class TagList {
 public:
  TagList() = default;
  TagList(const TagList&) = delete;
  TagList& operator=(const TagList&) = delete;
  ~TagList() { Release(); }

  /// The value of `key`, or none.
  std::optional<std::string_view> Find(std::string_view key) const;
  /// Sets the value of `key`, adding the pair where it isn't there yet.
  void Set(std::string_view key, std::string_view value);

 private:
  unsigned char* m_block = nullptr;

  void Release() noexcept;
};

}  // namespace rv
