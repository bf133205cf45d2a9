#include "PlainLoops.h"

using namespace Behaviour;

namespace
{

/// rectangle = `at(i)`
template <typename At>
void Write(const PlainParticles &p, At at)
{
    Each(p.Count, [u = p.U, v = p.V, du = p.DU, dv = p.DV, at](int i) MK_LOOP {
        const Vector4 rectangle = at(i);
        u[i] = rectangle.x;
        v[i] = rectangle.y;
        du[i] = rectangle.z;
        dv[i] = rectangle.w;
    });
}

Vector4 Key_Rectangle(int key)
{
    const float place = static_cast<float>(key) / 8.0f;
    return {place, 1.0f - place, 0.125f, 0.25f};
}

const std::vector<Vector4> SLOTS = {Key_Rectangle(1), Key_Rectangle(4), Key_Rectangle(2), Key_Rectangle(7),
                                    Key_Rectangle(5)};

struct KeyedRectangles
{
    Curve<float (*)(int)> Times{+[](int) { return 0.0f; }};
    Vector4 Rectangles[KEY_COUNT];

    KeyedRectangles()
    {
        for (int key = 0; key < KEY_COUNT; ++key) Rectangles[key] = Key_Rectangle(key);
    }
    MK_INLINE const Vector4 &At_Time(float time) const { return Rectangles[Times.Low(Times.Place(time))]; }
};

MK_INLINE float Whole(float value)
{
    return static_cast<float>(static_cast<int32_t>(value));
}

/// Frames of a sheet, over and over.
struct Sheet
{
    float Rate = Given(15.0f);
    float Frames = Given(10.0f);
    float Columns = Given(8.0f);
    float Size = Given(0.125f);

    MK_INLINE Vector2 Place(float frame) const
    {
        const float rest = frame - Whole(frame / Frames) * Frames;
        const float cell = rest < 0.0f ? rest + Frames : rest;
        const float row = Whole(cell / Columns);
        return {(cell - row * Columns) * Size, row * Size};
    }
};

void Play(const PlainParticles &p, const vrMKPRenderState &)
{
    Write(p, [age = p.Age, sheet = Sheet()](int i) MK_LOOP {
        const Vector2 place = sheet.Place(Whole(age[i] * sheet.Rate));
        return Vector4(place.x, place.y, sheet.Size, sheet.Size);
    });
}

/// From a random frame on, mirrored at random.
void Play_At_Random(const PlainParticles &p, const vrMKPRenderState &)
{
    Write(p, [age = p.Age, id = p.ID, sheet = Sheet()](int i) MK_LOOP {
        const float frame = Whole(age[i] * sheet.Rate) + Whole(Particle::Unit_ID(id[i]) * (sheet.Frames - 1.0f));
        const Vector2 place = sheet.Place(frame);
        const bool flipU = (id[i] & 1) != 0;
        const bool flipV = (id[i] >> 4 & 1) != 0;
        return Vector4(place.x + (flipU ? sheet.Size : 0.0f), place.y + (flipV ? sheet.Size : 0.0f),
                       flipU ? -sheet.Size : sheet.Size, flipV ? -sheet.Size : sheet.Size);
    });
}

} // namespace

void Behaviour::Add_UVs(CaseList &cases)
{
    cases.Modifier(14)
        .Set_Rectangle("TexCoords", Key_Rectangle(3))
        .Set("Write Once", false)
        .Beside([](const PlainParticles &p, const auto &) {
            Write(p, [rectangle = Key_Rectangle(3)](int) MK_LOOP { return rectangle; });
        });
    cases.Modifier(18)
        .Set_Keys("TexCoords", Key_Rectangle)
        .Within(6.0)
        .Beside([](const PlainParticles &p, const auto &) {
            Write(p, [time = p.Time, curve = KeyedRectangles()](int i) MK_LOOP { return curve.At_Time(time[i]); });
        });
    cases.Modifier(18, "3 loops")
        .Set_Keys("TexCoords", Key_Rectangle)
        .Set("Loop Count", 3.0f)
        .Within(6.0)
        .Beside([](const PlainParticles &p, const auto &) {
            Write(p, [time = p.Time, curve = KeyedRectangles()](int i) MK_LOOP {
                const float loops = time[i] * 3.0f;
                return curve.At_Time(loops - static_cast<float>(static_cast<int32_t>(loops)));
            });
        });
    cases.Modifier(30).Beside([](const PlainParticles &p, const auto &) {
        Each(p.Count, [u = p.U, v = p.V, id = p.ID](int i) MK_LOOP {
            u[i] += static_cast<float>(static_cast<int32_t>(id[i] & 0xff)) * 0.003921569f;
            v[i] += static_cast<float>(static_cast<int32_t>(id[i] >> 8 & 0xff)) * 0.003921569f;
        });
    });
    cases.Modifier(33).Set_Rectangles("Slot UV Coordinates", SLOTS).Beside([](const PlainParticles &p, const auto &) {
        Write(p, [id = p.ID, slots = SLOTS.data(), count = static_cast<uint32_t>(SLOTS.size())](int i)
                     MK_LOOP { return slots[id[i] % count]; });
    });
    cases.Modifier(73)
        .Set_Rectangles("Slot UV Coordinates", SLOTS)
        .Repeated(1)
        .Starting([](Stage &) {})
        .Beside([](const PlainParticles &p, const auto &) {
            size_t slot = 0;
            for (int i = 0; i < p.Count; ++i) {
                p.U[i] = SLOTS[slot].x;
                p.V[i] = SLOTS[slot].y;
                p.DU[i] = SLOTS[slot].z;
                p.DV[i] = SLOTS[slot].w;
                slot = slot + 1 < SLOTS.size() ? slot + 1 : 0;
            }
        });
    cases.Modifier(76).Beside(Play);
    cases.Modifier(76, "random start and flip")
        .Set("Random Start", true)
        .Set("Random Flip", true)
        .Beside(Play_At_Random);
}
