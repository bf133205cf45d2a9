#include "MKLib/File/FileCache.h"

#include <algorithm>
#include <atomic>
#include <cstring>
#include <map>
#include <mutex>

namespace
{

std::mutex CacheLock;
std::map<MK::String, SmartPtr<FileCacheEntryClass>> &Entries()
{
    static std::map<MK::String, SmartPtr<FileCacheEntryClass>> entries;
    return entries;
}
std::atomic<bool> HasEntries{false};
std::atomic<bool> Enabled{true};
std::atomic<bool> Verifying{false};

MK::String Cache_Key(std::string_view name)
{
    MK::String key = MK::Lowered(name);
    std::replace(key.begin(), key.end(), '/', '\\');
    if (key.starts_with(".\\")) key.erase(0, 2);
    return key;
}

} // namespace

int64_t FileCacheEntryClass::Read(int64_t position, void *buffer, int64_t size) const
{
    const int64_t count = std::min(size, Get_Size() - position);
    if (position < 0 || count <= 0) return 0;
    std::memcpy(buffer, Bytes.data() + position, static_cast<size_t>(count));
    return count;
}

void FileCacheClass::Add(std::string_view name, std::vector<uint8_t> bytes)
{
    const SmartPtr<FileCacheEntryClass> entry(new FileCacheEntryClass(std::move(bytes)));
    const std::lock_guard lock(CacheLock);
    Entries()[Cache_Key(name)] = entry;
    HasEntries = true;
}

bool FileCacheClass::Remove(std::string_view name)
{
    const std::lock_guard lock(CacheLock);
    const bool removed = Entries().erase(Cache_Key(name)) > 0;
    HasEntries = !Entries().empty();
    return removed;
}

void FileCacheClass::Clear()
{
    const std::lock_guard lock(CacheLock);
    Entries().clear();
    HasEntries = false;
}

SmartPtr<FileCacheEntryClass> FileCacheClass::Find(std::string_view name)
{
    if (!HasEntries.load(std::memory_order_relaxed) || !Enabled.load(std::memory_order_relaxed)) return nullptr;
    const std::lock_guard lock(CacheLock);
    const auto found = Entries().find(Cache_Key(name));
    return found == Entries().end() ? nullptr : found->second;
}

void FileCacheClass::Set_Enabled(bool enabled)
{
    Enabled = enabled;
}

void FileCacheClass::Set_Verifying(bool verifying)
{
    Verifying = verifying;
}

bool FileCacheClass::Is_Verifying()
{
    return Verifying;
}
