#include "conditions/cut_cdn_mng.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string_view>
#include <vector>

#include <sys/stat.h>

#include "conditions/cond_text.h"
#include "conditions/xml_access.h"
#include "frame/error_codes.h"
#include "frame/frame.h"

namespace rv {
namespace {

const uint32_t kNotInTable = kErrNullArt;
constexpr char kCurrentTQFile[] = "CurrentTQCondition.xml";
constexpr std::size_t kCsvLine = 1048;

template <std::size_t N, std::size_t M>
void CopyField(char (&dst)[N], const char (&src)[M]) {
  cond::CopyText(dst, N, cond::FieldText(src, M));
}

struct FileCloser {
  std::FILE* file;
  ~FileCloser() {
    if (file != nullptr) std::fclose(file);
  }
};

/// A condition and both extension forms, as the loaders build them.
struct BuiltCondition {
  CondRecord record{};
  ThetaExtension theta{};
  MillingExtension milling{};

  CondPair Pair(ExtensionForm form) const {
    return CondPair{&record, form == ExtensionForm::Milling ? static_cast<const void*>(&milling)
                                                            : static_cast<const void*>(&theta)};
  }
};

/// The coating and the laser fields, from a record to a file record or back.
void CopyCoating(CondRecord& to, const CondRecord& from) {
  CopyField(to.InkName, from.InkName);
  CopyField(to.MediaType, from.MediaType);
  to.MediaThickness = from.MediaThickness;
  CopyField(to.NozzleType, from.NozzleType);
  to.CoatingThickness = from.CoatingThickness;
  to.Gap = from.Gap;
  CopyField(to.NozzleRotation, from.NozzleRotation);
  to.FlowRate = from.FlowRate;
  to.AtomizationPress = from.AtomizationPress;
  to.CoatingSpeed = from.CoatingSpeed;
  to.Pitch = from.Pitch;
  to.SpeedAdjust = from.SpeedAdjust;
  to.PitchAdjust = from.PitchAdjust;
  to.CoatingFillDirection = from.CoatingFillDirection;
  to.MisalignmentCorrect = from.MisalignmentCorrect;
  to.CoatingJoinLimit = from.CoatingJoinLimit;
  to.CoatingFillOffset = from.CoatingFillOffset;
}

void CopyLaser(CondRecord& to, const CondRecord& from) {
  to.LaserSpeed = from.LaserSpeed;
  to.LaserPower = from.LaserPower;
  to.LaserFreq = from.LaserFreq;
  CopyField(to.LaserDpi, from.LaserDpi);
}

/// Conversion of a read file record into a condition of the table.
void Convert(uint16_t machineType, const CondFileRecord& f, bool import, bool renameTools, bool& millingOn,
             int32_t pass, BuiltCondition& out) {
  CondRecord& r = out.record;
  if (IsCoatingFamily(machineType)) {
    CopyCoating(r, f);
  } else if (IsLaserFamily(machineType)) {
    CopyLaser(r, f);
  } else if (IsMillingFamily(machineType)) {
    r.WDZUnit = f.WDZUnit;
    CopyField(r.Tool, f.Tool);
    r.SpeedDecimal = f.SpeedDecimal;
    r.Thickness = f.Thickness;
    r.CutDirection = f.CutDirection;
    r.ZPosition = f.ZPosition;
    r.hasSpeed = f.SpeedDecimal >= 0;
    MillingExtension& m = out.milling;
    m.Rpm = f.Rpm;
    m.CuttingDepth = f.CuttingDepth;
    m.ZSpeed = f.ZSpeed;
    m.hasRpm = f.Rpm >= 0;
    m.hasCuttingDepth = f.CuttingDepth >= 0;
    m.hasZSpeed = f.ZSpeed >= 0;
    if (import) {
      m.hasMilling = f.Milling >= 0;
      m.Milling = f.Milling;
    } else {
      // The first pass decides for all passes of the media.
      if (pass == 0) millingOn = f.Milling >= 0;
      m.hasMilling = millingOn;
      m.Milling = millingOn ? f.Milling : 3.0;
    }
  } else {
    CopyField(r.Tool, f.Tool);
    if (renameTools) RenameCurrentTQTool(r.Tool, sizeof r.Tool);
    r.Press = f.Press;
    r.Offset = f.Offset;
    r.Thickness = f.Thickness;
    r.WDZUnit = f.WDZUnit;
    r.ZPosition = f.ZPosition;
    r.VCutType = f.VCutType;
    r.VCutOffset = f.VCutOffset;
    if (HasDecimalSpeed(machineType)) {
      r.SpeedDecimal = f.SpeedDecimal;
      r.hasSpeed = f.SpeedDecimal >= 0;
      if (import) r.Speed = -1;
    } else {
      r.Speed = f.Speed;
      r.hasSpeed = f.Speed >= 0;
      if (import) r.SpeedDecimal = -1.0;
    }
    r.hasPress = f.Press >= 0;
    r.hasOffset = f.Offset >= 0;
    r.DivideCut = f.DivideCut;
    if (machineType == 0) r.DivideCut.Available = -1;
    out.theta = f.Theta;
  }
}

/// The file record of one pass for saving.
void FillFileRecord(uint16_t machineType, const std::string& name, const CondRecord& r, const void* extension,
                    ExtensionForm form, bool millingOn, CondFileRecord& f) {
  f.Reset();
  cond::CopyText(f.Name, sizeof f.Name, name);
  f.Speed = r.hasSpeed ? r.Speed : int16_t(-1);
  f.SpeedDecimal = r.hasSpeed ? r.SpeedDecimal : -1.0;
  f.Press = -1;
  f.Offset = -1.0;
  if (IsCoatingFamily(machineType)) {
    CopyCoating(f, r);
  } else if (IsLaserFamily(machineType)) {
    CopyLaser(f, r);
  } else if (IsMillingFamily(machineType)) {
    MillingExtension m{};
    if (form == ExtensionForm::Milling && extension != nullptr) {
      m = *static_cast<const MillingExtension*>(extension);
    }
    CopyField(f.Tool, r.Tool);
    f.Thickness = r.Thickness;
    f.CutDirection = r.CutDirection;
    f.WDZUnit = r.WDZUnit;
    f.ZPosition = r.ZPosition;
    f.DivideCut.Available = -1;
    f.Rpm = m.hasRpm ? m.Rpm : int16_t(-1);
    f.CuttingDepth = m.hasCuttingDepth ? m.CuttingDepth : -1.0;
    f.ZSpeed = m.hasZSpeed ? m.ZSpeed : int16_t(-1);
    f.Milling = millingOn ? m.Milling : -1.0;
  } else {
    ThetaExtension t{};
    if (form == ExtensionForm::Theta && extension != nullptr) t = *static_cast<const ThetaExtension*>(extension);
    CopyField(f.Tool, r.Tool);
    f.DivideCut = r.DivideCut;
    if (machineType == 0) f.DivideCut.Available = -1;
    if (r.hasPress) f.Press = r.Press;
    if (r.hasOffset) f.Offset = r.Offset;
    f.WDZUnit = r.WDZUnit;
    f.Thickness = r.Thickness;
    f.ZPosition = r.ZPosition;
    f.VCutType = r.VCutType;
    f.VCutOffset = r.VCutOffset;
    f.Theta = t;
  }
}

/// The fields of one CSV line, split at commas; a run of commas is one.
std::vector<std::string_view> SplitCsv(std::string_view line) {
  std::vector<std::string_view> fields;
  std::size_t i = 0;
  while (i < line.size()) {
    while (i < line.size() && line[i] == ',') ++i;
    if (i == line.size()) break;
    std::size_t end = line.find(',', i);
    if (end == std::string_view::npos) end = line.size();
    fields.push_back(line.substr(i, end - i));
    i = end;
  }
  return fields;
}

int16_t CsvShort(std::string_view field) {
  std::string text(field);
  long v = std::strtol(text.c_str(), nullptr, 10);
  return int16_t(v);
}

double CsvReal(std::string_view field) {
  std::string text(field);
  return std::strtod(text.c_str(), nullptr);
}

}  // namespace

void RenameCurrentTQTool(char* tool, std::size_t size) {
  static constexpr struct {
    const char* from;
    const char* to;
  } kRenames[] = {{"CT4", "CT6"}, {"CT5", "CT7"}, {"PIN", "CT4"}, {"HLF", "CT5"}};
  for (const auto& rename : kRenames) {
    if (std::strncmp(tool, rename.from, 3) == 0) {
      cond::CopyText(tool, size, rename.to);
      return;
    }
  }
}

CRvCutCdnMng& CRvCutCdnMng::Instance() {
  // The store outlives the table: the table's pairs point into it.
  CRvCutCdnTbl::Instance();
  static CRvCutCdnMng manager;
  return manager;
}

CRvCutCdnMng::~CRvCutCdnMng() = default;

CRvCutCdnMng::MediaMap::iterator CRvCutCdnMng::Find(const std::string& media) { return m_media.find(media); }
CRvCutCdnMng::MediaMap::const_iterator CRvCutCdnMng::Find(const std::string& media) const {
  return m_media.find(media);
}

uint32_t CRvCutCdnMng::AddCondition(const std::string& media, int32_t repeatIndex, const CondPair& pair) {
  return AddConditionAs(media, repeatIndex, pair, ExtensionFormOf(machineType));
}

uint32_t CRvCutCdnMng::AddConditionAs(const std::string& media, int32_t repeatIndex, const CondPair& pair,
                                      ExtensionForm form) {
  return Guard([&] {
    auto it = Find(media);
    if (it == m_media.end()) {
      it = m_media.emplace(media, std::make_unique<CRvCutCdnInfo>()).first;
      m_mediaOrder.push_back(it);
    }
    Check(it->second->Insert(repeatIndex, pair, form));
  });
}

uint32_t CRvCutCdnMng::InsertCondition(const std::string& media, int32_t position, const CondPair& pair) {
  return InsertConditionAs(media, position, pair, ExtensionFormOf(machineType));
}

uint32_t CRvCutCdnMng::InsertConditionAs(const std::string& media, int32_t position, const CondPair& pair,
                                         ExtensionForm form) {
  return Guard([&] {
    if (Find(media) != m_media.end() || position < 0 || std::size_t(position) > m_mediaOrder.size() ||
        pair.record == nullptr) {
      Raise(kNotInTable);
    }
    auto it = m_media.emplace(media, std::make_unique<CRvCutCdnInfo>()).first;
    m_mediaOrder.insert(m_mediaOrder.begin() + position, it);
    Check(it->second->Insert(0, pair, form));
  });
}

uint32_t CRvCutCdnMng::CLSetCondition(const std::string& media, const CLCondition* records, int32_t count) {
  return Guard([&] {
    Check(DeleteMedia(media));
    if (count > 0 && records == nullptr) Raise(kNotInTable);
    for (int32_t i = 0; i < count; ++i) {
      const CLCondition& in = records[i];
      BuiltCondition c;
      CopyField(c.record.Tool, in.Tool);
      c.record.hasSpeed = in.hasSpeed;
      c.record.Thickness = in.Thickness;
      c.record.SpeedDecimal = in.SpeedDecimal;
      c.record.CutDirection = in.CutDirection;
      c.record.WDZUnit = in.WDZUnit;
      c.milling = MillingExtension{in.hasRpm,      in.hasCuttingDepth, in.hasZSpeed, in.hasMilling, in.Rpm,
                                   in.CuttingDepth, in.ZSpeed,          in.Milling};
      CondPair pair = c.Pair(ExtensionForm::Milling);
      if (i == 0) {
        Check(InsertConditionAs(media, 0, pair, ExtensionForm::Milling));
      } else {
        Check(AddConditionAs(media, i, pair, ExtensionForm::Milling));
      }
    }
  });
}

uint32_t CRvCutCdnMng::DeleteCondition(const std::string& media, int32_t index) {
  return Guard([&] {
    auto it = Find(media);
    if (it == m_media.end()) Raise(kNotInTable);
    if (it->second->Count() == 1) {
      Check(DeleteMedia(media));
      return;
    }
    Check(it->second->Erase(index));
  });
}

uint32_t CRvCutCdnMng::DeleteMedia(const std::string& media) {
  return Guard([&] {
    auto it = Find(media);
    if (it == m_media.end()) return;
    m_mediaOrder.erase(std::find(m_mediaOrder.begin(), m_mediaOrder.end(), it));
    m_media.erase(it);
  });
}

uint32_t CRvCutCdnMng::DeleteAll() {
  return Guard([&] {
    m_mediaOrder.clear();
    m_media.clear();
  });
}

uint32_t CRvCutCdnMng::GetConditionAtRepeat(const std::string& media, int32_t repeat, CondPair& pair) const {
  return Guard([&] {
    auto it = Find(media);
    if (it == m_media.end()) return;
    if (repeat > it->second->Count()) Raise(kNotInTable);
    Check(it->second->Get(repeat - 1, pair));
  });
}

int32_t CRvCutCdnMng::GetRepeatCount(const std::string& media) const {
  auto it = Find(media);
  return it == m_media.end() ? 0 : it->second->Count();
}

uint32_t CRvCutCdnMng::SortMedia() {
  return Guard([&] {
    if (m_mediaOrder.empty()) Raise(kNotInTable);
    std::sort(m_mediaOrder.begin(), m_mediaOrder.end(),
              [](MediaMap::iterator a, MediaMap::iterator b) { return a->first < b->first; });
  });
}

// The walks work on a snapshot, so that a callback that changes the table
// after all can't pull the ground from under the walk.
uint32_t CRvCutCdnMng::Trace(const PassVisitor& visit) const {
  return Guard([&] {
    std::vector<std::pair<std::string, std::deque<CondPair>>> snapshot;
    snapshot.reserve(m_mediaOrder.size());
    for (MediaMap::iterator it : m_mediaOrder) snapshot.emplace_back(it->first, it->second->m_repeats);
    for (const auto& [name, passes] : snapshot) {
      for (const CondPair& pair : passes) Check(visit(name, pair));
    }
  });
}

uint32_t CRvCutCdnMng::TraceByKey(const std::string& media, const PassVisitor& visit) const {
  return Guard([&] {
    auto it = Find(media);
    if (it == m_media.end()) return;
    const std::string name = it->first;
    const std::deque<CondPair> passes = it->second->m_repeats;
    for (const CondPair& pair : passes) Check(visit(name, pair));
  });
}

uint32_t CRvCutCdnMng::TraceNames(const NameVisitor& visit) const {
  return Guard([&] {
    std::vector<std::string> names;
    names.reserve(m_mediaOrder.size());
    for (MediaMap::iterator it : m_mediaOrder) names.push_back(it->first);
    for (const std::string& name : names) Check(visit(name));
  });
}

uint32_t CRvCutCdnMng::Load(uint16_t type, const std::string& path) {
  return Guard([&] {
    if (!m_mediaOrder.empty() || !m_media.empty()) Raise(kErrXmlFailed);
    machineType = type;
    Check(ReadFile(path, false));
  });
}

uint32_t CRvCutCdnMng::Import(const std::string& path) {
  return Guard([&] { Check(ReadFile(path, true)); });
}

uint32_t CRvCutCdnMng::ReadFile(const std::string& path, bool import) {
  return Guard([&] {
    CRvXMLAccess xml;
    Check(xml.Open(machineType, path));
    const bool renameTools = machineType == 5 && path.find(kCurrentTQFile) != std::string::npos;
    const ExtensionForm form = ExtensionFormOf(machineType);
    int32_t mediaCount = 0;
    Check(xml.GetMediaCount(&mediaCount));
    for (int32_t i = 0; i < mediaCount; ++i) {
      int32_t passCount = 0;
      Check(xml.GetPassCount(i, &passCount));
      std::string name;
      bool millingOn = false;
      for (int32_t j = 0; j < passCount; ++j) {
        CondFileRecord f;
        f.Reset();
        Check(xml.ReadCondition(i, j, &f));
        if (j == 0) {
          std::string read(cond::FieldText(f.Name, sizeof f.Name));
          name = import ? ImportName(read) : read;
        }
        BuiltCondition c;
        Convert(machineType, f, import, renameTools, millingOn, j, c);
        Check(AddConditionAs(name, j, c.Pair(form), form));
      }
    }
  });
}

std::string CRvCutCdnMng::ImportName(const std::string& name) const {
  bool whole = true;
  const std::wstring wide = cond::CodePage::ToWide(name, kImportNameChars, &whole);
  const std::string candidate = whole ? name : cond::CodePage::FromWide(wide);
  if (Find(candidate) == m_media.end()) return candidate;
  for (int n = 1; n <= kImportSuffixes; ++n) {
    char suffix[16];
    std::snprintf(suffix, sizeof suffix, "-%d", n);
    const std::size_t keep = kImportNameChars - std::strlen(suffix);
    std::string next = cond::CodePage::FromWide(std::wstring_view(wide).substr(0, keep)) + suffix;
    if (Find(next) == m_media.end()) return next;
  }
  return candidate;
}

uint32_t CRvCutCdnMng::Save(const std::string& path) const {
  return Guard([&] {
    CRvXMLAccess xml;
    Check(xml.Create(machineType));
    int32_t written = 0;
    for (MediaMap::iterator it : m_mediaOrder) {
      const CRvCutCdnInfo& info = *it->second;
      if (info.Count() == 0) continue;
      bool millingOn = false;
      for (int32_t j = 0; j < info.Count(); ++j) {
        CondPair pair{};
        Check(info.Get(j, pair));
        const ExtensionForm form = info.FormAt(j);
        if (j == 0) {
          millingOn = form == ExtensionForm::Milling && pair.extension != nullptr &&
                      static_cast<const MillingExtension*>(pair.extension)->hasMilling != 0;
        }
        CondFileRecord f;
        FillFileRecord(machineType, it->first, *pair.record, pair.extension, form, millingOn, f);
        Check(xml.WriteCondition(written, j, f));
      }
      ++written;
    }
    Check(xml.Save(path));
  });
}

uint32_t CRvCutCdnMng::LoadFromCSV(uint16_t type, const std::string& csvPath, const std::string& xmlPath) {
  return Guard([&] {
    if (!m_mediaOrder.empty() || !m_media.empty()) Raise(kErrXmlFailed);
    machineType = type;
    FileCloser csv{std::fopen(csvPath.c_str(), "r")};
    struct stat info {};
    if (csv.file == nullptr || fstat(fileno(csv.file), &info) != 0 || S_ISDIR(info.st_mode)) {
      Raise(kErrCsvOpen);
    }
    CRvXMLAccess xml;
    Check(xml.Create(machineType));
    const ExtensionForm form = ExtensionFormOf(machineType);
    std::vector<char> buffer(kCsvLine);
    int32_t row = 0;
    for (;;) {
      if (std::fgets(buffer.data(), int(buffer.size()), csv.file) == nullptr) break;
      // A last line without its line end isn't taken.
      if (std::feof(csv.file)) break;
      std::string_view line(buffer.data(), std::strlen(buffer.data()));
      while (!line.empty() && (line.back() == '\n' || line.back() == '\r')) line.remove_suffix(1);
      std::vector<std::string_view> fields = SplitCsv(line);
      if (fields.size() < 5) continue;

      CondFileRecord f;
      f.Reset();
      cond::CopyText(f.Name, sizeof f.Name, fields[0]);
      cond::CopyText(f.Tool, sizeof f.Tool, fields[1]);
      f.Speed = CsvShort(fields[2]);
      f.Press = CsvShort(fields[3]);
      f.Offset = CsvReal(fields[4]);
      if (HasDecimalSpeed(machineType)) f.SpeedDecimal = f.Speed;
      f.Theta = ThetaExtension{0, {0, 0, 0, 0, 0, 0}};
      f.DivideCut = kDefaultDivideCut;
      Check(xml.WriteCondition(row++, 0, f));

      BuiltCondition c;
      CopyField(c.record.Tool, f.Tool);
      c.record.Speed = f.Speed;
      if (HasDecimalSpeed(machineType)) c.record.SpeedDecimal = f.SpeedDecimal;
      c.record.Press = f.Press;
      c.record.Offset = f.Offset;
      c.record.hasSpeed = f.Speed >= 0;
      c.record.hasPress = f.Press >= 0;
      c.record.hasOffset = f.Offset >= 0;
      c.record.DivideCut = f.DivideCut;
      c.theta = f.Theta;
      Check(AddConditionAs(std::string(cond::FieldText(f.Name, sizeof f.Name)), 0, c.Pair(form), form));
    }
    std::fclose(csv.file);
    csv.file = nullptr;
    Check(xml.Save(xmlPath));
  });
}

uint32_t CRvCutCdnMng::ReadFavorites(uint16_t type, const std::string& path, FavoriteEntry* lists[4]) const {
  return Guard([&] {
    CRvXMLAccess xml;
    if (xml.Open(type, path) != 0) return;  // no favourite file yet
    for (int32_t l = 0; l < 4; ++l) {
      if (lists[l] == nullptr) continue;
      int32_t count = 0;
      Check(xml.GetFavoriteCount(l, &count));
      count = std::min<int32_t>(count, RV_FAVORITE_COUNT);
      for (int32_t k = 0; k < count; ++k) {
        FavoriteEntry entry{};
        if (xml.ReadFavorite(l, k, &entry) == 0) lists[l][k] = entry;
      }
    }
  });
}

uint32_t CRvCutCdnMng::WriteFavorites(uint16_t type, const std::string& path,
                                      const FavoriteEntry* const lists[4]) const {
  return Guard([&] {
    int32_t counts[4] = {0, 0, 0, 0};
    for (int l = 0; l < 4; ++l) {
      if (lists[l] == nullptr) continue;
      for (int k = 0; k < RV_FAVORITE_COUNT; ++k) {
        if (lists[l][k].title[0] != '\0') ++counts[l];
      }
    }
    CRvXMLAccess xml;
    Check(xml.Create(type));
    for (int32_t l = 0; l < 4; ++l) {
      for (int32_t k = 0; k < counts[l]; ++k) Check(xml.WriteFavorite(l, k, lists[l][k]));
    }
    Check(xml.Save(path));
  });
}

}  // namespace rv
