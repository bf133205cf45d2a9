#pragma once

#include "MKLib/MKMath/Vectors.h"
#include "MKLib/RefCount.h"
#include "MKLib/RunTimeType.h"
#include "vrGraphics/drivercommon/vrRenderPhase.h"
#include "vrGraphics/drivercommon/vrVertices.h"

#include <string_view>

class vrRenderContext;
class vrTexture;

/// Kinds of shader parameters, by the names that effect sources give them.
enum vrShaderParamType : int
{
    SHADER_PARAMS_NONE = 0,
    SHADER_PARAMS_BOOL = 1,
    SHADER_PARAMS_FLOAT = 2,
    SHADER_PARAMS_VECTOR2 = 3,
    SHADER_PARAMS_VECTOR3 = 4,
    SHADER_PARAMS_VECTOR4 = 5,
    SHADER_PARAMS_TEXTURE = 6
};

/// How an effect wants its vertices brought to the screen.
enum vrShaderVertexProcType : int
{
    VR_VERTEX_PROC_NONE = 0,   ///< screen space already
    VR_VERTEX_PROC_WORLD = 1,  ///< through world, view and projection
    VR_VERTEX_PROC_STRETCH = 2 ///< a full-screen quad
};

/// One user's view of a shared compiled effect, with parameter values of its own: what is drawn is drawn with one.
/// Used by one thread at a time. Between `Begin` and `End` stand passes, and in a pass stand draws.
///
/// Parameters go by index, which who keeps one asks for once: an index that isn't the effect's, -1 among them, or a
/// value of another type than the parameter has, is ignored by the setters, and the getters then answer false.
class vrShaderInstance : public RefCountClass
{
public:
    MK_RUN_TIME_TYPE_ROOT

    /// A new instance of the same effect with the same values; count 0.
    virtual vrShaderInstance *Clone() const = 0;
    virtual const char *Get_Name() const { return "UnNamed"; }
    /// Whether the effect that stands in for a missing one was taken.
    virtual bool Is_Missing_Effect() const { return false; }

    /// Chooses the technique for the driver's level of detail, fills in what the engine knows, and answers the number
    /// of passes: 0 for an instance that draws nothing, on which the other operations do nothing.
    virtual int Begin(const vrRenderContext *context, uint32_t flags, int passesWanted) = 0;
    virtual void Begin_Pass(int pass) = 0;
    virtual void End_Pass() = 0;
    virtual void End() = 0;
    /// Takes over values that were set inside a pass.
    virtual void Commit() = 0;

    virtual int Get_Parameter_Count() const = 0;
    virtual vrShaderParamType Get_Parameter_Type(int index) const = 0;
    virtual const char *Get_Parameter_Name(int index) const = 0;
    /// The first parameter of that name, ignoring case, or -1.
    virtual int Get_Parameter_Index(std::string_view name) const;

    virtual void Set_Bool(int index, bool value) = 0;
    virtual void Set_Float(int index, float value) = 0;
    virtual void Set_Vector2(int index, const float *value) = 0;
    virtual void Set_Vector3(int index, const float *value) = 0;
    virtual void Set_Vector4(int index, const float *value) = 0;
    virtual void Set_Texture(int index, vrTexture *texture) = 0; ///< takes a share
    // False, with the value written as zero, where there is none to get.
    virtual bool Get_Bool(int index, bool &value) const = 0;
    virtual bool Get_Float(int index, float &value) const = 0;
    virtual bool Get_Vector2(int index, float *value) const = 0;
    virtual bool Get_Vector3(int index, float *value) const = 0;
    virtual bool Get_Vector4(int index, float *value) const = 0;
    virtual vrTexture *Get_Texture(int index) const = 0; ///< borrowed; may be null

    vrRenderPhaseEnum Get_Render_Phase() const { return RenderPhase; }
    vrShaderVertexProcType Get_Vertex_Proc() const { return VertexProc; }
    vrPrimVertexType Get_Vertex_Type() const { return VertexType; }

    /// Takes over each value of `from` in `to`. Expects both, with parameters of equal types by index.
    static void Copy_Params(vrShaderInstance *to, const vrShaderInstance *from);

protected:
    vrRenderPhaseEnum RenderPhase = vrRenderPhaseEnum::Opaque;
    vrShaderVertexProcType VertexProc = VR_VERTEX_PROC_WORLD;
    vrPrimVertexType VertexType = VR_LIT_VERTEX;
};
