#pragma once

#include "vrGraphics/plugins/lights/vrMKPLightSourceController.h"

/// One colour for a span of time, with fades and flicker: the light of old groups.
class vrMKPLegacyLightSourceController final : public vrMKPLightSourceController
{
public:
    vrMKPLegacyLightSourceController();
    size_t Get_Object_Size() const override { return sizeof(*this); }
};

/// Runs colour, intensity and reach through keyframes.
class vrMKPKeyedLightSourceController final : public vrMKPLightSourceController
{
public:
    vrMKPKeyedLightSourceController();
    size_t Get_Object_Size() const override { return sizeof(*this); }
};

/// Sits on the smoothed centroid of one layer's particles.
class vrMKPCentroidLightSourceController final : public vrMKPLightSourceController
{
public:
    vrMKPCentroidLightSourceController();
    size_t Get_Object_Size() const override { return sizeof(*this); }
};
