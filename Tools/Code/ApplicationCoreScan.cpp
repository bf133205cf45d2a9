#include "Code/ApplicationCore.h"

#include "Code/Application.h"
#include "Code/BackgroundWorker.h"
#include "Code/EmitterData.h"
#include "Code/MainForm.h"
#include "Code/ParticleData.h"
#include "Code/ShellUtil.h"
#include "MKLib/ChunkFile/ChunkFileReader.h"
#include "MKLib/File/File.h"
#include "MKLib/MKDebug/Logger.h"
#include "MKPlatform/Files.h"
#include "MKPlatform/Paths.h"
#include "vrGraphics/assets/vrAssetManager.h"
#include "vrGraphics/assets/vrThreadLoadManager.h"
#include "vrGraphics/effect/vrMKPRenderable.h"
#include "vrGraphics/effect/vrMKParticle.h"
#include "vrGraphics/effect/vrMKParticleEmitter.h"
#include "vrGraphics/effect/vrMKParticleGroup.h"

using MKDebug::LogLevel;

namespace
{

MKDebug::Logger ScanLog("FlareTrimLog");

std::vector<std::string> List_Effect_Files(const std::string &workingDirectory)
{
    const std::string directory = MKPlatform::Absolute_Path(workingDirectory + "\\Art\\Models");
    std::vector<std::string> names;
    std::string error;
    if (!MKPlatform::List_Files(directory, "*.vro", names, &error))
        throw ScanError("The emitter files can't be listed. " + error);
    for (std::string &name : names) name.insert(0, directory + "/");
    return names;
}

/// The file object keeps the reason of a failed open to itself.
std::string Reason_Of_Failed_Open(const std::string &path)
{
    int error = 0;
    const MKPlatform::FileHandle file = MKPlatform::File_Open(path, MKPlatform::FILE_OPEN_GENERIC_READ, &error);
    if (file != MKPlatform::INVALID_FILE) MKPlatform::File_Close(file);
    return MKPlatform::Error_Text(error);
}

/// Walks the whole tree of the file. What isn't an emitter is a model, or no chunk file at all.
bool Is_Emitter_File(FileClass &file)
{
    ChunkFileReaderClass reader(&file);
    if (!reader.Open_Chunk()) return false;
    const uint32_t id = reader.Cur_Chunk_ID();
    reader.Close_Chunk();
    return id == VR_CHUNK_MKPEMITTER;
}

} // namespace

void ApplicationCore::Scan_Button_Click(Sender, const EventArgs &)
{
    Scan_Emitter_Files();
}

bool ApplicationCore::Scan_Emitter_Files()
{
    Application &application = Application::Get_Instance();
    if (modifiedEmitters && !modifiedEmitters->empty()) {
        const DialogResult answer =
            application.Show_Message_Box("You have made modifications, scanning will revert changes. Continue anyway?",
                                         "Flare Trim", MessageBoxButtons::YesNo, MessageBoxIcon::Question);
        if (answer == DialogResult::No) return false;
    }
    const std::unique_ptr<ProgressDialog> dialog = application.Create_Progress_Dialog();
    dialog->Set_Title("Scanning VRO Files...");
    const std::unique_ptr<BackgroundWorker> worker = application.Create_Background_Worker();
    worker->DoWork.Subscribe<&ApplicationCore::Scan_Emitter_Files_DoWork>(this);
    worker->ProgressChanged.Subscribe<&ApplicationCore::Scan_Emitter_Files_ProgressChanged>(this);
    worker->RunWorkerCompleted.Subscribe<&ApplicationCore::Scan_Emitter_Files_RunWorkerCompleted>(this);
    worker->Set_Reports_Progress(true);

    BindingSource &source = mainForm->Get_Particle_Data_Source();
    source.ListChanged.Unsubscribe<&ApplicationCore::Particle_List_Changed>(this);
    source.CurrentChanged.Unsubscribe<&ApplicationCore::Particle_List_Current_Changed>(this);
    mainForm->Set_Settings_Controls_Enabled(false);
    mainForm->Set_Scan_Failure("");
    if (particleList) source.Clear();

    worker->Run_Worker_Async(dialog.get());
    if (dialog->Show_Dialog() != DialogResult::OK) {
        mainForm->Set_Scan_Failure(scanFailure);
        return false;
    }

    vrThreadLoadManager::Synchronize();
    source.Set_Data_Source(particleList);
    mainForm->Resize_Columns();
    mainForm->Set_Settings_Controls_Enabled(true);
    source.ListChanged.Subscribe<&ApplicationCore::Particle_List_Changed>(this);
    source.CurrentChanged.Subscribe<&ApplicationCore::Particle_List_Current_Changed>(this);
    return true;
}

