#include "vrGraphics/plugins/visualizers/Chains.h"

#include "MKLib/MKDebug/Assert.h"
#include "MKLib/Parameters/EnumParameter.h"
#include "MKLib/Parameters/SimpleParameters.h"
#include "vrGraphics/particle/vrMKPRenderState.h"
#include "vrGraphics/plugins/visualizers/QuadDraw.h"
#include "vrGraphics/plugins/visualizers/Ribbon.h"

#include <algorithm>
#include <limits>
#include <numeric>

MK_DEFINE_RUN_TIME_TYPE(vrMKPMultiChainVisualizerData, vrMKPSimpleVisualizerData)

namespace
{

constexpr const char *WRAP_ANCHORS[] = {"Start Delta", "Start", "End"}; // indices are a file format

constexpr Vector3 WORLD_RIGHT(1.0f, 0.0f, 0.0f);
constexpr Vector3 WORLD_UP(0.0f, 0.0f, 1.0f);

/// Neighbours that were born farther apart than so many spawn intervals aren't linked.
constexpr float GREATEST_INTERVALS = 2.0f;

vrMKPRibbonStyle::WrapAnchor Find_Wrap(bool wraps, int anchor)
{
    constexpr vrMKPRibbonStyle::WrapAnchor ANCHORS[] = {
        vrMKPRibbonStyle::WRAP_FROM_DISTANCE, vrMKPRibbonStyle::WRAP_FROM_START, vrMKPRibbonStyle::WRAP_FROM_END};
    return wraps ? ANCHORS[anchor] : vrMKPRibbonStyle::WRAP_OFF;
}

/// Serial numbers go round.
bool Is_Before(uint32_t number, uint32_t other)
{
    return static_cast<int32_t>(number - other) < 0;
}

/// Gives out the places in the clusters of particles that come by in the order of their births.
class ClusterWalk
{
public:
    explicit ClusterWalk(int clusterSize) : Size(static_cast<uint32_t>(std::max(clusterSize, 1))) {}

    /// Those of a cluster have one age, and their serial numbers tell which of them are gone already.
    uint32_t Find_Chain(uint32_t number, float age) const
    {
        if (IsFirst || age != Age) return 0;
        const uint32_t chain = Chain + (number - Number);
        return chain < Size ? chain : 0;
    }
    void Pass(uint32_t number, float age, uint32_t chain)
    {
        IsFirst = false;
        Number = number;
        Age = age;
        Chain = chain;
    }

private:
    uint32_t Size;
    bool IsFirst = true;
    uint32_t Number = 0;
    float Age = 0.0f;
    uint32_t Chain = 0;
};

} // namespace

vrMKPChainVisualizer::vrMKPChainVisualizer() : vrMKPSimpleVisualizer(false)
{
    Add_Texture_Name(100, "W_Clouds01.tga");
    Add_Shader_Name(102, "ParticleBillboardAdditive.mks");
    FadeInDistance =
        Parameters.Add_Float(105, "Fade In Distance", 20.0f, 0.1f, 1000.0f, "Distance along chain to apply fade in.");
    FadeOutDistance = Parameters.Add_Float(106, "Fade Out Distance", 20.0f, 0.1f, 1000.0f,
                                           "Distance from the end of the chain to apply fade out.");
    BreakDistance = Parameters.Add_Float(107, "Break Distance", 1500.0f, 0.1f, 10000.0f,
                                         "Maximum distance between points before making a new chain section.");
    UseWrapLength =
        Parameters.Add_Bool(108, "Use Wrap Length", false, "Choose to have UVs wrap according to length of the chain.");
    WrapLength = Parameters.Add_Float(109, "Wrap Length", 25.0f, 0.01f, 1000.0f,
                                      "Distance at which the texture wraps around to the start.");
    WrapAnchor = Parameters.Add_Enum(110, "Wrap Anchor", WRAP_ANCHORS, 0,
                                     "Where to start the wrapped texture in relation to the chain.");
}

void vrMKPChainVisualizer::Do_Pre_Visualize(vrMKPBuffer &buffer, const vrPreRenderContext &context) const
{
    vrMKPQuadDraw draw;
    if (!draw.Begin_All(buffer, context) || buffer.ActiveCount < 2) return;
    const auto count = static_cast<uint32_t>(buffer.ActiveCount);
    auto &entries = draw.Data->SortEntries;
    entries.reserve(static_cast<size_t>(buffer.Capacity)); // so that no later frame allocates
    entries.resize(count);
    size_t at = 0;
    for (const vrMKPSpan span : buffer.Live_Spans())
        for (int slot = span.First; slot < span.First + span.Count; ++slot)
            entries[at++].Index = static_cast<uint32_t>(slot);
    Draw_Ribbons(draw, {&count, 1});
}

