#include "vrGraphics/plugins/visualizers/NullVisualizers.h"

vrMKPBumpMapVisualizer::vrMKPBumpMapVisualizer() : vrMKPSimpleVisualizer(true)
{
    Add_Texture_Name(100, "p_particle_master.tga");
    Add_Bump_Texture_Name();
    Add_Shader_Name(101, "ParticleBillboardAdditive.mks");
    Add_Sorting();
    Add_Lighting();
}
