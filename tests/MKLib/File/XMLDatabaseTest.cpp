#include "MKLib/File/XMLDatabase.h"

#include "MKLib/File/File.h"
#include "MKLib/File/RAMFile.h"
#include "common/Reports.h"
#include "common/TempFiles.h"

#include <gtest/gtest.h>
#include <unistd.h>

using namespace MKTest;

namespace
{

/// Depth-first, each element as name[attribute Id](value){children}.
std::string Walk(XMLDatabase &xml)
{
    MK::String key, value, id;
    EXPECT_EQ(xml.Get_Key(&key), S_OK);
    EXPECT_EQ(xml.Get_Value(&value), S_OK);
    std::string text(key);
    if (xml.Get_Attribute("Id", &id) == S_OK) text.append("[").append(id).append("]");
    if (!value.empty()) text.append("(").append(value).append(")");
    if (!xml.Enter_First_Child()) return text;
    text.append("{").append(Walk(xml));
    while (xml.Next_Sibling()) text.append(" ").append(Walk(xml));
    EXPECT_TRUE(xml.Leave());
    return text.append("}");
}

std::string Nested(int depth)
{
    std::string text;
    for (int i = 0; i < depth; ++i) text += "<a>";
    for (int i = 0; i < depth; ++i) text += "</a>";
    return text;
}

} // namespace

TEST(XMLDatabase, WalksWhatItAccepts)
{
    const std::pair<const char *, const char *> cases[] = {
        {"<ChunkFile>\n\t<Chunk Name=\"x\" Id=\"12\">\n\t\t<Int32>7</Int32>\n\t</Chunk>\n\t<B/>\n</ChunkFile>",
         "ChunkFile{Chunk[12]{Int32(7)} B}"},
        {"\xef\xbb\xbf<?xml version=\"1.0\" encoding=\"utf-8\" ?><a>\xc3\xa4</a>", "a(\xc3\xa4)"},
        {"<a>\xff\x80</a>", "a(\xff\x80)"},
        {"<a Id=\"&lt;&#65;\">&amp;&quot;&#x42;</a>", "a[<A](&\"B)"},
        {"<a>&bomb;</a>", "a(&bomb;)"},
        {"<a>x<!-- <b> --><![CDATA[<y>&#0;]]></a><!-- end -->", "a(x<y>&#0;)"},
        {"<a>1\r\n2</a>", "a(1\n2)"},
        {"<a Id='>'><b/></a>", "a[>]{b}"},
        {"<a>&#048;&#x041;</a>", "a(0A)"},
    };
    for (const auto &[text, walk] : cases) {
        XMLDatabase xml;
        ASSERT_TRUE(xml.Load_Text(text, "test")) << text;
        EXPECT_EQ(Walk(xml), walk);
        EXPECT_EQ(xml.Get_Depth(), 1) << text;
    }
}

TEST(XMLDatabase, RefusalsNameTheFileTheReasonAndTheByte)
{
    const std::string bomb =
        "<?xml version=\"1.0\"?><!DOCTYPE b [<!ENTITY a \"aaaa\"><!ENTITY b \"&a;&a;\">]><b>&b;</b>";
    const std::pair<std::string, const char *> cases[] = {
        {"<!-- x -->", "it has no root element (at byte 10)"},
        {"CH\x02", "text stands outside of the root element (at byte 0)"},
        {"<a/><b/>", "more than one root element (at byte 4)"},
        {bomb, "document type declarations are refused (at byte 21)"},
        {std::string("<a>\0</a>", 8), "it holds a NUL (at byte 3)"},
        {"<a>&#0;</a>", "it refers to the character NUL (at byte 3)"},
        {"<?xml version='1.0' encoding='latin1'?><a/>", "neither UTF-8 nor US-ASCII (at byte 29)"},
        {Nested(XMLDatabase::MAX_DEPTH + 1), "nested too deeply (at byte 3072)"},
        {"<a><!-- </a>", "a comment has no end (at byte 3)"},
        {"<a><![CDATA[ </a>", "a CDATA section has no end (at byte 3)"},
        {"<a b='>", "a tag has no end (at byte 0)"},
        {"<a><b></a></b>", "Start-end tags mismatch"},
    };
    for (const auto &[text, log] : cases) {
        Reports reports;
        XMLDatabase xml;
        EXPECT_FALSE(xml.Load_Text(text, "hostile.xml") || xml.Is_Loaded()) << log;
        EXPECT_TRUE(reports.Has_Log("hostile.xml is refused: ") && reports.Has_Log(log)) << reports.Get_Text();
    }
    XMLDatabase xml;
    EXPECT_TRUE(xml.Load_Text(Nested(XMLDatabase::MAX_DEPTH), "deep.xml"));
}

TEST(XMLDatabase, WithoutADocumentThereIsNothing)
{
    Reports reports;
    XMLDatabase xml;
    ASSERT_TRUE(xml.Load_Text("<a><b>1</b></a>", "x"));
    ASSERT_TRUE(xml.Enter_First_Child());
    EXPECT_FALSE(xml.Load_Text("", "x")); // and drops the one before
    MK::String text = "kept";
    EXPECT_TRUE(xml.Get_Key(&text) == S_MISSING && xml.Get_Attribute("a", &text) == S_MISSING);
    EXPECT_EQ(std::string_view(text), "kept");
    EXPECT_FALSE(xml.Enter_First_Child() || xml.Next_Sibling() || xml.Leave());
}

TEST(XMLDatabase, LoadsFromFilesFromTheirPositionUpToALimit)
{
    Reports reports;
    const TempDirectory directory;
    XMLDatabase xml;
    EXPECT_TRUE(xml.Load(directory.Write("List.xml", "<a>disk</a>")));
    EXPECT_EQ(Walk(xml), "a(disk)");
    EXPECT_FALSE(xml.Load(directory / "none.xml"));

    RAMFileClass file("junk<a>ram</a>", 14);
    ASSERT_TRUE(file.Open(MKPlatform::FILE_OPEN_GENERIC_READ));
    file.Seek(4, MKPlatform::FILE_SEEK_BEGIN);
    EXPECT_TRUE(xml.Load(file));
    EXPECT_EQ(Walk(xml), "a(ram)");

    const std::string path = directory.Write("huge.xml", "<a/>");
    ASSERT_EQ(truncate(path.c_str(), XMLDatabase::MAX_SIZE + 1), 0);
    EXPECT_FALSE(xml.Load(path));
    EXPECT_TRUE(reports.Has_Log(path + " is refused: it is too large"));
}
