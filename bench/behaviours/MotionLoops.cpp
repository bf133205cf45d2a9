#include "PlainLoops.h"

#include "vrGraphics/scene/vrGroundPlane.h"

using namespace Behaviour;

namespace
{

void Add_To(const PlainParticles &p, const Vectors &vectors, const Vector3 &add)
{
    Each(p.Count, [vectors, add](int i) MK_LOOP { vectors.Put(i, Plus(vectors.At(i), add)); });
}

void Add_Accelerations(CaseList &cases)
{
    static const Vector3 PULL(0.0f, 0.5f, -9.8f);
    for (const int id : {10, 69})
        cases.Modifier(id).Set("Acceleration", PULL).Beside([](const PlainParticles &p, const vrMKPRenderState &state) {
            Add_To(p, Velocities(p), PULL * state.FrameTime);
        });
    cases.Modifier(54).Beside([](const PlainParticles &p, const vrMKPRenderState &state) {
        Add_To(p, Velocities(p), state.Wind * 0.5f * state.FrameTime);
    });
    cases.Modifier(68).Beside([](const PlainParticles &p, const vrMKPRenderState &state) {
        Add_To(p, Positions(p), state.Wind * state.FrameTime * 0.25f);
    });
    cases.Modifier(31)
        .Set("Direction", PULL)
        .Set_Keys("Acceleration", Key_Value)
        .Within(6.0)
        .Beside([](const PlainParticles &p, const vrMKPRenderState &state) {
            Push(p, [time = p.Time, curve = Curve(Key_Value), pull = PULL,
                     dt = state.FrameTime](int i, const Vector3 &, const Vector3 &velocity)
                        MK_LOOP { return Plus(velocity, Times(pull, dt * curve.At_Time(time[i]))); });
        });
}

/// The strength of a push at a distance, and whether it reaches that far.
struct Law
{
    float Constant = Given(-5.0f);
    float Linear = Given(-0.1f);
    float Inverse = Given(-20.0f);
    float Inner = Given(5.0f);
    float Outer = Given(10000.0f);

