#include "vrGraphics/particle/ParticleMath.h"
#include "vrGraphics/particle/vrMKPBuffer.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <limits>
#include <vector>

namespace
{

constexpr int ROOM = 40; ///< on both sides of a run, which the loops leave alone
constexpr int MOST = 70; ///< more than two of the widest steps

using Floats = std::array<float, MOST + 2 * ROOM>;
using Arrays = std::array<Floats, 3>;

Arrays Make(float first)
{
    Arrays arrays;
    for (auto &floats : arrays)
        for (float &value : floats) value = first++;
    return arrays;
}

vrMKPVectors Run_Of(Arrays &arrays)
{
    return vrMKPVectors{arrays[0].data(), arrays[1].data(), arrays[2].data()} + ROOM;
}

/// `after` is `change(axis, at)` in the run, and elsewhere what was there before.
template <typename Change>
void Expect(const Arrays &after, const Arrays &before, int count, Change change)
{
    for (size_t axis = 0; axis < 3; ++axis)
        for (size_t at = 0; at < after[axis].size(); ++at) {
            const bool isIn = at >= ROOM && at < ROOM + static_cast<size_t>(count);
            ASSERT_EQ(after[axis][at], isIn ? change(axis, at) : before[axis][at]) << count << " " << axis << " " << at;
        }
}

// Whole numbers, so that every sum is exact. A loop that takes one twice, or leaves one out, does so at some count.
TEST(ParticleLoops, TakeEachOfARunOnce)
{
    for (int count = 0; count <= MOST; ++count) {
        Arrays positions = Make(1.0f), velocities = Make(500.0f), moved = Make(-1000.0f);
        const Arrays old = positions, room = moved;
        EXPECT_TRUE(Particle::Add_Vector(Run_Of(positions), count, {1.0f, -2.0f, 3.0f}));
        Expect(positions, old, count, [&](size_t axis, size_t at) {
            return old[axis][at] + std::array{1.0f, -2.0f, 3.0f}[axis];
        });
        EXPECT_TRUE(Particle::Integrate(Run_Of(moved), Run_Of(positions), Run_Of(velocities), count, 0.5f));
        Expect(moved, room, count,
               [&](size_t axis, size_t at) { return positions[axis][at] + velocities[axis][at] * 0.5f; });
    }
}

TEST(ParticleLoops, FindTheOneThatIsNoNumber)
{
    const float infinity = std::numeric_limits<float>::infinity();
    for (const int count : {1, 31, 32, 33, MOST})
        for (int bad = -1; bad <= count; ++bad) {
            Arrays values = Make(1.0f), to = values, steps = values;
            values[static_cast<size_t>(count) % 3][static_cast<size_t>(ROOM + bad)] = bad % 2 ? infinity : -infinity;
            const bool isOutside = bad < 0 || bad == count;
            EXPECT_NE(Particle::Has_Invalid(Run_Of(values), count), isOutside) << count << " " << bad;
            EXPECT_EQ(Particle::Integrate(Run_Of(to), Run_Of(values), Run_Of(steps), count, 1.0f), isOutside);
            EXPECT_EQ(Particle::Add_Vector(Run_Of(values), count, Vector3(1.0f)), isOutside) << count << " " << bad;
        }
}

/// Every ring up to three widths and some larger ones, with every run of live slots or some of them.
TEST(WideSpans, TakeInTheLiveSlotsAndNoneTwice)
{
    constexpr int WIDTH = vrMKPBuffer::WIDTH;
    const auto check = [](vrMKPBuffer &buffer, bool isExact) {
        const int capacity = buffer.Capacity;
        std::vector<int> wide(static_cast<size_t>((capacity + WIDTH - 1) / WIDTH * WIDTH));
        std::vector<int> widened = wide;
        const auto mark = [](std::vector<int> &slots, vrMKPSpan span) {
            for (int slot = span.First; slot < span.First + span.Count; ++slot) ++slots.at(static_cast<size_t>(slot));
        };
        for (const vrMKPSpan span : buffer.Wide_Spans()) {
            mark(wide, span);
            ASSERT_TRUE(isExact || (span.First % WIDTH == 0 && span.Count % WIDTH == 0));
        }
        for (const vrMKPSpan span : buffer.Live_Spans()) mark(widened, buffer.Widen(span));
        std::vector<int> live(wide.size());
        for (const vrMKPSpan span : buffer.Live_Spans()) mark(live, span);
        for (size_t slot = 0; slot < wide.size(); ++slot) {
            ASSERT_LE(wide[slot], isExact ? live[slot] : 1) << slot;
            ASSERT_LE(widened[slot], isExact ? live[slot] : 1) << slot;
            ASSERT_GE(std::min(wide[slot], widened[slot]), live[slot]) << slot;
        }
    };
    for (const int capacity : {1, 31, 32, 33, 64, 95, 96, 127, 300, 1009}) {
        const SmartPtr<vrMKPBuffer> buffer = vrMKPBuffer::Create(capacity, "test");
        for (int head = 0; head < capacity; head += capacity < 100 ? 1 : 13)
            for (int count = 0; count <= capacity; count += capacity < 100 ? 1 : 17) {
                buffer->Head = head;
                buffer->ActiveCount = count;
                buffer->OthersMayReturn = false;
                ASSERT_NO_FATAL_FAILURE(check(*buffer, false)) << capacity << " " << head << " " << count;
                buffer->OthersMayReturn = true;
                ASSERT_NO_FATAL_FAILURE(check(*buffer, true)) << capacity << " " << head << " " << count;
            }
    }
}

} // namespace
