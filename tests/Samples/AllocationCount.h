#pragma once

#include <cstddef>

namespace MKTest
{

/// How often this program asked for memory, by whatever way; 0 where it can't be counted.
size_t Get_Allocation_Count();

} // namespace MKTest
