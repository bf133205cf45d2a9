#include "vrGraphics/drivercommon/vrGraphicsDriver.h"

#include "vrGraphics/drivercommon/vrDdsPicture.h"
#include "vrGraphics/drivercommon/vrTextureCache.h"
#include "vrGraphics/drivercommon/vrTextureSearch.h"

#include "MKLib/MKDebug/Logger.h"

namespace
{

MKDebug::Logger VorenMissingTexturesLog("VorenMissingTexturesLog");

using MKDebug::LogLevel;

MK::String Key_Of(std::string_view name, bool isCube)
{
    MK::String key = MK::Lowered(name);
    for (char &letter : key)
        if (letter == '/') letter = '\\';
    return key.append(isCube ? "|cube" : "");
}

} // namespace

SmartPtr<vrTexture> vrGraphicsDriver::Load_Texture(std::string_view name)
{
    return Find_Or_Make_Texture(name, false);
}

SmartPtr<vrTexture> vrGraphicsDriver::Load_Cube_Texture(std::string_view name)
{
    return Find_Or_Make_Texture(name, true);
}

SmartPtr<vrTexture> vrGraphicsDriver::Find_Or_Make_Texture(std::string_view name, bool isCube)
{
    if (name.empty()) return nullptr;
    const std::lock_guard lock(Textures->Lock);
    if (Textures->PathGeneration != TextureSearch::Get_Generation()) {
        Textures->ByName.clear();
        Textures->PathGeneration = TextureSearch::Get_Generation();
    }
    const auto [entry, isNew] = Textures->ByName.try_emplace(Key_Of(name, isCube));
    if (!isNew) return entry->second;

    const MK::String text(name);
    FileClass file;
    if (!TextureSearch::Open(name, file)) {
        MK_LOG(VorenMissingTexturesLog, LogLevel::Warning, "Missing texture: %s is in none of the %d texture folders",
               text.c_str(), static_cast<int>(Get_Texture_Path().size()));
        return nullptr;
    }
    std::string error;
    if (isCube) {
        std::array<vrPicture2D, 6> faces;
        if (Load_Dds_Cube(file, faces, error)) entry->second = Make_Cube_Texture(name, faces, error);
    } else {
        vrPicture2D picture;
        if (Load_Picture(file, picture, error)) entry->second = Make_Texture(name, picture, error);
    }
    if (!entry->second)
        MK_LOG(VorenMissingTexturesLog, LogLevel::Warning, "Missing texture: %s of %s can't be used: %s", text.c_str(),
               file.Get_Name().c_str(), error.c_str());
    return entry->second;
}

void vrGraphicsDriver::Free_Unused_Textures()
{
    const std::lock_guard lock(Textures->Lock);
    std::erase_if(Textures->ByName,
                  [](const auto &entry) { return !entry.second || entry.second->Get_Ref_Count() == 1; });
}

SmartPtr<vrTexture> vrGraphicsDriver::Make_Cube_Texture(std::string_view, const std::array<vrPicture2D, 6> &,
                                                        std::string &error)
{
    error = "this driver has no cube textures";
    return nullptr;
}
