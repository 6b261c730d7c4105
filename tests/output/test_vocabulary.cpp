// The command table, the number formatting of the writers, the tool map and
// the tool property table.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <cstring>
#include <random>
#include <string>
#include <vector>

#include "output/number_format.h"
#include "output/rvl_commands.h"
#include "rvdataaccess.h"

namespace {

TEST(CommandTable, CellsHaveTheirExactBytes) {
  struct Cell { int row; int dialect; const char* bytes; };
  // Cells that no golden of the writers covers (moves, draws, lifts and the
  // condition rows stand byte for byte in those).
  const Cell cells[] = {
      {0, 0, "IN;IP0,0,1,1;"}, {0, 2, " "}, {0, 5, "ED3\rED4\rAP\rLC5000\rVL160000\rAV2\rCA0\rCM\rEC\r"},
      {0, 6, "%\nT1\nG01 X0 Y0\n"}, {1, 6, "%\nT0\nG01 X0 Y0\n"}, {2, 1, "ZB1;"},
      {5, 2, "=\r\rU"}, {5, 4, "OH;"}, {9, 2, "\x03"}, {9, 5, "\r"}, {9, 6, "\n"},
      {14, 1, "JT%hd,%hd;"}, {22, 1, "JR%d,%d,%d,%.2lf,%.2lf,%.2lf,%.2lf;"}, {24, 5, "PR%.0f,%.0f\rEC\r"},
      {28, 2, "E0,0\x03"}, {28, 5, "PD\r"}, {28, 6, "M08\n"},
      {33, 2, "*%d,%.2f,%.2f,%.2f,%.2f,%.2f,%.2f\x03"},
      {35, 2, "ZCAA%d,%.2lf,%.2lf,%.2lf,%.2lf,%.2lf,%.2lf,%.2lf,%.2lf\x03"},
      {47, 1, "JM%d;"}, {54, 1, "JV%d;"}, {56, 1, "NR-1;"},
      {57, 0, "GT\x01\x80OH;GT\x01"}, {58, 1, "GT\x01\x80OI;GT\x01"}, {59, 0, "GT\x01\x80ZI;GT\x01"},
      {60, 0, "GT\x01\x80"}, {61, 1, "GT\x01"}, {62, 0, "JD%d,%d,%d,0,0,%d,%d;"}, {75, 5, "EO3\rEO4\rEC\r"},
      {76, 6, "G01 X%.0lf Y%.0lf\n"}, {84, 0, "PU%.2f,%.2f;PD%.2f,%.2f;"},
      {84, 6, "G100 X%.0lf Y%.0lf U%.0lf V%.0lf F%.0lf\n"}, {92, 6, "G200 P%.3lf\n"}, {94, 1, "ZH;"},
      {98, 1, "JF%d,%d,%d,%d,%d,%d,%d,%d,%d,%d,%.2lf,%.2lf;"}, {99, 0, "VC%d;"}, {100, 6, "G04 P1.0\nM30\n%\n"},
  };
  for (const auto& cell : cells) {
    EXPECT_STREQ(g_RvlCommands[cell.row][cell.dialect], cell.bytes) << "row " << cell.row << " dialect " << cell.dialect;
  }
  // Dialects 0 and 1 differ only in rows 13, 14 and 94 to 98; dialect 3 is empty.
  for (int row = 0; row < 101; ++row) {
    const bool differs = row == 13 || row == 14 || (row >= 94 && row <= 98);
    EXPECT_EQ(std::strcmp(g_RvlCommands[row][0], g_RvlCommands[row][1]) != 0, differs) << "row " << row;
    EXPECT_STREQ(g_RvlCommands[row][3], "") << "row " << row;
  }
  // Rows of one dialect only, and cells left empty.
  for (int row = 66; row <= 75; ++row) {
    for (int d : {0, 1, 2, 4, 6}) EXPECT_STREQ(g_RvlCommands[row][d], "") << row << "/" << d;
  }
  for (int row : {94, 95, 96, 97, 98}) EXPECT_STREQ(g_RvlCommands[row][0], "");
  for (auto [row, d] : {std::pair{28, 4}, {29, 4}, {100, 0}, {99, 2}}) EXPECT_STREQ(g_RvlCommands[row][d], "");
  EXPECT_STREQ(rv::RvlCell(101, 0), "");
  EXPECT_STREQ(rv::RvlCell(3, 7), "");
  EXPECT_STREQ(rv::RvlCell(3, -1), "");
}

// AppendFixed against the C library's "%.*f".
::testing::AssertionResult AsPrintf(double v, int precision) {
  char text[512];
  std::snprintf(text, sizeof text, "%.*f", precision, v);
  std::string out;
  rv::AppendFixed(out, v, precision);
  if (out == text) return ::testing::AssertionSuccess();
  return ::testing::AssertionFailure() << v << " precision " << precision << ": " << out << " for " << text;
}

TEST(NumberFormat, FixedMatchesTheCLibraryByteForByte) {
  // Exact ties (round half to even on the binary value), negative zero,
  // values that round to zero from below, carries into a new digit, the
  // smallest subnormal, the edge of the exact path, infinity.
  for (double v : {0.125, 0.375, 2.5, 3.5, -0.0, -0.001, -4.4e-7, 0.005, 1.005, 9.995, 99.999, -99.999, 0.0, 5e-324,
                   0.05, 353500.0, 1234567.891, 1e16, 1e17, 1.0 / 0.0}) {
    for (int precision : {0, 1, 2, 3, 6, 9}) EXPECT_TRUE(AsPrintf(v, precision));
  }
  // Random values of every magnitude.
  std::mt19937_64 gen(12345);
  std::uniform_real_distribution<double> mant(-1.0, 1.0);
  std::uniform_int_distribution<int> expo(-30, 60);
  for (int i = 0; i < 50000; ++i) {
    const double v = std::ldexp(mant(gen), expo(gen));
    for (int precision : {0, 1, 2, 3, 6}) ASSERT_TRUE(AsPrintf(v, precision));
  }
  // Values on the hundredths grid with binary noise, as coordinates are.
  for (int i = -200000; i < 200000; i += 7) ASSERT_TRUE(AsPrintf(i / 100.0 + (i % 3) * 1e-12, 2));
}

TEST(NumberFormat, RowsFormatAsPrintfWould) {
  auto format = [](const char* row, std::initializer_list<rv::RowArg> args) {
    std::string out;
    rv::AppendFormatted(out, row, args);
    return out;
  };
  EXPECT_EQ(format(g_RvlCommands[3][0], {12.345, -0.001}), "PU12.35,-0.00;");  // 12.345 is a little above
  EXPECT_EQ(format(g_RvlCommands[4][5], {1234.5, 99.5}), "PD\rPA1234,100\r");
  EXPECT_EQ(format(g_RvlCommands[43][0], {1.25, 3}), "ZG1.2,3;");
  EXPECT_EQ(format("JT%hd,%d;%%", {70000, -5}), "JT4464,-5;%");
  EXPECT_EQ(format(g_RvlCommands[13][1], {7}), "JT7,0;");  // the missing value formats as 0
  EXPECT_EQ(format(g_RvlCommands[57][0], {}), "GT\x01\x80OH;GT\x01");
  EXPECT_EQ(format("%d|%s|%.2lf", {2.9, 1}), "2|%s|1.00");  // a real for %d truncates; %s isn't ours
  std::string big;
  rv::AppendInteger(big, -9223372036854775807LL - 1);
  EXPECT_EQ(big, "-9223372036854775808");
  EXPECT_EQ(rv::TruncToInt32(-2.9), -2);
  EXPECT_EQ(rv::TruncToInt32(3e10), INT32_MIN);
  EXPECT_EQ(rv::TruncToInt32(0.0 / 0.0), INT32_MIN);
}

TEST(ToolMap, MapsByExactNameElseByTheNumberInTheName) {
  RVPLOTPARAM p{};
  const std::pair<const char*, uint16_t> map[] = {{"CUT", 4}, {"8", 0}, {"12", 3}, {"", 9}, {"AFTER", 8}};
  for (int i = 0; i < 5; ++i) {
    std::snprintf(p.toolPens[i].name, sizeof p.toolPens[i].name, "%s", map[i].first);
    p.toolPens[i].pen = map[i].second;
  }
  const std::pair<const char*, uint16_t> rows[] = {
      {"CUT", 4},   {"cut", 0},     // exact bytes only
      {"CUT2", 0},                  // not a prefix match
      {"8", 8},                     // pen 0 in the map: the name decides
      {"12", 3},                    // the map wins over the number
      {"AFTER", 0},                 // behind the empty name, never seen
      {"7", 7},     {"PEN", 0},     {" 15x", 15}, {"-15", 0xFFF1},
      {"65537", 1},                 // low 16 bits
      {"", 0},
  };
  for (auto [name, pen] : rows) EXPECT_EQ(rv::ToolToPen(p, name), pen) << '"' << name << '"';

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
  struct Group { std::vector<int16_t> pens; bool found, usePress, useDepth, vCut; };
  const Group groups[] = {
      {{10, 20, 11, 15, 25, 35}, true, true, false, false},
      {{13, 14, 24, -15, -25, -35}, true, false, true, false},
      {{17, 27}, true, false, true, true},
      {{int16_t(15 + 65536 / 2), 0, -10}, false, false, false, false},
  };
  for (const Group& g : groups) {
    for (int16_t pen : g.pens) {
      rv::ToolProperties f;
      f.usePress = f.useDepth = f.vCut = true;  // a miss clears them
      EXPECT_EQ(rv::LookUpToolProperties(pen, f), g.found) << pen;
      EXPECT_TRUE(f.usePress == g.usePress && f.useDepth == g.useDepth && f.vCut == g.vCut) << pen;
    }
  }
}

TEST(PlotParam, LayoutOfTheHead) {
  EXPECT_EQ(sizeof(RVTOOLPEN), 66u);
  EXPECT_EQ(offsetof(RVPLOTPARAM, curveOutput), 0u);
  EXPECT_EQ(offsetof(RVPLOTPARAM, plotterClass), 2u);
  EXPECT_EQ(offsetof(RVPLOTPARAM, dialect), 4u);
  EXPECT_EQ(offsetof(RVPLOTPARAM, mirror), 8u);
  EXPECT_EQ(offsetof(RVPLOTPARAM, rotation), 24u);  // natural alignment: three 16-bit fields, then 32-bit
}

}  // namespace
