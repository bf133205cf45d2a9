#include "vrGraphics/scene/vrSimpleScene.h"

#include "MKLib/MKDebug/Assert.h"
#include "vrGraphics/RenderThread/RenderThread.h"

#include <algorithm>

MK_DEFINE_RUN_TIME_TYPE(vrSimpleScene, vrScene)

vrSimpleScene::~vrSimpleScene()
{
    while (!Renderables.empty()) Remove_Renderable(Renderables.back().Get());
}

bool vrSimpleScene::Add_Renderable(vrRenderable *renderable)
{
    MK_ASSERT(Is_Main_Thread() || !RenderThread::InParallelSection,
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
    Renderables.push_back(held);
    Enter(*renderable);
    return true;
}

bool vrSimpleScene::Remove_Renderable(vrRenderable *renderable)
{
    const auto found = std::find_if(Renderables.begin(), Renderables.end(),
                                    [&](const auto &candidate) { return candidate == renderable; });
    if (found == Renderables.end()) return false;
    const SmartPtr<vrRenderable> held(renderable);
    if (Is_In_Update()) {
        Remove_Object(*renderable, 0);
        return true;
    }
    Leave(*renderable);
    Renderables.erase(std::find(Renderables.begin(), Renderables.end(), held));
    return true;
}

vrRenderable *vrSimpleScene::Get_Renderable(int index) const
{
    if (index < 0 || index >= Get_Renderable_Count()) return nullptr;
    return Renderables[static_cast<size_t>(index)].Get();
}
