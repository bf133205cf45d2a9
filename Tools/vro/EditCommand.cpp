#include "vro/Commands.h"

#include "Code/ApplicationCore.h"
#include "Code/EmitterData.h"
#include "Code/NoPreview.h"
#include "Code/ParticleData.h"
#include "Code/ParticleProperties.h"
#include "Code/VisualizerParameters.h"
#include "Headless/HeadlessApplication.h"
#include "Headless/HeadlessForms.h"

#include "vrGraphics/effect/vrMKParticle.h"

#include "MKLib/ChunkFile/ChunkFileReader.h"
#include "MKLib/File/File.h"
#include "MKPlatform/Files.h"

#include <algorithm>
#include <cstdio>
#include <set>

namespace vro
{

namespace
{

const char *Answer_Name(DialogResult answer)
{
    switch (answer) {
    case DialogResult::OK: return "OK";
    case DialogResult::Retry: return "Retry";
    case DialogResult::Yes: return "Yes";
    case DialogResult::No: return "No";
    default: return "Cancel";
    }
}

/// A box that told of a failure, or that was answered so that what it asked about didn't happen.
bool Is_Refusal(const ShownMessageBox &box)
{
    return box.Icon == MessageBoxIcon::Error || box.Answer == DialogResult::No || box.Answer == DialogResult::Cancel;
}

bool Has_Heat(const ParticleData &row)
{
    return row.Get_UsesHeatVisualizer();
}

bool Has_Scene_Lighting(const ParticleData &row)
{
    vrMKPVisualizer *visualizer = row.Get_Particle()->Get_Visualizer();
    return visualizer && Find_Bool_Parameter(*visualizer, "Scene Lighting Adj.");
}

/// A write to a row that lacks the value does nothing, and isn't replayed on the other rows either.
bool (*Editable_Rows(const std::string &property))(const ParticleData &)
{
    if (property.starts_with("Heat") || property.starts_with("Saturation")) return Has_Heat;
    if (property == "SceneLightingAdjustments") return Has_Scene_Lighting;
    return [](const ParticleData &) { return true; };
}

/// One run of the tool on the headless layer.
class EditSession
{
public:
    explicit EditSession(const EditOptions &options)
        : Options(options), Core(std::make_unique<NoPreview>()), Form(Prepared_Core())
    {
    }

    int Run()
    {
        Form.Click_Scan();
        if (!Form.Are_Settings_Controls_Enabled())
            return Fail(Options.Directory, "the scan failed; the log names the file and the reason");
        if (const int code = Select(); code != EXIT_WELL) return code;
        for (const auto &[property, value] : Options.Assignments)
            if (const int code = Assign(property, value); code != EXIT_WELL) return code;
        if (Options.ConvertToHeat && !Convert_To_Heat())
            return Fail(Options.Directory, "no selected row is a billboard that can be converted to heat");
        const int code = Save();
        std::fputs(Form.Get_Particle_Grid_View().Format().c_str(), stdout);
        return code;
    }

    ~EditSession() { Core.Shutdown(); }

private:
    ApplicationCore &Prepared_Core()
    {
        HeadlessApplication::MessageBoxPolicy answer =
            Options.AnswerYes ? HeadlessApplication::Accept() : HeadlessApplication::Decline;
        App.Set_Message_Box_Policy([answer](const ShownMessageBox &box) {
            const DialogResult result = answer(box);
            std::printf("%s%s%s  [%s]\n", box.Caption.c_str(), box.Caption.empty() ? "" : ": ", box.Text.c_str(),
                        Answer_Name(result));
            return result;
        });
        Core.Initialize();
        Core.Get_Settings().WorkingDirectory = MKPlatform::Absolute_Path(Options.Directory);
        Core.Get_Settings().AutoCheckout = Options.AutoCheckout;
        return Core;
    }

    std::shared_ptr<ParticleData> Row(int index) { return Form.Get_Particle_Data_Source().Get_Row(index); }

