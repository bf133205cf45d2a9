#include "MKPlatform/Processes.h"

#include "MKPlatform/Files.h"

#include <cerrno>
#include <spawn.h>
#include <string>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace MKPlatform
{

namespace
{

bool Is_Blank(char c)
{
    return c == ' ' || c == '\t';
}

/// One word from `position` on. In front of a quote two backslashes stand for one, and an odd one makes the quote a
/// character; elsewhere a backslash is itself.
std::string Next_Word(std::string_view line, size_t &position)
{
    std::string word;
    bool quoted = false;
    while (position < line.size() && (quoted || !Is_Blank(line[position]))) {
        size_t backslashes = 0;
        while (position < line.size() && line[position] == '\\') ++backslashes, ++position;
        const bool beforeQuote = position < line.size() && line[position] == '"';
        word.append(beforeQuote ? backslashes / 2 : backslashes, '\\');
        if (beforeQuote) {
            if (backslashes % 2 == 1)
                word += '"';
            else
                quoted = !quoted;
            ++position;
        } else if (backslashes == 0) {
            word += line[position++];
        }
    }
    return word;
}

std::vector<std::string> Split_Words(std::string_view line)
{
    std::vector<std::string> words;
    for (size_t position = 0;;) {
        while (position < line.size() && Is_Blank(line[position])) ++position;
        if (position == line.size()) return words;
        words.push_back(Next_Word(line, position));
    }
}

class SpawnActions
{
public:
    SpawnActions() { posix_spawn_file_actions_init(&Actions); }
    SpawnActions(const SpawnActions &) = delete;
    SpawnActions &operator=(const SpawnActions &) = delete;
    ~SpawnActions() { posix_spawn_file_actions_destroy(&Actions); }

    bool Run_In(const std::string &directory)
    {
        return posix_spawn_file_actions_addchdir_np(&Actions, directory.c_str()) == 0;
    }
    /// Ours are closed by their own flag; this is for those that libraries opened.
    bool Close_All_But_Standard() { return posix_spawn_file_actions_addclosefrom_np(&Actions, STDERR_FILENO + 1) == 0; }
    const posix_spawn_file_actions_t *Get() const { return &Actions; }

private:
    posix_spawn_file_actions_t Actions;
};

} // namespace

bool Run_And_Wait(std::string_view commandLine, std::string_view directory)
{
    if (commandLine.find('\0') != commandLine.npos || directory.find('\0') != directory.npos) return false;
    std::vector<std::string> words = Split_Words(commandLine);
    if (words.empty() || words[0].empty()) return false;
    if (words[0].find_first_of("\\/") != std::string::npos) words[0] = To_System_Path(words[0]);

    std::vector<char *> arguments;
    for (std::string &word : words) arguments.push_back(word.data());
    arguments.push_back(nullptr);

    SpawnActions actions;
    if (!directory.empty() && !actions.Run_In(To_System_Path(directory))) return false;
    if (!actions.Close_All_But_Standard()) return false;
    pid_t process = 0;
    if (posix_spawnp(&process, arguments[0], actions.Get(), nullptr, arguments.data(), environ) != 0) return false;
    int status = 0;
    while (waitpid(process, &status, 0) < 0 && errno == EINTR) {
    }
    return true;
}

} // namespace MKPlatform
