#include "vrGraphics/plugins/spawners/ParticleSpawners.h"

#include "vrGraphics/particle/ParticleMath.h"
#include "vrGraphics/plugins/spawners/ParentLayer.h"
#include "vrGraphics/plugins/spawners/ParentSpace.h"
#include "vrGraphics/plugins/spawners/ShapeSource.h"
#include "vrGraphics/plugins/spawners/SpawnerTexts.h"
#include "MKLib/Parameters/EnumParameter.h"
#include "MKLib/Parameters/SimpleParameters.h"
#include "MKLib/Parameters/StringParameters.h"

#include <glm/geometric.hpp>

#include <algorithm>
#include <climits>
#include <vector>

/// The deaths that wait for a burst. Room for them is made when the layer first steps.
class vrMKPDeathSpawnerPluginData final : public vrMKPParentPluginData
{
public:
    MK_RUN_TIME_TYPE

    struct Death
    {
        Vector3 Position{0.0f}; ///< in the parent's space
        Vector3 Velocity{0.0f};
        float Overshoot = 0.0f; ///< seconds since the death
    };

    /// Deaf until it has found its parent again, as ahead of its first run.
    void Reset() override
    {
        Deaths.clear();
        Room = 0;
    }
    /// Has the layer told of its parent's deaths from now on.
    void Listen(const vrMKPBuffer &buffer, std::string_view name);
    void Add(const Death &death)
    {
        if (Deaths.size() < Room) Deaths.push_back(death);
    }

    std::vector<Death> Deaths;

private:
    size_t Room = 0;
};

MK_DEFINE_RUN_TIME_TYPE(vrMKPDeathSpawnerPluginData, vrMKPParentPluginData)

void vrMKPDeathSpawnerPluginData::Listen(const vrMKPBuffer &buffer, std::string_view name)
{
    Find_Parent(*buffer.State, name);
    if (ParentBuffer && buffer.Layer) ParentBuffer->Add_Death_Listener(*buffer.Layer);
    Room = static_cast<size_t>(buffer.Capacity);
    Deaths.reserve(Room);
}

namespace
{

// Indices into this are a file format.
constexpr const char *PARENT_ALIGNMENTS[] = {"None", "Forward Motion", "Reverse Motion"};

vrMKPParentAlignment Get_Alignment(const EnumParameterClass &parameter)
{
    return static_cast<vrMKPParentAlignment>(parameter.Get_Value());
}

/// The shapes of a spawner, drawn from at the place of a parent's particle.
struct PosedShapes
{
    vrMKPParentPose Pose;
    vrMKPShapeSource Shapes;
    Vector3 Drawn{0.0f}; ///< what the velocity of the same particle may go outward from

    Vector3 Draw_Position(RandomClass &random)
    {
        Drawn = Shapes.Position(random);
        return Pose.Get_Position(Drawn);
    }
    Vector3 Draw_Velocity(RandomClass &random) const { return Pose.Get_Velocity(Shapes.Velocity(random, Drawn)); }
    /// The same for a block: `takeNext` is called for each of the newborns, and moves the pose to where it belongs.
    template <typename TakeNext>
    bool Draw_Block(RandomClass &random, vrMKPNewborns &newborns, int first, int count, TakeNext &&takeNext) const
    {
        if (!Shapes.Draw_Block(random, newborns, first, count)) return false;
        for (int at = first; at < first + count; ++at) {
            takeNext();
            newborns.Starts.Put(at, Pose.Get_Position(newborns.Starts[at]));
            newborns.Velocities.Put(at, Pose.Get_Velocity(newborns.Velocities[at]));
        }
        return true;
    }
};

/// What a trail keeps for a buffer: how many particles its parent has, and which of them comes next.
class vrMKPEnhancedTrailSpawnerPluginData final : public vrMKPParentPluginData
{
public:
    MK_RUN_TIME_TYPE

    void Reset() override { NextNumber = 0; }

    /// With the parent of this frame. A trail doesn't follow itself: what it reads would change as it spawns.
    void Update(const vrMKPRenderState &state, std::string_view name, const vrMKPBuffer *self);
    /// The place in the parent's ring, counted from the oldest, of the first particle whose turn hasn't been.
    int Find_Next() const;

