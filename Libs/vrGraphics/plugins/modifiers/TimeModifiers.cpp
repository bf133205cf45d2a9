#include "vrGraphics/plugins/modifiers/TimeModifiers.h"

namespace
{

// Indices into this are a file format.
constexpr const char *CLOCK_TYPES[] = {"Linear", "Square", "Triangle", "Sin"};

} // namespace

vrMKPDistanceKeyTimeModifier::vrMKPDistanceKeyTimeModifier()
{
    Parameters.Add_Float(200, "Inner Radius", 0.0f, 0.0f, 1000.0f,
                         "Inner radius, if distance from target is <= inner-radius the key time is 1.");
    Parameters.Add_Float(201, "Outer Radius", 20.0f, 0.0f, 1000.0f,
                         "Outer radius, if distance from target is > inner-radius the key time is 0.");
    Parameters.Add_Bool(202, "Invert", false, "Inverts so ranges 0 to 1, with 0 being the inner radius");
    Parameters.Add_Bool(203, "Flat Tangent Smooth", false, "Smooth Steps the interpolation of time.");
}

vrMKPClockModifier::vrMKPClockModifier()
{
    Parameters.Add_Enum(200, "Clock Type", CLOCK_TYPES, 0, "Type of clock signal to use.");
    Parameters.Add_Float(201, "Interval", 1.0f, 0.01f, 1000.0f, "Time per clock interval.");
    Parameters.Add_Bool(202, "Invert", false, "Invert the signal to run 'backwards'.");
    Parameters.Add_Bool(203, "Random Start", false, "Start individual particles at random points in an interval.");
}
