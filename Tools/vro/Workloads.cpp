#include "vro/Workloads.h"

#include "vro/EffectJson.h"

#include "vrGraphics/effect/vrMKParticleEmitter.h"

namespace vro
{

namespace
{

Json Values(std::initializer_list<std::pair<const char *, Json>> values)
{
    Json list = Json::array();
    for (const auto &[name, value] : values) list.push_back({{"name", name}, {"value", value}});
    return list;
}

Json Plugin(const char *name, std::initializer_list<std::pair<const char *, Json>> values = {})
{
    return {{"name", name}, {"parameters", Values(values)}};
}

Json Sphere(float radius)
{
    return {{"shape", 2}, {"sphere", {0.0f, radius}}};
}

SmartPtr<vrMKParticleEmitter> Make(const char *name, float rate, float stopTime, float life, WorkloadViewer viewer)
{
    const Json spawner = Plugin("Shape", {{"Particles / Second", rate},
                                          {"Stop Time", stopTime},
                                          {"Random Seed", 1},
                                          {"Position", Sphere(20.0f)},
                                          {"Velocity", Sphere(60.0f)}});
    const Json modifiers = {
        Plugin("Acceleration", {{"Acceleration", {0.0f, 0.0f, -9.8f}}}),
        Plugin("Linear Color", {{"Start Color", {1.0f, 0.8f, 0.3f, 1.0f}}, {"End Color", {0.4f, 0.1f, 0.1f, 0.0f}}}),
        Plugin("Linear Uniform Size", {{"Start Size", 1.0f}, {"End Size", 4.0f}}),
        Plugin("Linear Rotation", {{"Start Rotation", 0.0f}, {"End Rotation", 0.5f}})};
    const Json layer = {{"name", name},
                        {"spawner", spawner},
                        {"transformer", Plugin("World Space")},
                        {"stomper", Plugin("Age", {{"Stomp Time", life}})},
                        {"visualizer", viewer == WorkloadViewer::Billboard ? Plugin("Billboard") : Json()},
                        {"modifiers", modifiers}};
    const Json group = {{"kind", "group"}, {"name", name}, {"layers", Json::array({layer})}};
    return Effect_From_Json({{"name", name}, {"renderables", Json::array({group})}});
}

} // namespace

SmartPtr<vrMKParticleEmitter> Make_Steady(int particles, WorkloadViewer viewer)
{
    return Make("steady", static_cast<float>(particles) / STEADY_LIFE, 0.0f, STEADY_LIFE, viewer);
}

// A layer has room for as many particles as its rate gives in a life, so the life is little more than the frame.
SmartPtr<vrMKParticleEmitter> Make_Burst(int particles)
{
    return Make("burst", static_cast<float>(particles) / WORKLOAD_STEP, 0.5f * WORKLOAD_STEP, 1.25f * WORKLOAD_STEP,
                WorkloadViewer::None);
}

} // namespace vro