    int ParentCount = 0;     ///< of living particles
    int ParentCapacity = 0;  ///< 0 without a parent
    uint32_t NextNumber = 0; ///< the least running number whose turn it is
};

MK_DEFINE_RUN_TIME_TYPE(vrMKPEnhancedTrailSpawnerPluginData, vrMKPParentPluginData)

void vrMKPEnhancedTrailSpawnerPluginData::Update(const vrMKPRenderState &state, std::string_view name,
                                                 const vrMKPBuffer *self)
{
    Find_Parent(state, name);
    if (ParentBuffer == self) ParentBuffer = nullptr;
    ParentCount = ParentBuffer ? ParentBuffer->ActiveCount : 0;
    ParentCapacity = ParentBuffer ? ParentBuffer->Capacity : 0;
}

int vrMKPEnhancedTrailSpawnerPluginData::Find_Next() const
{
    // The numbers of a ring rise; where they run over, the difference tells.
    int low = 0;
    int high = ParentCount;
    while (low < high) {
        const int middle = low + (high - low) / 2;
        const int slot = (ParentBuffer->Head + middle) % ParentBuffer->Capacity;
        if (static_cast<int32_t>(ParentBuffer->Number[slot] - NextNumber) < 0)
            low = middle + 1;
        else
            high = middle;
    }
    return low < ParentCount ? low : 0;
}

/// Goes round the parent's particles while a trail is filled.
class TrailSource
{
public:
    TrailSource(const vrMKPBuffer &child, const vrMKPEnhancedTrailSpawnerPluginData &data, PosedShapes &shapes,
                const vrMKPBirths &births);

    Vector3 Position(RandomClass &random)
    {
        Take_Next();
        return Shapes.Draw_Position(random);
    }
    Vector3 Velocity(RandomClass &random, const Vector3 & /*localPosition*/) { return Shapes.Draw_Velocity(random); }
    bool Draws_Blocks() const { return Shapes.Shapes.Draws_Blocks(); }
    bool Draw_Block(RandomClass &random, vrMKPNewborns &newborns, int first, int count)
    {
        return Shapes.Draw_Block(random, newborns, first, count, [this] { Take_Next(); });
    }
    uint32_t Get_Next_Number() const { return Parent.Number[Last] + 1; }

private:
    void Take_Next();
    void Follow(int slot, float fraction);

    const vrMKPBuffer &Parent;
    vrMKPParentSpace Space;
    PosedShapes &Shapes;
    float FrameTime;
    int Next; ///< slot of the parent
    int Last = 0;
    int InCluster = 0;
    int ClusterSize;
    float Fraction; ///< of the frame that has passed at the birth
    float FractionStep;
};

TrailSource::TrailSource(const vrMKPBuffer &child, const vrMKPEnhancedTrailSpawnerPluginData &data, PosedShapes &shapes,
                         const vrMKPBirths &births)
    : Parent(*data.ParentBuffer), Space(Parent, child), Shapes(shapes), FrameTime(child.State->FrameTime),
      Next((Parent.Head + data.Find_Next()) % Parent.Capacity), ClusterSize(births.ClusterSize)
{
    const float total = births.Lead + births.Span;
    Fraction = total != 0.0f ? Particle::Clamp_01(births.Lead / total) : 1.0f;
    FractionStep = total != 0.0f ? births.ClusterStep / total : 0.0f;
}

void TrailSource::Take_Next()
{
    if (InCluster == ClusterSize) {
        InCluster = 0;
        Fraction += FractionStep;
    }
    ++InCluster;
    Follow(Next, Particle::Clamp_01(Fraction));
    Last = Next;
    Next = Next == Parent.Tail ? Parent.Head : Parent.Next_Slot(Next);
}

void TrailSource::Follow(int slot, float fraction)
{
    const Vector3 end = Parent.Position[slot];
    const float age = Parent.Age[slot];
    // One that was born in this frame comes from its birth place, which an earlier moment of the frame is taken for.
    const bool isNew = age >= 0.0f && age < FrameTime;
    const float birth = isNew ? 1.0f - age / FrameTime : 0.0f;
    const Vector3 start = isNew ? end - Parent.Velocity[slot] * age : Parent.PreviousPosition[slot];
    const float lived = 1.0f - birth;
    const float passed = lived > 0.0f ? Particle::Clamp_01((fraction - birth) / lived) : 1.0f;
    const float moment = birth + passed * lived;

    Vector3 velocity(0.0f);
    if (Shapes.Pose.Needs_Velocity()) {
        const float seconds = lived * FrameTime;
        const Vector3 way = Space.Map_Point(end, 1.0f) - Space.Map_Point(start, birth);
        const bool hasWay = seconds > 0.0f && way != Vector3(0.0f);
        velocity = hasWay ? way / seconds : Space.Map_Velocity(Parent.Velocity[slot]);
    }
    Shapes.Pose.Move_To(Space.Map_Point(start + (end - start) * passed, moment), velocity, moment);
}

/// Goes from death to death while a burst is filled.
class BurstSource
{
public:
    using Data = vrMKPDeathSpawnerPluginData;

