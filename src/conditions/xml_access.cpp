#include "conditions/xml_access.h"

#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <cwchar>
#include <type_traits>
#include <vector>

#include "frame/error_codes.h"
#include "frame/frame.h"

namespace rv {
namespace {

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
void Scan(const std::wstring& t, ThetaExtension& th) {
  int a = th.Available;
  double d[6];
  std::memcpy(d, th.values, sizeof d);
  std::swscanf(t.c_str(), L"Available=%d,[%lf][%lf][%lf][%lf][%lf][%lf]", &a, &d[0], &d[1], &d[2], &d[3], &d[4],
               &d[5]);
  th.Available = a;
  std::memcpy(th.values, d, sizeof d);
}
void Scan(const std::wstring& t, DivideCutRecord& dc) {
  int a = dc.Available, kind = dc.divideKind, side = dc.divideSide;
  double minLength = dc.minLength, limitAngle = dc.limitAngle, joint = dc.jointLength;
  std::swscanf(t.c_str(), L"Available=%d,[%d][%lf][%lf][%d][%lf]", &a, &kind, &minLength, &limitAngle, &side,
               &joint);
  dc = DivideCutRecord{a, kind, minLength, limitAngle, side, joint};
}
template <std::size_t N>
void Scan(const std::wstring& t, char (&field)[N]) {
  SetField(field, t);
}

struct CoatingWord {
  const wchar_t* text;
  double value;
};
constexpr CoatingWord kCoatingWords[] = {
    {L"<Thick>", 30.0}, {L"<Slightly Thick>", 25.0}, {L"<Normal>", 20.0}, {L"<Slightly Thin>", 15.0}, {L"<Thin>", 10.0},
};

double CoatingWordValue(const std::wstring& word) {
  for (const CoatingWord& w : kCoatingWords) {
    if (word == w.text) return w.value;
  }
  Raise(kErrXmlMissing);
}

// ---- element access -----------------------------------------------------

/// What an element's text form is where its field's type doesn't say it all.
enum class Form {
  Plain,
  Int,       // an int32 written whole; the other int32 fields are written as shorts
  Word,      // one of kCoatingWords in version 1.00
  Since200,  // not in version 1.00, where it reads as 0.1
};

/// Reads elements of one parent into fields; every element asked for is
/// required and must have a non-empty text.
class Reader {
 public:
  Reader(DOMTree& tree, DOMNode parent, bool version100 = false)
      : m_tree(tree), m_parent(parent), m_version100(version100) {}

  template <class T>
  void operator()(const wchar_t* name, T& field, Form form = Form::Plain) {
    if constexpr (std::is_same_v<T, double>) {
      if (m_version100 && form == Form::Since200) {
        field = 0.1;
        return;
      }
      if (m_version100 && form == Form::Word) {
        field = CoatingWordValue(Text(name));
        return;
      }
    }
    Scan(Text(name), field);
  }

 private:
  std::wstring Text(const wchar_t* name) {
    DOMNode node = nullptr;
    Check(m_tree.GetElementAt(m_parent, name, 0, &node));
    std::wstring text;
    Check(m_tree.GetText(node, &text));
    if (text.empty()) Raise(kErrXmlMissing);
    if (text.size() > kMaxTextChars) text.resize(kMaxTextChars);
    return text;
  }

  DOMTree& m_tree;
  DOMNode m_parent;
  bool m_version100;
};

/// Appends elements with the texts of fields to one parent.
class Writer {
 public:
  Writer(DOMTree& tree, DOMNode parent) : m_tree(tree), m_parent(parent) {}

  template <std::size_t N>
  void operator()(const wchar_t* name, const char (&field)[N], Form = Form::Plain) {
    Add(name, FieldWide(field));
  }
  void operator()(const wchar_t* name, int16_t v, Form = Form::Plain) { Add(name, Short(v)); }
  void operator()(const wchar_t* name, int32_t v, Form form = Form::Plain) {
    Add(name, form == Form::Int ? Int(v) : Short(int16_t(v)));
  }
  void operator()(const wchar_t* name, double v, Form = Form::Plain) { Add(name, Real(v)); }
  void operator()(const wchar_t* name, const ThetaExtension& t, Form = Form::Plain) { Add(name, ThetaText(t)); }
  void operator()(const wchar_t* name, const DivideCutRecord& d, Form = Form::Plain) { Add(name, DivideCutText(d)); }

 private:
  void Add(const wchar_t* name, const std::wstring& text) {
    DOMNode node = nullptr;
    Check(m_tree.CreateChild(m_parent, name, text.c_str(), &node));
  }

