// DOMTree: the operations and their codes.
#include "cond_test_util.h"
#include "conditions/dom_tree.h"
#include "conditions/xml_access.h"

namespace {

using rv::DOMNode;
using rv::DOMTree;

TEST(DomTree, EveryOperationNeedsADocumentAndItsNodes) {
  DOMTree tree;
  DOMNode node = nullptr;
  std::wstring text;
  int32_t count = 0;
  EXPECT_EQ(tree.WriteDeclaration(), 11u);
  EXPECT_EQ(tree.CreateRoot(L"r", &node), 11u);
  EXPECT_EQ(tree.GetRoot(&node), 11u);
  EXPECT_EQ(tree.Load("x.xml"), 11u);
  EXPECT_EQ(tree.Save("x.xml"), 11u);
  EXPECT_EQ(tree.GetText(node, &text), 11u);
  ASSERT_EQ(tree.Create(), 0u);
  EXPECT_EQ(tree.GetRoot(&node), 15u);  // an empty document has no root
  EXPECT_EQ(tree.CreateChild(nullptr, L"a", nullptr, &node), 12u);
  EXPECT_EQ(tree.InsertChildBefore(nullptr, L"a", nullptr, &node), 12u);
  EXPECT_EQ(tree.GetNodeName(nullptr, &text), 12u);
  EXPECT_EQ(tree.CountElements(nullptr, L"a", &count), 12u);
  EXPECT_EQ(tree.GetElementAt(nullptr, L"a", 0, &node), 12u);
  EXPECT_EQ(tree.GetText(nullptr, &text), 12u);
  EXPECT_EQ(tree.GetAttribute(nullptr, L"a", &text), 12u);
  EXPECT_EQ(tree.SetAttribute(nullptr, L"a", L"b"), 12u);
  EXPECT_EQ(g_ExceptionContext, nullptr);
}

TEST(DomTree, BuildsSavesAndFindsDescendantsInDocumentOrder) {
  rvtest::TempDir dir;
  DOMTree tree;
  ASSERT_EQ(tree.Create(), 0u);
  ASSERT_EQ(tree.WriteDeclaration(), 0u);
  DOMNode root = nullptr, a = nullptr, b = nullptr, inner = nullptr, before = nullptr;
  ASSERT_EQ(tree.CreateRoot(L"Root", &root), 0u);
  ASSERT_EQ(tree.SetAttribute(root, L"version", L"1.00"), 0u);
  ASSERT_EQ(tree.CreateChild(root, L"Item", L"one", &a), 0u);
  ASSERT_EQ(tree.CreateChild(root, L"Box", nullptr, &b), 0u);
  ASSERT_EQ(tree.CreateChild(b, L"Item", L"two \u00e9\u20ac", &inner), 0u);
  ASSERT_EQ(tree.InsertChildBefore(a, L"Item", L" zero ", &before), 0u);
  EXPECT_EQ(tree.InsertChildBefore(root, L"Item", nullptr, &before), 65535u);  // the root has no parent element
  int32_t count = 0;
  ASSERT_EQ(tree.CountElements(root, L"Item", &count), 0u);
  EXPECT_EQ(count, 3);
  ASSERT_EQ(tree.CountElements(b, L"Item", &count), 0u);
  EXPECT_EQ(count, 1);
  ASSERT_EQ(tree.CountElements(inner, L"Item", &count), 0u);  // descendants only
  EXPECT_EQ(count, 0);
  const wchar_t* expected[] = {L" zero ", L"one", L"two \u00e9\u20ac"};
  for (int i = 0; i < 3; ++i) {
    DOMNode found = nullptr;
    std::wstring text;
    ASSERT_EQ(tree.GetElementAt(root, L"Item", i, &found), 0u);
    ASSERT_EQ(tree.GetText(found, &text), 0u);
    EXPECT_EQ(text, expected[i]);
  }
  DOMNode none = nullptr;
  EXPECT_EQ(tree.GetElementAt(root, L"Item", 3, &none), 15u);
  EXPECT_EQ(tree.GetElementAt(root, L"Item", -1, &none), 15u);
  std::wstring text;
  ASSERT_EQ(tree.GetText(b, &text), 0u);  // all text below the node
  EXPECT_EQ(text, L"two \u00e9\u20ac");
  ASSERT_EQ(tree.GetNodeName(b, &text), 0u);
  EXPECT_EQ(text, L"Box");
  EXPECT_EQ(tree.GetAttribute(root, L"missing", &text), 65535u);
  ASSERT_EQ(tree.SetAttribute(root, L"version", L"2.00"), 0u);
  ASSERT_EQ(tree.GetAttribute(root, L"version", &text), 0u);
  EXPECT_EQ(text, L"2.00");

  std::string path = dir.file("t.xml");
  ASSERT_EQ(tree.Save(path), 0u);
  EXPECT_EQ(rvtest::ReadFile(path),
            "<?xml version=\"1.0\" encoding=\"utf-8\"?><Root version=\"2.00\"><Item> zero </Item><Item>one</Item>"
            "<Box><Item>two \xC3\xA9\xE2\x82\xAC</Item></Box></Root>");
  EXPECT_EQ(tree.Save(dir.file("missing/t.xml")), 14u);
}

TEST(DomTree, LoadKeepsWhiteSpaceAndRefusesBrokenFiles) {
  rvtest::TempDir dir;
  std::string path = dir.file("in.xml");
  rvtest::WriteFile(path, "\xEF\xBB\xBF<?xml version=\"1.0\"?>\n<R>\n  <A>  a  </A>\n  <A>\t</A>\n</R>\n");
  DOMTree tree;
  ASSERT_EQ(tree.Create(), 0u);
  ASSERT_EQ(tree.Load(path), 0u);
  DOMNode root = nullptr, a = nullptr;
  ASSERT_EQ(tree.GetRoot(&root), 0u);
  std::wstring text;
  ASSERT_EQ(tree.GetElementAt(root, L"A", 1, &a), 0u);
  ASSERT_EQ(tree.GetText(a, &text), 0u);
  EXPECT_EQ(text, L"\t");
  ASSERT_EQ(tree.GetText(root, &text), 0u);
  EXPECT_EQ(text, L"\n  " L"  a  " L"\n  " L"\t" L"\n");
  // Load and save keep the layout inside the root element.
  std::string copy = dir.file("copy.xml");
  ASSERT_EQ(tree.Save(copy), 0u);
  EXPECT_EQ(rvtest::ReadFile(copy), "<?xml version=\"1.0\"?><R>\n  <A>  a  </A>\n  <A>\t</A>\n</R>");

  for (const char* bad : {"", "<R>", "<R></S>", "just text", "<?xml version=\"1.0\"?>", "<R/><S/>",
                          "<R/><![CDATA[x]]>", "<R a=1/>"}) {
    rvtest::WriteFile(path, bad);
    EXPECT_EQ(tree.Load(path), 13u) << bad;
    EXPECT_EQ(tree.GetRoot(&root), 15u);
  }
  EXPECT_EQ(tree.Load(dir.file("nothing.xml")), 13u);
  EXPECT_EQ(tree.Load(dir.path().string()), 13u);  // a folder
  EXPECT_EQ(tree.Load("/dev/null"), 13u);           // a device
}

TEST(DomTree, DeepNestingIsWalkedWithoutRecursion) {
  rvtest::TempDir dir;
  std::string path = dir.file("deep.xml");
  const int depth = 200000;
  std::string xml;
  xml.reserve(depth * 8);
  for (int i = 0; i < depth; ++i) xml += "<a>";
  xml += "<b>x</b>";
  for (int i = 0; i < depth; ++i) xml += "</a>";
  rvtest::WriteFile(path, xml);
  DOMTree tree;
  ASSERT_EQ(tree.Create(), 0u);
  ASSERT_EQ(tree.Load(path), 0u);
  DOMNode root = nullptr, b = nullptr;
  ASSERT_EQ(tree.GetRoot(&root), 0u);
  int32_t count = 0;
  ASSERT_EQ(tree.CountElements(root, L"a", &count), 0u);
  EXPECT_EQ(count, depth - 1);
  ASSERT_EQ(tree.GetElementAt(root, L"b", 0, &b), 0u);
  std::wstring text;
  ASSERT_EQ(tree.GetText(root, &text), 0u);
  EXPECT_EQ(text, L"x");
}

TEST(DomTree, IndexesFollowInsertionsAndAppends) {
  DOMTree tree;
  ASSERT_EQ(tree.Create(), 0u);
  DOMNode root = nullptr, n = nullptr, box = nullptr;
  ASSERT_EQ(tree.CreateRoot(L"R", &root), 0u);
  for (const wchar_t* t : {L"0", L"1", L"2"}) ASSERT_EQ(tree.CreateChild(root, L"E", t, &n), 0u);
  auto textAt = [&](DOMNode top, int i) {
    DOMNode e = nullptr;
    std::wstring text;
    if (tree.GetElementAt(top, L"E", i, &e) != 0) return std::wstring(L"missing");
    EXPECT_EQ(tree.GetText(e, &text), 0u);
    return text;
  };
  EXPECT_EQ(textAt(root, 2), L"2");
  EXPECT_EQ(textAt(root, 1), L"1");  // backwards
  DOMNode first = nullptr;
  ASSERT_EQ(tree.GetElementAt(root, L"E", 0, &first), 0u);
  ASSERT_EQ(tree.InsertChildBefore(first, L"E", L"new", &n), 0u);
  EXPECT_EQ(textAt(root, 1), L"0");
  EXPECT_EQ(textAt(root, 0), L"new");
  // An element appended inside the walked subtree, before a remembered one.
  EXPECT_EQ(textAt(root, 3), L"2");
  ASSERT_EQ(tree.GetElementAt(root, L"E", 0, &first), 0u);
  ASSERT_EQ(tree.CreateChild(first, L"E", L"nested", &n), 0u);
  EXPECT_EQ(textAt(root, 1), L"nested");
  EXPECT_EQ(textAt(root, 4), L"2");
  // Appending to the walked node itself only adds at the end.
  ASSERT_EQ(tree.CreateChild(root, L"Box", nullptr, &box), 0u);
  ASSERT_EQ(tree.CreateChild(root, L"E", L"last", &n), 0u);
  EXPECT_EQ(textAt(root, 5), L"last");
  ASSERT_EQ(tree.CreateChild(box, L"E", L"boxed", &n), 0u);
  EXPECT_EQ(textAt(root, 5), L"boxed");
  EXPECT_EQ(textAt(root, 6), L"last");
  EXPECT_EQ(textAt(root, 7), L"missing");
  EXPECT_EQ(textAt(box, 0), L"boxed");
}

TEST(XmlAccess, CreateWritesTheRootAndVersionOfEachFamily) {
  const char* roots[] = {"TQ", "WD", "WD3", "WD3K", "BNS", "TQ2", "TQNV", "WDP", "YBNS",
                         "TQNV2", "WD22", "SOVE", "SOPI", "HWD", "TQHB", "WDZK", "WDZ", "Favorite"};
  rvtest::TempDir dir;
  for (uint16_t type = 0; type <= 19; ++type) {
    rv::CRvXMLAccess xml;
    ASSERT_EQ(xml.Create(type), 0u);
    std::string path = dir.file("f.xml");
    ASSERT_EQ(xml.Save(path), 0u);
    std::string root = std::string(type < 18 ? roots[type] : "TQ") + "CutConditionList";
    const char* version = (type == 1 || type == 2) ? "2.00" : type == 13 ? "3.00" : "1.00";
    EXPECT_EQ(rvtest::ReadFile(path),
              std::string(condtest::kDecl) + "<" + root + " version=\"" + version + "\"/>")
        << type;
    rv::CRvXMLAccess again;
    EXPECT_EQ(again.Open(type, path), 0u) << type;
    EXPECT_EQ(again.m_version, std::wstring(version, version + 4));
    int32_t count = -1;
    ASSERT_EQ(again.GetMediaCount(&count), 0u);
    EXPECT_EQ(count, 0);
  }
}

TEST(XmlAccess, WritingAtAnIndexThatHoldsAnElementPutsTheNewOneBefore) {
  rv::CRvXMLAccess xml;
  ASSERT_EQ(xml.Create(3), 0u);
  rv::CondFileRecord r;
  r.Reset();
  std::strcpy(r.Name, "M");
  std::strcpy(r.Tool, "second");
  ASSERT_EQ(xml.WriteCondition(0, 0, r), 0u);
  std::strcpy(r.Tool, "first");
  ASSERT_EQ(xml.WriteCondition(0, 1, r), 0u);  // pass 1 exists nowhere yet: appended
  std::strcpy(r.Tool, "zero");
  ASSERT_EQ(xml.WriteCondition(0, 1, r), 0u);  // before the pass at 1
  int32_t passes = 0;
  ASSERT_EQ(xml.GetPassCount(0, &passes), 0u);
  ASSERT_EQ(passes, 3);
  const char* order[] = {"second", "zero", "first"};
  for (int j = 0; j < 3; ++j) {
    rv::CondFileRecord got;
    got.Reset();
    ASSERT_EQ(xml.ReadCondition(0, j, &got), 0u);
    EXPECT_STREQ(got.Tool, order[j]);
    EXPECT_STREQ(got.Name, "M");
    EXPECT_EQ(got.Rpm, -1);
    EXPECT_EQ(got.Milling, -1.0);
    EXPECT_EQ(got.DivideCut.minLength, 30.0);  // milling roots get the default
  }
  rv::CondFileRecord missing;
  missing.Reset();
  EXPECT_EQ(xml.ReadCondition(0, 3, &missing), 15u);
  EXPECT_EQ(xml.ReadCondition(1, 0, &missing), 15u);
  EXPECT_EQ(xml.GetPassCount(1, &passes), 15u);
}

}  // namespace
