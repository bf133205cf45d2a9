#include "MKLib/File/RAMFile.h"

#include "common/Reports.h"

#include <gtest/gtest.h>

using namespace MKPlatform;

TEST(RAMFile, WrittenBytesReadBackFromTheStartAfterClosing)
{
    MKTest::Reports reports; // a closed file's reads and writes are told
    RAMFileClass file;
    ASSERT_TRUE(file.Open(FILE_OPEN_GENERIC_WRITE));
    EXPECT_EQ(file.Write("abcdef", 6), 6);
    EXPECT_EQ(file.Seek(1, FILE_SEEK_BEGIN), 1);
    EXPECT_EQ(file.Write("XY", 2), 2);
    file.Close();
    char text[16] = {};
    EXPECT_EQ(file.Get_Size(), -1);
    EXPECT_EQ(file.Read(text, 1), 0);
    EXPECT_EQ(file.Write(text, 1), -1);
    ASSERT_TRUE(file.Open(FILE_OPEN_GENERIC_READ));
    EXPECT_EQ(file.Read(text, 16), 6);
    EXPECT_STREQ(text, "aXYdef");
    file.Close();
    ASSERT_TRUE(file.Open(FILE_OPEN_WRITE_APPEND));
    EXPECT_EQ(file.Tell(), 6);
    file.Close();
    ASSERT_TRUE(file.Open(FILE_OPEN_GENERIC_WRITE));
    EXPECT_EQ(file.Get_Size(), 0);
}

TEST(RAMFile, ThePositionStaysInsideOfABorrowedBlock)
{
    MKTest::Reports reports;
    RAMFileClass file("0123456789", 10);
    ASSERT_TRUE(file.Open(FILE_OPEN_GENERIC_READ));
    const std::tuple<int64_t, FileSeekOrigin, int64_t> moves[] = {
        {4, FILE_SEEK_BEGIN, 4},           {-1, FILE_SEEK_CURRENT, 3},         {-2, FILE_SEEK_END, 8},
        {99, FILE_SEEK_BEGIN, 10},         {-99, FILE_SEEK_CURRENT, 0},        {1, FILE_SEEK_END, 10},
        {INT64_MIN, FILE_SEEK_CURRENT, 0}, {INT64_MAX, FILE_SEEK_CURRENT, 10}, {0, FILE_SEEK_TOTAL, -1},
    };
    EXPECT_EQ(file.Write("x", 1), -1) << "a borrowed block is only read";
    file.Close();
    EXPECT_FALSE(file.Open(FILE_OPEN_GENERIC_WRITE) || file.Open(FILE_OPEN_WRITE_APPEND));
    ASSERT_TRUE(file.Open(FILE_OPEN_GENERIC_READ));
    EXPECT_FALSE(file.Open(FILE_OPEN_GENERIC_READ)) << "already open";
    for (const auto &[offset, origin, position] : moves) EXPECT_EQ(file.Seek(offset, origin), position) << offset;
}
