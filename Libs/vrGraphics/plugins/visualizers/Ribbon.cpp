#include "vrGraphics/plugins/visualizers/Ribbon.h"

#include "vrGraphics/particle/InlineVectors.h"
#include "vrGraphics/particle/ParticleMath.h"
#include "vrGraphics/plugins/visualizers/QuadDraw.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <optional>

namespace
{

constexpr int SIZE = vrMKPParticleRun::SIZE;
using Plane = float[SIZE];

/// Points of a row and the links between each of them and the next.
struct LinkBlock
{
    int Count = 0;            ///< of points
    vrMKPConstVectors Points; ///< in the channel itself, or in the room for them
    Particle::Planes PointRoom;
    alignas(64) Plane Length;
    // Of links, and in the end of points.
    alignas(64) Plane SideX;
    alignas(64) Plane SideY;
    alignas(64) Plane SideZ;
    alignas(64) Plane Travelled;
    alignas(64) Plane Fade;
    alignas(64) uint32_t Broken[SIZE]; ///< 1 where there is no link

    int Get_Links() const { return Count - 1; }
};

MK_SIMD void Measure_Lengths(float *__restrict lengths, vrMKPConstVectors points, int links)
{
    for (int at = 0; at < links; ++at) {
        const Vector3 way = Particle::Minus(points[at + 1], points[at]);
        lengths[at] = std::sqrt(Particle::Dot(way, way));
    }
}

MK_SIMD int Find_Breaks(uint32_t *__restrict broken, const float *__restrict lengths, const float *__restrict ages,
                        int links, float breakDistance, float greatestGap)
{
    int count = 0;
    for (int at = 0; at < links; ++at) {
        const uint32_t isFar = lengths[at] < breakDistance ? 0u : 1u;
        const uint32_t isGap = std::fabs(ages[at] - ages[at + 1]) > greatestGap ? 1u : 0u;
        broken[at] = isFar | isGap;
        count += static_cast<int>(isFar | isGap);
    }
    return count;
}

/// Fetches the first points and finds where they aren't linked; answers at how many links.
int Fetch_Links(LinkBlock &block, const vrMKPBuffer &buffer, vrMKPRibbonPoints points, const vrMKPRibbonStyle &style)
{
    block.Count = static_cast<int>(std::min<size_t>(points.size(), SIZE));
    const vrMKPParticleRun run(points.data(), block.Count, false);
    block.Points = run.Fetch(buffer.WorldPosition, block.PointRoom);
    float room[SIZE];
    const float *ages = run.Fetch(buffer.Age, room);
    Measure_Lengths(block.Length, block.Points, block.Get_Links());
    return Find_Breaks(block.Broken, block.Length, ages, block.Get_Links(), style.BreakDistance, style.GreatestGap);
}

float Sum(const float *values, int count)
{
    constexpr int LANES = 8;
    float sums[LANES] = {};
    int at = 0;
    for (; at + LANES <= count; at += LANES)
        for (int lane = 0; lane < LANES; ++lane) sums[lane] += values[at + lane];
    for (int lane = 0; at < count; ++at, ++lane) sums[lane] += values[at];
    for (int lane = 1; lane < LANES; ++lane) sums[0] += sums[lane];
    return sums[0];
}

/// Across the view and across each link; zero where there is no such direction.
MK_SIMD void Find_Sides(LinkBlock &__restrict block, vrMKPConstVectors points, int links, Vector3 viewAxis)
{
    for (int at = 0; at < links; ++at) {
        const Vector3 way = Particle::Minus(points[at + 1], points[at]);
        const float length = block.Length[at];
        const Vector3 direction = Particle::Times(way, length > 0.0f ? 1.0f / length : 1.0f);
        const Vector3 side = Particle::Unit(Particle::Cross(viewAxis, direction));
        block.SideX[at] = side.x;
        block.SideY[at] = side.y;
        block.SideZ[at] = side.z;
    }
}

/// How far along its section each point is, and how bright.
MK_SIMD void Find_Fades(float *__restrict fades, const float *__restrict travelled, int count, float length,
                        float fadeIn, float fadeOut)
{
    for (int at = 0; at < count; ++at) {
        const float in = travelled[at] / fadeIn;
        const float out = (length - travelled[at]) / fadeOut;
        fades[at] = Particle::Clamp_01(in < out ? in : out);
    }
}

/// Corners on both sides of the points, as those of the quads that begin there.
MK_SIMD void Spread(vrMKPQuadBlock &__restrict quads, const LinkBlock &__restrict block, vrMKPConstVectors points,
                    int count, float sizeMultiplier)
{
    for (int at = 0; at < count; ++at) {
        const float width = quads.Height[at] * sizeMultiplier;
        const float x = block.SideX[at] * width;
        const float y = block.SideY[at] * width;
        const float z = block.SideZ[at] * width;
        quads.X[0][at] = points.X[at] + x;
        quads.Y[0][at] = points.Y[at] + y;
        quads.Z[0][at] = points.Z[at] + z;
        quads.X[1][at] = points.X[at] - x;
        quads.Y[1][at] = points.Y[at] - y;
        quads.Z[1][at] = points.Z[at] - z;
    }
}

MK_SIMD void Add(float *__restrict values, const float *__restrict add, int count)
{
    for (int at = 0; at < count; ++at) values[at] += add[at];
}

MK_SIMD void Wrap(float *__restrict u, const float *__restrict travelled, int count, float start, float length)
{
    for (int at = 0; at < count; ++at) u[at] = (start + travelled[at]) / length;
}

/// Finds the sections of a ribbon, one after the other.
class SectionFinder
{
public:
    SectionFinder(const vrMKPBuffer &buffer, vrMKPRibbonPoints points, const vrMKPRibbonStyle &style)
        : Buffer(buffer), Rest(points), Style(style)
    {
        Fetch();
    }
    /// False at the end of the points.
    bool Next(vrMKPChainSection &section)
    {
        if (Rest.size() < 2) return false;
        section = {};
        while (!Take_Links(section)) {
            if (Rest.size() < 2) break;
            Fetch();
        }
        return true;
    }

private:
    void Fetch()
    {
        if (Rest.size() > 1) BreakCount = Fetch_Links(Block, Buffer, Rest, Style);
        Local = 0;
    }
    /// Up to the next break, or to the end of the block; true for a break.
    bool Take_Links(vrMKPChainSection &section)
    {
        const int links = Block.Get_Links();
        int end = Local;
        if (BreakCount == 0)
            end = links;
        else
            while (end < links && Block.Broken[end] == 0) ++end;
        section.Links += end - Local;
        section.Length += Sum(Block.Length + Local, end - Local);
        const bool isBreak = end < links;
        const int passed = end - Local + (isBreak ? 1 : 0);
        Rest = Rest.subspan(static_cast<size_t>(passed));
        Local += passed;
        return isBreak;
    }

