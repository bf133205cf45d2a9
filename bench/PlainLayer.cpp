#include "PlainLayer.h"

#include "MKLib/MKMath/Simd.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace
{

constexpr int LANES = 16;

MK_SIMD void Age_Loop(float *__restrict age, float *__restrict time, int count, float dt, float life)
{
    for (int i = 0; i < count; ++i) {
        age[i] += dt;
        time[i] = age[i] / life;
    }
}

MK_SIMD void Move_Loop(float *__restrict position, const float *__restrict velocity, int count, float dt)
{
    for (int i = 0; i < count; ++i) position[i] += velocity[i] * dt;
}

MK_SIMD void Add_Loop(float *__restrict value, int count, float add)
{
    for (int i = 0; i < count; ++i) value[i] += add;
}

MK_INLINE float Weight(float time)
{
    const float raised = time > 0.0f ? time : 0.0f;
    return raised < 1.0f ? raised : 1.0f;
}

MK_SIMD void Size_Loop(const float *__restrict time, float *__restrict width, float *__restrict height, int count,
                       float from, float to)
{
    for (int i = 0; i < count; ++i) {
        const float size = Weight(time[i]) * (to - from) + from;
        width[i] = size;
        height[i] = size;
    }
}

MK_SIMD void Rotation_Loop(const float *__restrict time, uint32_t *__restrict rotation, int count, float from, float to)
{
    for (int i = 0; i < count; ++i)
        rotation[i] =
            static_cast<uint32_t>(static_cast<int32_t>((Weight(time[i]) * (to - from) + from) * 4096.0f)) & 0xfff;
}

MK_SIMD void Color_Loop(const float *__restrict time, uint32_t *__restrict color, int count, uint32_t from, uint32_t to)
{
    for (int i = 0; i < count; ++i) {
        const auto f = static_cast<int32_t>(Weight(time[i]) * 65536.0f);
        uint32_t packed = 0;
        for (int shift = 0; shift < 32; shift += 8) {
            const auto a = static_cast<int32_t>((from >> shift) & 0xff);
            const auto b = static_cast<int32_t>((to >> shift) & 0xff);
            packed |= static_cast<uint32_t>((a * 65536 + (b - a) * f) >> 16) << shift;
        }
        color[i] = packed;
    }
}

/// One axis of the box and of the centroid, in lanes, as a loop without reordering can do it.
MK_SIMD void Bounds_Loop(const float *__restrict position, const float *__restrict width,
                         const float *__restrict height, int count, float *__restrict lowest, float *__restrict highest,
                         float *__restrict sum)
{
    float low[LANES], high[LANES], sums[LANES];
    for (int lane = 0; lane < LANES; ++lane) {
        low[lane] = *lowest;
        high[lane] = *highest;
        sums[lane] = 0.0f;
    }
    int i = 0;
    for (; i + LANES <= count; i += LANES)
        for (int lane = 0; lane < LANES; ++lane) {
            const float p = position[i + lane];
            const float r = width[i + lane] + height[i + lane];
            low[lane] = p - r < low[lane] ? p - r : low[lane];
            high[lane] = p + r > high[lane] ? p + r : high[lane];
            sums[lane] += p;
        }
    for (int lane = 0; i < count; ++i, ++lane) sums[lane] += position[i];
    for (int lane = 0; lane < LANES; ++lane) {
        *lowest = std::min(*lowest, low[lane]);
        *highest = std::max(*highest, high[lane]);
        *sum += sums[lane];
    }
}

} // namespace

PlainLayer::PlainLayer(int capacity, float rate, float life, bool measuresBounds)
    : Capacity(capacity), Rate(rate), Life(life), MeasuresBounds(measuresBounds), Color(static_cast<size_t>(capacity)),
      Rotation(static_cast<size_t>(capacity)), ID(static_cast<size_t>(capacity))
{
    for (float **array :
         {&X, &Y, &Z, &OldX, &OldY, &OldZ, &VX, &VY, &VZ, &WX, &WY, &WZ, &Age, &MaxAge, &Time, &Width, &Height})
        *array = Take();
}

float *PlainLayer::Take()
{
    Arrays.push_back(std::make_unique<float[]>(static_cast<size_t>(Capacity)));
    return Arrays.back().get();
}

