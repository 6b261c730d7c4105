// CMX import, the outer file: the RIFF frame, the header, the indexes and
// the walk that finds the layers of the first page.
//
// The reader goes by index and never scans chunks: the header names the
// master index, the master index the page index, each page its layer index,
// and each layer the offset of its first command. Everything else in the file
// (colours, outlines, fonts, thumbnails) is never looked at. Only files with
// 32-bit coordinates are read, and only page 1 is imported. The file is read
// whole and walked with a ByteCursor, so that the import can also start from
// bytes.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "formats/byte_cursor.h"
#include "formats/file_frame.h"

namespace rv {

/// The fields of the file start that the import uses.
struct CmxHeader {
  std::string version;  ///< the major version text; its first byte tells the variant
  double factor = 0.0;  ///< millimetres per coordinate unit
  uint32_t indexOffset = 0;
  int32_t bboxLeft = 0;
  int32_t bboxTop = 0;
  int32_t bboxRight = 0;
  int32_t bboxBottom = 0;

  /// Whether the index records carry 2 bytes of record size in front.
  bool HasRecordSizes() const { return !version.empty() && version[0] == '2'; }
};

/// One record of a page index: four offsets, of which the second is that of
/// the page's layer index.
struct CmxPageRecord {
  uint32_t values[4] = {};
  uint32_t LayerIndexOffset() const { return values[1]; }
};

/// One layer of a layer index.
struct CmxLayerEntry {
  uint32_t offset = 0;  ///< file offset of the layer's first command
  std::string name;
};

/// The CMX format strategy: import only.
class CRvCMXFormat : public CRvFormatStrategy {
 public:
  /// `text` is stored and has no effect on the drawing; null reads as "".
  explicit CRvCMXFormat(const char* text);

  /// Opens the file and remembers its path, which the import reads whole.
  uint32_t Open(const std::string& path, const std::string& mode) override;
  /// Reads the file whole and imports it into the active document. A read
  /// past the end (0x01000301) leaves the file closed.
  uint32_t ImportToRIF() override;
  /// 0x01001101: this format only reads.
  uint32_t ExportFromRIF(void* context) override;

  /// The import of a file's bytes into the active document; raises the
  /// codes of the file (what was made before a failure stays).
  void ImportBytes(const uint8_t* data, std::size_t size);

  const CmxHeader& Header() const { return m_header; }
  const std::string& Text() const { return m_text; }

 private:
  void ReadHeader(ByteCursor& cursor);
  void ReadIndexes(ByteCursor& cursor);
  void ReadPageIndex(ByteCursor& cursor, uint32_t offset);
  void ReadLayerIndex(ByteCursor& cursor, uint32_t offset);
  void ReadPages(ByteCursor& cursor);

  std::string m_path;
  std::string m_text;
  CmxHeader m_header;
  std::map<int16_t, uint32_t> m_masterIndex;  ///< section type -> offset; the first record of a type wins
  std::vector<CmxPageRecord> m_pages;
  std::map<int16_t, std::vector<CmxLayerEntry>> m_layers;  ///< page number -> layers; the first list wins
};

/// Seeks to `offset`, reads the 4-byte identifier and the 4 size bytes;
/// kErrCmxIndexMismatch when the identifier differs from `identifier`.
void ExpectChunk(ByteCursor& cursor, std::size_t offset, const char (&identifier)[5]);

/// The bytes of a CMX file through the import, into the active document, in
/// a frame: 0 or the code of the failure. For tests and fuzz targets.
uint32_t ImportCmxBytes(const uint8_t* data, std::size_t size, const char* text);

}  // namespace rv
