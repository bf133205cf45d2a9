#include "MKPlatform/Paths.h"

#include <gtest/gtest.h>

using namespace MKPlatform;

TEST(Paths, SplitsAtBothSeparators)
{
    const struct
    {
        const char *path, *directory, *name, *base, *extension;
    } cases[] = {
        {"Data\\Art/fire.vro", "Data\\Art", "fire.vro", "fire", ".vro"},
        {"fire.old.vro", "", "fire.old.vro", "fire.old", ".vro"},
        {"dir.d/name", "dir.d", "name", "name", ""},
        {"dir/", "dir", "", "", ""},
        {"/name", "", "name", "name", ""},
        {"", "", "", "", ""},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.path);
        EXPECT_EQ(Path_Directory(c.path), c.directory);
        EXPECT_EQ(Path_File_Name(c.path), c.name);
        EXPECT_EQ(Path_Base_Name(c.path), c.base);
        EXPECT_EQ(Path_Extension(c.path), c.extension);
    }
}
