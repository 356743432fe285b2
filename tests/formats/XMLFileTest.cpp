// The XML file: what it reads (entities, attributes, nesting, the odd forms
// files depend on), the exact text it writes, the cursor, hostile input, and
// xmllint's verdict on what it writes.
#include <gtest/gtest.h>

#include <string>

#include "TreeTestSupport.h"
#include "qv/formats/tagged/XMLFile.h"

using namespace qv;
using namespace qv::treetest;
using CNode = CXMLFile::CNode;

namespace {

bool LoadText(CXMLFile &xml, std::string const &text) {
    CMemFile f;
    Fill(f, text);
    return xml.Load(&f);
}

std::string SaveText(CXMLFile &xml) {
    CMemFile f;
    Fill(f, "");
    EXPECT_TRUE(xml.Save(&f));
    return Bytes(f);
}

// The tree as text: type, name, attributes, value, children, one per line.
void Describe(CNode *n, std::string &out, int depth) {
    for (; n; n = n->next) {
        out += std::string(size_t(depth), ' ') + std::to_string(int(n->type)) + ":" + Narrow(n->GetName());
        for (uint32_t i = 0; i < n->attributes.nItems(); ++i)
            out += " " + Narrow(n->attributes[i].name.GetUTF16()) + "=[" + Narrow(n->attributes[i].value.GetUTF16()) +
                   "]";
        out += " {" + Narrow(n->GetValue()) + "}\n";
        Describe(n->firstChild, out, depth + 1);
    }
}

std::string Describe(CXMLFile &xml) {
    std::string out;
    xml.Root();
    Describe(xml.GetCurr(), out, 0);
    return out;
}

} // namespace

TEST(XMLRead, ElementsAttributesAndValues) {
    CXMLFile xml;
    ASSERT_TRUE(LoadText(xml, "<?xml version=\"1.0\"?>\n<a x=\"1\" y='two'>\n  <b>text</b>\n  <c/>\n</a>"));
    // The cursor stands on the last top-level node read.
    EXPECT_EQ(Narrow(xml.Curr().GetName()), "a");
    EXPECT_EQ(Describe(xml), "1:xml version=[1.0] {}\n0:a x=[1] y=[two] {}\n 0:b {text}\n 0:c {}\n");
}

TEST(XMLRead, RequiredOddForms) {
    CXMLFile xml;
    ASSERT_TRUE(LoadText(xml, "<a b=c></A>"));
    EXPECT_EQ(Describe(xml), "0:a b=[c] {}\n");
    ASSERT_TRUE(LoadText(xml, "<a>&AMP;&lt;&unknown;&#233;&#10;&#13;&quot;&apos;&gt;</a>"));
    EXPECT_EQ(Narrow(xml.GetValue()), "&<&unknown;&#233;\n\r\"'>");
    // Text on both sides of a child is joined; leading white space dropped.
    ASSERT_TRUE(LoadText(xml, "<a>  one <b/> two  </a>"));
    EXPECT_EQ(Narrow(xml.GetValue()), "one two  ");
    ASSERT_TRUE(LoadText(xml, "<a/>"));
    EXPECT_EQ(Describe(xml), "0:a {}\n");
    ASSERT_TRUE(LoadText(xml, "<a />"));
    EXPECT_EQ(Describe(xml), "0:a {}\n");
    // Duplicates are kept; lookup finds the first.
    ASSERT_TRUE(LoadText(xml, "<a k=\"1\" K=\"2\"/>"));
    EXPECT_EQ(xml.Curr().attributes.nItems(), 2u);
    EXPECT_EQ(Narrow(xml.GetAttribute(u"k")), "1");
    EXPECT_EQ(Narrow(xml.GetAttribute(u"missing", u"dflt")), "dflt");
}

TEST(XMLRead, CommentsAndInstructionsAreNodes) {
    CXMLFile xml;
    ASSERT_TRUE(LoadText(xml, "<!-- top -- x --->\n<a><!--in--><?pi k=\"v\"?></a>\n"));
    EXPECT_EQ(Describe(xml), "3: { top -- x -}\n0:a {}\n 3: {in}\n 1:pi k=[v] {}\n");
}

