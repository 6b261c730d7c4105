#include <gtest/gtest.h>

#include "drawing_host.h"
#include "model/data_access.h"

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
  EXPECT_EQ(RvGiGetLayer(&art, 0), kNoDocument);
  EXPECT_EQ(RvGiGetLayerFromName(&art, "Layer1"), kNoDocument);
  EXPECT_EQ(RvGiGetDocBoundBox(&rect), kNoDocument);
  EXPECT_EQ(RvGiSetDocBoundingBox(&rect), kNoDocument);
  EXPECT_EQ(RvGiCreateArt(1, 3, nullptr, &art), kNoDocument);
  EXPECT_EQ(RvGiDeleteActiveDocument(), 0u) << "nothing to delete is no failure";
}

TEST_F(DocumentStore, IndexesAreAppendedAndNeverReused) {
  int16_t a = -1, b = -1, c = -1;
  ASSERT_EQ(RvGiCreateDocument(0, &a), 0u);
  ASSERT_EQ(RvGiCreateDocument(0, &b), 0u);
  EXPECT_EQ(a, 0);
  EXPECT_EQ(b, 1);
  EXPECT_EQ(Active(), 1);
  ASSERT_EQ(RvGiDeleteActiveDocument(), 0u);
  EXPECT_EQ(Active(), 0);
  ASSERT_EQ(RvGiCreateDocument(0, &c), 0u);
  EXPECT_EQ(c, 2);
  EXPECT_EQ(RvGiSetActiveDocument(1), kNoDocument) << "the slot of a deleted document";
  EXPECT_EQ(Active(), 2) << "a refused activation changes nothing";
  EXPECT_EQ(RvGiSetActiveDocument(3), kNoDocument);
  EXPECT_EQ(RvGiSetActiveDocument(-1), kNoDocument);
  EXPECT_EQ(RvGiSetActiveDocument(0), 0u);
  EXPECT_EQ(Active(), 0);
}

TEST_F(DocumentStore, DeletingNeverActivatesAHigherDocument) {
  int16_t index = 0;
  ASSERT_EQ(RvGiCreateDocument(0, &index), 0u);
  ASSERT_EQ(RvGiCreateDocument(0, &index), 0u);
  ASSERT_EQ(RvGiSetActiveDocument(0), 0u);
  ASSERT_EQ(RvGiDeleteActiveDocument(), 0u);
  EXPECT_EQ(Active(), -1) << "document 1 is higher and stays inactive";
  ASSERT_EQ(RvGiSetActiveDocument(1), 0u);
  ASSERT_EQ(RvGiDeleteActiveDocument(), 0u);
  EXPECT_EQ(Active(), -1);
  EXPECT_EQ(rv::CRvDataAccess::Instance().m_documents.size(), 2u) << "the array keeps its length";
  ASSERT_EQ(RvGiCreateDocument(0, &index), 0u);
  EXPECT_EQ(index, 2);
}

TEST_F(DocumentStore, OnlyTheMemoryKindExists) {
  int16_t index = 42;
  EXPECT_EQ(RvGiCreateDocument(1, &index), 0x02001C01u);
  EXPECT_EQ(index, 42);
  EXPECT_EQ(Active(), -1);
  EXPECT_TRUE(rv::CRvDataAccess::Instance().m_documents.empty());
}

TEST_F(DocumentStore, ForgottenDocumentsStayReadable) {
  int16_t index = 0;
  ASSERT_EQ(RvGiCreateDocument(0, &index), 0u);
  void* layer = nullptr;
  void* path = nullptr;
  ASSERT_EQ(RvGiCreateLayer(1, nullptr, &layer), 0u);
  ASSERT_EQ(RvGiCreateArt(4, 3, nullptr, &path), 0u);
  ASSERT_EQ(RvGiSetPathPlotInfo(path, 3, "cut"), 0u);
  ASSERT_EQ(RvGiDeleteAllDocuments(), 0u);
  EXPECT_EQ(Active(), -1);
  // A handle kept elsewhere (a RefMap table) still reads.
  int32_t value = 0;
  char text[16] = {};
  EXPECT_EQ(RvGiGetPathPlotInfo(path, &value, text), 0u);
  EXPECT_EQ(value, 3);
  EXPECT_STREQ(text, "cut");
  EXPECT_EQ(Parent(path), layer);
  ASSERT_EQ(RvGiCreateDocument(0, &index), 0u);
  EXPECT_EQ(index, 0);
}

TEST_F(DocumentStore, BoundBoxesBelongToTheirDocument) {
  int16_t first = 0, second = 0;
  ASSERT_EQ(RvGiCreateDocument(0, &first), 0u);
  RVRECT page{297.0, 0.0, 210.0, 0.0};
  ASSERT_EQ(RvGiSetDocBoundingBox(&page), 0u);
  ASSERT_EQ(RvGiCreateDocument(0, &second), 0u);
  RVRECT read{1, 1, 1, 1};
  ASSERT_EQ(RvGiGetDocBoundBox(&read), 0u);
  EXPECT_EQ(read.top, 0.0) << "a new document's box is empty";
  ASSERT_EQ(RvGiSetActiveDocument(first), 0u);
  ASSERT_EQ(RvGiGetDocBoundBox(&read), 0u);
  EXPECT_EQ(read.top, 297.0);
  EXPECT_EQ(read.right, 210.0);
}

}  // namespace
