// Tables of the plot interpreter: character classes, parameter forms and the
// command vocabularies of both dialects.
#pragma once

#include <array>
#include <cstdint>

namespace rv::plot {

// ---- character classes ----

/// The class of a byte of a command stream. Bytes from 128 up are kClassOther.
enum ByteClass : uint8_t {
  kClassTerminator = 0,  ///< ends a command
  kClassSign = 1,        ///< + or -
  kClassDigit = 2,
  kClassPoint = 3,       ///< the decimal point
  kClassSeparator = 4,   ///< space, comma (and line ends in the single-letter dialect)
  kClassLetter = 5,      ///< starts a mnemonic
  kClassControl = 6,     ///< skipped
  kClassOther = 7,
};

constexpr std::array<uint8_t, 128> MakeTwoLetterClasses() {
  std::array<uint8_t, 128> t{};
  for (int i = kClassTerminator; i < 128; ++i) t[i] = kClassOther;
  for (int i = kClassTerminator; i < 32; ++i) t[i] = kClassControl;
  t[';'] = kClassTerminator;
  t['+'] = t['-'] = kClassSign;
  for (int i = '0'; i <= '9'; ++i) t[i] = kClassDigit;
  t['.'] = kClassPoint;
  t[' '] = t[','] = kClassSeparator;
  t['!'] = kClassLetter;
  for (int i = 'A'; i <= 'Z'; ++i) t[i] = kClassLetter;
  for (int i = 'a'; i <= 'z'; ++i) t[i] = kClassLetter;
  return t;
}

/// In the single-letter dialect the two terminator bytes are tested before
/// this table; `;` and `:` are letters here and lower case is "other".
constexpr std::array<uint8_t, 128> MakeSingleLetterClasses() {
  std::array<uint8_t, 128> t{};
  for (int i = kClassTerminator; i < 128; ++i) t[i] = kClassOther;
  for (int i = kClassTerminator; i < 32; ++i) t[i] = kClassControl;
  t[10] = t[13] = kClassSeparator;
  t['+'] = t['-'] = kClassSign;
  for (int i = '0'; i <= '9'; ++i) t[i] = kClassDigit;
  t['.'] = kClassPoint;
  t[' '] = t[','] = kClassSeparator;
  for (int i = 33; i <= 42; ++i) t[i] = kClassLetter;
  t['/'] = kClassLetter;
  for (int i = 58; i <= 95; ++i) t[i] = kClassLetter;
  return t;
}

inline constexpr std::array<uint8_t, 128> kTwoLetterClass = MakeTwoLetterClasses();
inline constexpr std::array<uint8_t, 128> kSingleLetterClass = MakeSingleLetterClasses();

// ---- parameter forms ----

enum ParamType : uint8_t { kTypeNone, kTypeInt, kTypeReal, kTypeChar, kTypeText, kTypeCode, kTypeEncoded };

/// Number of parameters, whether the list repeats, and the type of each
/// parameter (parameters from the eighth on have the type of the eighth).
struct ParamForm {
  uint16_t count;
  bool repeat;
  uint8_t types[8];
};

enum FormId : uint8_t {
  kFormNone,
  kFormInt1,
  kFormReal1,
  kFormChar1,
  kFormChar2,
  kFormInt2,
  kFormReal2,
  kFormIntReal,
  kFormRealInt,
  kFormInt3,
  kFormReal3,
  kFormIntIntReal,
  kFormInt4,
  kFormReal4,
  kFormInt5,
  kFormReal5,
  kFormReal7,
  kFormReal256,
  kFormReal2Repeat,
  kFormText151Repeat,
  kFormCode76Repeat,
  kFormEncoded,
};

constexpr uint8_t I = kTypeInt, R = kTypeReal, C = kTypeChar, T = kTypeText, K = kTypeCode, E = kTypeEncoded;

inline constexpr ParamForm kForms[] = {
    {0, false, {0, 0, 0, 0, 0, 0, 0, 0}},  // none
    {1, false, {I, I, I, I, I, I, I, I}},  // 1 integer
    {1, false, {R, R, R, R, R, R, R, R}},  // 1 real
    {1, false, {C, C, C, C, C, C, C, C}},  // 1 character
    {2, false, {C, C, C, C, C, C, C, C}},  // 2 characters
    {2, false, {I, I, I, I, I, I, I, I}},  // 2 integers
    {2, false, {R, R, R, R, R, R, R, R}},  // 2 reals
    {2, false, {I, R, R, R, R, R, R, R}},  // integer, real
    {2, false, {R, I, I, I, I, I, I, I}},  // real, integer
    {3, false, {I, I, I, I, I, I, I, I}},  // 3 integers
    {3, false, {R, R, R, R, R, R, R, R}},  // 3 reals
    {3, false, {I, I, R, R, R, R, R, R}},  // integer, integer, real
    {4, false, {I, I, I, I, I, I, I, I}},  // 4 integers
    {4, false, {R, R, R, R, R, R, R, R}},  // 4 reals
    {5, false, {I, I, I, I, I, I, I, I}},  // 5 integers
    {5, false, {R, R, R, R, R, R, R, R}},  // 5 reals
    {7, false, {R, R, R, R, R, R, R, R}},  // 7 reals
    {256, false, {R, R, R, R, R, R, R, R}},  // 256 reals
    {2, true, {R, R, R, R, R, R, R, R}},   // 2 reals, repeating
    {151, true, {T, T, T, T, T, T, T, T}},  // 151 text units, repeating
    {76, true, {K, K, K, K, K, K, K, K}},   // 76 codes, repeating
    {1, false, {E, E, E, E, E, E, E, E}},   // encoded
};

// ---- actions ----

enum Action : uint8_t {
  kActNone,
  // two-letter dialect
  kActPU, kActPD, kActPA, kActPR, kActVA,
  kActAA, kActAR, kActAT, kActRT, kActZC, kActCI, kActEA, kActER, kActEW, kActZE, kActZS, kActZD, kActZW,
  kActCT, kActDF, kActIN, kActIP, kActSC, kActRO, kActJT, kActVT,
  // single-letter dialect
  kActM, kActD, kActO, kActE, kActH, kActFactor, kActTurn, kActShift, kActTerm, kActW, kActBracket, kActStar,
};

struct CommandEntry {
  char name[3];
  uint8_t form;
  uint8_t action;
};

/// The 104 mnemonics of the two-letter dialect, in lower case.
inline constexpr CommandEntry kTwoLetterCommands[] = {
    // no parameters
    {"df", kFormNone, kActDF}, {"dp", kFormNone, kActNone}, {"dc", kFormNone, kActNone},
    {"ep", kFormNone, kActNone}, {"fp", kFormNone, kActNone}, {"in", kFormNone, kActIN},
    {"jo", kFormNone, kActNone}, {"nr", kFormNone, kActNone}, {"oa", kFormNone, kActNone},
    {"oc", kFormNone, kActNone}, {"od", kFormNone, kActNone}, {"oe", kFormNone, kActNone},
    {"of", kFormNone, kActNone}, {"oh", kFormNone, kActNone}, {"oi", kFormNone, kActNone},
    {"ol", kFormNone, kActNone}, {"oo", kFormNone, kActNone}, {"op", kFormNone, kActNone},
    {"os", kFormNone, kActNone}, {"ot", kFormNone, kActNone}, {"ow", kFormNone, kActNone},
    {"pb", kFormNone, kActNone}, {"ps", kFormNone, kActNone}, {"sa", kFormNone, kActNone},
    {"ss", kFormNone, kActNone}, {"xt", kFormNone, kActNone}, {"yt", kFormNone, kActNone},
    {"gt", kFormNone, kActNone}, {"zi", kFormNone, kActNone},
    // one integer
    {"ca", kFormInt1, kActNone}, {"cs", kFormInt1, kActNone}, {"ct", kFormInt1, kActCT},
    {"dv", kFormInt1, kActNone}, {"et", kFormInt1, kActNone}, {"lo", kFormInt1, kActNone},
    {"pm", kFormInt1, kActNone}, {"ro", kFormInt1, kActRO}, {"sp", kFormInt1, kActNone},
    {"zb", kFormInt1, kActNone}, {"zt", kFormInt1, kActNone},
    // one real
    {"pt", kFormReal1, kActNone}, {"sl", kFormReal1, kActNone}, {"zq", kFormReal1, kActNone},
    {"zr", kFormReal1, kActNone}, {"zx", kFormReal1, kActNone},
    // characters
    {"dt", kFormChar1, kActNone}, {"sm", kFormChar2, kActNone},
    // two integers
    {"as", kFormInt2, kActNone}, {"cm", kFormInt2, kActNone}, {"ds", kFormInt2, kActNone},
    {"fs", kFormInt2, kActNone}, {"iv", kFormInt2, kActNone}, {"js", kFormInt2, kActNone},
    {"jt", kFormInt2, kActJT}, {"vs", kFormInt2, kActNone}, {"za", kFormInt2, kActNone},
    {"zf", kFormInt2, kActNone},
    // two reals
    {"ci", kFormReal2, kActCI}, {"cp", kFormReal2, kActNone}, {"di", kFormReal2, kActNone},
    {"dr", kFormReal2, kActNone}, {"ea", kFormReal2, kActEA}, {"er", kFormReal2, kActER},
    {"es", kFormReal2, kActNone}, {"ra", kFormReal2, kActNone}, {"rr", kFormReal2, kActNone},
    {"si", kFormReal2, kActNone}, {"sr", kFormReal2, kActNone}, {"tl", kFormReal2, kActNone},
    {"zd", kFormReal2, kActZD},
    // mixed
    {"lt", kFormIntReal, kActNone}, {"zo", kFormRealInt, kActNone}, {"im", kFormInt3, kActNone},
    {"ze", kFormReal3, kActZE}, {"zw", kFormReal3, kActZW}, {"ft", kFormIntIntReal, kActNone},
    {"ip", kFormInt4, kActIP}, {"sc", kFormInt4, kActSC},
    // four reals
    {"aa", kFormReal4, kActAA}, {"ar", kFormReal4, kActAR}, {"ew", kFormReal4, kActEW},
    {"iw", kFormReal4, kActNone}, {"wg", kFormReal4, kActNone}, {"zc", kFormReal4, kActZC},
    // five
    {"vt", kFormInt5, kActVT}, {"at", kFormReal5, kActAT}, {"rt", kFormReal5, kActRT},
    // smooth curve
    {"zs", kFormReal256, kActZS},
    // coordinate pairs
    {"pa", kFormReal2Repeat, kActPA}, {"pd", kFormReal2Repeat, kActPD}, {"pr", kFormReal2Repeat, kActPR},
    {"pu", kFormReal2Repeat, kActPU}, {"qa", kFormReal2Repeat, kActNone}, {"qd", kFormReal2Repeat, kActNone},
    {"qr", kFormReal2Repeat, kActNone}, {"qu", kFormReal2Repeat, kActNone}, {"va", kFormReal2Repeat, kActVA},
    // texts and codes
    {"bl", kFormText151Repeat, kActNone}, {"kb", kFormText151Repeat, kActNone},
    {"lb", kFormText151Repeat, kActNone}, {"wd", kFormText151Repeat, kActNone},
    {"jk", kFormCode76Repeat, kActNone}, {"kl", kFormCode76Repeat, kActNone},
    // encoded polyline
    {"pe", kFormEncoded, kActNone},
};
static_assert(std::size(kTwoLetterCommands) == 104);

/// Mnemonics that follow a '!'.
inline constexpr CommandEntry kBangCommands[] = {
    {"pg", kFormReal1, kActNone}, {"nr", kFormNone, kActNone}, {"ok", kFormNone, kActNone},
    {"sf", kFormInt2, kActNone},  {"st", kFormInt1, kActNone},
};

/// The 20 commands of the single-letter dialect (case-sensitive).
inline constexpr CommandEntry kSingleLetterCommands[] = {
    {"H", kFormNone, kActH},        {"U", kFormNone, kActNone},       {"?", kFormNone, kActNone},
    {":", kFormNone, kActNone},     {";", kFormNone, kActNone},       {"V", kFormNone, kActNone},
    {"J", kFormInt1, kActNone},     {"F", kFormReal1, kActNone},      {"_", kFormReal1, kActNone},
    {"=", kFormChar2, kActTerm},    {"^", kFormReal2, kActShift},     {"&", kFormReal3, kActFactor},
    {"/", kFormReal3, kActTurn},    {"]", kFormReal5, kActBracket},   {"W", kFormReal7, kActW},
    {"*", kFormReal7, kActStar},    {"M", kFormReal2Repeat, kActM},   {"D", kFormReal2Repeat, kActD},
    {"O", kFormReal2Repeat, kActO}, {"E", kFormReal2Repeat, kActE},
};
static_assert(std::size(kSingleLetterCommands) == 20);

constexpr uint8_t FoldCase(uint8_t b) { return (b >= 'A' && b <= 'Z') ? uint8_t(b + 32) : b; }

/// Direct index of the two-letter table: 26 x 26 slots of entry number + 1.
constexpr std::array<uint8_t, 26 * 26> MakeTwoLetterIndex() {
  std::array<uint8_t, 26 * 26> t{};
  for (std::size_t i = 0; i < std::size(kTwoLetterCommands); ++i) {
    const auto& e = kTwoLetterCommands[i];
    t[std::size_t(e.name[0] - 'a') * 26 + std::size_t(e.name[1] - 'a')] = uint8_t(i + 1);
  }
  return t;
}
inline constexpr std::array<uint8_t, 26 * 26> kTwoLetterIndex = MakeTwoLetterIndex();

constexpr std::array<uint8_t, 128> MakeSingleLetterIndex() {
  std::array<uint8_t, 128> t{};
  for (std::size_t i = 0; i < std::size(kSingleLetterCommands); ++i) {
    t[uint8_t(kSingleLetterCommands[i].name[0])] = uint8_t(i + 1);
  }
  return t;
}
inline constexpr std::array<uint8_t, 128> kSingleLetterIndex = MakeSingleLetterIndex();

/// The entry of a folded pair, or null.
inline const CommandEntry* FindTwoLetter(uint8_t first, uint8_t second) {
  if (first < 'a' || first > 'z' || second < 'a' || second > 'z') return nullptr;
  const uint8_t slot = kTwoLetterIndex[std::size_t(first - 'a') * 26 + std::size_t(second - 'a')];
  return slot ? &kTwoLetterCommands[slot - 1] : nullptr;
}

inline const CommandEntry* FindBang(uint8_t first, uint8_t second) {
  for (const auto& e : kBangCommands) {
    if (uint8_t(e.name[0]) == first && uint8_t(e.name[1]) == second) return &e;
  }
  return nullptr;
}

inline const CommandEntry* FindSingleLetter(uint8_t byte) {
  if (byte >= 128) return nullptr;
  const uint8_t slot = kSingleLetterIndex[byte];
  return slot ? &kSingleLetterCommands[slot - 1] : nullptr;
}

}  // namespace rv::plot
