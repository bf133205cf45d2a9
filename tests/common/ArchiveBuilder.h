#pragma once

#include "common/TempFiles.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace MKTest
{

/// Makes the bytes of an archive. Entries are sorted by name CRC as the format wants; data lies in the order of adding.
class ArchiveBuilder
{
public:
    ArchiveBuilder &Add(std::string_view name, std::string_view data, uint16_t flags = 0);
    /// Puts the 12-byte prefix in front.
    ArchiveBuilder &With_Prefix(float version, uint32_t marker = 0xFFFFFFFF);

    /// Header and data in one file.
    Bytes Build() const;
    /// The two parts of it, the header for data that starts at a place. Those of a companion file start at 0.
    Bytes Build_Header(uint32_t dataStart) const;
    Bytes Build_Data() const;

private:
    struct Entry
    {
        std::string Name;
        std::string Data;
        uint16_t Flags;
    };

    std::vector<Entry> Entries;
    bool HasPrefix = false;
    float Version = 0;
    uint32_t Marker = 0;
};

void Put_U32(Bytes &bytes, size_t offset, uint32_t value);

} // namespace MKTest
