// A cursor over the bytes of a file that was read whole.
//
// Binary formats (CMX, ITW, stroke fonts) read their file once into memory and
// walk it with a ByteCursor, so that a parser can also start from bytes (tests
// and fuzz targets feed memory) and every read is checked against what is
// left. A read past the end raises kErrFileShort and a seek outside the bytes
// kErrFileSeek: the same codes as the stream steps of CRvFormatStrategy. The
// cursor never allocates; counts from a file go through FitsItems before any
// reserve or loop.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include "frame/error_codes.h"
#include "frame/frame.h"

namespace rv {

class ByteCursor {
 public:
  ByteCursor(const uint8_t* data, std::size_t size) : m_data(data), m_size(data != nullptr ? size : 0) {}
  explicit ByteCursor(const std::vector<uint8_t>& bytes) : ByteCursor(bytes.data(), bytes.size()) {}

  std::size_t Size() const { return m_size; }
  std::size_t Tell() const { return m_pos; }
  std::size_t Remaining() const { return m_size - m_pos; }
  bool AtEnd() const { return m_pos == m_size; }
  const uint8_t* Data() const { return m_data; }

  /// Moves to `offset` from the start; kErrFileSeek beyond the end.
  void Seek(std::size_t offset) {
    if (offset > m_size) Raise(kErrFileSeek);
    m_pos = offset;
  }
  /// Moves by `delta` from here; kErrFileSeek outside the bytes.
  void SeekFromCurrent(long long delta) {
    if (delta < 0 ? std::size_t(-(delta + 1)) + 1 > m_pos : std::size_t(delta) > Remaining()) Raise(kErrFileSeek);
    m_pos = std::size_t(static_cast<long long>(m_pos) + delta);
  }
  /// Skips `count` bytes; kErrFileShort when fewer are left.
  void Skip(std::size_t count) {
    Need(count);
    m_pos += count;
  }

  /// True when `count` items of `itemSize` bytes fit in what is left (no
  /// overflow of the product).
  bool FitsItems(std::size_t count, std::size_t itemSize) const {
    return itemSize == 0 || count <= Remaining() / itemSize;
  }
  /// Raises kErrFileShort unless `count` items of `itemSize` bytes are left.
  void NeedItems(std::size_t count, std::size_t itemSize) const {
    if (!FitsItems(count, itemSize)) Raise(kErrFileShort);
  }

  void ReadBytes(void* out, std::size_t count) {
    Need(count);
    if (count != 0) std::memcpy(out, m_data + m_pos, count);
    m_pos += count;
  }
  uint8_t ReadU8() {
    Need(1);
    return m_data[m_pos++];
  }
  uint16_t ReadU16LE() { return uint16_t(ReadLE(2)); }
  uint32_t ReadU32LE() { return uint32_t(ReadLE(4)); }
  int16_t ReadI16LE() { return int16_t(ReadU16LE()); }
  int32_t ReadI32LE() { return int32_t(ReadU32LE()); }
  uint16_t ReadU16BE() { return uint16_t(ReadBE(2)); }
  uint32_t ReadU32BE() { return uint32_t(ReadBE(4)); }
  float ReadF32LE() {
    const uint32_t bits = ReadU32LE();
    float value;
    std::memcpy(&value, &bits, sizeof value);
    return value;
  }
  double ReadF64LE() {
    const uint64_t bits = ReadLE(8);
    double value;
    std::memcpy(&value, &bits, sizeof value);
    return value;
  }
  /// `count` bytes as text (may hold zeros).
  std::string ReadText(std::size_t count) {
    Need(count);
    std::string text(reinterpret_cast<const char*>(m_data + m_pos), count);
    m_pos += count;
    return text;
  }

 private:
  void Need(std::size_t count) const {
    if (count > Remaining()) Raise(kErrFileShort);
  }
  uint64_t ReadLE(int bytes) {
    Need(std::size_t(bytes));
    uint64_t value = 0;
    for (int i = bytes - 1; i >= 0; --i) value = (value << 8) | m_data[m_pos + std::size_t(i)];
    m_pos += std::size_t(bytes);
    return value;
  }
  uint64_t ReadBE(int bytes) {
    Need(std::size_t(bytes));
    uint64_t value = 0;
    for (int i = 0; i < bytes; ++i) value = (value << 8) | m_data[m_pos + std::size_t(i)];
    m_pos += std::size_t(bytes);
    return value;
  }

  const uint8_t* m_data;
  std::size_t m_size;
  std::size_t m_pos = 0;
};

/// Reads a regular file whole. kErrFileOpen when it can't be opened or isn't a
/// regular file (a folder, a device); kErrFileShort when it can't be read whole.
std::vector<uint8_t> ReadWholeFile(const std::string& path);

}  // namespace rv
