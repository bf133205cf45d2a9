#pragma once

#include "VisualizerStage.h"
#include "common/Reports.h"
#include "common/TempFiles.h"

#include "vrGraphics/drivercommon/vrCamera.h"
#include "vrGraphics/nulldriver/vrNullDriverMethods.h"

#include <gtest/gtest.h>

#include <vector>

namespace MKTest
{

/// The null driver, which records draws and finds effects in the folder.
class NullDraw : public testing::Test
{
protected:
    NullDraw() : Context(&Camera)
    {
        vrNullDriverMethods::Init(nullptr, 640, 480);
        vrNullDriverMethods::Set_Runs_Tasks(true);
        vrNullDriverMethods::Set_Recording(true);
        vrNullEffectInstance::Set_Pure_Null_Run(false);
        vrGraphicsDriver::Clear_Effects_Path();
        vrGraphicsDriver::Add_Effects_Path(Folder.Get_Path());
    }
    ~NullDraw() override
    {
        vrNullEffectInstance::Set_Pure_Null_Run(true);
        vrGraphicsDriver::Clear_Effects_Path();
        vrNullDriverMethods::Set_Recording(false);
        vrNullDriverMethods::Set_Runs_Tasks(false);
        vrNullDriverMethods::Shutdown();
    }

    /// Builds and draws.
    void Draw(VisualizerStage &stage)
    {
        stage.Get_Visualizer().Select_Visible_Particles(stage.Get_Buffer(), stage.Context);
        stage.Get_Visualizer().Pre_Visualize(stage.Get_Buffer(), stage.Context);
        stage.Get_Visualizer().Visualize(stage.Get_Buffer(), Context);
    }
    static const std::vector<vrNullDrawRecord> &Draws() { return vrNullDriverMethods::Get_Draws(); }

    Reports Told;
    TempDirectory Folder;
    vrCamera Camera;
    vrRenderContext Context;
};

} // namespace MKTest
