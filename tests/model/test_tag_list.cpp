#include <gtest/gtest.h>

#include <string>

#include "model/drawing_memory.h"
#include "model/tag_list.h"

namespace {

using rv::TagList;

std::string ValueOf(const TagList& tags, std::string_view key) {
  const auto value = tags.Find(key);
  return value ? std::string(*value) : std::string("<none>");
}

// Pairs packed in one block: inserting in front, between and behind, and
// replacing with a longer or shorter value, must leave every other pair
// readable; a key that is a prefix of another is a key of its own; a value
// may be read out of the list it is written into.
TEST(TagList, PairsStayReadableInKeyOrderAndStorageComesBack) {
  const std::size_t before = rv::DrawingBytes();
  {
    TagList tags;
    EXPECT_EQ(ValueOf(tags, "a"), "<none>");
    tags.Set("m", "middle");
    tags.Set("z", "");
    tags.Set("a", "first");
    tags.Set("ab", "prefix");
    tags.Set("m", "a much longer value than before");
    tags.Set("a", "");
    tags.Set("", "empty key");
    tags.Set("z", *tags.Find("ab"));
    EXPECT_EQ(ValueOf(tags, "a"), "");
    EXPECT_EQ(ValueOf(tags, "ab"), "prefix");
    EXPECT_EQ(ValueOf(tags, "m"), "a much longer value than before");
    EXPECT_EQ(ValueOf(tags, "z"), "prefix");
    EXPECT_EQ(ValueOf(tags, ""), "empty key");
    EXPECT_EQ(ValueOf(tags, "b"), "<none>");
    EXPECT_EQ(ValueOf(tags, "zz"), "<none>");
    EXPECT_GT(rv::DrawingBytes(), before);
  }
  EXPECT_EQ(rv::DrawingBytes(), before);
}

}  // namespace
