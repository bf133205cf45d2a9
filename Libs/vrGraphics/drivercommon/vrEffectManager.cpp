#include "vrGraphics/drivercommon/vrEffectManager.h"

#include "MKLib/File/File.h"
#include "MKLib/MKDebug/Assert.h"
#include "MKLib/MKDebug/Logger.h"
#include "MKPlatform/Paths.h"
#include "vrGraphics/drivercommon/vrGraphicsDriver.h"

#include <algorithm>

namespace
{

MKDebug::Logger VorenLog("VorenLog");

/// Drawn where not even the file of the missing effect is there: a chequer that nobody takes for meant.
constexpr std::string_view BUILT_IN_EFFECT = R"(
annotation _VOREN_RENDER_PHASE "Particles"
technique VORENENGINE_LOD_0
{
    pass
    {
        vertex
        {
            uniform mat4 g_ViewProj;
            uniform mat4 g_World;
            out vec2 uv;
            void main()
            {
                uv = inUV;
                gl_Position = g_ViewProj * g_World * vec4(inPosition, 1.0);
            }
        }
        fragment
        {
            in vec2 uv;
            void main()
            {
                vec2 cell = floor(uv * 4.0);
                outColor = mod(cell.x + cell.y, 2.0) < 0.5 ? vec4(1.0, 0.0, 1.0, 1.0) : vec4(0.0, 0.0, 0.0, 1.0);
            }
        }
    }
}
)";

std::string Join(std::string_view folder, std::string_view name)
{
    std::string path(folder);
    if (!path.empty() && path.back() != '\\' && path.back() != '/') path += '\\';
    path += name;
    return path;
}

/// False without an error for a file that isn't there.
bool Read_File(const std::string &path, std::string &text, std::string &error)
{
    FileClass file(path);
    if (!file.Open(MKPlatform::FILE_OPEN_GENERIC_READ)) return false;
    const int64_t size = file.Get_Size();
    if (size > static_cast<int64_t>(vrEffectSource::MAX_FILE_SIZE)) {
        error = path + ": the file has " + std::to_string(size) + " bytes, at most " +
                std::to_string(vrEffectSource::MAX_FILE_SIZE) + " are read";
        return false;
    }
    text.resize(static_cast<size_t>(std::max<int64_t>(size, 0)));
    const int64_t read = file.Read(text.data(), size);
    if (read == size) return true;
    error = path + ": read " + std::to_string(read) + " of " + std::to_string(size) + " bytes";
    return false;
}

/// Reads `name` from the first folder that has it. False when none has, or with `error` set.
bool Read_From_Folders(std::string_view name, std::string &path, std::string &text, std::string &error)
{
    for (const MK::String &folder : vrGraphicsDriver::Get_Effects_Path()) {
        path = Join(folder, name);
        if (Read_File(path, text, error)) return true;
        if (!error.empty()) return false;
    }
    return false;
}

/// Includes come from the folder of the effect itself, or else from the path list.
class FolderIncluder final : public vrEffectIncluder
{
public:
    explicit FolderIncluder(std::string_view effectPath) : Folder(MKPlatform::Path_Directory(effectPath)) {}

    bool Read_Include(std::string_view name, std::string &text) override
    {
        const std::string_view file = MKPlatform::Path_File_Name(name);
        std::string path;
        std::string error;
        if (file.empty()) return false;
        if (Read_File(Join(Folder, file), text, error)) return true;
        return error.empty() && Read_From_Folders(file, path, text, error);
    }

private:
    std::string Folder;
};

std::string_view Base_Name(std::string_view name)
{
    return MKPlatform::Path_Base_Name(name);
}

void Add_Effects_Of(std::string_view folder, std::vector<std::string> &names)
{
    const std::string pattern = std::string("*") + EFFECT_EXTENSION;
    const std::string search = Join(folder, pattern);
    MK_LOG(VorenLog, MKDebug::LogLevel::Info,
           "vrEffectManager<EffectType>::Load_All_Effects Searching for shaders: %s\r\n", search.c_str());
    std::vector<std::string> files;
    MKPlatform::List_Files(folder, pattern, files);
    for (const std::string &file : files) {
        MK_LOG(VorenLog, MKDebug::LogLevel::Info, "   Found Shader: %s\n", file.c_str());
        names.emplace_back(Base_Name(file));
    }
}

} // namespace

MK::String vrEffectFinder::Get_Key(std::string_view name)
{
    return MK::Lowered(Base_Name(name));
}

bool vrEffectFinder::Read_Effect(std::string_view name, vrEffectSource &source, std::string &error)
{
    error.clear();
    const std::string_view base = Base_Name(name);
    if (base.empty()) return false;
    std::string path;
    std::string text;
    if (!Read_From_Folders(std::string(base) + EFFECT_EXTENSION, path, text, error)) return false;
    FolderIncluder includer(path);
    return source.Parse(text, path, &includer, error);
}

void vrEffectFinder::Read_Missing_Effect(vrEffectSource &source)
{
    std::string error;
    if (Read_Effect(MISSING_EFFECT, source, error)) return;
    if (!error.empty()) MK_LOG(VorenLog, MKDebug::LogLevel::Error, "%s", error.c_str());
    MK_ASSERT(source.Parse(BUILT_IN_EFFECT, MISSING_EFFECT, nullptr, error), "the effect that is built in must parse");
}

std::vector<std::string> vrEffectFinder::List_Effects(std::string_view path)
{
    MK_LOG(VorenLog, MKDebug::LogLevel::Info, "Loading Shaders!\r\n----------------------\r\n\r\n");
    std::vector<std::string> names;
    if (!path.empty()) {
        Add_Effects_Of(path, names);
        return names;
    }
    for (const MK::String &folder : vrGraphicsDriver::Get_Effects_Path()) Add_Effects_Of(folder, names);
    return names;
}

bool vrEffectFinder::Has_Path_Changed()
{
    const std::vector<MK::String> &path = vrGraphicsDriver::Get_Effects_Path();
    if (KnownPath == path) return false;
    KnownPath = path;
    return true;
}

void vrEffectFinder::Report_Missing(std::string_view name)
{
    if (!Reported.insert(Get_Key(name)).second) return;
    MK_LOG(VorenLog, MKDebug::LogLevel::Warning, "Shader %.*s isn't in any effects path; %s stands in for it.",
           static_cast<int>(name.size()), name.data(), MISSING_EFFECT);
}

void vrEffectFinder::Report_Failure(std::string_view name, std::string_view errors)
{
    if (!Reported.insert(Get_Key(name)).second) return;
    MK_LOG(VorenLog, MKDebug::LogLevel::Error, " Shader %.*s failed to compile!\r\nErrors: %.*s",
           static_cast<int>(name.size()), name.data(), static_cast<int>(errors.size()), errors.data());
}

void vrEffectFinder::Check_Base_Level(std::string_view name, const vrEffectSource &source)
{
    for (const vrEffectTechnique &technique : source.Get_Techniques())
        for (const char *base : {"GLOBAL_LOD_0", "VORENENGINE_LOD_0"})
            if (MK::Equal_Ignoring_Case(technique.Name, base)) return;
    MK_LOG(VorenLog, MKDebug::LogLevel::Warning,
           "Shader %.*s has neither technique GLOBAL_LOD_0 nor VORENENGINE_LOD_0; its lowest level stands in.",
           static_cast<int>(name.size()), name.data());
}
