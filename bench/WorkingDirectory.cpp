#include "WorkingDirectory.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <fstream>

namespace fs = std::filesystem;

namespace
{

/// The plain zlib form, which the limit can read without an engine.
bool Is_Plain_Zlib(const fs::path &path)
{
    std::ifstream file(path, std::ios::binary);
    char header[5] = {};
    file.read(header, sizeof header);
    return file && header[0] == 'C' && header[1] == 'H' && header[4] == 1;
}

} // namespace

WorkingDirectory::WorkingDirectory(const fs::path &samples, int count)
{
    std::string pattern = (fs::temp_directory_path() / "flaretrim-bench-XXXXXX").string();
    if (!mkdtemp(pattern.data())) std::abort();
    Path = pattern;
    const fs::path models = Path / "Art" / "Models";
    fs::create_directories(models);
    fs::create_directories(Path / "Run");

    std::vector<fs::path> sources;
    for (const auto &entry : fs::directory_iterator(samples / "Art" / "Models"))
        if (entry.path().extension() == ".vro" && Is_Plain_Zlib(entry.path())) sources.push_back(entry.path());
    std::sort(sources.begin(), sources.end());
    if (sources.empty()) {
        std::fprintf(stderr, "%s: no samples\n", samples.c_str());
        std::exit(1);
    }
    for (int index = 0; index < count; ++index) {
        const fs::path &source = sources[static_cast<size_t>(index) % sources.size()];
        char number[16];
        std::snprintf(number, sizeof number, "_%05d.vro", index);
        const fs::path target = models / (source.stem().string() + number);
        fs::copy_file(source, target);
        Files.push_back(target.string());
    }
}

WorkingDirectory::~WorkingDirectory()
{
    std::error_code ignored;
    fs::remove_all(Path, ignored);
}
