#include "Code/ShellUtil.h"

#include "Code/Application.h"
#include "MKLib/MKString.h"
#include "MKPlatform/Files.h"
#include "MKPlatform/Processes.h"

#include <cstdint>
#include <filesystem>
#include <system_error>

namespace ShellUtil
{

namespace
{

/// The next code point of a UTF-8 text; a byte that fits nowhere stands for itself.
uint32_t Next_Code_Point(std::string_view text, size_t &position)
{
    const uint8_t first = static_cast<uint8_t>(text[position++]);
    const int followers = first >= 0xf0 && first < 0xf8 ? 3 : first >= 0xe0 ? 2 : first >= 0xc0 ? 1 : 0;
    if (followers == 0 || first >= 0xf8 || position + followers > text.size()) return first;
    uint32_t codePoint = first & (0x3fu >> followers);
    for (int i = 0; i < followers; ++i) {
        const uint8_t next = static_cast<uint8_t>(text[position + i]);
        if ((next & 0xc0) != 0x80) return first;
        codePoint = codePoint << 6 | (next & 0x3f);
    }
    position += followers;
    return codePoint;
}

} // namespace

std::unique_ptr<char[]> New_Char_String(std::string_view text)
{
    auto narrow = std::make_unique<char[]>(text.size() + 1); // no text has more units than bytes
    size_t count = 0;
    for (size_t position = 0; position < text.size();) {
        const uint32_t codePoint = Next_Code_Point(text, position);
        if (codePoint >= 0x10000) narrow[count++] = static_cast<char>((codePoint - 0x10000) >> 10 & 0xff);
        narrow[count++] = static_cast<char>(codePoint & 0xff);
    }
    narrow[count] = '\0';
    return narrow;
}

std::string New_Std_String(std::string_view text)
{
    return std::string(text);
}

bool Execute_Command(const std::string &command, const char *directory)
{
    const std::unique_ptr<char[]> narrowCommand = New_Char_String(command);
    const std::unique_ptr<char[]> narrowDirectory = directory ? New_Char_String(directory) : nullptr;
    return MKPlatform::Run_And_Wait(narrowCommand.get(), narrowDirectory ? narrowDirectory.get() : "");
}

std::string Command_On_File(std::string_view program, std::string_view path)
{
    std::string command(program);
    command += " \"";
    size_t backslashes = 0;
    for (const char c : path) {
        // A quote in the name, and the backslashes in front of it, would otherwise end the quoted word.
        if (c == '"') command.append(backslashes + 1, '\\');
        backslashes = c == '\\' ? backslashes + 1 : 0;
        command += c;
    }
    command.append(backslashes, '\\');
    return command + '"';
}

bool Check_Out(const std::string &path)
{
    return Execute_Command(Command_On_File("p4 edit", path), nullptr);
}

bool Revert(const std::string &path)
{
    return Execute_Command(Command_On_File("p4 revert", path), nullptr);
}

bool File_Is_Read_Only(const std::string &path)
{
    return MKPlatform::File_Is_Read_Only(path);
}

namespace
{

/// Whether a link leads back to a directory on the way to it.
bool Leads_Back(const std::string &directory, const std::vector<std::string> &way)
{
    std::error_code failure;
    for (const std::string &above : way)
        if (std::filesystem::equivalent(directory, above, failure)) return true;
    return false;
}

/// `way` holds the directories above this one.
void Search_Level(const std::string &directory, const std::string &pattern, std::vector<std::string> &way,
                  std::vector<std::string> &list)
{
    std::vector<std::string> names;
    std::string error;
    bool listed = MKPlatform::List_Files(directory, pattern, names, &error);
    if (listed) {
        for (const std::string &name : names) list.push_back(directory + "/" + name);
        listed = MKPlatform::List_Directories(directory, names, &error);
    }
    if (!listed) {
        Application::Get_Instance().Show_Message_Box("Recursive File Search *." + pattern + " failed: " + error,
                                                     "Error");
        return;
    }
    way.push_back(directory);
    for (const std::string &name : names)
        if (const std::string below = directory + "/" + name; !Leads_Back(below, way))
            Search_Level(below, pattern, way, list);
    way.pop_back();
}

} // namespace

void Recursive_Search_For_Files(const std::string &directory, const std::string &pattern,
                                std::vector<std::string> &list)
{
    std::vector<std::string> way;
    Search_Level(MKPlatform::To_System_Path(directory), pattern, way, list);
}

bool Is_Identifier_Char(char c)
{
    return c == '_' || (MK::Lower(c) >= 'a' && MK::Lower(c) <= 'z') || (c >= '0' && c <= '9');
}

namespace
{

/// The last of `characters` at index 1 or above, or npos.
size_t Find_Last_But_First(const std::string &text, const char *characters)
{
    const size_t found = text.find_last_of(characters);
    return found == 0 ? text.npos : found;
}

} // namespace

std::string Strip_File_Name(std::string path, bool stripExtension)
{
    if (const size_t separator = Find_Last_But_First(path, "/\\"); separator != path.npos) path.erase(0, separator + 1);
    if (!stripExtension) return path;
    if (const size_t dot = Find_Last_But_First(path, "."); dot != path.npos) path.erase(dot);
    return path;
}

} // namespace ShellUtil
