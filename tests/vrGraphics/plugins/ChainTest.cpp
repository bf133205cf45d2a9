#include "vrGraphics/plugins/visualizers/Chains.h"

#include "VertexChecks.h"
#include "VisualizerStage.h"
#include "common/Reports.h"

#include <gtest/gtest.h>

#include <cmath>

using namespace MKTest;

namespace
{

/// Points of a chain, oldest first, of half a width of 1, seen along -z: where the way goes to x, the first side, which
/// has the lower edge of the texture, points to -y.
struct Chain : VisualizerStage
{
    explicit Chain(const std::vector<Vector3> &points, int kind = kvrMKPChainVisualizer, int capacity = 512)
        : VisualizerStage(kind, capacity)
    {
        for (const Vector3 &point : points) Add(point);
    }
    void Add_Aged(const Vector3 &point, float age) { Get_Buffer().Age[Add(point)] = age; }
    std::vector<vrLitVertex> Draw() { return Build<vrLitVertex>(); }
};

/// Their alphas: of white particles, 255 times the fade.
std::vector<int> Fades(const std::vector<vrLitVertex> &vertices)
{
    std::vector<int> fades;
    for (size_t i = 0; i < vertices.size(); i += 4) {
        EXPECT_EQ(vertices[i].Color, vertices[i + 1].Color);
        EXPECT_EQ(vertices[i + 2].Color, vertices[i + 3].Color);
        fades.push_back(static_cast<int>(vertices[i].Color >> 24));
        fades.push_back(static_cast<int>(vertices[i + 2].Color >> 24));
    }
    return fades;
}

std::vector<float> Textures(const std::vector<vrLitVertex> &vertices)
{
    std::vector<float> along;
    for (size_t i = 0; i < vertices.size(); i += 4) {
        along.push_back(vertices[i].UV.x);
        along.push_back(vertices[i + 2].UV.x);
    }
    return along;
}

} // namespace

TEST(Chain, IsARibbonThatTurnsWithItsWay)
{
    Chain chain({{0, 0, 0}, {10, 0, 0}, {10, 10, 0}});
    chain.Built.State.RenderSizeMultiplier = 2.0f;
    const auto vertices = chain.Draw();
    // Past the corner the way goes to y, and the first side points to x.
    Expect_Corners(vertices,
                   {{0, -2, 0}, {0, 2, 0}, {8, 0, 0}, {12, 0, 0}, {12, 0, 0}, {8, 0, 0}, {8, 10, 0}, {12, 10, 0}});
    for (size_t i = 0; i < vertices.size(); ++i) {
        Expect_Near(vertices[i].Normal, {0, 0, 1}, "normal");
        EXPECT_EQ(vertices[i].UV, Vector2(0.75f, i % 4 == 0 || i % 4 == 3 ? 0.75f : 0.5f));
    }
}

TEST(Chain, KeepsItsSideWhereTheWayHasNoLength)
{
    Chain start({{0, 0, 0}, {0, 0, 0}, {10, 0, 0}, {10, 0, 0}});
    const auto vertices = start.Draw();
    ASSERT_EQ(vertices.size(), 12u);
    // First the camera's first axis, and at the end the side of the link before.
    Expect_Near(vertices[0].Position, {1, 0, 0}, "first");
    Expect_Near(vertices[2].Position, {0, 1, 0}, "second");
    Expect_Near(vertices[6].Position, {10, 1, 0}, "third");
    Expect_Near(vertices[10].Position, {10, 1, 0}, "fourth");
    Chain heap({{5, 5, 5}, {5, 5, 5}});
    Expect_Corners(heap.Draw(), {{6, 5, 5}, {4, 5, 5}, {4, 5, 5}, {6, 5, 5}});
}

TEST(Chain, NeedsTwoParticlesNearEachOther)
{
    EXPECT_TRUE(Chain({{0, 0, 0}}).Draw().empty());
    Chain far({{0, 0, 0}, {10, 0, 0}, {20, 0, 0}});
    far.Set("Break Distance", 10.0f);
    EXPECT_TRUE(far.Draw().empty());
    far.Set("Break Distance", 10.1f);
    EXPECT_EQ(far.Draw().size(), 8u);
}

