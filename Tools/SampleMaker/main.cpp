#include "SampleMaker/OldCampfire.h"
#include "SampleMaker/PictureSheet.h"
#include "SampleMaker/ReferencePage.h"

#include "common/ArchiveBuilder.h"

#include "MKLib/File/File.h"

#include <cstdio>
#include <cstdlib>
#include <exception>
#include <string>
#include <string_view>

namespace
{

int Make_Old_Campfire(const char *path)
{
    FileClass file(path);
    if (Write_Old_Campfire(file)) return 0;
    std::fprintf(stderr, "SampleMaker: %s can't be written\n", path);
    return 1;
}

/// Each entry is NAME=FILE: the sub-file's name, and where its content is.
int Make_Archive(const char *path, char **entries, int count)
{
    MKTest::ArchiveBuilder archive;
    for (int index = 0; index < count; ++index) {
        const std::string_view entry = entries[index];
        const size_t equals = entry.find('=');
        if (equals == std::string_view::npos) {
            std::fprintf(stderr, "SampleMaker: expected NAME=FILE, found \"%s\"\n", entries[index]);
            return 2;
        }
        archive.Add(entry.substr(0, equals), MKTest::Read_Text_File(std::string(entry.substr(equals + 1))));
    }
    MKTest::Write_Whole_File(path, archive.Build());
    return 0;
}

} // namespace

int main(int argc, char **argv)
{
    try {
        const std::string_view what = argc > 2 ? argv[1] : "";
        if (what == "old-campfire" && argc == 3) return Make_Old_Campfire(argv[2]);
        if (what == "sheet" && argc > 4) return Make_Sheet(argv[2], std::atoi(argv[3]), argv + 4, argc - 4);
        if (what == "reference" && argc == 3) return MKTest::Write_Whole_File(argv[2], Make_Reference_Page()), 0;
        if (what == "archive" && argc > 3) return Make_Archive(argv[2], argv + 3, argc - 3);
    } catch (const std::exception &error) {
        std::fprintf(stderr, "SampleMaker: %s\n", error.what());
        return 1;
    }
    std::fprintf(stderr, "usage: SampleMaker old-campfire OUT.vro\n"
                         "       SampleMaker archive OUT.meg NAME=FILE...\n"
                         "       SampleMaker reference OUT.md\n"
                         "       SampleMaker sheet OUT.png COLUMNS NAME=PICTURE.png...\n");
    return 2;
}
