// The file frame: a format strategy behind a small driver.
//
// CRvFile owns one CRvFormatStrategy, which knows one file format. The
// driver makes or chooses the document, opens the file, runs the strategy
// and closes the file; on a failure it closes the file and returns the code.
// The strategy base gives every format the small file steps (seek, read,
// write), each of which fails with its own code and closes the file.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>

namespace rv {

class CRvFormatStrategy {
 public:
  CRvFormatStrategy() = default;
  CRvFormatStrategy(const CRvFormatStrategy&) = delete;
  CRvFormatStrategy& operator=(const CRvFormatStrategy&) = delete;
  /// Closes a file that is still open (without looking at the result).
  virtual ~CRvFormatStrategy();

  /// Opens `path` with the binary `mode` ("rb" or "wb"); 0x01000201 when it
  /// can't be opened.
  virtual uint32_t Open(const std::string& path, const std::string& mode);
  /// Closes the file, if any; 0x01000401 when the close fails.
  virtual uint32_t Close();
  /// The format's import into the active document.
  virtual uint32_t ImportToRIF() = 0;
  /// The format's export of the active document; `context` is the host's
  /// progress context.
  virtual uint32_t ExportFromRIF(void* context) = 0;

  // ---- shared file steps; each closes the file when it fails ----
  /// Positions the stream at `offset` from the start; 0x01000501 on failure.
  uint32_t SeekFromStart(long offset);
  /// Moves the stream by `offset` from the current position; 0x01000501.
  uint32_t SeekFromCurrent(long offset);
  /// Reads `count` items of 1 byte; 0x01000301 when fewer arrive.
  uint32_t ReadBytes(uint8_t* out, std::size_t count);
  /// Reads `count` little-endian 16-bit items; 0x01000301 when fewer arrive.
  uint32_t ReadU16(uint16_t* out, std::size_t count);
  /// Reads `count` little-endian 32-bit items; 0x01000301 when fewer arrive.
  uint32_t ReadU32(uint32_t* out, std::size_t count);
  /// Writes a block; 0x01000301 when fewer bytes are written.
  uint32_t WriteBlock(const void* data, std::size_t bytes);

  /// The open stream, or null.
  std::FILE* File() const { return m_file; }

 protected:
  std::FILE* m_file = nullptr;

 private:
  /// Reads `count` items of `size` bytes and puts them in machine order.
  uint32_t ReadItems(void* out, std::size_t size, std::size_t count);
  /// Closes the stream after a failed step; the file counts as closed then.
  void CloseAfterFailure() noexcept;
};

/// The driver of one import or export.
class CRvFile {
 public:
  explicit CRvFile(std::unique_ptr<CRvFormatStrategy> format) : m_poFormat(std::move(format)) {}
  CRvFile(const CRvFile&) = delete;
  CRvFile& operator=(const CRvFile&) = delete;
  virtual ~CRvFile() = default;

  /// Imports `path`: with `mode` 0 into a new document whose index goes to
  /// `*documentIndex`, else into the document `*documentIndex`.
  uint32_t Import(const char* path, uint16_t mode, int16_t* documentIndex);
  /// Exports the document `documentIndex` to `path`.
  uint32_t Export(const char* path, int16_t documentIndex, void* context);

  CRvFormatStrategy* Format() const { return m_poFormat.get(); }

 private:
  std::unique_ptr<CRvFormatStrategy> m_poFormat;
};

}  // namespace rv
