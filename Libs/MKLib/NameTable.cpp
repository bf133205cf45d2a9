#include "MKLib/NameTable.h"

#include <atomic>
#include <mutex>
#include <unordered_set>
#include <utility>

struct NameTableRef::EntryStruct
{
    MK::String Text;
    std::atomic<int> Handles{1};
};

namespace
{

/// Looks entries up by their text without building a string for the question.
struct TextHash
{
    using is_transparent = void;
    size_t operator()(std::string_view text) const { return std::hash<std::string_view>()(text); }
    template <typename E> size_t operator()(const E *entry) const { return (*this)(std::string_view(entry->Text)); }
};

struct TextEqual
{
    using is_transparent = void;
    static std::string_view Text(std::string_view text) { return text; }
    template <typename E> static std::string_view Text(const E *entry) { return entry->Text; }
    template <typename A, typename B> bool operator()(const A &a, const B &b) const { return Text(a) == Text(b); }
};

template <typename Entry> struct Table
{
    std::mutex Lock;
    std::unordered_set<Entry *, TextHash, TextEqual> Entries;

    /// Never destroyed: handles in static objects may outlive any order of destruction.
    static Table &Get()
    {
        static Table *table = new Table;
        return *table;
    }
};

} // namespace

NameTableRef::NameTableRef(std::string_view text)
{
    if (text.empty()) return;
    auto &table = Table<EntryStruct>::Get();
    const std::lock_guard lock(table.Lock);
    if (const auto found = table.Entries.find(text); found != table.Entries.end()) {
        Entry = *found;
        Entry->Handles.fetch_add(1, std::memory_order_relaxed);
        return;
    }
    Entry = new EntryStruct{MK::String(text)};
    table.Entries.insert(Entry);
}

NameTableRef::NameTableRef(const NameTableRef &other) : Entry(other.Entry)
{
    if (Entry) Entry->Handles.fetch_add(1, std::memory_order_relaxed);
}

NameTableRef::NameTableRef(NameTableRef &&other) noexcept : Entry(std::exchange(other.Entry, nullptr)) {}

NameTableRef &NameTableRef::operator=(const NameTableRef &other)
{
    NameTableRef copy(other);
    std::swap(Entry, copy.Entry);
    return *this;
}

NameTableRef &NameTableRef::operator=(NameTableRef &&other) noexcept
{
    std::swap(Entry, other.Entry);
    return *this;
}

NameTableRef::~NameTableRef()
{
    if (!Entry) return;
    // The last count goes under the lock, so that a look-up can't revive an entry that is about to be freed.
    auto &table = Table<EntryStruct>::Get();
    const std::lock_guard lock(table.Lock);
    if (Entry->Handles.fetch_sub(1, std::memory_order_acq_rel) != 1) return;
    table.Entries.erase(Entry);
    delete Entry;
}

const MK::String &NameTableRef::Get_String() const
{
    static const MK::String EMPTY;
    return Entry ? Entry->Text : EMPTY;
}
