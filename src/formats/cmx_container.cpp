#include "formats/cmx_container.h"

#include <algorithm>
#include <cstring>
#include <set>

#include "formats/cmx_import.h"
#include "frame/error_codes.h"
#include "frame/frame.h"
#include "model/data_access.h"

namespace rv {

namespace {

// The file start: a RIFF head of 20 bytes and a header of 120.
constexpr std::size_t kRiffHeadSize = 20;
constexpr std::size_t kHeaderSize = 120;
constexpr std::size_t kFormTypeOffset = 8;
constexpr std::size_t kVersionOffset = 74;
constexpr std::size_t kVersionSize = 4;
constexpr std::size_t kFactorOffset = 84;
constexpr std::size_t kIndexOffsetOffset = 104;
constexpr std::size_t kBoundingBoxOffset = 116;
constexpr double kMillimetresPerMetre = 1000.0;

constexpr int16_t kPageIndexType = 2;
constexpr int16_t kImportedPage = 1;
constexpr std::size_t kMasterRecordSize = 6;  // u16 type, u32 offset
constexpr std::size_t kRecordSizeField = 2;
constexpr std::size_t kPageRecordSize = 16;
constexpr std::size_t kLayerRecordMinimum = 10;  // offset, name length, further value

std::size_t NonNegative(int16_t count) { return std::size_t(std::max<int16_t>(count, 0)); }

}  // namespace

void ExpectChunk(ByteCursor& cursor, std::size_t offset, const char (&identifier)[5]) {
  cursor.Seek(offset);
  char found[4];
  cursor.ReadBytes(found, sizeof found);
  if (std::memcmp(found, identifier, sizeof found) != 0) Raise(kErrCmxIndexMismatch);
  cursor.Skip(4);  // the chunk's size, not used
}

CRvCMXFormat::CRvCMXFormat(const char* text) : m_text(text != nullptr ? text : "") {}

uint32_t CRvCMXFormat::Open(const std::string& path, const std::string& mode) {
  m_path = path;
  return CRvFormatStrategy::Open(path, mode);
}

uint32_t CRvCMXFormat::ImportToRIF() {
  const uint32_t code = Guard([&] {
    const std::vector<uint8_t> bytes = ReadWholeFile(m_path);
    ImportBytes(bytes.data(), bytes.size());
  });
  // A read past the end leaves the file closed; the driver's close then
  // finds nothing to close.
  if (code == kErrFileShort) (void)Close();
  return code;
}

uint32_t CRvCMXFormat::ExportFromRIF(void*) { return kErrNoDirection; }

void CRvCMXFormat::ImportBytes(const uint8_t* data, std::size_t size) {
  ByteCursor cursor(data, size);
  ReadHeader(cursor);
  ReadIndexes(cursor);
  ReadPages(cursor);
}

// ---------------------------------------------------------------------------
// Header
// ---------------------------------------------------------------------------

void CRvCMXFormat::ReadHeader(ByteCursor& cursor) {
  uint8_t start[kRiffHeadSize + kHeaderSize];
  cursor.ReadBytes(start, kRiffHeadSize);
  cursor.ReadBytes(start + kRiffHeadSize, kHeaderSize);
  if (std::memcmp(start, "RIFF", 4) != 0 || std::memcmp(start + kFormTypeOffset, "CMX1", 4) != 0) {
    Raise(kErrCmxNotCmx);
  }
  // Version 1 has 16-bit coordinates.
  if (start[kVersionOffset] == '1') Raise(kErrCmxNotCmx);
  ByteCursor fields(start, sizeof start);
  m_header.version.assign(reinterpret_cast<const char*>(start + kVersionOffset), kVersionSize);
  fields.Seek(kFactorOffset);
  m_header.factor = fields.ReadF64LE() * kMillimetresPerMetre;
  fields.Seek(kIndexOffsetOffset);
  m_header.indexOffset = fields.ReadU32LE();
  fields.Seek(kBoundingBoxOffset);
  m_header.bboxLeft = fields.ReadI32LE();
  m_header.bboxTop = fields.ReadI32LE();
  m_header.bboxRight = fields.ReadI32LE();
  m_header.bboxBottom = fields.ReadI32LE();

  // The document's origin is the lower left corner of the file's box.
  RVRECT box{};
  box.top = double(int64_t(m_header.bboxTop) - m_header.bboxBottom) * m_header.factor;
  box.left = 0.0;
  box.right = double(int64_t(m_header.bboxRight) - m_header.bboxLeft) * m_header.factor;
  box.bottom = 0.0;
  CRvDataAccess::Instance().SetDocBoundBox(box);
}

// ---------------------------------------------------------------------------
// Indexes
// ---------------------------------------------------------------------------

void CRvCMXFormat::ReadIndexes(ByteCursor& cursor) {
  ExpectChunk(cursor, m_header.indexOffset, "ixmr");
  cursor.Skip(2);  // master identifier
  cursor.Skip(2);  // record size
  const std::size_t count = NonNegative(cursor.ReadI16LE());
  cursor.NeedItems(count, kMasterRecordSize);
  for (std::size_t i = 0; i < count; ++i) {
    const auto type = int16_t(cursor.ReadU16LE());
    m_masterIndex.emplace(type, cursor.ReadU32LE());
  }
  const auto page = m_masterIndex.find(kPageIndexType);
  if (page == m_masterIndex.end() || page->second == 0) Raise(kErrCmxMissing);
  ReadPageIndex(cursor, page->second);

  // Pages that share a layer index would read it again to the same list,
  // which the first reading has entered already.
  std::set<uint32_t> read;
  for (const CmxPageRecord& record : m_pages) {
    if (read.insert(record.LayerIndexOffset()).second) ReadLayerIndex(cursor, record.LayerIndexOffset());
  }
}

void CRvCMXFormat::ReadPageIndex(ByteCursor& cursor, uint32_t offset) {
  ExpectChunk(cursor, offset, "ixpg");
  const std::size_t count = NonNegative(cursor.ReadI16LE());
  const std::size_t prefix = m_header.HasRecordSizes() ? kRecordSizeField : 0;
  cursor.NeedItems(count, prefix + kPageRecordSize);
  m_pages.resize(count);
  for (CmxPageRecord& record : m_pages) {
    cursor.Skip(prefix);
    for (uint32_t& value : record.values) value = cursor.ReadU32LE();
  }
}

void CRvCMXFormat::ReadLayerIndex(ByteCursor& cursor, uint32_t offset) {
  ExpectChunk(cursor, offset, "ixlr");
  const std::size_t count = NonNegative(cursor.ReadI16LE());
  const int16_t pageNumber = cursor.ReadI16LE();
  const std::size_t prefix = m_header.HasRecordSizes() ? kRecordSizeField : 0;
  cursor.NeedItems(count, prefix + kLayerRecordMinimum);
  std::vector<CmxLayerEntry> layers(count);
  for (CmxLayerEntry& layer : layers) {
    cursor.Skip(prefix);
    layer.offset = cursor.ReadU32LE();
    layer.name = cursor.ReadText(cursor.ReadU16LE());
    cursor.Skip(4);  // a further value, not used
  }
  // Of two layer lists for one page number the first stays.
  m_layers.emplace(pageNumber, std::move(layers));
}

// ---------------------------------------------------------------------------
// Pages
// ---------------------------------------------------------------------------

void CRvCMXFormat::ReadPages(ByteCursor& cursor) {
  const auto page = m_layers.find(kImportedPage);
  if (page == m_layers.end()) Raise(kErrCmxMissing);
  CRvCMXCommandReader reader(CRvDataAccess::Instance(), cursor, m_header);
  for (const CmxLayerEntry& layer : page->second) reader.ReadLayer(layer.offset);
}

uint32_t ImportCmxBytes(const uint8_t* data, std::size_t size, const char* text) {
  return Guard([&] {
    CRvCMXFormat format(text);
    format.ImportBytes(data, size);
  });
}

}  // namespace rv
