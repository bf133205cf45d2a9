#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

/// Small helpers with commands, files and texts. All texts are UTF-8.
namespace ShellUtil
{

struct FindInFileEntry
{
    std::string FileName;
    std::string LineText; ///< as it was read
    int LineNumber = 0;   ///< from 1
};

/// The low byte of each UTF-16 unit of the text, with a terminator.
std::unique_ptr<char[]> New_Char_String(std::string_view text);
/// The text as the system's narrow functions take it.
std::string New_Std_String(std::string_view text);

/// As ManagedUtility::Cmd::Execute_Command, with both texts through New_Char_String.
bool Execute_Command(const std::string &command, const char *directory);
/// The command line that runs `program` on one path, whatever characters the path has.
std::string Command_On_File(std::string_view program, std::string_view path);
/// `p4 edit` and `p4 revert` on a file. Whether it could be started.
bool Check_Out(const std::string &path);
bool Revert(const std::string &path);
bool File_Is_Read_Only(const std::string &path); ///< false for a missing file

/// Appends the paths of the directory's files that match `pattern`, and then those of each sub-directory, but for links
/// that lead back to a directory on the way to them. An error is told in a message box and ends its level.
void Recursive_Search_For_Files(const std::string &directory, const std::string &pattern,
                                std::vector<std::string> &list);
/// Appends an entry for each line that holds `text`. Only the first occurrence in a line is tested. `wordStart` rejects
/// one behind an identifier character. `wholeWord` does so too, and looks at the second character behind the
/// occurrence, not at the first. With `regex` the text is a regular expression (ECMAScript without back-references) and
/// the other two switches don't count. A file that can't be read, or a bad expression, is told in a message box.
void Find_In_File(const std::string &path, std::string text, bool caseSensitive, bool wholeWord, bool wordStart,
                  bool regex, std::vector<FindInFileEntry> &results);
/// `_`, a letter A to Z of either case, or a digit.
bool Is_Identifier_Char(char c);
/// The path without its directory, and without its extension when told so. A separator or a dot at index 0 doesn't
/// count as one.
std::string Strip_File_Name(std::string path, bool stripExtension);

} // namespace ShellUtil
