#include "Code/ParticleData.h"

#include "Code/BindingSource.h"
#include "Code/EmitterData.h"
#include "Code/VisualizerParameters.h"
#include "MKLib/Parameters/SimpleParameters.h"
#include "MKLib/Parameters/StringParameters.h"
#include "vrGraphics/effect/vrMKParticle.h"
#include "vrGraphics/effect/vrMKParticleEmitter.h"
#include "vrGraphics/plugins/spawners/vrMKPSpawner.h"
#include "vrGraphics/plugins/visualizers/HeatAndSaturation.h"

#include <limits>

namespace
{

// The slider's scales, as the files of the tool have always stored them: the rounding of the constants shows in the
// values that a slider writes.
constexpr double CUTOFF_MINIMUM = 0.009999999776482582;
constexpr double CUTOFF_RANGE = 9999.990234375;
constexpr float DISTORTION_STEP = 0.002f;
constexpr double SATURATION_STEP = 0.004000000189989805;

constexpr const char *OLD_HEAT_SHADER = "particlebillboardheat.fx";

/// Toward zero. What no int32_t holds, and a NaN, gives the least one, as the processor's conversion does.
int32_t Truncate(double value)
{
    constexpr double LIMIT = 2147483648.0;
    if (value > -LIMIT - 1.0 && value < LIMIT) return static_cast<int32_t>(value);
    return std::numeric_limits<int32_t>::min();
}

/// Ten times the input as 32-bit integers multiply, which wraps around.
float Distance_From_Thousandths(int32_t thousandths)
{
    return static_cast<float>(static_cast<int32_t>(static_cast<uint32_t>(thousandths) * 10u));
}

/// Off for as long as it lives.
class ScopedOff
{
public:
    explicit ScopedOff(bool &flag) : Flag(flag) { Flag = false; }
    ScopedOff(const ScopedOff &) = delete;
    ScopedOff &operator=(const ScopedOff &) = delete;
    ~ScopedOff() { Flag = true; }

private:
    bool &Flag;
};

} // namespace

bool ParticleData::replicate_to_siblings = true;

ParticleData::ParticleData(ParticleGrid &grid, vrMKParticle *source, EmitterData &owner)
    : particleName(std::string_view(source->Get_Name())), visualizer(source->Get_Visualizer()), emitterData(&owner),
      particle(source), particleList(&grid)
{
    if (!visualizer) return;
    if (visualizer->Get_Plugin_Class() == vrMKPPlugin::kvrMKPHeatAndSaturationVisualizer) {
        supportsHeat = true;
        usesHeatVisualizer = true;
    } else if (visualizer->Get_Plugin_Class() == vrMKPPlugin::kvrMKPBillboardVisualizer) {
        const StringParameterClass *shader = Find_String_Parameter(*visualizer, "Shader Name");
        supportsHeat = shader && MK::Lowered(shader->Get_Value()) == OLD_HEAT_SHADER;
    }
}

ParticleData::~ParticleData() = default;

vrMKParticleEmitter *ParticleData::Get_Emitter() const
{
    return emitterData->Get_Emitter();
}

void ParticleData::Converted_To_Heat()
{
    supportsHeat = true;
    usesHeatVisualizer = true;
    visualizer = particle->Get_Visualizer();
}

template <typename T>
void ParticleData::Replicate(void (ParticleData::*setter)(T), T input)
{
    if (!replicate_to_siblings) return;
    const ScopedOff off(replicate_to_siblings);
    for (const std::shared_ptr<ParticleData> &row : particleList->Get_Selected_Rows())
        if (row && row.get() != this) (row.get()->*setter)(input);
}

template <typename T, typename V>
void ParticleData::Edit_Spawner(void (vrMKPSpawner::*write)(V), V value, void (ParticleData::*setter)(T), T input)
{
    if (vrMKPSpawner *spawner = particle->Get_Spawner()) (spawner->*write)(value);
    Replicate(setter, input);
}

template <typename T>
void ParticleData::Edit_Heat(void (Heat::*write)(float), float value, void (ParticleData::*setter)(T), T input)
{
    if (!usesHeatVisualizer) return;
    (static_cast<Heat *>(visualizer)->*write)(value);
    Replicate(setter, input);
}

float ParticleData::Read_Spawner(float (vrMKPSpawner::*read)() const) const
{
    const vrMKPSpawner *spawner = particle->Get_Spawner();
    return spawner ? (spawner->*read)() : 0.0f;
}

float ParticleData::Read_Heat(float (Heat::*read)() const, float otherwise) const
{
    return usesHeatVisualizer ? (static_cast<const Heat *>(visualizer)->*read)() : otherwise;
}

bool ParticleData::Get_Modified() const
{
    return emitterData->Get_Modified();
}

void ParticleData::Set_Modified(bool modified)
{
    emitterData->Set_Modified(modified);
}

std::string ParticleData::Get_EmitterName() const
{
    return emitterData->Get_Name();
}

GlobalLevelOfDetail ParticleData::Get_GlobalLOD() const
{
    const vrMKPSpawner *spawner = particle->Get_Spawner();
    return spawner ? static_cast<GlobalLevelOfDetail>(spawner->Get_LOD()) : GlobalLevelOfDetail::High;
}

void ParticleData::Set_GlobalLOD(GlobalLevelOfDetail level)
{
    Edit_Spawner(&vrMKPSpawner::Set_LOD, static_cast<int>(level), &ParticleData::Set_GlobalLOD, level);
}

float ParticleData::Get_MinimumDynamicLOD() const
{
    return Read_Spawner(&vrMKPSpawner::Get_Min_Dynamic_LOD);
}

void ParticleData::Set_MinimumDynamicLOD(float value)
{
    Edit_Spawner(&vrMKPSpawner::Set_Min_Dynamic_LOD, value, &ParticleData::Set_MinimumDynamicLOD, value);
}

