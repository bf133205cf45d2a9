#include "vrGraphics/plugins/visualizers/VelocityAligned.h"

namespace
{

constexpr const char *UP_AXIS = "Up Axis";
constexpr Vector3 WORLD_UP(0.0f, 0.0f, 1.0f);

} // namespace

vrMKPVelocityAlignedVisualizer::vrMKPVelocityAlignedVisualizer()
    : FixEdgeView(new BoolParameter("Fix Edge View",
                                    "Rotate particles away from the camera slightly when viewed edge-on", false))
{
    Add_Anchor_Point(200);
    Add_Texture_Rotation(203);
    Parameters.Add_Float(205, "Slow Stretch", 1.0f, 0.0f, 100.0f,
                         "Stretch amount when particles are at their slowest.");
    Parameters.Add_Float(206, "Fast Stretch", 1.0f, 0.0f, 100.0f,
                         "Stretch amount when particles are at their fastest.");
    Parameters.Add_Float(207, "Slow Stretch Speed", 10.0f, -1000.0f, 1000.0f,
                         "Speed at which particles use the Slow Stretch.");
    Parameters.Add_Float(208, "Fast Stretch Speed", 10.0f, -1000.0f, 1000.0f,
                         "Speed at which particles use the Fast Stretch.");
}

vrMKPVelocityAlignedWorldSpaceVisualizer::vrMKPVelocityAlignedWorldSpaceVisualizer()
{
    Parameters.Add_Vector3(300, UP_AXIS, WORLD_UP, "Axis to use as \"up\" when rendering particles.");
}

vrMKPVelocityAlignedPlanarVisualizer::vrMKPVelocityAlignedPlanarVisualizer()
{
    Parameters.Add_Vector3(300, UP_AXIS, WORLD_UP, "Axis to \"squash\" particles along.");
}

vrMKPAxisAlignedVisualizer::vrMKPAxisAlignedVisualizer()
{
    Parameters.Add_Vector3(300, "Axis", WORLD_UP, "Axis to align particles to.");
}
