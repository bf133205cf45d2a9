#include "MKLib/ChunkFile/ChunkFileReader.h"
#include "MKLib/ChunkFile/ChunkFileWriter.h"
#include "MKLib/File/RAMFile.h"
#include "MKLib/MKDebug/Assert.h"
#include "MKLib/MKDebug/Logger.h"

#include <cstdlib>

/// Walks any bytes as a chunk file: every chunk with every typed read, the skipping of a scan, and Copy into a writer.
/// Beside the sanitizers' findings, a walk that doesn't come back to the root level is one.

namespace
{

using ChunkFile::ChunkFileReaderClass;
using ChunkFile::ChunkFileWriterClass;

template <typename T>
bool Read_One(ChunkFileReaderClass &reader, bool (ChunkFileReaderClass::*read)(T &))
{
    T value{};
    return (reader.*read)(value);
}

bool Read_Bit_Stream(ChunkFileReaderClass &reader)
{
    std::vector<uint8_t> bits;
    uint32_t count = 0;
    uint32_t second = 0;
    return reader.Read_Bit_Stream(bits, count, second);
}

bool Read_Raw(ChunkFileReaderClass &reader, uint32_t size)
{
    char bytes[8];
    int read = 0;
    return reader.Read_Raw_Bytes(bytes, size, &read);
}

bool Read_Short_String(ChunkFileReaderClass &reader)
{
    char text[8];
    return reader.Read_String(text, sizeof(text));
}

bool Read_Matrix3(ChunkFileReaderClass &reader)
{
    float values[9];
    return reader.Read_Matrix3(values);
}

using Read = bool (*)(ChunkFileReaderClass &);
using Reader = ChunkFileReaderClass;

constexpr Read Reads[] = {
    [](Reader &r) { return Read_One<int8_t>(r, &Reader::Read_Int8); },
    [](Reader &r) { return Read_One<uint8_t>(r, &Reader::Read_UInt8); },
    [](Reader &r) { return Read_One<int16_t>(r, &Reader::Read_Int16); },
    [](Reader &r) { return Read_One<uint16_t>(r, &Reader::Read_UInt16); },
    [](Reader &r) { return Read_One<int32_t>(r, &Reader::Read_Int32); },
    [](Reader &r) { return Read_One<uint32_t>(r, &Reader::Read_UInt32); },
    [](Reader &r) { return Read_One<int64_t>(r, &Reader::Read_Int64); },
    [](Reader &r) { return Read_One<uint64_t>(r, &Reader::Read_UInt64); },
    [](Reader &r) { return Read_One<float>(r, &Reader::Read_Float); },
    [](Reader &r) { return Read_One<MK::String>(r, &Reader::Read_String); },
    [](Reader &r) { return Read_One<NameTableRef>(r, &Reader::Read_String); },
    [](Reader &r) { return Read_One<std::u16string>(r, &Reader::Read_Wstring); },
    [](Reader &r) { return Read_One<bool>(r, &Reader::Read_Bool); },
    [](Reader &r) { return Read_One<Vector2>(r, &Reader::Read_Vector2); },
    [](Reader &r) { return Read_One<Vector3>(r, &Reader::Read_Vector3); },
    [](Reader &r) { return Read_One<Vector4>(r, &Reader::Read_Vector4); },
    [](Reader &r) { return Read_One<QuaternionClass>(r, &Reader::Read_Quaternion); },
    [](Reader &r) { return Read_One<RGBAClass>(r, &Reader::Read_RGBA); },
    [](Reader &r) { return Read_One<uint32_t>(r, &Reader::Read_Pointer); },
    [](Reader &r) { return Read_One<Mat3DClass>(r, &Reader::Read_Matrix3D); },
    [](Reader &r) { return Read_One<Vector2i>(r, &Reader::Read_Vector2i); },
    [](Reader &r) { return Read_One<Vector3i>(r, &Reader::Read_Vector3i); },
    [](Reader &r) { return Read_One<Vector4i>(r, &Reader::Read_Vector4i); },
    [](Reader &r) { return Read_One<uint8_t>(r, &Reader::Read_Flags); },
    [](Reader &r) { return Read_One<Vector3>(r, &Reader::Read_Facing); },
    [](Reader &r) { return Read_One<uint64_t>(r, &Reader::Read_Time); },
    [](Reader &r) { return Read_Bit_Stream(r); },
    [](Reader &r) { return Read_Raw(r, 0); },
    [](Reader &r) { return Read_Raw(r, 8); },
    [](Reader &r) { return Read_Short_String(r); },
    [](Reader &r) { return Read_Matrix3(r); },
    [](Reader &r) { return r.Read_Bytes(nullptr, 3); },
};

/// Values until none of the types reads any further. A bound, since one byte a read makes long leaves slow.
void Read_Values(Reader &reader, uint32_t first)
{
    constexpr uint32_t MOST_READS = 4096;
    uint32_t idle = 0;
    for (uint32_t i = first; idle < std::size(Reads) && i - first < MOST_READS; ++i) {
        const uint32_t before = reader.Cur_Chunk_Remaining();
        Reads[i % std::size(Reads)](reader);
        idle = reader.Cur_Chunk_Remaining() == before ? idle + 1 : 0;
    }
}

void Walk(Reader &reader)
{
    while (reader.Open_Chunk()) {
        Walk(reader);
        while (reader.Open_Micro_Chunk()) {
            Read_Values(reader, reader.Cur_Micro_Chunk_ID());
            reader.Close_Micro_Chunk();
        }
        Read_Values(reader, reader.Cur_Chunk_ID());
        reader.Close_Chunk();
    }
}

void Skip(Reader &reader)
{
    while (reader.Open_Chunk()) reader.Close_Chunk();
}

void Copy_To(Reader &reader, uint32_t mode)
{
    RAMFileClass target;
    ChunkFileWriterClass writer(&target, mode, 1, false);
    Copy(writer, reader);
    writer.Close();
}

template <typename Use>
void Use_Bytes(const uint8_t *data, size_t size, Use use)
{
    RAMFileClass file(data, static_cast<int64_t>(size));
    Reader reader(&file);
    use(reader);
    if (reader.Cur_Chunk_Depth() != 0 || (reader.Is_Initialized() && reader.Open_Chunk())) std::abort();
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int *, char ***)
{
    MKDebug::Logger::Configure_Console(MKDebug::LogLevel::Off);
    MKDebug::Set_Assert_Collector([](const MKDebug::AssertReport &, void *) {}, nullptr);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    Use_Bytes(data, size, Walk);
    Use_Bytes(data, size, Skip);
    Use_Bytes(data, size, [](Reader &reader) { Copy_To(reader, ChunkFile::COMPRESSION_NONE); });
    Use_Bytes(data, size, [](Reader &reader) {
        if (reader.Is_Validated()) Copy_To(reader, ChunkFile::COMPRESSION_XML);
        Skip(reader);
    });
    return 0;
}
