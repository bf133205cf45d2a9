#include "MKLib/RefCount.h"

RefCountClass::~RefCountClass()
{
    [[maybe_unused]] const int32_t count = Get_Ref_Count();
    MK_ASSERT(count == 0 || count == -1, "RefCount == 0 || RefCount == -1");
}

void RefCountClass::Delete_This() { delete this; }

int32_t RefCountClass::Add_Ref() const
{
    MK_ASSERT(Get_Ref_Count() != -1, "RefCount != -1");
    return RefCount.fetch_add(1, std::memory_order_relaxed) + 1;
}

int32_t RefCountClass::Release_Ref() const
{
    const int32_t before = RefCount.load(std::memory_order_acquire);
    MK_ASSERT(before != -1, "RefCount != -1");
    // The only owner meets no other: whoever could add a reference now would have to hold one. That spares the locked
    // decrement for most objects, which have one owner for life.
    if (before != 1) {
        const int32_t count = RefCount.fetch_sub(1, std::memory_order_acq_rel) - 1;
        MK_ASSERT(count >= 0, "refcount >= 0");
        if (count != 0) return count;
    }
    RefCount.store(-1, std::memory_order_relaxed);
    const_cast<RefCountClass *>(this)->Delete_This();
    return 0;
}