TEST(Chain, BreaksAtGapsInTheAges)
{
    Chain chain({});
    for (const float age : {0.5f, 0.4f, 0.1f, 0.0f}) chain.Add_Aged({age * 10, 0, 0}, age);
    EXPECT_EQ(chain.Draw().size(), 12u) << "an unknown interval has no gaps";
    chain.Get_Buffer().SpawnInterval = 0.1f;
    EXPECT_EQ(chain.Draw().size(), 8u);
    chain.Get_Buffer().SpawnInterval = 0.16f;
    EXPECT_EQ(chain.Draw().size(), 12u);
}

// 255 times 0.5 is 127, and 255 times 0.75 is 191.
TEST(Chain, FadesInAndOutAlongEachSection)
{
    const std::vector<Vector3> points = {{0, 0, 0}, {10, 0, 0}, {20, 0, 0}, {100, 0, 0}, {120, 0, 0}, {125, 0, 0}};
    Chain chain(points);
    chain.Set("Break Distance", 50.0f);
    chain.Set("Fade In Distance", 5.0f);
    EXPECT_EQ(Fades(chain.Draw()), (std::vector<int>{0, 127, 127, 0, 0, 63, 63, 0})) << "fading out";
    chain.Set("Fade Out Distance", 4.0f);
    EXPECT_EQ(Fades(chain.Draw()), (std::vector<int>{0, 255, 255, 0, 0, 255, 255, 0}));
    chain.Built.State.ColorMultiplier = {1.0f, 0.5f, 0.0f, 0.75f};
    EXPECT_EQ(chain.Draw()[2].Color, Pack_Color(255, 127, 0, 191));
}

TEST(Chain, WrapsItsTextureFromItsAnchor)
{
    // The first one is 10 off its renderable, and the section 20 long.
    Chain chain({{8, 0, 0}, {18, 0, 0}, {28, 0, 0}});
    chain.Built.State.Place_At(Mat3DClass::From_Translation({0, 6, 0}));
    chain.Set("Use Wrap Length", true);
    chain.Set("Wrap Length", 10.0f);
    const std::vector<float> expected[] = {{1, 2, 2, 3}, {0, 1, 1, 2}, {3, 4, 4, 5}};
    for (int anchor = 0; anchor < 3; ++anchor) {
        chain.Set("Wrap Anchor", anchor);
        EXPECT_EQ(Textures(chain.Draw()), expected[anchor]) << anchor;
    }
}

TEST(Chain, LiesFlatWhenAlignedToTheGround)
{
    Chain chain({{0, 0, 0}, {10, 0, 0}, {10, 0, 10}}, kvrMKPXYAlignedChainVisualizer);
    chain.Context.Camera = Mat3DClass::Look_At({50, 50, 50}, {0, 0, 0});
    const auto vertices = chain.Draw();
    // Straight up there's no side.
    Expect_Corners(vertices,
                   {{0, -1, 0}, {0, 1, 0}, {10, 0, 0}, {10, 0, 0}, {10, 0, 0}, {10, 0, 0}, {10, 0, 10}, {10, 0, 10}});
    for (const vrLitVertex &vertex : vertices) Expect_Near(vertex.Normal, {0, 0, 1}, "normal");
}

// Longer than blocks, over the end of the ring, with a break: neighbours share their corners, and the middle is bright.
TEST(Chain, IsUnbrokenOverBlocksAndTheRingsEnd)
{
    constexpr int COUNT = 400;
    constexpr int BREAK = 301;
    Chain chain({});
    chain.Built.Start_At(300);
    for (int i = 0; i < COUNT; ++i) {
        const float angle = static_cast<float>(i) * 0.05f;
        const float lift = i < BREAK ? 0.0f : 5000.0f;
        chain.Add({std::cos(angle) * 40, std::sin(angle) * 40, static_cast<float>(i) + lift});
    }
    const auto vertices = chain.Draw();
    ASSERT_EQ(vertices.size(), 4u * (COUNT - 2));
    int bright = 0;
    for (size_t link = 0; link + 1 < COUNT - 2; ++link) {
        bright += vertices[4 * link].Color == VR_WHITE ? 1 : 0;
        if (link + 1 == BREAK - 1) continue;
        const vrLitVertex *near = &vertices[4 * (link + 1)];
        const vrLitVertex *far = &vertices[4 * link + 2];
        EXPECT_EQ(near[0].Position, far[1].Position) << link;
        EXPECT_EQ(near[1].Position, far[0].Position) << link;
        EXPECT_EQ(near[0].Color, far[0].Color) << link;
    }
    // All points but those within 20 units of an end of the two, in steps of sqrt(1 + (80 sin 0.025)^2) = 2.2355.
    EXPECT_EQ(bright, COUNT - 4 * 9);
}

