// The shared file steps of the format strategies: open, close, seek, read of
// 1/2/4-byte items in little-endian order, write; each failing step gives
// its code and leaves the file closed.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "formats/file_frame.h"
#include "test_support.h"

namespace {

constexpr uint32_t kOpen = 0x01000201, kShort = 0x01000301, kClose = 0x01000401, kSeek = 0x01000501;

class TestFormat : public rv::CRvFormatStrategy {
 public:
  uint32_t ImportToRIF() override { return 0; }
  uint32_t ExportFromRIF(void*) override { return 0; }
};

TEST(FileFrame, OpenAndClose) {
  rvtest::TempDir dir;
  TestFormat f;
  EXPECT_EQ(f.Close(), 0u);  // no file: closes without error
  EXPECT_EQ(f.Open(dir.file("missing.bin"), "rb"), kOpen);
  EXPECT_EQ(f.File(), nullptr);
  EXPECT_EQ(f.Open(dir.file("new.bin"), "wb"), 0u);
  EXPECT_NE(f.File(), nullptr);
  EXPECT_EQ(f.Close(), 0u);
  EXPECT_EQ(f.File(), nullptr);
  EXPECT_EQ(f.Close(), 0u);
  // A close whose flush fails reports 0x01000401 (a full device).
  if (f.Open("/dev/full", "wb") == 0) {
    const char bytes[16] = {};
    EXPECT_EQ(f.WriteBlock(bytes, sizeof bytes), 0u);  // buffered
    EXPECT_EQ(f.Close(), kClose);
    EXPECT_EQ(f.File(), nullptr);
  }
}

TEST(FileFrame, ReadsAreLittleEndianAndShortReadsClose) {
  rvtest::TempDir dir;
  const std::string path = dir.file("data.bin");
  ASSERT_TRUE(rvtest::WriteFile(path, std::string("\x01\x02\x03\x04\x05\x06\x07\x08\x09", 9)));
  TestFormat f;
  ASSERT_EQ(f.Open(path, "rb"), 0u);
  uint8_t b = 0;
  EXPECT_EQ(f.ReadBytes(&b, 1), 0u);
  EXPECT_EQ(b, 0x01);
  uint16_t w[2] = {};
  EXPECT_EQ(f.ReadU16(w, 2), 0u);
  EXPECT_EQ(w[0], 0x0302);
  EXPECT_EQ(w[1], 0x0504);
  uint32_t d = 0;
  EXPECT_EQ(f.ReadU32(&d, 1), 0u);
  EXPECT_EQ(d, 0x09080706u);
  // Seeks from the start and from the current position.
  EXPECT_EQ(f.SeekFromStart(1), 0u);
  EXPECT_EQ(f.SeekFromCurrent(2), 0u);
  EXPECT_EQ(f.ReadBytes(&b, 1), 0u);
  EXPECT_EQ(b, 0x04);
  // Two 32-bit items where only one and a bit are left: short read, closed.
  uint32_t two[2];
  EXPECT_EQ(f.ReadU32(two, 2), kShort);
  EXPECT_EQ(f.File(), nullptr);
  EXPECT_EQ(f.Close(), 0u);  // the file counts as closed
  EXPECT_EQ(f.ReadBytes(&b, 1), kShort);  // nothing open to read from
}

TEST(FileFrame, FailedSeeksAndWritesClose) {
  rvtest::TempDir dir;
  const std::string path = dir.file("data.bin");
  ASSERT_TRUE(rvtest::WriteFile(path, "abc"));
  TestFormat f;
  ASSERT_EQ(f.Open(path, "rb"), 0u);
  EXPECT_EQ(f.SeekFromStart(-5), kSeek);
  EXPECT_EQ(f.File(), nullptr);
  EXPECT_EQ(f.SeekFromCurrent(0), kSeek);

  // A write of more than the buffer to a full device moves fewer bytes.
  if (f.Open("/dev/full", "wb") == 0) {
    std::vector<char> block(1 << 20, 'x');
    EXPECT_EQ(f.WriteBlock(block.data(), block.size()), kShort);
    EXPECT_EQ(f.File(), nullptr);
  }
  // Writes land in the file in order.
  ASSERT_EQ(f.Open(dir.file("out.bin"), "wb"), 0u);
  EXPECT_EQ(f.WriteBlock("RV", 2), 0u);
  EXPECT_EQ(f.WriteBlock("L\n", 2), 0u);
  EXPECT_EQ(f.Close(), 0u);
  EXPECT_EQ(rvtest::ReadFile(dir.file("out.bin")), "RVL\n");
}

}  // namespace
