#pragma once

/// The visualizer family: the plugins of a layer that draw its particles. A visualizer turns the visible part of a
/// buffer into vertices for one shader. Where a draw stands in the frame is its shader's matter, never the
/// visualizer's.

#include "MKLib/Parameters/StringParameters.h"
#include "vrGraphics/plugins/base/vrMKPPlugin.h"

class vrMKPVisualizer : public vrMKPPlugin
{
public:
    /// Called when the plugin's parameters were loaded or cloned.
    virtual bool Post_Load() { return true; }
    /// Readies textures and shader. Unless `force` is set, those of `shared` are taken where it is given, and what is
    /// held already stays. A visualizer without assets has nothing to ready.
    virtual void Load_Assets(bool /*force*/, const vrMKPVisualizer * /*shared*/) {}
    /// The text of "Shader Name"; empty for a visualizer that has none.
    virtual std::string_view Get_Shader_Name() const { return {}; }

protected:
    vrMKPVisualizer();
};

/// The base of all visualizers that draw, with the render modes, the depth switches and the shader's name.
class vrMKPSimpleVisualizer : public vrMKPVisualizer
{
public:
    /// The values of "Sort Type".
    enum SortTypes : int
    {
        SORT_NORMAL = 0,
        SORT_STOP_AFTER_MAX_AGE = 1 ///< particles past "Max Sort Age" keep their place relative to the group
    };

    std::string_view Get_Shader_Name() const override { return ShaderName->Get_Value(); }

protected:
    /// `usesAspectRatio` adds the two parameters that stretch each particle at random.
    explicit vrMKPSimpleVisualizer(bool usesAspectRatio);

    // The forms in which the derived kinds have these. Until a kind adds its shader's name it is "Unknown", and is
    // neither saved nor shown.
    TextureNameParameterClass *Add_Texture_Name(int32_t id, std::string_view value);
    void Add_Shader_Name(int32_t id, std::string_view value);
    void Set_Shader_Name(std::string_view value) { ShaderName->Set_Value(value); }
    void Add_Anchor_Point(int32_t id);
    void Add_Texture_Rotation(int32_t id);

    // Sets of the kinds that draw one lit quad a particle, with the same ids in each.
    void Add_Bump_Texture_Name();
    void Add_Sorting();
    void Add_Lighting();

private:
    SmartPtr<StringParameterClass> ShaderName;
};
