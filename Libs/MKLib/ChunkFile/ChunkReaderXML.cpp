#include "MKLib/ChunkFile/ChunkReaderImplementation.h"

#include "MKLib/ChunkFile/ChunkLayout.h"
#include "MKLib/ChunkFile/ChunkLog.h"
#include "MKLib/ChunkFile/ChunkXMLText.h"
#include "MKLib/File/XMLDatabase.h"

/// The reader's XML form: turned on load into the stream that a validated, uncompressed file would hold.
namespace ChunkFile
{

namespace
{

constexpr uint32_t CHUNK_HEADER_SIZE = 8;
constexpr char KEY_FAILED[] = "XMLdb->Get_Key(&key) != S_OK";
constexpr char VALUE_FAILED[] = "XMLdb->Get_Value(&value) != S_OK";

using Bytes = std::vector<uint8_t>;

/// Values that are numbers separated by blanks.
struct NumberRow
{
    uint8_t tag;
    uint8_t count;
    uint8_t bytes; ///< of each
    bool isFloat;
};

constexpr NumberRow NumberRows[] = {
    {TYPE_INT8, 1, 1, false},      {TYPE_INT16, 1, 2, false},    {TYPE_INT32, 1, 4, false},
    {TYPE_INT64, 1, 8, false},     {TYPE_FLAGS, 1, 1, false},    {TYPE_VECTOR2I, 2, 4, false},
    {TYPE_VECTOR3I, 3, 4, false},  {TYPE_VECTOR4I, 4, 4, false}, {TYPE_FLOAT, 1, 4, true},
    {TYPE_VECTOR2, 2, 4, true},    {TYPE_VECTOR3, 3, 4, true},   {TYPE_VECTOR4, 4, 4, true},
    {TYPE_QUATERNION, 4, 4, true}, {TYPE_RGBA, 4, 4, true},      {TYPE_FACING, 3, 4, true},
    {TYPE_MATRIX3D, 12, 4, true},
};

void Append(Bytes &out, const void *data, size_t size)
{
    const auto *bytes = static_cast<const uint8_t *>(data);
    out.insert(out.end(), bytes, bytes + size);
}

bool Append_Numbers(Bytes &out, const NumberRow &row, std::string_view text)
{
    if (row.isFloat) {
        float values[12];
        if (!Parse_Floats(text, values, row.count)) return false;
        Append(out, values, row.count * sizeof(float));
        return true;
    }
    uint64_t values[4];
    if (!Parse_Ints(text, values, row.count, row.bytes)) return false;
    for (int i = 0; i < row.count; ++i) Append(out, &values[i], row.bytes);
    return true;
}

/// A string, narrow or wide, behind its 16-bit length.
template <typename Text>
bool Append_String(Bytes &out, const Text &text)
{
    if (!MK_VERIFY(text.size() <= STRING_LIMIT, "value.length() < 65536")) return false;
    const auto length = static_cast<uint16_t>(text.size());
    Append(out, &length, sizeof(length));
    Append(out, text.data(), text.size() * sizeof(text[0]));
    return true;
}

bool Append_Hex_Bytes(Bytes &out, std::string_view text)
{
    Bytes bytes;
    if (!MK_VERIFY(text.size() % 2 == 0, "value.length() % 2 == 0") || !Parse_Hex(text, bytes)) return false;
    const auto size = static_cast<uint32_t>(bytes.size());
    Append(out, &size, sizeof(size));
    Append(out, bytes.data(), bytes.size());
    return true;
}

bool Append_Pointer(Bytes &out, std::string_view text)
{
    uint32_t value = 0;
    if (!Parse_Pointer(text, value)) return false;
    Append(out, &value, sizeof(value));
    return true;
}

bool Append_Value(Bytes &out, uint8_t tag, std::string_view text)
{
    out.push_back(tag);
    for (const NumberRow &row : NumberRows)
        if (row.tag == tag) return Append_Numbers(out, row, text);
    switch (tag) {
    case TYPE_BOOL: out.push_back(MK::Equal_Ignoring_Case(text, "true") ? 1 : 0); return true;
    case TYPE_STRING: return Append_String(out, Bytes_Of_Text(text));
    case TYPE_WSTRING: return Append_String(out, Wide_Of_Text(text));
    case TYPE_POINTER: return Append_Pointer(out, text);
    default: return Append_Hex_Bytes(out, text);
    }
}

bool Is_Read_Back(uint8_t tag)
{
    return tag != 0 && tag != TYPE_TIME && tag != TYPE_MICROCHUNK;
}

/// Walks the elements behind the header and appends what they stand for.
class TreeParser
{
public:
    TreeParser(XMLDatabase &database, Bytes &out, const char *fileName)
        : Database(database), Out(out), FileName(fileName)
    {
    }