TEST(XMLRead, KeepTextMakesTextNodes) {
    CXMLFile xml;
    xml.keepText = true;
    ASSERT_TRUE(LoadText(xml, "<a>one<b/>two</a>"));
    EXPECT_EQ(Describe(xml), "0:a {onetwo}\n 2: {one}\n 0:b {}\n 2: {two}\n");
}

TEST(XMLRead, ByteOrderMarkChangesNothing) {
    CXMLFile with, without;
    ASSERT_TRUE(LoadText(with, "\xEF\xBB\xBF<a>x</a>"));
    ASSERT_TRUE(LoadText(without, "<a>x</a>"));
    EXPECT_EQ(Describe(with), Describe(without));
}

TEST(XMLRead, TrailingWhiteSpaceAfterAnyNodeIsAccepted) {
    CXMLFile xml;
    EXPECT_TRUE(LoadText(xml, "<a />\r\n"));
    EXPECT_TRUE(LoadText(xml, "<!--c-->\n\n"));
    EXPECT_TRUE(LoadText(xml, ""));
    EXPECT_FALSE(xml.IsValid());
}

TEST(XMLRead, MalformedTextFailsAndLeavesNoTree) {
    char const *bad[] = {
        "<a>",                  // unclosed
        "<a></b>",              // mismatched
        "<a><b></a>",           // inner unclosed
        "<a x=\"1></a>",        // open quote
        "<a x></a>",            // no '='
        "text",                 // not a tag
        "<a>1 > 2</a>",         // bare '>'
        "<a><![CDATA[x]]></a>", // no CDATA
        "<!DOCTYPE a><a/>",     // no DOCTYPE
        "<!-- never ends",
        "<",
        "<a",
        "<a/><",
    };
    for (char const *text : bad) {
        CXMLFile xml;
        EXPECT_FALSE(LoadText(xml, text)) << text;
        EXPECT_FALSE(xml.Root()) << text;
    }
}

TEST(XMLRead, HundredThousandDeepLoadsWithoutRecursion) {
    std::string text;
    int const depth = 100000;
    for (int i = 0; i < depth; ++i) text += "<n>";
    for (int i = 0; i < depth; ++i) text += "</n>";
    CXMLFile xml;
    ASSERT_TRUE(LoadText(xml, text));
    int levels = 0;
    for (CNode *n = xml.GetCurr(); n; n = n->firstChild) ++levels;
    EXPECT_EQ(levels, depth);
    CNode *copy = xml.GetCurr()->Duplicate();
    delete copy;
    // Unclosed at that depth fails the same way.
    EXPECT_FALSE(LoadText(xml, text.substr(0, text.size() - 4)));
}

TEST(XMLWrite, DeepTreesWriteWithoutRecursion) {
    // Indentation grows with depth, so the written text grows with its
    // square: a few thousand levels prove the walk.
    std::string text;
    int const depth = 3000;
    for (int i = 0; i < depth; ++i) text += "<n>";
    for (int i = 0; i < depth; ++i) text += "</n>";
    CXMLFile xml, again;
    ASSERT_TRUE(LoadText(xml, text));
    std::string written = SaveText(xml);
    EXPECT_EQ(written.substr(0, 11), "<n>\r\n\t<n>\r\n");
    ASSERT_TRUE(LoadText(again, written));
    EXPECT_EQ(SaveText(again), written);
}

TEST(XMLRead, LoadLeavesTheFileAtItsEnd) {
    CMemFile f;
    Fill(f, "<a/>\n");
    CXMLFile xml;
    ASSERT_TRUE(xml.Load(&f));
    EXPECT_EQ(f.GetPosition(), 5);
}

