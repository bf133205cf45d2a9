#include "Code/ShellUtil.h"

#include "Code/Application.h"
#include "MKLib/MKString.h"
#include "MKPlatform/Files.h"

#include <algorithm>
#include <optional>
#include <regex>

namespace ShellUtil
{

namespace
{

bool Read_Text_File(const std::string &path, std::string &text, std::string &error)
{
    int number = 0;
    const MKPlatform::FileHandle file = MKPlatform::File_Open(path, MKPlatform::FILE_OPEN_GENERIC_READ, &number);
    if (file == MKPlatform::INVALID_FILE) {
        error = path + ": " + MKPlatform::Error_Text(number);
        return false;
    }
    char buffer[1 << 16];
    int64_t count = 0;
    while ((count = MKPlatform::File_Read(file, buffer, sizeof(buffer))) > 0)
        text.append(buffer, static_cast<size_t>(count));
    MKPlatform::File_Close(file);
    if (count < 0) error = path + ": can't be read";
    return count >= 0;
}

/// The next line without its end, which is `\n`, `\r` or `\r\n`. False at the end of the text.
bool Next_Line(std::string_view text, size_t &position, std::string_view &line)
{
    if (position >= text.size()) return false;
    const size_t end = std::min(text.find_first_of("\r\n", position), text.size());
    line = text.substr(position, end - position);
    position = end + 1;
    if (end + 1 < text.size() && text[end] == '\r' && text[end + 1] == '\n') ++position;
    return true;
}

bool Line_Holds(std::string_view line, std::string_view text, bool wholeWord, bool wordStart)
{
    const size_t found = line.find(text);
    if (found == line.npos) return false;
    if (found > 0 && (wholeWord || wordStart) && Is_Identifier_Char(line[found - 1])) return false;
    // One too far, and kept so: the character right behind the occurrence is never looked at.
    const size_t behind = found + text.size() + 1;
    return !(wholeWord && behind < line.size() && Is_Identifier_Char(line[behind]));
}

/// The library's default matcher recurses for each character, which a long line turns into a stack overflow; this one
/// doesn't, and its time is bounded by the product of the lengths.
constexpr auto REGEX_FLAGS = std::regex::ECMAScript | std::regex_constants::__polynomial;

} // namespace

void Find_In_File(const std::string &path, std::string text, bool caseSensitive, bool wholeWord, bool wordStart,
                  bool regex, std::vector<FindInFileEntry> &results)
{
    std::string content, error;
    if (!Read_Text_File(path, content, error)) {
        Application::Get_Instance().Show_Message_Box(error, "Error...");
        return;
    }
    if (!caseSensitive) text = MK::Lowered(text);
    std::optional<std::regex> expression;
    try {
        if (regex) expression.emplace(text, REGEX_FLAGS);
    } catch (const std::regex_error &failure) {
        Application::Get_Instance().Show_Message_Box(text + ": " + failure.what(), "Error...");
        return;
    }

    std::string_view line;
    size_t position = 0;
    for (int number = 1; Next_Line(content, position, line); ++number) {
        const std::string compared(caseSensitive ? std::string_view(line) : std::string_view(MK::Lowered(line)));
        const bool matches =
            expression ? std::regex_search(compared, *expression) : Line_Holds(compared, text, wholeWord, wordStart);
        if (matches) results.push_back({path, std::string(line), number});
    }
}

} // namespace ShellUtil
