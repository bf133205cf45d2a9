#include "Code/ApplicationCore.h"

#include "Code/Application.h"
#include "Code/EmitterData.h"
#include "Code/MainForm.h"
#include "Code/ParticleData.h"
#include "Code/VisualizerParameters.h"
#include "vrGraphics/effect/vrMKParticle.h"
#include "vrGraphics/effect/vrMKParticleEmitter.h"
#include "vrGraphics/plugins/visualizers/HeatAndSaturation.h"

void ApplicationCore::Particle_List_Changed(Sender, const ListChangedEventArgs &args)
{
    if (args.Type != ListChangedType::ItemChanged) return;
    ParticleGrid &grid = mainForm->Get_Particle_Grid_View();
    for (const std::shared_ptr<ParticleData> &row : grid.Get_Selected_Rows()) {
        if (!row) continue;
        if (!row->Get_Modified()) {
            row->Set_Modified(true);
            // The edited row's index, whatever row this is: those of another emitter are updated by the refresh.
            Push_Emitter(args.NewIndex);
            mainForm->Set_Save_All_Button_Enabled(true);
            Add_Modified_Emitter(row->Get_EmitterData());
        }
        row->Get_Particle()->Push_LOD();
    }
    grid.Refresh();
}

void ApplicationCore::Add_Modified_Emitter(EmitterData &emitterData)
{
    const auto [position, added] = modifiedEmitters->emplace(emitterData.Get_Name(), emitterData.shared_from_this());
    if (!added)
        throw DuplicateEmitterError("Two modified emitters are named '" + emitterData.Get_Name() +
                                    "': " + position->second->Get_Path() + " and " + emitterData.Get_Path());
}

void ApplicationCore::Push_Emitter(int index)
{
    BindingSource &source = mainForm->Get_Particle_Data_Source();
    const int count = static_cast<int>(particleList->size());
    if (index < 0 || index >= count) return;
    const vrMKParticleEmitter *emitter = (*particleList)[index]->Get_Emitter();
    int first = index, last = index;
    while (first > 0 && (*particleList)[first - 1]->Get_Emitter() == emitter) --first;
    while (last + 1 < count && (*particleList)[last + 1]->Get_Emitter() == emitter) ++last;

    source.ListChanged.Unsubscribe<&ApplicationCore::Particle_List_Changed>(this);
    for (int row = first; row <= last; ++row) source.Reset_Item(row);
    source.ListChanged.Subscribe<&ApplicationCore::Particle_List_Changed>(this);
}

void ApplicationCore::Save_Button_Click(Sender, const EventArgs &)
{
    ParticleGrid &grid = mainForm->Get_Particle_Grid_View();
    for (const std::shared_ptr<ParticleData> &row : grid.Get_Selected_Rows()) {
        if (!row) continue;
        if (!row->Get_Modified()) return; // the second row of an emitter that was just saved ends it too
        EmitterData &emitterData = row->Get_EmitterData();
        if (!emitterData.Save(appSettings.AutoCheckout)) continue;
        emitterData.Set_Modified(false);
        Push_Emitter(mainForm->Get_Particle_Data_Source().Get_Position());
        modifiedEmitters->erase(emitterData.Get_Name());
    }
    if (!modifiedEmitters || modifiedEmitters->empty()) mainForm->Set_Save_All_Button_Enabled(false);
    grid.Refresh();
}

void ApplicationCore::Save_All_Button_Click(Sender, const EventArgs &)
{
    if (!modifiedEmitters) return;
    BindingSource &source = mainForm->Get_Particle_Data_Source();
    std::vector<std::string> saved;
    for (const auto &[name, emitterData] : *modifiedEmitters) {
        if (!emitterData->Save(appSettings.AutoCheckout)) continue;
        emitterData->Set_Modified(false);
        Push_Emitter(source.Index_Of(emitterData->Get_Particles().front().get()));
        saved.push_back(name);
    }
    for (const std::string &name : saved) modifiedEmitters->erase(name);
    if (modifiedEmitters->empty()) mainForm->Set_Save_All_Button_Enabled(false);
}

void ApplicationCore::Convert_To_Heat_Button_Click(Sender, const EventArgs &)
{
    BindingSource &source = mainForm->Get_Particle_Data_Source();
    const std::shared_ptr<ParticleData> row = source.Get_Current();
    if (!row) return;
    if (showPreview) animationTimer->Set_Enabled(false);

    vrMKParticle &particle = *row->Get_Particle();
    const SmartPtr<vrMKPHeatAndSaturationVisualizer> heat = static_cast<vrMKPHeatAndSaturationVisualizer *>(
        vrMKPPlugin::Create_Plugin(vrMKPPlugin::kvrMKPHeatAndSaturationVisualizer));
    if (particle.Get_Visualizer()) Copy_Heat_Parameters(*heat, *particle.Get_Visualizer());
    heat->Set_Distance_Cutoff(1000.0f);
    heat->Set_Distortion_Scale(1.0f);
    heat->Set_Saturation_Scale(1.0f);
    particle.Set_Visualizer(heat.Get());
    row->Converted_To_Heat();
    source.Reset_Item(source.Index_Of(row.get()));

    if (!showPreview) return;
    Reset_Scene();
    animationTimer->Set_Enabled(true);
}
