#include "BehaviourBench.h"

#include "Timing.h"

#include "vrGraphics/plugins/modifiers/vrMKPModifier.h"
#include "vrGraphics/plugins/spawners/vrMKPSpawner.h"
#include "vrGraphics/plugins/stompers/vrMKPStomper.h"
#include "vrGraphics/plugins/transformers/vrMKPTransformer.h"
#include "vrGraphics/drivercommon/vrBounds.h"

#include "MKLib/MKMath/Mat3D.h"
#include "MKLib/Parameters/EnumParameter.h"
#include "MKLib/Parameters/KeyedParameters.h"
#include "MKLib/Parameters/ShapeParameter.h"
#include "MKLib/Parameters/SimpleParameters.h"
#include "MKLib/Parameters/StringParameters.h"
#include "MKLib/Parameters/UVListParameter.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace Behaviour
{

namespace
{

constexpr int BLOCK = 4096; ///< slots that the frame hands to a plugin at a time

template <typename Work>
void For_Blocks(const vrMKPBuffer &buffer, Work &&work)
{
    for (const vrMKPSpan span : buffer.Live_Spans())
        for (int done = 0; done < span.Count; done += BLOCK)
            work(vrMKPSpan{span.First + done, std::min(BLOCK, span.Count - done)});
}

template <typename T>
const T &As(const SmartPtr<vrMKPPlugin> &plugin)
{
    return static_cast<const T &>(*plugin);
}

} // namespace

Stage::Stage(int count) : Buffer(vrMKPBuffer::Create(count + 64, "behaviour"))
{
    if (!Buffer) std::abort();
    Plain.Count = count;
    for (float **array :
         {&Plain.X,      &Plain.Y,     &Plain.Z,      &Plain.OldX, &Plain.OldY, &Plain.OldZ, &Plain.VX,
          &Plain.VY,     &Plain.VZ,    &Plain.WX,     &Plain.WY,   &Plain.WZ,   &Plain.Age,  &Plain.Time,
          &Plain.MaxAge, &Plain.Width, &Plain.Height, &Plain.U,    &Plain.V,    &Plain.DU,   &Plain.DV})
        *array = Take(Floats);
    for (uint32_t **array : {&Plain.ID, &Plain.Color, &Plain.Rotation}) *array = Take(Words);
    Plain.Dead = Take(Bytes);

    State.Place_At(Mat3DClass::From_Translation({3.0f, -2.0f, 5.0f}) * Mat3DClass::From_Angles({0.3f, -0.2f, 0.5f}));
    State.FrameTime = STEP;
    State.RunningTime = 3.0f;
    State.InScene = true;
    State.Camera = Mat3DClass::Look_At({120.0f, 80.0f, 40.0f}, {0.0f, 0.0f, 0.0f});
    State.Wind = {4.0f, -3.0f, 0.5f};
    State.HasSun = true;
    State.SunDirection = {0.6f, 0.0f, 0.8f};
    State.TargetPosition = {150.0f, 5.0f, 2.0f};
    State.Dynamic[vrMKPRenderState::DYNAMIC_TARGET_RADIUS] = 20.0f;
    Buffer->State = &State;
    Buffer->Active = true;
}

template <typename T>
T *Stage::Take(std::vector<std::unique_ptr<T[]>> &arrays)
{
    arrays.push_back(std::make_unique<T[]>(static_cast<size_t>(Plain.Count)));
    return arrays.back().get();
}

void Stage::Reset(float spread)
{
    vrMKPBuffer &buffer = *Buffer;
    buffer.Reset();
    buffer.TransformType = MKP_TRANSFORM_WORLD;
    buffer.HardLifetime = false;
    buffer.Random.Seed(1);
    State.Random.Seed(1);
    int first = 0;
    buffer.Grant_Slots(Plain.Count, first);
    buffer.SpawnedThisFrame = 0;
    Plain.Deaths = 0;
    RandomClass random(7);
    const auto draw = [&](float half) {
        const float x = random.Get_Float(-half, half);
        const float y = random.Get_Float(-half, half);
        return Vector3(x, y, random.Get_Float(-half, half));
    };
    for (int i = 0; i < Plain.Count; ++i) {
        const Vector3 position = draw(50.0f) * spread;
        const Vector3 velocity = draw(20.0f);
        const Vector3 old = position - velocity * STEP;
        const float age = random.Get_Float(0.0f, 0.8f * LIFE) * spread;
        const uint32_t high = random.Get_Byte();
        buffer.Position.Put(i, position);
        buffer.PreviousPosition.Put(i, old);
        buffer.Velocity.Put(i, velocity);
        buffer.WorldPosition.Put(i, position);
        buffer.ProjectileStartingPosition.Put(i, {0.5f, 0.5f, static_cast<float>(i % 16)});
        buffer.ProjectileTargetPosition.Put(i, State.TargetPosition);
        buffer.ProjectileFlightDuration[i] = LIFE;
        buffer.Age[i] = Plain.Age[i] = age;
        buffer.MaxAge[i] = Plain.MaxAge[i] = LIFE;
        buffer.Time[i] = Plain.Time[i] = age / LIFE;
        buffer.Flags[i] = 0;
        buffer.ID[i] = Plain.ID[i] = high << 8 | random.Get_Byte();
        buffer.Number[i] = static_cast<uint32_t>(i);
        buffer.Size[i] = {1.0f, 1.0f};
        Plain.Width[i] = Plain.Height[i] = 1.0f;
        buffer.Color[i] = Plain.Color[i] = 0xff804020u + buffer.ID[i];
        buffer.Rotation[i] = Plain.Rotation[i] = buffer.ID[i] & 0xfff;
        buffer.UV[i] = {0.25f, 0.5f};
        buffer.DUV[i] = {0.125f, 0.125f};
        Plain.U[i] = 0.25f;
        Plain.V[i] = 0.5f;
        Plain.DU[i] = Plain.DV[i] = 0.125f;
        Plain.X[i] = Plain.WX[i] = position.x;
        Plain.Y[i] = Plain.WY[i] = position.y;
        Plain.Z[i] = Plain.WZ[i] = position.z;
        Plain.OldX[i] = old.x;
        Plain.OldY[i] = old.y;
        Plain.OldZ[i] = old.z;
        Plain.VX[i] = velocity.x;
        Plain.VY[i] = velocity.y;
        Plain.VZ[i] = velocity.z;
    }
}

std::string Stage::Find_Difference(float tolerance) const
{
    const vrMKPBuffer &buffer = *Buffer;
    if (buffer.ActiveCount != Plain.Count - Plain.Deaths) return "the number of the living";
    if (Plain.Deaths > 0) return ""; // the survivors stand elsewhere
    const auto differ = [&](const auto *ours, int stride, const auto *plain) {
        for (int i = 0; i < Plain.Count; ++i) {
            const auto a = ours[i * stride];
            const auto b = plain[i];
            const bool same = tolerance > 0.0f
                                  ? std::fabs(static_cast<double>(a) - static_cast<double>(b)) <= double(tolerance)
                                  : std::bit_cast<uint32_t>(a) == std::bit_cast<uint32_t>(b);
            if (!same) return true;
        }
        return false;
    };
    const auto vectors = [&](const vrMKPConstVectors &ours, const float *x, const float *y, const float *z) {
        return differ(ours.X, 1, x) || differ(ours.Y, 1, y) || differ(ours.Z, 1, z);
    };
    const auto pairs = [&](const Vector2 *ours, const float *x, const float *y) {
        return differ(&ours->x, 2, x) || differ(&ours->x + 1, 2, y);
    };
    if (vectors(buffer.Position, Plain.X, Plain.Y, Plain.Z)) return "Position";
    if (vectors(buffer.PreviousPosition, Plain.OldX, Plain.OldY, Plain.OldZ)) return "PreviousPosition";
    if (vectors(buffer.Velocity, Plain.VX, Plain.VY, Plain.VZ)) return "Velocity";
    if (vectors(buffer.WorldPosition, Plain.WX, Plain.WY, Plain.WZ)) return "WorldPosition";
    if (differ(buffer.Age, 1, Plain.Age)) return "Age";
    if (differ(buffer.Time, 1, Plain.Time)) return "Time";
    if (pairs(buffer.Size, Plain.Width, Plain.Height)) return "Size";
    if (pairs(buffer.UV, Plain.U, Plain.V)) return "UV";
    if (pairs(buffer.DUV, Plain.DU, Plain.DV)) return "dUV";
    if (differ(buffer.Color, 1, Plain.Color)) return "Color";
    if (differ(buffer.Rotation, 1, Plain.Rotation)) return "Rotation";
    return "";
}

template <typename T>
T &Case::Parameter(const char *name)
{
    auto *parameter = dynamic_cast<T *>(Plugin->Get_Parameter_By_Name(name));
    if (!parameter) {
        std::fprintf(stderr, "%d %s has no such parameter \"%s\"\n", Id, Name.c_str(), name);
        std::abort();
    }
    return *parameter;
}

Case &Case::Set(const char *name, float value)
{
    Parameter<SimpleParameterClass<float, ParameterType::Float>>(name).Set_Value(value);
    return *this;
}
Case &Case::Set(const char *name, bool value)
{
    Parameter<BoolParameter>(name).Set_Value(value);
    return *this;
}
Case &Case::Set(const char *name, int value)
{
    if (auto *entry = dynamic_cast<EnumParameterClass *>(Plugin->Get_Parameter_By_Name(name)))
        entry->Set_Value(value);
    else
        Parameter<SimpleParameterClass<int32_t, ParameterType::Integer>>(name).Set_Value(value);
    return *this;
}
Case &Case::Set(const char *name, const char *value)
{
    Parameter<StringParameterClass>(name).Set_Value(value);
    return *this;
}
Case &Case::Set(const char *name, const Vector3 &value)
{
    Parameter<Vector3Parameter>(name).Set_Value(value);
    return *this;
}
Case &Case::Set(const char *name, const RGBAClass &value)
{
    Parameter<RGBAParameter>(name).Set_Value(value);
    return *this;
}
Case &Case::Set_Rectangle(const char *name, const Vector4 &value)
{
    Parameter<UVParameter>(name).Set_Value(value);
    return *this;
}
Case &Case::Set_Rectangles(const char *name, std::vector<Vector4> values)
{
    Parameter<UVListParameterClass>(name).Set_Value(std::move(values));
    return *this;
}
Case &Case::Set_Shape(const char *name, int shape)
{
    ShapeStruct value;
    value.ShapeType = static_cast<uint32_t>(shape);
    Parameter<ShapeParameterClass>(name).Set_Value(value);
    return *this;
}

void Case::Add_Key(const char *name, float time, float value)
{
    auto &curve = Parameter<KeyedFloatParameterClass>(name);
    if (time == 0.0f) curve.Clear_Keys();
    curve.Add_Key(time, value);
}
void Case::Add_Key(const char *name, float time, const RGBAClass &value)
{
    Parameter<KeyedRGBAParameter>(name).Add_Key(time, value);
}
void Case::Add_Key(const char *name, float time, const Vector4 &value)
{
    Parameter<KeyedUVParameter>(name).Add_Key(time, value);
}

Case &Case::Beside(PlainLoop loop)
{
    Plain = std::move(loop);
    return *this;
}
Case &Case::Within(double nanoseconds)
{
    MostNanoseconds = nanoseconds;
    return *this;
}
Case &Case::About(float tolerance)
{
    Tolerance = tolerance;
    return *this;
}
Case &Case::Repeated(int times)
{
    Repeats = times;
    return *this;
}
Case &Case::Starting(std::function<void(Stage &)> start)
{
    Start = [before = std::move(Start), after = std::move(start)](Stage &stage) {
        if (before) before(stage);
        after(stage);
    };
    return *this;
}

Case &CaseList::Add(int id, const char *family, const char *variant)
{
    SmartPtr<vrMKPPlugin> plugin = vrMKPPlugin::Create_Plugin(static_cast<uint32_t>(id));
    if (!plugin) std::abort();
    std::string name = plugin->Get_Name();
    if (*family) name += std::string(", ") + family;
    if (*variant) name += std::string(", ") + variant;
    Case &one = Cases.emplace_back(id, std::move(name));
    one.Plugin = std::move(plugin);
    return one;
}

Case &CaseList::Modifier(int id, const char *variant)
{
    Case &one = Add(id, "", variant);
    one.Start = [plugin = one.Plugin](Stage &stage) {
        stage.Buffer->ModifierData.resize(1);
        stage.Buffer->ModifierData[0] = plugin->Create_Buffer_Data(stage.State);
        if (As<vrMKPModifier>(plugin).Get_Walk() == vrMKPModifier::WALK_NEW) {
            stage.Buffer->FirstNew = stage.Buffer->Head;
            stage.Buffer->SpawnedThisFrame = stage.Buffer->ActiveCount;
        }
    };
    one.Ours = [plugin = one.Plugin](Stage &stage) {
        const auto &modifier = As<vrMKPModifier>(plugin);
        vrMKPBuffer &buffer = *stage.Buffer;
        if (modifier.Get_Walk() == vrMKPModifier::WALK_WHOLE) return modifier.Modify(buffer, 0);
        modifier.Prepare_Frame(buffer, 0);
        const bool isWide = modifier.Get_Walk() == vrMKPModifier::WALK_WIDE;
        For_Blocks(buffer, [&](vrMKPSpan block) { modifier.Apply(buffer, 0, isWide ? buffer.Widen(block) : block); });
    };
    return one;
}

Case &CaseList::Ageing(int id, const char *variant)
{
    Case &one = Add(id, "age", variant);
    one.Start = [plugin = one.Plugin](Stage &) { As<vrMKPStomper>(plugin).Update_Life(); };
    one.Ours = [plugin = one.Plugin](Stage &stage) {
        const auto &stomper = As<vrMKPStomper>(plugin);
        vrMKPBuffer &buffer = *stage.Buffer;
        if (!stomper.Begin_Age(buffer)) return;
        For_Blocks(buffer, [&](vrMKPSpan block) { stomper.Age_Span(buffer, block); });
    };
    return one;
}

Case &CaseList::Killing(int id, const char *variant)
{
    Case &one = Add(id, "condition", variant);
    one.CheckSpread = 3.0f; // so that some die where the timed ones live
    one.Start = [plugin = one.Plugin](Stage &stage) {
        stage.Buffer->StomperData = plugin->Create_Buffer_Data(stage.State);
    };
    one.Ours = [plugin = one.Plugin](Stage &stage) { As<vrMKPStomper>(plugin).Kill_Particles(*stage.Buffer); };
    return one;
}

Case &CaseList::Transformer(int id, const char *variant)
{
    Case &one = Add(id, "", variant);
    one.Start = [plugin = one.Plugin](Stage &stage) {
        stage.Buffer->TransformType = As<vrMKPTransformer>(plugin).Get_Transform_Type();
    };
    one.Ours = [plugin = one.Plugin](Stage &stage) {
        const auto &transformer = As<vrMKPTransformer>(plugin);
        vrMKPBuffer &buffer = *stage.Buffer;
        if (transformer.Needs_Camera()) {
            vrBounds bounds;
            return transformer.Transform_For_View(&buffer, &stage.State.Camera, bounds);
        }
        For_Blocks(buffer, [&](vrMKPSpan block) { transformer.Transform_Span(buffer, block); });
        transformer.Transform_Companion(buffer);
    };
    return one;
}

Case &CaseList::Spawner(int id, const char *variant)
{
    Case &one = Add(id, "", variant);
    const SmartPtr<vrMKPPlugin> stomper = vrMKPPlugin::Create_Plugin(vrMKPPlugin::kvrMKPSimpleStomper);
    one.Start = [plugin = one.Plugin, stomper](Stage &stage) {
        stage.Buffer->Reset();
        stage.Buffer->Random.Seed(1);
        stage.Buffer->SpawnerData = nullptr;
        As<vrMKPStomper>(stomper).Update_Life();
        if (!As<vrMKPSpawner>(plugin).Create_Spawn_Data(stage.State, &stage.Buffer->SpawnerData)) std::abort();
    };
    one.Ours = [plugin = one.Plugin, stomper](Stage &stage) {
        As<vrMKPSpawner>(plugin).Spawn(*stage.Buffer);
        As<vrMKPStomper>(stomper).Init_New_Particles(*stage.Buffer);
    };
    return one.Within(60.0).Repeated(1);
}

Case &CaseList::Other(const char *name, std::function<void(Stage &)> ours)
{
    Case &one = Cases.emplace_back(-1, name);
    one.Ours = std::move(ours);
    return one;
}

namespace
{

constexpr int ROUNDS = 41;

/// Nanoseconds a particle of one round.
template <typename Work>
double Time_Round(Stage &stage, const Case &one, Work &&work)
{
    stage.Reset();
    if (one.Start) one.Start(stage);
    if (one.Repeats > 1) work();
    const double time = Timing::Nanoseconds([&] {
        for (int n = 0; n < one.Repeats; ++n) work();
    });
    return time / one.Repeats / stage.Plain.Count;
}

/// Whether both sides do the same.
bool Check(Stage &stage, const Case &one)
{
    stage.Reset(one.CheckSpread);
    if (one.Start) one.Start(stage);
    one.Ours(stage);
    if (!one.Plain) {
        if (stage.Buffer->ActiveCount >= stage.Plain.Count) return true;
        std::fprintf(stderr, "%s: %d particles of %d\n", one.Name.c_str(), stage.Buffer->ActiveCount,
                     stage.Plain.Count);
        return false;
    }
    one.Plain(stage.Plain, stage.State);
    const std::string difference = stage.Find_Difference(one.Tolerance);
    if (difference.empty()) return true;
    std::fprintf(stderr, "%s: the two sides differ in %s\n", one.Name.c_str(), difference.c_str());
    return false;
}

/// Whether it is within its limit.
bool Run(Stage &stage, const Case &one)
{
    const auto ours = [&] { return Time_Round(stage, one, [&] { one.Ours(stage); }); };
    if (!one.Plain) {
        const double time = Timing::Compare(ROUNDS, ours, [] { return 0.0; }).Ours;
        const bool isOver = time > one.MostNanoseconds;
        std::printf("%4d %-58s %8.2f %8s %8.2f %s\n", one.Id, one.Name.c_str(), time, "", one.MostNanoseconds,
                    isOver ? "OVER" : "");
        return !isOver;
    }
    const auto plain = [&] { return Time_Round(stage, one, [&] { one.Plain(stage.Plain, stage.State); }); };
    const auto [time, limit] = Timing::Compare(ROUNDS, ours, plain);
    const bool isOver = one.MostNanoseconds > 0.0 ? time > one.MostNanoseconds : time > 2.0 * limit;
    std::printf("%4d %-58s %8.2f %8.2f %8.2f %s\n", one.Id, one.Name.c_str(), time, limit, time / limit,
                isOver ? "OVER" : "");
    return !isOver;
}

} // namespace

} // namespace Behaviour

