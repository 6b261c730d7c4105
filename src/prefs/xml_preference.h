// CRvXMLPreference: the host's two preference files, read into its records
// and written from them.
//
// The four exports call it; nothing else in the library reads a preference.
// It owns one document (a DOMTree) that each operation replaces; after a
// load the document, brought up to date, stays unused until the next one.
// Records belong to the host: no pointer is kept past a call. Text goes
// between records and document as in the condition files (cond_text.h).
#pragma once

#include <cstdint>
#include <string>
#include <type_traits>

#include "conditions/dom_tree.h"
#include "prefs/pref_tables.h"
#include "rvdataaccess.h"

namespace rv {

/// The seven records of the main file; a null one is passed over. Loading
/// fills them, saving reads them (kConst).
template <bool kConst>
struct KFRecordSet {
  template <class T>
  using Ptr = std::conditional_t<kConst, const T*, T*>;
  Ptr<RVPREFUSERSETUP> userSetup = nullptr;
  Ptr<RVPREFPLOTPREVIEW> plotPreview = nullptr;
  Ptr<RVPREFPLOT> plot = nullptr;
  Ptr<RVPREFTOMBOENV> tomboEnv = nullptr;
  Ptr<RVPREFFUNCTION> function = nullptr;
  Ptr<RVPREFCUTPREVIEW> cutPreview = nullptr;
  Ptr<RVPREFDOTBRIDGE> dotbridge = nullptr;
};
using KFRecordsOut = KFRecordSet<false>;
using KFRecordsIn = KFRecordSet<true>;

class CRvXMLPreference {
 public:
  /// The process-wide object, made at first use.
  static CRvXMLPreference& Instance();
  virtual ~CRvXMLPreference();
  CRvXMLPreference(const CRvXMLPreference&) = delete;
  CRvXMLPreference& operator=(const CRvXMLPreference&) = delete;

  /// Opens the main file and brings it up to date, then reads the sections
  /// in file order. A failed open touches no record.
  uint32_t LoadKF(const std::string& path, const KFRecordsOut& records);
  /// Writes the records as a new main file.
  uint32_t SaveKF(const std::string& path, const KFRecordsIn& records);
  uint32_t LoadOT(const std::string& path, RVPREFOUTLINETOOL* outlineTool);
  uint32_t SaveOT(const std::string& path, const RVPREFOUTLINETOOL* outlineTool);

  /// Loads the main file: 13 unreadable, 15 another root, 65535 no version,
  /// then the steps; the result is that of the steps (UpgradeInMemory).
  uint32_t OpenKF(const std::string& path);
  /// Loads the outline tool's file: 13 unreadable, 15 another root.
  uint32_t OpenOT(const std::string& path);
  /// A new document with the declaration and the file's root and version.
  uint32_t CreateKF();
  uint32_t CreateOT();
  /// Writes the document. 14 when the file can't be written.
  uint32_t Save(const std::string& path);

  /// Reads one section into its record: a missing or empty key leaves its
  /// field. 15 (and the record untouched) when the section is missing; a
  /// DOM failure stops the section with its code.
  template <class Record>
  uint32_t Read(Record* record) {
    return ReadSection(prefs::SectionOf(prefs::SectionFor<Record>()), record);
  }
  /// Appends one section with every key of the record below the root.
  template <class Record>
  uint32_t Write(const Record* record) {
    return WriteSection(prefs::SectionOf(prefs::SectionFor<Record>()), record);
  }

  /// The generation of a version text: its leading whole number, 0 when it
  /// doesn't begin with one (so that no step runs).
  static int32_t VersionNumber(const std::wstring& version);

  /// The document of the last operation.
  DOMTree& Tree() { return m_tree; }

 private:
  CRvXMLPreference();
  uint32_t OpenRoot(const std::string& path, const wchar_t* rootName, DOMNode* root);
  uint32_t CreateRoot(const wchar_t* rootName, const wchar_t* version);
  /// Runs the steps from generation `number` on; returns the code of the
  /// last lookup of a section, 0 when no step ran.
  uint32_t UpgradeInMemory(DOMNode root, int32_t number);
  uint32_t ReadSection(const prefs::Section& section, void* record);
  uint32_t WriteSection(const prefs::Section& section, const void* record);

  DOMTree m_tree;
};

}  // namespace rv
