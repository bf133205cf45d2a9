#pragma once

#include "MKLib/MKDebug/Assert.h"
#include "MKLib/NoCopy.h"

#include <cstdint>
#include <utility>

/// Open-addressed table keyed by the address of a Key, for small sets: the first `InlineCount` slots stand in the
/// object itself. A null key marks a free slot, and so is no key. At most capacity - capacity / SpareDivisor slots are
/// in use, so that every probe ends. No lock.
template <typename Key, typename Value, uint32_t InlineCount = 4, uint32_t SpareDivisor = 3>
class FastPtrHashMap : public MK::NoCopy
{
    static_assert((InlineCount & (InlineCount - 1)) == 0, "a capacity is a power of two");
    static_assert(InlineCount / SpareDivisor > 0, "one slot must stay free");

public:
    using Pair = std::pair<Key *, Value>;

    FastPtrHashMap() = default;
    ~FastPtrHashMap() { delete[] HeapTable; }

    /// Adds a pair. False when the key is there already, whose value stays, and for a null key, which asserts.
    bool Insert(const Pair &item)
    {
        if (!MK_VERIFY(item.first != nullptr, "!item.first")) return false;
        if (Capacity == 0)
            Capacity = InlineCount;
        else if (Count >= Capacity - Capacity / SpareDivisor)
            Grow();
        return Insert_In(Get_Table(), Capacity, item) && ++Count;
    }

    /// The value of a key, or null. Valid until the next insertion or removal.
    Value *Find(const Key *key)
    {
        Pair *const slot = Find_Slot(key);
        return slot ? &slot->second : nullptr;
    }
    const Value *Find(const Key *key) const { return const_cast<FastPtrHashMap *>(this)->Find(key); }

    /// False when the key isn't there.
    bool Remove(const Key *key)
    {
        Pair *const slot = Find_Slot(key);
        if (!slot) return false;
        Close_Gap(static_cast<uint32_t>(slot - Get_Table()));
        --Count;
        return true;
    }

    uint32_t Get_Count() const { return Count; }
    uint32_t Get_Capacity() const { return Capacity; }
    bool Is_On_Heap() const { return HeapTable != nullptr; }

    /// Calls visit(key, value) for each pair, in slot order. The visitor must not change the table.
    template <typename Visitor>
    void For_Each(Visitor &&visit) const
    {
        const Pair *table = HeapTable ? HeapTable : InlineTable;
        for (uint32_t slot = 0; slot < Capacity; ++slot)
            if (table[slot].first) visit(table[slot].first, table[slot].second);
    }

private:
    Pair *Get_Table() { return HeapTable ? HeapTable : InlineTable; }

    static uint32_t Home(const Key *key, uint32_t capacity)
    {
        return static_cast<uint32_t>(reinterpret_cast<uintptr_t>(key) >> 4) & (capacity - 1);
    }

    static bool Insert_In(Pair *table, uint32_t capacity, const Pair &item)
    {
        uint32_t slot = Home(item.first, capacity);
        for (uint32_t step = 0; step < capacity; ++step, slot = (slot + 1) & (capacity - 1)) {
            if (table[slot].first == item.first) return false;
            if (table[slot].first) continue;
            table[slot] = item;
            return true;
        }
        return false;
    }

    Pair *Find_Slot(const Key *key)
    {
        Pair *const table = Get_Table();
        uint32_t slot = Capacity ? Home(key, Capacity) : 0;
        for (uint32_t step = 0; step < Capacity; ++step, slot = (slot + 1) & (Capacity - 1)) {
            if (!table[slot].first) return nullptr;
            if (table[slot].first == key) return &table[slot];
        }
        return nullptr;
    }

    /// Frees a slot and moves up the pairs behind it that a probe would no longer reach across the gap.
    void Close_Gap(uint32_t gap)
    {
        Pair *const table = Get_Table();
        const uint32_t mask = Capacity - 1;
        for (uint32_t slot = (gap + 1) & mask; table[slot].first; slot = (slot + 1) & mask) {
            const uint32_t fromHome = (slot - Home(table[slot].first, Capacity)) & mask;
            const uint32_t fromGap = (slot - gap) & mask;
            if (fromHome < fromGap) continue;
            table[gap] = table[slot];
            gap = slot;
        }
        table[gap] = Pair();
    }

    void Grow()
    {
        const uint32_t newCapacity = Capacity * 2;
        Pair *const newTable = new Pair[newCapacity]();
        uint32_t moved = 0;
        For_Each([&](Key *key, const Value &value) { moved += Insert_In(newTable, newCapacity, {key, value}); });
        MK_ASSERT(moved == Count, "ArrayCount == old_count");
        delete[] HeapTable;
        HeapTable = newTable;
        Capacity = newCapacity;
    }

    uint32_t Capacity = 0; ///< power of two
    uint32_t Count = 0;
    Pair *HeapTable = nullptr; ///< null while the inline pairs are the table
    Pair InlineTable[InlineCount] = {};
};
