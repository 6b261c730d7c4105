#include "conditions/cut_cdn_tbl.h"

#include <cmath>
#include <cstring>
#include <functional>
#include <string_view>

#include "conditions/cond_text.h"
#include "frame/error_codes.h"
#include "frame/frame.h"

namespace rv {
namespace {

template <std::size_t N>
bool SameText(const char (&a)[N], const char (&b)[N]) {
  return cond::FieldText(a, N) == cond::FieldText(b, N);
}

bool Equal(const DivideCutRecord& a, const DivideCutRecord& b) {
  return a.Available == b.Available && a.divideKind == b.divideKind && a.minLength == b.minLength &&
         a.limitAngle == b.limitAngle && a.divideSide == b.divideSide && a.jointLength == b.jointLength;
}

// Hashing consistent with Equal: -0.0 and 0.0 hash alike; values with a NaN
// are never looked up (they equal nothing).
class Hasher {
 public:
  void Add(double v) {
    if (std::isnan(v)) m_hasNaN = true;
    if (v == 0.0) v = 0.0;
    uint64_t bits;
    std::memcpy(&bits, &v, sizeof bits);
    Mix(bits);
  }
  void Add(int64_t v) { Mix(uint64_t(v)); }
  template <std::size_t N>
  void Add(const char (&text)[N]) {
    Mix(std::hash<std::string_view>{}(cond::FieldText(text, N)));
  }
  std::size_t value() const { return m_value; }
  bool hasNaN() const { return m_hasNaN; }