/// behaviour_bench [part of a name or id] [particles]
int main(int argumentCount, char **arguments)
{
    using namespace Behaviour;
    const std::string filter = argumentCount > 1 ? arguments[1] : "";
    const int count = argumentCount > 2 ? std::atoi(arguments[2]) : 10000;
    if (count < 64 || count > vrMKPBuffer::MAX_CAPACITY / 2) {
        std::fprintf(stderr, "particles: 64 to %d\n", vrMKPBuffer::MAX_CAPACITY / 2);
        return 1;
    }
    CaseList list;
    for (const auto add : {Add_Sizes, Add_Rotations, Add_Colors, Add_Motions, Add_UVs, Add_Times, Add_Stompers,
                           Add_Transformers, Add_Slaves, Add_Newborns})
        add(list);
    Stage stage(count);
    int over = 0;
    int wrong = 0;
    std::printf("%d particles, ns a particle\n%4s %-58s %8s %8s %8s\n", count, "id", "", "ours", "plain", "ratio");
    for (const Case &one : list.Cases) {
        if ((std::to_string(one.Id) + " " + one.Name).find(filter) == std::string::npos) continue;
        wrong += Check(stage, one) ? 0 : 1;
        over += Run(stage, one) ? 0 : 1;
        std::fflush(stdout);
    }
    std::printf("over their limits: %d\n", over);
    if (wrong > 0) std::printf("with other results than their plain loops: %d\n", wrong);
    return wrong > 0 ? 1 : 0;
}
