#include "vrGraphics/scene/vrSimpleScene.h"

#include "MKLib/MKDebug/Assert.h"
#include "vrGraphics/RenderThread/RenderThread.h"

#include <algorithm>

MK_DEFINE_RUN_TIME_TYPE(vrSimpleScene, vrScene)

namespace
{

constexpr float DEBUG_FAR = 8000.0f; ///< world units

} // namespace

vrSimpleScene::vrSimpleScene(bool culls) : FrustumDebugCamera(new vrCamera), SecondDebugCamera(new vrCamera)
{
    FrustumDebugCamera->Set_Depth_Range(FrustumDebugCamera->Get_Near(), DEBUG_FAR);
    if (!culls) return;
    StillTree = std::make_unique<TreeCull>();
    MovingTree = std::make_unique<TreeCull>();
}

vrSimpleScene::~vrSimpleScene()
{
    while (!Renderables.empty()) Remove_Renderable(Renderables.back().Renderable.Get());
}

std::vector<vrSimpleScene::ListEntry>::const_iterator vrSimpleScene::Find(const vrRenderable *renderable) const
{
    return std::find_if(Renderables.begin(), Renderables.end(),
                        [&](const ListEntry &entry) { return entry.Renderable == renderable; });
}

bool vrSimpleScene::Add_Renderable(vrRenderable *renderable)
{
    MK_ASSERT(Is_Main_Thread() || !RenderThread::InParallelSection || !Get_Scene() ||
                  MK_Dynamic_Cast<vrNullScene>(Get_Scene()),
              "(Is_Main_Thread() || !RenderThread::InParallelSection || (Get_Scene() == NULL) || "
              "(MK_Dynamic_Cast<vrNullScene>(Get_Scene()) != NULL)) && \"Attempting to call a function from an unsafe "
              "section of code.\"");
    if (!renderable || renderable->Get_Scene() == this) return false;
    const SmartPtr<vrRenderable> held(renderable);
    if (renderable->Get_Scene()) {
        renderable->Raise_Scene_Reassign_Hint(true);
        renderable->Get_Scene()->Remove_Renderable(renderable);
        renderable->Raise_Scene_Reassign_Hint(false);
    }
    const uint64_t order = NextOrder++;
    Renderables.push_back({held, order});
    Enter(*renderable);
    if (StillTree) (renderable->Is_Still() ? *StillTree : *MovingTree).Insert(*renderable, order);
    return true;
}

bool vrSimpleScene::Remove_Renderable(vrRenderable *renderable)
{
    if (Find(renderable) == Renderables.end()) return false;
    const SmartPtr<vrRenderable> held(renderable);
    if (Is_In_Update()) {
        Remove_Object(*renderable, 0);
        return true;
    }
    if (StillTree) {
        StillTree->Remove(*renderable);
        MovingTree->Remove(*renderable);
    }
    Leave(*renderable);
    Renderables.erase(Find(renderable));
    return true;
}

vrRenderable *vrSimpleScene::Get_Renderable(int index) const
{
    if (index < 0 || index >= Get_Renderable_Count()) return nullptr;
    return Renderables[static_cast<size_t>(index)].Renderable.Get();
}

vrSceneIterator *vrSimpleScene::Create_Iterator() const
{
    return new vrSceneIterator(*this);
}

void vrSimpleScene::Refresh_Bounds(const vrRenderable &renderable)
{
    if (StillTree && renderable.Is_Still()) StillTree->Refresh_Bounds(renderable);
}

void vrSimpleScene::Add_Debug_Line(const Vector3 &from, const Vector3 &to, vrColor color)
{
    DebugLines.push_back({from, to, color});
}
