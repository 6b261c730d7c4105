// Stroke fonts: the font files that the ITW import draws most characters from.
//
// A stroke font is a pair of files: an index of fixed-size records that gives
// for a character code the offset and size of its run in the data file. Two
// kinds exist: ".TBW" with ".DAW" (records of 12 bytes that tell variants of a
// character apart by a sub-number) and ".TBL" with ".DAT" (records of 8
// bytes). A run of stroke data is a list of steps of 16-bit words: an
// operation and a point in a cell of 5000 by 5000 units, ended by operation 0.
//
// The index files of most fonts are stored scrambled through two substitution
// tables that this library doesn't hold; such an index counts as not found.
// An index is plain when its path contains "USER" (a ".TBL" also "KAMON").
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "formats/byte_cursor.h"

namespace rv {

/// Record sizes of the two index kinds.
constexpr std::size_t kWideIndexRecord = 12;
constexpr std::size_t kPlainIndexRecord = 8;
/// Plain-index codes from kPlainShiftFirst to kPlainShiftLast also match the
/// record of the code plus kPlainShift.
constexpr uint16_t kPlainShiftFirst = 30241;
constexpr uint16_t kPlainShiftLast = 30846;
constexpr uint16_t kPlainShift = 2304;

/// Where a character's run lies in the data file.
struct StrokeIndexEntry {
  uint32_t offset = 0;
  uint16_t size = 0;
};

/// Looks `code` up in a wide index (".TBW"). A record matches when its code is
/// `code` and, by `subNumber`: 0, its flags are negative; 1, its flags are
/// negative or their low 15 bits are 1; any other, their low 15 bits equal
/// `subNumber`. With `subNumber` 0 a record of the code with flags of 0 or
/// above ends the search unfound. A partial record at the end is ignored.
std::optional<StrokeIndexEntry> FindInWideIndex(ByteCursor index, uint16_t code, uint16_t subNumber);

/// Looks `code` up in a plain index (".TBL"): the first record of the code
/// (or of the shifted code, see kPlainShift).
std::optional<StrokeIndexEntry> FindInPlainIndex(ByteCursor index, uint16_t code);

/// True when an index at `indexPath` is stored scrambled: its path contains
/// neither "USER" nor, for a plain index (`plainIndex`), "KAMON".
bool IsScrambledIndex(const std::string& indexPath, bool plainIndex);

/// One step of stroke data. `op` 2 (an arc's start) also has a centre and a
/// direction.
struct StrokeStep {
  uint16_t op = 0;
  int16_t x = 0;
  int16_t y = 0;
  int16_t cx = 0;
  int16_t cy = 0;
  int16_t direction = 0;
};

/// Stroke operations.
enum StrokeOp : uint16_t {
  kStrokeEnd = 0,
  kStrokeLine = 1,
  kStrokeArc = 2,
  kStrokeClose = 3,
  kStrokeSpline = 4,
  kStrokeSplineStart = 5,
};

/// The steps of a run up to its operation 0, or up to its last whole step when
/// the run ends without one. A run has at most 65535 bytes, so at most 10922
/// steps.
std::vector<StrokeStep> ParseStrokeRun(const std::vector<uint8_t>& run);

/// The font files of one import, each read whole once and kept until the
/// import ends.
class CRvStrokeFontFiles {
 public:
  /// The run of `code` and `subNumber` in the wide index `indexPath` and its
  /// data file `dataPath`; nothing when the character isn't there, the files
  /// can't be read, the index is scrambled or the run lies outside the data
  /// file (traced as "Font File:%s was not found.\n" for files).
  std::optional<std::vector<uint8_t>> FindWide(const std::string& indexPath, const std::string& dataPath,
                                               uint16_t code, uint16_t subNumber);
  /// The same for a plain index.
  std::optional<std::vector<uint8_t>> FindPlain(const std::string& indexPath, const std::string& dataPath,
                                                uint16_t code);

 private:
  /// The bytes of `path`, or null when it can't be read.
  const std::vector<uint8_t>* File(const std::string& path);
  std::optional<std::vector<uint8_t>> Run(const std::string& dataPath, const StrokeIndexEntry& entry);

  std::map<std::string, std::optional<std::vector<uint8_t>>> m_files;
};

}  // namespace rv
