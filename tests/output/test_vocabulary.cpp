// The command table, the number formatting of the writers, the tool map and
// the tool property table.
#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>
#include <random>
#include <string>
#include <vector>

#include "output/number_format.h"
#include "output/rvl_commands.h"
#include "rvdataaccess.h"

namespace {

// Turns the written notation of a row (\r, \n, \xNN as four characters)
// into its bytes.
std::string Bytes(const std::string& notation) {
  std::string out;
  for (std::size_t i = 0; i < notation.size(); ++i) {
    if (notation[i] == '\\' && i + 1 < notation.size()) {
      const char c = notation[i + 1];
      if (c == 'r') { out.push_back('\x0D'); ++i; continue; }
      if (c == 'n') { out.push_back('\x0A'); ++i; continue; }
      if (c == 'x' && i + 3 < notation.size()) {
        out.push_back(char(std::stoi(notation.substr(i + 2, 2), nullptr, 16)));
        i += 3;
        continue;
      }
    }
    out.push_back(notation[i]);
  }
  return out;
}

struct Cell {
  int row;
  int dialect;
  const char* notation;
};

TEST(CommandTable, SelectedCellsHaveTheirExactBytes) {
  const Cell cells[] = {
      {0, 0, R"(IN;IP0,0,1,1;)"},
      {0, 2, R"( )"},
      {0, 5, R"(ED3\rED4\rAP\rLC5000\rVL160000\rAV2\rCA0\rCM\rEC\r)"},
      {0, 6, R"(%\nT1\nG01 X0 Y0\n)"},
      {1, 6, R"(%\nT0\nG01 X0 Y0\n)"},
      {2, 1, R"(ZB1;)"},
      {3, 0, R"(PU%.2lf,%.2lf;)"},
      {3, 1, R"(PU%.2lf,%.2lf;)"},
      {3, 2, R"(M%.2lf,%.2lf\x03)"},
      {3, 4, R"(PU%.2lf,%.2lf;)"},
      {3, 5, R"(PU\rPA%.0lf,%.0lf\r)"},
      {3, 6, R"(M09\nG01 X%.0lf Y%.0lf\n)"},
      {4, 2, R"(D%.2lf,%.2lf\x03)"},
      {4, 5, R"(PD\rPA%.0lf,%.0lf\r)"},
      {4, 6, R"(M08\nG01 X%.0lf Y%.0lf\n)"},
      {5, 2, R"(=\r\rU)"},
      {5, 4, R"(OH;)"},
      {9, 2, R"(\x03)"},
      {9, 5, R"(\r)"},
      {9, 6, R"(\n)"},
      {13, 0, R"(SP%d;)"},
      {13, 1, R"(JT%d,%d;)"},
      {14, 1, R"(JT%hd,%hd;)"},
      {22, 1, R"(JR%d,%d,%d,%.2lf,%.2lf,%.2lf,%.2lf;)"},
      {24, 5, R"(PR%.0f,%.0f\rEC\r)"},
      {28, 2, R"(E0,0\x03)"},
      {29, 0, R"(PU;)"},
      {29, 2, R"(O0,0\x03)"},
      {29, 5, R"(PU\r)"},
      {29, 6, R"(M09\n)"},
      {33, 2, R"(*%d,%.2f,%.2f,%.2f,%.2f,%.2f,%.2f\x03)"},
      {35, 0, R"(ZCAA%d,%.2lf,%.2lf,%.2lf,%.2lf,%.2lf,%.2lf,%.2lf,%.2lf;)"},
      {35, 2, R"(ZCAA%d,%.2lf,%.2lf,%.2lf,%.2lf,%.2lf,%.2lf,%.2lf,%.2lf\x03)"},
      {37, 1, R"(ZS%.2f,%.2f,%.2f,%.2f,%.2f,%.2f;)"},
      {43, 0, R"(ZG%.1f,%d;)"},
      {51, 1, R"(DF1;)"},
      {52, 0, R"(VS%.1lf,%d;)"},
      {56, 1, R"(NR-1;)"},
      {57, 0, R"(GT\x01\x80OH;GT\x01)"},
      {58, 1, R"(GT\x01\x80OI;GT\x01)"},
      {59, 0, R"(GT\x01\x80ZI;GT\x01)"},
      {60, 0, R"(GT\x01\x80)"},
      {61, 1, R"(GT\x01)"},
      {62, 0, R"(JD%d,%d,%d,0,0,%d,%d;)"},
      {66, 5, R"(VS%.0lf\r)"},
      {70, 5, R"(LF%d\r)"},
      {75, 5, R"(EO3\rEO4\rEC\r)"},
      {76, 6, R"(G01 X%.0lf Y%.0lf\n)"},
      {79, 6, R"(F%.2lf\n)"},
      {84, 0, R"(PU%.2f,%.2f;PD%.2f,%.2f;)"},
      {84, 6, R"(G100 X%.0lf Y%.0lf U%.0lf V%.0lf F%.0lf\n)"},
      {88, 6, R"(CoatingConstantMoveOffset %.2lf\n)"},
      {92, 6, R"(G200 P%.3lf\n)"},
      {94, 1, R"(ZH;)"},
      {95, 1, R"(VT%d,%d,%d,%d,%d;)"},
      {96, 1, R"(VA%.2lf,%.2lf;)"},
      {98, 1, R"(JF%d,%d,%d,%d,%d,%d,%d,%d,%d,%d,%.2lf,%.2lf;)"},
      {99, 0, R"(VC%d;)"},
      {100, 6, R"(G04 P1.0\nM30\n%\n)"},
  };
  for (const Cell& cell : cells) {
    EXPECT_EQ(std::string(g_RvlCommands[cell.row][cell.dialect]), Bytes(cell.notation))
        << "row " << cell.row << " dialect " << cell.dialect;
  }
  // Dialect 0 and 1 differ only in rows 13, 14 and 94 to 98.
  for (int row = 0; row < 101; ++row) {
    const bool differs = row == 13 || row == 14 || (row >= 94 && row <= 98);
    EXPECT_EQ(std::strcmp(g_RvlCommands[row][0], g_RvlCommands[row][1]) != 0, differs) << "row " << row;
  }
}

TEST(CommandTable, EmptyCellsWhereTheTableHasNone) {
  for (int row = 0; row < 101; ++row) {
    EXPECT_STREQ(g_RvlCommands[row][3], "") << "row " << row;
  }
  // Rows of one dialect only.
  for (int row = 66; row <= 75; ++row) {
    for (int d : {0, 1, 2, 4, 6}) EXPECT_STREQ(g_RvlCommands[row][d], "") << row << "/" << d;
  }
  for (int row : {94, 95, 96, 97, 98}) EXPECT_STREQ(g_RvlCommands[row][0], "");
  EXPECT_STREQ(g_RvlCommands[28][4], "");
  EXPECT_STREQ(g_RvlCommands[29][4], "");
  EXPECT_STREQ(g_RvlCommands[100][0], "");
  EXPECT_STREQ(g_RvlCommands[99][2], "");
  EXPECT_STREQ(rv::RvlCell(101, 0), "");
  EXPECT_STREQ(rv::RvlCell(3, 7), "");
  EXPECT_STREQ(rv::RvlCell(3, -1), "");
}

// The conversions of a format text, in order.
std::vector<std::string> Conversions(const char* format) {
  std::vector<std::string> out;
  for (const char* p = format; *p != '\0'; ++p) {
    if (*p != '%') continue;
    const char* start = p++;
    if (*p == '%') continue;
    while (*p != '\0' && std::strchr("dfs", *p) == nullptr) ++p;
    out.emplace_back(start, std::size_t(p - start + 1));
    if (*p == '\0') break;
  }
  return out;
}

TEST(CommandTable, WrittenRowsCarryTheirPlaceholders) {
  using V = std::vector<std::string>;
  const V two2{"%.2lf", "%.2lf"};
  const V two0{"%.0lf", "%.0lf"};
  struct Expect {
    int row;
    int dialect;
    V conversions;
  };
  const std::vector<Expect> expects = {
      {3, 0, two2},  {3, 1, two2},  {3, 2, two2}, {3, 4, two2}, {3, 5, two0}, {3, 6, two0},
      {4, 0, two2},  {4, 1, two2},  {4, 2, two2}, {4, 4, two2}, {4, 5, two0}, {4, 6, two0},
      {13, 0, {"%d"}}, {13, 1, {"%d", "%d"}}, {15, 0, {"%d", "%d"}}, {16, 0, {"%d", "%d"}},
      {17, 0, {"%.2lf"}}, {28, 0, {}}, {29, 2, {}},
      {35, 0, {"%d", "%.2lf", "%.2lf", "%.2lf", "%.2lf", "%.2lf", "%.2lf", "%.2lf", "%.2lf"}},
      {35, 2, {"%d", "%.2lf", "%.2lf", "%.2lf", "%.2lf", "%.2lf", "%.2lf", "%.2lf", "%.2lf"}},
      {37, 0, {"%.2f", "%.2f", "%.2f", "%.2f", "%.2f", "%.2f"}},
      {43, 0, {"%.1f", "%d"}}, {45, 1, {"%d"}}, {47, 1, {"%d"}}, {49, 1, {"%d"}}, {51, 0, {}},
      {52, 0, {"%.1lf", "%d"}}, {54, 1, {"%d"}}, {56, 0, {}},
      {66, 5, {"%.0lf"}}, {68, 5, {"%.0lf"}}, {70, 5, {"%d"}},
      {79, 6, {"%.2lf"}}, {81, 6, {"%.2lf"}}, {86, 6, {"%d"}}, {88, 6, {"%.2lf"}}, {90, 6, {"%d"}},
      {95, 1, {"%d", "%d", "%d", "%d", "%d"}}, {96, 1, two2},
  };
  for (const Expect& e : expects) {
    EXPECT_EQ(Conversions(g_RvlCommands[e.row][e.dialect]), e.conversions)
        << "row " << e.row << " dialect " << e.dialect;
  }
}

std::string Printf(const char* format, double v) {
  char text[512];
  std::snprintf(text, sizeof text, format, v);
  return text;
}

TEST(NumberFormat, FixedMatchesTheCLibraryByteForByte) {
  // Hand-picked: exact ties (round half to even on the binary value), negative
  // zero, values that round to zero from below, carries into a new digit.
  struct Case {
    double v;
    int precision;
    const char* expected;
  } cases[] = {
      {0.125, 2, "0.12"},     {0.375, 2, "0.38"},    {2.5, 0, "2"},        {3.5, 0, "4"},
      {-0.0, 2, "-0.00"},     {-0.001, 2, "-0.00"},  {-4.4e-7, 2, "-0.00"}, {0.005, 2, "0.01"},
      {1.005, 2, "1.00"},     {9.995, 2, "9.99"},    {99.999, 2, "100.00"}, {-99.999, 1, "-100.0"},
      {1234567.891, 2, "1234567.89"}, {0.0, 0, "0"}, {707000.0 * 0.5, 0, "353500"},
      {5e-324, 2, "0.00"},    {1e16, 2, "10000000000000000.00"}, {0.05, 1, "0.1"},
  };
  for (const Case& c : cases) {
    std::string out;
    rv::AppendFixed(out, c.v, c.precision);
    EXPECT_EQ(out, c.expected) << c.v;
  }
  // Random values of every magnitude against the C library.
  std::mt19937_64 gen(12345);
  std::uniform_real_distribution<double> mant(-1.0, 1.0);
  std::uniform_int_distribution<int> expo(-30, 60);
  for (int i = 0; i < 50000; ++i) {
    const double v = std::ldexp(mant(gen), expo(gen));
    for (int precision : {0, 1, 2, 3, 6}) {
      std::string out;
      rv::AppendFixed(out, v, precision);
      char format[8];
      std::snprintf(format, sizeof format, "%%.%df", precision);
      ASSERT_EQ(out, Printf(format, v)) << v << " precision " << precision;
    }
  }
  // Values on the hundredths grid with binary noise, as coordinates are.
  for (int i = -200000; i < 200000; i += 7) {
    const double v = i / 100.0 + (i % 3) * 1e-12;
    std::string out;
    rv::AppendFixed(out, v, 2);
    ASSERT_EQ(out, Printf("%.2f", v)) << v;
  }
  std::string out;
  rv::AppendFixed(out, 1.0 / 0.0, 2);
  EXPECT_EQ(out, Printf("%.2f", 1.0 / 0.0));
}

TEST(NumberFormat, RowsFormatAsPrintfWould) {
  std::string out;
  rv::AppendFormatted(out, g_RvlCommands[3][0], {12.345, -0.001});
  EXPECT_EQ(out, "PU12.35,-0.00;");  // 12.345 is a little above its decimal
  out.clear();
  rv::AppendFormatted(out, g_RvlCommands[4][5], {1234.5, 99.5});
  EXPECT_EQ(out, "PD\rPA1234,100\r");
  out.clear();
  rv::AppendFormatted(out, g_RvlCommands[43][0], {1.25, 3});
  EXPECT_EQ(out, "ZG1.2,3;");
  out.clear();
  rv::AppendFormatted(out, "JT%hd,%d;%%", {70000, -5});
  EXPECT_EQ(out, "JT4464,-5;%");
  out.clear();
  rv::AppendFormatted(out, g_RvlCommands[13][1], {7});  // the missing value formats as 0
  EXPECT_EQ(out, "JT7,0;");
  out.clear();
  rv::AppendFormatted(out, g_RvlCommands[57][0], {});
  EXPECT_EQ(out, Bytes(R"(GT\x01\x80OH;GT\x01)"));
  out.clear();
  rv::AppendFormatted(out, "%d|%s|%.2lf", {2.9, 1});  // a real for %d truncates; %s isn't ours
  EXPECT_EQ(out, "2|%s|1.00");
  std::string big;
  rv::AppendInteger(big, -9223372036854775807LL - 1);
  EXPECT_EQ(big, "-9223372036854775808");
  EXPECT_EQ(rv::TruncToInt32(-2.9), -2);
  EXPECT_EQ(rv::TruncToInt32(3e10), INT32_MIN);
  EXPECT_EQ(rv::TruncToInt32(0.0 / 0.0), INT32_MIN);
}

RVPLOTPARAM ParamWithTools(std::initializer_list<std::pair<const char*, uint16_t>> tools) {
  RVPLOTPARAM p{};
  int i = 0;
  for (const auto& t : tools) {
    std::snprintf(p.toolPens[i].name, sizeof p.toolPens[i].name, "%s", t.first);
    p.toolPens[i].pen = t.second;
    ++i;
  }
  return p;
}

TEST(ToolMap, MapsByExactNameElseByTheNumberInTheName) {
  RVPLOTPARAM p = ParamWithTools({{"CUT", 4}, {"HALF", 0}, {"12", 3}, {"", 9}, {"AFTER", 8}});
  EXPECT_EQ(rv::ToolToPen(p, "CUT"), 4);
  EXPECT_EQ(rv::ToolToPen(p, "cut"), 0);    // exact bytes only
  EXPECT_EQ(rv::ToolToPen(p, "CUT2"), 0);   // not a prefix match
  EXPECT_EQ(rv::ToolToPen(p, "HALF"), 0);   // pen 0 in the map: the name decides
  EXPECT_EQ(rv::ToolToPen(p, "12"), 3);     // the map wins over the number
  EXPECT_EQ(rv::ToolToPen(p, "AFTER"), 0);  // behind the empty name, never seen
  EXPECT_EQ(rv::ToolToPen(p, "7"), 7);
  EXPECT_EQ(rv::ToolToPen(p, "PEN"), 0);
  EXPECT_EQ(rv::ToolToPen(p, " 15x"), 15);
  EXPECT_EQ(rv::ToolToPen(p, "-15"), 0xFFF1);
  EXPECT_EQ(rv::ToolToPen(p, "65537"), 1);  // low 16 bits
  EXPECT_EQ(rv::ToolToPen(p, ""), 0);

  // All 40 entries are looked at, and no further.
  RVPLOTPARAM full{};
  for (int i = 0; i < 40; ++i) {
    std::snprintf(full.toolPens[i].name, sizeof full.toolPens[i].name, "T%d", i);
    full.toolPens[i].pen = uint16_t(100 + i);
  }
  EXPECT_EQ(rv::ToolToPen(full, "T39"), 139);
  EXPECT_EQ(rv::ToolToPen(full, "T40"), 0);
  // A name that fills all 64 characters without a terminator is still read safely.
  std::memset(full.toolPens[0].name, 'A', sizeof full.toolPens[0].name);
  EXPECT_EQ(rv::ToolToPen(full, std::string(64, 'A').c_str()), 100);
}

TEST(ToolMap, PropertyTableFindsNegativeToolsByTheirUnsignedValue) {
  rv::ToolProperties f;
  ASSERT_TRUE(rv::LookUpToolProperties(10, f));
  EXPECT_TRUE(f.usePress);
  EXPECT_FALSE(f.useDepth);
  EXPECT_FALSE(f.vCut);
  ASSERT_TRUE(rv::LookUpToolProperties(int16_t(0xFFF1), f));  // -15
  EXPECT_TRUE(f.useDepth);
  EXPECT_FALSE(f.usePress);
  ASSERT_TRUE(rv::LookUpToolProperties(-35, f));
  EXPECT_TRUE(f.useDepth);
  ASSERT_TRUE(rv::LookUpToolProperties(27, f));
  EXPECT_TRUE(f.useDepth);
  EXPECT_TRUE(f.vCut);
  for (int16_t pen : {20, 11, 15, 25, 35}) {
    ASSERT_TRUE(rv::LookUpToolProperties(pen, f)) << pen;
    EXPECT_TRUE(f.usePress) << pen;
  }
  for (int16_t pen : {13, 14, 24, -25}) {
    ASSERT_TRUE(rv::LookUpToolProperties(pen, f)) << pen;
    EXPECT_TRUE(f.useDepth && !f.vCut) << pen;
  }
  EXPECT_FALSE(rv::LookUpToolProperties(15 + 65536 / 2, f));
  EXPECT_FALSE(rv::LookUpToolProperties(0, f));
  EXPECT_FALSE(rv::LookUpToolProperties(-10, f));
  EXPECT_FALSE(f.useDepth || f.usePress || f.vCut);
}

TEST(PlotParam, LayoutFollowsTheDeclaredOrder) {
  EXPECT_EQ(sizeof(RVTOOLPEN), 66u);
  EXPECT_EQ(offsetof(RVPLOTPARAM, curveOutput), 0u);
  EXPECT_EQ(offsetof(RVPLOTPARAM, plotterClass), 2u);
  EXPECT_EQ(offsetof(RVPLOTPARAM, dialect), 4u);
  EXPECT_EQ(offsetof(RVPLOTPARAM, mirror), 8u);
  EXPECT_EQ(offsetof(RVPLOTPARAM, rotation), 24u);
  EXPECT_LT(offsetof(RVPLOTPARAM, conditionKey), offsetof(RVPLOTPARAM, defaultPen));
  EXPECT_LT(offsetof(RVPLOTPARAM, toolPens), offsetof(RVPLOTPARAM, expandDocument));
  EXPECT_LT(offsetof(RVPLOTPARAM, placementOffsetY), offsetof(RVPLOTPARAM, doubleCreasePass));
  EXPECT_EQ(sizeof(RVPLOTPARAM{}.toolPens) / sizeof(RVTOOLPEN), 40u);
}

}  // namespace