  DOMTree& m_tree;
  DOMNode m_parent;
};

/// The elements of a condition in file order: visit(name, field[, form]) for
/// each. Reading and writing both walk here.
template <class Record, class Visit>
void ForEachElement(ElementSet set, bool divideCut, Record& r, Visit&& visit) {
  switch (set) {
    case ElementSet::Cutting:
    case ElementSet::CuttingDecimal:
      visit(L"Tool", r.Tool);
      if (set == ElementSet::CuttingDecimal) {
        visit(L"Speed", r.SpeedDecimal);
      } else {
        visit(L"Speed", r.Speed);
      }
      visit(L"Press", r.Press);
      visit(L"Offset", r.Offset);
      visit(L"Theta", r.Theta);
      if (divideCut) visit(L"DivideCut", r.DivideCut);
      break;
    case ElementSet::WDZ:
      visit(L"WDZUnit", r.WDZUnit);
      visit(L"Tool", r.Tool);
      visit(L"Speed", r.SpeedDecimal);
      visit(L"ZPosition", r.ZPosition);
      visit(L"Press", r.Press);
      visit(L"VCutType", r.VCutType, Form::Int);
      visit(L"VCutOffset", r.VCutOffset);
      visit(L"Theta", r.Theta);
      if (divideCut) visit(L"DivideCut", r.DivideCut);
      break;
    case ElementSet::WDZK:
      visit(L"WDZUnit", r.WDZUnit);
      visit(L"Tool", r.Tool);
      visit(L"Speed", r.SpeedDecimal);
      visit(L"ZSpeed", r.ZSpeed);
      visit(L"ZPosition", r.ZPosition);
      visit(L"CutDirection", r.CutDirection);
      visit(L"Rpm", r.Rpm);
      visit(L"Milling", r.Milling);
      break;
    case ElementSet::WD3K:
      visit(L"Tool", r.Tool);
      visit(L"CutDirection", r.CutDirection);
      visit(L"Speed", r.SpeedDecimal);
      visit(L"Rpm", r.Rpm);
      visit(L"CuttingDepth", r.CuttingDepth);
      visit(L"ZSpeed", r.ZSpeed);
      visit(L"Milling", r.Milling);
      break;
    case ElementSet::Coating:
      visit(L"InkName", r.InkName);
      visit(L"MediaType", r.MediaType);
      visit(L"MediaThickness", r.MediaThickness);
      visit(L"NozzleType", r.NozzleType);
      visit(L"CoatingThickness", r.CoatingThickness, Form::Word);
      visit(L"Gap", r.Gap);
      visit(L"NozzleRotation", r.NozzleRotation);
      visit(L"FlowRate", r.FlowRate);
      visit(L"AtomizationPress", r.AtomizationPress, Form::Since200);
      visit(L"Speed", r.CoatingSpeed);
      visit(L"Pitch", r.Pitch);
      visit(L"SpeedAdjust", r.SpeedAdjust);
      visit(L"PitchAdjust", r.PitchAdjust);
      visit(L"CoatingFillDirection", r.CoatingFillDirection);
      visit(L"MisalignmentCorrect", r.MisalignmentCorrect);
      visit(L"CoatingJoinLimit", r.CoatingJoinLimit);
      visit(L"CoatingFillOffset", r.CoatingFillOffset);
      break;
    case ElementSet::SOVE:
    case ElementSet::SOPI:
      visit(L"LaserSpeed", r.LaserSpeed);
      visit(L"LaserPower", r.LaserPower);
      if (set == ElementSet::SOVE) {
        visit(L"LaserFreq", r.LaserFreq);
      } else {
        visit(L"LaserDpi", r.LaserDpi);
      }
      break;
  }
}

/// The root of the document and the rules of its name.
RootRules RulesOfRoot(DOMTree& tree, DOMNode* root) {
  Check(tree.GetRoot(root));
  std::wstring name;
  Check(tree.GetNodeName(*root, &name));
  return RulesOf(name);
}

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
    if (!accepted) Raise(kErrXmlMissing);
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
    const RootRules rules = RulesOfRoot(m_tree, &root);
    CondFileRecord& r = *record;

    Check(m_tree.GetElementAt(root, L"CutCondition", mediaIndex, &media));
    Reader head(m_tree, media);
    head(L"Name", r.Name);
    if (rules.hasThickness) head(L"Thickness", r.Thickness);

    Check(m_tree.GetElementAt(media, L"Condition", pass, &condition));
    const bool divideCut = rules.writesDivideCut && (!rules.divideCutByVersion || m_version == L"2.00");
    ForEachElement(rules.set, divideCut, r, Reader(m_tree, condition, m_version == L"1.00"));
    // The cutting and milling sets come first: their records take the
    // default DivideCut where the file has none.
    if (!divideCut && rules.set < ElementSet::Coating) r.DivideCut = kDefaultDivideCut;
  });
}

uint32_t CRvXMLAccess::WriteCondition(int32_t mediaIndex, int32_t pass, const CondFileRecord& r) {
  return Guard([&] {
    DOMNode root = nullptr, media = nullptr, condition = nullptr;
    const RootRules rules = RulesOfRoot(m_tree, &root);

    uint32_t code = m_tree.GetElementAt(root, L"CutCondition", mediaIndex, &media);
    if (code == kErrXmlMissing) {
      Check(m_tree.CreateChild(root, L"CutCondition", nullptr, &media));
    } else {
      Check(code);
      if (pass == 0) Check(m_tree.InsertChildBefore(media, L"CutCondition", nullptr, &media));
    }
    if (pass == 0) {
      Writer head(m_tree, media);
      head(L"Name", r.Name);
      if (rules.hasThickness) head(L"Thickness", r.Thickness);
    }
    code = m_tree.GetElementAt(media, L"Condition", pass, &condition);
    if (code == kErrXmlMissing) {
      Check(m_tree.CreateChild(media, L"Condition", nullptr, &condition));
    } else {
      Check(code);
      Check(m_tree.InsertChildBefore(condition, L"Condition", nullptr, &condition));
    }
    ForEachElement(rules.set, rules.writesDivideCut, r, Writer(m_tree, condition));
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
    if (code == kErrXmlMissing) {
      Check(m_tree.CreateChild(root, f.list, nullptr, &listNode));
    } else {
      Check(code);
    }
    Check(m_tree.CreateChild(listNode, f.entry, nullptr, &node));
    Writer out(m_tree, node);
    out(f.title, entry.title);
    if (f.strokeTitle != nullptr) out(f.strokeTitle, entry.strokeTitle);
    out(f.value, entry.value);
  });
}

}  // namespace rv
