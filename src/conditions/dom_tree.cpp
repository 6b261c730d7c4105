#include "conditions/dom_tree.h"

#include <cstdio>
#include <vector>

#include <pugixml.hpp>
#include <sys/stat.h>

#include "frame/error_codes.h"
#include "frame/frame.h"

namespace rv {
namespace {

std::string Utf8(std::wstring_view text) { return pugi::as_utf8(std::wstring(text)); }

pugi::xml_node Node(DOMNode node) { return pugi::xml_node(node); }

void NeedNode(DOMNode node) {
  if (node == nullptr) Raise(kErrXmlNullNode);
}

// The next node after `node` in document order inside the subtree of `top`.
pugi::xml_node NextInSubtree(pugi::xml_node node, pugi::xml_node top) {
  if (node.first_child()) return node.first_child();
  while (node != top) {
    if (node.next_sibling()) return node.next_sibling();
    node = node.parent();
  }
  return pugi::xml_node();
}

struct FileCloser {
  std::FILE* file;
  ~FileCloser() {
    if (file != nullptr) std::fclose(file);
  }
};

/// The bytes of a regular file; false for anything else (a folder, a device)
/// or when it can't be read whole.
bool ReadRegularFile(const std::string& path, std::vector<char>& bytes) {
  FileCloser in{std::fopen(path.c_str(), "rb")};
  if (in.file == nullptr) return false;
  struct stat info {};
  if (fstat(fileno(in.file), &info) != 0 || !S_ISREG(info.st_mode) || info.st_size < 0) return false;
  bytes.resize(std::size_t(info.st_size));
  return bytes.empty() || std::fread(bytes.data(), 1, bytes.size(), in.file) == bytes.size();
}

// The parser is lenient at the top of the document; a document has exactly
// one element there and no text.
bool IsWellFormedTop(const pugi::xml_document& document) {
  int elements = 0;
  for (pugi::xml_node n = document.first_child(); n; n = n.next_sibling()) {
    if (n.type() == pugi::node_element) ++elements;
    if (n.type() == pugi::node_pcdata || n.type() == pugi::node_cdata) return false;
  }
  return elements == 1;
}

pugi::xml_node MakeElement(pugi::xml_node element, const wchar_t* text) {
  if (text != nullptr) {
    pugi::xml_node data = element.append_child(pugi::node_pcdata);
    if (!data || !data.set_value(Utf8(text).c_str())) Raise(kErrXmlFailed);
  }
  return element;
}

}  // namespace

DOMTree::DOMTree() = default;
DOMTree::~DOMTree() = default;

void DOMTree::ForgetFound() noexcept {
  for (FoundElement& f : m_found) f = FoundElement{};
}

// A new element `name` appended as last child of `parent` comes after every
// remembered element, unless `parent` lies strictly inside the walked
// subtree: only such answers can shift.
void DOMTree::ForgetFound(const std::string& name, DOMNode parent) noexcept {
  for (FoundElement& f : m_found) {
    if (f.top == nullptr || f.name != name) continue;
    bool inside = false;
    for (pugi::xml_node n = Node(parent); n; n = n.parent()) {
      if (n.internal_object() == f.top) {
        inside = n.internal_object() != parent;
        break;
      }
    }
    if (inside || parent == nullptr) f = FoundElement{};
  }
}

uint32_t DOMTree::Create() {
  return Guard([&] {
    ForgetFound();
    m_document = std::make_unique<pugi::xml_document>();
  });
}

uint32_t DOMTree::WriteDeclaration() {
  return Guard([&] {
    if (!m_document) Raise(kErrXmlNoDocument);
    pugi::xml_node decl = m_document->append_child(pugi::node_declaration);
    if (!decl) Raise(kErrXmlFailed);
    decl.append_attribute("version").set_value("1.0");
    decl.append_attribute("encoding").set_value("utf-8");
  });
}

uint32_t DOMTree::CreateRoot(std::wstring_view name, DOMNode* node) {
  return Guard([&] {
    if (!m_document) Raise(kErrXmlNoDocument);
    if (name.empty()) Raise(kErrXmlFailed);
    if (pugi::xml_node former = m_document->document_element()) m_document->remove_child(former);
    ForgetFound();
    pugi::xml_node root = m_document->append_child(Utf8(name).c_str());
    if (!root) Raise(kErrXmlFailed);
    *node = root.internal_object();
  });
}

uint32_t DOMTree::CreateChild(DOMNode parent, std::wstring_view name, const wchar_t* text, DOMNode* node) {
  return Guard([&] {
    if (!m_document) Raise(kErrXmlNoDocument);
    NeedNode(parent);
    if (name.empty()) Raise(kErrXmlFailed);
    std::string key = Utf8(name);
    ForgetFound(key, parent);
    pugi::xml_node child = Node(parent).append_child(key.c_str());
    if (!child) Raise(kErrXmlFailed);
    *node = MakeElement(child, text).internal_object();
  });
}

uint32_t DOMTree::InsertChildBefore(DOMNode reference, std::wstring_view name, const wchar_t* text,
                                    DOMNode* node) {
  return Guard([&] {
    if (!m_document) Raise(kErrXmlNoDocument);
    NeedNode(reference);
    pugi::xml_node parent = Node(reference).parent();
    if (name.empty() || parent.type() != pugi::node_element) Raise(kErrXmlFailed);
    std::string key = Utf8(name);
    ForgetFound(key, nullptr);
    pugi::xml_node child = parent.insert_child_before(key.c_str(), Node(reference));
    if (!child) Raise(kErrXmlFailed);
    *node = MakeElement(child, text).internal_object();
  });
}

uint32_t DOMTree::Load(const std::string& path) {
  return Guard([&] {
    if (!m_document) Raise(kErrXmlNoDocument);
    ForgetFound();
    constexpr unsigned kFlags = pugi::parse_default | pugi::parse_declaration | pugi::parse_pi |
                                pugi::parse_comments | pugi::parse_ws_pcdata | pugi::parse_doctype;
    std::vector<char> bytes;
    if (!ReadRegularFile(path, bytes)) {
      m_document->reset();
      Raise(kErrXmlLoad);
    }
    pugi::xml_parse_result result = m_document->load_buffer(bytes.data(), bytes.size(), kFlags, pugi::encoding_auto);
    if (!result || !IsWellFormedTop(*m_document)) {
      m_document->reset();
      Raise(kErrXmlLoad);
    }
  });
}

uint32_t DOMTree::Save(const std::string& path) {
  return Guard([&] {
    if (!m_document) Raise(kErrXmlNoDocument);
    constexpr unsigned kFlags = pugi::format_raw | pugi::format_no_declaration;
    if (!m_document->save_file(path.c_str(), PUGIXML_TEXT(""), kFlags, pugi::encoding_utf8)) {
      Raise(kErrXmlSave);
    }
  });
}

uint32_t DOMTree::GetRoot(DOMNode* node) {
  return Guard([&] {
    if (!m_document) Raise(kErrXmlNoDocument);
    pugi::xml_node root = m_document->document_element();
    if (!root) Raise(kErrXmlMissing);
    *node = root.internal_object();
  });
}

uint32_t DOMTree::GetNodeName(DOMNode node, std::wstring* name) {
  return Guard([&] {
    if (!m_document) Raise(kErrXmlNoDocument);
    NeedNode(node);
    const char* text = Node(node).name();
    if (text == nullptr || *text == '\0') Raise(kErrXmlMissing);
    *name = pugi::as_wide(text);
  });
}

uint32_t DOMTree::CountElements(DOMNode node, std::wstring_view name, int32_t* count) {
  return Guard([&] {
    if (!m_document) Raise(kErrXmlNoDocument);
    NeedNode(node);
    std::string wanted = Utf8(name);
    pugi::xml_node top = Node(node);
    int64_t n = 0;
    for (pugi::xml_node it = NextInSubtree(top, top); it; it = NextInSubtree(it, top)) {
      if (it.type() == pugi::node_element && wanted == it.name()) ++n;
    }
    if (n > INT32_MAX) Raise(kErrXmlFailed);
    *count = int32_t(n);
  });
}

uint32_t DOMTree::GetElementAt(DOMNode node, std::wstring_view name, int32_t index, DOMNode* found) {
  return Guard([&] {
    if (!m_document) Raise(kErrXmlNoDocument);
    NeedNode(node);
    if (index < 0) Raise(kErrXmlMissing);
    std::string wanted = Utf8(name);
    pugi::xml_node top = Node(node);
    // Go on from a remembered answer at or below the index, if there is one.
    pugi::xml_node start = top;
    int32_t seen = 0;
    FoundElement* slot = nullptr;
    for (FoundElement& f : m_found) {
      if (f.top == node && f.name == wanted) {
        slot = &f;
        f.used = ++m_useClock;
        if (f.index <= index) {
          start = Node(f.found);
          seen = f.index + 1;
          if (f.index == index) {
            *found = f.found;
            return;
          }
        }
        break;
      }
    }
    for (pugi::xml_node it = NextInSubtree(start, top); it; it = NextInSubtree(it, top)) {
      if (it.type() == pugi::node_element && wanted == it.name()) {
        if (seen == index) {
          if (index == 0) {  // the first one is found from the start anyway
            *found = it.internal_object();
            return;
          }
          if (slot == nullptr) {
            slot = &m_found[0];
            for (FoundElement& f : m_found) {
              if (f.used < slot->used) slot = &f;
            }
          }
          *slot = FoundElement{node, wanted, index, it.internal_object(), ++m_useClock};
          *found = it.internal_object();
          return;
        }
        ++seen;
      }
    }
    Raise(kErrXmlMissing);
  });
}

uint32_t DOMTree::GetText(DOMNode node, std::wstring* text) {
  return Guard([&] {
    if (!m_document) Raise(kErrXmlNoDocument);
    NeedNode(node);
    pugi::xml_node top = Node(node);
    std::string all;
    if (top.type() == pugi::node_pcdata || top.type() == pugi::node_cdata) all = top.value();
    for (pugi::xml_node it = NextInSubtree(top, top); it; it = NextInSubtree(it, top)) {
      if (it.type() == pugi::node_pcdata || it.type() == pugi::node_cdata) all += it.value();
    }
    *text = pugi::as_wide(all);
  });
}

uint32_t DOMTree::GetAttribute(DOMNode node, std::wstring_view name, std::wstring* value) {
  return Guard([&] {
    if (!m_document) Raise(kErrXmlNoDocument);
    NeedNode(node);
    pugi::xml_attribute attr = Node(node).attribute(Utf8(name).c_str());
    if (!attr) Raise(kErrXmlFailed);
    *value = pugi::as_wide(attr.value());
  });
}

uint32_t DOMTree::SetAttribute(DOMNode node, std::wstring_view name, std::wstring_view value) {
  return Guard([&] {
    if (!m_document) Raise(kErrXmlNoDocument);
    NeedNode(node);
    if (name.empty() || Node(node).type() != pugi::node_element) Raise(kErrXmlFailed);
    std::string key = Utf8(name);
    pugi::xml_attribute attr = Node(node).attribute(key.c_str());
    if (!attr) attr = Node(node).append_attribute(key.c_str());
    if (!attr || !attr.set_value(Utf8(value).c_str())) Raise(kErrXmlFailed);
  });
}

}  // namespace rv
