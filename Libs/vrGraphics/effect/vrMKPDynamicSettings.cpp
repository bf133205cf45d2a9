#include "vrGraphics/effect/vrMKPDynamicSettings.h"

#include "vrGraphics/particle/ParticleMath.h"
#include "vrGraphics/particle/vrMKPRenderState.h"

#include <algorithm>
#include <limits>

namespace
{

constexpr float LEAST_FADE_TIME = 0.01f; ///< seconds that a fade of 0 seconds takes
constexpr int FIRST_AT_ONCE = 4;         ///< scalars from here on don't fade

/// Where a setting stands in the array of its kind, or -1.
constexpr int Vector4_Index(int setting)
{
    return setting == 9 || setting == 10 ? setting - 9 : -1;
}
constexpr int Vector3_Index(int setting)
{
    return setting == 12 || setting == vrMKPDynamicSettings::HOMING_TARGET ? setting - 12 : -1;
}

template <typename T>
void Start_Fade(SmoothValueClass<T> &setting, const T &target, float fadeTime)
{
    if (fadeTime == 0.0f) {
        setting.Set_Current(target);
        fadeTime = LEAST_FADE_TIME;
    }
    setting.Ease_To(target, fadeTime);
}

} // namespace

template <typename T>
void SmoothValueClass<T>::Set_At_Once(const T &value)
{
    Current = Target = value;
    Timer = 0.0f;
}

template <typename T>
void SmoothValueClass<T>::Ease_To(const T &target, float seconds)
{
    Start = Current;
    Target = target;
    Duration = Timer = std::min(seconds, std::numeric_limits<float>::max());
    if (seconds > 0.0f) return;
    Duration = Timer = LEAST_FADE_TIME;
    Start = target;
}

template <typename T>
void SmoothValueClass<T>::Update(float step)
{
    if (!(Timer > 0.0f) || !(step > 0.0f)) return;
    Timer -= step;
    // Of the way that is left, not of the way that has passed, so that the end is met exactly.
    Current = Timer > 0.0f ? Target - (Target - Start) * Particle::Smooth_Step(Timer / Duration) : Target;
}

template class SmoothValueClass<float>;
template class SmoothValueClass<Vector3>;
template class SmoothValueClass<Vector4>;

vrMKPDynamicSettings *vrMKPDynamicSettings::Get_Shared_Default()
{
    static const auto shared = SmartPtr<vrMKPDynamicSettings>::Of_Fresh(new vrMKPDynamicSettings);
    return shared.Get();
}

bool vrMKPDynamicSettings::Set(SmartPtr<vrMKPDynamicSettings> &settings, int setting, const Vector4 &value,
                               float fadeTime)
{
    if (!MK_VERIFY(setting < EMITTER_DS_COUNT, "setting < EMITTER_DS_COUNT")) return false;
    if (!MK_VERIFY(setting >= 0, "setting >= 0")) return false;
    if (!settings || settings == Get_Shared_Default())
        settings = SmartPtr<vrMKPDynamicSettings>::Of_Fresh(new vrMKPDynamicSettings);
    settings->Set_Value(setting, value, fadeTime);
    return true;
}

void vrMKPDynamicSettings::Set_Value(int setting, const Vector4 &value, float fadeTime)
{
    WasSet |= 1u << setting;
    if (setting < FIRST_AT_ONCE)
        Start_Fade(Scalars[static_cast<size_t>(setting)], value.x, fadeTime);
    else if (setting < SCALAR_COUNT)
        Scalars[static_cast<size_t>(setting)].Set_At_Once(value.x);
    else if (Vector4_Index(setting) >= 0)
        Start_Fade(FourComponents[static_cast<size_t>(Vector4_Index(setting))], value, fadeTime);
    else if (Vector3_Index(setting) >= 0)
        ThreeComponents[static_cast<size_t>(Vector3_Index(setting))].Set_At_Once(Vector3(value));
}

void vrMKPDynamicSettings::Update(float step)
{
    for (auto &scalar : Scalars) scalar.Update(step);
    for (auto &vector : FourComponents) vector.Update(step);
    for (auto &vector : ThreeComponents) vector.Update(step);
}

void vrMKPDynamicSettings::Write_To(vrMKPRenderState &state) const
{
    for (int setting = 0; setting < SCALAR_COUNT; ++setting)
        if (WasSet & (1u << setting)) state.Dynamic[static_cast<size_t>(setting)] = Get_Scalar(setting).Get_Current();
    if (WasSet & (1u << HOMING_TARGET)) state.HomingTarget = Get_Vector3(HOMING_TARGET).Get_Current();
}

const SmoothValueClass<float> &vrMKPDynamicSettings::Get_Scalar(int setting) const
{
    static const SmoothValueClass<float> NONE;
    return setting >= 0 && setting < SCALAR_COUNT ? Scalars[static_cast<size_t>(setting)] : NONE;
}

const SmoothValueClass<Vector4> &vrMKPDynamicSettings::Get_Vector4(int setting) const
{
    static const SmoothValueClass<Vector4> NONE;
    const int index = Vector4_Index(setting);
    return index >= 0 ? FourComponents[static_cast<size_t>(index)] : NONE;
}

const SmoothValueClass<Vector3> &vrMKPDynamicSettings::Get_Vector3(int setting) const
{
    static const SmoothValueClass<Vector3> NONE;
    const int index = Vector3_Index(setting);
    return index >= 0 ? ThreeComponents[static_cast<size_t>(index)] : NONE;
}
