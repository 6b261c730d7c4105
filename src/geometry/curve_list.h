// CurveList: the growing list of result records of a curve conversion. It
// lives in memory of the C allocator and grows with realloc, so that a
// finished list is handed to the host as it stands (no copy) and released by
// RvMiFreePoints.
#pragma once

#include <cstddef>
#include <cstdlib>
#include <new>

#include "rvdataaccess.h"

namespace rv {

class CurveList {
 public:
  CurveList() = default;
  ~CurveList() { std::free(m_data); }
  CurveList(CurveList&& other) noexcept : m_data(other.m_data), m_size(other.m_size), m_capacity(other.m_capacity) {
    other.m_data = nullptr;
    other.m_size = other.m_capacity = 0;
  }
  CurveList& operator=(CurveList&& other) noexcept {
    if (this != &other) {
      std::free(m_data);
      m_data = other.m_data;
      m_size = other.m_size;
      m_capacity = other.m_capacity;
      other.m_data = nullptr;
      other.m_size = other.m_capacity = 0;
    }
    return *this;
  }
  CurveList(const CurveList&) = delete;
  CurveList& operator=(const CurveList&) = delete;

  void push_back(const RVCURVEPOINT& record) {
    if (m_size == m_capacity) Grow();
    m_data[m_size++] = record;
  }
  void clear() noexcept { m_size = 0; }
  /// Makes room for at least `capacity` records.
  void reserve(std::size_t capacity) {
    if (capacity > m_capacity) Resize(capacity);
  }

  std::size_t size() const noexcept { return m_size; }
  bool empty() const noexcept { return m_size == 0; }
  RVCURVEPOINT* data() noexcept { return m_data; }
  const RVCURVEPOINT* data() const noexcept { return m_data; }
  RVCURVEPOINT& operator[](std::size_t i) noexcept { return m_data[i]; }
  const RVCURVEPOINT& operator[](std::size_t i) const noexcept { return m_data[i]; }
  RVCURVEPOINT* begin() noexcept { return m_data; }
  RVCURVEPOINT* end() noexcept { return m_data + m_size; }
  const RVCURVEPOINT* begin() const noexcept { return m_data; }
  const RVCURVEPOINT* end() const noexcept { return m_data + m_size; }

  /// Gives up the buffer (trimmed to the records) to the caller, who frees
  /// it with std::free. Null when the list is empty. The list is empty after.
  RVCURVEPOINT* Release() noexcept {
    RVCURVEPOINT* out = m_data;
    if (m_size == 0) {
      std::free(out);
      out = nullptr;
    } else if (m_size < m_capacity) {
      if (void* trimmed = std::realloc(out, m_size * sizeof(RVCURVEPOINT))) out = static_cast<RVCURVEPOINT*>(trimmed);
    }
    m_data = nullptr;
    m_size = m_capacity = 0;
    return out;
  }

 private:
  void Grow() {
    const std::size_t limit = std::size_t(-1) / sizeof(RVCURVEPOINT) / 2;
    if (m_capacity > limit) throw std::bad_alloc();
    Resize(m_capacity == 0 ? 16 : m_capacity * 2);
  }

  void Resize(std::size_t capacity) {
    if (capacity > std::size_t(-1) / sizeof(RVCURVEPOINT)) throw std::bad_alloc();
    void* grown = std::realloc(m_data, capacity * sizeof(RVCURVEPOINT));
    if (grown == nullptr) throw std::bad_alloc();  // the old buffer stays ours
    m_data = static_cast<RVCURVEPOINT*>(grown);
    m_capacity = capacity;
  }

  RVCURVEPOINT* m_data = nullptr;
  std::size_t m_size = 0;
  std::size_t m_capacity = 0;
};

}  // namespace rv
