#include "MKLib/ChunkFile/ChunkFileReader.h"

#include "MKLib/ChunkFile/ChunkLayout.h"
#include "MKLib/ChunkFile/ChunkLog.h"
#include "MKLib/ChunkFile/ChunkReaderImplementation.h"

namespace ChunkFile
{

namespace
{

constexpr uint32_t SECTION_BASE_OFFSET = 28; ///< what the offsets of version 2.1's first section count from
constexpr uint32_t FIRST_DATA_OFFSET_LIMIT = COMPRESSION_BUFFER_SIZE;

const MK::String NoName;

uint32_t Word_At(const uint8_t *bytes, bool native)
{
    uint32_t word = 0;
    std::memcpy(&word, bytes, sizeof(word));
    return native ? word : Swap_Bytes(word);
}

} // namespace

bool ChunkFileReaderClass::Implementation::Initialize()
{
    if (!File) return false;
    if (!File->Is_Open() && !File->Open(MKPlatform::FILE_OPEN_GENERIC_READ, false, -1)) return false;
    DataStream.Buffers = Take_Inflate_Buffers();
    Initialized = Read_Header();
    if (!Initialized) Fail();
    return Initialized;
}

/// The header's bytes come with the file's first block, which often is all of a small file.
bool ChunkFileReaderClass::Implementation::Read_Header()
{
    KnownFilePosition = File->Tell();
    HeaderStart = std::max<int64_t>(KnownFilePosition, 0);
    uint32_t size = 0;
    while (size < FILE_HEADER_SIZE) {
        const uint32_t read =
            Read_File(HeaderStart + size, DataStream.Buffers->In + size, COMPRESSION_BUFFER_SIZE - size);
        if (read == 0) break;
        size += read;
    }
    if (size < FILE_HEADER_SIZE) {
        MK_ASSERT(false, "!Header.Read(File)");
        MK_LOG(ChunkFileLog, LogLevel::Error, "ChunkFileReader -- Could not read chunk file header from %s\n",
               File_Name());
        File->Seek(HeaderStart, MKPlatform::FILE_SEEK_BEGIN);
        return false;
    }
    const uint8_t *const bytes = DataStream.Buffers->In;
    if (bytes[0] == 'C' && bytes[1] == 'H' && bytes[2] == 2 && bytes[3] <= 1) return Read_Binary_Header(size);
    return Read_XML_Header(size);
}

bool ChunkFileReaderClass::Implementation::Read_Binary_Header(uint32_t size)
{
    const uint8_t *const bytes = DataStream.Buffers->In;
    Header.Minor = bytes[3];
    Header.Mode = bytes[4];
    std::copy(bytes + 5, bytes + 8, Header.Reserved);
    Native = Is_Native();
    const uint8_t *const section = bytes + SECTION_HEADER_OFFSET;
    Header.Section = {Word_At(section, Native), Word_At(section + 4, Native), Word_At(section + 8, Native),
                      Word_At(section + 12, Native), Word_At(section + 16, Native)};
    Header.UserInt32[0] = Word_At(section + 20, Native);
    Header.UserInt32[1] = Word_At(section + 24, Native);
    CompressionMode = Header.Mode & COMPRESSION_MASK;
    if (CompressionMode != COMPRESSION_NONE && CompressionMode != COMPRESSION_ZLIB) {
        MK_LOG(ChunkFileLog, LogLevel::Error,
               "ChunkFileReader - Chunk File %s is not using a supported compression mode (%u)\n", File_Name(),
               CompressionMode);
        return false;
    }
    ChecksTypes = Is_Validated();
    return Set_Up_Streams(size);
}

bool ChunkFileReaderClass::Implementation::Set_Up_Streams(uint32_t size)
{
    const SectionHeader &section = Header.Section;
    if (Is_Sectioned() && !Sections_Are_Apart(section)) {
        MK_LOG(ChunkFileLog, LogLevel::Error, "ChunkFileReader - A section's streams overlap in %s\n", File_Name());
        return false;
    }
    const uint32_t base = Header.Minor == 1 ? SECTION_BASE_OFFSET : FILE_HEADER_SIZE;
    DataStream.FilePosition = HeaderStart + base + section.DataOffset;
    DataStream.Remaining = section.DataSize;
    ChunkStream.FilePosition = HeaderStart + base + section.ChunkOffset;
    ChunkStream.Remaining = section.ChunkSize;
    SectionEnd = ChunkStream.FilePosition + section.ChunkSize;
    if (Is_Sectioned()) ChunkStream.Buffers = Take_Inflate_Buffers();
    if (CompressionMode == COMPRESSION_ZLIB) {
        if (!Start_Inflate(DataStream, "data", "inflateInit(&DataStream)")) return false;
        if (Is_Sectioned() && !Start_Inflate(ChunkStream, "chunk", "inflateInit(&ChunkStream) != Z_OK")) return false;
    }
    if (section.DataOffset > FIRST_DATA_OFFSET_LIMIT || base + section.DataOffset >= size) return true;
    const uint32_t first = base + section.DataOffset;
    const uint32_t loaded = std::min(size - first, section.DataSize);
    DataStream.FilePosition += loaded;
    DataStream.Remaining -= loaded;
    if (CompressionMode == COMPRESSION_ZLIB) {
        DataStream.Buffers->Stream.next_in = DataStream.Buffers->In + first;
        DataStream.Buffers->Stream.avail_in = loaded;
        DataStream.Compressed = loaded;
    } else {
        DataStream.Window = DataStream.Buffers->In + first;
        DataStream.Available = loaded;
    }
    return true;
}

bool ChunkFileReaderClass::Implementation::Start_Inflate(InputStream &stream, const char *name, const char *assertText)
{
    if (MK_VERIFY(stream.Buffers->Start_Stream() == Z_OK, assertText)) return true;
    MK_LOG(ChunkFileLog, LogLevel::Error, "ChunkReader::ChunkReader - Could not create zlib %s stream for %s\n", name,
           File_Name());
    return false;
}

/// False at the end of the root level, and on damage.
bool ChunkFileReaderClass::Implementation::Read_Chunk_Header(ChunkHeader &header)
{
    uint32_t words[2];
    uint32_t taken = 0;
    InputStream &stream = Is_Sectioned() ? ChunkStream : DataStream;
    if (stream.Available >= sizeof(words)) {
        std::memcpy(words, stream.Window, sizeof(words));
        stream.Advance(sizeof(words));
    } else if (!Take(stream, words, sizeof(words), taken)) {
        const bool isClean = StackIndex == 0 && taken == 0;
        const bool isCut =
            CompressionMode == COMPRESSION_ZLIB && !Is_Sectioned() && !stream.HasEnded && Header.Section.DataSize > 0;
        if (!HasFailed && (!isClean || isCut)) Report_End();
        return false;
    }
    if (!Native) Swap_All(words, 2);
    header = {words[0], words[1]};
    return true;
}

bool ChunkFileReaderClass::Implementation::Open_Next_Chunk()
{
    if (HasFailed) return false;
    if (StackIndex > 0) {
        const ChunkHeader &parent = Stack[StackIndex - 1];
        if (!parent.Contains_Chunks() || ClosedCounts[StackIndex - 1] >= parent.Get_Size()) return false;
    }
    if (StackIndex >= MAX_CHUNK_DEPTH - 1) {
        MK_LOG(ChunkFileLog, LogLevel::Fatal,
               "ChunkFileReaderClass::Open_Chunk exceeded maximum chunk depth.  Probable corrupted/tampered file.  "
               "Filename: %s  ChunkDepth: %d",
               File_Name(), static_cast<int>(StackIndex));
        MK_ASSERT(false, "StackIndex < MAX_CHUNK_DEPTH - 1");
        Fail();
        return false;
    }
    ChunkHeader &header = Stack[StackIndex];
    if (!Read_Chunk_Header(header)) return false;
    ClosedCounts[StackIndex] = 0;
    LeafLeft = header.Contains_Chunks() ? 0 : header.Get_Size();
    ++StackIndex;
    return true;
}

/// Skips what is left of the top chunk when it is a leaf, and pops it.
bool ChunkFileReaderClass::Implementation::Close_Top_Chunk()
{
    bool closed = !HasFailed;
    if (LeafLeft > 0) closed = Read_Payload(nullptr, LeafLeft) && closed;
    LeafLeft = 0;
    --StackIndex;
    if (StackIndex > 0)
        ++ClosedCounts[StackIndex - 1];
    else if (!HasFailed && Is_Sectioned() && Header.Minor == 1)
        closed = Next_Section() && closed;
    return closed;
}

void ChunkFileReaderClass::Implementation::Report_Inconsistent()
{
    if (ToldInconsistent) return;
    ToldInconsistent = true;
    MK_LOG(ChunkFileLog, LogLevel::Error,
           "ChunkFileReaderClass::Close_Chunk inconsistent state!  Probable corrupted/tampered file.  Filename: %s  "
           "ChunkDepth: %d",
           File_Name(), static_cast<int>(StackIndex));
}

/// Pops the top chunk when it has a parent and nothing is left of it, as is the rule after a load. False otherwise.
bool ChunkFileReaderClass::Implementation::Close_Read_Chunk()
{
    if (StackIndex < 2 || LeafLeft > 0 || HasFailed) return false;
    const uint32_t top = StackIndex - 1;
    if (Stack[top].Contains_Chunks() && ClosedCounts[top] < Stack[top].Get_Size()) return false;
    StackIndex = top;
    ++ClosedCounts[top - 1];
    return true;
}

/// Passes over the next leaves of the top chunk that lie in the window as a whole, without opening each.
void ChunkFileReaderClass::Implementation::Skip_Leaves_In_Window()
{
    if (Is_Sectioned() || !Native || HasFailed) return;
    const uint32_t count = Stack[StackIndex - 1].Get_Size();
    uint32_t &closed = ClosedCounts[StackIndex - 1];
    ChunkHeader header;
    static_assert(sizeof(header) == 8);
    while (closed < count && DataStream.Available >= sizeof(header)) {
        std::memcpy(&header, DataStream.Window, sizeof(header));
        if (header.Contains_Chunks() || DataStream.Available - sizeof(header) < header.Get_Size()) return;
        DataStream.Advance(sizeof(header) + header.Get_Size());
        ++closed;
    }
}

/// Closes chunks until `depth` are left open, with all that they still hold.
bool ChunkFileReaderClass::Implementation::Skip_Tree(uint32_t depth)
{
    bool closed = true;
    while (StackIndex > depth) {
        const ChunkHeader &top = Stack[StackIndex - 1];
        if (top.Contains_Chunks()) Skip_Leaves_In_Window();
        if (!top.Contains_Chunks() || ClosedCounts[StackIndex - 1] >= top.Get_Size()) {
            closed = Close_Top_Chunk() && closed;
        } else if (!Open_Next_Chunk()) {
            Report_Inconsistent();
            Fail();
            closed = false;
            StackIndex = depth;
        }
    }
    return closed;
}

ChunkFileReaderClass::ChunkFileReaderClass(FileClass *file) : Impl(std::make_unique<Implementation>(file))
{
    Impl->Initialize();
}

ChunkFileReaderClass::~ChunkFileReaderClass()
{
    Close();
}

bool ChunkFileReaderClass::Close()
{
    Give_Back(std::move(Impl->DataStream.Buffers));
    Give_Back(std::move(Impl->ChunkStream.Buffers));
    Impl->Initialized = false;
    Impl->InMicroChunk = false;
    Impl->StackIndex = 0;
    Impl->LeafLeft = 0;
    return true;
}

bool ChunkFileReaderClass::Is_Initialized() const
{
    return Impl->Initialized;
}

bool ChunkFileReaderClass::Is_Validated() const
{
    return Impl->Is_Validated();
}

const ChunkFileHeader &ChunkFileReaderClass::Get_Header() const
{
    return Impl->Header;
}

const MK::String &ChunkFileReaderClass::Get_File_Name() const
{
    return Impl->File ? Impl->File->Get_Name() : NoName;
}

uint32_t ChunkFileReaderClass::Get_User_Int32(uint32_t index) const
{
    if (!MK_VERIFY(index < 2, "idx < ARRAY_SIZE(UserInt32)")) return 0;
    return Impl->Header.UserInt32[index];
}

bool ChunkFileReaderClass::Is_Damaged() const
{
    return Impl->Damaged;
}

bool ChunkFileReaderClass::Open_Chunk()
{
    if (!MK_VERIFY(Impl->Initialized, "Initialized") || !MK_VERIFY(!Impl->InMicroChunk, "!InMicroChunk")) return false;
    return Impl->Open_Next_Chunk();
}

bool ChunkFileReaderClass::Close_Chunk()
{
    if (!MK_VERIFY(Impl->Initialized, "Initialized")) return false;
    if (!MK_VERIFY(!Impl->InMicroChunk, "!InMicroChunk")) Close_Micro_Chunk();
    if (!MK_VERIFY(Impl->StackIndex > 0, "StackIndex > 0")) return false;
    return Impl->Close_Read_Chunk() || Impl->Skip_Tree(Impl->StackIndex - 1);
}

uint32_t ChunkFileReaderClass::Cur_Chunk_ID() const
{
    return MK_VERIFY(Impl->StackIndex > 0, "StackIndex > 0") ? Impl->Stack[Impl->StackIndex - 1].Id : 0;
}

uint32_t ChunkFileReaderClass::Cur_Chunk_Length() const
{
    return MK_VERIFY(Impl->StackIndex > 0, "StackIndex > 0") ? Impl->Stack[Impl->StackIndex - 1].Get_Size() : 0;
}

bool ChunkFileReaderClass::Contains_Chunks() const
{
    return MK_VERIFY(Impl->StackIndex > 0, "StackIndex > 0") && Impl->Stack[Impl->StackIndex - 1].Contains_Chunks();
}

int ChunkFileReaderClass::Cur_Chunk_Depth() const
{
    return static_cast<int>(Impl->StackIndex);
}

uint32_t ChunkFileReaderClass::Cur_Chunk_Remaining() const
{
    return Impl->LeafLeft;
}

bool ChunkFileReaderClass::Open_Micro_Chunk()
{
    if (!MK_VERIFY(Impl->Initialized, "Initialized") || !MK_VERIFY(!Impl->InMicroChunk, "!InMicroChunk")) return false;
    uint8_t record[2];
    if (!Impl->Read_Fixed(TYPE_MICROCHUNK, record, sizeof(record))) return false;
    Impl->MicroId = record[0];
    Impl->MicroLength = record[1];
    Impl->MicroLeft = std::min<uint32_t>(Impl->MicroLength, Impl->LeafLeft);
    Impl->InMicroChunk = true;
    if (Impl->MicroLeft < Impl->MicroLength) {
        Impl->Damaged = true;
        MK_LOG(ChunkFileLog, LogLevel::Error,
               "ChunkFileReader - Microchunk %u of %u bytes runs past its chunk, which has %u left, in %s\n",
               Impl->MicroId, Impl->MicroLength, Impl->MicroLeft, Impl->File_Name());
    }
    return true;
}

bool ChunkFileReaderClass::Close_Micro_Chunk()
{
    if (!MK_VERIFY(Impl->InMicroChunk, "InMicroChunk")) return false;
    const bool isWhole = Impl->MicroLeft == 0 || Impl->Read_Payload(nullptr, Impl->MicroLeft);
    Impl->InMicroChunk = false;
    return isWhole && !Impl->HasFailed;
}

uint32_t ChunkFileReaderClass::Cur_Micro_Chunk_ID() const
{
    return MK_VERIFY(Impl->InMicroChunk, "InMicroChunk") ? Impl->MicroId : 0;
}

uint32_t ChunkFileReaderClass::Cur_Micro_Chunk_Length() const
{
    return MK_VERIFY(Impl->InMicroChunk, "InMicroChunk") ? Impl->MicroLength : 0;
}

} // namespace ChunkFile