TEST(XMLWrite, ExactText) {
    CXMLFile xml;
    TArray<SNameValuePair> decl;
    decl.Add({CString(u"version"), CString(u"1.0")});
    decl.Add({CString(u"encoding"), CString(u"UTF-8")});
    xml.Insert(new CNode(CNode::PROCESSING_INSTRUCTION, u"xml", decl), false);
    xml.Insert(new CNode(u"root"), false);
    xml.InsertChild(new CNode(u"leaf", u"a<b & \"c\" 'd'\nline"), false);
    CNode *attributed = new CNode(u"item");
    attributed->attributes[u"text"] = u"x\r\ny<>&";
    xml.Insert(attributed, false);
    xml.Insert(new CNode(u"empty"), false);
    EXPECT_EQ(SaveText(xml), "<?xml version=\"1.0\" encoding=\"UTF-8\" ?>\r\n"
                             "<root>\r\n"
                             "\t<leaf>a&lt;b &amp; &quot;c&quot; &apos;d&apos;\nline</leaf>\r\n"
                             "\t<item text=\"x&#13;&#10;y&lt;&gt;&amp;\" />\r\n"
                             "\t<empty />\r\n"
                             "</root>\r\n");
}

TEST(XMLWrite, ValueBesideChildrenGoesOnItsOwnIndentedLine) {
    CXMLFile xml;
    xml.Insert(new CNode(u"a"), false);
    xml.InsertChild(new CNode(u"b", u"v"), false);
    xml.InsertChild(new CNode(u"c"), false);
    EXPECT_EQ(SaveText(xml), "<a>\r\n\t<b>\r\n\tv\r\n\t\t<c />\r\n\t</b>\r\n</a>\r\n");
}

TEST(XMLWrite, CommentsGoOutAsElementsWithoutAName) {
    CXMLFile xml;
    CNode *comment = new CNode(CNode::COMMENT, u"");
    comment->value = u"note";
    xml.Insert(comment, false);
    EXPECT_EQ(SaveText(xml), "<>note</>\r\n");
}

TEST(XMLWrite, RoundTripKeepsTheTree) {
    CXMLFile xml;
    ASSERT_TRUE(LoadText(xml, ReadAll(DataPath("xml/editor_bom.xml"))));
    std::string first = Describe(xml);
    std::string text = SaveText(xml);
    CXMLFile again;
    ASSERT_TRUE(LoadText(again, text));
    // The comment comes back as an element without a name (see the header),
    // its leading blank dropped as in any element's text.
    std::string expected = first;
    std::string comment = "3: { settings";
    expected.replace(expected.find(comment), comment.size(), "0: {settings");
    EXPECT_EQ(Describe(again), expected);
    text.replace(text.find("<> settings"), 11, "<>settings");
    EXPECT_EQ(SaveText(again), text);
}

TEST(XMLWrite, ShortWriteFails) {
    CMemFile f;
    f.SetGrow(false); // a full memory file: writes fall short
    CXMLFile xml;
    xml.Insert(new CNode(u"a", u"value"), false);
    EXPECT_FALSE(xml.Save(&f));
}

TEST(XMLCursor, MovesInsertsAndDetaches) {
    CXMLFile xml;
    EXPECT_EQ(&xml.Curr(), &xml.Curr()); // a static empty node when there is none
    EXPECT_FALSE(xml.Next());
    ASSERT_TRUE(xml.Insert(new CNode(u"root"), false));
    ASSERT_TRUE(xml.InsertChild(new CNode(u"only"), false));
    CNode *only = xml.Detatch();
    ASSERT_NE(only, nullptr);
    EXPECT_EQ(Narrow(xml.Curr().GetName()), "root"); // on the parent, at its empty child list
    EXPECT_EQ(xml.Detatch(), nullptr);
    ASSERT_TRUE(xml.Insert(only, false)); // back as the first child
    EXPECT_EQ(xml.GetCurr()->parent, xml.GetCurr()->Root());
    EXPECT_EQ(Narrow(xml.GetCurr()->Root()->GetName()), "root");
    ASSERT_TRUE(xml.Insert(new CNode(u"second"), false));
    ASSERT_TRUE(xml.Insert(new CNode(u"first"), true));
    EXPECT_EQ(xml.NumPeers(), 3u);
    ASSERT_TRUE(xml.First());
    EXPECT_EQ(Narrow(xml.Curr().GetName()), "only");
    ASSERT_TRUE(xml.FindNext(u"SECOND"));
    EXPECT_TRUE(xml.Remove()); // the last child: the parent's last link moves back
    EXPECT_EQ(Narrow(xml.Curr().GetName()), "first");
    EXPECT_EQ(Narrow(xml.Curr().parent->lastChild->GetName()), "first");
    ASSERT_TRUE(xml.Parent());
    EXPECT_TRUE(xml.FindFirstChild(u"Only"));
    ASSERT_TRUE(xml.Parent());
    EXPECT_FALSE(xml.FindFirstChild(u"none"));
    EXPECT_EQ(Narrow(xml.Curr().GetName()), "root");
    EXPECT_EQ(xml.Curr().NumChildren(), 2u);
    EXPECT_EQ(CNode::GetValue(CNode::FindChild(CNode::Find(xml.GetCurr(), u"nope"), u"x")), std::u16string());
}

