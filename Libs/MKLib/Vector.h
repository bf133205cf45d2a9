#pragma once

#include "MKLib/MKDebug/Assert.h"
#include "MKLib/NoCopy.h"
#include "MKPlatform/Memory.h"

#include <cstddef>
#include <cstdint>
#include <new>
#include <type_traits>
#include <utility>

/// How a DynamicVectorClass has its storage.
enum VectorStorage : int
{
    VECTOR_STORAGE_OBJECTS = 0, ///< new[] and delete[]: every element up to the capacity is constructed
    VECTOR_STORAGE_PLAIN = 1    ///< a heap block that moves with its elements; for plain data only, never constructed
};

/// Growable array. The capacity shares its word with a flag of the owner's, which no size operation touches. No lock:
/// the owner provides it.
template <typename T, int Storage = VECTOR_STORAGE_OBJECTS>
class DynamicVectorClass : public MK::NoCopy
{
    static_assert(Storage == VECTOR_STORAGE_OBJECTS || Storage == VECTOR_STORAGE_PLAIN);
    static_assert(Storage == VECTOR_STORAGE_OBJECTS || std::is_trivially_copyable_v<T>, "moved as bytes");

public:
    DynamicVectorClass() = default;
    virtual ~DynamicVectorClass() { Free(Elements); }

    /// 0 frees the storage. Fresh storage has no active elements; otherwise the active ones stay, as far as they fit.
    /// `makeAllActive` then declares every element active; those of plain storage hold whatever was there.
    void Resize(int32_t newCapacity, bool makeAllActive = false);

    /// Appends, doubling the capacity when it is used up.
    void Add(const T &element)
    {
        T copy(element); // `element` may stand in the storage that is about to move
        if (ActiveCount == Get_Capacity()) Resize(ActiveCount < 4 ? 4 : ActiveCount * 2);
        Elements[ActiveCount++] = std::move(copy);
    }

    /// Removes one element and closes the gap; the capacity stays.
    void Remove(int32_t index)
    {
        if (!Is_Index(index)) return;
        for (int32_t i = index + 1; i < ActiveCount; ++i) Elements[i - 1] = std::move(Elements[i]);
        --ActiveCount;
        if constexpr (Storage == VECTOR_STORAGE_OBJECTS) Elements[ActiveCount] = T();
    }

    /// The first element equal to `element`, or -1.
    int32_t Find(const T &element) const
    {
        for (int32_t i = 0; i < ActiveCount; ++i)
            if (Elements[i] == element) return i;
        return -1;
    }

    /// Expects an index below the count; another one is reported, and the access goes on with it.
    T &operator[](int32_t index)
    {
        Is_Index(index);
        return Elements[index];
    }
    const T &operator[](int32_t index) const
    {
        Is_Index(index);
        return Elements[index];
    }

    int32_t Get_Count() const { return ActiveCount; }
    int32_t Get_Capacity() const { return static_cast<int32_t>(CapacityAndFlag & ~FLAG); }
    bool Is_Empty() const { return ActiveCount == 0; }
    bool Get_Flag() const { return (CapacityAndFlag & FLAG) != 0; }
    void Set_Flag(bool flag) { CapacityAndFlag = (CapacityAndFlag & ~FLAG) | (flag ? FLAG : 0); }

    T *begin() { return Elements; }
    T *end() { return Elements + ActiveCount; }
    const T *begin() const { return Elements; }
    const T *end() const { return Elements + ActiveCount; }

private:
    static constexpr uint32_t FLAG = 0x80000000u;

    bool Is_Index(int32_t index) const
    {
        return MK_VERIFY(index < ActiveCount, "index < ActiveCount") && MK_VERIFY(index >= 0, "index >= 0");
    }

    void Set_Capacity(int32_t capacity)
    {
        CapacityAndFlag = (CapacityAndFlag & FLAG) | static_cast<uint32_t>(capacity);
    }

    static void Free(T *elements)
    {
        if constexpr (Storage == VECTOR_STORAGE_OBJECTS)
            delete[] elements;
        else
            _MK_free(elements);
    }

    T *Reallocate(int32_t capacity)
    {
        if constexpr (Storage == VECTOR_STORAGE_OBJECTS) {
            T *fresh = new T[static_cast<size_t>(capacity)]();
            for (int32_t i = 0; i < ActiveCount && i < capacity; ++i) fresh[i] = std::move(Elements[i]);
            delete[] Elements;
            return fresh;
        } else {
            void *moved = _MK_realloc(Elements, static_cast<size_t>(capacity) * sizeof(T));
            if (!moved) throw std::bad_alloc();
            return static_cast<T *>(moved);
        }
    }

    T *Elements = nullptr;
    int32_t ActiveCount = 0;
    uint32_t CapacityAndFlag = 0;
};

template <typename T, int Storage>
void DynamicVectorClass<T, Storage>::Resize(int32_t newCapacity, bool makeAllActive)
{
    if (!MK_VERIFY(newCapacity >= 0, "new_capacity >= 0")) return;
    if (newCapacity == 0) {
        Free(Elements);
        Elements = nullptr;
        ActiveCount = 0;
        Set_Capacity(0);
        return;
    }
    if (!Elements) ActiveCount = 0;
    if (newCapacity != Get_Capacity()) Elements = Reallocate(newCapacity);
    Set_Capacity(newCapacity);
    if (ActiveCount > newCapacity || makeAllActive) ActiveCount = newCapacity;
}
