#pragma once

/// Values that game code sets on one running renderable, with a fade.

#include "MKLib/MKMath/Vectors.h"
#include "MKLib/RefCount.h"

#include <array>
#include <cstdint>

struct vrMKPRenderState;

constexpr int EMITTER_DS_COUNT = 15;

/// A value on its way to another one: slow at both ends, fastest in the middle.
template <typename T>
class SmoothValueClass
{
public:
    const T &Get_Current() const { return Current; }
    const T &Get_Target() const { return Target; }
    bool Is_Moving() const { return Timer > 0.0f; }

    void Set_At_Once(const T &value);
    /// From where the value is now to `target` in `seconds`. Without a positive time it is there at the next update.
    void Ease_To(const T &target, float seconds);
    /// Sets where the value is, without touching where it goes.
    void Set_Current(const T &value) { Current = value; }
    void Update(float step);

private:
    T Start{};
    T Current{};
    T Target{};
    float Duration = 0.0f; ///< seconds, of the whole way
    float Timer = 0.0f;    ///< seconds, of what is left
};

extern template class SmoothValueClass<float>;
extern template class SmoothValueClass<Vector3>;
extern template class SmoothValueClass<Vector4>;

/// The settings of one renderable. By index, with T for a setting that is eased towards its target and S for one that
/// is set at once:
///
///     0 to 3   scalar            T      8, 11, 14  nothing
///     4 to 7   scalar            S      9, 10      four components   T
///                                       12, 13     three components  S
///
/// The scalars are the dynamic parameters of the same numbers that plugins ask for, and 13 is the homing target.
/// Written between frames, updated by the thread that runs the renderable.
class vrMKPDynamicSettings final : public RefCountClass
{
public:
    static constexpr int SCALAR_COUNT = 8;
    static constexpr int HOMING_TARGET = 13; ///< setting it also sets the renderable's marker

    /// What renderables point to until they are given a setting of their own. Never changes; holds zeros.
    static vrMKPDynamicSettings *Get_Shared_Default();
    /// Sets a value, in an object that `settings` alone has: the shared one is replaced by a new one first. False, with
    /// an assertion and nothing changed, for an index that is no setting. A setting takes as many of the components as
    /// it has. A fade time of 0 sets the current value too.
    static bool Set(SmartPtr<vrMKPDynamicSettings> &settings, int setting, const Vector4 &value, float fadeTime);

    /// Advances the fades.
    void Update(float step);
    /// Hands what has been set, and nothing else, to the facts that plugins read.
    void Write_To(vrMKPRenderState &state) const;

    /// Zeros for a setting that is no scalar.
    const SmoothValueClass<float> &Get_Scalar(int setting) const;
    const SmoothValueClass<Vector4> &Get_Vector4(int setting) const; ///< 9, 10
    const SmoothValueClass<Vector3> &Get_Vector3(int setting) const; ///< 12, 13

private:
    void Set_Value(int setting, const Vector4 &value, float fadeTime);

    std::array<SmoothValueClass<float>, SCALAR_COUNT> Scalars;
    std::array<SmoothValueClass<Vector4>, 2> FourComponents;  ///< 9 and 10
    std::array<SmoothValueClass<Vector3>, 2> ThreeComponents; ///< 12 and 13
    uint32_t WasSet = 0;                                      ///< a bit for each index
};