TEST(XMLNode, DuplicateIsDeepAndUnlinked) {
    CXMLFile xml;
    ASSERT_TRUE(LoadText(xml, "<a k=\"v\"><b>1</b><c><d/></c></a>"));
    CNode *copy = xml.GetCurr()->Duplicate();
    CXMLFile other;
    other.Insert(copy, false);
    EXPECT_EQ(Describe(other), Describe(xml));
    EXPECT_EQ(copy->next, nullptr);
    EXPECT_NE(copy->firstChild, xml.GetCurr()->firstChild);
}

TEST(XMLOutside, HandWrittenFilesReadAsDesigned) {
    CXMLFile xml;
    ASSERT_TRUE(LoadText(xml, ReadAll(DataPath("xml/editor_bom.xml"))));
    EXPECT_EQ(Describe(xml), "1:xml version=[1.0] encoding=[UTF-8] {}\n"
                             "3: { settings written by a text editor }\n"
                             "0:settings version=[2] {}\n"
                             " 0:camera name=[M&#252;nchen & K&ouml;ln] model=[IR-640] {}\n"
                             "  0:lens focal=[25] {wide <angle> &#x41;}\n"
                             "  0:note {caf\xc3\xa9 \xe2\x82\xac 5}\n"
                             " 1:app-hint mode=[keep] {}\n"
                             " 0:empty {}\n");
    ASSERT_TRUE(LoadText(xml, ReadAll(DataPath("xml/mixed.xml"))));
    EXPECT_EQ(Describe(xml), "0:root {}\n"
                             " 3: { a comment -- with dashes -}\n"
                             " 0:item id=[1] label=[line\nbreak] {}\n"
                             " 0:item id=[2] {text tail}\n"
                             "  0:b {bold}\n");
    EXPECT_FALSE(LoadText(xml, ReadAll(DataPath("xml/cdata.xml"))));
    EXPECT_FALSE(LoadText(xml, ReadAll(DataPath("xml/doctype.xml"))));
}

TEST(XMLOutside, XmllintFindsWhatWeWriteWellFormed) {
    if (!HaveTool("xmllint")) GTEST_SKIP() << "xmllint is not installed";
    saftest::ScratchDir dir;
    CXMLFile xml;
    ASSERT_TRUE(LoadText(xml, "<?xml version=\"1.0\" encoding=\"UTF-8\"?><cfg a=\"q&quot;&apos;&lt;&gt;&amp;&#10;\">"
                              "<k>v &amp; &lt;w&gt; \xc3\xa9\xe2\x82\xac</k><e/><?pi x=\"1\"?></cfg>"));
    std::string path = dir.Path("out.xml");
    ASSERT_TRUE(xml.Save(Wide(path).c_str()));
    EXPECT_EQ(std::system(("xmllint --noout " + path).c_str()), 0);
    CXMLFile back;
    ASSERT_TRUE(back.Load(Wide(path).c_str()));
    EXPECT_EQ(Describe(back), Describe(xml));
}

TEST(XMLByPath, MissingFileFailsAndSaveReplacesWhole) {
    saftest::ScratchDir dir;
    CXMLFile xml;
    EXPECT_FALSE(xml.Load(Wide(dir.Path("none.xml")).c_str()));
    xml.Insert(new CNode(u"a", u"1"), false);
    std::string path = dir.Path("a.xml");
    WriteAll(path, "old content that is longer than the new one");
    ASSERT_TRUE(xml.Save(Wide(path).c_str()));
    EXPECT_EQ(ReadAll(path), "<a>1</a>\r\n");
}