    /// From the header element on. On failure `Get_Assert` names the query that failed.
    bool Parse()
    {
        Chunk root;
        while (Database.Next_Sibling()) {
            const bool parsed = Database.Is_Key("Chunk") ? Parse_Chunk(root) : Skip_Unknown();
            if (!parsed) return false;
        }
        if (SkippedCount > 0)
            MK_LOG(ChunkFileLog, LogLevel::Warning,
                   "ChunkFileReader - %u elements of %s are passed over, the first is %s\n", SkippedCount, FileName,
                   FirstSkipped.c_str());
        return true;
    }

    const char *Get_Assert() const { return Assert; }

private:
    struct Chunk
    {
        uint32_t Children = 0;
        bool HasPayload = false;
    };

    bool Refuse(const char *reason, const char *assertText)
    {
        MK::String key;
        Database.Get_Key(&key);
        MK_LOG(ChunkFileLog, LogLevel::Error, "ChunkFileReader - The element %s in %s %s\n", key.c_str(), FileName,
               reason);
        Assert = assertText;
        return false;
    }

    bool Skip_Unknown()
    {
        if (Type_Of_Name(Key()) != 0 && !Database.Is_Key("Time")) return Refuse("stands in no chunk", KEY_FAILED);
        return Skip_Unread();
    }

    bool Skip_Unread()
    {
        if (SkippedCount++ == 0) Database.Get_Key(&FirstSkipped);
        return true;
    }

    std::string_view Key()
    {
        Database.Get_Key(&CurrentKey);
        return CurrentKey;
    }

    bool Read_Id(uint32_t &id)
    {
        MK::String text;
        uint64_t value = 0;
        if (Database.Get_Attribute("Id", &text) != S_OK || !Parse_Ints(text, &value, 1, sizeof(id)))
            return Refuse("has no Id that is a number", KEY_FAILED);
        id = static_cast<uint32_t>(value);
        return true;
    }

    bool Parse_Chunk(Chunk &parent)
    {
        Chunk chunk;
        ChunkHeader header;
        if (parent.HasPayload) return Refuse("stands beside values", KEY_FAILED);
        if (!Read_Id(header.Id)) return false;
        const size_t position = Out.size();
        Out.resize(position + CHUNK_HEADER_SIZE);
        if (Database.Enter_First_Child()) {
            do {
                if (!Parse_Child(chunk)) return false;
            } while (Database.Next_Sibling());
            Database.Leave();
        }
        header.SizeWord = chunk.Children > 0 ? chunk.Children | CONTAINS_CHUNKS
                                             : static_cast<uint32_t>(Out.size() - position - CHUNK_HEADER_SIZE);
        std::memcpy(&Out[position], &header, CHUNK_HEADER_SIZE);
        ++parent.Children;
        return true;
    }

    bool Parse_Child(Chunk &chunk)
    {
        if (Database.Is_Key("Chunk")) return Parse_Chunk(chunk);
        const bool isMicroChunk = Database.Is_Key("MicroChunk");
        if (!isMicroChunk && !Is_Read_Back(Type_Of_Name(Key()))) return Skip_Unread();
        if (chunk.Children > 0) return Refuse("stands beside chunks", KEY_FAILED);
        chunk.HasPayload = true;
        return isMicroChunk ? Parse_Micro_Chunk() : Parse_Value(Out);
    }

    bool Parse_Micro_Chunk()
    {
        uint32_t id = 0;
        if (!Read_Id(id)) return false;
        if (id > 0xff) return Refuse("has an Id above 255", KEY_FAILED);
        Bytes data;
        if (Database.Enter_First_Child()) {
            do {
                if (!Parse_Micro_Child(data)) return false;
            } while (Database.Next_Sibling());
            Database.Leave();
        }
        const uint8_t record[] = {TYPE_MICROCHUNK, static_cast<uint8_t>(id), static_cast<uint8_t>(data.size())};
        Append(Out, record, sizeof(record));
        Append(Out, data.data(), data.size());
        return true;
    }

