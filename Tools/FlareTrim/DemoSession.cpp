#include "FlareTrim/DemoSession.h"

#include "Code/ParticleData.h"
#include "Code/ParticleProperties.h"
#include "Headless/HeadlessApplication.h"
#include "Headless/HeadlessForms.h"

#include <algorithm>
#include <cstdio>
#include <map>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace
{

const std::vector<std::string> COLUMNS = {"Modified",
                                          "EmitterName",
                                          "ParticleName",
                                          "GlobalLOD",
                                          "MinimumDynamicLOD",
                                          "DynamicLODNearDistance",
                                          "DynamicLODFarDistance",
                                          "SupportsHeat",
                                          "UsesHeatVisualizer",
                                          "HeatDistanceCutoff",
                                          "HeatDistortionScale"};

/// How many effects the level-of-detail edit takes in at once.
constexpr size_t EDITED_EMITTERS = 5;
constexpr size_t NAME_WIDTH = 34;

std::string Row_Name(const ParticleData &row)
{
    return row.Get_EmitterName() + ":" + row.Get_ParticleName();
}

/// Every property of every row, as text. Layers of one name are told apart by their order.
using Rows = std::map<std::pair<std::string, int>, std::vector<std::string>>;

Rows Snapshot(HeadlessBindingSource &source)
{
    Rows values;
    std::map<std::string, int> namesakes;
    for (int index = 0; index < source.Get_Count(); ++index) {
        const std::string name = Row_Name(*source.Get_Row(index));
        auto &row = values[{name, namesakes[name]++}];
        for (const ParticleProperty &property : Get_Particle_Properties())
            row.push_back(property.Get(*source.Get_Row(index)));
    }
    return values;
}

/// The text and blanks up to a width in characters, whatever their bytes.
std::string Padded(const std::string &text, size_t width)
{
    const auto characters = std::count_if(text.begin(), text.end(), [](char byte) { return (byte & 0xc0) != 0x80; });
    return text + std::string(width - std::min(width, static_cast<size_t>(characters)), ' ');
}

/// One line a row that differs. The slider scales and the negated flag follow from the values that are shown.
void Print_Changes(const Rows &before, const Rows &after)
{
    for (const auto &[row, values] : after) {
        const auto old = before.find(row);
        if (old == before.end()) continue;
        std::string changes;
        for (size_t column = 0; column < values.size(); ++column) {
            const std::string property = Get_Particle_Properties()[column].Name;
            if (values[column] == old->second[column] || property.ends_with("PerThousandth") ||
                property.starts_with("DoesNot"))
                continue;
            changes += (changes.empty() ? "" : ", ") + property + " " + old->second[column] + " -> " + values[column];
        }
        if (!changes.empty()) std::printf("  %s  %s\n", Padded(row.first, NAME_WIDTH).c_str(), changes.c_str());
    }
}

} // namespace

bool DemoSession::Run()
{
    form.Activate();
    if (!Scan()) return false;
    std::printf("\nTHE GRID\n%s\n", form.Get_Particle_Grid_View().Format(COLUMNS).c_str());
    const auto before = Snapshot(form.Get_Particle_Data_Source());
    Edit_Level_Of_Detail();
    Edit_Heat();
    Convert_Billboard();
    if (!Save() || !Scan()) return false;
    std::printf("\nWHAT CHANGED IN THE FILES\n");
    Print_Changes(before, Snapshot(form.Get_Particle_Data_Source()));
    return form.Close();
}

bool DemoSession::Scan()
{
    std::printf("Scanning %s\n", form.Get_Current_Path().c_str());
    application.Set_Progress_Observer([](const HeadlessProgressDialog &dialog) {
        std::printf("\r%s %d of %d", dialog.Get_Title().c_str(),
                    std::min(dialog.Get_Steps() + 1, dialog.Get_Step_Count()), dialog.Get_Step_Count());
        std::fflush(stdout);
    });
    form.Click_Scan();
    std::printf("\n");
    if (form.Are_Settings_Controls_Enabled()) return true;
    std::printf("The scan failed; the log names the file and the reason.\n");
    return false;
}

void DemoSession::Edit_Level_Of_Detail()
{
    auto &source = form.Get_Particle_Data_Source();
    std::set<std::string> emitters;
    std::vector<int> rows;
    for (int index = 0; index < source.Get_Count(); ++index) {
        const std::string emitter = source.Get_Row(index)->Get_EmitterName();
        if (emitters.size() == EDITED_EMITTERS && !emitters.contains(emitter)) break;
        emitters.insert(emitter);
        rows.push_back(index);
    }
    form.Get_Particle_Grid_View().Select_Rows(rows);
    std::printf("Setting the far detail of %zu layers of %zu effects at once\n", rows.size(), emitters.size());
    form.Edit_Current("MinimumDynamicLODPerThousandth", "100");
    form.Edit_Current("DynamicLODFarDistance", "600");
}

void DemoSession::Edit_Heat()
{
    auto &source = form.Get_Particle_Data_Source();
    for (int index = 0; index < source.Get_Count(); ++index) {
        if (!source.Get_Row(index)->Get_UsesHeatVisualizer()) continue;
        form.Get_Particle_Grid_View().Select_Rows({index});
        std::printf("Softening the heat of %s\n", Row_Name(*source.Get_Row(index)).c_str());
        form.Edit_Current("HeatDistortionScalePerThousandth", "250");
        return;
    }
}

void DemoSession::Convert_Billboard()
{
    auto &source = form.Get_Particle_Data_Source();
    for (int index = 0; index < source.Get_Count(); ++index) {
        const auto row = source.Get_Row(index);
        if (!row->Get_SupportsHeat() || row->Get_UsesHeatVisualizer()) continue;
        form.Get_Particle_Grid_View().Select_Rows({index});
        std::printf("Converting %s to heat\n", Row_Name(*row).c_str());
        form.Click_Convert_To_Heat();
        return;
    }
}

bool DemoSession::Save()
{
    application.Clear_Message_Boxes();
    form.Click_Save_All();
    for (const ShownMessageBox &box : application.Get_Message_Boxes())
        std::printf("%s: %s\n", box.Caption.c_str(), box.Text.c_str());
    if (!application.Get_Message_Boxes().empty()) return false;
    std::printf("Saved\n\n");
    return true;
}
