#pragma once

#include "MKLib/MKDebug/Assert.h"

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <type_traits>

/// Intrusive reference count. 0 is a fresh object that nobody has claimed (a local or a member stays there for life),
/// positive is the number of owners, -1 is an object that is being destroyed. Counted objects are released, never deleted.
class RefCountClass
{
public:
    RefCountClass() = default;
    RefCountClass(const RefCountClass &) : RefCount(0) {}
    RefCountClass &operator=(const RefCountClass &) { return *this; }

    virtual ~RefCountClass();
    /// The only way by which the count ends an object; a class may override it to return the object to a pool.
    virtual void Delete_This();

    /// Both return the new count; `Release_Ref` at 0 marks the object as dying, ends it and returns 0. Any thread.
    int32_t Add_Ref() const;
    int32_t Release_Ref() const;
    /// The first reference of an object that no other thread can know yet; expects a count of 0.
    void Claim_Fresh() const { RefCount.store(1, std::memory_order_relaxed); }
    /// Takes one reference back without ending the object at 0; only for handing a fresh object on.
    void Drop_Ref() const { RefCount.fetch_sub(1, std::memory_order_relaxed); }
    int32_t Get_Ref_Count() const { return RefCount.load(std::memory_order_relaxed); }

private:
    mutable std::atomic<int32_t> RefCount{0};
};

/// Owner of one counted object. Safe to copy between threads, not to assign from two at once.
template <typename T> class SmartPtr
{
public:
    SmartPtr() = default;
    SmartPtr(std::nullptr_t) {}
    SmartPtr(T *object) : Object(object) { Acquire(Object); }
    /// Takes an object that was just made: see `Claim_Fresh`.
    static SmartPtr Of_Fresh(T *object)
    {
        SmartPtr owner;
        owner.Object = object;
        object->Claim_Fresh();
        return owner;
    }
    SmartPtr(const SmartPtr &other) : Object(other.Object) { Acquire(Object); }
    SmartPtr(SmartPtr &&other) noexcept : Object(other.Object) { other.Object = nullptr; }
    template <typename U, typename = std::enable_if_t<std::is_convertible_v<U *, T *>>>
    SmartPtr(const SmartPtr<U> &other) : SmartPtr(other.Get())
    {
    }
    ~SmartPtr() { Release(Object); }

    SmartPtr &operator=(T *object)
    {
        if (object == Object) return *this;
        T *old = Object;
        Object = object;
        Release(old);
        Acquire(Object);
        return *this;
    }
    SmartPtr &operator=(const SmartPtr &other) { return *this = other.Object; }
    SmartPtr &operator=(SmartPtr &&other) noexcept
    {
        if (this == &other) return *this;
        T *old = Object;
        Object = other.Object;
        other.Object = nullptr;
        Release(old);
        return *this;
    }

    T *Get() const { return Object; }
    /// Gives the object up without ending it: a fresh one goes back to a count of 0, for the next owner to take.
    T *Detach()
    {
        T *object = Object;
        Object = nullptr;
        if (object) object->Drop_Ref();
        return object;
    }
    T *operator->() const { return Object; }
    T &operator*() const { return *Object; }
    explicit operator bool() const { return Object != nullptr; }

    friend bool operator==(const SmartPtr &left, const SmartPtr &right) { return left.Object == right.Object; }
    friend bool operator==(const SmartPtr &left, const T *right) { return left.Object == right; }

private:
    static void Acquire(T *object)
    {
        if (object) object->Add_Ref();
    }
    static void Release(T *object)
    {
        if (object) object->Release_Ref();
    }

    T *Object = nullptr;
};
