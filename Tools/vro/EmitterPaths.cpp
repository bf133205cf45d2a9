#include "vro/EmitterPaths.h"

#include "vrGraphics/effect/vrMKParticleEmitter.h"

#include "MKLib/ChunkFile/ChunkFileReader.h"
#include "MKLib/File/File.h"
#include "MKLib/MKString.h"

#include <algorithm>
#include <filesystem>

namespace vro
{

namespace
{

namespace fs = std::filesystem;

/// Models have the same extension. What can't be read counts as an emitter, so that it is told.
bool Holds_Other_Asset(const std::string &path)
{
    FileClass file(path);
    ChunkFileReaderClass reader(&file);
    return reader.Open_Chunk() && reader.Cur_Chunk_ID() != VR_CHUNK_MKPEMITTER;
}

bool Add_Directory(const std::string &directory, std::vector<std::string> &files, std::string &error)
{
    std::error_code failure;
    std::vector<std::string> found;
    fs::recursive_directory_iterator entry(directory, failure);
    for (const fs::recursive_directory_iterator end; !failure && entry != end; entry.increment(failure)) {
        const std::string path = entry->path().string();
        std::error_code ignored;
        if (MK::Equal_Ignoring_Case(entry->path().extension().string(), ".vro") && entry->is_regular_file(ignored) &&
            !Holds_Other_Asset(path))
            found.push_back(path);
    }
    if (failure)
        error = failure.message();
    else if (found.empty())
        error = "the directory holds no emitter file (*.vro)";
    std::sort(found.begin(), found.end());
    files.insert(files.end(), found.begin(), found.end());
    return error.empty();
}

} // namespace

bool Expand_Paths(const std::vector<std::string> &paths, std::vector<std::string> &files, std::string &failed,
                  std::string &error)
{
    for (const std::string &path : paths) {
        std::error_code ignored;
        if (!fs::is_directory(path, ignored)) {
            files.push_back(path);
        } else if (!Add_Directory(path, files, error)) {
            failed = path;
            return false;
        }
    }
    return true;
}

} // namespace vro