    const vrMKPBuffer &Buffer;
    vrMKPRibbonPoints Rest; ///< from the next point on
    const vrMKPRibbonStyle &Style;
    LinkBlock Block;
    int BreakCount = 0;
    int Local = 0; ///< the next point, in the block
};

/// Builds the quads of one section after the other.
class RibbonWriter
{
public:
    RibbonWriter(const vrMKPQuadDraw &draw, const vrMKPRibbonStyle &style, int first)
        : Draw(draw), Style(style), Next(first), Side(style.FirstSide)
    {
        Quads.Set_Normals(style.Normal);
        for (int corner = 0; corner < 4; ++corner) {
            const int far = corner >= 2 ? 1 : 0; // the next point's
            const int edge = corner == 0 || corner == 3 ? 1 : 0;
            Quads.VertexU[corner] = Quads.U[0] + far;
            Quads.VertexV[corner] = Quads.V[edge] + far;
            Quads.VertexColor[corner] = Quads.Color + far;
        }
    }

    void Write_Section(vrMKPRibbonPoints points, const vrMKPChainSection &section)
    {
        Travelled = 0.0f;
        TextureStart = Get_Texture_Start(points.front().Index, section.Length);
        for (int done = 0; done < section.Links;) {
            const bool isEnd = section.Links - done < SIZE;
            const int count = isEnd ? section.Links - done + 1 : SIZE;
            const auto run = Fetch(points.subspan(static_cast<size_t>(done), static_cast<size_t>(count)));
            // The side of the last point is that of the link behind it, which only the next block knows.
            const int links = isEnd ? count - 1 : count - 2;
            Write_Links(run, links, section.Length, isEnd);
            done += links;
        }
    }

    int Get_Next() const { return Next; }

private:
    vrMKPParticleRun Fetch(vrMKPRibbonPoints points)
    {
        const vrMKPBuffer &buffer = *Draw.Buffer;
        const vrMKPParticleRun run(points.data(), static_cast<int>(points.size()), false);
        Block.Count = run.Get_Count();
        Block.Points = run.Fetch(buffer.WorldPosition, Block.PointRoom);
        run.Fetch(buffer.Size, Quads.Width, Quads.Height);
        run.Fetch(buffer.UV, Quads.U[0], Quads.V[0]);
        run.Fetch(buffer.DUV, Quads.U[1], Quads.V[1]);
        Measure_Lengths(Block.Length, Block.Points, Block.Get_Links());
        Find_Sides(Block, Block.Points, Block.Get_Links(), Style.ViewAxis);
        return run;
    }

