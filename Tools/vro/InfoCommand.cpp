#include "vro/Commands.h"

#include "vro/EffectFile.h"
#include "vro/EmitterPaths.h"
#include "vro/TextEncoding.h"

#include "vrGraphics/effect/vrMKPModel.h"
#include "vrGraphics/effect/vrMKParticleEmitter.h"
#include "vrGraphics/effect/vrMKParticleGroup.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdio>

namespace vro
{

namespace
{

using Cells = std::array<std::string, 10>;

std::string Text(std::string_view bytes)
{
    return Is_Valid_Utf8(bytes) ? std::string(bytes) : Windows_1252_To_Utf8(bytes);
}

std::string Number(float value)
{
    char buffer[64];
    return {buffer, std::to_chars(buffer, std::end(buffer), value).ptr};
}

std::string Name_Of(const vrMKPPlugin *plugin) { return plugin ? plugin->Get_Name() : "-"; }

Cells Layer_Cells(const vrMKParticle &layer)
{
    std::string modifiers;
    for (int index = 0; index < layer.Get_Modifier_Count(); ++index)
        modifiers.append(index ? ", " : "").append(Name_Of(layer.Get_Modifier(index)));
    const vrMKPSpawner *spawner = layer.Get_Spawner();
    return {Text(layer.Get_Name()),
            spawner ? std::to_string(spawner->Get_LOD()) : "-",
            spawner ? Number(spawner->Get_Min_Dynamic_LOD()) : "-",
            spawner ? Number(spawner->Get_Dynamic_LOD_Near()) : "-",
            spawner ? Number(spawner->Get_Dynamic_LOD_Far()) : "-",
            Name_Of(spawner),
            Name_Of(layer.Get_Transformer()),
            Name_Of(layer.Get_Stomper()),
            Name_Of(layer.Get_Visualizer()),
            modifiers.empty() ? "-" : modifiers};
}

/// Characters, not bytes, so that columns stay straight under accents.
size_t Width(const std::string &text)
{
    return static_cast<size_t>(std::count_if(text.begin(), text.end(), [](char c) { return (c & 0xc0) != 0x80; }));
}

void Print_Table(const std::vector<Cells> &rows)
{
    std::array<size_t, std::tuple_size_v<Cells>> widths{};
    for (const Cells &row : rows)
        for (size_t column = 0; column < row.size(); ++column) widths[column] = std::max(widths[column], Width(row[column]));
    for (const Cells &row : rows) {
        std::string line = "   ";
        for (size_t column = 0; column < row.size(); ++column) {
            const std::string blanks(widths[column] - Width(row[column]), ' ');
            const bool isNumber = column >= 1 && column <= 4;
            line += ' ';
            line += isNumber ? blanks + row[column] : row[column] + blanks;
            line += ' ';
        }
        line.erase(line.find_last_not_of(' ') + 1);
        std::printf("%s\n", line.c_str());
    }
}

void Print_Group(const vrMKParticleGroup &group)
{
    std::printf("  group \"%s\"  physics %s%s\n", Text(group.Get_Name()).c_str(), Name_Of(group.Get_Physics()).c_str(),
                group.Light_Count() ? (", lights " + std::to_string(group.Light_Count())).c_str() : "");
    if (group.Particle_Count() == 0) return;
    std::vector<Cells> rows = {{"LAYER", "LOD", "MIN", "NEAR", "FAR", "SPAWNER", "TRANSFORMER", "STOMPER", "VISUALIZER", "MODIFIERS"}};
    for (int index = 0; index < group.Particle_Count(); ++index) rows.push_back(Layer_Cells(*group.Get_Particle(index)));
    Print_Table(rows);
}

void Print_Emitter(const vrMKParticleEmitter &emitter, const std::string &file)
{
    int layers = 0;
    for (int index = 0; index < emitter.Get_Particle_Renderable_Count(); ++index)
        if (const auto *group = MK_Dynamic_Cast<vrMKParticleGroup>(emitter.Get_Particle_Renderable(index).Get()))
            layers += group->Particle_Count();
    const int count = emitter.Get_Particle_Renderable_Count();
    std::printf("%s  (%s)  %d renderable%s, %d layer%s\n", Text(emitter.Get_Name()).c_str(), file.c_str(), count,
                count == 1 ? "" : "s", layers, layers == 1 ? "" : "s");
    for (int index = 0; index < count; ++index) {
        const auto renderable = emitter.Get_Particle_Renderable(index);
        if (const auto *group = MK_Dynamic_Cast<vrMKParticleGroup>(renderable.Get())) {
            Print_Group(*group);
        } else if (const auto *model = MK_Dynamic_Cast<vrMKPModel>(renderable.Get())) {
            const auto *attached = model->Get_Attached_Model();
            std::printf("  model \"%s\"  physics %s, shows %s\n", Text(model->Get_Name()).c_str(),
                        Name_Of(model->Get_Physics()).c_str(),
                        attached ? ('"' + Text(attached->Get_Name()) + '"').c_str() : "nothing");
        }
    }
}

} // namespace

int Run_Info(const std::vector<std::string> &paths)
{
    std::vector<std::string> files;
    std::string failed;
    std::string error;
    if (!Expand_Paths(paths, files, failed, error)) return Fail(failed, error);
    int code = EXIT_WELL;
    for (const std::string &file : files) {
        if (const auto emitter = Load_Effect(file, error))
            Print_Emitter(*emitter, file);
        else
            code = Fail(file, error);
    }
    return code;
}

} // namespace vro
