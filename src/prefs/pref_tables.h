// The format of the two preference files as tables: for each section its
// keys in file order with their place in the record, and the chain of steps
// that brings an older main file up to date.
//
// CRvXMLPreference walks the same key table to read and to write, so that a
// key's name, place and text form are said once. The tables come from the
// key lists of the public header; nothing here touches a document.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "rvdataaccess.h"

namespace rv::prefs {

/// How a key's text goes into its field; the field's C type decides.
enum class KeyType : uint8_t {
  Short,   ///< int16_t, "%hd"
  UShort,  ///< uint16_t, "%hu"
  Int,     ///< int32_t, "%d" (int and long keys have the same text)
  Float,   ///< float, "%f"
  Double,  ///< double, "%lf": six decimals
  Byte,    ///< uint8_t, "%hu" through 16 bits, the low byte kept
  Text,    ///< char[size], multibyte text of the user's locale
};

/// One key: an element below its group (or the section itself) and the
/// field of the record that holds its value.
struct Key {
  const wchar_t* group;  ///< empty: the key stands in the section itself
  const wchar_t* name;
  KeyType type;
  std::size_t offset;  ///< of the field in the record
  std::size_t size;    ///< bytes of the field
};

/// The sections of both files.
enum class SectionId : uint8_t {
  UserSetup, PlotPreview, Plot, TomboEnv, Function, CutPreview, Dotbridge, OutlineTool,
};

/// One section: its element, its keys and the wide buffers through which a
/// key's text passes (terminator included), as the file format bounds them.
struct Section {
  const wchar_t* name;
  std::span<const Key> keys;
  std::size_t readChars;   ///< a key's text is read into this many characters
  std::size_t writeChars;  ///< a key's text is written from this many
  std::size_t recordSize;
};

const Section& SectionOf(SectionId id);

/// The section of each record type.
template <class Record>
constexpr SectionId SectionFor();
template <> constexpr SectionId SectionFor<RVPREFUSERSETUP>() { return SectionId::UserSetup; }
template <> constexpr SectionId SectionFor<RVPREFPLOTPREVIEW>() { return SectionId::PlotPreview; }
template <> constexpr SectionId SectionFor<RVPREFPLOT>() { return SectionId::Plot; }
template <> constexpr SectionId SectionFor<RVPREFTOMBOENV>() { return SectionId::TomboEnv; }
template <> constexpr SectionId SectionFor<RVPREFFUNCTION>() { return SectionId::Function; }
template <> constexpr SectionId SectionFor<RVPREFCUTPREVIEW>() { return SectionId::CutPreview; }
template <> constexpr SectionId SectionFor<RVPREFDOTBRIDGE>() { return SectionId::Dotbridge; }
template <> constexpr SectionId SectionFor<RVPREFOUTLINETOOL>() { return SectionId::OutlineTool; }

/// The roots and the versions that a save writes.
inline constexpr const wchar_t* kMainRoot = L"Kerflow_Preference";
inline constexpr const wchar_t* kMainVersion = L"8.00";
inline constexpr const wchar_t* kOutlineToolRoot = L"KFOutlineTool_Preference";
inline constexpr const wchar_t* kOutlineToolVersion = L"1.00";

/// A key that an upgrade step appends, with its text (null: none).
struct AddedKey {
  const wchar_t* name;
  const wchar_t* text;
};

/// The keys a step appends below one section, or one group of it.
struct StepRow {
  const wchar_t* section;
  const wchar_t* group;  ///< null: below the section itself
  std::span<const AddedKey> keys;
};

/// The step from generation `to - 1` to `to` of the main file.
struct Step {
  int32_t to;
  const wchar_t* version;  ///< the root's version after the step
  std::span<const StepRow> rows;
};

/// The steps in the order in which they run, from "2.00" to "9.00".
std::span<const Step> UpgradeSteps();

}  // namespace rv::prefs
