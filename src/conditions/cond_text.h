// Text between the host's strings, the XML document and the name rules.
//
// Host strings are in the encoding of the user's default locale; the XML
// document holds wide text. The conversions run under a thread-local locale
// (LocaleScope) so that the process's own locale settings are never touched.
#pragma once

#include <clocale>
#include <cstddef>
#include <string>
#include <string_view>

#include <locale.h>

namespace rv::cond {

/// While it lives, the calling thread works under a locale whose character
/// type is the user's default (from the environment) and whose other
/// categories are "C", so that numbers always use a '.'. The thread's
/// previous locale comes back on destruction, on every path.
class LocaleScope {
 public:
  LocaleScope();
  ~LocaleScope();
  LocaleScope(const LocaleScope&) = delete;
  LocaleScope& operator=(const LocaleScope&) = delete;

 private:
  locale_t m_locale = nullptr;
  locale_t m_previous = nullptr;
};

/// Multibyte text of the current locale to wide text. An invalid or
/// incomplete sequence becomes U+FFFD and the conversion goes on.
std::wstring LocaleToWide(std::string_view text);

/// Wide text to multibyte text of the current locale, at most `maxBytes`
/// bytes, cut at a character boundary. A character that the locale can't
/// represent becomes '?'.
std::string WideToLocale(std::wstring_view text, std::size_t maxBytes);

/// Copies a zero-ended string into a char array of `size` bytes: at most
/// size - 1 bytes, cut at a character boundary of the current locale, the
/// rest of the array zero.
void CopyText(char* dst, std::size_t size, std::string_view src);

/// Length of a text held in a char array of `size` bytes that may lack its
/// terminator.
inline std::string_view FieldText(const char* field, std::size_t size) {
  std::size_t n = 0;
  while (n < size && field[n] != '\0') ++n;
  return std::string_view(field, n);
}

/// The system code page: the character set of the user's default locale,
/// converted through iconv. Used by the name rule of the condition import.
class CodePage {
 public:
  /// Text to wide characters, at most `maxChars` of them (the rest is cut);
  /// an invalid byte becomes U+FFFD. `whole` tells whether no text was cut.
  static std::wstring ToWide(std::string_view text, std::size_t maxChars, bool* whole = nullptr);
  /// Wide characters back to text; an unrepresentable character becomes '?'.
  static std::string FromWide(std::wstring_view text);
  /// The name of the character set in use.
  static std::string Charset();
};

}  // namespace rv::cond
