#include "vrGraphics/plugins/modifiers/TerrainBounce.h"

vrMKPTerrainBounceModifier::vrMKPTerrainBounceModifier()
{
    Parameters.Add_Float(200, "Elasticity", 0.0f, 0.0f, 1.0f,
                         "Elasticity of terrain.\nSet this to 1 for very bouncy particles.\nSetting it to 0 will cause "
                         "them to slide along the terrain once they hit.");
    Parameters.Add_Bool(201, "Sticky", false, "Check this to make particles stick in place once they hit the terrain.");
    Parameters.Add_Float(203, "Surface Roughness", 0.0f, 0.0f, 1.0f,
                         "Simulate the apparent roughness of a surface by randomizing the direction and speed of the "
                         "bounce.");
    Parameters.Add_Float(204, "Surface Friction", 0.0f, 0.0f, 10.0f,
                         "Simulates friction of the surface.\nUnlike elasticity, this operates along the direction of "
                         "the surface, not perpendicular to it.");
    Parameters.Add_Float(206, "Z Offset", 0.0f, 0.0f, 100.0f,
                         "Adds a fixed distance from terrain to collide from.\nModify this value if particles seem to "
                         "intersect with terrain on collision.");
}
