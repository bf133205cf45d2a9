#pragma once

namespace MK::NoCopyNS
{

/// Empty base of a class that can't be copied. In a namespace of its own, so that it brings no names into a look-up.
class NoCopy
{
public:
    NoCopy(const NoCopy &) = delete;
    NoCopy &operator=(const NoCopy &) = delete;

protected:
    NoCopy() = default;
    ~NoCopy() = default;
};

} // namespace MK::NoCopyNS

namespace MK
{
using NoCopyNS::NoCopy;
}
