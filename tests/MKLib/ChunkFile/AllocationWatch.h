#pragma once

#include <atomic>
#include <cstddef>

namespace MKTest
{

/// The most bytes that one `new` of this program asked for since it was last set to 0.
extern std::atomic<size_t> LargestAllocation;

} // namespace MKTest
