#include "MKPlatform/Files.h"

#include "common/TempFiles.h"

#include <cerrno>
#include <gtest/gtest.h>
#include <sys/stat.h>

using namespace MKPlatform;
using namespace MKTest;

TEST(Files, WriteEmptiesAtOnceAndAppendGoesToTheEnd)
{
    const TempDirectory directory;
    const std::string path = directory.Write("f", "old content");
    FileHandle file = File_Open(path, FILE_OPEN_GENERIC_WRITE);
    ASSERT_NE(file, INVALID_FILE);
    EXPECT_EQ(Read_Text_File(path), "");
    EXPECT_EQ(File_Write(file, "abc", 3), 3);
    File_Close(file);

    file = File_Open(path, FILE_OPEN_WRITE_APPEND);
    EXPECT_EQ(File_Seek(file, 0, FILE_SEEK_CURRENT), 3);
    EXPECT_EQ(File_Write(file, "def", 3), 3);
    File_Close(file);
    EXPECT_EQ(Read_Text_File(path), "abcdef");
}

TEST(Files, OpensThatFailSayWhy)
{
    const TempDirectory directory;
    directory.Make_Directory("sub");
    ASSERT_EQ(mkfifo((directory / "pipe").c_str(), 0600), 0);
    const std::tuple<const char *, FileAccess, int> cases[] = {
        {"sub", FILE_OPEN_GENERIC_READ, EISDIR},
        {"pipe", FILE_OPEN_GENERIC_READ, ESPIPE}, // and doesn't block
        {"none/file", FILE_OPEN_GENERIC_WRITE, ENOENT},
    };
    int error = 0;
    for (const auto &[name, access, expected] : cases) {
        EXPECT_EQ(File_Open(directory / name, access, &error), INVALID_FILE) << name;
        EXPECT_EQ(error, expected) << Error_Text(error);
    }
    EXPECT_EQ(File_Open(std::string_view("a\0b", 3), FILE_OPEN_GENERIC_WRITE, &error), INVALID_FILE);
    EXPECT_EQ(error, EINVAL);
}

TEST(Files, TheReadOnlyAttributeHoldsForEveryUser)
{
    const TempDirectory directory;
    const std::string path = directory.Write("f", "kept");
    EXPECT_FALSE(File_Is_Read_Only(path));
    ASSERT_EQ(chmod(path.c_str(), 0444), 0);
    EXPECT_TRUE(File_Is_Read_Only(path));
    int error = 0;
    EXPECT_EQ(File_Open(path, FILE_OPEN_WRITE_APPEND, &error), INVALID_FILE);
    EXPECT_EQ(error, EACCES);
    EXPECT_EQ(Read_Text_File(path), "kept");
}

TEST(Files, SharingFollowsTheModes)
{
    const TempDirectory directory;
    const std::string path = directory.Write("f", "data");
    const std::tuple<FileAccess, FileAccess, bool> cases[] = {
        {FILE_OPEN_GENERIC_READ, FILE_OPEN_GENERIC_READ, true},
        {FILE_OPEN_GENERIC_READ, FILE_OPEN_WRITE_APPEND, true},
        {FILE_OPEN_WRITE_APPEND, FILE_OPEN_GENERIC_READ, true},
        {FILE_OPEN_WRITE_APPEND, FILE_OPEN_GENERIC_WRITE, false},
    };
    for (const auto &[firstAccess, secondAccess, shared] : cases) {
        SCOPED_TRACE(testing::Message() << firstAccess << " then " << secondAccess);
        const FileHandle first = File_Open(path, firstAccess);
        ASSERT_NE(first, INVALID_FILE);
        const FileHandle second = File_Open(path, secondAccess);
        EXPECT_EQ(second != INVALID_FILE, shared);
        EXPECT_EQ(Read_Text_File(path), "data"); // a refused writer has emptied nothing
        if (second != INVALID_FILE) File_Close(second);
        File_Close(first);
    }
}