    void Write_Links(const vrMKPParticleRun &run, int links, float length, bool isEnd)
    {
        const int points = links + 1;
        Walk(links, isEnd);
        Find_Fades(Block.Fade, Block.Travelled, points, length, Style.FadeInDistance, Style.FadeOutDistance);
        if (Style.Wrap == vrMKPRibbonStyle::WRAP_OFF)
            Add(Quads.U[0], Quads.U[1], points);
        else
            Wrap(Quads.U[0], Block.Travelled, points, TextureStart, Style.WrapLength);
        Add(Quads.V[1], Quads.V[0], points);
        vrColor room[SIZE];
        Draw.Colors.Convert_Faded(Quads.Color, run.Fetch(Draw.Buffer->Color, room), Block.Fade, points);
        Spread(Quads, Block, Block.Points, points, Draw.SizeMultiplier);
        const size_t bytes = static_cast<size_t>(links) * sizeof(float);
        for (auto *plane : {Quads.X, Quads.Y, Quads.Z}) {
            std::memcpy(plane[2], plane[1] + 1, bytes);
            std::memcpy(plane[3], plane[0] + 1, bytes);
        }
        Quads.Count = links;
        if (Draw.MapsPositions) Quads.Map_Corners(Draw.PositionScale, Draw.PositionOffset);
        Draw.Write(Quads, Next);
        Next += links;
    }

    /// Adds the lengths up, and gives links without a length, and the end, the side of the one before.
    void Walk(int links, bool isEnd)
    {
        const int known = isEnd ? links : links + 1;
        float travelled = Travelled;
        for (int at = 0; at < known; ++at) {
            Block.Travelled[at] = travelled;
            if (at < links) travelled += Block.Length[at];
            if (Block.Length[at] != 0.0f)
                Side = {Block.SideX[at], Block.SideY[at], Block.SideZ[at]};
            else
                Put_Side(at);
        }
        if (isEnd) {
            Block.Travelled[links] = travelled;
            Put_Side(links);
        }
        Travelled = travelled;
    }

    void Put_Side(int at)
    {
        Block.SideX[at] = Side.x;
        Block.SideY[at] = Side.y;
        Block.SideZ[at] = Side.z;
    }

    float Get_Texture_Start(uint32_t slot, float length) const
    {
        if (Style.Wrap != vrMKPRibbonStyle::WRAP_FROM_DISTANCE && Style.Wrap != vrMKPRibbonStyle::WRAP_FROM_END)
            return 0.0f;
        const Vector3 way = Particle::Minus(Draw.Buffer->WorldPosition[slot], Style.AnchorPosition);
        const float distance = std::sqrt(Particle::Dot(way, way));
        return Style.Wrap == vrMKPRibbonStyle::WRAP_FROM_END ? distance + length : distance;
    }

    const vrMKPQuadDraw &Draw;
    const vrMKPRibbonStyle &Style;
    int Next; ///< quad of the draw
    Vector3 Side;
    float Travelled = 0.0f;
    float TextureStart = 0.0f;
    LinkBlock Block;
    vrMKPQuadBlock Quads;
};

} // namespace

namespace Ribbon
{

int Measure(const vrMKPBuffer &buffer, vrMKPRibbonPoints points, const vrMKPRibbonStyle &style,
            vrMKPChainSections &sections)
{
    SectionFinder finder(buffer, points, style);
    vrMKPChainSection section;
    int links = 0;
    while (finder.Next(section)) {
        sections.Add(section);
        links += section.Links;
    }
    return links;
}

int Write(const vrMKPQuadDraw &draw, vrMKPRibbonPoints points, const vrMKPRibbonStyle &style,
          vrMKPChainSections &sections, int first)
{
    RibbonWriter writer(draw, style, first);
    std::optional<SectionFinder> finder;
    while (points.size() > 1) {
        vrMKPChainSection section;
        if (const vrMKPChainSection *kept = sections.Take()) {
            section = *kept;
        } else {
            if (!finder) finder.emplace(*draw.Buffer, points, style);
            finder->Next(section);
        }
        if (section.Links > 0) writer.Write_Section(points, section);
        points = points.subspan(static_cast<size_t>(section.Links) + 1);
    }
    return writer.Get_Next();
}

} // namespace Ribbon
