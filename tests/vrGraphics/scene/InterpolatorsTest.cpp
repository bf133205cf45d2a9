#include "vrGraphics/RenderThread/ThreadWrapperTaskList.h"
#include "vrGraphics/assets/vrThreadLoadManager.h"
#include "vrGraphics/scene/vrInterpolators.h"
#include "vrGraphics/scene/vrLightSource.h"

#include <gmock/gmock.h>

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
    EXPECT_TRUE(list.Remove_Checked(second));
    list.Execute_All();
    EXPECT_THAT(notes, ElementsAre("end of b", "a", "c", "end of a", "end of c"));
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
}

TEST(Interpolators, GoBetweenTwoStates)
{
    // From no turn to a quarter about z, halfway: an eighth.
    const SmartPtr<vrDirectionalLight> thing(new vrDirectionalLight);
    constexpr float HALF = 0.70710678f;
    vrRenderableInterpolator interpolator(thing.Get(), vrRenderableInterpolator::MODEL_HAS_TRANSFORM);
    vrTransformInterpolator &place = interpolator.Get_Transform_Interpolator();
    place.Set_State(0, {Vector3(0.0f), {1.0f, 0.0f, 0.0f, 0.0f}, Vector3(1.0f)});
    place.Set_State(1, {{8.0f, 4.0f, 2.0f}, {HALF, 0.0f, 0.0f, HALF}, {3.0f, 1.0f, 1.0f}});
    interpolator.Interpolate(0.5f);
    const Mat3DClass &found = thing->Get_Transform();
    const float expected[3][4] = {
        {2.0f * HALF, -2.0f * HALF, 0.0f, 4.0f}, {HALF, HALF, 0.0f, 2.0f}, {0.0f, 0.0f, 1.0f, 1.0f}};
    for (int row = 0; row < 3; ++row)
        for (int column = 0; column < 4; ++column)
            EXPECT_NEAR(found.Row[row][column], expected[row][column], 1e-5f) << row << " " << column;
}

} // namespace
