#include "MKLib/EnumConverter.h"

#include "MKLib/MKString.h"
#include "MKLib/Singleton.h"

#include <algorithm>
#include <mutex>
#include <shared_mutex>
#include <vector>

namespace
{

struct EnumTable
{
    std::string_view Name;
    std::span<const EnumConverterClass::Entry> Entries;
};

class EnumRegistry
{
public:
    void Set(const EnumTable &table)
    {
        const std::unique_lock guard(Lock);
        const auto place = Find_Place(table.Name);
        if (place != Tables.end())
            *place = table;
        else
            Tables.push_back(table);
    }

    /// False when there is no such enum. The entries are static, so they outlive the lock.
    bool Find(std::string_view name, std::span<const EnumConverterClass::Entry> &entries)
    {
        const std::shared_lock guard(Lock);
        const auto place = Find_Place(name);
        if (place == Tables.end()) return false;
        entries = place->Entries;
        return true;
    }

private:
    std::vector<EnumTable>::iterator Find_Place(std::string_view name)
    {
        return std::find_if(Tables.begin(), Tables.end(),
                            [name](const EnumTable &table) { return table.Name == name; });
    }

    std::shared_mutex Lock;
    std::vector<EnumTable> Tables;
};

EnumRegistry &Registry()
{
    return SingletonInstance<EnumRegistry>::Get();
}

} // namespace

void EnumConverterClass::Register(const char *enumName, std::span<const Entry> entries)
{
    Registry().Set({enumName, entries});
}

bool EnumConverterClass::Is_Registered(std::string_view enumName)
{
    std::span<const Entry> entries;
    return Registry().Find(enumName, entries);
}

bool EnumConverterClass::To_Value(std::string_view enumName, std::string_view text, int32_t &value)
{
    std::span<const Entry> entries;
    return Registry().Find(enumName, entries) && To_Value(entries, text, value);
}

const char *EnumConverterClass::To_Text(std::string_view enumName, int32_t value)
{
    std::span<const Entry> entries;
    return Registry().Find(enumName, entries) ? To_Text(entries, value) : nullptr;
}

bool EnumConverterClass::To_Value(std::span<const Entry> entries, std::string_view text, int32_t &value)
{
    for (const Entry &entry : entries) {
        if (!MK::Equal_Ignoring_Case(entry.Text, text)) continue;
        value = entry.Value;
        return true;
    }
    return false;
}

const char *EnumConverterClass::To_Text(std::span<const Entry> entries, int32_t value)
{
    for (const Entry &entry : entries)
        if (entry.Value == value) return entry.Text;
    return nullptr;
}
