#include "vro/JsonReading.h"

#include <cmath>
#include <limits>

namespace vro
{

namespace
{

/// No effect comes near these: a text that does is refused before it costs memory, or time with each further key.
constexpr int MAXIMUM_DEPTH = 32;
constexpr size_t MAXIMUM_KEYS = 64;

[[noreturn]] void Expected(const char *what, const Json &value, const std::string &pointer)
{
    throw JsonError(pointer, std::string("expected ") + what + ", found " + value.type_name());
}

template <typename T>
T Read_Integer(const Json &value, const std::string &pointer)
{
    if (!value.is_number_integer()) Expected("a whole number", value, pointer);
    // Unsigned numbers beyond the signed range would wrap when read as signed ones.
    const bool tooLarge = value.is_number_unsigned() && value.get<uint64_t>() > std::numeric_limits<T>::max();
    if (tooLarge || (!value.is_number_unsigned() && (value.get<int64_t>() < std::numeric_limits<T>::min() ||
                                                     value.get<int64_t>() > std::numeric_limits<T>::max())))
        throw JsonError(pointer, "the number " + value.dump() + " is out of range");
    return value.get<T>();
}

/// Follows the parser, and so knows the place where a text goes wrong.
class PlaceWatch
{
public:
    void See(Json::parse_event_t event, const Json &parsed)
    {
        switch (event) {
        case Json::parse_event_t::object_start:
        case Json::parse_event_t::array_start:
            Count_Item();
            if (Levels.size() >= MAXIMUM_DEPTH) Refuse("the structure is deeper than an effect can be");
            Levels.push_back({event == Json::parse_event_t::array_start, 0, {}, {}});
            break;
        case Json::parse_event_t::object_end:
        case Json::parse_event_t::array_end: Levels.pop_back(); break;
        case Json::parse_event_t::key: See_Key(parsed.get<std::string>()); break;
        case Json::parse_event_t::value: Count_Item(); break;
        }
    }

    [[noreturn]] void Refuse(const std::string &reason) const { throw JsonError(Pointer(), reason); }

private:
    struct Level
    {
        bool IsArray;
        size_t Count; ///< of an array's items, with the one that is being read
        std::string Key;
        std::set<std::string> Keys;
    };

    void Count_Item()
    {
        if (!Levels.empty() && Levels.back().IsArray) ++Levels.back().Count;
    }

    void See_Key(const std::string &key)
    {
        Level &level = Levels.back();
        level.Key = key;
        if (!level.Keys.insert(key).second) Refuse("this key is given twice");
        if (level.Keys.size() > MAXIMUM_KEYS) Refuse("the object has more keys than any of an effect");
    }

    std::string Pointer() const
    {
        std::string pointer;
        for (const Level &level : Levels) {
            if (level.IsArray && level.Count > 0)
                pointer = Item_Pointer(pointer, level.Count - 1);
            else if (!level.IsArray && !level.Keys.empty())
                pointer = Member_Pointer(pointer, level.Key);
        }
        return pointer;
    }

    std::vector<Level> Levels;
};

} // namespace

Json Parse_Json(const std::string &text)
{
    PlaceWatch watch;
    const auto see = [&watch](int, Json::parse_event_t event, Json &parsed) {
        watch.See(event, parsed);
        return true;
    };
    try {
        return Json::parse(text, see);
    } catch (const Json::exception &error) {
        // nlohmann's text starts with its own error number, which tells a user nothing.
        std::string reason = error.what();
        if (const size_t start = reason.find("] "); start != std::string::npos) reason.erase(0, start + 2);
        watch.Refuse(reason);
    }
}

std::string Member_Pointer(const std::string &pointer, const std::string &key)
{
    std::string result = pointer + '/';
    for (const char letter : key) {
        if (letter == '~')
            result += "~0";
        else if (letter == '/')
            result += "~1";
        else
            result += letter;
    }
    return result;
}

std::string Item_Pointer(const std::string &pointer, size_t index)
{
    return pointer + '/' + std::to_string(index);
}

ObjectReader::ObjectReader(const Json &value, std::string pointer) : Object(value), ObjectPointer(std::move(pointer))
{
    if (!value.is_object()) Expected("an object", value, ObjectPointer);
}

const Json *ObjectReader::Find(const char *key)
{
    Known.insert(key);
    const auto found = Object.find(key);
    return found == Object.end() ? nullptr : &*found;
}

void ObjectReader::Refuse_Other_Keys() const
{
    for (const auto &item : Object.items())
        if (!Known.contains(item.key())) throw JsonError(Pointer(item.key().c_str()), "unknown key");
}

bool Read_Bool(const Json &value, const std::string &pointer)
{
    if (!value.is_boolean()) Expected("true or false", value, pointer);
    return value.get<bool>();
}

int32_t Read_Int32(const Json &value, const std::string &pointer)
{
    return Read_Integer<int32_t>(value, pointer);
}

uint32_t Read_UInt32(const Json &value, const std::string &pointer)
{
    return Read_Integer<uint32_t>(value, pointer);
}

float Read_Float(const Json &value, const std::string &pointer)
{
    if (value.is_string()) {
        const auto &text = value.get_ref<const std::string &>();
        if (text == "nan") return std::numeric_limits<float>::quiet_NaN();
        if (text == "inf") return std::numeric_limits<float>::infinity();
        if (text == "-inf") return -std::numeric_limits<float>::infinity();
    }
    if (!value.is_number()) Expected("a number", value, pointer);
    const auto number = static_cast<float>(value.get<double>());
    if (std::isinf(number)) throw JsonError(pointer, "the number " + value.dump() + " is out of range");
    return number;
}

std::vector<float> Read_Floats(const Json &value, size_t count, const std::string &pointer)
{
    if (!value.is_array() || value.size() != count)
        throw JsonError(pointer, "expected an array of " + std::to_string(count) + " numbers");
    std::vector<float> numbers;
    for (size_t index = 0; index < count; ++index)
        numbers.push_back(Read_Float(value[index], Item_Pointer(pointer, index)));
    return numbers;
}

const std::string &Read_Text(const Json &value, const std::string &pointer)
{
    if (!value.is_string()) Expected("a string", value, pointer);
    return value.get_ref<const std::string &>();
}

const Json &Read_Array(const Json &value, const std::string &pointer)
{
    if (!value.is_array()) Expected("an array", value, pointer);
    return value;
}

} // namespace vro
