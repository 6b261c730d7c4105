// Helpers shared by the condition tests.
#pragma once

#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <string>
#include <tuple>
#include <vector>

#include "rvdataaccess.h"
#include "test_support.h"

// Records are written with designated initializers: the fields left out are zero.
#pragma GCC diagnostic ignored "-Wmissing-field-initializers"

namespace condtest {

using Names = std::vector<std::string>;
constexpr const char* kDecl = "<?xml version=\"1.0\" encoding=\"utf-8\"?>";
const uint32_t kNotInTable = 0x06001001u;
const DivideCutRecord kDivideDefault{0, 0, 30.0, 30.0, 0, 10.0};

/// A file of tests/data/conditions: the exact bytes that the library writes.
inline std::string Golden(const std::string& name) {
  std::string bytes = rvtest::ReadFile(std::string(RV_TEST_DATA_DIR) + "/conditions/" + name);
  EXPECT_FALSE(bytes.empty()) << name;
  return bytes;
}

/// A condition as the trace gives it back.
struct Pass {
  std::string media;
  CondRecord record;
  const void* extension;
};

inline int32_t CollectPass(void* ctx, const char* name, const CondPair* pair) {
  static_cast<std::vector<Pass>*>(ctx)->push_back(Pass{name, *pair->record, pair->extension});
  return 0;
}

inline std::vector<Pass> AllPasses() {
  std::vector<Pass> passes;
  EXPECT_EQ(RvCutConditionTrace(&passes, CollectPass), 0u);
  return passes;
}

/// Every pass as "media:tool".
inline Names Tools() {
  Names tools;
  for (const Pass& p : AllPasses()) tools.push_back(p.media + ":" + p.record.Tool);
  return tools;
}

inline int32_t CollectName(void* ctx, const char* name) {
  static_cast<Names*>(ctx)->push_back(name);
  return 0;
}

inline Names MediaNames() {
  Names names;
  EXPECT_EQ(RvGetMediaNameTrace(&names, CollectName), 0u);
  return names;
}

inline CondRecord Cutting(const char* tool, int16_t speed, int16_t press, double offset) {
  CondRecord r{.hasSpeed = 1, .hasPress = 1, .hasOffset = 1, .Speed = speed, .Press = press, .Offset = offset};
  std::strncpy(r.Tool, tool, sizeof r.Tool - 1);
  return r;
}

/// Sets an environment variable for the life of the object.
struct ScopedEnv {
  ScopedEnv(const char* name, const char* value) : name(name), had(std::getenv(name) != nullptr) {
    if (had) old = std::getenv(name);
    setenv(name, value, 1);
  }
  ~ScopedEnv() { had ? setenv(name.c_str(), old.c_str(), 1) : unsetenv(name.c_str()); }
  std::string name, old;
  bool had;
};

/// Field-by-field comparison that names the field that differs.
inline void ExpectRecord(const CondRecord& a, const CondRecord& e) {
#define RV_EQ(f) EXPECT_EQ(a.f, e.f) << #f;
#define RV_STR(f) EXPECT_STREQ(a.f, e.f) << #f;
  RV_STR(Tool) RV_STR(LaserDpi) RV_STR(InkName) RV_STR(MediaType) RV_STR(NozzleType) RV_STR(NozzleRotation)
  RV_EQ(hasSpeed) RV_EQ(hasPress) RV_EQ(hasOffset) RV_EQ(Speed) RV_EQ(Press) RV_EQ(Offset) RV_EQ(Thickness)
  RV_EQ(SpeedDecimal) RV_EQ(LaserSpeed) RV_EQ(LaserPower) RV_EQ(LaserFreq) RV_EQ(CutDirection) RV_EQ(MediaThickness)
  RV_EQ(CoatingThickness) RV_EQ(Gap) RV_EQ(FlowRate) RV_EQ(AtomizationPress) RV_EQ(CoatingSpeed) RV_EQ(Pitch)
  RV_EQ(SpeedAdjust) RV_EQ(PitchAdjust) RV_EQ(CoatingFillDirection) RV_EQ(MisalignmentCorrect)
  RV_EQ(CoatingJoinLimit) RV_EQ(CoatingFillOffset) RV_EQ(WDZUnit) RV_EQ(ZPosition) RV_EQ(VCutType) RV_EQ(VCutOffset)
  RV_EQ(DivideCut.Available) RV_EQ(DivideCut.divideKind) RV_EQ(DivideCut.minLength) RV_EQ(DivideCut.limitAngle)
  RV_EQ(DivideCut.divideSide) RV_EQ(DivideCut.jointLength)
#undef RV_EQ
#undef RV_STR
}

inline auto Fields(const DivideCutRecord& d) {
  return std::tie(d.Available, d.divideKind, d.minLength, d.limitAngle, d.divideSide, d.jointLength);
}
inline auto Fields(const ThetaExtension& t) {
  const double* v = t.values;
  return std::tie(t.Available, v[0], v[1], v[2], v[3], v[4], v[5]);
}
inline auto Fields(const MillingExtension& m) {
  return std::tie(m.hasRpm, m.hasCuttingDepth, m.hasZSpeed, m.hasMilling, m.Rpm, m.CuttingDepth, m.ZSpeed, m.Milling);
}
/// An extension that the table hands out against the expected one.
template <class Extension>
void ExpectExtension(const void* stored, const Extension& e) {
  ASSERT_NE(stored, nullptr);
  EXPECT_EQ(Fields(*static_cast<const Extension*>(stored)), Fields(e));
}

/// Fixture: an empty table of machine type 0 before each test, an empty table after it, and file helpers.
class ConditionTest : public ::testing::Test {
 protected:
  void SetUp() override { UseMachineType(0, "TQCutConditionList", "1.00"); }
  void TearDown() override {
    EXPECT_EQ(RvDeleteAllCutCondition(), 0u);
    EXPECT_EQ(g_ExceptionContext, nullptr);
  }
  /// Writes `text` as a file and loads (or imports) it.
  uint32_t Load(uint16_t type, const std::string& text, const char* file = "c.xml") {
    rvtest::WriteFile(m_dir.file(file), text);
    return RvLoadCutCondition(type, m_dir.file(file).c_str());
  }
  uint32_t Import(const std::string& text, const char* file = "i.xml") {
    rvtest::WriteFile(m_dir.file(file), text);
    return RvImportCutCondition(m_dir.file(file).c_str());
  }
  /// Empties the table first.
  uint32_t Reload(uint16_t type, const std::string& text) {
    EXPECT_EQ(RvDeleteAllCutCondition(), 0u);
    return Load(type, text);
  }
  /// The bytes of the table saved.
  std::string Saved() {
    EXPECT_EQ(RvSaveCutCondition(m_dir.file("saved.xml").c_str()), 0u);
    return rvtest::ReadFile(m_dir.file("saved.xml"));
  }
  /// Empties the table and gives it the machine type, through a file of only a root.
  void UseMachineType(uint16_t type, const char* root, const char* version) {
    ASSERT_EQ(Reload(type, std::string(kDecl) + "<" + root + " version=\"" + version + "\"/>"), 0u);
  }
  void Add(const char* media, int pass, const CondRecord& r, const void* ext = nullptr) {
    CondPair p{&r, ext};
    ASSERT_EQ(RvAddCutCondition(media, pass, &p), 0u);
  }
  rvtest::TempDir m_dir;
};

}  // namespace condtest
