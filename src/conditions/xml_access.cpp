#include "conditions/xml_access.h"

#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <cwchar>
#include <vector>

#include "frame/frame.h"

namespace rv {
namespace {

constexpr uint32_t kMissing = 15;
constexpr std::size_t kMaxTextChars = 255;  // one element's text, as the reading buffer bounds it

struct Family {
  const wchar_t* root;
  const wchar_t* version;
};

constexpr Family kFamilies[] = {
    {L"TQCutConditionList", L"1.00"},    {L"WDCutConditionList", L"2.00"},
    {L"WD3CutConditionList", L"2.00"},   {L"WD3KCutConditionList", L"1.00"},
    {L"BNSCutConditionList", L"1.00"},   {L"TQ2CutConditionList", L"1.00"},
    {L"TQNVCutConditionList", L"1.00"},  {L"WDPCutConditionList", L"1.00"},
    {L"YBNSCutConditionList", L"1.00"},  {L"TQNV2CutConditionList", L"1.00"},
    {L"WD22CutConditionList", L"1.00"},  {L"SOVECutConditionList", L"1.00"},
    {L"SOPICutConditionList", L"1.00"},  {L"HWDCutConditionList", L"3.00"},
    {L"TQHBCutConditionList", L"1.00"},  {L"WDZKCutConditionList", L"1.00"},
    {L"WDZCutConditionList", L"1.00"},   {L"FavoriteCutConditionList", L"1.00"},
};

const Family& FamilyOf(uint16_t machineType) {
  return machineType < std::size(kFamilies) ? kFamilies[machineType] : kFamilies[0];
}

// The element set of a condition follows the name of the file's root.
enum class ElementSet { Cutting, CuttingDecimal, WDZ, WDZK, WD3K, Coating, SOVE, SOPI };

struct RootRules {
  ElementSet set = ElementSet::Cutting;
  bool hasThickness = false;    // Thickness under CutCondition
  bool writesDivideCut = false;
  bool divideCutByVersion = false;  // read only in version "2.00"
};

RootRules RulesOf(const std::wstring& root) {
  RootRules r;
  if (root == L"WDCutConditionList" || root == L"WD3CutConditionList") {
    r.writesDivideCut = true;
    r.divideCutByVersion = true;
  } else if (root == L"WDPCutConditionList" || root == L"WD22CutConditionList") {
    r.set = ElementSet::CuttingDecimal;
    r.writesDivideCut = true;
  } else if (root == L"WDZCutConditionList") {
    r.set = ElementSet::WDZ;
    r.hasThickness = true;
    r.writesDivideCut = true;
  } else if (root == L"WDZKCutConditionList") {
    r.set = ElementSet::WDZK;
    r.hasThickness = true;
  } else if (root == L"WD3KCutConditionList") {
    r.set = ElementSet::WD3K;
    r.hasThickness = true;
  } else if (root == L"HWDCutConditionList") {
    r.set = ElementSet::Coating;
  } else if (root == L"SOVECutConditionList") {
    r.set = ElementSet::SOVE;
  } else if (root == L"SOPICutConditionList") {
    r.set = ElementSet::SOPI;
  }
  return r;
}

// ---- text forms ---------------------------------------------------------

std::wstring Format(const char* format, ...) __attribute__((format(printf, 1, 2)));
std::wstring Format(const char* format, ...) {
  va_list args;
  va_start(args, format);
  va_list again;
  va_copy(again, args);
  int n = std::vsnprintf(nullptr, 0, format, args);
  va_end(args);
  std::vector<char> buf(std::size_t(n > 0 ? n : 0) + 1);
  std::vsnprintf(buf.data(), buf.size(), format, again);
  va_end(again);
  // The forms give ASCII only.
  return std::wstring(buf.begin(), buf.begin() + (n > 0 ? n : 0));
}

std::wstring Short(int16_t v) { return Format("%hd", v); }
std::wstring Int(int32_t v) { return Format("%d", v); }
std::wstring Real(double v) { return Format("%lf", v); }

std::wstring ThetaText(const ThetaExtension& t) {
  return Format("Available=%d,[%.1lf][%.1lf][%.1lf][%.1lf][%.1lf][%.1lf]", t.Available, t.values[0], t.values[1],
                t.values[2], t.values[3], t.values[4], t.values[5]);
}

std::wstring DivideCutText(const DivideCutRecord& d) {
  return Format("Available=%d,[%d][%.1lf][%.1lf][%d][%.1lf]", d.Available, d.divideKind, d.minLength,
                d.limitAngle, d.divideSide, d.jointLength);
}

template <std::size_t N>
std::wstring FieldWide(const char (&field)[N]) {
  return cond::LocaleToWide(cond::FieldText(field, N));
}

template <std::size_t N>
void SetField(char (&field)[N], const std::wstring& text) {
  cond::CopyText(field, N, cond::WideToLocale(text, N - 1));
}

// A text that doesn't match its form leaves the value as it was.
void Scan(const std::wstring& t, int16_t& v) {
  short x = v;
  if (std::swscanf(t.c_str(), L"%hd", &x) == 1) v = x;
}
void Scan(const std::wstring& t, int32_t& v) {
  int x = v;
  if (std::swscanf(t.c_str(), L"%d", &x) == 1) v = x;
}
void Scan(const std::wstring& t, double& v) {
  double x = v;
  if (std::swscanf(t.c_str(), L"%lf", &x) == 1) v = x;
}
void ScanTheta(const std::wstring& t, ThetaExtension& th) {
  int a = th.Available;
  double d[6];
  std::memcpy(d, th.values, sizeof d);
  std::swscanf(t.c_str(), L"Available=%d,[%lf][%lf][%lf][%lf][%lf][%lf]", &a, &d[0], &d[1], &d[2], &d[3], &d[4],
               &d[5]);
  th.Available = a;
  std::memcpy(th.values, d, sizeof d);
}
void ScanDivideCut(const std::wstring& t, DivideCutRecord& dc) {
  int a = dc.Available, kind = dc.divideKind, side = dc.divideSide;
  double minLength = dc.minLength, limitAngle = dc.limitAngle, joint = dc.jointLength;
  std::swscanf(t.c_str(), L"Available=%d,[%d][%lf][%lf][%d][%lf]", &a, &kind, &minLength, &limitAngle, &side,
               &joint);
  dc = DivideCutRecord{a, kind, minLength, limitAngle, side, joint};
}

// ---- element access -----------------------------------------------------

/// Reads the elements of one parent; every element asked for is required
/// and must have a non-empty text.
class Reader {
 public:
  Reader(DOMTree& tree, DOMNode parent) : m_tree(tree), m_parent(parent) {}

