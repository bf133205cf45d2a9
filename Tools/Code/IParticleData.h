#pragma once

#include <cstdint>
#include <string>

/// The least quality at which a layer runs, as its spawner counts it: 0 runs always, 4 only at full detail.
enum class GlobalLevelOfDetail : int
{
    Lowest = 0,
    Low = 1,
    Medium = 2,
    High = 3,
    Highest = 4
};

/// The face of a row that the grid binds to; the properties stand in the order of the columns. Each tunable value
/// stands twice: as the engine has it, and as a whole number from 0 to 1000 for a slider. Every conversion truncates
/// toward zero, so that a read and a write on the scale of thousandths can lose a step. On the user interface's thread.
class IParticleData
{
public:
    virtual ~IParticleData() = default;

    virtual bool Get_Modified() const = 0; ///< of the whole emitter
    virtual void Set_Modified(bool modified) = 0;
    virtual std::string Get_EmitterName() const = 0;
    virtual std::string Get_ParticleName() const = 0;
    virtual GlobalLevelOfDetail Get_GlobalLOD() const = 0;
    virtual void Set_GlobalLOD(GlobalLevelOfDetail level) = 0;
    virtual float Get_MinimumDynamicLOD() const = 0; ///< 0 to 1
    virtual void Set_MinimumDynamicLOD(float fraction) = 0;
    virtual int32_t Get_MinimumDynamicLODPerThousandth() const = 0;
    virtual void Set_MinimumDynamicLODPerThousandth(int32_t thousandths) = 0;
    virtual float Get_DynamicLODNearDistance() const = 0; ///< world units, 0 to 10000 on the slider
    virtual void Set_DynamicLODNearDistance(float distance) = 0;
    virtual int32_t Get_DynamicLODNearDistancePerThousandth() const = 0;
    virtual void Set_DynamicLODNearDistancePerThousandth(int32_t thousandths) = 0;
    virtual float Get_DynamicLODFarDistance() const = 0;
    virtual void Set_DynamicLODFarDistance(float distance) = 0;
    virtual int32_t Get_DynamicLODFarDistancePerThousandth() const = 0;
    virtual void Set_DynamicLODFarDistancePerThousandth(int32_t thousandths) = 0;
    /// The row shows heat values or can be converted to show them.
    virtual bool Get_SupportsHeat() const = 0;
    virtual bool Get_UsesHeatVisualizer() const = 0;
    virtual bool Get_DoesNotUseHeatVisualizer() const = 0;
    // The heat values do nothing on a row without the heat visualizer, which reads 0.01, 0 and 0.
    virtual float Get_HeatDistanceCutoff() const = 0; ///< world units, 0.01 to 10000 on the slider
    virtual void Set_HeatDistanceCutoff(float distance) = 0;
    virtual int32_t Get_HeatDistanceCutoffPerThousandth() const = 0;
    virtual void Set_HeatDistanceCutoffPerThousandth(int32_t thousandths) = 0;
    virtual float Get_HeatDistortionScale() const = 0; ///< 0 to 2
    virtual void Set_HeatDistortionScale(float scale) = 0;
    virtual int32_t Get_HeatDistortionScalePerThousandth() const = 0;
    virtual void Set_HeatDistortionScalePerThousandth(int32_t thousandths) = 0;
    virtual float Get_SaturationScale() const = 0; ///< -2 to 2
    virtual void Set_SaturationScale(float scale) = 0;
    virtual int32_t Get_SaturationScalePerThousandth() const = 0;
    virtual void Set_SaturationScalePerThousandth(int32_t thousandths) = 0;
    /// True, and writes do nothing, on a visualizer without that switch.
    virtual bool Get_SceneLightingAdjustments() const = 0;
    virtual void Set_SceneLightingAdjustments(bool enabled) = 0;
};
