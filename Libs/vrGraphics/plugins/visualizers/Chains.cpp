#include "vrGraphics/plugins/visualizers/Chains.h"

namespace
{

constexpr const char *WRAP_ANCHORS[] = {"Start Delta", "Start", "End"}; // indices are a file format

} // namespace

vrMKPChainVisualizer::vrMKPChainVisualizer() : vrMKPSimpleVisualizer(false)
{
    Add_Texture_Name(100, "W_Clouds01.tga");
    Add_Shader_Name(102, "ParticleBillboardAdditive.mks");
    Parameters.Add_Float(105, "Fade In Distance", 20.0f, 0.1f, 1000.0f, "Distance along chain to apply fade in.");
    Parameters.Add_Float(106, "Fade Out Distance", 20.0f, 0.1f, 1000.0f,
                         "Distance from the end of the chain to apply fade out.");
    Parameters.Add_Float(107, "Break Distance", 1500.0f, 0.1f, 10000.0f,
                         "Maximum distance between points before making a new chain section.");
    Parameters.Add_Bool(108, "Use Wrap Length", false, "Choose to have UVs wrap according to length of the chain.");
    Parameters.Add_Float(109, "Wrap Length", 25.0f, 0.01f, 1000.0f,
                         "Distance at which the texture wraps around to the start.");
    Parameters.Add_Enum(110, "Wrap Anchor", WRAP_ANCHORS, 0,
                        "Where to start the wrapped texture in relation to the chain.");
}