    BurstSource(const vrMKPBuffer &child, const Data &data, PosedShapes &shapes, int particlesPerDeath)
        : Space(*data.ParentBuffer, child), Shapes(shapes), FrameTime(child.State->FrameTime), Next(data.Deaths.data()),
          ParticlesPerDeath(particlesPerDeath)
    {
    }

    Vector3 Position(RandomClass &random)
    {
        Take_Next();
        return Shapes.Draw_Position(random);
    }
    Vector3 Velocity(RandomClass &random, const Vector3 & /*localPosition*/) { return Shapes.Draw_Velocity(random); }
    bool Draws_Blocks() const { return Shapes.Shapes.Draws_Blocks(); }
    bool Draw_Block(RandomClass &random, vrMKPNewborns &newborns, int first, int count)
    {
        return Shapes.Draw_Block(random, newborns, first, count, [this] { Take_Next(); });
    }

private:
    void Take_Next()
    {
        if (Left-- > 0) return;
        const float passed = FrameTime > 0.0f ? Particle::Clamp_01(1.0f - Next->Overshoot / FrameTime) : 1.0f;
        Shapes.Pose.Move_To(Space.Map_Point(Next->Position, passed), Space.Map_Velocity(Next->Velocity), passed);
        ++Next;
        Left = ParticlesPerDeath - 1;
    }

    vrMKPParentSpace Space;
    PosedShapes &Shapes;
    float FrameTime;
    const Data::Death *Next;
    int ParticlesPerDeath;
    int Left = 0;
};

/// Gives each burst the age of its death, and moves it on by that.
void Age_Bursts(vrMKPBuffer &buffer, const vrMKPFilling &filling, const vrMKPDeathSpawnerPluginData &data,
                int particlesPerDeath)
{
    const vrMKPRenderState &state = *buffer.State;
    const Vector3 camera = state.Camera.Get_Translation();
    const Vector3 toGroup = state.Get_Position() - camera;
    int slot = filling.First;
    for (int done = 0; done < filling.Count; ++done, slot = buffer.Next_Slot(slot)) {
        const float overshoot = data.Deaths[static_cast<size_t>(done / particlesPerDeath)].Overshoot;
        const float age = overshoot > 0.0f ? overshoot : 0.0f;
        const Vector3 position = buffer.Position[slot] + buffer.Velocity[slot] * age;
        const Vector3 toParticle = (buffer.Is_World() ? position : state.Transform.Transform(position)) - camera;
        buffer.Age[slot] = age;
        buffer.Position.Put(slot, position);
        buffer.SortingRelativeToGroup[slot] = glm::dot(toGroup, toGroup) - glm::dot(toParticle, toParticle);
    }
}

} // namespace

vrMKPEnhancedTrailSpawner::vrMKPEnhancedTrailSpawner()
{
    ParentName = Parameters.Add_String(300, "Parent Name", "", SpawnerText::PARENT_NAME);
    PositionAlignment =
        Parameters.Add_Enum(301, "Position Alignment", PARENT_ALIGNMENTS, 0, SpawnerText::PARENT_ALIGNMENT);
    VelocityAlignment =
        Parameters.Add_Enum(302, "Velocity Alignment", PARENT_ALIGNMENTS, 0, SpawnerText::PARENT_ALIGNMENT);
    ClusteringAmount =
        Parameters.Add_Float(303, "Clustering Amount", 1.0f, 0.0f, 1.0f,
                             "Determines how much trailing particles emit in discrete clusters versus individually.");
}

