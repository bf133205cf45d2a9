#include "common/Reports.h"

#include "vrGraphics/RenderThread/RenderThread.h"
#include "vrGraphics/RenderThread/ThreadWrapperTaskList.h"
#include "vrGraphics/assets/vrThreadLoadManager.h"
#include "vrGraphics/scene/vrInterpolators.h"
#include "vrGraphics/scene/vrLightSource.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <string>

namespace
{

using ::testing::ElementsAre;

class NotingTask final : public ThreadWrapperTask
{
public:
    NotingTask(std::vector<std::string> &notes, std::string name) : Notes(notes), Name(std::move(name)) {}
    ~NotingTask() override { Notes.push_back("end of " + Name); }
    void Execute() override { Notes.push_back(Name); }

private:
    std::vector<std::string> &Notes;
    std::string Name;
};

TEST(ThreadWrapperTaskList, RunsInTheOrderOfAddingAndOwnsItsTasks)
{
    std::vector<std::string> notes;
    ThreadWrapperTaskList list(true);
    auto *second = new NotingTask(notes, "b");
    list.Add(new NotingTask(notes, "a"));
    list.Add(second);
    list.Add(new NotingTask(notes, "c"));
    NotingTask stranger(notes, "d");
    EXPECT_FALSE(list.Remove(&stranger));
    EXPECT_TRUE(list.Remove_Checked(second));
    list.Execute_All();
    EXPECT_THAT(notes, ElementsAre("end of b", "a", "c", "end of a", "end of c"));
}

TEST(ThreadWrapperTaskList, AFaultyTaskAsserts)
{
    /// Adds as many tasks as make the list grow, and removes itself.
    class FaultyTask final : public ThreadWrapperTask
    {
    public:
        FaultyTask(ThreadWrapperTaskList &list, std::vector<std::string> &notes) : List(list), Notes(notes) {}
        void Execute() override
        {
            for (int index = 0; index < 40; ++index) List.Add(new NotingTask(Notes, "late"));
            EXPECT_FALSE(List.Remove(this));
        }

        ThreadWrapperTaskList &List;
        std::vector<std::string> &Notes;
    };
    const MKTest::Reports reports;
    std::vector<std::string> notes;
    ThreadWrapperTaskList list(false);
    list.Add(new FaultyTask(list, notes));
    list.Execute_All();
    EXPECT_EQ(reports.Count_Asserts("!ExecutingTasks"), 41);
    EXPECT_EQ(std::count(notes.begin(), notes.end(), "late"), 40);
    EXPECT_EQ(list.Get_Count(), 0);
}

TEST(ThreadLoadManager, RunsWhatIsQueuedOnceAndInOrder)
{
    std::string order;
    vrThreadLoadManager::Synchronize();
    vrThreadLoadManager::Queue_Load_Finish([&] {
        order += "a";
        vrThreadLoadManager::Queue_Load_Finish([&] { order += "c"; });
    });
    vrThreadLoadManager::Queue_Load_Finish([&] { order += "b"; });
    vrThreadLoadManager::Synchronize();
    vrThreadLoadManager::Synchronize();
    EXPECT_EQ(order, "abc");
    const MKTest::Reports reports;
    RenderThread::InParallelSection = true;
    vrThreadLoadManager::Synchronize();
    RenderThread::InParallelSection = false;
    EXPECT_TRUE(reports.Has_Assert("!RenderThread::InParallelSection && \"Call Brem.\""));
}

TEST(Interpolators, GoBetweenTwoStates)
{
    // From no turn to a quarter about z, halfway: an eighth.
    const SmartPtr<vrDirectionalLight> thing(new vrDirectionalLight);
    constexpr float HALF = 0.70710678f;
    for (const uint32_t flags : {0u, vrRenderableInterpolator::MODEL_HAS_TRANSFORM}) {
        vrRenderableInterpolator interpolator(thing.Get(), flags);
        interpolator.Get_Transform_Interpolator().Set_State(0,
                                                            {Vector3(0.0f), {1.0f, 0.0f, 0.0f, 0.0f}, Vector3(1.0f)});
        interpolator.Get_Transform_Interpolator().Set_State(
            1, {{8.0f, 4.0f, 2.0f}, {HALF, 0.0f, 0.0f, HALF}, {3.0f, 1.0f, 1.0f}});
        interpolator.Interpolate(0.5f);
        if (flags == 0) {
            EXPECT_EQ(thing->Get_Transform(), Mat3DClass());
        }
    }
    const Mat3DClass &found = thing->Get_Transform();
    const float expected[3][4] = {
        {2.0f * HALF, -2.0f * HALF, 0.0f, 4.0f}, {HALF, HALF, 0.0f, 2.0f}, {0.0f, 0.0f, 1.0f, 1.0f}};
    for (int row = 0; row < 3; ++row)
        for (int column = 0; column < 4; ++column)
            EXPECT_NEAR(found.Row[row][column], expected[row][column], 1e-5f) << row << " " << column;

    const MKTest::Reports reports;
    vrRenderableInterpolator(nullptr, 0).Interpolate(0.0f);
    vrTransformInterpolator().Interpolate(1.5f);
    EXPECT_THAT(reports.Get_Asserts(),
                ElementsAre("m_Renderable && \"Renderable is NULL. Call Brem.\"",
                            "(interpolation_fraction >= 0.0f) && (interpolation_fraction <= 1.0f)"));
}

} // namespace
