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

TEST(Files, ReadsSeeksAndMeasures)
{
    const TempDirectory directory;
    const FileHandle file = File_Open(directory.Write("f", "0123456789"), FILE_OPEN_GENERIC_READ);
    char text[16] = {};
    EXPECT_EQ(File_Size(file), 10);
    EXPECT_EQ(File_Seek(file, -3, FILE_SEEK_END), 7);
    EXPECT_EQ(File_Read(file, text, 16), 3);
    EXPECT_STREQ(text, "789");
    EXPECT_EQ(File_Seek(file, -1, FILE_SEEK_BEGIN), -1);
    EXPECT_EQ(File_Seek(file, 0, FILE_SEEK_INVALID), -1);
    File_Close(file);
}

TEST(Files, OpensThatFailSayWhy)
{
    const TempDirectory directory;
    directory.Make_Directory("sub");
    ASSERT_EQ(mkfifo((directory / "pipe").c_str(), 0600), 0);
    const struct
    {
        const char *what, *name;
        FileAccess access;
        int error;
    } cases[] = {
        {"missing", "none", FILE_OPEN_GENERIC_READ, ENOENT},
        {"a directory, read", "sub", FILE_OPEN_GENERIC_READ, EISDIR},
        {"a pipe must not block", "pipe", FILE_OPEN_GENERIC_READ, ESPIPE},
        {"a missing directory", "none/file", FILE_OPEN_GENERIC_WRITE, ENOENT},
        {"no access", "file", FILE_OPEN_INVALID, EINVAL},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.what);
        int error = 0;
        EXPECT_EQ(File_Open(directory / c.name, c.access, &error), INVALID_FILE);
        EXPECT_EQ(error, c.error) << Error_Text(error);
    }
    int error = 0;
    EXPECT_EQ(File_Open(std::string_view("a\0b", 3), FILE_OPEN_GENERIC_WRITE, &error), INVALID_FILE);
    EXPECT_EQ(error, EINVAL);
}

TEST(Files, TheReadOnlyAttributeHoldsForEveryUser)
{
    const TempDirectory directory;
    const std::string path = directory.Write("f", "kept");
    EXPECT_FALSE(File_Is_Read_Only(path));
    EXPECT_FALSE(File_Is_Read_Only(directory / "none"));
    ASSERT_EQ(chmod(path.c_str(), 0444), 0);
    EXPECT_TRUE(File_Is_Read_Only(path));
    for (const FileAccess access : {FILE_OPEN_GENERIC_WRITE, FILE_OPEN_WRITE_APPEND, FILE_OPEN_EXCLUSIVE_WRITE}) {
        int error = 0;
        EXPECT_EQ(File_Open(path, access, &error), INVALID_FILE) << access;
        EXPECT_EQ(error, EACCES);
    }
    EXPECT_EQ(Read_Text_File(path), "kept");
}

TEST(Files, SharingFollowsTheModes)
{
    const TempDirectory directory;
    const std::string path = directory.Write("f", "data");
    const struct
    {
        FileAccess first, second;
        bool shared;
    } cases[] = {
        {FILE_OPEN_GENERIC_READ, FILE_OPEN_GENERIC_READ, true},
        {FILE_OPEN_GENERIC_READ, FILE_OPEN_WRITE_APPEND, true},
        {FILE_OPEN_WRITE_APPEND, FILE_OPEN_GENERIC_READ, true},
        {FILE_OPEN_WRITE_APPEND, FILE_OPEN_GENERIC_WRITE, false},
        {FILE_OPEN_EXCLUSIVE_READ, FILE_OPEN_GENERIC_READ, false},
        {FILE_OPEN_GENERIC_READ, FILE_OPEN_EXCLUSIVE_READ, false},
        {FILE_OPEN_WRITE_APPEND, FILE_OPEN_EXCLUSIVE_WRITE, false},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(testing::Message() << c.first << " then " << c.second);
        const FileHandle first = File_Open(path, c.first);
        ASSERT_NE(first, INVALID_FILE);
        const FileHandle second = File_Open(path, c.second);
        EXPECT_EQ(second != INVALID_FILE, c.shared);
        if (!c.shared) {
            EXPECT_EQ(Read_Text_File(path), "data"); // a refused writer has emptied nothing
        }
        if (second != INVALID_FILE) File_Close(second);
        File_Close(first);
    }
}
