#include "Tools/vro/VroProgram.h"

#include "vro/Commands.h"
#include "vro/EffectFile.h"
#include "vro/EffectJson.h"
#include "vro/JsonReading.h"

#include "MKLib/File/File.h"
#include "vrGraphics/effect/vrMKParticleEmitter.h"

#include <cstdlib>
#include <stdexcept>

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

} // namespace

Outcome Workshop::Vro(const std::vector<std::string> &arguments, const std::string &input,
                      const std::string &shell) const
{
    const MKTest::TempDirectory streams;
    const auto place = [&streams](const char *name) { return Quoted(streams / name); };
    std::string line = "cd " + Quoted(Directory.Get_Path()) + " && " + shell + " " + Quoted(VRO_PROGRAM);
    for (const std::string &argument : arguments) line += " " + Quoted(argument);
    streams.Write("in", input);
    // What the program says goes through pipes: a limit on its files isn't one on theirs.
    line = "{ { ( " + line + " < " + place("in") + " ); echo $? > " + place("code") + "; } 2>&3 | cat > " +
           place("out") + "; } 3>&1 | cat > " + place("err");
    if (std::system(line.c_str()) != 0) throw std::runtime_error("the shell can't run " + line);
    return {std::stoi(MKTest::Read_Text_File(streams / "code")), MKTest::Read_Text_File(streams / "out"),
            MKTest::Read_Text_File(streams / "err")};
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

vrPicture Load_Picture(const std::string &path)
{
    vrPicture picture;
    std::string error = "can't be opened";
    FileClass file(path);
    if (!file.Open(MKPlatform::FILE_OPEN_GENERIC_READ) || !picture.Load(file, error))
        throw std::runtime_error(path + ": " + error);
    return picture;
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
