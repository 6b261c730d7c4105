// The shared file steps of the format strategies: open, close, seek, read of
// 1/2/4-byte items in little-endian order, write; each failing step gives
// its code and leaves the file closed.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "formats/file_frame.h"
#include "test_support.h"

namespace {

constexpr uint32_t kShort = 0x01000301, kClose = 0x01000401, kSeek = 0x01000501;

class TestFormat : public rv::CRvFormatStrategy {
 public:
  uint32_t ImportToRIF() override { return 0; }
  uint32_t ExportFromRIF(void*) override { return 0; }
};

TEST(FileFrame, OpenCloseAndWrite) {
  rvtest::TempDir dir;
  TestFormat f;
  EXPECT_EQ(f.Close(), 0u);  // no file: closes without error
  // Writes land in the file in order; a second close finds nothing to close.
  ASSERT_EQ(f.Open(dir.file("out.bin"), "wb"), 0u);
  EXPECT_EQ(f.WriteBlock("RV", 2), 0u);
  EXPECT_EQ(f.WriteBlock("L\n", 2), 0u);
  EXPECT_EQ(f.Close(), 0u);
  EXPECT_EQ(f.File(), nullptr);
  EXPECT_EQ(f.Close(), 0u);
  EXPECT_EQ(rvtest::ReadFile(dir.file("out.bin")), "RVL\n");

  // On a full device a close whose flush fails reports kClose, and a write
  // of more than the buffer moves fewer bytes: kShort; both close the file.
  if (f.Open("/dev/full", "wb") == 0) {
    const std::vector<char> block(1 << 20, 'x');
    EXPECT_EQ(f.WriteBlock(block.data(), 16), 0u);  // buffered
    EXPECT_EQ(f.Close(), kClose);
    EXPECT_EQ(f.File(), nullptr);
    ASSERT_EQ(f.Open("/dev/full", "wb"), 0u);
    EXPECT_EQ(f.WriteBlock(block.data(), block.size()), kShort);
    EXPECT_EQ(f.File(), nullptr);
  }
}

TEST(FileFrame, ReadsAreLittleEndianAndFailuresClose) {
  rvtest::TempDir dir;
  const std::string path = dir.file("data.bin");
  ASSERT_TRUE(rvtest::WriteFile(path, std::string("\x01\x02\x03\x04\x05\x06\x07\x08\x09", 9)));
  TestFormat f;
  ASSERT_EQ(f.Open(path, "rb"), 0u);
  uint8_t b = 0;
  uint16_t w[2] = {};
  uint32_t d[2] = {};
  EXPECT_EQ(f.ReadBytes(&b, 1), 0u);
  EXPECT_EQ(f.ReadU16(w, 2), 0u);
  EXPECT_EQ(f.ReadU32(d, 1), 0u);
  EXPECT_EQ(std::vector<uint32_t>({b, w[0], w[1], d[0]}),
            std::vector<uint32_t>({0x01, 0x0302, 0x0504, 0x09080706}));
  EXPECT_EQ(f.SeekFromStart(1), 0u);
  EXPECT_EQ(f.SeekFromCurrent(2), 0u);
  EXPECT_EQ(f.ReadBytes(&b, 1), 0u);
  EXPECT_EQ(b, 0x04);
  // Two 32-bit items where only one and a bit are left: short read, closed;
  // then nothing is open to read from or seek in.
  EXPECT_EQ(f.ReadU32(d, 2), kShort);
  EXPECT_EQ(f.File(), nullptr);
  EXPECT_EQ(f.Close(), 0u);
  EXPECT_EQ(f.ReadBytes(&b, 1), kShort);
  EXPECT_EQ(f.SeekFromCurrent(0), kSeek);
  // A seek before the start fails and closes.
  ASSERT_EQ(f.Open(path, "rb"), 0u);
  EXPECT_EQ(f.SeekFromStart(-5), kSeek);
  EXPECT_EQ(f.File(), nullptr);
}

}  // namespace
