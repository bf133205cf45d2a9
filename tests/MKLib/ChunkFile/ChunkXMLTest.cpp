#include "MKLib/ChunkFile/ChunkTestFiles.h"

#include "common/Reports.h"

#include <gtest/gtest.h>

#include <limits>

using namespace MKTest;
using namespace ChunkFile;

namespace
{

std::string Text_Of(const Bytes &bytes)
{
    return std::string(bytes.begin(), bytes.end());
}

/// An XML file around these elements.
Bytes XML_File(const std::string &body)
{
    const std::string text = "<ChunkFile><Header><UserData>0, 0</UserData></Header>" + body + "</ChunkFile>";
    return Bytes(text.begin(), text.end());
}

/// What one value element becomes in a leaf: its tag and its bytes.
Bytes Payload_Of(const std::string &element)
{
    MemoryReader reader(XML_File("<Chunk Id=\"1\">" + element + "</Chunk>"));
    if (!reader->Open_Chunk()) return {};
    Bytes payload(reader->Cur_Chunk_Length());
    return reader->Read_Bytes(payload.data(), reader->Cur_Chunk_Length()) ? payload : Bytes();
}

std::string Repeated(const std::string &text, int count)
{
    std::string all;
    for (int i = 0; i < count; ++i) all += text;
    return all;
}

} // namespace

TEST(ChunkXML, WritesTheDocumentLineByLine)
{
    const Bytes file = Written(COMPRESSION_XML, [](ChunkFileWriterClass &writer) {
        const float nine[9] = {1, 0, 0, 0, 1, 0, 0, 0, 1};
        writer.Set_User_Int32(1, 0xffffffff);
        writer.Open_Chunk("A \"<&>\n", 7);
        writer.Open_Chunk(0xffffffff);
        writer.Open_Micro_Chunk("Life", 3);
        writer.Write_Float(-1.5f);
        writer.Write_Float(std::numeric_limits<float>::quiet_NaN());
        writer.Close_Micro_Chunk();
        writer.Open_Micro_Chunk(4);
        writer.Close_Micro_Chunk();
        writer.Write_Int8(-5);
        writer.Write_UInt8(250);
        writer.Write_UInt64(18446744073709551615ull);
        writer.Write_Bool(true);
        writer.Write_String("a<b>&\"c\"\r");
        writer.Write_String("\x01");
        writer.Write_Vector2({0.1f, 1e-9f});
        writer.Write_Vector3i({1, -2, 3});
        writer.Write_Pointer(0xabc);
        writer.Write_Raw_Bytes("\x0a\xff", 2);
        writer.Write_Bit_Stream(reinterpret_cast<const uint8_t *>("\x0a\xff"), 16, 9);
        writer.Write_Flags(129);
        writer.Write_Time(12);
        writer.Write_Matrix3(nine);
        writer.Close_Chunk();
        writer.Close_Chunk();
    });
    EXPECT_EQ(Text_Of(file), "<?xml version=\"1.0\" encoding=\"UTF-8\" ?>\n"
                             "<ChunkFile>\n"
                             "\t<Header>\n"
                             "\t\t<UserData>0, -1</UserData>\n"
                             "\t</Header>\n"
                             "\t<Chunk Name=\"A &quot;&lt;&amp;&gt;&#10;\" Id=\"7\">\n"
                             "\t\t<Chunk Name=\"4294967295\" Id=\"-1\">\n"
                             "\t\t\t<MicroChunk Name=\"Life\" Id=\"3\">\n"
                             "\t\t\t\t<Float>-1.500000</Float>\n"
                             "\t\t\t\t<Float>nan</Float>\n"
                             "\t\t\t</MicroChunk>\n"
                             "\t\t\t<MicroChunk Name=\"4\" Id=\"4\">\n"
                             "\t\t\t</MicroChunk>\n"
                             "\t\t\t<Int8>-5</Int8>\n"
                             "\t\t\t<Int8>250</Int8>\n"
                             "\t\t\t<Int64>18446744073709551615</Int64>\n"
                             "\t\t\t<Bool>true</Bool>\n"
                             "\t\t\t<String>a&lt;b&gt;&amp;\"c\"&#13;</String>\n"
                             "\t\t\t<String>\xef\x80\x81</String>\n"
                             "\t\t\t<Vector2>0.100000 0.000000</Vector2>\n"
                             "\t\t\t<Vector3i>1 -2 3</Vector3i>\n"
                             "\t\t\t<Pointer>00000ABC</Pointer>\n"
                             "\t\t\t<Raw>0AFF</Raw>\n"
                             "\t\t\t<BitStream>0aff</BitStream>\n"
                             "\t\t\t<Flags>129</Flags>\n"
                             "\t\t\t<Time>12</Time>\n"
                             "\t\t\t<Unknown>1.000000 0.000000 0.000000 0.000000 1.000000 0.000000 0.000000 0.000000 "
                             "1.000000</Unknown>\n"
                             "\t\t</Chunk>\n"
                             "\t</Chunk>\n"
                             "</ChunkFile>\n");
}

