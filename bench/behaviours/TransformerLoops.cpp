#include "PlainLoops.h"

#include <cstring>

using namespace Behaviour;

namespace
{

/// world = `place(position)`
template <typename Place>
void Write(const PlainParticles &p, Place place)
{
    Each(p.Count, [world = World_Positions(p), position = Positions(p), place](int i)
                      MK_LOOP { world.Put(i, place(position.At(i))); });
}

MK_INLINE float Fold(float value, float half)
{
    const float raised = value < -half ? half - (-half - value) : value;
    return raised > half ? (raised - half) - half : raised;
}

MK_INLINE float Tile(float value, float size)
{
    const float shift = value >= 0.0f ? size / 2.0f : size / -2.0f;
    const float moved = value + shift;
    return moved - static_cast<float>(static_cast<int32_t>(moved / size)) * size - shift;
}

} // namespace

void Behaviour::Add_Transformers(CaseList &cases)
{
    cases.Transformer(26).Beside([](const PlainParticles &p, const vrMKPRenderState &state) {
        Write(p, [transform = state.Transform](const Vector3 &position) MK_LOOP { return Map(transform, position); });
    });
    cases.Transformer(27, "arrays of its own").Beside([](const PlainParticles &p, const auto &) {
        const size_t bytes = static_cast<size_t>(p.Count) * sizeof(float);
        std::memcpy(p.WX, p.X, bytes);
        std::memcpy(p.WY, p.Y, bytes);
        std::memcpy(p.WZ, p.Z, bytes);
    });
    cases.Transformer(65)
        .Set("Cube Size", 120.0f)
        .About(1e-3f)
        .Beside([](const PlainParticles &p, const vrMKPRenderState &state) {
            const Vector3 center = state.Camera.Get_Translation() - Particle::Unit(state.Camera.Get_Axis(2)) * 100.0f;
            const Vector3 cubes = center / 120.0f;
            const Vector3 phase =
                (cubes - Vector3(std::floor(cubes.x), std::floor(cubes.y), std::floor(cubes.z))) * 120.0f;
            Each(p.Count, [world = World_Positions(p), position = Positions(p), time = p.Time, center, phase,
                           half = Given(60.0f), inverse = Given(1.0f / 120.0f)](int i) MK_LOOP {
                const Vector3 from = Minus(position.At(i), phase);
                const Vector3 folded(Fold(from.x, half), Fold(from.y, half), Fold(from.z, half));
                world.Put(i, Plus(center, folded));
                time[i] = 1.0f - Particle::Clamp_01(folded.z * inverse + 0.5f);
            });
        });
    cases.Transformer(122)
        .Set("Width", 30.0f)
        .Set("Height", 20.0f)
        .About(1e-3f)
        .Beside([](const PlainParticles &p, const vrMKPRenderState &state) {
            Write(p, [camera = state.Camera, width = Given(30.0f), height = Given(20.0f),
                      offset = Given(50.0f)](const Vector3 &at) MK_LOOP {
                return Map(camera, {Tile(at.x, width), Tile(at.y, height), at.z - offset});
            });
        });
}
