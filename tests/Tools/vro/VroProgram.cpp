#include "Tools/vro/VroProgram.h"

#include "vro/Commands.h"
#include "vro/EffectFile.h"
#include "vro/EffectJson.h"
#include "vro/JsonReading.h"

#include "vrGraphics/effect/vrMKParticleEmitter.h"

#include <cerrno>
#include <filesystem>
#include <poll.h>
#include <spawn.h>
#include <stdexcept>
#include <sys/wait.h>
#include <unistd.h>

namespace vroTest
{

namespace
{

std::string Quoted(const std::string &argument)
{
    std::string text = "'";
    for (const char letter : argument) text += letter == '\'' ? std::string("'\\''") : std::string(1, letter);
    return text + "'";
}

struct Pipe
{
    Pipe()
    {
        if (::pipe(Ends) != 0) throw std::runtime_error("no pipe");
    }
    ~Pipe()
    {
        Close(0);
        Close(1);
    }
    void Close(int end)
    {
        if (Ends[end] >= 0) ::close(Ends[end]);
        Ends[end] = -1;
    }

    int Ends[2];
};

/// Takes from both pipes as it comes, so that neither fills up and holds the program.
void Drain(Pipe &out, std::string &outText, Pipe &err, std::string &errText)
{
    pollfd waiting[] = {{out.Ends[0], POLLIN, 0}, {err.Ends[0], POLLIN, 0}};
    std::string *texts[] = {&outText, &errText};
    char buffer[4096];
    while (waiting[0].fd >= 0 || waiting[1].fd >= 0) {
        if (::poll(waiting, 2, -1) < 0) {
            if (errno == EINTR) continue; // of a test that was stopped and goes on
            throw std::runtime_error("poll failed");
        }
        for (int index = 0; index < 2; ++index) {
            if (waiting[index].fd < 0 || waiting[index].revents == 0) continue;
            const ssize_t count = ::read(waiting[index].fd, buffer, sizeof buffer);
            if (count > 0)
                texts[index]->append(buffer, static_cast<size_t>(count));
            else
                waiting[index].fd = -1;
        }
    }
}

Outcome Run_Shell(const std::string &line)
{
    Pipe out;
    Pipe err;
    posix_spawn_file_actions_t actions;
    ::posix_spawn_file_actions_init(&actions);
    ::posix_spawn_file_actions_adddup2(&actions, out.Ends[1], STDOUT_FILENO);
    ::posix_spawn_file_actions_adddup2(&actions, err.Ends[1], STDERR_FILENO);
    for (const int end : {out.Ends[0], out.Ends[1], err.Ends[0], err.Ends[1]})
        ::posix_spawn_file_actions_addclose(&actions, end);
    const char *words[] = {"sh", "-c", line.c_str(), nullptr};
    pid_t child = 0;
    const int failure = ::posix_spawn(&child, "/bin/sh", &actions, nullptr, const_cast<char *const *>(words), environ);
    ::posix_spawn_file_actions_destroy(&actions);
    if (failure != 0) throw std::runtime_error("the shell can't be started");
    out.Close(1);
    err.Close(1);
    Outcome outcome;
    Drain(out, outcome.Out, err, outcome.Err);
    int status = 0;
    ::waitpid(child, &status, 0);
    outcome.Code = WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
    return outcome;
}

} // namespace

Outcome Workshop::Vro(const std::vector<std::string> &arguments, const std::string &input,
                      const std::string &shell) const
{
    const MKTest::TempDirectory inputDirectory;
    const std::string inputPath = inputDirectory.Write("input", input);
    std::string line = "cd " + Quoted(Directory.Get_Path()) + " && " + shell + " " + Quoted(VRO_PROGRAM);
    for (const std::string &argument : arguments) line += " " + Quoted(argument);
    return Run_Shell(line + " < " + Quoted(inputPath));
}

std::string Workshop::Build(const std::string &name, const std::string &json, const std::string &encoding) const
{
    std::string bytes;
    std::string error;
    if (!vro::Save_Effect(*vro::Effect_From_Json(vro::Parse_Json(json)), *vro::Parse_Encoding(encoding), bytes, error))
        throw std::runtime_error(error);
    return Directory.Write(name, bytes);
}

std::string Workshop::Dump(const std::string &path)
{
    std::string error;
    const auto emitter = vro::Load_Effect(path, error);
    if (!emitter) throw std::runtime_error(path + ": " + error);
    return vro::To_Text(vro::Effect_To_Json(*emitter));
}

std::string Layer_Json(const std::string &name, const std::string &visualizer)
{
    return R"({"name": ")" + name + R"(", "spawner": {"name": "Shape"}, "transformer": {"name": "World Space"}, )" +
           R"("stomper": {"name": "Age"}, "visualizer": )" + visualizer + "}";
}

std::string Group_Json(const std::vector<std::string> &layers)
{
    std::string text;
    for (const std::string &layer : layers) text += (text.empty() ? "" : ", ") + layer;
    return R"({"renderables": [{"kind": "group", "name": "group", "layers": [)" + text + "]}]}";
}

} // namespace vroTest
