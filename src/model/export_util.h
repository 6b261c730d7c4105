// Helpers of the exported drawing functions: handles, caller buffers and
// text arguments.
#pragma once

#include <cstring>
#include <string>
#include <string_view>

#include "model/art.h"
#include "model/data_access.h"

namespace rv {

inline CRvDataAccess& Store() { return CRvDataAccess::Instance(); }

/// Writes a result through an output pointer; a null pointer is skipped.
template <class T, class V>
inline void Put(T* out, const V& value) {
  if (out != nullptr) *out = value;
}

/// Copies text with its terminator into a caller buffer (skipped for null).
inline void PutText(char* out, std::string_view text) {
  if (out == nullptr) return;
  if (!text.empty()) std::memcpy(out, text.data(), text.size());
  out[text.size()] = '\0';
}

/// Text argument; null reads as empty.
inline std::string Text(const char* text) { return text == nullptr ? std::string() : std::string(text); }
inline std::string_view TextView(const char* text) { return text == nullptr ? std::string_view() : std::string_view(text); }

/// A record argument that must be given: raises `code` for null.
template <class T>
inline const T& NeedRecord(const T* record, uint32_t code) {
  if (record == nullptr) Raise(code);
  return *record;
}

inline void* Handle(const CRvArt* art) { return const_cast<CRvArt*>(art); }

}  // namespace rv
