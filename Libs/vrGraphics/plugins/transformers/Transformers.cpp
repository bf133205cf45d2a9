#include "vrGraphics/plugins/transformers/Transformers.h"

vrMKPScreenTransformer::vrMKPScreenTransformer()
{
    Parameters.Add_Float(200, "Width", 500.0f, 1.0f, 2000.0f, "Width of the effect");
    Parameters.Add_Float(201, "Height", 500.0f, 1.0f, 2000.0f, "Height of the effect");
    Parameters.Add_Bool(202, "Enable Z Clamp", false, "Snaps particles to the z offset.");
    Parameters.Add_Float(203, "Z Offset", 50.0f, 1.0f, 2000.0f, "Value to center on the Z axis");
}
