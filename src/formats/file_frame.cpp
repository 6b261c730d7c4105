#include "formats/file_frame.h"

#include <cstring>

#include "frame/error_codes.h"
#include "frame/frame.h"
#include "model/data_access.h"

namespace rv {

CRvFormatStrategy::~CRvFormatStrategy() {
  if (m_file != nullptr) std::fclose(m_file);
}

uint32_t CRvFormatStrategy::Open(const std::string& path, const std::string& mode) {
  return Guard([&] {
    const char* binary = mode == "wb" ? "wb" : "rb";
    if (m_file != nullptr) {
      std::fclose(m_file);
      m_file = nullptr;
    }
    m_file = std::fopen(path.c_str(), binary);
    if (m_file == nullptr) Raise(kErrFileOpen);
  });
}

uint32_t CRvFormatStrategy::Close() {
  return Guard([&] {
    if (m_file == nullptr) return;
    std::FILE* file = m_file;
    m_file = nullptr;
    if (std::fclose(file) != 0) Raise(kErrFileClose);
  });
}

void CRvFormatStrategy::CloseAfterFailure() noexcept {
  if (m_file != nullptr) {
    std::fclose(m_file);
    m_file = nullptr;
  }
}

uint32_t CRvFormatStrategy::SeekFromStart(long offset) {
  const uint32_t code = Guard([&] {
    if (m_file == nullptr || std::fseek(m_file, offset, SEEK_SET) != 0) Raise(kErrFileSeek);
  });
  if (code != 0) CloseAfterFailure();
  return code;
}

uint32_t CRvFormatStrategy::SeekFromCurrent(long offset) {
  const uint32_t code = Guard([&] {
    if (m_file == nullptr || std::fseek(m_file, offset, SEEK_CUR) != 0) Raise(kErrFileSeek);
  });
  if (code != 0) CloseAfterFailure();
  return code;
}

uint32_t CRvFormatStrategy::ReadItems(void* out, std::size_t size, std::size_t count) {
  const uint32_t code = Guard([&] {
    if (count == 0) return;
    if (m_file == nullptr) Raise(kErrFileShort);
    const std::size_t got = std::fread(out, size, count, m_file);
    if (got < count) Raise(kErrFileShort);
    // Files hold their integers little-endian; bring them to machine order.
    auto* bytes = static_cast<uint8_t*>(out);
    for (std::size_t i = 0; i < count; ++i) {
      const uint8_t* b = bytes + i * size;
      if (size == 2) {
        const uint16_t v = uint16_t(b[0] | (b[1] << 8));
        std::memcpy(bytes + i * size, &v, 2);
      } else if (size == 4) {
        const uint32_t v = uint32_t(b[0]) | (uint32_t(b[1]) << 8) | (uint32_t(b[2]) << 16) | (uint32_t(b[3]) << 24);
        std::memcpy(bytes + i * size, &v, 4);
      }
    }
  });
  if (code != 0) CloseAfterFailure();
  return code;
}

uint32_t CRvFormatStrategy::ReadBytes(uint8_t* out, std::size_t count) { return ReadItems(out, 1, count); }

uint32_t CRvFormatStrategy::ReadU16(uint16_t* out, std::size_t count) { return ReadItems(out, 2, count); }

uint32_t CRvFormatStrategy::ReadU32(uint32_t* out, std::size_t count) { return ReadItems(out, 4, count); }

uint32_t CRvFormatStrategy::WriteBlock(const void* data, std::size_t bytes) {
  const uint32_t code = Guard([&] {
    if (bytes == 0) return;
    if (m_file == nullptr || std::fwrite(data, 1, bytes, m_file) < bytes) Raise(kErrFileShort);
  });
  if (code != 0) CloseAfterFailure();
  return code;
}

}  // namespace rv

// ---------------------------------------------------------------------------
// The driver
// ---------------------------------------------------------------------------

namespace rv {

uint32_t CRvFile::Import(const char* path, uint16_t mode, int16_t* documentIndex) {
  if (!m_poFormat) return kErrFileOpen;
  const uint32_t code = Guard([&] {
    Trace("RvFile::Import\n");
    CRvDataAccess& store = CRvDataAccess::Instance();
    if (mode != 0) {
      // A missing index names no document.
      store.SetActiveDocument(documentIndex != nullptr ? *documentIndex : int16_t(-1));
    } else {
      const int16_t index = store.CreateDocument(0);
      if (documentIndex != nullptr) *documentIndex = index;
    }
    Check(m_poFormat->Open(path != nullptr ? path : "", "rb"));
    Trace("m_poFormat->ImportToRIF\n");
    Check(m_poFormat->ImportToRIF());
    Check(m_poFormat->Close());
    Trace("Close\n");
  });
  // The file is closed once; the code of the failure is the result, not
  // that of the close.
  if (code != 0) (void)m_poFormat->Close();
  return code;
}

uint32_t CRvFile::Export(const char* path, int16_t documentIndex, void* context) {
  if (!m_poFormat) return kErrFileOpen;
  const uint32_t code = Guard([&] {
    Trace("RvFile::Export\n");
    CRvDataAccess::Instance().SetActiveDocument(documentIndex);
    Check(m_poFormat->Open(path != nullptr ? path : "", "wb"));
    Check(m_poFormat->ExportFromRIF(context));
    Check(m_poFormat->Close());
    Trace("Close\n");
  });
  if (code != 0) (void)m_poFormat->Close();
  return code;
}

}  // namespace rv