vrMKPBufferPluginData *vrMKPEnhancedTrailSpawner::Create_Buffer_Data(const vrMKPRenderState & /*state*/) const
{
    return new vrMKPEnhancedTrailSpawnerPluginData;
}

bool vrMKPEnhancedTrailSpawner::Create_Spawn_Data(const vrMKPRenderState &state,
                                                  SmartPtr<vrMKPBufferPluginData> *data) const
{
    if (!state.Layers || !data) return false;
    if (!*data) *data = Create_Buffer_Data(state);
    auto *trail = MK_Dynamic_Cast<vrMKPEnhancedTrailSpawnerPluginData>(data->Get());
    if (trail) trail->Update(state, ParentName->Get_Value(), nullptr);
    return true;
}

int vrMKPEnhancedTrailSpawner::Get_Cluster_Size_For(int parents) const
{
    const float amount = Particle::Clamp_01(ClusteringAmount->Get_Value());
    return std::max(Particle::Truncate(amount * static_cast<float>(parents)), 1);
}

int vrMKPEnhancedTrailSpawner::Get_Cluster_Size(const vrMKPBufferPluginData *data) const
{
    const auto *trail = MK_Dynamic_Cast<const vrMKPEnhancedTrailSpawnerPluginData>(data);
    return Get_Cluster_Size_For(trail ? trail->ParentCount : 1);
}

int vrMKPEnhancedTrailSpawner::Get_Min_Capacity(const vrMKPBufferPluginData *data) const
{
    const auto *trail = MK_Dynamic_Cast<const vrMKPEnhancedTrailSpawnerPluginData>(data);
    return Get_Cluster_Size_For(trail ? trail->ParentCapacity : 1);
}

float vrMKPEnhancedTrailSpawner::Get_Spawn_Rate(const vrMKPRenderState &state, const vrMKPBufferPluginData *data) const
{
    const auto *trail = MK_Dynamic_Cast<const vrMKPEnhancedTrailSpawnerPluginData>(data);
    const float rate = vrMKPShapeSpawner::Get_Spawn_Rate(state, data);
    return trail ? rate * static_cast<float>(trail->ParentCount) : rate;
}

float vrMKPEnhancedTrailSpawner::Get_Peak_Rate(const vrMKPRenderState &state, const vrMKPBufferPluginData *data) const
{
    const auto *trail = MK_Dynamic_Cast<const vrMKPEnhancedTrailSpawnerPluginData>(data);
    const float rate = vrMKPShapeSpawner::Get_Peak_Rate(state, data);
    return trail && trail->ParentCapacity > 0 ? rate * static_cast<float>(trail->ParentCapacity) : rate;
}

int vrMKPEnhancedTrailSpawner::Get_Max_Particles(const vrMKPRenderState &state, const vrMKPBufferPluginData *data,
                                                 const vrMKPStomper *stomper) const
{
    const int one = vrMKPShapeSpawner::Get_Max_Particles(state, nullptr, stomper);
    return std::min(vrMKPShapeSpawner::Get_Max_Particles(state, data, stomper), std::max(one, MAX_ROOM));
}

void vrMKPEnhancedTrailSpawner::Spawn(vrMKPBuffer &buffer) const
{
    auto *data = MK_Dynamic_Cast<vrMKPEnhancedTrailSpawnerPluginData>(buffer.SpawnerData.Get());
    if (!data) return;
    data->Update(*buffer.State, ParentName->Get_Value(), &buffer);
    vrMKPShapeSpawner::Spawn(buffer);
}

