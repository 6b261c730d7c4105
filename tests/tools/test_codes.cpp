// The tool's words for the library's codes and its exit statuses for them.
#include <gtest/gtest.h>

#include <regex>
#include <set>
#include <tuple>

#include "codes.h"
#include "failure.h"
#include "test_support.h"

namespace {

TEST(ToolCodes, EveryCodeOfTheLibraryHasWordsOnce) {
  // Whatever code the public header names, the library's codes that it
  // doesn't name, and the plain codes of the XML layer: a new one needs words.
  std::set<uint32_t> codes{0x01001101, 0x07000C01, 0x07001301, 0x07001601, 11, 12, 13, 14, 15, 65535};
  const std::string header = rvtest::ReadFile(std::string(RV_SAMPLES_DIR) + "/../include/rvdataaccess.h");
  const std::regex hex("0x0[0-9A-Fa-f]{5}01\\b");
  int named = 0;
  for (std::sregex_iterator it(header.begin(), header.end(), hex), end; it != end; ++it) {
    codes.insert(static_cast<uint32_t>(std::stoul(it->str(), nullptr, 16)));
    ++named;
  }
  EXPECT_GT(named, 10) << "public header not found";
  for (uint32_t code : codes)
    EXPECT_NE(rvtool::DescribeCode(code).rfind("an unknown failure", 0), 0u) << std::hex << code;

  std::size_t count = 0;
  const rvtool::CodeWords* table = rvtool::KnownCodes(&count);
  std::set<uint32_t> seen;
  for (std::size_t i = 0; i < count; ++i) {
    EXPECT_TRUE(seen.insert(table[i].code).second) << "twice in the table: " << std::hex << table[i].code;
    EXPECT_GT(std::string(table[i].words).size(), 10u);
  }
}

TEST(ToolCodes, WordsFormatAndExitStatusFollowTheModule) {
  // A failure without a file (here a read of the drawing) names only the operation.
  const rvtool::Failure failure = rvtool::LibraryFailure(0x09001D01, "reading the drawing", "");
  EXPECT_STREQ(failure.what(),
               "reading the drawing failed: no such document, or no document is active (code 0x09001D01)");
  EXPECT_EQ(failure.status(), 9);
  for (auto [code, words, format, status] : {
           std::tuple{0x0A001F01u, "cancelled while the arts were being sorted", "0x0A001F01", 10},
           {11, "the XML document object doesn't exist", "11", 11},
           {65535, "an XML operation failed, or the condition table wasn't empty", "65535", 16},
           // Unknown codes still say what they are made of; modules above 10
           // and anything else exit with 17.
           {0x0B002A01, "an unknown failure (module 11, detail 42)", "0x0B002A01", 17},
           {0xFFFFFFFF, "an unknown failure", "4294967295", 17}}) {
    SCOPED_TRACE(format);
    EXPECT_EQ(rvtool::DescribeCode(code), words);
    EXPECT_EQ(rvtool::FormatCode(code), format);
    EXPECT_EQ(rvtool::ExitStatusFor(code), status);
  }
}

}  // namespace
