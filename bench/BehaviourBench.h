#pragma once

/// Every behaviour by itself, beside the loop that one would write for it alone: separate arrays, constants in
/// registers, no engine. The plain loops stand by family in behaviours/.

#include "vrGraphics/particle/vrMKPBuffer.h"
#include "vrGraphics/particle/vrMKPRenderState.h"
#include "vrGraphics/plugins/base/vrMKPPlugin.h"

#include <deque>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace Behaviour
{

/// The particles of the plain loops: one array a component.
struct PlainParticles
{
    int Count = 0;
    float *X, *Y, *Z, *OldX, *OldY, *OldZ, *VX, *VY, *VZ, *WX, *WY, *WZ;
    float *Age, *MaxAge, *Time, *Width, *Height, *U, *V, *DU, *DV;
    uint32_t *ID, *Color, *Rotation;
    uint8_t *Dead;
    mutable int Deaths = 0; ///< what the loops of the stompers count
};

/// The same particles on both sides, and the facts of the frame that they play in.
class Stage
{
public:
    static constexpr float STEP = 1.0f / 60.0f;
    static constexpr float LIFE = 5.0f;

    explicit Stage(int count);
    /// Both sides to the same start, in world space, without new particles. `spread` scales places and ages.
    void Reset(float spread = 1.0f);
    /// The name of a channel whose values on the two sides are further apart than `tolerance`, or else empty. Bit for
    /// bit for a tolerance of 0.
    std::string Find_Difference(float tolerance) const;

    vrMKPRenderState State;
    SmartPtr<vrMKPBuffer> Buffer;
    PlainParticles Plain;

private:
    template <typename T>
    T *Take(std::vector<std::unique_ptr<T[]>> &arrays);

    std::vector<std::unique_ptr<float[]>> Floats;
    std::vector<std::unique_ptr<uint32_t[]>> Words;
    std::vector<std::unique_ptr<uint8_t[]>> Bytes;
};

struct Case
{
    using PlainLoop = std::function<void(const PlainParticles &, const vrMKPRenderState &)>;

    Case(int id, std::string name) : Id(id), Name(std::move(name)) {}

    // Parameters of the plugin, by name. An int sets an enum, too.
    Case &Set(const char *name, float value);
    Case &Set(const char *name, bool value);
    Case &Set(const char *name, int value);
    Case &Set(const char *name, const char *value);
    Case &Set(const char *name, const Vector3 &value);
    Case &Set(const char *name, const RGBAClass &value);
    Case &Set_Rectangle(const char *name, const Vector4 &value);
    Case &Set_Rectangles(const char *name, std::vector<Vector4> values);
    Case &Set_Shape(const char *name, int shape);
    /// Eight keys, value `at(n)` at time n / 7.
    template <typename At>
    Case &Set_Keys(const char *name, At &&at);

    Case &Beside(PlainLoop loop);
    /// The limit in nanoseconds, in place of twice the plain loop.
    Case &Within(double nanoseconds);
    Case &About(float tolerance);
    /// Calls a round; 1 where a second call would find less work.
    Case &Repeated(int times);
    /// What each round starts with, after the reset.
    Case &Starting(std::function<void(Stage &)> start);

    int Id;
    std::string Name;
    SmartPtr<vrMKPPlugin> Plugin;
    std::function<void(Stage &)> Start;
    std::function<void(Stage &)> Ours;
    PlainLoop Plain; ///< may be missing
    double MostNanoseconds = 0.0;
    float Tolerance = 0.0f;
    float CheckSpread = 1.0f; ///< particles of the comparison ahead of the timing
    int Repeats = 16;

private:
    template <typename T>
    T &Parameter(const char *name);
    void Add_Key(const char *name, float time, float value);
    void Add_Key(const char *name, float time, const RGBAClass &value);
    void Add_Key(const char *name, float time, const Vector4 &value);
};

/// Seven intervals of keys. Not a polynomial, so that no two pieces are alike.
constexpr int KEY_COUNT = 8;

template <typename At>
Case &Case::Set_Keys(const char *name, At &&at)
{
    for (int key = 0; key < KEY_COUNT; ++key) Add_Key(name, static_cast<float>(key) / (KEY_COUNT - 1), at(key));
    return *this;
}

class CaseList
{
public:
    // `variant` says what is set in a special way. Each calls the plugin as the frame does.
    Case &Modifier(int id, const char *variant = "");
    Case &Ageing(int id, const char *variant = "");
    Case &Killing(int id, const char *variant = "");
    Case &Transformer(int id, const char *variant = "");
    /// A call that makes all particles of an empty buffer; nanoseconds a newborn.
    Case &Spawner(int id, const char *variant = "");
    Case &Other(const char *name, std::function<void(Stage &)> ours);

    std::deque<Case> Cases;

private:
    Case &Add(int id, const char *family, const char *variant);
};

/// A number that is different for each of few keys.
constexpr float Key_Value(int key)
{
    return 1.0f + static_cast<float>((key * 5 + 2) % KEY_COUNT);
}

void Add_Sizes(CaseList &cases);
void Add_Rotations(CaseList &cases);
void Add_Colors(CaseList &cases);
void Add_Motions(CaseList &cases);
void Add_UVs(CaseList &cases);
void Add_Times(CaseList &cases);
void Add_Stompers(CaseList &cases);
void Add_Transformers(CaseList &cases);
void Add_Slaves(CaseList &cases);
void Add_Newborns(CaseList &cases);

} // namespace Behaviour