void vrMKPEnhancedTrailSpawner::Spawn_Particles(vrMKPBuffer &buffer, float rate, float envelope, float nextTime,
                                                float lead, float span) const
{
    auto *data = MK_Dynamic_Cast<vrMKPEnhancedTrailSpawnerPluginData>(buffer.SpawnerData.Get());
    if (!data || data->ParentCount <= 0) return;
    vrMKPFilling filling(*buffer.State);
    if (!Begin_Filling(buffer, rate, envelope, nextTime, lead, span, filling)) return;

    PosedShapes shapes{{buffer, Get_Alignment(*PositionAlignment), Get_Alignment(*VelocityAlignment), filling},
                       Get_Shapes()};
    shapes.Shapes.Check();
    TrailSource source(buffer, *data, shapes, filling.Births);
    filling.Fill(buffer, source);
    data->NextNumber = source.Get_Next_Number();
}

vrMKPDeathSpawner::vrMKPDeathSpawner()
{
    ParticlesPerDeath = Parameters.Add_Float(100, "Particles / Death", 30.0f, 0.0f, 500.0f, "Particles per death");
    Position = Parameters.Add_Shape(101, "Position", SHAPE_POINT, "Initial Position");
    HollowPosition = Parameters.Add_Bool(102, "Hollow Position", false, SpawnerText::HOLLOW_POSITION);
    Velocity = Parameters.Add_Shape(103, "Velocity", SHAPE_SPHERE, "Initial Velocity");
    HollowVelocity = Parameters.Add_Bool(104, "Hollow Velocity", false, SpawnerText::HOLLOW_VELOCITY);
    EvenDistribution = Parameters.Add_Bool(114, "Even Distribution", false, SpawnerText::EVEN_DISTRIBUTION);
    VelocityInLocalSpace =
        Parameters.Add_Bool(105, "Velocity in Local Space", true, SpawnerText::VELOCITY_IN_LOCAL_SPACE);
    InheritVelocity = Parameters.Add_Bool(106, "Inherit Velocity", false, SpawnerText::INHERIT_VELOCITY);
    InheritedVelocityScale =
        Parameters.Add_Float(107, "Inherited Vel. Scale", 1.0f, 0.0f, 500.0f, SpawnerText::INHERITED_VELOCITY_SCALE);
    MaxInheritSpeed =
        Parameters.Add_Float(108, "Max Inherit Speed", 10000.0f, 0.0f, 10000.0f, SpawnerText::MAX_INHERIT_SPEED);
    ParentName = Parameters.Add_String(109, "Parent Name", "", SpawnerText::PARENT_NAME);
    PositionAlignment =
        Parameters.Add_Enum(110, "Position Alignment", PARENT_ALIGNMENTS, 0, SpawnerText::PARENT_ALIGNMENT);
    VelocityAlignment =
        Parameters.Add_Enum(111, "Velocity Alignment", PARENT_ALIGNMENTS, 0, SpawnerText::PARENT_ALIGNMENT);
    MaxDeathsPerSecond =
        Parameters.Add_Float(112, "Max Deaths / Second", 10.0f, 1.0f, 100.0f,
                             "Maximum number of deaths allowed per second.\nKEEP IT SMALL.  Room is made for this "
                             "many bursts of Particles / Death each second, whether or not they happen.");
    // The second parameter of that name: the base has the layer's own. A look-up by name finds the base's.
    BurstProbability =
        Parameters.Add_Float(113, "Probability", 1.0f, 0.0f, 1.0f,
                             "Probability that a given death will result in a burst of particles.\nIf you set this to "
                             "less than 1, make sure you decrease Max Deaths / Second correspondingly.");
}

bool vrMKPDeathSpawner::Post_Load()
{
    if (HollowPosition->Get_Value()) Position->Prepare_Surface_Table();
    if (HollowVelocity->Get_Value()) Velocity->Prepare_Surface_Table();
    return true;
}

vrMKPBufferPluginData *vrMKPDeathSpawner::Create_Buffer_Data(const vrMKPRenderState & /*state*/) const
{
    return new vrMKPDeathSpawnerPluginData;
}

bool vrMKPDeathSpawner::Create_Spawn_Data(const vrMKPRenderState &state, SmartPtr<vrMKPBufferPluginData> *data) const
{
    return Create_Parent_Data(*this, state, ParentName->Get_Value(), data);
}

