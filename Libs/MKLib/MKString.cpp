#include "MKLib/MKString.h"

#include <algorithm>

namespace MK
{

bool Equal_Ignoring_Case(std::string_view left, std::string_view right)
{
    return left.size() == right.size() &&
           std::equal(left.begin(), left.end(), right.begin(), [](char a, char b) { return Lower(a) == Lower(b); });
}

String Lowered(std::string_view text)
{
    String result(text);
    std::transform(result.begin(), result.end(), result.begin(), Lower);
    return result;
}

} // namespace MK
