#include "drawing.h"

#include "failure.h"

namespace rvtool {
namespace {

// The library copies a whole name into the buffer without a size, and names
// have no limit of their own: 64 KiB holds any name a person gives.
template <typename Read>
std::string ReadName(Read read) {
  std::vector<char> name(65536, '\0');
  CheckRead(read(name.data()));
  name.back() = '\0';
  return name.data();
}

}  // namespace

void CheckRead(uint32_t code) {
  if (code != 0) Check(code, "reading the drawing", "");  // no texts made for a read that worked
}

Document::~Document() {
  if (m_index < 0) return;
  if (RvGiSetActiveDocument(m_index) == 0) RvGiDeleteActiveDocument();
}

void Document::Activate() const { CheckRead(RvGiSetActiveDocument(m_index)); }

std::vector<void*> Layers() {
  int16_t count = 0;
  CheckRead(RvGiGetLayerCount(&count));
  std::vector<void*> layers;
  for (int16_t i = 0; i < count; ++i) {
    void* layer = nullptr;
    CheckRead(RvGiGetLayer(&layer, i));
    layers.push_back(layer);
  }
  return layers;
}

std::string LayerName(void* layer) {
  return ReadName([&](char* name) { return RvGiGetLayerName(layer, name); });
}

std::string StrokeColourName(void* path) {
  return ReadName([&](char* name) { return RvGiGetPathColorName(2, path, name); });
}

int16_t ArtType(void* art) {
  int16_t type = -1;
  CheckRead(RvGiGetArtType(art, &type));
  return type;
}

void ForEachPath(void* art, const std::function<void(void*)>& visit) {
  // An explicit stack of "next art to look at" keeps deep nesting off the
  // call stack.
  std::vector<void*> pending;
  void* first = nullptr;
  CheckRead(RvGiGetArtFirstChild(art, &first));
  if (first != nullptr) pending.push_back(first);
  while (!pending.empty()) {
    void* current = pending.back();
    pending.pop_back();
    void* sibling = nullptr;
    CheckRead(RvGiGetArtSibling(current, &sibling));
    if (sibling != nullptr) pending.push_back(sibling);
    const int16_t type = ArtType(current);
    if (type == kTypePath) {
      visit(current);
    } else if (type == kTypeGroup || type == kTypeCompound) {
      void* child = nullptr;
      CheckRead(RvGiGetArtFirstChild(current, &child));
      if (child != nullptr) pending.push_back(child);
    }
  }
}

std::vector<void*> Components(void* path) {
  std::vector<void*> out;
  void* child = nullptr;
  CheckRead(RvGiGetArtFirstChild(path, &child));
  while (child != nullptr) {
    out.push_back(child);
    CheckRead(RvGiGetArtSibling(child, &child));
  }
  return out;
}

}  // namespace rvtool
