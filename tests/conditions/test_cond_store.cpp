// The store of condition records and the list of one media.
#include <cmath>
#include <limits>

#include "cond_test_util.h"
#include "conditions/cut_cdn_tbl.h"

namespace {

using condtest::Cutting;

TEST(CondStore, EqualRecordsAreStoredOnceAndDifferentOnesApart) {
  rv::CRvCutCdnTbl& table = rv::CRvCutCdnTbl::Instance();
  CondRecord a = Cutting("STORE-A", 11, 22, 0.5);
  const CondRecord* first = table.InternCondition(a);
  size_t size = table.m_conditions.size();
  CondRecord same = a;
  EXPECT_EQ(table.InternCondition(same), first);
  EXPECT_EQ(table.m_conditions.size(), size);

  // Another tool name is another record; so is a field of another family.
  CondRecord tool = a;
  std::strcpy(tool.Tool, "STORE-B");
  EXPECT_NE(table.InternCondition(tool), first);
  CondRecord laser = a;
  laser.LaserPower = 1.0;
  const CondRecord* laserStored = table.InternCondition(laser);
  EXPECT_NE(laserStored, first);
  CondRecord divide = a;
  divide.DivideCut.jointLength = 0.5;
  EXPECT_NE(table.InternCondition(divide), first);
  EXPECT_EQ(table.m_conditions.size(), size + 3);

  // Doubles compare exactly: one bit apart is different, -0.0 equals 0.0.
  CondRecord bit = a;
  bit.Offset = std::nextafter(0.5, 1.0);
  EXPECT_NE(table.InternCondition(bit), first);
  CondRecord zero = a, minusZero = a;
  zero.Gap = 0.0;
  minusZero.Gap = -0.0;
  EXPECT_EQ(table.InternCondition(minusZero), table.InternCondition(zero));

  // Bytes behind the end of a text don't count.
  CondRecord junk = a;
  std::memset(junk.Tool, 'x', sizeof junk.Tool);
  std::strcpy(junk.Tool, "STORE-A");
  EXPECT_EQ(table.InternCondition(junk), first);
}

TEST(CondStore, NaNEqualsNothingAndLongTextIsCut) {
  rv::CRvCutCdnTbl& table = rv::CRvCutCdnTbl::Instance();
  CondRecord n = Cutting("STORE-NAN", 1, 1, 1.0);
  n.Pitch = std::numeric_limits<double>::quiet_NaN();
  const CondRecord* one = table.InternCondition(n);
  const CondRecord* two = table.InternCondition(n);
  EXPECT_NE(one, two);

  ThetaExtension t{1, {1, 2, 3, 4, 5, std::nan("")}};
  EXPECT_NE(table.InternExtension(&t, rv::ExtensionForm::Theta), table.InternExtension(&t, rv::ExtensionForm::Theta));

  // A tool without terminator keeps 31 bytes.
  CondRecord full{};
  std::memset(full.Tool, 'T', sizeof full.Tool);
  const CondRecord* stored = table.InternCondition(full);
  EXPECT_EQ(std::strlen(stored->Tool), 31u);
}

TEST(CondStore, ExtensionsGoToTheirOwnQueue) {
  rv::CRvCutCdnTbl& table = rv::CRvCutCdnTbl::Instance();
  ThetaExtension t{1, {0.5, 1, 1.5, 2, 2.5, 3.25}};
  MillingExtension m{1, 0, 1, 1, 1200, 0.0, 15, 2.5};
  size_t thetas = table.m_thetas.size(), millings = table.m_millings.size();
  const void* st = table.InternExtension(&t, rv::ExtensionForm::Theta);
  const void* sm = table.InternExtension(&m, rv::ExtensionForm::Milling);
  EXPECT_EQ(table.InternExtension(&t, rv::ExtensionForm::Theta), st);
  EXPECT_EQ(table.InternExtension(&m, rv::ExtensionForm::Milling), sm);
  EXPECT_LE(table.m_thetas.size(), thetas + 1);
  EXPECT_LE(table.m_millings.size(), millings + 1);
  condtest::ExpectMilling(sm, m);
  condtest::ExpectTheta(st, t);
  MillingExtension other = m;
  other.hasCuttingDepth = 1;
  EXPECT_NE(table.InternExtension(&other, rv::ExtensionForm::Milling), sm);
  // A missing extension is one of zeros.
  ThetaExtension zeros{};
  EXPECT_EQ(table.InternExtension(nullptr, rv::ExtensionForm::Theta),
            table.InternExtension(&zeros, rv::ExtensionForm::Theta));
}

TEST(CondStore, MediaListInsertsErasesAndGetsByIndex) {
  rv::CRvCutCdnInfo info;
  CondRecord r1 = Cutting("L1", 1, 1, 1), r2 = Cutting("L2", 2, 2, 2), r3 = Cutting("L3", 3, 3, 3);
  ThetaExtension t{};
  auto pair = [&](const CondRecord& r) { return CondPair{&r, &t}; };
  EXPECT_EQ(info.Insert(1, pair(r1), rv::ExtensionForm::Theta), 0x06001001u);  // above the count
  EXPECT_EQ(info.Count(), 0);
  EXPECT_EQ(info.Insert(0, pair(r1), rv::ExtensionForm::Theta), 0u);
  EXPECT_EQ(info.Insert(1, pair(r3), rv::ExtensionForm::Theta), 0u);  // count appends
  EXPECT_EQ(info.Insert(1, pair(r2), rv::ExtensionForm::Theta), 0u);  // before position 1
  EXPECT_EQ(info.Insert(-1, pair(r2), rv::ExtensionForm::Theta), 0x06001001u);
  EXPECT_EQ(info.Insert(4, pair(r2), rv::ExtensionForm::Theta), 0x06001001u);
  ASSERT_EQ(info.Count(), 3);
  const char* expected[] = {"L1", "L2", "L3"};
  for (int i = 0; i < 3; ++i) {
    CondPair got{};
    ASSERT_EQ(info.Get(i, got), 0u);
    EXPECT_STREQ(got.record->Tool, expected[i]);
    EXPECT_NE(got.record, &r1);  // a copy is kept, never the caller's record
  }
  CondPair untouched{&r1, nullptr};
  EXPECT_EQ(info.Get(3, untouched), 0x06001001u);
  EXPECT_EQ(untouched.record, &r1);
  EXPECT_EQ(info.Erase(3), 0x06001001u);
  EXPECT_EQ(info.Erase(1), 0u);
  CondPair second{};
  ASSERT_EQ(info.Get(1, second), 0u);
  EXPECT_STREQ(second.record->Tool, "L3");
  EXPECT_EQ(g_ExceptionContext, nullptr);
}

}  // namespace
