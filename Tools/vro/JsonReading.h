#pragma once

#include "vro/JsonText.h"

#include <cstdint>
#include <set>
#include <stdexcept>
#include <string>
#include <vector>

/// Strict reading of JSON: every fault is thrown with its place as a JSON pointer.
namespace vro
{

class JsonError : public std::runtime_error
{
public:
    JsonError(const std::string &pointer, const std::string &reason)
        : std::runtime_error((pointer.empty() ? std::string("/") : pointer) + ": " + reason)
    {
    }
};

/// A JSON document; a fault of the text, a key given twice, or more depth or keys than an effect can have throw JsonError.
Json Parse_Json(const std::string &text);

/// The JSON pointers of an object's member and of an array's item.
std::string Member_Pointer(const std::string &pointer, const std::string &key);
std::string Item_Pointer(const std::string &pointer, size_t index);

/// One object, of which every key that was never asked for is an error.
class ObjectReader
{
public:
    ObjectReader(const Json &value, std::string pointer);

    /// The member, or null when it is left out.
    const Json *Find(const char *key);
    std::string Pointer(const char *key) const { return Member_Pointer(ObjectPointer, key); }
    const std::string &Pointer() const { return ObjectPointer; }
    void Refuse_Other_Keys() const;

private:
    const Json &Object;
    std::string ObjectPointer;
    std::set<std::string, std::less<>> Known;
};

bool Read_Bool(const Json &value, const std::string &pointer);
int32_t Read_Int32(const Json &value, const std::string &pointer);
uint32_t Read_UInt32(const Json &value, const std::string &pointer);
/// A number within the range of a 32-bit float, or "nan", "inf" or "-inf".
float Read_Float(const Json &value, const std::string &pointer);
/// Exactly `count` floats.
std::vector<float> Read_Floats(const Json &value, size_t count, const std::string &pointer);
const std::string &Read_Text(const Json &value, const std::string &pointer);
const Json &Read_Array(const Json &value, const std::string &pointer);

} // namespace vro