float vrMKPDeathSpawner::Get_Base_Rate(const vrMKPRenderState & /*state*/, const vrMKPBufferPluginData * /*data*/) const
{
    return ParticlesPerDeath->Get_Value() * MaxDeathsPerSecond->Get_Value();
}

float vrMKPDeathSpawner::Get_Peak_Rate(const vrMKPRenderState &state, const vrMKPBufferPluginData *data) const
{
    return Get_Base_Rate(state, data);
}

/// A layer goes on telling of its deaths after an editor has named another one.
void vrMKPDeathSpawner::On_Parent_Particle_Death(vrMKPBuffer &buffer, const vrMKPBuffer &parent,
                                                 const Vector3 &position, const Vector3 &velocity,
                                                 float overshoot) const
{
    auto *data = MK_Dynamic_Cast<vrMKPDeathSpawnerPluginData>(buffer.SpawnerData.Get());
    if (data && data->ParentBuffer == &parent) data->Add({position, velocity, overshoot});
}

void vrMKPDeathSpawner::Find_Parent(vrMKPBuffer &buffer) const
{
    auto *data = MK_Dynamic_Cast<vrMKPDeathSpawnerPluginData>(buffer.SpawnerData.Get());
    if (data) data->Listen(buffer, ParentName->Get_Value());
}

bool vrMKPDeathSpawner::Has_Pending_Births(const vrMKPBuffer &buffer) const
{
    const auto *data = MK_Dynamic_Cast<vrMKPDeathSpawnerPluginData>(buffer.SpawnerData.Get());
    return data && !data->Deaths.empty();
}

void vrMKPDeathSpawner::On_Shown(vrMKPBuffer *buffer) const
{
    auto *data = buffer ? MK_Dynamic_Cast<vrMKPDeathSpawnerPluginData>(buffer->SpawnerData.Get()) : nullptr;
    if (data) data->Deaths.clear();
}

vrMKPFillRules vrMKPDeathSpawner::Get_Fill_Rules() const
{
    vrMKPFillRules rules = Get_Common_Fill_Rules();
    rules.DistanceAsTime = false; // a death has a moment of its own
    rules.VelocityInLocalSpace = VelocityInLocalSpace->Get_Value();
    rules.InheritVelocity = InheritVelocity->Get_Value();
    rules.InheritedVelocityScale = InheritedVelocityScale->Get_Value();
    rules.MaxInheritSpeed = MaxInheritSpeed->Get_Value();
    return rules;
}

void vrMKPDeathSpawner::Spawn(vrMKPBuffer &buffer) const
{
    auto *data = MK_Dynamic_Cast<vrMKPDeathSpawnerPluginData>(buffer.SpawnerData.Get());
    if (!data) return;
    data->Listen(buffer, ParentName->Get_Value());
    if (!data->Deaths.empty() && data->ParentBuffer) Burst(buffer, *data);
    data->Deaths.clear();
}

void vrMKPDeathSpawner::Burst(vrMKPBuffer &buffer, const vrMKPDeathSpawnerPluginData &data) const
{
    const float probability = BurstProbability->Get_Value();
    if (!(probability >= 1.0f) && buffer.Random.Get_Float(0.0f, 1.0f) > probability) return;
    const int whole = Particle::Truncate(ParticlesPerDeath->Get_Value());
    const int each = Particle::Truncate(static_cast<float>(whole) * buffer.State->GlobalDensity);
    if (each <= 0) return;

    vrMKPFilling filling(*buffer.State);
    filling.Rules = Get_Fill_Rules();
    const int64_t count = int64_t(each) * static_cast<int64_t>(data.Deaths.size());
    filling.Count = buffer.Grant_Slots(static_cast<int>(std::min<int64_t>(count, INT_MAX)), filling.First);
    PosedShapes shapes{{buffer, Get_Alignment(*PositionAlignment), Get_Alignment(*VelocityAlignment), filling},
                       {*Position, *Velocity, HollowPosition->Get_Value(), HollowVelocity->Get_Value(),
                        EvenDistribution->Get_Value()}};
    shapes.Shapes.Check();
    filling.Fill(buffer, BurstSource(buffer, data, shapes, each));
    Age_Bursts(buffer, filling, data, each);
}
