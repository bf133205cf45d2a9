#pragma once

#include "vrGraphics/plugins/stompers/vrMKPStomper.h"

/// Kills past a point of the trajectory of the model that carries the layer. The spawner and the modifier that went
/// with it are retired.
class vrMKPGlobalTrajectoryStomper final : public vrMKPStomper
{
public:
    vrMKPGlobalTrajectoryStomper();
    size_t Get_Object_Size() const override { return sizeof(*this); }

protected:
    void Stomp(vrMKPBuffer &buffer, bool spawnOnDeath) const override;

private:
    RangedFloatParameter *TrajectoryPosition;
    BoolParameter *ReverseDirection;
};
