// The store of condition records: each distinct record and extension once.
#include <cmath>
#include <limits>

#include "cond_test_util.h"
#include "conditions/cut_cdn_tbl.h"

namespace {

using rv::ExtensionForm;

TEST(CondStore, RecordsAreStoredOncePerDistinctValue) {
  rv::CRvCutCdnTbl& table = rv::CRvCutCdnTbl::Instance();
  const CondRecord a = condtest::Cutting("STORE-A", 11, 22, 0.5);
  const CondRecord* first = table.InternCondition(a);
  const size_t size = table.m_conditions.size();
  CondRecord junk = a;  // bytes behind the end of a text don't count
  std::memset(junk.Tool, 'x', sizeof junk.Tool);
  std::strcpy(junk.Tool, "STORE-A");
  EXPECT_EQ(table.InternCondition(junk), first);
  EXPECT_EQ(table.m_conditions.size(), size);
  // Another tool, a field of another family, one bit of a double: another record.
  CondRecord tool = a, laser = a, divide = a, bit = a;
  std::strcpy(tool.Tool, "STORE-B");
  laser.LaserPower = 1.0;
  divide.DivideCut.jointLength = 0.5;
  bit.Offset = std::nextafter(0.5, 1.0);
  for (const CondRecord* r : {&tool, &laser, &divide, &bit}) EXPECT_NE(table.InternCondition(*r), first);
  // -0.0 equals 0.0; a NaN equals nothing, not even itself.
  CondRecord zero = a, minusZero = a, nan = a;
  zero.Gap = 0.0;
  minusZero.Gap = -0.0;
  EXPECT_EQ(table.InternCondition(minusZero), table.InternCondition(zero));
  nan.Pitch = std::numeric_limits<double>::quiet_NaN();
  EXPECT_NE(table.InternCondition(nan), table.InternCondition(nan));
  // A tool without terminator keeps 31 bytes.
  CondRecord full{};
  std::memset(full.Tool, 'T', sizeof full.Tool);
  EXPECT_EQ(std::strlen(table.InternCondition(full)->Tool), 31u);
}

TEST(CondStore, ExtensionsAreStoredOncePerFormAndValue) {
  rv::CRvCutCdnTbl& table = rv::CRvCutCdnTbl::Instance();
  const ThetaExtension t{1, {0.5, 1, 1.5, 2, 2.5, 3.25}}, zeros{}, nan{1, {1, 2, 3, 4, 5, std::nan("")}};
  const MillingExtension m{1, 0, 1, 1, 1200, 0.0, 15, 2.5}, other{1, 1, 1, 1, 1200, 0.0, 15, 2.5};
  const void* st = table.InternExtension(&t, ExtensionForm::Theta);
  const void* sm = table.InternExtension(&m, ExtensionForm::Milling);
  const size_t millings = table.m_millings.size();
  EXPECT_EQ(table.InternExtension(&t, ExtensionForm::Theta), st);
  EXPECT_EQ(table.InternExtension(&m, ExtensionForm::Milling), sm);
  EXPECT_EQ(table.m_millings.size(), millings);
  condtest::ExpectExtension(st, t);
  condtest::ExpectExtension(sm, m);
  EXPECT_NE(table.InternExtension(&other, ExtensionForm::Milling), sm);
  EXPECT_EQ(table.InternExtension(nullptr, ExtensionForm::Theta), table.InternExtension(&zeros, ExtensionForm::Theta));
  EXPECT_NE(table.InternExtension(&nan, ExtensionForm::Theta), table.InternExtension(&nan, ExtensionForm::Theta));
}

}  // namespace