// More than what is kept from measuring them.
TEST(Chain, FadesInAtTheStartOfEachOfManySections)
{
    Chain chain({});
    for (int i = 0; i < 450; ++i) chain.Add({static_cast<float>(i + i / 3 * 100), 0, 0});
    chain.Set("Break Distance", 50.0f);
    chain.Set("Fade In Distance", 1.0f);
    chain.Set("Fade Out Distance", 1.0f);
    const auto fades = Fades(chain.Draw());
    ASSERT_EQ(fades.size(), 600u);
    for (size_t i = 0; i < fades.size(); ++i) EXPECT_EQ(fades[i], i % 4 == 1 || i % 4 == 2 ? 255 : 0) << i;
}

TEST(Chain, SaysThatItIsOutOfScratchMemory)
{
    for (const int kind : {kvrMKPChainVisualizer, kvrMKPMultiChainVisualizer}) {
        const Reports reports;
        Chain chain({{0, 0, 0}, {10, 0, 0}}, kind);
        ParticleScratch::Start(1);
        EXPECT_TRUE(chain.Draw().empty());
        EXPECT_EQ(reports.Count_Logs("Visualizer::Do_Pre_Visualize: out of particle scratch memory!"), 1);
    }
}

namespace
{

/// Clusters of two, of which the second ones are 100 up.
struct Pairs : Chain
{
    Pairs() : Chain({}, kvrMKPMultiChainVisualizer, 16) { Get_Buffer().ClusterSize = 2; }

    void Add_Cluster(float x, int count = 2)
    {
        for (const vrMKPSpan span : Get_Buffer().Live_Spans())
            for (int slot = span.First; slot < span.First + span.Count; ++slot) Get_Buffer().Age[slot] += 0.1f;
        for (int i = 0; i < count; ++i) Add({x, i * 100.0f, 0});
    }
    /// From where to where each link goes.
    std::vector<std::pair<Vector2, Vector2>> Links()
    {
        std::vector<std::pair<Vector2, Vector2>> links;
        const auto vertices = Draw();
        const auto middle = [&](size_t i) { return Vector2((vertices[i].Position + vertices[i + 1].Position) * 0.5f); };
        for (size_t i = 0; i < vertices.size(); i += 4) links.emplace_back(middle(i), middle(i + 2));
        return links;
    }
};

using Link = std::pair<Vector2, Vector2>;

} // namespace

TEST(MultiChain, HasARibbonForEachPlaceAsParticlesDieAndSlotsMove)
{
    Pairs pairs;
    for (const float x : {0.0f, 10.0f, 20.0f}) pairs.Add_Cluster(x);
    EXPECT_EQ(
        pairs.Links(),
        (std::vector<Link>{{{0, 0}, {10, 0}}, {{10, 0}, {20, 0}}, {{0, 100}, {10, 100}}, {{10, 100}, {20, 100}}}));
    pairs.Get_Buffer().Remove_If([](int slot) { return slot == 2; }); // the lower one of the second cluster
    EXPECT_EQ(pairs.Links(), (std::vector<Link>{{{0, 0}, {20, 0}}, {{0, 100}, {10, 100}}, {{10, 100}, {20, 100}}}));
    pairs.Get_Buffer().Remove_Oldest(1);
    // The buffer had room for one of two: the next cluster starts anew.
    pairs.Add_Cluster(30, 1);
    pairs.Add_Cluster(40);
    EXPECT_EQ(pairs.Links(), (std::vector<Link>{{{20, 0}, {30, 0}},
                                                {{30, 0}, {40, 0}},
                                                {{0, 100}, {10, 100}},
                                                {{10, 100}, {20, 100}},
                                                {{20, 100}, {40, 100}}}));
    pairs.Get_Buffer().Reset();
    EXPECT_TRUE(pairs.Links().empty());
}