    int Select()
    {
        auto &grid = Form.Get_Particle_Grid_View();
        if (Options.Selections.empty()) {
            grid.Select_All();
            return EXIT_WELL;
        }
        std::vector<int> rows;
        for (const std::string &selection : Options.Selections) {
            const size_t before = rows.size();
            for (int index = 0; index < Form.Get_Particle_Data_Source().Get_Count(); ++index) {
                const std::string emitter = Row(index)->Get_EmitterName();
                if (selection == emitter || selection == emitter + ":" + Row(index)->Get_ParticleName())
                    rows.push_back(index);
            }
            if (rows.size() == before) return Fail(selection, "no row of the scan has this name");
        }
        grid.Select_Rows(rows);
        return EXIT_WELL;
    }

    /// The edit starts on the first selected row whose cell a user could edit, and the tool replays it on the others.
    bool Make_Current(bool (*editable)(const ParticleData &row))
    {
        for (const int index : Form.Get_Particle_Grid_View().Get_Selection()) {
            if (!editable(*Row(index))) continue;
            Form.Get_Particle_Data_Source().Set_Position(index);
            return true;
        }
        return false;
    }

    int Assign(const std::string &property, const std::string &value)
    {
        if (Form.Get_Particle_Grid_View().Get_Selection().empty()) return Fail(property, "there is no row to edit");
        const bool isEditable = Make_Current(Editable_Rows(property));
        if (Form.Edit_Current(property, value)) {
            if (!isEditable) Fail(property, "no selected row has this value, so nothing was set");
            return EXIT_WELL;
        }
        Fail(property, "\"" + value + "\" is not a value of this property");
        return EXIT_BAD_USAGE;
    }

    bool Convert_To_Heat()
    {
        Make_Current([](const ParticleData &row) { return row.Get_SupportsHeat() && !row.Get_UsesHeatVisualizer(); });
        return Form.Click_Convert_To_Heat();
    }

    int Save()
    {
        if (!Options.Save && !Options.SaveAll) return EXIT_WELL;
        std::set<std::string> pending = Modified_Files();
        App.Clear_Message_Boxes();
        if (Options.SaveAll)
            Form.Click_Save_All();
        else
            Form.Click_Save();
        const auto &boxes = App.Get_Message_Boxes();
        int code = std::any_of(boxes.begin(), boxes.end(), Is_Refusal) ? EXIT_BAD_DATA : EXIT_WELL;
        for (const std::string &path : Modified_Files()) {
            pending.erase(path);
            Fail(path, "not saved");
        }
        for (const std::string &path : pending)
            if (!Verify(path)) code = Fail(path, "the saved file can't be read back; is the disk full?");
        return code;
    }

    std::set<std::string> Modified_Files()
    {
        std::set<std::string> files;
        for (int index = 0; index < Form.Get_Particle_Data_Source().Get_Count(); ++index)
            if (Row(index)->Get_Modified()) files.insert(Row(index)->Get_EmitterData().Get_Path());
        return files;
    }

    /// The tool doesn't hear of bytes that miss the disk when a file is finished, so what was saved is walked once.
    static bool Verify(const std::string &path)
    {
        FileClass file(path);
        ChunkFileReaderClass reader(&file);
        return reader.Open_Chunk() && reader.Close_Chunk() && !reader.Is_Damaged();
    }

    const EditOptions &Options;
    HeadlessApplication App;
    ApplicationCore Core;
    HeadlessMainForm Form;
};

} // namespace

int Run_Edit(const EditOptions &options)
{
    for (const auto &[name, value] : options.Assignments) {
        const ParticleProperty *property = Find_Particle_Property(name);
        if (property && property->Set) continue;
        Fail(name, property ? "this property is only read" : "there is no such property");
        return EXIT_BAD_USAGE;
    }
    try {
        return EditSession(options).Run();
    } catch (const std::exception &error) {
        std::printf("Exception: %s  [OK]\n", error.what());
        return Fail(options.Directory, error.what());
    }
}

} // namespace vro
