#include "conditions/cond_text.h"

#include <cstring>
#include <cwchar>
#include <memory>

#include <iconv.h>
#include <langinfo.h>

namespace rv::cond {
namespace {

/// A locale whose LC_CTYPE is the user's default and all else "C". When the
/// environment names a locale that isn't installed, the character type of
/// the process's global locale is kept, as setlocale(LC_CTYPE, "") would.
locale_t MakeUserCtypeLocale() {
  locale_t base = newlocale(LC_ALL_MASK, "C", nullptr);
  if (base == nullptr) return nullptr;
  if (locale_t user = newlocale(LC_CTYPE_MASK, "", base)) return user;
  const char* current = std::setlocale(LC_CTYPE, nullptr);
  if (current != nullptr) {
    if (locale_t kept = newlocale(LC_CTYPE_MASK, current, base)) return kept;
  }
  return base;
}

struct LocaleDeleter {
  void operator()(locale_t loc) const {
    if (loc != nullptr) freelocale(loc);
  }
};
using LocaleHandle = std::unique_ptr<std::remove_pointer_t<locale_t>, LocaleDeleter>;

struct IconvCloser {
  iconv_t cd;
  ~IconvCloser() {
    if (cd != iconv_t(-1)) iconv_close(cd);
  }
};

}  // namespace

LocaleScope::LocaleScope() : m_locale(MakeUserCtypeLocale()) {
  if (m_locale != nullptr) m_previous = uselocale(m_locale);
}

LocaleScope::~LocaleScope() {
  if (m_locale != nullptr) {
    uselocale(m_previous);
    freelocale(m_locale);
  }
}

std::wstring LocaleToWide(std::string_view text) {
  std::wstring out;
  out.reserve(text.size());
  std::mbstate_t state{};
  std::size_t i = 0;
  while (i < text.size()) {
    wchar_t wc = 0;
    std::size_t n = std::mbrtowc(&wc, text.data() + i, text.size() - i, &state);
    if (n == std::size_t(-1) || n == std::size_t(-2)) {
      out.push_back(L'\uFFFD');
      state = std::mbstate_t{};
      ++i;
      continue;
    }
    if (n == 0) {  // an embedded zero: the text ends here
      break;
    }
    out.push_back(wc);
    i += n;
  }
  return out;
}

std::string WideToLocale(std::wstring_view text, std::size_t maxBytes) {
  std::string out;
  std::mbstate_t state{};
  char buf[MB_LEN_MAX > 16 ? MB_LEN_MAX : 16];
  for (wchar_t wc : text) {
    if (wc == L'\0') break;
    std::size_t n = std::wcrtomb(buf, wc, &state);
    if (n == std::size_t(-1)) {
      state = std::mbstate_t{};
      buf[0] = '?';
      n = 1;
    }
    if (out.size() + n > maxBytes) break;
    out.append(buf, n);
  }
  return out;
}

void CopyText(char* dst, std::size_t size, std::string_view src) {
  if (size == 0) return;
  std::memset(dst, 0, size);
  std::size_t limit = size - 1;
  if (src.size() <= limit) {
    std::memcpy(dst, src.data(), src.size());
    return;
  }
  // Cut at the last character boundary that fits.
  std::mbstate_t state{};
  std::size_t i = 0;
  while (i < limit) {
    std::size_t n = std::mbrlen(src.data() + i, src.size() - i, &state);
    if (n == std::size_t(-1) || n == std::size_t(-2) || n == 0) {
      state = std::mbstate_t{};
      n = 1;  // a stray byte counts as one character
    }
    if (i + n > limit) break;
    i += n;
  }
  std::memcpy(dst, src.data(), i);
}

std::string CodePage::Charset() {
  LocaleHandle loc(MakeUserCtypeLocale());
  if (!loc) return "ANSI_X3.4-1968";
  const char* name = nl_langinfo_l(CODESET, loc.get());
  return (name != nullptr && *name != '\0') ? std::string(name) : std::string("ANSI_X3.4-1968");
}

std::wstring CodePage::ToWide(std::string_view text, std::size_t maxChars, bool* whole) {
  std::wstring out;
  IconvCloser conv{iconv_open("WCHAR_T", Charset().c_str())};
  if (conv.cd == iconv_t(-1)) {
    // No converter for this charset: take the bytes as Latin-1.
    for (unsigned char c : text) {
      if (out.size() == maxChars) break;
      out.push_back(wchar_t(c));
    }
    if (whole != nullptr) *whole = out.size() == text.size();
    return out;
  }
  char* in = const_cast<char*>(text.data());
  std::size_t inLeft = text.size();
  while (inLeft > 0 && out.size() < maxChars) {
    wchar_t wc = 0;
    char* outPtr = reinterpret_cast<char*>(&wc);
    std::size_t outLeft = sizeof wc;
    std::size_t r = iconv(conv.cd, &in, &inLeft, &outPtr, &outLeft);
    if (outLeft == 0) {
      out.push_back(wc);
      continue;
    }
    if (r != std::size_t(-1)) break;  // all input taken (only a shift sequence was left)
    // An invalid or incomplete sequence: one replacement per byte skipped.
    out.push_back(L'\uFFFD');
    ++in;
    --inLeft;
    iconv(conv.cd, nullptr, nullptr, nullptr, nullptr);
  }
  if (whole != nullptr) *whole = inLeft == 0;
  return out;
}

std::string CodePage::FromWide(std::wstring_view text) {
  std::string out;
  IconvCloser conv{iconv_open(Charset().c_str(), "WCHAR_T")};
  for (wchar_t wc : text) {
    if (wc == L'\0') break;
    if (conv.cd == iconv_t(-1)) {
      out.push_back(wc >= 0 && wc < 256 ? char(wc) : '?');
      continue;
    }
    char buf[16];
    char* in = reinterpret_cast<char*>(&wc);
    std::size_t inLeft = sizeof wc;
    char* outPtr = buf;
    std::size_t outLeft = sizeof buf;
    std::size_t r = iconv(conv.cd, &in, &inLeft, &outPtr, &outLeft);
    if (r == std::size_t(-1) || inLeft != 0) {
      iconv(conv.cd, nullptr, nullptr, nullptr, nullptr);
      out.push_back('?');
      continue;
    }
    out.append(buf, std::size_t(outPtr - buf));
  }
  // Close any shift state of a stateful charset.
  if (conv.cd != iconv_t(-1)) {
    char buf[16];
    char* outPtr = buf;
    std::size_t outLeft = sizeof buf;
    if (iconv(conv.cd, nullptr, nullptr, &outPtr, &outLeft) != std::size_t(-1)) {
      out.append(buf, std::size_t(outPtr - buf));
    }
  }
  return out;
}

}  // namespace rv::cond