void ApplicationCore::Scan_Emitter_Files_DoWork(BackgroundWorker &worker, DoWorkEventArgs &args)
{
    const std::vector<std::string> files = List_Effect_Files(appSettings.WorkingDirectory);
    particleList = std::make_shared<ParticleList>();
    emitterList = std::make_unique<EmitterList>();
    modifiedEmitters = std::make_unique<ModifiedEmitters>();
    scanFailure.clear();
    // A prototype of an earlier scan would stand for a file that has been saved or exchanged since.
    assetManager->Free_All_Assets();

    ProgressDialog *dialog = args.Argument;
    const int count = static_cast<int>(files.size());
    worker.Report_Progress(0, ProgressDialogUserState(count, 0, dialog));
    for (int index = 0; index < count; ++index) {
        worker.Report_Progress(
            0, ProgressDialogUserState(count, index, dialog, std::string(MKPlatform::Path_File_Name(files[index]))));
        if (Scan_File(files[index])) continue;
        args.Result = ProgressDialogResult(false, dialog);
        return;
    }
    args.Result = ProgressDialogResult(true, dialog);
}

bool ApplicationCore::Fail_Scan(std::string reason)
{
    MK_LOG(ScanLog, LogLevel::Error, "%s. The scan ends here", reason.c_str());
    scanFailure = std::move(reason);
    return false;
}

bool ApplicationCore::Scan_File(const std::string &path)
{
    FileClass file;
    if (!file.Open(path, MKPlatform::FILE_OPEN_GENERIC_READ))
        return Fail_Scan(path + " can't be opened: " + Reason_Of_Failed_Open(path));
    if (!Is_Emitter_File(file)) return true;

    Forget_Namesake(path);
    const SmartPtr<vrRenderable> renderable =
        assetManager->Create_Renderable(ShellUtil::New_Std_String(path).c_str(), true, true);
    vrMKParticleEmitter *emitter = MK_Dynamic_Cast<vrMKParticleEmitter>(renderable.Get());
    if (!emitter) return Fail_Scan(path + " is an emitter file that can't be loaded");
    emitterList->push_back(std::make_shared<EmitterData>(emitter, MKPlatform::Absolute_Path(path)));
    Add_Rows(*emitterList->back());
    file.Close();
    return true;
}

/// To the asset manager names that differ in case alone are one asset. The later file would get the earlier one's
/// content, and a save would write that over it.
void ApplicationCore::Forget_Namesake(const std::string &path)
{
    const auto *namesake = MK_Dynamic_Cast<vrMKParticleEmitter>(
        assetManager->Find_Prototype(MK::Lowered(MKPlatform::Path_Base_Name(path))));
    if (!namesake) return;
    MK_LOG(ScanLog, LogLevel::Warning, "%s and the file of emitter %s have one asset name: each is read for itself",
           path.c_str(), namesake->Get_Name().c_str());
    assetManager->Free_All_Assets();
}

void ApplicationCore::Add_Rows(EmitterData &emitterData)
{
    ParticleGrid &grid = mainForm->Get_Particle_Grid_View();
    vrMKParticleEmitter &emitter = *emitterData.Get_Emitter();
    for (int index = 0; index < static_cast<int>(emitter.Get_Particle_Renderable_Count()); ++index) {
        const SmartPtr<vrMKPRenderable> renderable = emitter.Get_Particle_Renderable(index);
        vrMKParticleGroup *group = MK_Dynamic_Cast<vrMKParticleGroup>(renderable.Get());
        if (!group) continue;
        for (int layer = 0; layer < static_cast<int>(group->Particle_Count()); ++layer)
            particleList->push_back(emitterData.Add_Row(grid, group->Get_Particle(layer)));
    }
}

void ApplicationCore::Scan_Emitter_Files_ProgressChanged(BackgroundWorker &, const ProgressChangedEventArgs &args)
{
    ProgressDialog &dialog = *args.UserState.CurrentDialog;
    dialog.Set_Step_Count(args.UserState.StepCount);
    dialog.Set_Steps(args.UserState.Steps);
    dialog.Set_Step_Name(args.UserState.StepName);
}

void ApplicationCore::Scan_Emitter_Files_RunWorkerCompleted(BackgroundWorker &, const RunWorkerCompletedEventArgs &args)
{
    const ProgressDialogResult &result = args.Get_Result();
    result.CurrentDialog->Done(result.Success);
}
