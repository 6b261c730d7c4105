// The tool's table of the library's codes: every code the library documents
// has words, and the exit statuses follow the code's module.
#include <gtest/gtest.h>

#include <fstream>
#include <regex>
#include <set>
#include <sstream>

#include "codes.h"
#include "failure.h"

namespace {

using rvtool::DescribeCode;

std::set<uint32_t> TableCodes() {
  std::size_t count = 0;
  const rvtool::CodeWords* codes = rvtool::KnownCodes(&count);
  std::set<uint32_t> out;
  for (std::size_t i = 0; i < count; ++i) {
    EXPECT_TRUE(out.insert(codes[i].code).second) << "twice in the table: " << std::hex << codes[i].code;
    EXPECT_GT(std::string(codes[i].words).size(), 10u);
  }
  return out;
}

TEST(ToolCodes, EveryCodeOfTheLibrarysTableHasWords) {
  // The library's table of codes, module by module, and the plain codes of
  // the XML layer.
  const uint32_t documented[] = {
      0x01000201, 0x01000301, 0x01000401, 0x01000501, 0x01001001, 0x01001101, 0x02001C01,
      0x03000601, 0x03000701, 0x03000901, 0x03000D01, 0x03000E01, 0x03001001, 0x05000601,
      0x05000801, 0x05000901, 0x05000A01, 0x05000D01, 0x05000E01, 0x05001001, 0x06000901,
      0x06000A01, 0x06000D01, 0x06000E01, 0x06001001, 0x06001A01, 0x06001F01, 0x07000C01,
      0x07001001, 0x07001201, 0x07001301, 0x07001401, 0x07001601, 0x07001701, 0x07001E01,
      0x08001901, 0x09001D01, 0x0A001F01, 11, 12, 13, 14, 15, 65535};
  const std::set<uint32_t> table = TableCodes();
  for (uint32_t code : documented) EXPECT_TRUE(table.count(code)) << std::hex << code;
}

TEST(ToolCodes, EveryCodeNamedInThePublicHeaderHasWords) {
  // Codes that the header names (extensions included) must not reach a user
  // as "unknown": a new code in the header needs words in the tool.
  std::ifstream header(std::string(RV_SAMPLES_DIR) + "/../include/rvdataaccess.h");
  ASSERT_TRUE(header) << "public header not found";
  std::stringstream text;
  text << header.rdbuf();
  const std::string content = text.str();
  const std::set<uint32_t> table = TableCodes();
  const std::regex hex("0x0([0-9A-Fa-f])([0-9A-Fa-f]{4})01\\b");
  int seen = 0;
  for (auto it = std::sregex_iterator(content.begin(), content.end(), hex); it != std::sregex_iterator();
       ++it) {
    const uint32_t code = static_cast<uint32_t>(std::stoul(it->str(), nullptr, 16));
    ++seen;
    EXPECT_TRUE(table.count(code)) << "no words for " << it->str();
  }
  EXPECT_GT(seen, 10);
}

TEST(ToolCodes, WordsAndFormat) {
  EXPECT_EQ(DescribeCode(0x01000201), "the file can't be opened");
  EXPECT_EQ(DescribeCode(0x06001F01), "cancelled while the plot data was being written");
  EXPECT_EQ(DescribeCode(0x0A001F01), "cancelled while the arts were being sorted");
  EXPECT_EQ(DescribeCode(13), "the XML file can't be loaded");
  // Unknown codes still say what they are made of.
  EXPECT_EQ(DescribeCode(0x0B002A01), "an unknown failure (module 11, detail 42)");
  EXPECT_EQ(DescribeCode(99), "an unknown failure");
  EXPECT_EQ(rvtool::FormatCode(0x06001F01), "0x06001F01");
  EXPECT_EQ(rvtool::FormatCode(65535), "65535");
  EXPECT_EQ(rvtool::FormatCode(1), "1");
}

TEST(ToolCodes, ExitStatusFollowsTheModule) {
  EXPECT_EQ(rvtool::ExitStatusFor(0x01000201), 1);
  EXPECT_EQ(rvtool::ExitStatusFor(0x06001F01), 6);
  EXPECT_EQ(rvtool::ExitStatusFor(0x0A001F01), 10);
  EXPECT_EQ(rvtool::ExitStatusFor(0x09001D01), 9);
  EXPECT_EQ(rvtool::ExitStatusFor(11), 11);
  EXPECT_EQ(rvtool::ExitStatusFor(15), 15);
  EXPECT_EQ(rvtool::ExitStatusFor(65535), 16);
  EXPECT_EQ(rvtool::ExitStatusFor(1), 17);
  EXPECT_EQ(rvtool::ExitStatusFor(0x0B000101), 17);
  EXPECT_EQ(rvtool::ExitStatusFor(0xFFFFFFFF), 17);
}

TEST(ToolCodes, FailureLineNamesOperationFileAndMeaning) {
  const rvtool::Failure failure = rvtool::LibraryFailure(0x01000201, "import", "in/x.plt");
  EXPECT_STREQ(failure.what(), "import of 'in/x.plt' failed: the file can't be opened (code 0x01000201)");
  EXPECT_EQ(failure.status(), 1);
  EXPECT_NO_THROW(rvtool::Check(0, "import", "x"));
  EXPECT_THROW(rvtool::Check(13, "load conditions", "c.xml"), rvtool::Failure);
}

}  // namespace
