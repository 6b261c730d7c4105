// The art tree as C++ objects: what the exported functions don't reach.
#include <gtest/gtest.h>

#include "model/art.h"

using namespace rv;

namespace {

TEST(ArtTree, ALayerRemovesOnlyEntriesOfItsOwnList) {
  CRvLayer layer, other;
  CRvGroup refused;
  EXPECT_FALSE(layer.AddChild(5, &refused)) << "an unknown where links nothing and leaves the art with the caller";
  layer.AddChild(1, new CRvGroup);
  auto* foreign = new CRvGroup;
  other.AddChild(1, foreign);
  layer.RemoveChild(*other.FindChild(foreign));
  EXPECT_EQ(other.ChildCount(), 1u);
  EXPECT_EQ(layer.ChildCount(), 1u);
}

}  // namespace
