#pragma once

#include "MKLib/RefCount.h"
#include "MKLib/RunTimeType.h"

/// What a plugin keeps for one buffer. The buffer owns it; a plugin makes it as the buffer is made, and fetches it back
/// each frame with `MK_Dynamic_Cast`.
class vrMKPBufferPluginData : public RefCountClass
{
public:
    MK_RUN_TIME_TYPE_ROOT

    /// Back to the state of a fresh one; called as its buffer is reset.
    virtual void Reset() {}
};