TEST(ChunkXML, TurnsHandWrittenElementsIntoTaggedBytes)
{
    const struct
    {
        const char *element;
        Bytes payload;
    } rows[] = {
        {"<Int8>-1</Int8>", {0x20, 0xff}},
        {"<Int16> +258\n</Int16>", {0x21, 2, 1}},
        {"<Float>1.5</Float>", {0x24, 0, 0, 0xc0, 0x3f}},
        {"<Float>1e60</Float>", {0x24, 0, 0, 0x80, 0x7f}},
        {"<Float>-1e-60</Float>", {0x24, 0, 0, 0, 0x80}},
        {"<Bool>TRUE</Bool>", {0x27, 1}},
        {"<Bool>yes</Bool>", {0x27, 0}},
        {"<String/>", {0x25, 0, 0}},
        {"<String>  </String>", {0x25, 2, 0, ' ', ' '}},
        {"<String>&#65;&#xe9;</String>", {0x25, 3, 0, 'A', 0xc3, 0xa9}},
        {"<Wstring>A\xc3\xa9</Wstring>", {0x26, 2, 0, 'A', 0, 0xe9, 0}},
        {"<Vector2i>1\t-1</Vector2i>", {0x30, 1, 0, 0, 0, 0xff, 0xff, 0xff, 0xff}},
        {"<Pointer>1f</Pointer>", {0x2e, 0x1f, 0, 0, 0}},
        {"<Raw>0aFf</Raw>", {0x35, 2, 0, 0, 0, 0x0a, 0xff}},
        {"<BitStream>a5</BitStream>", {0x2d, 1, 0, 0, 0, 0xa5}},
        {"<MicroChunk Id=\"9\"><Int8>1</Int8><Flags>2</Flags></MicroChunk>", {0x33, 9, 4, 0x20, 1, 0x34, 2}},
        {"<!-- a note --><Int8>1</Int8><?tool?>", {0x20, 1}},
        {"<Time>12</Time><Unknown>1</Unknown><Other><Int8>2</Int8></Other><Int8>1</Int8>", {0x20, 1}},
    };
    Reports reports;
    for (const auto &row : rows) EXPECT_EQ(Payload_Of(row.element), row.payload) << row.element;
}

