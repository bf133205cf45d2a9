#pragma once

#include <cstddef>

namespace MKTest
{

/// How often this program asked for memory, by whatever way. A test links this where it wants to know.
size_t Get_Allocation_Count();

} // namespace MKTest
