#include "formats/stroke_font.h"

#include "frame/frame.h"

namespace rv {

namespace {

constexpr uint16_t kFlagsLow15 = 0x7FFF;
constexpr std::size_t kStepWords = 3;
constexpr std::size_t kArcExtraWords = 3;

bool WideRecordMatches(int16_t flags, uint16_t subNumber) {
  const uint16_t low = uint16_t(flags) & kFlagsLow15;
  if (subNumber == 0) return flags < 0;
  if (subNumber == 1) return flags < 0 || low == 1;
  return low == subNumber;
}

}  // namespace

std::optional<StrokeIndexEntry> FindInWideIndex(ByteCursor index, uint16_t code, uint16_t subNumber) {
  while (index.Remaining() >= kWideIndexRecord) {
    const uint16_t recordCode = index.ReadU16LE();
    index.Skip(2);
    const int16_t flags = index.ReadI16LE();
    StrokeIndexEntry entry;
    entry.offset = index.ReadU32LE();
    entry.size = index.ReadU16LE();
    if (recordCode != code) continue;
    if (WideRecordMatches(flags, subNumber)) return entry;
    if (subNumber == 0 && flags >= 0) return std::nullopt;
  }
  return std::nullopt;
}

std::optional<StrokeIndexEntry> FindInPlainIndex(ByteCursor index, uint16_t code) {
  const bool shifted = code >= kPlainShiftFirst && code <= kPlainShiftLast;
  const uint16_t other = uint16_t(code + kPlainShift);
  while (index.Remaining() >= kPlainIndexRecord) {
    const uint16_t recordCode = index.ReadU16LE();
    StrokeIndexEntry entry;
    entry.offset = index.ReadU32LE();
    entry.size = index.ReadU16LE();
    if (recordCode == code || (shifted && recordCode == other)) return entry;
  }
  return std::nullopt;
}

bool IsScrambledIndex(const std::string& indexPath, bool plainIndex) {
  if (indexPath.find("USER") != std::string::npos) return false;
  return !(plainIndex && indexPath.find("KAMON") != std::string::npos);
}

std::vector<StrokeStep> ParseStrokeRun(const std::vector<uint8_t>& run) {
  std::vector<StrokeStep> steps;
  ByteCursor cursor(run);
  while (cursor.FitsItems(kStepWords, 2)) {
    StrokeStep step;
    step.op = cursor.ReadU16LE();
    step.x = cursor.ReadI16LE();
    step.y = cursor.ReadI16LE();
    if (step.op == kStrokeEnd) break;
    if (step.op == kStrokeArc) {
      if (!cursor.FitsItems(kArcExtraWords, 2)) break;
      step.cx = cursor.ReadI16LE();
      step.cy = cursor.ReadI16LE();
      step.direction = cursor.ReadI16LE();
    }
    steps.push_back(step);
  }
  return steps;
}

const std::vector<uint8_t>* CRvStrokeFontFiles::File(const std::string& path) {
  auto known = m_files.find(path);
  if (known == m_files.end()) {
    std::optional<std::vector<uint8_t>> bytes;
    if (Guard([&] { bytes = ReadWholeFile(path); }) != 0) {
      bytes.reset();
      Trace("Font File:%s was not found.\n", path.c_str());
    }
    known = m_files.emplace(path, std::move(bytes)).first;
  }
  return known->second ? &*known->second : nullptr;
}

std::optional<std::vector<uint8_t>> CRvStrokeFontFiles::Run(const std::string& dataPath,
                                                            const StrokeIndexEntry& entry) {
  const std::vector<uint8_t>* data = File(dataPath);
  if (data == nullptr || entry.offset > data->size() || entry.size > data->size() - entry.offset) {
    return std::nullopt;
  }
  const auto begin = data->begin() + std::ptrdiff_t(entry.offset);
  return std::vector<uint8_t>(begin, begin + entry.size);
}

std::optional<std::vector<uint8_t>> CRvStrokeFontFiles::FindWide(const std::string& indexPath,
                                                                 const std::string& dataPath, uint16_t code,
                                                                 uint16_t subNumber) {
  if (IsScrambledIndex(indexPath, false)) return std::nullopt;
  const std::vector<uint8_t>* index = File(indexPath);
  if (index == nullptr) return std::nullopt;
  const std::optional<StrokeIndexEntry> entry = FindInWideIndex(ByteCursor(*index), code, subNumber);
  if (!entry) return std::nullopt;
  return Run(dataPath, *entry);
}

std::optional<std::vector<uint8_t>> CRvStrokeFontFiles::FindPlain(const std::string& indexPath,
                                                                  const std::string& dataPath, uint16_t code) {
  if (IsScrambledIndex(indexPath, true)) return std::nullopt;
  const std::vector<uint8_t>* index = File(indexPath);
  if (index == nullptr) return std::nullopt;
  const std::optional<StrokeIndexEntry> entry = FindInPlainIndex(ByteCursor(*index), code);
  if (!entry) return std::nullopt;
  return Run(dataPath, *entry);
}

}  // namespace rv
