// Condition records, the list of one media and the store that keeps each
// distinct record once.
#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <unordered_map>

#include "rvdataaccess.h"

namespace rv {

/// Which of the two extension records a pair points to.
enum class ExtensionForm { Theta, Milling };

/// Machine families that decide the extension form and the load rules.
constexpr bool IsMillingFamily(uint16_t machineType) { return machineType == 3 || machineType == 15; }
constexpr bool IsLaserFamily(uint16_t machineType) { return machineType == 11 || machineType == 12; }
constexpr bool IsCoatingFamily(uint16_t machineType) { return machineType == 13; }
constexpr bool HasDecimalSpeed(uint16_t machineType) {
  return machineType == 7 || machineType == 10 || machineType == 16;
}
constexpr ExtensionForm ExtensionFormOf(uint16_t machineType) {
  return IsMillingFamily(machineType) ? ExtensionForm::Milling : ExtensionForm::Theta;
}

/// Field-by-field equality: text up to its terminator, numbers by value (a
/// NaN equals nothing, -0.0 equals 0.0).
bool Equal(const CondRecord& a, const CondRecord& b);
bool Equal(const ThetaExtension& a, const ThetaExtension& b);
bool Equal(const MillingExtension& a, const MillingExtension& b);

/// The process-wide store of condition records and extensions. Entries are
/// only appended and never change, so a pointer to one stays valid until the
/// process ends. Equal records are stored once.
class CRvCutCdnTbl {
 public:
  static CRvCutCdnTbl& Instance();
  virtual ~CRvCutCdnTbl();

  /// The stored record equal to `record` (text fields cut to their arrays
  /// first); a copy is appended when there is none.
  const CondRecord* InternCondition(const CondRecord& record);
  /// The stored extension of the given form equal to `*extension`; null
  /// stands for an extension of zeros.
  const void* InternExtension(const void* extension, ExtensionForm form);

  /// A stored milling extension is padded to the size of a ThetaExtension,
  /// so that a reader that takes it for the other form stays inside it.
  struct MillingSlot {
    MillingExtension value;
    unsigned char spare[sizeof(ThetaExtension) > sizeof(MillingExtension)
                            ? sizeof(ThetaExtension) - sizeof(MillingExtension)
                            : 1];
  };

  std::deque<CondRecord> m_conditions;
  std::deque<ThetaExtension> m_thetas;
  std::deque<MillingSlot> m_millings;

 private:
  CRvCutCdnTbl() = default;

  template <class T, class Entry>
  const T* Intern(std::deque<Entry>& queue, std::unordered_multimap<std::size_t, const T*>& index, const T& value);

  // Lookup aids over the queues: hash of the values to the entries.
  std::unordered_multimap<std::size_t, const CondRecord*> m_conditionIndex;
  std::unordered_multimap<std::size_t, const ThetaExtension*> m_thetaIndex;
  std::unordered_multimap<std::size_t, const MillingExtension*> m_millingIndex;
};

/// The conditions of one media, pass 1 at position 0. Owns its queue, not
/// the records: each pair points into CRvCutCdnTbl.
class CRvCutCdnInfo {
 public:
  CRvCutCdnInfo() = default;
  virtual ~CRvCutCdnInfo();

  /// Stores the records and places the stored pair before `index` (the count
  /// appends). 0x06001001 for an index outside 0..count; nothing is stored.
  uint32_t Insert(int32_t index, const CondPair& pair, ExtensionForm form);
  /// Removes the pair at `index`; the stored records stay.
  uint32_t Erase(int32_t index);
  /// Copies the pair at `index`.
  uint32_t Get(int32_t index, CondPair& pair) const;
  int32_t Count() const { return int32_t(m_repeats.size()); }
  /// The form of the extension of the pair at `index` (valid index only).
  ExtensionForm FormAt(int32_t index) const { return m_forms[std::size_t(index)]; }

  std::deque<CondPair> m_repeats;

 private:
  std::deque<ExtensionForm> m_forms;  // in step with m_repeats
};

}  // namespace rv