int32_t ParticleData::Get_MinimumDynamicLODPerThousandth() const
{
    return Truncate(Get_MinimumDynamicLOD() * 1000.0);
}

void ParticleData::Set_MinimumDynamicLODPerThousandth(int32_t thousandths)
{
    Edit_Spawner(&vrMKPSpawner::Set_Min_Dynamic_LOD, static_cast<float>(thousandths / 1000.0),
                 &ParticleData::Set_MinimumDynamicLODPerThousandth, thousandths);
}

float ParticleData::Get_DynamicLODNearDistance() const
{
    return Read_Spawner(&vrMKPSpawner::Get_Dynamic_LOD_Near);
}

void ParticleData::Set_DynamicLODNearDistance(float value)
{
    Edit_Spawner(&vrMKPSpawner::Set_Dynamic_LOD_Near, value, &ParticleData::Set_DynamicLODNearDistance, value);
}

int32_t ParticleData::Get_DynamicLODNearDistancePerThousandth() const
{
    return Truncate(Get_DynamicLODNearDistance() / 10.0);
}

void ParticleData::Set_DynamicLODNearDistancePerThousandth(int32_t thousandths)
{
    Edit_Spawner(&vrMKPSpawner::Set_Dynamic_LOD_Near, Distance_From_Thousandths(thousandths),
                 &ParticleData::Set_DynamicLODNearDistancePerThousandth, thousandths);
}

float ParticleData::Get_DynamicLODFarDistance() const
{
    return Read_Spawner(&vrMKPSpawner::Get_Dynamic_LOD_Far);
}

void ParticleData::Set_DynamicLODFarDistance(float value)
{
    Edit_Spawner(&vrMKPSpawner::Set_Dynamic_LOD_Far, value, &ParticleData::Set_DynamicLODFarDistance, value);
}

int32_t ParticleData::Get_DynamicLODFarDistancePerThousandth() const
{
    return Truncate(Get_DynamicLODFarDistance() / 10.0);
}

void ParticleData::Set_DynamicLODFarDistancePerThousandth(int32_t thousandths)
{
    Edit_Spawner(&vrMKPSpawner::Set_Dynamic_LOD_Far, Distance_From_Thousandths(thousandths),
                 &ParticleData::Set_DynamicLODFarDistancePerThousandth, thousandths);
}

float ParticleData::Get_HeatDistanceCutoff() const
{
    return Read_Heat(&Heat::Get_Distance_Cutoff, static_cast<float>(CUTOFF_MINIMUM));
}

void ParticleData::Set_HeatDistanceCutoff(float value)
{
    Edit_Heat(&Heat::Set_Distance_Cutoff, value, &ParticleData::Set_HeatDistanceCutoff, value);
}

int32_t ParticleData::Get_HeatDistanceCutoffPerThousandth() const
{
    return usesHeatVisualizer ? Truncate((Get_HeatDistanceCutoff() - CUTOFF_MINIMUM) / CUTOFF_RANGE * 1000.0) : 0;
}

void ParticleData::Set_HeatDistanceCutoffPerThousandth(int32_t thousandths)
{
    Edit_Heat(&Heat::Set_Distance_Cutoff, static_cast<float>(thousandths / 1000.0 * CUTOFF_RANGE + CUTOFF_MINIMUM),
              &ParticleData::Set_HeatDistanceCutoffPerThousandth, thousandths);
}

float ParticleData::Get_HeatDistortionScale() const
{
    return Read_Heat(&Heat::Get_Distortion_Scale, 0.0f);
}

void ParticleData::Set_HeatDistortionScale(float value)
{
    Edit_Heat(&Heat::Set_Distortion_Scale, value, &ParticleData::Set_HeatDistortionScale, value);
}

int32_t ParticleData::Get_HeatDistortionScalePerThousandth() const
{
    return usesHeatVisualizer ? Truncate(Get_HeatDistortionScale() * 500.0) : 0;
}

void ParticleData::Set_HeatDistortionScalePerThousandth(int32_t thousandths)
{
    Edit_Heat(&Heat::Set_Distortion_Scale, static_cast<float>(thousandths) * DISTORTION_STEP,
              &ParticleData::Set_HeatDistortionScalePerThousandth, thousandths);
}

float ParticleData::Get_SaturationScale() const
{
    return Read_Heat(&Heat::Get_Saturation_Scale, 0.0f);
}

void ParticleData::Set_SaturationScale(float value)
{
    Edit_Heat(&Heat::Set_Saturation_Scale, value, &ParticleData::Set_SaturationScale, value);
}

int32_t ParticleData::Get_SaturationScalePerThousandth() const
{
    return usesHeatVisualizer ? Truncate((Get_SaturationScale() + 2.0) * 250.0) : 0;
}

void ParticleData::Set_SaturationScalePerThousandth(int32_t thousandths)
{
    Edit_Heat(&Heat::Set_Saturation_Scale, static_cast<float>(thousandths * SATURATION_STEP - 2.0),
              &ParticleData::Set_SaturationScalePerThousandth, thousandths);
}

bool ParticleData::Get_SceneLightingAdjustments() const
{
    const BoolParameter *lighting = visualizer ? Find_Bool_Parameter(*visualizer, "Scene Lighting Adj.") : nullptr;
    return !lighting || lighting->Get_Value();
}

void ParticleData::Set_SceneLightingAdjustments(bool enabled)
{
    BoolParameter *lighting = visualizer ? Find_Bool_Parameter(*visualizer, "Scene Lighting Adj.") : nullptr;
    if (!lighting) return;
    lighting->Set_Value(enabled);
    Replicate(&ParticleData::Set_SceneLightingAdjustments, enabled);
}