TEST(ChunkXML, RefusesWhatCannotBecomeAChunkFile)
{
    const std::string deep = Repeated("<Chunk Id=\"1\">", 2000) + Repeated("</Chunk>", 2000);
    const struct
    {
        const char *what;
        std::string body;
        const char *report;
    } rows[] = {
        {"a chunk without an id", "<Chunk/>", "has no Id that is a number"},
        {"an id above 32 bits", "<Chunk Id=\"4294967296\"/>", "has no Id that is a number"},
        {"a value in no chunk", "<Int8>1</Int8>", "stands in no chunk"},
        {"a value beside a chunk", "<Chunk Id=\"1\"><Chunk Id=\"2\"/><Int8>1</Int8></Chunk>", "stands beside chunks"},
        {"a chunk beside a value", "<Chunk Id=\"1\"><Int8>1</Int8><Chunk Id=\"2\"/></Chunk>", "stands beside values"},
        {"a microchunk's id of 256", "<Chunk Id=\"1\"><MicroChunk Id=\"256\"/></Chunk>", "has an Id above 255"},
        {"a microchunk in another", "<Chunk Id=\"1\"><MicroChunk Id=\"1\"><MicroChunk Id=\"1\"/></MicroChunk></Chunk>",
         "stands in a microchunk"},
        {"a microchunk of 256 bytes",
         "<Chunk Id=\"1\"><MicroChunk Id=\"1\">" + Repeated("<Int8>1</Int8>", 128) + "</MicroChunk></Chunk>",
         "makes its microchunk too long"},
        {"a number missing", "<Chunk Id=\"1\"><Vector3>1 2</Vector3></Chunk>", "has a value that is not of its type"},
        {"a comma for a point", "<Chunk Id=\"1\"><Float>1,5</Float></Chunk>", "has a value that is not of its type"},
        {"a byte of -129", "<Chunk Id=\"1\"><Int8>-129</Int8></Chunk>", "has a value that is not of its type"},
        {"half a byte", "<Chunk Id=\"1\"><Raw>0AF</Raw></Chunk>", "assert value.length() % 2 == 0"},
        {"no hexadecimal digits", "<Chunk Id=\"1\"><Raw>0x</Raw></Chunk>", "has a value that is not of its type"},
        {"a string of 65536 bytes", "<Chunk Id=\"1\"><String>" + std::string(65536, 'x') + "</String></Chunk>",
         "assert value.length() < 65536"},
        {"nesting without end", deep, "Could not read chunk file header"},
        {"an entity bomb", "<!DOCTYPE x [<!ENTITY a \"b\">]>&a;", "Could not read chunk file header"},
        {"a tag that does not close", "<Chunk Id=\"1\">", "Could not read chunk file header"},
    };
    for (const auto &row : rows) {
        Reports reports;
        MemoryReader reader(XML_File(row.body));
        EXPECT_FALSE(reader->Is_Initialized()) << row.what;
        EXPECT_NE(reports.Get_Text().find(row.report), std::string::npos) << row.what << "\n" << reports.Get_Text();
        const bool isParsed = std::string(row.report).find("Could not") == std::string::npos;
        EXPECT_EQ(reports.Has_Log("ChunkFile: XML parse error in "), isParsed) << row.what;
        EXPECT_FALSE(reader->Open_Chunk());
    }
}

TEST(ChunkXML, ReadsTheHeader)
{
    const struct
    {
        const char *header;
        bool reads;
        uint32_t first;
    } rows[] = {
        {"<Header><UserData>12, -3</UserData></Header>", true, 12},
        {"<Header><Note/><UserData> 12 ,\n-3 </UserData></Header>", true, 12},
        {"<Header><UserData>12</UserData></Header>", false, 0},
        {"<Header><UserData>a, b</UserData></Header>", false, 0},
        {"<Chunk Id=\"1\"/><Header/>", false, 0},
    };
    for (const auto &row : rows) {
        Reports reports;
        const std::string text = std::string("<ChunkFile>") + row.header + "</ChunkFile>";
        MemoryReader reader(Bytes(text.begin(), text.end()));
        EXPECT_EQ(reader->Is_Initialized(), row.reads) << row.header;
        if (row.reads) {
            EXPECT_EQ(reader->Get_User_Int32(0), row.first) << row.header;
            EXPECT_EQ(reader->Get_Header().Mode, 0x22);
            EXPECT_TRUE(reports.Has_Log(" is an XML file"));
        } else {
            EXPECT_TRUE(reports.Has_Log("ChunkFileReader::Read_Header -- XML Parse Error in ")) << row.header;
        }
    }
}

TEST(ChunkXML, GivesTheDepthMessageForXMLThatIsNestedTooDeeply)
{
    Reports reports;
    MemoryReader reader(XML_File(Repeated("<Chunk Id=\"1\">", 300) + Repeated("</Chunk>", 300)));
    ASSERT_TRUE(reader->Open_Chunk());
    EXPECT_FALSE(reader->Close_Chunk());
    EXPECT_TRUE(reports.Has_Log("Open_Chunk exceeded maximum chunk depth."));
    EXPECT_FALSE(reader->Open_Chunk());
}
