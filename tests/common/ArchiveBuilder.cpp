#include "common/ArchiveBuilder.h"

#include <algorithm>
#include <bit>

#include <zlib.h>

namespace MKTest
{

void Put_U32(Bytes &bytes, size_t offset, uint32_t value)
{
    for (size_t i = 0; i < 4; ++i) bytes.at(offset + i) = static_cast<uint8_t>(value >> (8 * i));
}

namespace
{

void Append_U16(Bytes &bytes, uint16_t value)
{
    bytes.push_back(static_cast<uint8_t>(value));
    bytes.push_back(static_cast<uint8_t>(value >> 8));
}

void Append_U32(Bytes &bytes, uint32_t value)
{
    bytes.resize(bytes.size() + 4);
    Put_U32(bytes, bytes.size() - 4, value);
}

uint32_t Key_Of(std::string name)
{
    for (char &c : name)
        if (c == '/')
            c = '\\';
        else if (c >= 'a' && c <= 'z')
            c = static_cast<char>(c - 32);
    return static_cast<uint32_t>(
        crc32(0, reinterpret_cast<const Bytef *>(name.data()), static_cast<uInt>(name.size())));
}

} // namespace

ArchiveBuilder &ArchiveBuilder::Add(std::string_view name, std::string_view data, uint16_t flags)
{
    Entries.push_back({std::string(name), std::string(data), flags});
    return *this;
}

ArchiveBuilder &ArchiveBuilder::With_Prefix(float version, uint32_t marker)
{
    HasPrefix = true;
    Version = version;
    Marker = marker;
    return *this;
}

Bytes ArchiveBuilder::Build() const
{
    Bytes file = Build_Header(static_cast<uint32_t>(Build_Header(0).size()));
    const Bytes data = Build_Data();
    file.insert(file.end(), data.begin(), data.end());
    return file;
}

Bytes ArchiveBuilder::Build_Data() const
{
    Bytes data;
    for (const Entry &entry : Entries) data.insert(data.end(), entry.Data.begin(), entry.Data.end());
    return data;
}

Bytes ArchiveBuilder::Build_Header(uint32_t dataStart) const
{
    struct Row
    {
        uint32_t key;
        uint32_t offset;
        uint16_t entry;
    };
    std::vector<Row> rows;
    Bytes strings;
    uint32_t offset = dataStart;
    for (size_t i = 0; i < Entries.size(); ++i) {
        const Entry &entry = Entries[i];
        Append_U16(strings, static_cast<uint16_t>(entry.Name.size()));
        strings.insert(strings.end(), entry.Name.begin(), entry.Name.end());
        rows.push_back({Key_Of(entry.Name), offset, static_cast<uint16_t>(i)});
        offset += static_cast<uint32_t>(entry.Data.size());
    }
    std::sort(rows.begin(), rows.end(), [](const Row &a, const Row &b) { return a.key < b.key; });

    Bytes header;
    if (HasPrefix) {
        Append_U32(header, Marker);
        Append_U32(header, std::bit_cast<uint32_t>(Version));
        Append_U32(header, static_cast<uint32_t>(12 + 12 + strings.size() + 20 * rows.size()));
    }
    Append_U32(header, static_cast<uint32_t>(rows.size()));
    Append_U32(header, static_cast<uint32_t>(Entries.size()));
    Append_U32(header, static_cast<uint32_t>(strings.size()));
    header.insert(header.end(), strings.begin(), strings.end());
    for (size_t i = 0; i < rows.size(); ++i) {
        const Entry &entry = Entries[rows[i].entry];
        Append_U16(header, entry.Flags);
        Append_U32(header, rows[i].key);
        Append_U32(header, static_cast<uint32_t>(i));
        Append_U32(header, static_cast<uint32_t>(entry.Data.size()));
        Append_U32(header, rows[i].offset);
        Append_U16(header, rows[i].entry);
    }
    return header;
}

} // namespace MKTest
