#pragma once

#include "vrGraphics/drivercommon/vrCamera.h"
#include "vrGraphics/drivercommon/vrColor.h"
#include "vrGraphics/scene/TreeCull.h"
#include "vrGraphics/scene/vrScene.h"

#include <memory>

class vrSceneIterator;

/// The scene of tools and tests: a plain list of its renderables, and, where it culls, a tree of those that stay where
/// they are and one of the others.
class vrSimpleScene final : public vrScene
{
public:
    MK_RUN_TIME_TYPE

    /// What the debug cameras do.
    struct DebugCameraFlags
    {
        bool ShowFrustum = false; ///< draws what the first one sees, as lines
        bool UseSecond = false;   ///< what it sees is collected, in all modes but the shadow map's
    };

    /// One that doesn't cull collects all that is in it.
    explicit vrSimpleScene(bool culls = true);
    ~vrSimpleScene() override;

    bool Add_Renderable(vrRenderable *renderable) override;
    bool Remove_Renderable(vrRenderable *renderable) override;
    int Get_Renderable_Count() const { return static_cast<int>(Renderables.size()); }
    /// Null for an index out of range.
    vrRenderable *Get_Renderable(int index) const;
    /// Over the list as it is; the caller deletes it. Adding and removing invalidate it.
    vrSceneIterator *Create_Iterator() const;
    /// A still renderable has moved.
    void Refresh_Bounds(const vrRenderable &renderable);

    using vrScene::Render;
    /// A mode that no scene is rendered with, and a null camera, assert.
    void Render(vrCamera *camera, vrRenderModeType mode, bool flag) override;

    vrCamera *Get_Frustum_Debug_Camera() const { return FrustumDebugCamera.Get(); } ///< never null, nor the next
    vrCamera *Get_Second_Debug_Camera() const { return SecondDebugCamera.Get(); }
    void Set_Debug_Cameras(const DebugCameraFlags &flags) { DebugCameras = flags; }
    /// For the next normal render. World space.
    void Add_Debug_Line(const Vector3 &from, const Vector3 &to, vrColor color);

    size_t Get_Object_Size() const override { return sizeof(*this); }

private:
    struct ListEntry
    {
        SmartPtr<vrRenderable> Renderable;
        uint64_t Order; ///< ascends along the list
    };
    struct DebugLine
    {
        Vector3 From;
        Vector3 To;
        vrColor Color;
    };

    std::vector<ListEntry>::const_iterator Find(const vrRenderable *renderable) const;
    void Tell_Driver(vrCamera &camera, vrRenderModeType mode) const;
    void Set_Render_Parameters(vrRenderModeType mode) const;
    void Pre_Render_Effects(vrRenderContext &context);
    void Start_Rendering(vrRenderContext &context);
    void Collect_All(vrRenderContext &context, const vrCamera &camera);
    void Collect_One(vrRenderContext &context, vrRenderable &renderable) const;
    void Merge_Task_Bounds(vrRenderContext &context) const;
    void Draw_Debug_Helpers();

    std::vector<ListEntry> Renderables;
    uint64_t NextOrder = 0;
    std::unique_ptr<TreeCull> StillTree; ///< null, like the other, in a scene that doesn't cull
    std::unique_ptr<TreeCull> MovingTree;
    std::vector<const TreeCull::Entry *> Visible;
    SmartPtr<vrCamera> FrustumDebugCamera;
    SmartPtr<vrCamera> SecondDebugCamera;
    DebugCameraFlags DebugCameras;
    std::vector<DebugLine> DebugLines;
};

/// Walks the renderables of a scene in the order of their adding.
class vrSceneIterator
{
public:
    explicit vrSceneIterator(const vrSimpleScene &scene) : Scene(scene) {}

    void First() { Index = 0; }
    void Next() { ++Index; }
    bool Is_Done() const { return Index >= Scene.Get_Renderable_Count(); }
    vrRenderable *Current() const { return Scene.Get_Renderable(Index); } ///< null when done

private:
    const vrSimpleScene &Scene;
    int Index = 0;
};