void vrMKPChainVisualizer::Draw_Ribbons(vrMKPQuadDraw &draw, std::span<const uint32_t> ends) const
{
    const vrMKPRibbonStyle style = Get_Style(draw);
    const auto forRibbons = [&](auto &&work) {
        size_t first = 0;
        for (const uint32_t end : ends) {
            work(vrMKPRibbonPoints(draw.Data->SortEntries).subspan(first, end - first));
            first = end;
        }
    };
    vrMKPChainSections sections;
    int links = 0;
    forRibbons([&](vrMKPRibbonPoints points) { links += Ribbon::Measure(*draw.Buffer, points, style, sections); });
    if (links == 0) return;
    if (!draw.Allocate(links, VR_LIT_VERTEX, Get_Class_Name())) return;
    int next = 0;
    forRibbons([&](vrMKPRibbonPoints points) { next = Ribbon::Write(draw, points, style, sections, next); });
}

vrMKPRibbonStyle vrMKPChainVisualizer::Get_Style(const vrMKPQuadDraw &draw) const
{
    vrMKPRibbonStyle style;
    Set_Facing(style, draw.Camera);
    style.BreakDistance = BreakDistance->Get_Value();
    // Without an interval nothing is known of gaps.
    const float interval = draw.Buffer->SpawnInterval;
    style.GreatestGap = interval > 0.0f ? interval * GREATEST_INTERVALS : std::numeric_limits<float>::infinity();
    style.FadeInDistance = FadeInDistance->Get_Value();
    style.FadeOutDistance = FadeOutDistance->Get_Value();
    style.Wrap = Find_Wrap(UseWrapLength->Get_Value(), WrapAnchor->Get_Value());
    style.WrapLength = WrapLength->Get_Value();
    style.AnchorPosition = draw.State->Get_Position();
    return style;
}

void vrMKPChainVisualizer::Set_Facing(vrMKPRibbonStyle &style, const Mat3DClass &camera) const
{
    style.Normal = camera.Get_Axis(2);
    style.ViewAxis = -style.Normal; // the camera looks down the negative of its third axis
    style.FirstSide = camera.Get_Axis(0);
}

void vrMKPXYAlignedChainVisualizer::Set_Facing(vrMKPRibbonStyle &style, const Mat3DClass & /*camera*/) const
{
    style.Normal = WORLD_UP;
    style.ViewAxis = -WORLD_UP;
    style.FirstSide = WORLD_RIGHT;
}

void vrMKPMultiChainVisualizerData::Reset()
{
    vrMKPSimpleVisualizerData::Reset();
    Points.clear();
}

void vrMKPMultiChainVisualizerData::Follow(const vrMKPBuffer &buffer)
{
    ClusterWalk walk(std::min(buffer.ClusterSize, buffer.Capacity));
    const size_t oldCount = Points.size();
    const auto liveCount = static_cast<size_t>(buffer.ActiveCount);
    Points.reserve(static_cast<size_t>(buffer.Capacity)); // so that no later frame allocates
    if (liveCount > oldCount) Points.resize(liveCount);
    size_t old = 0;
    size_t live = 0;
    for (const vrMKPSpan span : buffer.Live_Spans())
        for (int slot = span.First; slot < span.First + span.Count; ++slot) {
            const uint32_t number = buffer.Number[slot];
            const float age = buffer.Age[slot];
            while (old < oldCount && Is_Before(Points[old].Number, number)) ++old;
            const bool isOld = old < oldCount && Points[old].Number == number;
            // Numbers and places of the old are read ahead of what is written: nobody is inserted between them.
            const uint32_t chain = isOld ? Points[old].Chain : walk.Find_Chain(number, age);
            Points[live++] = {number, chain};
            walk.Pass(number, age, chain);
        }
    Points.resize(live);
}

std::span<const uint32_t> vrMKPMultiChainVisualizerData::List(const vrMKPBuffer &buffer)
{
    uint32_t last = 0;
    for (const MultiChainPoint &point : Points) last = std::max(last, point.Chain);
    Ends.reserve(static_cast<size_t>(buffer.Capacity) + 2);
    Ends.assign(last + 2, 0);
    for (const MultiChainPoint &point : Points) ++Ends[point.Chain + 1];
    std::partial_sum(Ends.begin(), Ends.end(), Ends.begin());
    // From where each chain starts it grows to its end, which is where the next one started.
    SortEntries.reserve(static_cast<size_t>(buffer.Capacity));
    SortEntries.resize(Points.size());
    size_t at = 0;
    for (const vrMKPSpan span : buffer.Live_Spans())
        for (int slot = span.First; slot < span.First + span.Count; ++slot)
            SortEntries[Ends[Points[at++].Chain]++].Index = static_cast<uint32_t>(slot);
    return {Ends.data(), last + 1};
}

vrMKPBufferPluginData *vrMKPMultiChainVisualizer::Create_Buffer_Data(const vrMKPRenderState & /*state*/) const
{
    return new vrMKPMultiChainVisualizerData;
}

void vrMKPMultiChainVisualizer::Do_Pre_Visualize(vrMKPBuffer &buffer, const vrPreRenderContext &context) const
{
    vrMKPQuadDraw draw;
    if (!draw.Begin_All(buffer, context)) return;
    auto *data = MK_Dynamic_Cast<vrMKPMultiChainVisualizerData>(buffer.VisualizerData.Get());
    if (!MK_VERIFY(data != nullptr, "data != NULL")) return;
    data->Follow(buffer);
    Draw_Ribbons(draw, data->List(buffer));
}
