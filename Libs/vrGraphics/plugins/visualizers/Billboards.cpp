#include "vrGraphics/plugins/visualizers/Billboards.h"

vrMKPBillboardVisualizer::vrMKPBillboardVisualizer() : vrMKPSimpleVisualizer(true)
{
    TextureName = Add_Texture_Name(100, "p_particle_master.tga");
    Parameters.Add_Bool(107, "Enable Bump", false, "Enables Bump Mapping");
    Add_Bump_Texture_Name();
    Add_Shader_Name(101, "ParticleBillboardAdditive.mks");
    Add_Sorting();
    Add_Lighting();
}

vrMKPXYZAlignedVisualizer::vrMKPXYZAlignedVisualizer()
{
    Parameters.Add_Bool(200, "LocalSpace", false, "If true, align to local space of the bone");
    Parameters.Add_Float(201, "Rotate X", 0.0f, -360.0f, 360.0f, "Rotates each particle around the X-axis.");
    Parameters.Add_Float(202, "Rotate Y", 0.0f, -360.0f, 360.0f, "Rotates each particle around the Y-axis.");
    Parameters.Add_Float(203, "Rotate Z", 0.0f, -360.0f, 360.0f, "Rotates each particle around the Z-axis.");
}

vrMKPInstantProjectileVisualizer::vrMKPInstantProjectileVisualizer()
{
    Add_Texture_Rotation(203);
}