    MK_INLINE Vector3 Push_Along(const Vector3 &direction, float inverse, float distance, float dt) const
    {
        return Times(Times(direction, inverse + Constant + distance * Linear), dt);
    }
    MK_INLINE bool Reaches(float distance) const { return (distance > Inner) & (distance < Outer); }
};

Case &Set_Law(Case &one, const char *what)
{
    const std::string constant = std::string("Constant ") + what;
    const std::string linear = std::string("Linear ") + what;
    const std::string inverse = std::string("Inv. Linear ") + what;
    const Law law;
    return one.Set(constant.c_str(), law.Constant).Set(linear.c_str(), law.Linear).Set(inverse.c_str(), law.Inverse);
}

template <bool Around>
void Push_By_Axis(const PlainParticles &p, const vrMKPRenderState &state)
{
    Push(p, [target = state.Get_Position(), axis = Given(Vector3(0.0f, 0.0f, 1.0f)), law = Law(),
             dt = state.FrameTime](int, const Vector3 &position, const Vector3 &velocity) MK_LOOP {
        const Vector3 from = Minus(position, target);
        const Vector3 way = Minus(from, Times(axis, Dot(from, axis)));
        const float distance = Length(way);
        const Vector3 outward = Particle::Unit(way);
        const Vector3 push =
            law.Push_Along(Around ? Cross(axis, outward) : outward, law.Inverse / distance, distance, dt);
        return Choose(law.Reaches(distance), Plus(velocity, push), velocity);
    });
}

void Swim(const PlainParticles &p, const vrMKPRenderState &state)
{
    Push(p, [target = state.Get_Position(), law = Law(), dt = state.FrameTime](int, const Vector3 &position,
                                                                               const Vector3 &velocity) MK_LOOP {
        const Vector3 way = Minus(position, target);
        const float distance = Length(way);
        const Vector3 direction = Particle::Unit(way);
        const Vector3 turned = Plus(velocity, law.Push_Along(direction, 1.0f / distance * law.Inverse, distance, dt));
        return Choose(law.Reaches(distance), Times(Particle::Unit(turned), Length(velocity)), velocity);
    });
}

void Add_Attractors(CaseList &cases)
{
    cases.Modifier(11).Set("Attract", -8.0f).Beside([](const PlainParticles &p, const vrMKPRenderState &state) {
        Push(p, [center = state.Get_Position(), strength = -8.0f * state.FrameTime](int, const Vector3 &position,
                                                                                    const Vector3 &velocity)
                    MK_LOOP { return Plus(velocity, Times(Particle::Unit(Minus(position, center)), strength)); });
    });
    Set_Law(cases.Modifier(41), "Attraction").Beside([](const PlainParticles &p, const vrMKPRenderState &state) {
        Push(p, [target = state.Get_Position(), law = Law(), dt = state.FrameTime](int, const Vector3 &position,
                                                                                   const Vector3 &velocity) MK_LOOP {
            const Vector3 way = Minus(position, target);
            const float distance = Length(way);
            const Vector3 push = law.Push_Along(Particle::Unit(way), 1.0f / distance * law.Inverse, distance, dt);
            return Choose(law.Reaches(distance), Plus(velocity, push), velocity);
        });
    });
    Set_Law(cases.Modifier(41, "swim"), "Attraction").Set("Swim", true).Beside(Swim);
    Set_Law(cases.Modifier(56), "Attraction").Beside(Push_By_Axis<false>);
    Set_Law(cases.Modifier(55), "Acceleration").Beside(Push_By_Axis<true>);
}

void Add_Speeds(CaseList &cases)
{
    cases.Modifier(42).Set("Min Speed", 5.0f).Set("Max Speed", 15.0f).Beside([](const PlainParticles &p, const auto &) {
        Push(p, [least = Given(5.0f), greatest = Given(15.0f)](int, const Vector3 &, const Vector3 &velocity) MK_LOOP {
            const float speed = Length(velocity);
            const float raised = speed < least ? least : speed;
            return Times(Particle::Unit(velocity), raised > greatest ? greatest : raised);
        });
    });
    cases.Modifier(46)
        .Set("Start Speed", 5.0f)
        .Set("End Speed", 15.0f)
        .Beside([](const PlainParticles &p, const auto &) {
            Push(p, [time = p.Time, way = Way(), start = Given(5.0f),
                     end = Given(15.0f)](int i, const Vector3 &, const Vector3 &velocity) MK_LOOP {
                const float weight = Particle::Clamp_01((time[i] - way.Start) / (way.End - way.Start));
                return Times(Particle::Unit(velocity), (1.0f - weight) * start + weight * end);
            });
        });
    cases.Modifier(32)
        .Set_Keys("Friction", Key_Value)
        .Within(6.0)
        .Beside([](const PlainParticles &p, const vrMKPRenderState &state) {
            Push(p, [time = p.Time, curve = Curve(Key_Value), dt = state.FrameTime](int i, const Vector3 &,
                                                                                    const Vector3 &velocity) MK_LOOP {
                const float part = Particle::Clamp_01(dt * curve.At_Time(time[i]));
                const float speed = Length(velocity);
                const Vector3 slower = Minus(velocity, Times(Times(Particle::Unit(velocity), speed), part));
                return Choose(speed < 0.01f, Vector3(0.0f), slower);
            });
        });
}

void Add_Vortex(CaseList &cases)
{
    cases.Modifier(13).Beside([](const PlainParticles &p, const vrMKPRenderState &state) {
        Push(p, [toLocal = state.InverseTransform, toWorld = state.Transform, dt = state.FrameTime,
                 axis = Particle::Unit(state.InverseTransform.Rotate({0.0f, 0.0f, 1.0f}))](
                    int, const Vector3 &position, const Vector3 &velocity) MK_LOOP {
            const Vector3 place = Map(toLocal, position);
            const float distance = Length(place);
            const Vector3 direction = Times(place, 1.0f / distance);
            const Vector3 outward = Minus(direction, Times(axis, Dot(direction, axis)));
            const Vector3 tangent = Particle::Unit(Cross(axis, outward));
            const Vector3 pushed = Plus(velocity, Turn(toWorld, Times(Times(tangent, dt), 3.0f)));
            return Choose(distance > 0.1f, pushed, velocity);
        });
    });
}

MK_INLINE float Five_Bits(uint32_t id, int low)
{
    return static_cast<float>(static_cast<int32_t>(id << (27 - low)) >> 27);
}

/// `shape(id, place, course)` changes both and answers whether it does, in the frame of the renderable.
template <typename Shape>
void Hold(const PlainParticles &p, const vrMKPRenderState &state, Shape shape)
{
    Each(p.Count, [position = Positions(p), velocity = Velocities(p), id = p.ID, toLocal = state.InverseTransform,
                   toWorld = state.Transform, shape](int i) MK_LOOP {
        Vector3 place = Map(toLocal, position.At(i));
        Vector3 course = Turn(toLocal, velocity.At(i));
        const bool held = shape(id[i], place, course);
        position.Put(i, Choose(held, Map(toWorld, place), position.At(i)));
        velocity.Put(i, Choose(held, Turn(toWorld, course), velocity.At(i)));
    });
}

void Funnel(const PlainParticles &p, const vrMKPRenderState &state)
{
    Hold(p, state,
         [axis = Given(Vector3(0.0f, 0.0f, 1.0f))](uint32_t id, Vector3 &position, Vector3 &velocity) MK_LOOP {
             const float height = Dot(position, axis);
             const Vector3 across = Minus(position, Times(axis, height));
             const Vector3 substitute =
                 Cross(Particle::Unit({Five_Bits(id, 0), Five_Bits(id, 5), Five_Bits(id, 10)}), axis);
             const Vector3 outward = Choose(Dot(across, across) == 0.0f, substitute, Particle::Unit(across));
             const float t = (height - 0.0f) / 50.0f;
             const float fraction = Particle::Unit_ID(id);
             const float outer = 15.0f + (45.0f - 15.0f) * t;
             const float inner = outer - outer * 0.5f;
             const float radius = (outer - inner) * fraction + inner;
             const float speed = 10.0f + (100.0f - 10.0f) * t + (fraction * (4.0f + 4.0f) - 4.0f);
             position = Plus(Times(axis, height), Times(outward, radius));
             velocity = Plus(Times(axis, Dot(velocity, axis)), Times(Cross(axis, outward), speed));
             return (t >= 0.0f) & (t <= 1.0f);
         });
}

void Torus(const PlainParticles &p, const vrMKPRenderState &state)
{
    Hold(p, state,
         [axis = Given(Vector3(0.0f, 0.0f, 1.0f))](uint32_t id, Vector3 &position, Vector3 &velocity) MK_LOOP {
             const float depth = static_cast<float>(static_cast<int32_t>(id & 0xff)) * 0.003921569f;
             const float pace = static_cast<float>(static_cast<int32_t>(id >> 8 & 0xff)) * 0.003921569f;
             const Vector3 outward = Particle::Unit(Minus(position, Times(axis, Dot(position, axis))));
             const Vector3 center = Times(outward, 10.0f);
             const Vector3 up = Particle::Unit(Minus(position, center));
             const float mean = (1.0f - depth) * 10.0f + depth * 10.0f;
             velocity = Times(Cross(Cross(axis, outward), up), (pace * 2.0f - 1.0f) * mean * 0.5f + mean);
             position = Plus(Times(up, 5.0f - depth * 0.5f * 5.0f), center);
             return true;
         });
}

/// One step of the generator that the engine has, and its float, but for the last bit.
MK_INLINE float Draw(uint32_t &seed, float half)
{
    uint32_t draw;
    do {
        seed = seed * 0x41c64e6du + 0xbdfu;
        draw = (seed >> 10) & 0x7fff;
    } while (draw > RandomMax);
    return static_cast<float>(draw) * (1.0f / RandomMax) * (half + half) - half;
}

void Walk(const PlainParticles &p, const vrMKPRenderState &state)
{
    uint32_t seed = 1;
    const float turn = 10.0f * state.FrameTime * 50.0f;
    const float way = 2.0f * state.FrameTime * 50.0f;
    const Mat3DClass toWorld = state.Transform;
    // A rotation and its inverse leave the old value, so that only the step has to be turned.
    for (int i = 0; i < p.Count; ++i) {
        const float x = Draw(seed, turn), y = Draw(seed, turn), z = Draw(seed, turn);
        const Vector3 course = Turn(toWorld, {x, y, z});
        p.VX[i] += course.x;
        p.VY[i] += course.y;
        p.VZ[i] += course.z;
        const float wayX = Draw(seed, way), wayY = Draw(seed, way), wayZ = Draw(seed, way);
        const Vector3 step = Turn(toWorld, {wayX, wayY, wayZ});
        p.X[i] += step.x;
        p.Y[i] += step.y;
        p.Z[i] += step.z;
    }
}

/// On level ground at 0, without friction.
void Bounce(const PlainParticles &p, const vrMKPRenderState &)
{
    for (int i = 0; i < p.Count; ++i) {
        if (!(p.OldZ[i] >= 0.0f && p.Z[i] < 0.0f)) continue;
        const double fraction =
            static_cast<double>(p.OldZ[i]) / (static_cast<double>(p.OldZ[i]) - static_cast<double>(p.Z[i]));
        p.X[i] = static_cast<float>(p.OldX[i] + fraction * (static_cast<double>(p.X[i]) - p.OldX[i]));
        p.Y[i] = static_cast<float>(p.OldY[i] + fraction * (static_cast<double>(p.Y[i]) - p.OldY[i]));
        p.Z[i] = 0.1f;
        p.VZ[i] *= -0.5f;
    }
}

MK_INLINE float Wrap(float value, float size, float half)
{
    // No place is more than one cube away.
    const float raised = value < -half ? half - (-half - value) : value;
    (void)size;
    return raised > half ? -half + (raised - half) : raised;
}

void Wrap_In_Cube(const PlainParticles &p, const vrMKPRenderState &)
{
    const auto wrap = [&](float *position, float *old) {
        Each(p.Count, [=](int i) MK_LOOP {
            const float wrapped = Wrap(position[i], 90.0f, 45.0f);
            old[i] = wrapped - (position[i] - old[i]);
            position[i] = wrapped;
        });
    };
    wrap(p.X, p.OldX);
    wrap(p.Y, p.OldY);
    wrap(p.Z, p.OldZ);
}

MK_INLINE float Six_Bits(uint32_t id, int low)
{
    return static_cast<float>(static_cast<int32_t>(id >> low & 63)) * 0.015873017f * 2.0f - 1.0f;
}

float Blend_Value(int key)
{
    return Key_Value(key) / 8.0f;
}

/// From the places that the stage gives to its target.
template <bool Spreads>
void Fly(const PlainParticles &p, const vrMKPRenderState &state)
{
    Each(p.Count, [position = Positions(p), time = p.Time, id = p.ID, target = state.TargetPosition,
                   curve = Curve(Blend_Value)](int i) MK_LOOP {
        const float t = time[i] < 1.0f ? time[i] : 1.0f;
        const Vector3 origin(0.5f, 0.5f, static_cast<float>(i % 16));
        Vector3 place = Plus(Times(origin, 1.0f - t), Times(target, t));
        if constexpr (Spreads) {
            const float spread = t * 8.0f;
            const Vector3 across = Particle::Unit(Minus(target, origin));
            const Vector3 offset(Six_Bits(id[i], 0) * spread, Six_Bits(id[i], 6) * spread,
                                 Six_Bits(id[i], 10) * spread);
            place = Plus(place, Minus(offset, Times(across, Dot(offset, across))));
        }
        const float blend = curve.At_Time(t);
        position.Put(i, Plus(Times(position.At(i), 1.0f - blend), Times(place, blend)));
    });
}

/// The rise and fall on the way.
void Fly_In_Arc(const PlainParticles &p, const vrMKPRenderState &state)
{
    Each(p.Count, [position = Positions(p), time = p.Time, age = p.Age, target = state.TargetPosition,
                   curve = Curve(Blend_Value)](int i) MK_LOOP {
        const float t = time[i] < 1.0f ? time[i] : 1.0f;
        const Vector3 origin(0.5f, 0.5f, static_cast<float>(i % 16));
        Vector3 place = Plus(origin, Times(Minus(target, origin), t));
        place.z += 100.0f * 5.0f * 0.5f * age[i] - 100.0f * age[i] * age[i] * 0.5f;
        const float blend = curve.At_Time(t);
        position.Put(i, Plus(Times(position.At(i), 1.0f - blend), Times(place, blend)));
    });
}

void Add_Worldly(CaseList &cases)
{
    static const vrGroundPlane GROUND;
    cases.Modifier(51, "level ground").Set("Elasticity", 0.5f).Beside(Bounce).Repeated(1).Starting([](Stage &stage) {
        stage.State.Terrain = &GROUND;
    });
    cases.Modifier(64).Set("Cube Size", 90.0f).Beside(Wrap_In_Cube).About(1e-4f).Repeated(1);
    cases.Modifier(75, "position too").Set("Position Scale", Vector3(2.0f)).About(1e-3f).Beside(Walk).Repeated(1);
    cases.Modifier(87).Set_Keys("Blend", Blend_Value).Within(6.0).Beside(Fly<false>);
    cases.Modifier(87, "spread").Set_Keys("Blend", Blend_Value).Set("Spread", 8.0f).Within(6.0).Beside(Fly<true>);
    cases.Modifier(87, "arc")
        .Set("Trajectory Types", 1)
        .Set_Keys("Blend", Blend_Value)
        .Within(6.0)
        .About(1e-3f)
        .Beside(Fly_In_Arc);
}

} // namespace

void Behaviour::Add_Motions(CaseList &cases)
{
    Add_Accelerations(cases);
    Add_Attractors(cases);
    Add_Speeds(cases);
    Add_Vortex(cases);
    cases.Modifier(74).Set("Thickness", 0.5f).Set("Speed vartion", 4.0f).Beside(Funnel);
    cases.Modifier(93).Set("Thickness", 0.5f).Set("Speed Variation", 0.5f).Beside(Torus);
    Add_Worldly(cases);
}
