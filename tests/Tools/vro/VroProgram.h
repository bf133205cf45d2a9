#pragma once

#include "MKLib/RefCount.h"
#include "common/TempFiles.h"
#include "vrGraphics/drivercommon/vrPicture.h"

#include <string>
#include <vector>

class vrMKParticleEmitter;

namespace vroTest
{

/// What a run of the program left behind.
struct Outcome
{
    int Code = -1; ///< its exit code; beyond 128 a signal ended it
    std::string Out;
    std::string Err;
};

/// A directory to work in, and the real program run there by a shell.
class Workshop
{
public:
    /// Runs `vro` with these arguments, each taken as it stands. `input` is what it reads; `shell` goes before the
    /// program in the shell's line, such as "PATH=$PWD:$PATH" or "ulimit -f 0;".
    Outcome Vro(const std::vector<std::string> &arguments, const std::string &input = "",
                const std::string &shell = "") const;

    /// Builds an emitter file from JSON, apart from the program, and gives its path.
    std::string Build(const std::string &name, const std::string &json, const std::string &encoding = "zlib") const;
    /// The effect of an emitter file as JSON text, apart from the program.
    static std::string Dump(const std::string &path);

    MKTest::TempDirectory Directory;
};

/// Throws when it isn't a picture's.
vrPicture Load_Picture(const std::string &path);

/// One layer of a working directory's emitter.
std::string Layer_Json(const std::string &name, const std::string &visualizer);
std::string Group_Json(const std::vector<std::string> &layers);

} // namespace vroTest
