#pragma once

/// Run-time classes of the engine: one static record a class, chained to the parent's, compared by address.
struct RunTimeTypeClass
{
    const char *Name;
    const RunTimeTypeClass *Parent; ///< null at the root
};

/// Declares the record of a class and the operation that tells it. `RunTimeType` is the class's own record.
#define MK_RUN_TIME_TYPE                                                                                               \
    static const RunTimeTypeClass RunTimeType;                                                                         \
    const RunTimeTypeClass *Get_Run_Time_Type() const override { return &RunTimeType; }

/// The same for the root of a chain.
#define MK_RUN_TIME_TYPE_ROOT                                                                                          \
    static const RunTimeTypeClass RunTimeType;                                                                         \
    virtual const RunTimeTypeClass *Get_Run_Time_Type() const { return &RunTimeType; }

#define MK_DEFINE_RUN_TIME_TYPE(type, parent) const RunTimeTypeClass type::RunTimeType{#type, &parent::RunTimeType};
#define MK_DEFINE_RUN_TIME_TYPE_ROOT(type) const RunTimeTypeClass type::RunTimeType{#type, nullptr};

/// The object as a T when T is its class or an ancestor of it, otherwise null. Null in, null out.
template <typename T, typename U> T *MK_Dynamic_Cast(U *object)
{
    if (!object) return nullptr;
    for (const RunTimeTypeClass *record = object->Get_Run_Time_Type(); record; record = record->Parent)
        if (record == &T::RunTimeType) return static_cast<T *>(object);
    return nullptr;
}
