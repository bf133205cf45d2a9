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
    MK_ASSERT(Get_Ref_Count() != -1, "RefCount != -1");
    const int32_t count = RefCount.fetch_sub(1, std::memory_order_acq_rel) - 1;
    MK_ASSERT(count >= 0, "refcount >= 0");
    if (count != 0) return count;
    RefCount.store(-1, std::memory_order_relaxed);
    const_cast<RefCountClass *>(this)->Delete_This();
    return 0;
}
