// Helpers of the preference tests: the seven records of the main file, the
// outline tool's record, files written from text, and a walk over a
// record's fields by the key lists of the public header.
#pragma once

#include <cstdio>
#include <cstring>
#include <memory>
#include <string>
#include <type_traits>

#include <gtest/gtest.h>

#include "rvdataaccess.h"
#include "test_support.h"

namespace preftest {

/// The records of the main file, held on the heap (they are large).
struct KF {
  RVPREFUSERSETUP userSetup{};
  RVPREFPLOTPREVIEW plotPreview{};
  RVPREFPLOT plot{};
  RVPREFTOMBOENV tomboEnv{};
  RVPREFFUNCTION function{};
  RVPREFCUTPREVIEW cutPreview{};
  RVPREFDOTBRIDGE dotbridge{};

  uint32_t Load(const std::string& path) {
    return RvLoadKFPreference(path.c_str(), &userSetup, &plotPreview, &plot, &tomboEnv, &function, &cutPreview,
                              &dotbridge);
  }
  uint32_t Save(const std::string& path) const {
    return RvSaveKFPreference(path.c_str(), &userSetup, &plotPreview, &plot, &tomboEnv, &function, &cutPreview,
                              &dotbridge);
  }
  bool operator==(const KF& o) const { return std::memcmp(this, &o, sizeof *this) == 0; }
};

inline std::unique_ptr<KF> NewKF() { return std::make_unique<KF>(); }

/// visit(group, key, field) for each key of the record, in file order.
#define PREFTEST_VISIT(group, key, field) visit(group, key, r.field);
#define PREFTEST_FOR_EACH_FIELD(Record, KEYS) \
  template <class Visit>                      \
  void ForEachField(Record& r, Visit&& visit) { KEYS(PREFTEST_VISIT) }
PREFTEST_FOR_EACH_FIELD(RVPREFUSERSETUP, RV_PREF_USERSETUP_KEYS)
PREFTEST_FOR_EACH_FIELD(RVPREFPLOTPREVIEW, RV_PREF_PLOTPREVIEW_KEYS)
PREFTEST_FOR_EACH_FIELD(RVPREFPLOT, RV_PREF_PLOT_KEYS)
PREFTEST_FOR_EACH_FIELD(RVPREFTOMBOENV, RV_PREF_TOMBOENV_KEYS)
PREFTEST_FOR_EACH_FIELD(RVPREFFUNCTION, RV_PREF_FUNCTION_KEYS)
PREFTEST_FOR_EACH_FIELD(RVPREFCUTPREVIEW, RV_PREF_CUTPREVIEW_KEYS)
PREFTEST_FOR_EACH_FIELD(RVPREFDOTBRIDGE, RV_PREF_DOTBRIDGE_KEYS)
PREFTEST_FOR_EACH_FIELD(RVPREFOUTLINETOOL, RV_PREF_OUTLINETOOL_KEYS)
#undef PREFTEST_FOR_EACH_FIELD
#undef PREFTEST_VISIT

/// Gives every field of the record a value of its own, from `first` on:
/// numbers n (n + 0.25 for floating point, which "%lf" keeps), texts
/// "<prefix>n". Returns the next number.
template <class Record>
int Number(Record& r, int first, const char* prefix) {
  int n = first;
  ForEachField(r, [&](const char*, const char*, auto& field) {
    using F = std::remove_reference_t<decltype(field)>;
    if constexpr (std::is_array_v<F>) {
      std::snprintf(field, sizeof field, "%s%d", prefix, n);
    } else if constexpr (std::is_floating_point_v<F>) {
      field = F(n) + F(0.25);
    } else {
      field = F(n);
    }
    ++n;
  });
  return n;
}

inline void NumberAll(KF& kf) {
  int n = 1;
  n = Number(kf.userSetup, n, "u");
  n = Number(kf.plotPreview, n, "pp");
  n = Number(kf.plot, n, "p");
  n = Number(kf.tomboEnv, n, "t");
  n = Number(kf.function, n, "f");
  n = Number(kf.cutPreview, n, "c");
  Number(kf.dotbridge, n, "d");
}

/// A main file with the root's version and the sections' elements as text.
inline std::string MainFile(const std::string& version, const std::string& body) {
  return "<?xml version=\"1.0\" encoding=\"utf-8\"?><Kerflow_Preference" +
         (version.empty() ? std::string() : " version=\"" + version + "\"") + ">" + body + "</Kerflow_Preference>";
}

}  // namespace preftest
