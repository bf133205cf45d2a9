#pragma once

#include "MKLib/MKString.h"

/// Handle to an interned string: equal texts share one entry, so handles compare by address. Entries are counted and
/// leave the table with their last handle. Any thread may make, copy and drop handles.
class NameTableRef
{
public:
    NameTableRef() = default;
    NameTableRef(std::string_view text);
    NameTableRef(const NameTableRef &other);
    NameTableRef(NameTableRef &&other) noexcept;
    NameTableRef &operator=(const NameTableRef &other);
    NameTableRef &operator=(NameTableRef &&other) noexcept;
    ~NameTableRef();

    /// The text; the empty string for an empty handle. Lives as long as the handle.
    const MK::String &Get_String() const;
    bool Is_Empty() const { return Entry == nullptr; }

    friend bool operator==(const NameTableRef &left, const NameTableRef &right) { return left.Entry == right.Entry; }

private:
    struct EntryStruct;
    EntryStruct *Entry = nullptr;
};
