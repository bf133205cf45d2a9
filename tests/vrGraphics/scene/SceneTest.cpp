#include "common/Reports.h"

#include "MKLib/ThreadPool.h"
#include "vrGraphics/drivercommon/vrGraphicsDriver.h"
#include "vrGraphics/scene/vrSimpleScene.h"

#include <gmock/gmock.h>

#include <atomic>
#include <string>
#include <vector>

namespace
{

using ::testing::ElementsAre;

/// Writes down the steps that it takes.
class Thinker final : public vrRenderable
{
public:
    explicit Thinker(std::vector<std::string> *steps = nullptr, vrRenderable *owner = nullptr)
        : Steps(steps), Owner(owner)
    {
    }

    vrRenderable *Clone(vrCloneType) const override { return new Thinker; }
    size_t Get_Object_Size() const override { return sizeof(*this); }
    const char *Get_Think_Name() const override { return "thinker"; }
    vrRenderable &Get_Top_Owner() override { return Owner ? *Owner : *this; }
    bool Wants_Particle_Think() const override { return true; }
    bool Needs_Serial_Frame() const override { return IsSerial; }
    void Pre_Think(float) override { Note("pre"); }
    void Think(float) override
    {
        Note("think");
        ++Thoughts;
    }
    int Think_Particles(float) override
    {
        Note("particles");
        return 0;
    }
    void Post_Think(float) override
    {
        Note("post");
        if (LeavesScene) Get_Scene()->Remove_Object(*this, 0);
    }

    std::atomic<int> Thoughts{0};
    bool IsSerial = false;
    bool LeavesScene = false;

protected:
    void On_Added(vrScene &) override { Note("added"); }
    void On_Removed(vrScene &) override { Note("removed"); }

private:
    void Note(const char *step)
    {
        if (Steps) Steps->emplace_back(step);
    }

    std::vector<std::string> *Steps;
    vrRenderable *Owner;
};

TEST(Scene, TimeWrapsAndTheElapsedTimeDoesNot)
{
    vrSimpleScene scene;
    for (int hour = 0; hour < 8; ++hour) scene.Update(3600.0f);
    EXPECT_EQ(scene.Get_Time(), 28800.0f); // not yet above the limit
    scene.Update(0.5f);
    EXPECT_EQ(scene.Get_Time(), 0.5f);
    EXPECT_EQ(scene.Get_Elapsed_Time(), 28800.5f);
}

TEST(Scene, AFrameRunsItsStepsInOrder)
{
    std::vector<std::string> steps;
    const SmartPtr<Thinker> thinker(new Thinker(&steps));
    vrSimpleScene scene;
    vrSimpleScene other;
    EXPECT_TRUE(scene.Add_Renderable(thinker.Get()));
    EXPECT_FALSE(scene.Add_Renderable(thinker.Get())); // it is here already
    scene.Update(0.1f);
    EXPECT_THAT(steps, ElementsAre("added", "pre", "think", "particles", "post"));
    EXPECT_TRUE(other.Add_Renderable(thinker.Get()));
    EXPECT_EQ(thinker->Get_Scene(), &other);
    EXPECT_FALSE(scene.Remove_Renderable(thinker.Get())); // it went over
}

TEST(Scene, WhatLeavesInAFrameFinishesIt)
{
    std::vector<std::string> steps;
    vrSimpleScene scene;
    scene.Add_Renderable(new Thinker(&steps));
    scene.Add_Renderable(new Thinker(&steps));
    static_cast<Thinker *>(scene.Get_Renderable(0))->LeavesScene = true;
    steps.clear();
    scene.Update(0.1f);
    EXPECT_THAT(steps,
                ElementsAre("pre", "pre", "think", "think", "particles", "particles", "post", "post", "removed"));
}

TEST(Scene, PartsOfOneOwnerBeyondTheLimitAreToldAndLeftOut)
{
    const SmartPtr<Thinker> owner(new Thinker);
    std::vector<SmartPtr<Thinker>> parts;
    vrSimpleScene scene;
    scene.Add_Renderable(owner.Get());
    for (int part = 0; part < 257; ++part) {
        parts.emplace_back(new Thinker(nullptr, owner.Get()));
        scene.Add_Renderable(parts.back().Get());
    }
    const MKTest::Reports reports;
    scene.Update(0.1f);
    EXPECT_EQ(reports.Count_Logs("Renderable=thinker has too many sub-renderables"), 1);
    EXPECT_EQ(owner->Thoughts, 1);
    EXPECT_EQ(parts[255]->Thoughts, 1);
    EXPECT_EQ(parts[256]->Thoughts, 0);
}

TEST(Scene, OwnersThinkSideBySideOnThePool)
{
    ThreadPool::System_Init(4);
    vrSimpleScene scene;
    std::vector<SmartPtr<Thinker>> thinkers;
    for (int index = 0; index < 200; ++index) {
        thinkers.emplace_back(new Thinker);
        thinkers.back()->IsSerial = index % 50 == 0;
        scene.Add_Renderable(thinkers.back().Get());
    }
    for (int frame = 0; frame < 20; ++frame) scene.Update(0.1f);
    for (const auto &thinker : thinkers) EXPECT_EQ(thinker->Thoughts, 20);
    ThreadPool::System_Shutdown();
}

TEST(Scene, WithoutThinkingOnlyTheClockGoes)
{
    const SmartPtr<Thinker> thinker(new Thinker);
    vrSimpleScene scene;
    scene.Add_Renderable(thinker.Get());
    vrGraphicsDriver::Enable(vrGraphicsDriver::STATE_THINK, false);
    scene.Update(0.5f);
    EXPECT_TRUE(vrScene::Has_To_Catch_Up());
    vrGraphicsDriver::Enable(vrGraphicsDriver::STATE_THINK, true);
    EXPECT_EQ(scene.Get_Time(), 0.5f);
    EXPECT_EQ(thinker->Thoughts, 0);
    scene.Update(0.5f);
    EXPECT_EQ(thinker->Thoughts, 1);
}

} // namespace
