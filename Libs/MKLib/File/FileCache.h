#pragma once

#include "MKLib/MKString.h"
#include "MKLib/RefCount.h"

#include <cstdint>
#include <string_view>
#include <vector>

/// The bytes of one cached file. They never change, so any thread may read them.
class FileCacheEntryClass final : public RefCountClass
{
public:
    explicit FileCacheEntryClass(std::vector<uint8_t> bytes) : Bytes(std::move(bytes)) {}

    int64_t Get_Size() const { return static_cast<int64_t>(Bytes.size()); }
    /// Bytes copied from `position` on; 0 from the end on.
    int64_t Read(int64_t position, void *buffer, int64_t size) const;

private:
    const std::vector<uint8_t> Bytes;
};

/// Files that are served from memory in front of disk and archives. It starts empty, and then costs an open one load.
/// Names match with `/` as `\`, without a leading `.\`, and with A to Z equal to a to z. Any thread.
class FileCacheClass
{
public:
    FileCacheClass() = delete;

    /// Replaces what the name had. Files that are open on the old bytes keep them.
    static void Add(std::string_view name, std::vector<uint8_t> bytes);
    static bool Remove(std::string_view name);
    static void Clear();
    /// Null when the name isn't cached or look-up is off.
    static SmartPtr<FileCacheEntryClass> Find(std::string_view name);

    /// Whether opens look here; on by default.
    static void Set_Enabled(bool enabled);
    /// Opens the real file beside each cached one and logs reads on which the two differ; off by default.
    static void Set_Verifying(bool verifying);
    static bool Is_Verifying();
};
