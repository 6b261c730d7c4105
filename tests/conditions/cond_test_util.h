// Helpers shared by the condition tests.
#pragma once

#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "rvdataaccess.h"
#include "test_support.h"

namespace condtest {

/// A condition as the trace gives it back.
struct Pass {
  std::string media;
  CondRecord record;
  const void* extension;
  const CondRecord* stored;
};

inline int32_t CollectPass(void* ctx, const char* name, const CondPair* pair) {
  auto* out = static_cast<std::vector<Pass>*>(ctx);
  out->push_back(Pass{name, *pair->record, pair->extension, pair->record});
  return 0;
}

inline int32_t CollectName(void* ctx, const char* name) {
  static_cast<std::vector<std::string>*>(ctx)->push_back(name);
  return 0;
}

inline std::vector<Pass> AllPasses() {
  std::vector<Pass> passes;
  EXPECT_EQ(RvCutConditionTrace(&passes, CollectPass), 0u);
  return passes;
}

inline std::vector<std::string> MediaNames() {
  std::vector<std::string> names;
  EXPECT_EQ(RvGetMediaNameTrace(&names, CollectName), 0u);
  return names;
}

/// Empties the table and gives it the machine type, by loading a condition
/// file that has only its root.
inline void UseMachineType(uint16_t type, const char* root, const char* version) {
  rvtest::TempDir dir;
  std::string path = dir.file("empty.xml");
  rvtest::WriteFile(path, std::string("<?xml version=\"1.0\" encoding=\"utf-8\"?><") + root + " version=\"" +
                              version + "\"/>");
  ASSERT_EQ(RvDeleteAllCutCondition(), 0u);
  ASSERT_EQ(RvLoadCutCondition(type, path.c_str()), 0u);
}

inline CondRecord Cutting(const char* tool, int16_t speed, int16_t press, double offset) {
  CondRecord r{};
  std::strncpy(r.Tool, tool, sizeof r.Tool - 1);
  r.hasSpeed = r.hasPress = r.hasOffset = 1;
  r.Speed = speed;
  r.Press = press;
  r.Offset = offset;
  return r;
}

/// Sets an environment variable for the life of the object.
class ScopedEnv {
 public:
  ScopedEnv(const char* name, const char* value) : m_name(name) {
    if (const char* old = std::getenv(name)) m_old = old, m_had = true;
    setenv(name, value, 1);
  }
  ~ScopedEnv() {
    if (m_had) {
      setenv(m_name.c_str(), m_old.c_str(), 1);
    } else {
      unsetenv(m_name.c_str());
    }
  }

 private:
  std::string m_name, m_old;
  bool m_had = false;
};

/// Field-by-field comparison with a readable report.
inline void ExpectRecord(const CondRecord& a, const CondRecord& e) {
  EXPECT_STREQ(a.Tool, e.Tool);
  EXPECT_EQ(a.hasSpeed, e.hasSpeed);
  EXPECT_EQ(a.hasPress, e.hasPress);
  EXPECT_EQ(a.hasOffset, e.hasOffset);
  EXPECT_EQ(a.Speed, e.Speed);
  EXPECT_EQ(a.Press, e.Press);
  EXPECT_EQ(a.Offset, e.Offset);
  EXPECT_EQ(a.Thickness, e.Thickness);
  EXPECT_EQ(a.SpeedDecimal, e.SpeedDecimal);
  EXPECT_EQ(a.LaserSpeed, e.LaserSpeed);
  EXPECT_EQ(a.LaserPower, e.LaserPower);
  EXPECT_EQ(a.LaserFreq, e.LaserFreq);
  EXPECT_STREQ(a.LaserDpi, e.LaserDpi);
  EXPECT_EQ(a.CutDirection, e.CutDirection);
  EXPECT_STREQ(a.InkName, e.InkName);
  EXPECT_STREQ(a.MediaType, e.MediaType);
  EXPECT_EQ(a.MediaThickness, e.MediaThickness);
  EXPECT_STREQ(a.NozzleType, e.NozzleType);
  EXPECT_EQ(a.CoatingThickness, e.CoatingThickness);
  EXPECT_EQ(a.Gap, e.Gap);
  EXPECT_STREQ(a.NozzleRotation, e.NozzleRotation);
  EXPECT_EQ(a.FlowRate, e.FlowRate);
  EXPECT_EQ(a.AtomizationPress, e.AtomizationPress);
  EXPECT_EQ(a.CoatingSpeed, e.CoatingSpeed);
  EXPECT_EQ(a.Pitch, e.Pitch);
  EXPECT_EQ(a.SpeedAdjust, e.SpeedAdjust);
  EXPECT_EQ(a.PitchAdjust, e.PitchAdjust);
  EXPECT_EQ(a.CoatingFillDirection, e.CoatingFillDirection);
  EXPECT_EQ(a.MisalignmentCorrect, e.MisalignmentCorrect);
  EXPECT_EQ(a.CoatingJoinLimit, e.CoatingJoinLimit);
  EXPECT_EQ(a.CoatingFillOffset, e.CoatingFillOffset);
  EXPECT_EQ(a.WDZUnit, e.WDZUnit);
  EXPECT_EQ(a.ZPosition, e.ZPosition);
  EXPECT_EQ(a.VCutType, e.VCutType);
  EXPECT_EQ(a.VCutOffset, e.VCutOffset);
  EXPECT_EQ(a.DivideCut.Available, e.DivideCut.Available);
  EXPECT_EQ(a.DivideCut.divideKind, e.DivideCut.divideKind);
  EXPECT_EQ(a.DivideCut.minLength, e.DivideCut.minLength);
  EXPECT_EQ(a.DivideCut.limitAngle, e.DivideCut.limitAngle);
  EXPECT_EQ(a.DivideCut.divideSide, e.DivideCut.divideSide);
  EXPECT_EQ(a.DivideCut.jointLength, e.DivideCut.jointLength);
}

inline void ExpectTheta(const void* ext, const ThetaExtension& e) {
  ASSERT_NE(ext, nullptr);
  const auto& t = *static_cast<const ThetaExtension*>(ext);
  EXPECT_EQ(t.Available, e.Available);
  for (int i = 0; i < 6; ++i) EXPECT_EQ(t.values[i], e.values[i]) << "value " << i;
}

inline void ExpectMilling(const void* ext, const MillingExtension& e) {
  ASSERT_NE(ext, nullptr);
  const auto& m = *static_cast<const MillingExtension*>(ext);
  EXPECT_EQ(m.hasRpm, e.hasRpm);
  EXPECT_EQ(m.hasCuttingDepth, e.hasCuttingDepth);
  EXPECT_EQ(m.hasZSpeed, e.hasZSpeed);
  EXPECT_EQ(m.hasMilling, e.hasMilling);
  EXPECT_EQ(m.Rpm, e.Rpm);
  EXPECT_EQ(m.CuttingDepth, e.CuttingDepth);
  EXPECT_EQ(m.ZSpeed, e.ZSpeed);
  EXPECT_EQ(m.Milling, e.Milling);
}

constexpr const char* kDecl = "<?xml version=\"1.0\" encoding=\"utf-8\"?>";

/// Fixture: an empty table before and after each test.
class ConditionTest : public ::testing::Test {
 protected:
  void SetUp() override { ASSERT_EQ(RvDeleteAllCutCondition(), 0u); }
  void TearDown() override {
    EXPECT_EQ(RvDeleteAllCutCondition(), 0u);
    EXPECT_EQ(g_ExceptionContext, nullptr);
  }
  rvtest::TempDir m_dir;
};

}  // namespace condtest
