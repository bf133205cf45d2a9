#include "MKLib/ChunkFile/ChunkTestFiles.h"

#include "common/Reports.h"

#include <gtest/gtest.h>

#include <limits>

using namespace MKTest;
using namespace ChunkFile;

namespace
{

/// An XML file around these elements.
Bytes XML_File(const std::string &body, const char *header = "<Header><UserData>0, 0</UserData></Header>")
{
    return ByteList().Text("<ChunkFile>").Text(header).Text(body).Text("</ChunkFile>").Get();
}

/// What one value element becomes in a leaf: its tag and its bytes.
Bytes Payload_Of(const std::string &element)
{
    MemoryReader reader(XML_File("<Chunk Id=\"1\">" + element + "</Chunk>"));
    if (!reader->Open_Chunk()) return {};
    Bytes payload(reader->Cur_Chunk_Length());
    return reader->Read_Bytes(payload.data(), reader->Cur_Chunk_Length()) ? payload : Bytes();
}

std::string Repeated(std::string_view text, int count)
{
    std::string all;
    for (int i = 0; i < count; ++i) all += text;
    return all;
}

} // namespace

TEST(ChunkXML, WritesTheDocumentLineByLine)
{
    const Bytes file = Written(COMPRESSION_XML, [](ChunkFileWriterClass &writer) {
        writer.Open_Chunk("A \"<&>\n", 7);
        writer.Open_Chunk(0xffffffff);
        writer.Open_Micro_Chunk("Life", 3);
        writer.Write_Float(-1.5f);
        writer.Write_Float(std::numeric_limits<float>::quiet_NaN());
        writer.Close_Micro_Chunk();
        writer.Open_Micro_Chunk(4);
        writer.Close_Micro_Chunk();
        writer.Write_UInt8(250);
        writer.Write_Bool(true);
        writer.Write_String("a<b>&\"c\"\r");
        writer.Write_String("\x01");
        writer.Write_Vector2({0.1f, 1e-9f});
        writer.Write_Pointer(0xabc);
        writer.Write_Raw_Bytes("\x0a\xff", 2);
        writer.Write_Bit_Stream(reinterpret_cast<const uint8_t *>("\x0a\xff"), 16, 9);
        writer.Close_Chunk();
        writer.Close_Chunk();
    });
    EXPECT_EQ(std::string(file.begin(), file.end()), "<?xml version=\"1.0\" encoding=\"UTF-8\" ?>\n"
                                                     "<ChunkFile>\n"
                                                     "\t<Header>\n"
                                                     "\t\t<UserData>0, 0</UserData>\n"
                                                     "\t</Header>\n"
                                                     "\t<Chunk Name=\"A &quot;&lt;&amp;&gt;&#10;\" Id=\"7\">\n"
                                                     "\t\t<Chunk Name=\"4294967295\" Id=\"-1\">\n"
                                                     "\t\t\t<MicroChunk Name=\"Life\" Id=\"3\">\n"
                                                     "\t\t\t\t<Float>-1.500000</Float>\n"
                                                     "\t\t\t\t<Float>nan</Float>\n"
                                                     "\t\t\t</MicroChunk>\n"
                                                     "\t\t\t<MicroChunk Name=\"4\" Id=\"4\">\n"
                                                     "\t\t\t</MicroChunk>\n"
                                                     "\t\t\t<Int8>250</Int8>\n"
                                                     "\t\t\t<Bool>true</Bool>\n"
                                                     "\t\t\t<String>a&lt;b&gt;&amp;\"c\"&#13;</String>\n"
                                                     "\t\t\t<String>\xef\x80\x81</String>\n"
                                                     "\t\t\t<Vector2>0.100000 0.000000</Vector2>\n"
                                                     "\t\t\t<Pointer>00000ABC</Pointer>\n"
                                                     "\t\t\t<Raw>0AFF</Raw>\n"
                                                     "\t\t\t<BitStream>0aff</BitStream>\n"
                                                     "\t\t</Chunk>\n"
                                                     "\t</Chunk>\n"
                                                     "</ChunkFile>\n");
}

TEST(ChunkXML, TurnsHandWrittenElementsIntoTaggedBytes)
{
    const std::pair<const char *, Bytes> rows[] = {
        {"<Int8>-1</Int8>", {0x20, 0xff}},
        {"<Int16> +258\n</Int16>", {0x21, 2, 1}},
        {"<Float>1.5</Float>", {0x24, 0, 0, 0xc0, 0x3f}},
        {"<Float>1e60</Float>", {0x24, 0, 0, 0x80, 0x7f}},
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
    for (const auto &[element, payload] : rows) EXPECT_EQ(Payload_Of(element), payload) << element;
}

TEST(ChunkXML, RefusesWhatCannotBecomeAChunkFile)
{
    const std::string deep = Repeated("<Chunk Id=\"1\">", 2000) + Repeated("</Chunk>", 2000);
    const std::pair<std::string, const char *> rows[] = {
        {"<Chunk Id=\"4294967296\"/>", "has no Id that is a number"},
        {"<Int8>1</Int8>", "stands in no chunk"},
        {"<Chunk Id=\"1\"><Int8>1</Int8><Chunk Id=\"2\"/></Chunk>", "stands beside values"},
        {"<Chunk Id=\"1\"><MicroChunk Id=\"256\"/></Chunk>", "has an Id above 255"},
        {"<Chunk Id=\"1\"><MicroChunk Id=\"1\"><MicroChunk Id=\"1\"/></MicroChunk></Chunk>", "stands in a microchunk"},
        {"<Chunk Id=\"1\"><MicroChunk Id=\"1\">" + Repeated("<Int8>1</Int8>", 128) + "</MicroChunk></Chunk>",
         "makes its microchunk too long"},
        {"<Chunk Id=\"1\"><Vector3>1 2</Vector3></Chunk>", "has a value that is not of its type"},
        {"<Chunk Id=\"1\"><Int8>-129</Int8></Chunk>", "has a value that is not of its type"},
        {"<Chunk Id=\"1\"><Raw>0AF</Raw></Chunk>", "assert value.length() % 2 == 0"},
        {"<Chunk Id=\"1\"><Raw>0x</Raw></Chunk>", "has a value that is not of its type"},
        {"<Chunk Id=\"1\"><String>" + std::string(65536, 'x') + "</String></Chunk>", "assert value.length() < 65536"},
        {deep, "Could not read chunk file header"},
    };
    for (const auto &[body, report] : rows) {
        Reports reports;
        MemoryReader reader(XML_File(body));
        EXPECT_FALSE(reader->Is_Initialized()) << report;
        EXPECT_NE(reports.Get_Text().find(report), std::string::npos) << report << "\n" << reports.Get_Text();
        EXPECT_FALSE(reader->Open_Chunk());
    }
}

TEST(ChunkXML, ReadsTheHeader)
{
    const std::pair<const char *, bool> rows[] = {
        {"<Header><Note/><UserData> 12 ,\n-3 </UserData></Header>", true},
        {"<Header><UserData>12</UserData></Header>", false},
        {"<Header><UserData>a, b</UserData></Header>", false},
        {"<Chunk Id=\"1\"/><Header/>", false},
    };
    for (const auto &[header, reads] : rows) {
        Reports reports;
        MemoryReader reader(XML_File("", header));
        EXPECT_EQ(reader->Is_Initialized(), reads) << header;
        EXPECT_EQ(reports.Has_Log("ChunkFileReader::Read_Header -- XML Parse Error in "), !reads) << header;
    }
}
