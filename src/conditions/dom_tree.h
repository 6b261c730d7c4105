// DOMTree: the library's small XML document interface, over pugixml.
//
// Every operation returns a code: 0, or 11 when no document exists, 12 for a
// null node argument, 65535 when the DOM refuses, and the operation's own
// code where it has one (13 load, 14 save, 15 missing element or root).
// Text inside the document is wide; files are read in any encoding that the
// declaration names and written in UTF-8. White space in text is kept as it
// stands, and no operation adds white space between elements.
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

namespace pugi {
class xml_document;
struct xml_node_struct;
}  // namespace pugi

namespace rv {

/// A node of the document. Nodes belong to the document; null is no node.
using DOMNode = pugi::xml_node_struct*;

class DOMTree {
 public:
  DOMTree();
  virtual ~DOMTree();
  DOMTree(const DOMTree&) = delete;
  DOMTree& operator=(const DOMTree&) = delete;

  /// A new empty document (any former one is dropped).
  uint32_t Create();
  /// Appends the declaration <?xml version="1.0" encoding="utf-8"?>.
  uint32_t WriteDeclaration();
  /// Makes an element and sets it as the document element.
  uint32_t CreateRoot(std::wstring_view name, DOMNode* node);
  /// Makes an element with `text` (none if null) as last child of `parent`.
  uint32_t CreateChild(DOMNode parent, std::wstring_view name, const wchar_t* text, DOMNode* node);
  /// Makes an element the same way and puts it before `reference`.
  uint32_t InsertChildBefore(DOMNode reference, std::wstring_view name, const wchar_t* text, DOMNode* node);
  /// Replaces the document by the file's. 13 when the file can't be read or
  /// isn't well-formed XML with a document element.
  uint32_t Load(const std::string& path);
  /// Writes the document. 14 when the file can't be written.
  uint32_t Save(const std::string& path);
  /// The document element; 15 when there is none.
  uint32_t GetRoot(DOMNode* node);
  /// The element's name; 15 when the node has none.
  uint32_t GetNodeName(DOMNode node, std::wstring* name);
  /// Number of elements named `name` among the descendants of `node`.
  uint32_t CountElements(DOMNode node, std::wstring_view name, int32_t* count);
  /// The element named `name` at `index` (from 0) among the descendants of
  /// `node` in document order; 15 when there is none.
  uint32_t GetElementAt(DOMNode node, std::wstring_view name, int32_t index, DOMNode* found);
  /// The text of the node: all its text content in document order.
  uint32_t GetText(DOMNode node, std::wstring* text);
  /// The attribute's value; 65535 when the attribute isn't there.
  uint32_t GetAttribute(DOMNode node, std::wstring_view name, std::wstring* value);
  /// Sets (adds or replaces) the attribute.
  uint32_t SetAttribute(DOMNode node, std::wstring_view name, std::wstring_view value);

 private:
  // Walks by index are mostly sequential (media after media, pass after
  // pass): a few remembered answers let the next index go on from the last
  // one instead of walking from the start again.
  struct FoundElement {
    DOMNode top = nullptr;
    std::string name;
    int32_t index = 0;
    DOMNode found = nullptr;
    uint64_t used = 0;  // for replacing the least recently used answer
  };
  void ForgetFound() noexcept;
  void ForgetFound(const std::string& name, DOMNode parent) noexcept;

  std::unique_ptr<pugi::xml_document> m_document;
  std::array<FoundElement, 8> m_found;
  uint64_t m_useClock = 0;
};

}  // namespace rv