template <typename Work>
void PlainLayer::For_Spans(Work &&work)
{
    const int untilEnd = std::min(Count, Capacity - Head);
    if (untilEnd > 0) work(Span{Head, untilEnd});
    if (Count > untilEnd) work(Span{0, Count - untilEnd});
}

void PlainLayer::Spawn(int count, float dt)
{
    const auto draw = [this] {
        Seed = Seed * 0x41c64e6du + 0xbdfu;
        return static_cast<float>((Seed >> 10) & 0x7fff) * (1.0f / 32767.0f);
    };
    const auto sphere = [&](float &x, float &y, float &z) {
        const float u = draw();
        const float v = draw();
        const float s = std::sqrt((1.0f - v) * v) * 2.0f;
        const float r = draw() * 10.0f;
        x = r * s * std::cos(u * 6.2831855f);
        y = r * s * std::sin(u * 6.2831855f);
        z = r * (1.0f - 2.0f * v);
    };
    for (int n = 0; n < count && Count < Capacity; ++n, ++Count) {
        const int slot = (Head + Count) % Capacity;
        const float age = dt * static_cast<float>(count - n) / static_cast<float>(count);
        sphere(X[slot], Y[slot], Z[slot]);
        sphere(VX[slot], VY[slot], VZ[slot]);
        OldX[slot] = X[slot];
        OldY[slot] = Y[slot];
        OldZ[slot] = Z[slot];
        X[slot] += VX[slot] * age;
        Y[slot] += VY[slot] * age;
        Z[slot] += VZ[slot] * age;
        Age[slot] = age;
        MaxAge[slot] = Life;
        Time[slot] = age / Life;
        ID[slot] = Seed >> 16;
        Width[slot] = Height[slot] = 1.0f;
        Rotation[slot] = 0;
    }
}

void PlainLayer::Spawn_All(int count)
{
    Count = 0;
    Spawn(count, 0.0f);
}

void PlainLayer::Step(float dt)
{
    while (Count > 0 && Age[Head] + dt > Life) {
        Head = (Head + 1) % Capacity;
        --Count;
    }
    For_Spans([&](Span s) { Age_Loop(Age + s.First, Time + s.First, s.Count, dt, Life); });
    const auto copy = [](float *to, const float *from, Span s) {
        std::memcpy(to + s.First, from + s.First, static_cast<size_t>(s.Count) * sizeof(float));
    };
    For_Spans([&](Span s) {
        copy(OldX, X, s);
        copy(OldY, Y, s);
        copy(OldZ, Z, s);
    });
    For_Spans([&](Span s) {
        Move_Loop(X + s.First, VX + s.First, s.Count, dt);
        Move_Loop(Y + s.First, VY + s.First, s.Count, dt);
        Move_Loop(Z + s.First, VZ + s.First, s.Count, dt);
    });
    Owed += Rate * dt;
    Spawn(static_cast<int>(Owed), dt);
    Owed -= std::floor(Owed);
    For_Spans([&](Span s) { Add_Loop(VZ + s.First, s.Count, -10.0f * dt); });
    For_Spans([&](Span s) { Size_Loop(Time + s.First, Width + s.First, Height + s.First, s.Count, 1.0f, 5.0f); });
    For_Spans([&](Span s) { Rotation_Loop(Time + s.First, Rotation.data() + s.First, s.Count, 0.0f, 1.0f); });
    For_Spans([&](Span s) { Color_Loop(Time + s.First, Color.data() + s.First, s.Count, 0xff40a0ffu, 0x000000ffu); });
    For_Spans([&](Span s) {
        copy(WX, X, s);
        copy(WY, Y, s);
        copy(WZ, Z, s);
    });
    if (!MeasuresBounds) return;
    const float *axes[] = {X, Y, Z};
    for (int axis = 0; axis < 3; ++axis) {
        Lowest[axis] = Highest[axis] = axes[axis][Head];
        Sum[axis] = 0.0f;
        For_Spans([&](Span s) {
            Bounds_Loop(axes[axis] + s.First, Width + s.First, Height + s.First, s.Count, &Lowest[axis], &Highest[axis],
                        &Sum[axis]);
        });
    }
}

float PlainLayer::Get_Checksum() const
{
    return WX[Head] + Width[Head] + static_cast<float>(Color[static_cast<size_t>(Head)] & 0xff) + Sum[0] + Highest[2];
}
