#include "vrGraphics/plugins/stompers/Stompers.h"

#include "MKLib/MKDebug/Assert.h"
#include "MKLib/Parameters/EnumParameter.h"
#include "MKLib/Parameters/StringParameters.h"
#include "vrGraphics/particle/TargetPoint.h"
#include "vrGraphics/particle/vrMKPRenderState.h"
#include "vrGraphics/plugins/stompers/StompLoops.h"
#include "vrGraphics/scene/vrGroundPlane.h"

#include <atomic>

namespace
{

// Indices into these are a file format.
constexpr const char *TARGET_POSITIONS[] = {"Emitter", "Bone", "Target", "Projectile Target Start",
                                            "Projectile Target Current (For Homing)"};
constexpr const char *STOMP_AXES[] = {"X", "Y", "Z"};
constexpr const char *COMPARISONS[] = {"Greater Than", "Less Than"};
constexpr const char *DYNAMIC_RADIUS_TEXT = "Use the dynamic target radius value passed in from XML.";

std::atomic<float> defaultHeight{-60.0f};

/// The bone that the target rides on.
class vrMKPTargetStomperPluginData final : public vrMKPBufferPluginData
{
public:
    MK_RUN_TIME_TYPE
    void Reset() override { Bone.Reset(); }

    vrMKPBoneCache Bone;
};
MK_DEFINE_RUN_TIME_TYPE(vrMKPTargetStomperPluginData, vrMKPBufferPluginData)

} // namespace

vrMKPRadiusStomper::vrMKPRadiusStomper()
{
    StompRadius =
        Parameters.Add_Float(100, "Stomp Radius", 100.0f, 0.0f, 1000.0f, "Distance beyond which to stomp particles");
    UseTargetRadius = Parameters.Add_Bool(101, "Use Target Radius", false, DYNAMIC_RADIUS_TEXT);
}

vrMKPTerrainStomper::vrMKPTerrainStomper()
{
    IntersectionOffset = Parameters.Add_Vector3(100, "Intersection Offset", Vector3(0.0f),
                                                "The offset from the particle center to use for collision.");
}

vrMKPTargetStomper::vrMKPTargetStomper()
{
    TargetPosition =
        Parameters.Add_Enum(100, "Target Position", TARGET_POSITIONS, 0, "Point within the particle system to target.");
    BoneName = Parameters.Add_String(
        101, "Bone Name", "", "Name of the bone to attract to. (Only active if Attractor Position is set to 'Bone')");
    TargetRadius = Parameters.Add_Float(102, "Target Radius", 1.0f, 0.5f, 100.0f,
                                        "Radius around the target that will kill particles.");
    UseDynamicRadius = Parameters.Add_Bool(103, "Use Dynamic Radius", false, DYNAMIC_RADIUS_TEXT);
}

vrMKPAxisStomper::vrMKPAxisStomper()
{
    StompAxis = Parameters.Add_Enum(100, "Stomp Axis", STOMP_AXES, 2, "Axis on which to stomp particles.");
    KillIf =
        Parameters.Add_Enum(101, "Kill if Value is", COMPARISONS, 1,
                            "Determines if particles are killed on a X, Y, or Z value that is greater or less than the "
                            "Value parameter.");
    StompValue = Parameters.Add_Float(102, "Stomp Value", 0.0f, -1000.0f, 1000.0f,
                                      "The X, Y, or Z value at which to kill particles.");
}

void vrMKPRadiusStomper::Stomp(vrMKPBuffer &buffer, bool spawnOnDeath) const
{
    const vrMKPRenderState &state = *buffer.State;
    const float radius = UseTargetRadius->Get_Value() ? state.Get_Target_Radius() : StompRadius->Get_Value();
    const Vector3 center = buffer.Is_World() ? state.Get_Position() : Vector3(0.0f);
    StompLoops::Remove_Beyond(buffer, center, radius * radius, spawnOnDeath);
}

float vrMKPTerrainStomper::Get_Default_Height()
{
    return defaultHeight.load(std::memory_order_relaxed);
}

void vrMKPTerrainStomper::Set_Default_Height(float height)
{
    defaultHeight.store(height, std::memory_order_relaxed);
}

void vrMKPTerrainStomper::Stomp(vrMKPBuffer &buffer, bool spawnOnDeath) const
{
    const vrGroundPlane substitute(Get_Default_Height());
    const vrTerrain &terrain = buffer.State->Terrain ? *buffer.State->Terrain : substitute;
    StompLoops::Remove_Below(buffer, terrain, IntersectionOffset->Get_Value(), spawnOnDeath);
}

vrMKPBufferPluginData *vrMKPTargetStomper::Create_Buffer_Data(const vrMKPRenderState &) const
{
    return new vrMKPTargetStomperPluginData;
}

void vrMKPTargetStomper::Stomp(vrMKPBuffer &buffer, bool spawnOnDeath) const
{
    auto *data = MK_Dynamic_Cast<vrMKPTargetStomperPluginData>(buffer.StomperData.Get());
    if (!MK_VERIFY(data, "buffer->StomperData == NULL")) return;
    const vrMKPRenderState &state = *buffer.State;
    Vector3 target = Get_Target_Point(static_cast<vrMKPTargetPoint>(TargetPosition->Get_Value()), state,
                                      BoneName->Get_Value(), &data->Bone);
    if (!buffer.Is_World()) target = state.InverseTransform.Transform(target);
    const float radius = UseDynamicRadius->Get_Value() ? state.Get_Target_Radius() : TargetRadius->Get_Value();
    StompLoops::Remove_Within(buffer, target, radius * radius, spawnOnDeath);
}

void vrMKPAxisStomper::Stomp(vrMKPBuffer &buffer, bool spawnOnDeath) const
{
    const int axis = StompAxis->Get_Value();
    const auto comparison = static_cast<StompLoops::Comparison>(KillIf->Get_Value());
    const float limit = StompValue->Get_Value();
    if (buffer.Is_World())
        StompLoops::Remove_On_Axis(buffer, axis, comparison, limit, spawnOnDeath);
    else
        StompLoops::Remove_Mapped(buffer, buffer.State->Transform.Row[axis], comparison, limit, spawnOnDeath);
}