    bool Parse_Micro_Child(Bytes &data)
    {
        if (Database.Is_Key("Chunk") || Database.Is_Key("MicroChunk"))
            return Refuse("stands in a microchunk", KEY_FAILED);
        if (!Is_Read_Back(Type_Of_Name(Key()))) return Skip_Unread();
        if (!Parse_Value(data)) return false;
        return data.size() <= MICRO_CHUNK_LIMIT || Refuse("makes its microchunk too long", VALUE_FAILED);
    }

    bool Parse_Value(Bytes &out)
    {
        Database.Get_Value(&CurrentValue);
        return Append_Value(out, Type_Of_Name(Key()), CurrentValue) ||
               Refuse("has a value that is not of its type", VALUE_FAILED);
    }

    XMLDatabase &Database;
    Bytes &Out;
    const char *FileName;
    const char *Assert = KEY_FAILED;
    MK::String CurrentKey;
    MK::String CurrentValue;
    MK::String FirstSkipped;
    uint32_t SkippedCount = 0;
};

/// Whether the text starts as XML does, so that a large file of another kind isn't loaded to find out.
bool Looks_Like_XML(std::string_view text)
{
    if (text.starts_with("\xef\xbb\xbf")) text.remove_prefix(3);
    const size_t start = text.find_first_not_of(" \t\r\n");
    return start == text.npos || text[start] == '<';
}

} // namespace

bool ChunkFileReaderClass::Implementation::Report_XML_Error(const char *assertText)
{
    MK_ASSERT(false, assertText);
    MK_LOG(ChunkFileLog, LogLevel::Error, "ChunkFileReader::Read_Header -- XML Parse Error in %s\n", File_Name());
    return false;
}

bool ChunkFileReaderClass::Implementation::Read_User_Data(XMLDatabase &database)
{
    if (!database.Enter_First_Child()) return true;
    bool isRead = true;
    do {
        MK::String text;
        if (!database.Is_Key("UserData")) continue;
        isRead = database.Get_Value(&text) == S_OK && Parse_Pair(text, Header.UserInt32) && isRead;
    } while (database.Next_Sibling());
    database.Leave();
    return isRead;
}

bool ChunkFileReaderClass::Implementation::Read_XML_Header(uint32_t size)
{
    const std::string_view text(reinterpret_cast<const char *>(DataStream.Buffers->In), size);
    File->Seek(HeaderStart, MKPlatform::FILE_SEEK_BEGIN);
    XMLDatabase database;
    if (!Looks_Like_XML(text) || !database.Load(*File)) {
        MK_ASSERT(false, "false && \"Not a valid chunk file\"");
        MK_LOG(ChunkFileLog, LogLevel::Error, "ChunkFileReader -- Could not read chunk file header from %s\n",
               File_Name());
        return false;
    }
    MK_LOG(ChunkFileLog, LogLevel::Info, "ChunkFileReader -- %s is an XML file\n", File_Name());
    Header = {};
    Header.Mode = COMPRESSION_XML;
    if (!database.Enter_First_Child()) return Report_XML_Error(KEY_FAILED);
    if (!database.Is_Key("Header")) return Report_XML_Error("key != \"Header\"");
    if (!Read_User_Data(database)) return Report_XML_Error(VALUE_FAILED);
    TreeParser parser(database, XMLDataBuffer, File_Name());
    if (!parser.Parse()) {
        MK_ASSERT(false, parser.Get_Assert());
        MK_LOG(ChunkFileLog, LogLevel::Error, "XML parse error in %s\n", File_Name());
        return false;
    }
    Header.Mode |= MODE_VALIDATED;
    CompressionMode = COMPRESSION_XML;
    IsXML = true;
    ChecksTypes = true;
    DataStream.Window = XMLDataBuffer.data();
    DataStream.Available = static_cast<uint32_t>(XMLDataBuffer.size());
    return true;
}

} // namespace ChunkFile
