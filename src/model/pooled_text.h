// A short text of an art's records (a colour's name, a plot text) in the
// drawing's storage: no block when empty, else one block of its length and
// its bytes. Eight bytes in the record instead of a string's thirty-two.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace rv {

class PooledText {
 public:
  PooledText() = default;
  PooledText(const PooledText& other) { Assign(other.View()); }
  PooledText& operator=(const PooledText& other) {
    if (this != &other) Assign(other.View());
    return *this;
  }
  PooledText& operator=(std::string_view text) {
    Assign(text);
    return *this;
  }
  ~PooledText() { Release(); }

  std::string_view View() const;
  operator std::string_view() const { return View(); }

 private:
  unsigned char* m_block = nullptr;

  void Assign(std::string_view text);
  void Release() noexcept;
};

}  // namespace rv
