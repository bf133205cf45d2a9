#include "Tools/Code/RecordingPreview.h"
#include "Tools/Code/ToolFixture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <limits>
#include <thread>

using namespace ToolTest;
using testing::ElementsAre;
using testing::IsEmpty;

namespace
{

/// What the view window's transport does: pause, single step, speed, and the world that effects are given.
class Transport : public testing::Test
{
protected:
    Transport() { Tick(); } // the first one takes no time
    HeadlessSceneViewForm &View() { return *tool.application.Get_View_Form(); }
    /// The steps that the scene was moved by.
    std::vector<float> Tick()
    {
        record.steps.clear();
        tool.application.Fire_Timers();
        return record.steps;
    }

    PreviewRecord record;
    Tool tool{std::make_unique<RecordingPreview>(record)};
};

TEST_F(Transport, EachStepIsAThirtiethOfASecondAndPauses)
{
    tool.core.Single_Step_Click(nullptr, EventArgs());
    tool.core.Single_Step_Click(nullptr, EventArgs());
    EXPECT_TRUE(View().Get_State().paused);
    EXPECT_THAT(Tick(), ElementsAre(1.0f / 30.0f, 1.0f / 30.0f));
    EXPECT_THAT(Tick(), IsEmpty());
    tool.core.Single_Step_Click(nullptr, EventArgs());
    tool.core.Pause_Click(nullptr, EventArgs());
    tool.core.Pause_Click(nullptr, EventArgs());
    EXPECT_THAT(Tick(), IsEmpty()) << "playing forgets a step that wasn't taken";
}

TEST_F(Transport, SpeedScalesTheTimeWithinItsLimits)
{
    const struct
    {
        const char *what;
        float speed;
        float factor;
    } cases[] = {{"too fast", 100.0f, 4.0f},
                 {"too slow", 0.0f, 0.1f},
                 {"not a number", std::numeric_limits<float>::quiet_NaN(), 1.0f}};
    using Clock = std::chrono::steady_clock;
    for (const auto &[what, speed, factor] : cases) {
        View().Select_Speed(speed);
        const Clock::time_point before = Clock::now();
        Tick();
        const Clock::time_point middle = Clock::now();
        std::this_thread::sleep_for(std::chrono::milliseconds(30));
        // The elapsed time lies between that from the tick's end and that from its beginning.
        const float least = std::chrono::duration<float>(Clock::now() - middle).count();
        const std::vector<float> steps = Tick();
        const float most = std::chrono::duration<float>(Clock::now() - before).count();
        ASSERT_EQ(steps.size(), 1u) << what;
        EXPECT_GE(steps[0], least * factor * 0.999f) << what;
        EXPECT_LE(steps[0], most * factor * 1.001f) << what;
    }
}

} // namespace
