#include "vrGraphics/drivercommon/vrTextureSearch.h"

#include "MKPlatform/Paths.h"

namespace
{

constexpr std::string_view OTHER_EXTENSIONS[] = {".dds", ".tga", ".png"};

struct SearchState
{
    std::vector<MK::String> Paths;
    unsigned Generation = 0;
};

SearchState &State()
{
    static SearchState state;
    return state;
}

bool Is_Separator(char letter)
{
    return letter == '\\' || letter == '/';
}

/// Whether a name from an effect file stays where the folders are: no root, no drive, no step upwards.
bool Stays_Inside(std::string_view name)
{
    if (name.empty() || Is_Separator(name.front()) || name.find(':') != name.npos || name.find('\0') != name.npos)
        return false;
    size_t start = 0;
    while (start <= name.size()) {
        const size_t end = std::min(name.find_first_of("\\/", start), name.size());
        if (name.substr(start, end - start) == "..") return false;
        start = end + 1;
    }
    return true;
}

bool Open_In_Folders(std::string_view name, FileClass &file)
{
    for (MK::String path : State().Paths)
        if (file.Open(path.append(name), MKPlatform::FILE_OPEN_GENERIC_READ)) return true;
    return false;
}

} // namespace

MK::String With_Separator(std::string_view folder)
{
    MK::String path(folder);
    if (!path.empty() && !Is_Separator(path.back())) path += '\\';
    return path;
}

void TextureSearch::Add_Path(std::string_view folder)
{
    State().Paths.push_back(With_Separator(folder));
    ++State().Generation;
}

void TextureSearch::Clear_Paths()
{
    State().Paths.clear();
    ++State().Generation;
}

const std::vector<MK::String> &TextureSearch::Get_Paths()
{
    return State().Paths;
}

unsigned TextureSearch::Get_Generation()
{
    return State().Generation;
}

bool TextureSearch::Open(std::string_view name, FileClass &file)
{
    if (!Stays_Inside(name)) return false;
    if (Open_In_Folders(name, file)) return true;
    const std::string_view own = MKPlatform::Path_Extension(name);
    const std::string_view stem = name.substr(0, name.size() - own.size());
    for (const std::string_view extension : OTHER_EXTENSIONS) {
        if (MK::Equal_Ignoring_Case(extension, own)) continue;
        if (Open_In_Folders(MK::String(stem).append(extension), file)) return true;
    }
    return false;
}
