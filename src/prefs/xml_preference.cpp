#include "prefs/xml_preference.h"

#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <cwchar>
#include <vector>

#include "conditions/cond_text.h"
#include "frame/error_codes.h"
#include "frame/frame.h"

namespace rv {
namespace {

using prefs::Key;
using prefs::KeyType;

// ---- values between a field and its text ------------------------------------

std::wstring Format(const char* format, ...) __attribute__((format(printf, 1, 2)));
std::wstring Format(const char* format, ...) {
  va_list args;
  va_start(args, format);
  va_list again;
  va_copy(again, args);
  const int n = std::vsnprintf(nullptr, 0, format, args);
  va_end(args);
  std::vector<char> text(std::size_t(n > 0 ? n : 0) + 1);
  std::vsnprintf(text.data(), text.size(), format, again);
  va_end(again);
  // Numbers give ASCII only.
  return std::wstring(text.begin(), text.begin() + (n > 0 ? n : 0));
}

template <class T>
T Load(const unsigned char* field) {
  T value;
  std::memcpy(&value, field, sizeof value);
  return value;
}

template <class T>
void Store(unsigned char* field, T value) {
  std::memcpy(field, &value, sizeof value);
}

/// Scans `text` with `format` into a temporary of type T; the field takes it
/// only when the text scans.
template <class T>
bool Scan(const std::wstring& text, const wchar_t* format, T* value) {
  return std::swscanf(text.c_str(), format, value) == 1;
}

/// A text field takes at most its size in bytes, cut at a character
/// boundary; a text that fills it has no terminator.
void StoreText(unsigned char* field, std::size_t size, const std::wstring& text) {
  const std::string bytes = cond::WideToLocale(text, size);
  std::memset(field, 0, size);
  std::memcpy(field, bytes.data(), bytes.size());
}

/// Puts the text of a key into its field; a text that doesn't scan leaves
/// the field as it was.
void SetField(const Key& key, const std::wstring& text, unsigned char* field) {
  switch (key.type) {
    case KeyType::Short: {
      short v = 0;
      if (Scan(text, L"%hd", &v)) Store<int16_t>(field, v);
      break;
    }
    case KeyType::UShort: {
      unsigned short v = 0;
      if (Scan(text, L"%hu", &v)) Store<uint16_t>(field, v);
      break;
    }
    case KeyType::Int: {
      int v = 0;
      if (Scan(text, L"%d", &v)) Store<int32_t>(field, v);
      break;
    }
    case KeyType::Float: {
      float v = 0;
      if (Scan(text, L"%f", &v)) Store<float>(field, v);
      break;
    }
    case KeyType::Double: {
      double v = 0;
      if (Scan(text, L"%lf", &v)) Store<double>(field, v);
      break;
    }
    case KeyType::Byte: {
      unsigned short v = 0;
      if (Scan(text, L"%hu", &v)) Store<uint8_t>(field, uint8_t(v & 0xFF));
      break;
    }
    case KeyType::Text:
      StoreText(field, key.size, text);
      break;
  }
}

/// The text of a field in its key's form.
std::wstring FieldText(const Key& key, const unsigned char* field) {
  switch (key.type) {
    case KeyType::Short: return Format("%hd", Load<int16_t>(field));
    case KeyType::UShort: return Format("%hu", Load<uint16_t>(field));
    case KeyType::Int: return Format("%d", Load<int32_t>(field));
    case KeyType::Float: return Format("%f", double(Load<float>(field)));
    case KeyType::Double: return Format("%lf", Load<double>(field));
    case KeyType::Byte: return Format("%hu", static_cast<unsigned short>(Load<uint8_t>(field)));
    case KeyType::Text:
      return cond::LocaleToWide(cond::FieldText(reinterpret_cast<const char*>(field), key.size));
  }
  return std::wstring();
}

/// Looks up `name` below `parent`; false when there is none (15), any other
/// failure ends the operation.
bool Find(DOMTree& tree, DOMNode parent, const wchar_t* name, DOMNode* found) {
  const uint32_t code = tree.GetElementAt(parent, name, 0, found);
  if (code == kErrXmlMissing) return false;
  Check(code);
  return true;
}

}  // namespace

CRvXMLPreference::CRvXMLPreference() = default;
CRvXMLPreference::~CRvXMLPreference() = default;

CRvXMLPreference& CRvXMLPreference::Instance() {
  static CRvXMLPreference preference;
  return preference;
}

int32_t CRvXMLPreference::VersionNumber(const std::wstring& version) {
  const std::string text = cond::WideToLocale(version, version.size() * MB_LEN_MAX);
  int number = 0;
  if (std::sscanf(text.c_str(), "%d", &number) != 1) return 0;
  return number;
}

// ---- documents -------------------------------------------------------------

uint32_t CRvXMLPreference::OpenRoot(const std::string& path, const wchar_t* rootName, DOMNode* root) {
  return Guard([&] {
    Check(m_tree.Create());
    Check(m_tree.Load(path));
    Check(m_tree.GetRoot(root));
    std::wstring name;
    Check(m_tree.GetNodeName(*root, &name));
    if (name != rootName) Raise(kErrXmlMissing);
  });
}

uint32_t CRvXMLPreference::OpenKF(const std::string& path) {
  return Guard([&] {
    DOMNode root = nullptr;
    Check(OpenRoot(path, prefs::kMainRoot, &root));
    std::wstring version;
    Check(m_tree.GetAttribute(root, L"version", &version));
    Check(UpgradeInMemory(root, VersionNumber(version)));
  });
}

uint32_t CRvXMLPreference::OpenOT(const std::string& path) {
  DOMNode root = nullptr;
  return OpenRoot(path, prefs::kOutlineToolRoot, &root);
}

uint32_t CRvXMLPreference::UpgradeInMemory(DOMNode root, int32_t number) {
  uint32_t lastLookup = 0;
  const uint32_t code = Guard([&] {
    for (const prefs::Step& step : prefs::UpgradeSteps()) {
      if (number != step.to - 1) continue;
      Check(m_tree.SetAttribute(root, L"version", step.version));
      for (const prefs::StepRow& row : step.rows) {
        DOMNode section = nullptr, parent = nullptr, added = nullptr;
        lastLookup = m_tree.GetElementAt(root, row.section, 0, &section);
        if (lastLookup != 0) continue;
        parent = section;
        if (row.group != nullptr && m_tree.GetElementAt(section, row.group, 0, &parent) != 0) continue;
        for (const prefs::AddedKey& key : row.keys) Check(m_tree.CreateChild(parent, key.name, key.text, &added));
      }
      number = step.to;
    }
  });
  return code != 0 ? code : lastLookup;
}

uint32_t CRvXMLPreference::CreateRoot(const wchar_t* rootName, const wchar_t* version) {
  return Guard([&] {
    Check(m_tree.Create());
    Check(m_tree.WriteDeclaration());
    DOMNode root = nullptr;
    Check(m_tree.CreateRoot(rootName, &root));
    Check(m_tree.SetAttribute(root, L"version", version));
  });
}

uint32_t CRvXMLPreference::CreateKF() { return CreateRoot(prefs::kMainRoot, prefs::kMainVersion); }
uint32_t CRvXMLPreference::CreateOT() { return CreateRoot(prefs::kOutlineToolRoot, prefs::kOutlineToolVersion); }

uint32_t CRvXMLPreference::Save(const std::string& path) { return m_tree.Save(path); }

// ---- sections --------------------------------------------------------------

uint32_t CRvXMLPreference::ReadSection(const prefs::Section& section, void* record) {
  return Guard([&] {
    auto* bytes = static_cast<unsigned char*>(record);
    DOMNode root = nullptr, node = nullptr;
    Check(m_tree.GetRoot(&root));
    Check(m_tree.GetElementAt(root, section.name, 0, &node));
    for (const Key& key : section.keys) {
      DOMNode parent = node, element = nullptr;
      if (*key.group != L'\0' && !Find(m_tree, node, key.group, &parent)) continue;
      if (!Find(m_tree, parent, key.name, &element)) continue;
      std::wstring text;
      Check(m_tree.GetText(element, &text));
      if (text.size() >= section.readChars) text.resize(section.readChars - 1);
      if (text.empty()) continue;
      SetField(key, text, bytes + key.offset);
    }
  });
}

uint32_t CRvXMLPreference::WriteSection(const prefs::Section& section, const void* record) {
  return Guard([&] {
    const auto* bytes = static_cast<const unsigned char*>(record);
    DOMNode root = nullptr, node = nullptr, parent = nullptr, element = nullptr;
    Check(m_tree.GetRoot(&root));
    Check(m_tree.CreateChild(root, section.name, nullptr, &node));
    const wchar_t* group = nullptr;  // the group that `parent` is
    for (const Key& key : section.keys) {
      if (group == nullptr || std::wcscmp(group, key.group) != 0) {
        group = key.group;
        parent = node;
        if (*group != L'\0') Check(m_tree.CreateChild(node, group, nullptr, &parent));
      }
      std::wstring text = FieldText(key, bytes + key.offset);
      if (text.size() >= section.writeChars) text.resize(section.writeChars - 1);
      Check(m_tree.CreateChild(parent, key.name, text.c_str(), &element));
    }
  });
}

// ---- the four operations -----------------------------------------------------

namespace {

/// Reads or writes each record that is there; a section's own failure
/// doesn't reach the result.
template <bool kConst, class Each>
void ForEachRecord(const KFRecordSet<kConst>& r, Each&& each) {
  if (r.userSetup) each(r.userSetup);
  if (r.plotPreview) each(r.plotPreview);
  if (r.plot) each(r.plot);
  if (r.tomboEnv) each(r.tomboEnv);
  if (r.function) each(r.function);
  if (r.cutPreview) each(r.cutPreview);
  if (r.dotbridge) each(r.dotbridge);
}

}  // namespace

uint32_t CRvXMLPreference::LoadKF(const std::string& path, const KFRecordsOut& records) {
  return Guard([&] {
    cond::LocaleScope locale;
    Check(OpenKF(path));
    ForEachRecord(records, [&](auto* record) { Read(record); });
  });
}

uint32_t CRvXMLPreference::SaveKF(const std::string& path, const KFRecordsIn& records) {
  return Guard([&] {
    cond::LocaleScope locale;
    Check(CreateKF());
    ForEachRecord(records, [&](const auto* record) { Write(record); });
    Check(Save(path));
  });
}

uint32_t CRvXMLPreference::LoadOT(const std::string& path, RVPREFOUTLINETOOL* outlineTool) {
  return Guard([&] {
    cond::LocaleScope locale;
    Check(OpenOT(path));
    if (outlineTool != nullptr) Read(outlineTool);
  });
}

uint32_t CRvXMLPreference::SaveOT(const std::string& path, const RVPREFOUTLINETOOL* outlineTool) {
  return Guard([&] {
    cond::LocaleScope locale;
    Check(CreateOT());
    if (outlineTool != nullptr) Write(outlineTool);
    Check(Save(path));
  });
}

}  // namespace rv
