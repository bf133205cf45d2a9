#pragma once

#include "Code/IParticleData.h"
#include "MKLib/RefCount.h"

class EmitterData;
class ParticleGrid;
class vrMKPHeatAndSaturationVisualizer;
class vrMKPSpawner;
class vrMKPVisualizer;
class vrMKParticle;
class vrMKParticleEmitter;

/// One row of the grid: a view on one layer inside an emitter. Its properties read and write the live engine objects,
/// and a write is replayed, as it was made, on every other selected row. Made on the scan's thread, used on the user
/// interface's.
class ParticleData final : public IParticleData
{
public:
    /// Takes a reference on the particle. `grid` tells the selection and must outlive every write; the row belongs to
    /// `emitterData`.
    ParticleData(ParticleGrid &grid, vrMKParticle *particle, EmitterData &emitterData);
    ParticleData(const ParticleData &) = delete;
    ParticleData &operator=(const ParticleData &) = delete;
    ~ParticleData() override;

    EmitterData &Get_EmitterData() const { return *emitterData; }
    vrMKParticleEmitter *Get_Emitter() const;
    vrMKParticle *Get_Particle() const { return particle.Get(); }
    /// The particle got a heat visualizer.
    void Converted_To_Heat();

    bool Get_Modified() const override;
    void Set_Modified(bool modified) override;
    std::string Get_EmitterName() const override;
    std::string Get_ParticleName() const override { return particleName; }
    GlobalLevelOfDetail Get_GlobalLOD() const override;
    void Set_GlobalLOD(GlobalLevelOfDetail level) override;
    float Get_MinimumDynamicLOD() const override;
    void Set_MinimumDynamicLOD(float fraction) override;
    int32_t Get_MinimumDynamicLODPerThousandth() const override;
    void Set_MinimumDynamicLODPerThousandth(int32_t thousandths) override;
    float Get_DynamicLODNearDistance() const override;
    void Set_DynamicLODNearDistance(float distance) override;
    int32_t Get_DynamicLODNearDistancePerThousandth() const override;
    void Set_DynamicLODNearDistancePerThousandth(int32_t thousandths) override;
    float Get_DynamicLODFarDistance() const override;
    void Set_DynamicLODFarDistance(float distance) override;
    int32_t Get_DynamicLODFarDistancePerThousandth() const override;
    void Set_DynamicLODFarDistancePerThousandth(int32_t thousandths) override;
    bool Get_SupportsHeat() const override { return supportsHeat; }
    bool Get_UsesHeatVisualizer() const override { return usesHeatVisualizer; }
    bool Get_DoesNotUseHeatVisualizer() const override { return !usesHeatVisualizer; }
    float Get_HeatDistanceCutoff() const override;
    void Set_HeatDistanceCutoff(float distance) override;
    int32_t Get_HeatDistanceCutoffPerThousandth() const override;
    void Set_HeatDistanceCutoffPerThousandth(int32_t thousandths) override;
    float Get_HeatDistortionScale() const override;
    void Set_HeatDistortionScale(float scale) override;
    int32_t Get_HeatDistortionScalePerThousandth() const override;
    void Set_HeatDistortionScalePerThousandth(int32_t thousandths) override;
    float Get_SaturationScale() const override;
    void Set_SaturationScale(float scale) override;
    int32_t Get_SaturationScalePerThousandth() const override;
    void Set_SaturationScalePerThousandth(int32_t thousandths) override;
    bool Get_SceneLightingAdjustments() const override;
    void Set_SceneLightingAdjustments(bool enabled) override;

private:
    using Heat = vrMKPHeatAndSaturationVisualizer;

    /// Calls the setter with the same input on every other selected row.
    template <typename T>
    void Replicate(void (ParticleData::*setter)(T), T input);
    /// Writes `value` to the spawner, if there is one, and replays `setter` with `input` in any case.
    template <typename T, typename V>
    void Edit_Spawner(void (vrMKPSpawner::*write)(V), V value, void (ParticleData::*setter)(T), T input);
    /// The same on a heat visualizer; a row without one does nothing at all.
    template <typename T>
    void Edit_Heat(void (Heat::*write)(float), float value, void (ParticleData::*setter)(T), T input);
    float Read_Spawner(float (vrMKPSpawner::*read)() const) const; ///< 0 without a spawner
    float Read_Heat(float (Heat::*read)() const, float otherwise) const;

    std::string particleName;
    bool supportsHeat = false;
    bool usesHeatVisualizer = false;
    vrMKPVisualizer *visualizer; ///< the particle's
    EmitterData *emitterData;
    SmartPtr<vrMKParticle> particle;
    ParticleGrid *particleList;
    /// False while an edit is replayed on the selection, so that each row is written once.
    static bool replicate_to_siblings;
};
