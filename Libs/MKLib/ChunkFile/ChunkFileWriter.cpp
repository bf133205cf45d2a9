#include "MKLib/ChunkFile/ChunkFileWriter.h"

#include "MKLib/ChunkFile/ChunkLayout.h"
#include "MKLib/ChunkFile/ChunkLog.h"
#include "MKLib/ChunkFile/ChunkWriterImplementation.h"
#include "MKLib/ChunkFile/ChunkXMLText.h"
#include "MKLib/File/XMLDatabase.h"

#include <array>
#include <new>

namespace ChunkFile
{

namespace
{

constexpr uint32_t FIRST_DATA_OFFSET = 8; ///< the two user words stand between the section header and the data
constexpr size_t CHUNK_TABLE_STEP = 4096;
constexpr uint32_t MODE_LIMIT = 256;
constexpr char XML_PROLOG[] = "<?xml version=\"1.0\" encoding=\"UTF-8\" ?>\n<ChunkFile>\n";

} // namespace

ChunkFileWriterClass::Implementation::Implementation(FileClass *file, uint32_t mode, uint32_t level, bool deferred)
    : File(file)
{
    if (!File) return;
    if (!File->Is_Open()) File->Open(MKPlatform::FILE_OPEN_GENERIC_WRITE, false, -1);
    if (!MK_VERIFY(File->Is_Open(), "File->Is_Open()")) return;
    if (!MK_VERIFY(mode < MODE_LIMIT, "mode < 256")) return;
    if (mode & MODE_NATIVE) mode &= ~static_cast<uint32_t>(MODE_SWAPPED | MODE_NATIVE);
    Header.Mode = static_cast<uint8_t>(mode);
    Native = (mode & MODE_SWAPPED) == 0;
    CompressionMode = mode & COMPRESSION_MASK;
    IsSectioned = (mode & MODE_SECTIONED) != 0 && !Is_XML();
    // A sectioned file goes out as it is written: nothing would replay what was put aside.
    DeferedWrite = !IsSectioned;
    if (deferred && IsSectioned)
        MK_LOG(ChunkFileLog, LogLevel::Debug, "ChunkFileWriter - %s is sectioned and not deferred\n", File_Name());
    HeaderStart = std::max<int64_t>(File->Tell(), 0);
    Initialized = Initialize(level);
}

bool ChunkFileWriterClass::Implementation::Initialize(uint32_t level)
{
    if (DeferedWrite) {
        DeferedDataBuffer.Open(MKPlatform::FILE_OPEN_GENERIC_WRITE);
        if (!MK_VERIFY(DeferedDataBuffer.Is_Open(), "DeferedDataBuffer.Is_Open()")) return false;
    }
    if (CompressionMode >= COMPRESSION_LAST) {
        MK_LOG(ChunkFileLog, LogLevel::Error,
               "ChunkFileWriter - Chunk File %s is not using a supported compression mode\n", File_Name());
        return false;
    }
    if (!Start_Streams(static_cast<int>(level))) return false;
    SectionHeaderPosition = HeaderStart + SECTION_HEADER_OFFSET;
    CurrentSectionHeader = {};
    CurrentSectionHeader.DataOffset = FIRST_DATA_OFFSET;
    XMLDepth = Is_XML() ? 1 : 0;
    if (!Is_XML()) Write_File_Header();
    return true;
}

bool ChunkFileWriterClass::Implementation::Start_Streams(int level)
{
    try {
        DataStream = Take_Deflate_Buffers();
        if (IsSectioned) ChunkStream = Take_Deflate_Buffers();
        InChunkBuffer.reserve(CHUNK_TABLE_STEP);
    } catch (const std::bad_alloc &) {
        MK_LOG(ChunkFileLog, LogLevel::Error, "ChunkFileWriter - Failed to allocate memory for buffers, out of mem?\n");
        return false;
    }
    if (!Is_Zlib()) return true;
    int result = DataStream->Start_Stream(level);
    if (result == Z_OK && ChunkStream) result = ChunkStream->Start_Stream(level);
    if (result == Z_OK) return true;
    MK_LOG(ChunkFileLog, LogLevel::Error, "ChunkFileWriter - Could not initialize ZLib: error code %d\n", result);
    return false;
}

bool ChunkFileWriterClass::Implementation::Write_File_Header()
{
    File->Seek(HeaderStart, MKPlatform::FILE_SEEK_BEGIN);
    std::array<uint8_t, FILE_HEADER_SIZE> bytes{};
    const uint8_t start[] = {Header.Magic[0], Header.Magic[1],    Header.Major,       Header.Minor,
                             Header.Mode,     Header.Reserved[0], Header.Reserved[1], Header.Reserved[2]};
    const uint32_t words[] = {Stored(CurrentSectionHeader.CRC),
                              Stored(CurrentSectionHeader.DataOffset),
                              Stored(CurrentSectionHeader.DataSize),
                              Stored(CurrentSectionHeader.ChunkOffset),
                              Stored(CurrentSectionHeader.ChunkSize),
                              Stored(Header.UserInt32[0]),
                              Stored(Header.UserInt32[1])};
    static_assert(sizeof(start) + sizeof(words) == bytes.size());
    std::memcpy(bytes.data(), start, sizeof(start));
    std::memcpy(bytes.data() + sizeof(start), words, sizeof(words));
    return Write_To_File(bytes.data(), bytes.size());
}

/// At its remembered position. `withCRC` folds the four fields behind the CRC into it, in their stored order.
bool ChunkFileWriterClass::Implementation::Write_Section_Header(bool withCRC)
{
    SectionHeader &section = CurrentSectionHeader;
    const uint32_t fields[] = {Stored(section.DataOffset), Stored(section.DataSize), Stored(section.ChunkOffset),
                               Stored(section.ChunkSize)};
    if (withCRC)
        section.CRC =
            static_cast<uint32_t>(crc32(section.CRC, reinterpret_cast<const uint8_t *>(fields), sizeof(fields)));
    const uint32_t words[] = {Stored(section.CRC), fields[0], fields[1], fields[2], fields[3]};
    if (HasFailed) return false;
    if (SectionHeaderPosition < 0 ||
        File->Seek(SectionHeaderPosition, MKPlatform::FILE_SEEK_BEGIN) != SectionHeaderPosition)
    {
        MK_LOG(ChunkFileLog, LogLevel::Error, "ChunkFileWriter - Could not go back to a section's header in %s\n",
               File_Name());
        HasFailed = true;
        return false;
    }
    return Write_To_File(words, sizeof(words));
}

uint32_t ChunkFileWriterClass::Implementation::Add_Chunk(uint32_t id)
{
    if (InChunkBuffer.size() == InChunkBuffer.capacity()) {
        InChunkBuffer.reserve(InChunkBuffer.capacity() + CHUNK_TABLE_STEP);
        MK_LOG(ChunkFileLog, LogLevel::Debug, "Growing %s chunk buffer to %i\n", File_Name(),
               static_cast<int>(InChunkBuffer.capacity()));
    }
    InChunkBuffer.push_back({id, 0});
    return static_cast<uint32_t>(InChunkBuffer.size() - 1);
}

bool ChunkFileWriterClass::Implementation::Open_Chunk(const char *name, uint32_t id)
{
    if (!MK_VERIFY(Initialized, "Initialized") || !MK_VERIFY(!InMicroChunk, "!InMicroChunk") ||
        !MK_VERIFY(StackIndex < MAX_CHUNK_DEPTH - 1, "StackIndex < MAX_CHUNK_DEPTH - 1"))
        return false;
    if (StackIndex > 0) {
        ChunkHeader &parent = InChunkBuffer[Stack[StackIndex - 1]];
        if (!parent.Contains_Chunks() && parent.Get_Size() > 0) {
            MK_LOG(ChunkFileLog, LogLevel::Error,
                   "ChunkFileWriter - Sub-chunk %u stands beside values in chunk %u of %s\n", id, parent.Id,
                   File_Name());
            return false;
        }
        parent.SizeWord |= CONTAINS_CHUNKS;
    }
    Stack[StackIndex++] = Add_Chunk(id);
    if (Is_XML()) Open_XML_Element("Chunk", name, id);
    return true;
}

bool ChunkFileWriterClass::Implementation::Close_Chunk()
{
    if (!MK_VERIFY(!InMicroChunk, "!InMicroChunk") || !MK_VERIFY(StackIndex > 0, "StackIndex > 0")) return false;
    --StackIndex;
    if (Is_XML()) Close_XML_Element("Chunk");
    if (StackIndex > 0) {
        ++InChunkBuffer[Stack[StackIndex - 1]].SizeWord;
        return !HasFailed;
    }
    if (Is_XML()) InChunkBuffer.clear();
    return IsSectioned ? End_Section() : !HasFailed;
}

bool ChunkFileWriterClass::Implementation::End_Section()
{
    bool written = Flush_Data(FINALIZE_FLUSH);
    written = Flush_Chunk_Table(FINALIZE_FLUSH) && written;
    CurrentSectionHeader.ChunkOffset = CurrentSectionHeader.DataOffset + CurrentSectionHeader.DataSize;
    written = Write_Section_Header(true) && written;
    SectionHeaderPosition = File->Seek(0, MKPlatform::FILE_SEEK_END);
    CurrentSectionHeader = {};
    return Write_Section_Header(false) && written;
}

bool ChunkFileWriterClass::Implementation::Open_Micro_Chunk(const char *name, uint32_t id)
{
    if (!MK_VERIFY(Initialized, "Initialized") || !MK_VERIFY(!InMicroChunk, "!InMicroChunk") ||
        !MK_VERIFY(StackIndex > 0, "StackIndex > 0") || !MK_VERIFY(id < 256, "id < 256"))
        return false;
    const uint32_t tagSize = Is_Validated() || Is_XML() ? 1 : 0;
    if (!Admit_Payload(tagSize + 2)) return false;
    InMicroChunk = true;
    MicroId = static_cast<uint8_t>(id);
    MicroSize = 0;
    if (Is_XML()) Open_XML_Element("MicroChunk", name, id);
    return true;
}

bool ChunkFileWriterClass::Implementation::Close_Micro_Chunk()
{
    if (!MK_VERIFY(InMicroChunk, "InMicroChunk")) return false;
    InMicroChunk = false;
    if (Is_XML()) {
        Close_XML_Element("MicroChunk");
        InChunkBuffer[Stack[StackIndex - 1]].SizeWord += 3 + MicroSize;
        return true;
    }
    uint8_t record[3 + MICRO_CHUNK_LIMIT];
    uint32_t size = 0;
    if (Is_Validated()) record[size++] = TYPE_MICROCHUNK;
    record[size++] = MicroId;
    record[size++] = static_cast<uint8_t>(MicroSize);
    std::memcpy(record + size, MicroData, MicroSize);
    size += MicroSize;
    return Admit_Payload(size) && Append_Payload(record, size);
}

bool ChunkFileWriterClass::Implementation::Close()
{
    if (!Initialized) return true;
    if (Is_XML()) MK_ASSERT(XMLDepth == 1, "XMLDepth == 1");
    bool closed = Close_Open_Chunks();
    closed = (Is_XML() ? Close_XML() : Close_Binary()) && closed;
    if (Is_Zlib()) closed = Close_Streams() && closed;
    Give_Back(std::move(DataStream));
    Give_Back(std::move(ChunkStream));
    Initialized = false;
    return closed && !HasFailed;
}

/// What the caller left open is closed, so that the file can be read.
bool ChunkFileWriterClass::Implementation::Close_Open_Chunks()
{
    if (StackIndex == 0) return true;
    MK_LOG(ChunkFileLog, LogLevel::Error, "ChunkFileWriter - %s is closed with %u chunks open\n", File_Name(),
           StackIndex);
    if (InMicroChunk) Close_Micro_Chunk();
    while (StackIndex > 0) Close_Chunk();
    return false;
}

bool ChunkFileWriterClass::Implementation::Close_XML()
{
    std::string text = XML_PROLOG;
    text += "\t<Header>\n\t\t<UserData>";
    Append_Int(text, static_cast<int32_t>(Header.UserInt32[0]));
    text += ", ";
    Append_Int(text, static_cast<int32_t>(Header.UserInt32[1]));
    text += "</UserData>\n\t</Header>\n";
    XMLText += "</ChunkFile>\n";
    if (text.size() + XMLText.size() > static_cast<uint64_t>(XMLDatabase::MAX_SIZE)) {
        MK_LOG(ChunkFileLog, LogLevel::Error, "ChunkFileWriter - The XML form of %s is too large to be read again\n",
               File_Name());
        HasFailed = true;
    }
    return Write_To_File(text.data(), static_cast<uint32_t>(text.size())) &&
           Write_To_File(XMLText.data(), static_cast<uint32_t>(XMLText.size()));
}

bool ChunkFileWriterClass::Implementation::Close_Binary()
{
    if (IsSectioned) {
        const bool finished = Flush_Data(FINALIZE_FINISH);
        return Flush_Chunk_Table(FINALIZE_FINISH) && finished;
    }
    bool written = Flush_Data(FINALIZE_NONE);
    if (!MK_VERIFY(DeferedWrite, "DeferedWrite")) return false;
    DeferedWrite = false;
    DeferedDataBuffer.Close();
    written = DeferedDataBuffer.Open(MKPlatform::FILE_OPEN_GENERIC_READ) && written;
    written = Replay() && written;
    written = Flush_Data(FINALIZE_FINISH) && written;
    written = Write_Section_Header(true) && written;
    File->Seek(0, MKPlatform::FILE_SEEK_END);
    return written;
}

/// The whole tree in the order of opening, each leaf with its payload.
bool ChunkFileWriterClass::Implementation::Replay()
{
    const uint8_t *payload = DeferedDataBuffer.Get_Buffer();
    int64_t left = DeferedDataBuffer.Get_Size();
    bool written = true;
    for (const ChunkHeader &header : InChunkBuffer) {
        const uint32_t words[] = {Stored(header.Id), Stored(header.SizeWord)};
        written = Append_Data(words, sizeof(words)) && written;
        const uint32_t size = header.Contains_Chunks() ? 0 : header.Get_Size();
        if (size > left || !written) return false;
        if (size == 0) continue;
        written = Append_Data(payload, size);
        payload += size;
        left -= size;
    }
    return written;
}

bool ChunkFileWriterClass::Implementation::Close_Streams()
{
    const z_stream &data = DataStream->Stream;
    MK_LOG(ChunkFileLog, LogLevel::Debug, "ChunkWriter::Close - Compression Ratio for %s %d:%d %f:1.0\n", File_Name(),
           static_cast<int>(data.total_in), static_cast<int>(data.total_out),
           data.total_out > 0 ? static_cast<double>(data.total_in) / static_cast<double>(data.total_out) : 0.0);
    bool closed = true;
    const struct
    {
        DeflateBuffers *stream;
        const char *assertText;
    } streams[] = {{DataStream.get(), "deflateEnd(&DataStream) != Z_OK"},
                   {ChunkStream.get(), "deflateEnd(&ChunkStream) != Z_OK"}};
    for (const auto &row : streams) {
        if (!row.stream || MK_VERIFY(row.stream->End_Stream() == Z_OK, row.assertText)) continue;
        MK_LOG(ChunkFileLog, LogLevel::Error, "ChunkWriter::Close - Could not shut down zlib for %s\n", File_Name());
        closed = false;
    }
    return closed;
}

ChunkFileWriterClass::ChunkFileWriterClass(FileClass *file, uint32_t mode, uint32_t level, bool deferred)
    : Impl(std::make_unique<Implementation>(file, mode, level, deferred))
{
}

ChunkFileWriterClass::~ChunkFileWriterClass()
{
    Close();
}

bool ChunkFileWriterClass::Is_Initialized() const
{
    return Impl->Initialized;
}

bool ChunkFileWriterClass::Is_Validated() const
{
    return Impl->Is_Validated();
}

bool ChunkFileWriterClass::Is_Swapped() const
{
    return !Impl->Native;
}

bool ChunkFileWriterClass::Open_Chunk(const char *name, uint32_t id)
{
    return Impl->Open_Chunk(name, id);
}

bool ChunkFileWriterClass::Open_Chunk(uint32_t id)
{
    return Impl->Open_Chunk(nullptr, id);
}

bool ChunkFileWriterClass::Close_Chunk()
{
    return Impl->Close_Chunk();
}

bool ChunkFileWriterClass::Open_Micro_Chunk(const char *name, uint32_t id)
{
    return Impl->Open_Micro_Chunk(name, id);
}

bool ChunkFileWriterClass::Open_Micro_Chunk(uint32_t id)
{
    return Impl->Open_Micro_Chunk(nullptr, id);
}

bool ChunkFileWriterClass::Close_Micro_Chunk()
{
    return Impl->Close_Micro_Chunk();
}

void ChunkFileWriterClass::Set_User_Int32(uint32_t index, uint32_t value)
{
    if (MK_VERIFY(index < 2, "idx < ARRAY_SIZE(UserInt32)")) Impl->Header.UserInt32[index] = value;
}

bool ChunkFileWriterClass::Close()
{
    return Impl->Close();
}

} // namespace ChunkFile
