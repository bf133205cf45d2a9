#include "MKLib/MegaFile/MegaFileManager.h"

#include "MKLib/ChunkFile/ChunkFileReader.h"
#include "MKLib/File/XMLDatabase.h"
#include "MKLib/MKDebug/Assert.h"
#include "MKLib/MKDebug/Logger.h"
#include "MKPlatform/Paths.h"

using MKDebug::LogLevel;

namespace
{

MKDebug::Logger MegaFileLog("MegaFileLog");

constexpr std::string_view XML_LIST = "Data\\MegaFiles.xml";
constexpr std::string_view CHUNK_LIST = "Data\\MegaFiles.chk";

constexpr const char *LANGUAGE_TABLE[] = {"English", "French", "German",  "Italian", "Spanish",
                                          "Polish",  "Czech",  "Russian", "Korean",  "Chinese"};

bool Can_Be_Opened(std::string_view name)
{
    FileClass file(name);
    return file.Open(MKPlatform::FILE_OPEN_GENERIC_READ);
}

} // namespace

bool MegaFileManagerClass::Set_Language(std::string_view language)
{
    for (const char *known : LANGUAGE_TABLE)
        if (MK::Equal_Ignoring_Case(known, language)) {
            Language = known;
            return true;
        }
    return false;
}

MK::String MegaFileManagerClass::Get_Localised_Name(std::string_view name) const
{
    const size_t extension = name.size() - MKPlatform::Path_Extension(name).size();
    MK::String localised(name.substr(0, extension));
    localised.append("_").append(Language).append(name.substr(extension));
    return localised;
}

bool MegaFileManagerClass::Load_Default_Mega_Files(MegaFileClass::MegaFileAccess openType)
{
    FileClass::Add_Disk_Only_File(XML_LIST);
    FileClass::Add_Disk_Only_File(CHUNK_LIST);
    std::vector<MK::String> names;
    if (!Read_XML_List(XML_LIST, names) && !Read_Chunk_List(CHUNK_LIST, names)) return false;
    for (const MK::String &name : names) {
        const MK::String localised = Get_Localised_Name(name);
        FileClass::Add_Disk_Only_File(localised);
        FileClass::Add_Disk_Only_File(name);
        // Most archives have no form in the language, so that is looked at before it could be logged as a failure.
        if (Can_Be_Opened(localised) &&
            Megafile_Add(localised, MegaFileClass::MEGAFILE_OPEN_FROM_DISK, ACCESS_PUBLIC) != INVALID_MEGAFILE_HANDLE)
            continue;
        Megafile_Add(name, openType, ACCESS_PUBLIC);
    }
    return true;
}

bool MegaFileManagerClass::Load_Mega_Files(std::string_view directory, MegaFileClass::MegaFileAccess openType)
{
    const MK::String prefix = MK::String(directory) + "\\";
    std::vector<MK::String> names;
    if (!Read_XML_List(prefix + MK::String(XML_LIST), names)) return false;
    for (const MK::String &name : names) {
        const int handle = Megafile_Add(prefix + name, openType, ACCESS_PUBLIC);
        if (handle != INVALID_MEGAFILE_HANDLE) ModMegaFileList.push_back(handle);
    }
    return true;
}

/// Each child of the root element names one archive.
bool MegaFileManagerClass::Read_XML_List(std::string_view listName, std::vector<MK::String> &names)
{
    XMLDatabase files;
    if (!files.Load(listName)) return false;
    MK::String fileName;
    for (bool found = files.Enter_First_Child(); found; found = files.Next_Sibling())
        if (MK_VERIFY(files.Get_Value(&fileName) == S_OK, "files.Get_Value(&file_name) == S_OK") && !fileName.empty())
            names.push_back(fileName);
    return true;
}

/// One chunk, whose sub-chunks hold one string each.
bool MegaFileManagerClass::Read_Chunk_List(std::string_view listName, std::vector<MK::String> &names)
{
    FileClass file(listName);
    if (!file.Open(MKPlatform::FILE_OPEN_GENERIC_READ)) return false;
    ChunkFileReaderClass reader(&file);
    if (!reader.Open_Chunk()) {
        MK_LOG(MegaFileLog, LogLevel::Error, "MegaFileManagerClass - %s holds no list of archives\n",
               file.Get_Name().c_str());
        return false;
    }
    while (reader.Contains_Chunks() && reader.Open_Chunk()) {
        MK::String name;
        if (reader.Read_String(name) && !name.empty()) names.push_back(std::move(name));
        reader.Close_Chunk();
    }
    reader.Close_Chunk();
    return true;
}
