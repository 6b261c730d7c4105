// DOMTree: the operations and their codes; CRvXMLAccess on top of it.
#include "cond_test_util.h"
#include "conditions/dom_tree.h"
#include "conditions/xml_access.h"

namespace {

using rv::DOMNode;

class DomTree : public ::testing::Test {
 protected:
  void SetUp() override { ASSERT_EQ(m_tree.Create(), 0u); }
  DOMNode Child(DOMNode parent, const wchar_t* name, const wchar_t* text = nullptr) {
    DOMNode node = nullptr;
    EXPECT_EQ(m_tree.CreateChild(parent, name, text, &node), 0u);
    return node;
  }
  /// The texts of the elements `name` at the indexes below `top`, "missing" where there is none.
  std::wstring Texts(DOMNode top, const wchar_t* name, std::initializer_list<int32_t> indexes) {
    std::wstring all;
    for (int32_t index : indexes) {
      DOMNode e = nullptr;
      std::wstring text = L"missing";
      if (m_tree.GetElementAt(top, name, index, &e) == 0) {
        EXPECT_EQ(m_tree.GetText(e, &text), 0u);
      }
      all += text + L";";
    }
    return all;
  }
  rv::DOMTree m_tree;
};

TEST_F(DomTree, EveryOperationNeedsADocumentAndItsNodes) {
  rv::DOMTree none;
  DOMNode node = nullptr;
  std::wstring text;
  int32_t count = 0;
  for (uint32_t code : {none.WriteDeclaration(), none.CreateRoot(L"r", &node), none.GetRoot(&node),
                        none.Load("x.xml"), none.Save("x.xml"), none.GetText(node, &text)}) {
    EXPECT_EQ(code, 11u);
  }
  EXPECT_EQ(m_tree.GetRoot(&node), 15u);  // an empty document has no root
  for (uint32_t code : {m_tree.CreateChild(nullptr, L"a", nullptr, &node),
                        m_tree.InsertChildBefore(nullptr, L"a", nullptr, &node), m_tree.GetNodeName(nullptr, &text),
                        m_tree.CountElements(nullptr, L"a", &count), m_tree.GetElementAt(nullptr, L"a", 0, &node),
                        m_tree.GetText(nullptr, &text), m_tree.GetAttribute(nullptr, L"a", &text),
                        m_tree.SetAttribute(nullptr, L"a", L"b")}) {
    EXPECT_EQ(code, 12u);
  }
  EXPECT_EQ(g_ExceptionContext, nullptr);
}

// Walks by index go on from remembered answers: insertions must not lead them astray.
TEST_F(DomTree, DescendantsAreFoundInDocumentOrderAcrossInsertions) {
  DOMNode root = nullptr, n = nullptr, refused = nullptr;
  std::wstring text;
  ASSERT_EQ(m_tree.CreateRoot(L"R", &root), 0u);
  ASSERT_EQ(m_tree.SetAttribute(root, L"version", L"1.00"), 0u);
  ASSERT_EQ(m_tree.SetAttribute(root, L"version", L"2.00"), 0u);  // replaced
  ASSERT_EQ(m_tree.GetAttribute(root, L"version", &text), 0u);
  EXPECT_EQ(text, L"2.00");
  DOMNode first = Child(root, L"E", L"0");
  Child(root, L"E", L"1");
  Child(root, L"E", L"2");
  EXPECT_EQ(Texts(root, L"E", {2, 1, -1}), L"2;1;missing;");
  ASSERT_EQ(m_tree.InsertChildBefore(first, L"E", L"new", &n), 0u);
  EXPECT_EQ(m_tree.InsertChildBefore(root, L"E", nullptr, &refused), 65535u);  // the root has no parent element
  EXPECT_EQ(Texts(root, L"E", {1, 0, 3}), L"0;new;2;");
  Child(n, L"E", L"nested");  // inside the walked subtree, before a remembered element
  EXPECT_EQ(Texts(root, L"E", {1, 4}), L"nested;2;");
  // Appending to the walked node itself only adds at the end.
  DOMNode box = Child(root, L"Box");
  Child(root, L"E", L"last");
  EXPECT_EQ(Texts(root, L"E", {5}), L"last;");
  Child(box, L"E", L"boxed");
  EXPECT_EQ(Texts(root, L"E", {5, 6, 7}), L"boxed;last;missing;");
  EXPECT_EQ(Texts(box, L"E", {0}), L"boxed;");
  for (auto [node, expected] : {std::pair{root, 7}, {n, 1}}) {  // descendants only
    int32_t count = -1;
    ASSERT_EQ(m_tree.CountElements(node, L"E", &count), 0u);
    EXPECT_EQ(count, expected);
  }
}

TEST_F(DomTree, DeepNestingIsWalkedWithoutRecursion) {
  const int depth = 200000;
  std::string xml;
  for (int i = 0; i < depth; ++i) xml += "<a>";
  xml += "<b>x</b>";
  for (int i = 0; i < depth; ++i) xml += "</a>";
  rvtest::TempDir dir;
  rvtest::WriteFile(dir.file("in.xml"), xml);
  DOMNode root = nullptr;
  ASSERT_EQ(m_tree.Load(dir.file("in.xml")), 0u);
  ASSERT_EQ(m_tree.GetRoot(&root), 0u);
  int32_t count = 0;
  ASSERT_EQ(m_tree.CountElements(root, L"a", &count), 0u);
  EXPECT_EQ(count, depth - 1);
  EXPECT_EQ(Texts(root, L"b", {0}), L"x;");
}

TEST(XmlAccess, WritingAtAnIndexThatHoldsAnElementPutsTheNewOneBefore) {
  rv::CRvXMLAccess xml;
  ASSERT_EQ(xml.Create(0), 0u);
  rv::CondFileRecord r;
  r.Reset();
  std::strcpy(r.Name, "M");
  for (auto [tool, pass] : {std::pair{"second", 0}, {"first", 1}, {"zero", 1}}) {  // at 1 first appends, then inserts
    std::strcpy(r.Tool, tool);
    ASSERT_EQ(xml.WriteCondition(0, pass, r), 0u);
  }
  std::string tools;
  for (int32_t j = 0; j < 3; ++j) {
    ASSERT_EQ(xml.ReadCondition(0, j, &r), 0u);
    tools += r.Tool + std::string(";");
  }
  EXPECT_EQ(tools, "second;zero;first;");
  int32_t passes = 0;
  EXPECT_EQ(xml.ReadCondition(0, 3, &r), 15u);
  EXPECT_EQ(xml.GetPassCount(1, &passes), 15u);
}

}  // namespace
