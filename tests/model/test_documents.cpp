#include <gtest/gtest.h>

#include <string>

#include "drawing_host.h"
#include "model/data_access.h"
#include "model/drawing_memory.h"

using namespace drawtest;

namespace {

class DocumentStore : public ::testing::Test {
 protected:
  void SetUp() override { ASSERT_EQ(RvGiDeleteAllDocuments(), 0u); }
  void TearDown() override { RvGiDeleteAllDocuments(); }
  static int16_t Active() {
    int16_t index = 99;
    EXPECT_EQ(RvGiGetActiveDocumentIndex(&index), 0u);
    return index;
  }
  static int16_t Create() {
    int16_t index = -1;
    EXPECT_EQ(RvGiCreateDocument(0, &index), 0u);
    return index;
  }
};

TEST_F(DocumentStore, EmptyStoreHasNothingActive) {
  EXPECT_EQ(Active(), -1);
  int16_t count = 7;
  EXPECT_EQ(RvGiGetLayerCount(&count), 0u);
  EXPECT_EQ(count, 0);
  // Everything else that needs a document says so.
  void* art = reinterpret_cast<void*>(1);
  RVRECT rect{};
  EXPECT_EQ(RvGiCreateLayer(1, nullptr, &art), kNoDocument);
  EXPECT_EQ(art, nullptr);
  for (uint32_t code : {RvGiGetLayer(&art, 0), RvGiGetLayerFromName(&art, "Layer1"), RvGiGetDocBoundBox(&rect),
                        RvGiSetDocBoundingBox(&rect), RvGiCreateArt(1, 3, nullptr, &art)}) {
    EXPECT_EQ(code, kNoDocument);
  }
  EXPECT_EQ(RvGiDeleteActiveDocument(), 0u) << "nothing to delete is no failure";
  // Only the memory kind exists.
  int16_t index = 42;
  EXPECT_EQ(RvGiCreateDocument(1, &index), 0x02001C01u);
  EXPECT_EQ(index, 42);
  EXPECT_EQ(Active(), -1);
  EXPECT_TRUE(rv::CRvDataAccess::Instance().m_documents.empty());
}

TEST_F(DocumentStore, IndexesAreAppendedAndNeverReused) {
  EXPECT_EQ(Create(), 0);
  EXPECT_EQ(Create(), 1);
  EXPECT_EQ(Active(), 1);
  ASSERT_EQ(RvGiDeleteActiveDocument(), 0u);
  EXPECT_EQ(Active(), 0);
  EXPECT_EQ(Create(), 2);
  EXPECT_EQ(RvGiSetActiveDocument(1), kNoDocument) << "the slot of a deleted document";
  EXPECT_EQ(Active(), 2) << "a refused activation changes nothing";
  EXPECT_EQ(RvGiSetActiveDocument(3), kNoDocument);
  EXPECT_EQ(RvGiSetActiveDocument(-1), kNoDocument);
  EXPECT_EQ(RvGiSetActiveDocument(0), 0u);
  EXPECT_EQ(Active(), 0);
  // Deleting never activates a higher document.
  ASSERT_EQ(RvGiDeleteActiveDocument(), 0u);
  EXPECT_EQ(Active(), -1) << "document 2 is higher and stays inactive";
  ASSERT_EQ(RvGiSetActiveDocument(2), 0u);
  ASSERT_EQ(RvGiDeleteActiveDocument(), 0u);
  EXPECT_EQ(Active(), -1);
  EXPECT_EQ(rv::CRvDataAccess::Instance().m_documents.size(), 3u) << "the array keeps its length";
  EXPECT_EQ(Create(), 3);
}

// A document with one layer and a tagged path; returns the path.
void* TaggedPath() {
  int16_t index = -1;
  void* layer = nullptr;
  void* path = nullptr;
  EXPECT_EQ(RvGiCreateDocument(0, &index), 0u);
  EXPECT_EQ(RvGiCreateLayer(1, nullptr, &layer), 0u);
  EXPECT_EQ(RvGiCreateArt(4, 3, nullptr, &path), 0u);
  EXPECT_EQ(RvGiSetArtTag(path, "k", "cut"), 0u);
  return path;
}

std::string Tag(void* art) {
  char text[16] = {};
  EXPECT_EQ(RvGiGetArtTag(art, "k", text), 0u);
  return text;
}

TEST_F(DocumentStore, ForgottenDocumentsLiveWhileATableCanReachThem) {
  rv::CRvDataAccess& store = rv::CRvDataAccess::Instance();
  ASSERT_EQ(RvGiDeleteRefMapTable(), 0u);
  const std::size_t empty = rv::DrawingBytes();

  // No table: the forgotten document goes at once; an art unlinked from it
  // before stays readable.
  void* path = TaggedPath();
  void* unlinked = nullptr;
  ASSERT_EQ(RvGiCreateArt(4, 3, nullptr, &unlinked), 0u);
  ASSERT_EQ(RvGiSetArtTag(unlinked, "k", "kept"), 0u);
  void* handle = unlinked;
  ASSERT_EQ(RvGiDeleteArt(&handle), 0u);
  const std::size_t withUnlinked = rv::DrawingBytes();
  ASSERT_EQ(RvGiDeleteAllDocuments(), 0u);
  EXPECT_EQ(store.ForgottenCount(), 0u);
  EXPECT_LT(rv::DrawingBytes(), withUnlinked);
  EXPECT_GT(rv::DrawingBytes(), empty) << "the unlinked art is still held";
  EXPECT_EQ(Tag(unlinked), "kept");
  EXPECT_EQ(Parent(unlinked), nullptr);
  const std::size_t afterFirst = rv::DrawingBytes();

  // A table: the arts stay readable, also in their tree, until the last
  // table goes.
  int16_t map = -1;
  path = TaggedPath();
  void* layer = Parent(path);
  ASSERT_EQ(RvGiCreateRefMapTable(&map), 0u);
  ASSERT_EQ(RvGiCreateRefMapTable(&map), 0u);
  ASSERT_EQ(RvGiAddRefMapData(map, "K", 2, path), 0u);
  ASSERT_EQ(RvGiDeleteAllDocuments(), 0u);
  EXPECT_EQ(Active(), -1);
  EXPECT_EQ(store.ForgottenCount(), 1u);
  EXPECT_EQ(Tag(path), "cut");
  EXPECT_EQ(Parent(path), layer);
  ASSERT_EQ(RvGiDeleteSpecificRefMapTable(0), 0u);
  EXPECT_EQ(Tag(path), "cut") << "one table is left";
  ASSERT_EQ(RvGiDeleteSpecificRefMapTable(0), 0u);
  EXPECT_EQ(store.ForgottenCount(), 0u);
  EXPECT_EQ(rv::DrawingBytes(), afterFirst);

  // A walk whose callback deletes the tables still reads its arts to the
  // end; the documents go when the walk lets go of the table.
  path = TaggedPath();
  ASSERT_EQ(RvGiCreateRefMapTable(&map), 0u);
  ASSERT_EQ(RvGiAddRefMapData(map, "K", 2, path), 0u);
  ASSERT_EQ(RvGiAddRefMapData(map, "L", 2, path), 0u);
  ASSERT_EQ(RvGiDeleteAllDocuments(), 0u);
  static int visits;
  visits = 0;
  auto visit = [](void*, void* art) -> uint32_t {
    ++visits;
    EXPECT_EQ(RvGiDeleteRefMapTable(), 0u);
    EXPECT_EQ(Tag(art), "cut");
    EXPECT_EQ(rv::CRvDataAccess::Instance().ForgottenCount(), 1u);
    return 0;
  };
  EXPECT_EQ(RvGiRefMapTableTrace(map, 0, nullptr, visit, 0), 0u);
  EXPECT_EQ(visits, 2);
  EXPECT_EQ(store.ForgottenCount(), 0u);
  EXPECT_EQ(rv::DrawingBytes(), afterFirst);
  EXPECT_EQ(Create(), 0);
}

// A Bezier of `count` points, the last child of `path`.
void* BezierOf(void* path, int count) {
  void* bezier = nullptr;
  EXPECT_EQ(RvGiCreateArt(2, 5, path, &bezier), 0u);
  for (int k = 0; k < count; ++k) {
    const RVBEZIERPOINT p = Pt(k, -k);
    EXPECT_EQ(RvGiAddBezierPoint(bezier, &p), 0u);
  }
  return bezier;
}

TEST_F(DocumentStore, StorageGoesWithItsDocumentButNeverFromUnderAnArtStillHeld) {
  ASSERT_EQ(RvGiDeleteRefMapTable(), 0u);
  const std::size_t storage = rv::DrawingStorageBytes();
  // Document 0 makes three paths: one stays, one is unlinked, one is copied
  // (with a Bezier made while document 0 is active) into document 1.
  void* path = TaggedPath();
  BezierOf(path, 300);
  void* unlinked = nullptr;
  ASSERT_EQ(RvGiCreateArt(4, 3, nullptr, &unlinked), 0u);
  void* unlinkedBezier = BezierOf(unlinked, 300);
  void* handle = unlinked;
  ASSERT_EQ(RvGiDeleteArt(&handle), 0u);
  const int16_t second = Create();
  void* layer = nullptr;
  ASSERT_EQ(RvGiCreateLayer(1, nullptr, &layer), 0u);
  void* copy = nullptr;
  ASSERT_EQ(RvGiCopyArt(4, 3, nullptr, path, &copy), 0u);
  ASSERT_EQ(RvGiSetActiveDocument(0), 0u);
  void* movedBezier = BezierOf(copy, 300);
  EXPECT_GT(rv::DrawingStorageBytes(), storage + 3 * 300 * sizeof(RVBEZIERPOINT));

  // Document 0 goes; what document 1 and the host still hold stays readable.
  ASSERT_EQ(RvGiDeleteActiveDocument(), 0u);
  EXPECT_EQ(Anchors(unlinkedBezier).size(), 300u);
  EXPECT_EQ(Anchors(movedBezier).at(299), 299.0);
  EXPECT_EQ(Parent(movedBezier), copy);
  const std::size_t held = rv::DrawingStorageBytes();
  EXPECT_GT(held, storage);

  // Document 1 goes: only the unlinked art is left, and the storage it sits in.
  ASSERT_EQ(RvGiSetActiveDocument(second), 0u);
  ASSERT_EQ(RvGiDeleteActiveDocument(), 0u);
  EXPECT_EQ(Anchors(unlinkedBezier).at(1), 1.0);
  EXPECT_LE(rv::DrawingStorageBytes(), held);
  EXPECT_GT(rv::DrawingStorageBytes(), storage);

  // Storage made and dropped in a document comes back with it.
  const std::size_t before = rv::DrawingStorageBytes();
  for (int round = 0; round < 20; ++round) {
    BezierOf(TaggedPath(), 1000);
    ASSERT_EQ(RvGiDeleteActiveDocument(), 0u);
  }
  EXPECT_EQ(rv::DrawingStorageBytes(), before);
  // So does a drawing large enough to take its storage in large pages.
  void* big = TaggedPath();
  for (int k = 0; k < 6000; ++k) {
    void* art = nullptr;
    ASSERT_EQ(RvGiCreateArt(4, 3, nullptr, &art), 0u);
    BezierOf(art, 8);
  }
  EXPECT_EQ(Anchors(BezierOf(big, 8)).at(7), 7.0);
  EXPECT_GT(rv::DrawingStorageBytes(), before + (std::size_t(4) << 20));
  ASSERT_EQ(RvGiDeleteActiveDocument(), 0u);
  EXPECT_EQ(rv::DrawingStorageBytes(), before);
}

TEST_F(DocumentStore, BoundBoxesBelongToTheirDocument) {
  const int16_t first = Create();
  const RVRECT page{297.0, 0.0, 210.0, 0.0};
  ASSERT_EQ(RvGiSetDocBoundingBox(&page), 0u);
  Create();
  RVRECT read{1, 1, 1, 1};
  ASSERT_EQ(RvGiGetDocBoundBox(&read), 0u);
  EXPECT_EQ(Rect(read), V(4, 0.0)) << "a new document's box is empty";
  ASSERT_EQ(RvGiSetActiveDocument(first), 0u);
  ASSERT_EQ(RvGiGetDocBoundBox(&read), 0u);
  EXPECT_EQ(Rect(read), (V{297, 0, 210, 0}));
}

}  // namespace