 private:
  void Mix(uint64_t v) { m_value ^= std::size_t(v + 0x9e3779b97f4a7c15ull + (m_value << 6) + (m_value >> 2)); }
  std::size_t m_value = 0;
  bool m_hasNaN = false;
};

Hasher HashOf(const CondRecord& r) {
  Hasher h;
  h.Add(r.Tool);
  h.Add(int64_t(r.hasSpeed));
  h.Add(int64_t(r.hasPress));
  h.Add(int64_t(r.hasOffset));
  h.Add(int64_t(r.Speed));
  h.Add(int64_t(r.Press));
  for (double v : {r.Offset, r.Thickness, r.SpeedDecimal, r.LaserSpeed, r.LaserPower, r.MediaThickness,
                   r.CoatingThickness, r.Gap, r.FlowRate, r.AtomizationPress, r.CoatingSpeed, r.Pitch,
                   r.SpeedAdjust, r.PitchAdjust, r.MisalignmentCorrect, r.CoatingJoinLimit, r.CoatingFillOffset,
                   r.ZPosition, r.VCutOffset, r.DivideCut.minLength, r.DivideCut.limitAngle,
                   r.DivideCut.jointLength}) {
    h.Add(v);
  }
  h.Add(int64_t(r.LaserFreq));
  h.Add(r.LaserDpi);
  h.Add(int64_t(r.CutDirection));
  h.Add(r.InkName);
  h.Add(r.MediaType);
  h.Add(r.NozzleType);
  h.Add(r.NozzleRotation);
  h.Add(int64_t(r.CoatingFillDirection));
  h.Add(int64_t(r.WDZUnit));
  h.Add(int64_t(r.VCutType));
  h.Add(int64_t(r.DivideCut.Available));
  h.Add(int64_t(r.DivideCut.divideKind));
  h.Add(int64_t(r.DivideCut.divideSide));
  return h;
}

Hasher HashOf(const ThetaExtension& t) {
  Hasher h;
  h.Add(int64_t(t.Available));
  for (double v : t.values) h.Add(v);
  return h;
}

Hasher HashOf(const MillingExtension& m) {
  Hasher h;
  h.Add(int64_t(m.hasRpm));
  h.Add(int64_t(m.hasCuttingDepth));
  h.Add(int64_t(m.hasZSpeed));
  h.Add(int64_t(m.hasMilling));
  h.Add(int64_t(m.Rpm));
  h.Add(m.CuttingDepth);
  h.Add(int64_t(m.ZSpeed));
  h.Add(m.Milling);
  return h;
}

// Text fields end inside their arrays and the bytes behind the end are zero,
// so that a stored record reads as the text that was compared.
template <std::size_t N>
void NormaliseText(char (&field)[N]) {
  std::string_view text = cond::FieldText(field, N);
  if (text.size() < N) {
    std::memset(field + text.size(), 0, N - text.size());
  } else {
    char copy[N];
    std::memcpy(copy, field, N);
    cond::CopyText(field, N, std::string_view(copy, N));
  }
}

// A queue entry and the value it holds: a milling extension sits in a padded slot.
template <class T>
T EntryOf(const T& value) {
  return value;
}
CRvCutCdnTbl::MillingSlot EntryOf(const MillingExtension& value) { return CRvCutCdnTbl::MillingSlot{value, {}}; }
template <class T>
const T& ValueOf(const T& entry) {
  return entry;
}
const MillingExtension& ValueOf(const CRvCutCdnTbl::MillingSlot& slot) { return slot.value; }

}  // namespace

bool Equal(const CondRecord& a, const CondRecord& b) {
  return SameText(a.Tool, b.Tool) && a.hasSpeed == b.hasSpeed && a.hasPress == b.hasPress &&
         a.hasOffset == b.hasOffset && a.Speed == b.Speed && a.Press == b.Press && a.Offset == b.Offset &&
         a.Thickness == b.Thickness && a.SpeedDecimal == b.SpeedDecimal && a.LaserSpeed == b.LaserSpeed &&
         a.LaserPower == b.LaserPower && a.LaserFreq == b.LaserFreq && SameText(a.LaserDpi, b.LaserDpi) &&
         a.CutDirection == b.CutDirection && SameText(a.InkName, b.InkName) &&
         SameText(a.MediaType, b.MediaType) && a.MediaThickness == b.MediaThickness &&
         SameText(a.NozzleType, b.NozzleType) && a.CoatingThickness == b.CoatingThickness && a.Gap == b.Gap &&
         SameText(a.NozzleRotation, b.NozzleRotation) && a.FlowRate == b.FlowRate &&
         a.AtomizationPress == b.AtomizationPress && a.CoatingSpeed == b.CoatingSpeed && a.Pitch == b.Pitch &&
         a.SpeedAdjust == b.SpeedAdjust && a.PitchAdjust == b.PitchAdjust &&
         a.CoatingFillDirection == b.CoatingFillDirection && a.MisalignmentCorrect == b.MisalignmentCorrect &&
         a.CoatingJoinLimit == b.CoatingJoinLimit && a.CoatingFillOffset == b.CoatingFillOffset &&
         a.WDZUnit == b.WDZUnit && a.ZPosition == b.ZPosition && a.VCutType == b.VCutType &&
         a.VCutOffset == b.VCutOffset && Equal(a.DivideCut, b.DivideCut);
}

bool Equal(const ThetaExtension& a, const ThetaExtension& b) {
  if (a.Available != b.Available) return false;
  for (int i = 0; i < 6; ++i) {
    if (a.values[i] != b.values[i]) return false;
  }
  return true;
}

bool Equal(const MillingExtension& a, const MillingExtension& b) {
  return a.hasRpm == b.hasRpm && a.hasCuttingDepth == b.hasCuttingDepth && a.hasZSpeed == b.hasZSpeed &&
         a.hasMilling == b.hasMilling && a.Rpm == b.Rpm && a.CuttingDepth == b.CuttingDepth &&
         a.ZSpeed == b.ZSpeed && a.Milling == b.Milling;
}

CRvCutCdnTbl& CRvCutCdnTbl::Instance() {
  static CRvCutCdnTbl table;
  return table;
}

CRvCutCdnTbl::~CRvCutCdnTbl() = default;

template <class T, class Entry>
const T* CRvCutCdnTbl::Intern(std::deque<Entry>& queue, std::unordered_multimap<std::size_t, const T*>& index,
                              const T& value) {
  Hasher h = HashOf(value);
  if (!h.hasNaN()) {
    // The queue holds no two equal entries, so the one equal entry that the
    // index finds is the first equal one of the queue.
    auto [first, last] = index.equal_range(h.value());
    for (auto it = first; it != last; ++it) {
      if (Equal(*it->second, value)) return it->second;
    }
  }
  queue.push_back(EntryOf(value));
  const T* stored = &ValueOf(queue.back());
  if (!h.hasNaN()) index.emplace(h.value(), stored);
  return stored;
}

const CondRecord* CRvCutCdnTbl::InternCondition(const CondRecord& record) {
  CondRecord copy = record;
  NormaliseText(copy.Tool);
  NormaliseText(copy.LaserDpi);
  NormaliseText(copy.InkName);
  NormaliseText(copy.MediaType);
  NormaliseText(copy.NozzleType);
  NormaliseText(copy.NozzleRotation);
  return Intern(m_conditions, m_conditionIndex, copy);
}

const void* CRvCutCdnTbl::InternExtension(const void* extension, ExtensionForm form) {
  if (form == ExtensionForm::Milling) {
    MillingExtension value{};
    if (extension != nullptr) std::memcpy(&value, extension, sizeof value);
    return Intern(m_millings, m_millingIndex, value);
  }
  ThetaExtension value{};
  if (extension != nullptr) std::memcpy(&value, extension, sizeof value);
  return Intern(m_thetas, m_thetaIndex, value);
}

CRvCutCdnInfo::~CRvCutCdnInfo() = default;

uint32_t CRvCutCdnInfo::Insert(int32_t index, const CondPair& pair, ExtensionForm form) {
  return Guard([&] {
    if (index < 0 || index > Count() || pair.record == nullptr) Raise(kErrNullArt);
    CRvCutCdnTbl& table = CRvCutCdnTbl::Instance();
    CondPair stored;
    stored.record = table.InternCondition(*pair.record);
    stored.extension = table.InternExtension(pair.extension, form);
    if (m_repeats.empty()) {
      m_repeats.push_back(stored);
      m_forms.push_back(form);
    } else {
      m_repeats.insert(m_repeats.begin() + index, stored);
      m_forms.insert(m_forms.begin() + index, form);
    }
  });
}

uint32_t CRvCutCdnInfo::Erase(int32_t index) {
  return Guard([&] {
    if (index < 0 || index >= Count()) Raise(kErrNullArt);
    m_repeats.erase(m_repeats.begin() + index);
    m_forms.erase(m_forms.begin() + index);
  });
}

uint32_t CRvCutCdnInfo::Get(int32_t index, CondPair& pair) const {
  return Guard([&] {
    if (index < 0 || index >= Count()) Raise(kErrNullArt);
    pair = m_repeats[std::size_t(index)];
  });
}

}  // namespace rv
