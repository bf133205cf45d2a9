#include "vrGraphics/drivercommon/vrParticleScratch.h"

#include "common/Reports.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <thread>
#include <vector>

namespace
{

class Scratch : public testing::Test
{
protected:
    Scratch() { ParticleScratch::Start(); }
    ~Scratch() override { ParticleScratch::Shutdown(); }

    static const char *Take(int count, vrPrimVertexType type = VR_LIT_VERTEX)
    {
        return static_cast<const char *>(ParticleScratch::Allocate(count, type));
    }
};

} // namespace

TEST_F(Scratch, PiecesLieBehindEachOther)
{
    const char *first = Take(4);
    const char *second = Take(4, VR_LIT_BUMP_VERTEX);
    const char *third = Take(0);
    const char *fourth = Take(1, VR_PRIM_VERTEX);
    ASSERT_NE(first, nullptr);
    EXPECT_EQ(second, first + 144);
    EXPECT_EQ(third, second + 240);
    EXPECT_EQ(fourth, third);
    EXPECT_EQ(ParticleScratch::Get_Used_Bytes(), 144u + 240 + 24);
}

TEST_F(Scratch, FourMebibytesHold29127Quads)
{
    // 4194304 / 144 = 29127.1, and 16 bytes are left
    EXPECT_EQ(Take(29128 * 4), nullptr);
    const char *base = Take(29127 * 4);
    EXPECT_NE(base, nullptr);
    EXPECT_EQ(Take(1), nullptr);
    ParticleScratch::Reset();
    EXPECT_EQ(Take(29127 * 4), base) << "the next frame has all of it again";
}

TEST_F(Scratch, CountsThatCannotBeGetNothing)
{
    MKTest::Reports reports;
    EXPECT_EQ(Take(-1), nullptr);
    EXPECT_EQ(reports.Count_Asserts("items_count >= 0"), 1);
    EXPECT_EQ(Take(2147483647, VR_LIT_BUMP_VERTEX), nullptr);
    ParticleScratch::Shutdown();
    EXPECT_EQ(Take(1), nullptr);
}

TEST_F(Scratch, ThreadsNeverShareAPieceAndLoseNone)
{
    constexpr int THREADS = 4;
    constexpr int QUAD_BYTES = 144;
    std::vector<std::vector<const char *>> taken(THREADS);
    std::vector<std::thread> threads;
    for (auto &mine : taken)
        threads.emplace_back([&mine] {
            while (const char *piece = Take(4)) mine.push_back(piece);
        });
    for (std::thread &thread : threads) thread.join();
    std::vector<const char *> all;
    for (const auto &mine : taken) all.insert(all.end(), mine.begin(), mine.end());
    std::sort(all.begin(), all.end());
    ASSERT_EQ(all.size(), 29127u);
    for (size_t index = 1; index < all.size(); ++index) ASSERT_EQ(all[index] - all[index - 1], QUAD_BYTES) << index;
}