  std::wstring Text(const wchar_t* name) {
    DOMNode node = nullptr;
    Check(m_tree.GetElementAt(m_parent, name, 0, &node));
    std::wstring text;
    Check(m_tree.GetText(node, &text));
    if (text.empty()) Raise(kMissing);
    if (text.size() > kMaxTextChars) text.resize(kMaxTextChars);
    return text;
  }
  template <class T>
  void Number(const wchar_t* name, T& value) {
    Scan(Text(name), value);
  }
  template <std::size_t N>
  void Field(const wchar_t* name, char (&field)[N]) {
    SetField(field, Text(name));
  }

 private:
  DOMTree& m_tree;
  DOMNode m_parent;
};

class Writer {
 public:
  Writer(DOMTree& tree, DOMNode parent) : m_tree(tree), m_parent(parent) {}
  void Add(const wchar_t* name, const std::wstring& text) {
    DOMNode node = nullptr;
    Check(m_tree.CreateChild(m_parent, name, text.c_str(), &node));
  }

 private:
  DOMTree& m_tree;
  DOMNode m_parent;
};

struct CoatingWord {
  const wchar_t* text;
  double value;
};
constexpr CoatingWord kCoatingWords[] = {
    {L"<Thick>", 30.0}, {L"<Slightly Thick>", 25.0}, {L"<Normal>", 20.0}, {L"<Slightly Thin>", 15.0}, {L"<Thin>", 10.0},
};

struct FavoriteFormat {
  const wchar_t* list;
  const wchar_t* entry;
  const wchar_t* title;
  const wchar_t* strokeTitle;  // null in the layer lists
  const wchar_t* value;
};
constexpr FavoriteFormat kFavorites[] = {
    {L"ColorToolList", L"ColorTool", L"FileTitle", L"StrokeTitle", L"Tool"},
    {L"ColorMediaList", L"ColorMedia", L"FileTitle", L"StrokeTitle", L"Media"},
    {L"LayerToolList", L"LayerTool", L"LayerTitle", nullptr, L"Tool"},
    {L"LayerMediaList", L"LayerMedia", L"LayerTitle", nullptr, L"Media"},
};

const FavoriteFormat& FavoriteOf(int32_t list) {
  if (list < 0 || list >= int32_t(std::size(kFavorites))) Raise(65535);
  return kFavorites[list];
}

}  // namespace

void CondFileRecord::Reset() {
  std::memset(this, 0, sizeof *this);
  Speed = Press = LaserFreq = WDZUnit = Rpm = ZSpeed = -1;
  CutDirection = CoatingFillDirection = VCutType = -1;
  for (double* v : {&Offset, &Thickness, &SpeedDecimal, &LaserSpeed, &LaserPower, &MediaThickness, &CoatingThickness,
                    &Gap, &FlowRate, &AtomizationPress, &CoatingSpeed, &Pitch, &SpeedAdjust, &PitchAdjust,
                    &MisalignmentCorrect, &CoatingJoinLimit, &CoatingFillOffset, &ZPosition, &VCutOffset,
                    &CuttingDepth, &Milling}) {
    *v = -1.0;
  }
  DivideCut = DivideCutRecord{-1, -1, -1.0, -1.0, -1, -1.0};
  Theta.Available = -1;
  for (double& v : Theta.values) v = -1.0;
}

const wchar_t* RootElementOf(uint16_t machineType) { return FamilyOf(machineType).root; }
const wchar_t* RootVersionOf(uint16_t machineType) { return FamilyOf(machineType).version; }

CRvXMLAccess::CRvXMLAccess() = default;
CRvXMLAccess::~CRvXMLAccess() = default;

void CRvXMLAccess::UseUserLocale() {
  if (!m_locale) m_locale.emplace();
}

uint32_t CRvXMLAccess::Create(uint16_t machineType) {
  return Guard([&] {
    Check(m_tree.Create());
    UseUserLocale();
    Check(m_tree.WriteDeclaration());
    DOMNode root = nullptr;
    Check(m_tree.CreateRoot(RootElementOf(machineType), &root));
    Check(m_tree.SetAttribute(root, L"version", RootVersionOf(machineType)));
    m_version = RootVersionOf(machineType);
  });
}

uint32_t CRvXMLAccess::Open(uint16_t machineType, const std::string& path) {
  return Guard([&] {
    UseUserLocale();
    Check(m_tree.Create());
    Check(m_tree.Load(path));
    DOMNode root = nullptr;
    Check(m_tree.GetRoot(&root));
    std::wstring name;
    Check(m_tree.GetNodeName(root, &name));
    bool accepted = name == RootElementOf(machineType) || (machineType == 2 && name == L"WDCutConditionList") ||
                    (machineType == 5 && path.find("CurrentTQCondition.xml") != std::string::npos);
    if (!accepted) Raise(kMissing);
    std::wstring version;
    Check(m_tree.GetAttribute(root, L"version", &version));
    m_version = version.substr(0, 12);
  });
}

uint32_t CRvXMLAccess::Save(const std::string& path) { return m_tree.Save(path); }

uint32_t CRvXMLAccess::GetMediaCount(int32_t* count) {
  return Guard([&] {
    DOMNode root = nullptr;
    Check(m_tree.GetRoot(&root));
    Check(m_tree.CountElements(root, L"CutCondition", count));
  });
}

uint32_t CRvXMLAccess::GetPassCount(int32_t mediaIndex, int32_t* count) {
  return Guard([&] {
    DOMNode root = nullptr, media = nullptr;
    Check(m_tree.GetRoot(&root));
    Check(m_tree.GetElementAt(root, L"CutCondition", mediaIndex, &media));
    Check(m_tree.CountElements(media, L"Condition", count));
  });
}

uint32_t CRvXMLAccess::ReadCondition(int32_t mediaIndex, int32_t pass, CondFileRecord* record) {
  return Guard([&] {
    DOMNode root = nullptr, media = nullptr, condition = nullptr;
    Check(m_tree.GetRoot(&root));
    std::wstring rootName;
    Check(m_tree.GetNodeName(root, &rootName));
    const RootRules rules = RulesOf(rootName);
    CondFileRecord& r = *record;

    Check(m_tree.GetElementAt(root, L"CutCondition", mediaIndex, &media));
    Reader mediaReader(m_tree, media);
    mediaReader.Field(L"Name", r.Name);
    if (rules.hasThickness) mediaReader.Number(L"Thickness", r.Thickness);

    Check(m_tree.GetElementAt(media, L"Condition", pass, &condition));
    Reader in(m_tree, condition);
    switch (rules.set) {
      case ElementSet::Cutting:
      case ElementSet::CuttingDecimal:
        in.Field(L"Tool", r.Tool);
        if (rules.set == ElementSet::CuttingDecimal) {
          in.Number(L"Speed", r.SpeedDecimal);
        } else {
          in.Number(L"Speed", r.Speed);
        }
        in.Number(L"Press", r.Press);
        in.Number(L"Offset", r.Offset);
        ScanTheta(in.Text(L"Theta"), r.Theta);
        if (rules.writesDivideCut && (!rules.divideCutByVersion || m_version == L"2.00")) {
          ScanDivideCut(in.Text(L"DivideCut"), r.DivideCut);
        } else {
          r.DivideCut = kDefaultDivideCut;
        }
        break;
      case ElementSet::WDZ:
        in.Number(L"WDZUnit", r.WDZUnit);
        in.Field(L"Tool", r.Tool);
        in.Number(L"Speed", r.SpeedDecimal);
        in.Number(L"ZPosition", r.ZPosition);
        in.Number(L"Press", r.Press);
        in.Number(L"VCutType", r.VCutType);
        in.Number(L"VCutOffset", r.VCutOffset);
        ScanTheta(in.Text(L"Theta"), r.Theta);
        ScanDivideCut(in.Text(L"DivideCut"), r.DivideCut);
        break;
      case ElementSet::WDZK:
        in.Number(L"WDZUnit", r.WDZUnit);
        in.Field(L"Tool", r.Tool);
        in.Number(L"Speed", r.SpeedDecimal);
        in.Number(L"ZSpeed", r.ZSpeed);
        in.Number(L"ZPosition", r.ZPosition);
        in.Number(L"CutDirection", r.CutDirection);
        in.Number(L"Rpm", r.Rpm);
        in.Number(L"Milling", r.Milling);
        r.DivideCut = kDefaultDivideCut;
        break;
      case ElementSet::WD3K:
        in.Field(L"Tool", r.Tool);
        in.Number(L"CutDirection", r.CutDirection);
        in.Number(L"Speed", r.SpeedDecimal);
        in.Number(L"Rpm", r.Rpm);
        in.Number(L"CuttingDepth", r.CuttingDepth);
        in.Number(L"ZSpeed", r.ZSpeed);
        in.Number(L"Milling", r.Milling);
        r.DivideCut = kDefaultDivideCut;
        break;
      case ElementSet::Coating: {
        const bool first = m_version == L"1.00";
        in.Field(L"InkName", r.InkName);
        in.Field(L"MediaType", r.MediaType);
        in.Number(L"MediaThickness", r.MediaThickness);
        in.Field(L"NozzleType", r.NozzleType);
        if (first) {
          std::wstring word = in.Text(L"CoatingThickness");
          bool known = false;
          for (const CoatingWord& w : kCoatingWords) {
            if (word == w.text) {
              r.CoatingThickness = w.value;
              known = true;
            }
          }
          if (!known) Raise(kMissing);
        } else {
          in.Number(L"CoatingThickness", r.CoatingThickness);
        }
        in.Number(L"Gap", r.Gap);
        in.Field(L"NozzleRotation", r.NozzleRotation);
        in.Number(L"FlowRate", r.FlowRate);
        if (first) {
          r.AtomizationPress = 0.1;
        } else {
          in.Number(L"AtomizationPress", r.AtomizationPress);
        }
        in.Number(L"Speed", r.CoatingSpeed);
        in.Number(L"Pitch", r.Pitch);
        in.Number(L"SpeedAdjust", r.SpeedAdjust);
        in.Number(L"PitchAdjust", r.PitchAdjust);
        in.Number(L"CoatingFillDirection", r.CoatingFillDirection);
        in.Number(L"MisalignmentCorrect", r.MisalignmentCorrect);
        in.Number(L"CoatingJoinLimit", r.CoatingJoinLimit);
        in.Number(L"CoatingFillOffset", r.CoatingFillOffset);
        break;
      }
      case ElementSet::SOVE:
        in.Number(L"LaserSpeed", r.LaserSpeed);
        in.Number(L"LaserPower", r.LaserPower);
        in.Number(L"LaserFreq", r.LaserFreq);
        break;
      case ElementSet::SOPI:
        in.Number(L"LaserSpeed", r.LaserSpeed);
        in.Number(L"LaserPower", r.LaserPower);
        in.Field(L"LaserDpi", r.LaserDpi);
        break;
    }
  });
}

uint32_t CRvXMLAccess::WriteCondition(int32_t mediaIndex, int32_t pass, const CondFileRecord& r) {
  return Guard([&] {
    DOMNode root = nullptr, media = nullptr, condition = nullptr;
    Check(m_tree.GetRoot(&root));
    std::wstring rootName;
    Check(m_tree.GetNodeName(root, &rootName));
    const RootRules rules = RulesOf(rootName);

    uint32_t code = m_tree.GetElementAt(root, L"CutCondition", mediaIndex, &media);
    if (code == kMissing) {
      Check(m_tree.CreateChild(root, L"CutCondition", nullptr, &media));
    } else {
      Check(code);
      if (pass == 0) Check(m_tree.InsertChildBefore(media, L"CutCondition", nullptr, &media));
    }
    if (pass == 0) {
      Writer head(m_tree, media);
      head.Add(L"Name", FieldWide(r.Name));
      if (rules.hasThickness) head.Add(L"Thickness", Real(r.Thickness));
    }
    code = m_tree.GetElementAt(media, L"Condition", pass, &condition);
    if (code == kMissing) {
      Check(m_tree.CreateChild(media, L"Condition", nullptr, &condition));
    } else {
      Check(code);
      Check(m_tree.InsertChildBefore(condition, L"Condition", nullptr, &condition));
    }

    Writer out(m_tree, condition);
    switch (rules.set) {
      case ElementSet::Cutting:
      case ElementSet::CuttingDecimal:
        out.Add(L"Tool", FieldWide(r.Tool));
        out.Add(L"Speed", rules.set == ElementSet::CuttingDecimal ? Real(r.SpeedDecimal) : Short(r.Speed));
        out.Add(L"Press", Short(r.Press));
        out.Add(L"Offset", Real(r.Offset));
        out.Add(L"Theta", ThetaText(r.Theta));
        if (rules.writesDivideCut) out.Add(L"DivideCut", DivideCutText(r.DivideCut));
        break;
      case ElementSet::WDZ:
        out.Add(L"WDZUnit", Short(r.WDZUnit));
        out.Add(L"Tool", FieldWide(r.Tool));
        out.Add(L"Speed", Real(r.SpeedDecimal));
        out.Add(L"ZPosition", Real(r.ZPosition));
        out.Add(L"Press", Short(r.Press));
        out.Add(L"VCutType", Int(r.VCutType));
        out.Add(L"VCutOffset", Real(r.VCutOffset));
        out.Add(L"Theta", ThetaText(r.Theta));
        out.Add(L"DivideCut", DivideCutText(r.DivideCut));
        break;
      case ElementSet::WDZK:
        out.Add(L"WDZUnit", Short(r.WDZUnit));
        out.Add(L"Tool", FieldWide(r.Tool));
        out.Add(L"Speed", Real(r.SpeedDecimal));
        out.Add(L"ZSpeed", Short(r.ZSpeed));
        out.Add(L"ZPosition", Real(r.ZPosition));
        out.Add(L"CutDirection", Short(int16_t(r.CutDirection)));
        out.Add(L"Rpm", Short(r.Rpm));
        out.Add(L"Milling", Real(r.Milling));
        break;
      case ElementSet::WD3K:
        out.Add(L"Tool", FieldWide(r.Tool));
        out.Add(L"CutDirection", Short(int16_t(r.CutDirection)));
        out.Add(L"Speed", Real(r.SpeedDecimal));
        out.Add(L"Rpm", Short(r.Rpm));
        out.Add(L"CuttingDepth", Real(r.CuttingDepth));
        out.Add(L"ZSpeed", Short(r.ZSpeed));
        out.Add(L"Milling", Real(r.Milling));
        break;
      case ElementSet::Coating:
        out.Add(L"InkName", FieldWide(r.InkName));
        out.Add(L"MediaType", FieldWide(r.MediaType));
        out.Add(L"MediaThickness", Real(r.MediaThickness));
        out.Add(L"NozzleType", FieldWide(r.NozzleType));
        out.Add(L"CoatingThickness", Real(r.CoatingThickness));
        out.Add(L"Gap", Real(r.Gap));
        out.Add(L"NozzleRotation", FieldWide(r.NozzleRotation));
        out.Add(L"FlowRate", Real(r.FlowRate));
        out.Add(L"AtomizationPress", Real(r.AtomizationPress));
        out.Add(L"Speed", Real(r.CoatingSpeed));
        out.Add(L"Pitch", Real(r.Pitch));
        out.Add(L"SpeedAdjust", Real(r.SpeedAdjust));
        out.Add(L"PitchAdjust", Real(r.PitchAdjust));
        out.Add(L"CoatingFillDirection", Short(int16_t(r.CoatingFillDirection)));
        out.Add(L"MisalignmentCorrect", Real(r.MisalignmentCorrect));
        out.Add(L"CoatingJoinLimit", Real(r.CoatingJoinLimit));
        out.Add(L"CoatingFillOffset", Real(r.CoatingFillOffset));
        break;
      case ElementSet::SOVE:
        out.Add(L"LaserSpeed", Real(r.LaserSpeed));
        out.Add(L"LaserPower", Real(r.LaserPower));
        out.Add(L"LaserFreq", Short(r.LaserFreq));
        break;
      case ElementSet::SOPI:
        out.Add(L"LaserSpeed", Real(r.LaserSpeed));
        out.Add(L"LaserPower", Real(r.LaserPower));
        out.Add(L"LaserDpi", FieldWide(r.LaserDpi));
        break;
    }
  });
}

uint32_t CRvXMLAccess::GetFavoriteCount(int32_t list, int32_t* count) {
  return Guard([&] {
    const FavoriteFormat& f = FavoriteOf(list);
    DOMNode root = nullptr;
    Check(m_tree.GetRoot(&root));
    Check(m_tree.CountElements(root, f.entry, count));
  });
}

uint32_t CRvXMLAccess::ReadFavorite(int32_t list, int32_t index, FavoriteEntry* entry) {
  return Guard([&] {
    const FavoriteFormat& f = FavoriteOf(list);
    DOMNode root = nullptr, node = nullptr;
    Check(m_tree.GetRoot(&root));
    Check(m_tree.GetElementAt(root, f.entry, index, &node));
    FavoriteEntry read{};
    // An entry that lacks a child keeps that field empty; it isn't reported.
    auto take = [&](const wchar_t* name, auto& field) {
      DOMNode child = nullptr;
      std::wstring text;
      if (name != nullptr && m_tree.GetElementAt(node, name, 0, &child) == 0 && m_tree.GetText(child, &text) == 0) {
        SetField(field, text);
      }
    };
    take(f.title, read.title);
    take(f.strokeTitle, read.strokeTitle);
    take(f.value, read.value);
    *entry = read;
  });
}

uint32_t CRvXMLAccess::WriteFavorite(int32_t list, int32_t /*index*/, const FavoriteEntry& entry) {
  return Guard([&] {
    const FavoriteFormat& f = FavoriteOf(list);
    DOMNode root = nullptr, listNode = nullptr, node = nullptr;
    Check(m_tree.GetRoot(&root));
    uint32_t code = m_tree.GetElementAt(root, f.list, 0, &listNode);
    if (code == kMissing) {
      Check(m_tree.CreateChild(root, f.list, nullptr, &listNode));
    } else {
      Check(code);
    }
    Check(m_tree.CreateChild(listNode, f.entry, nullptr, &node));
    Writer out(m_tree, node);
    out.Add(f.title, FieldWide(entry.title));
    if (f.strokeTitle != nullptr) out.Add(f.strokeTitle, FieldWide(entry.strokeTitle));
    out.Add(f.value, FieldWide(entry.value));
  });
}

}  // namespace rv
