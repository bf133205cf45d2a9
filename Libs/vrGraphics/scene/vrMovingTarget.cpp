#include "vrGraphics/scene/vrMovingTarget.h"

#include <glm/ext/vector_double3.hpp>
#include <glm/geometric.hpp>

Vector3 vrMovingTarget::Get_Position(double seconds) const
{
    return Vector3(glm::dvec3(Start) + glm::dvec3(Velocity) * seconds);
}

float vrMovingTarget::Get_Flight_Seconds(const Vector3 &from, float speed) const
{
    return glm::length(Start - from) / speed;
}
