#pragma once

#include "MKLib/MKMath/Vectors.h"
#include "MKLib/MKString.h"

#include <string_view>

class vrMKPBuffer;

/// What a plugin may know of another layer of its group: the parent that it follows, or the child that takes its
/// deaths.
class vrMKPLayer
{
public:
    virtual const MK::String &Get_Name() const = 0;
    /// Null until the layer has been prepared for its first frame.
    virtual vrMKPBuffer *Get_Buffer() const = 0;
    /// A particle of `parent` has died, `overshoot` seconds past its greatest age.
    virtual void On_Parent_Particle_Death(const vrMKPBuffer &parent, const Vector3 &position, const Vector3 &velocity,
                                          float overshoot) = 0;

protected:
    ~vrMKPLayer() = default;
};

/// The layers of a group, by name.
class vrMKPLayerList
{
public:
    /// The first of that name, ignoring case, or null.
    virtual vrMKPLayer *Find_Layer(std::string_view name) const = 0;

protected:
    ~vrMKPLayerList() = default;
};
