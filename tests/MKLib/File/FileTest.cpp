#include "MKLib/File/File.h"

#include "MKLib/File/FileCache.h"
#include "common/Reports.h"
#include "common/TempFiles.h"

#include <gtest/gtest.h>

using namespace MKPlatform;
using namespace MKTest;

namespace
{

std::string Read_All(FileClass &file)
{
    std::string text(static_cast<size_t>(file.Get_Size()), '\0');
    text.resize(static_cast<size_t>(file.Read(text.data(), static_cast<int64_t>(text.size()) + 1)));
    return text;
}

std::vector<uint8_t> Bytes_Of(std::string_view text)
{
    return {text.begin(), text.end()};
}

/// The disk-only set grows for the life of the process, so each test takes a name of its own.
class FileOnDisk : public testing::Test
{
protected:
    void TearDown() override
    {
        FileCacheClass::Clear();
        FileCacheClass::Set_Verifying(false);
        FileClass::Set_Data_Roots({});
    }

    TempDirectory Directory;
    Reports Reported;
};

} // namespace

TEST_F(FileOnDisk, OpensANameThatIsAPartOfItsOwn)
{
    Directory.Write("fire", "short");
    FileClass file(Directory.Write("fire.vro", "long"));
    const std::string_view own = file.Get_Name();
    ASSERT_TRUE(file.Open(own.substr(0, own.size() - 4), FILE_OPEN_GENERIC_READ));
    EXPECT_EQ(Read_All(file), "short");
    EXPECT_EQ(std::string_view(file.Get_Name()), Directory / "fire");
}

TEST_F(FileOnDisk, ViolatedPreconditionsAreReportedAndLeaveItAsItWas)
{
    char byte = 0;
    EXPECT_FALSE(FileClass().Open(FILE_OPEN_GENERIC_READ));
    FileClass file(Directory.Write("a", "first"));
    EXPECT_FALSE(file.Open(FILE_OPEN_INVALID) || file.Open(FILE_OPEN_TOTAL));
    EXPECT_EQ(file.Seek(0, FILE_SEEK_BEGIN) + file.Get_Size(), -2);
    EXPECT_EQ(file.Read(&byte, 1), 0);
    EXPECT_EQ(file.Write(&byte, 1), -1);
    ASSERT_TRUE(file.Open(FILE_OPEN_GENERIC_READ));
    Reported.Clear();
    EXPECT_FALSE(file.Open(Directory.Write("b", "second"), FILE_OPEN_GENERIC_READ));
    EXPECT_EQ(file.Read(nullptr, 1), 0);
    EXPECT_EQ(file.Write(&byte, 1), -1);
    EXPECT_EQ(Reported.Get_Asserts().size(), 3u) << Reported.Get_Text();
    EXPECT_EQ(Read_All(file), "first");
    EXPECT_FALSE(FileClass().Open(Directory / "none/file", FILE_OPEN_GENERIC_WRITE));
    EXPECT_TRUE(Reported.Has_Log("write. File: " + (Directory / "none/file") + " , error code 2 - "));
}

TEST_F(FileOnDisk, DiskOnlyDataNamesAreLookedForUnderTheRootsFirst)
{
    Directory.Write("mod/Data/Roots.lst", "from mod");
    Directory.Write("base/Data/Roots.lst", "from base");
    Directory.Write("base/Data/Base.lst", "only in base");
    Directory.Write("here/Data/Roots.lst", "plain");
    Directory.Write("here/Data/Base.lst", "plain base");
    const CurrentDirectory here(Directory / "here");
    FileClass::Set_Data_Roots({MK::String(Directory / "mod"), MK::String(Directory / "base")});
    const std::pair<const char *, const char *> cases[] = {
        {"Data\\Roots.lst", "from mod"},
        {"./data/ROOTS.lst", "from mod"},
        {"Data\\Base.lst", "only in base"},
        {"..\\here\\Data\\Roots.lst", "plain"},
    };
    const auto read = [](const char *name) {
        FileClass file;
        return file.Open(name, FILE_OPEN_GENERIC_READ) ? Read_All(file) : "not opened";
    };
    EXPECT_EQ(read("Data\\Roots.lst"), "plain"); // not in the set yet
    FileClass::Add_Disk_Only_File("Some\\Where\\roots.LST");
    FileClass::Add_Disk_Only_File("Base.lst");
    for (const auto &[name, text] : cases) EXPECT_EQ(read(name), text) << name;
    FileClass::Set_Data_Roots({});
    EXPECT_EQ(read("Data\\Roots.lst"), "plain");
}

TEST_F(FileOnDisk, TheCacheStandsInFrontOfTheDisk)
{
    const CurrentDirectory here(Directory.Get_Path());
    Directory.Write("Art/fire.vro", "on disk");
    FileCacheClass::Add(".\\Art\\Fire.vro", Bytes_Of("in the cache"));
    FileClass file("art/fire.VRO");
    ASSERT_TRUE(file.Open(FILE_OPEN_GENERIC_READ));
    EXPECT_EQ(file.Get_Size(), 12);
    FileCacheClass::Clear(); // an open file keeps its bytes
    EXPECT_EQ(Read_All(file), "in the cache");
    EXPECT_EQ(file.Seek(-5, FILE_SEEK_END), 7);
    EXPECT_EQ(file.Seek(100, FILE_SEEK_CURRENT), 12);
    EXPECT_EQ(file.Write("x", 1), -1);
    file.Close();
    FileCacheClass::Add("Art\\Fire.vro", Bytes_Of("once more"));
    ASSERT_TRUE(file.Open(FILE_OPEN_WRITE_APPEND)); // the cache is for reading
    EXPECT_EQ(file.Write("!", 1), 1);
    file.Close();
    FileCacheClass::Set_Enabled(false);
    ASSERT_TRUE(file.Open(FILE_OPEN_GENERIC_READ));
    FileCacheClass::Set_Enabled(true);
    EXPECT_EQ(Read_All(file), "on disk!");
}

TEST_F(FileOnDisk, AVerifiedCacheTellsWhereItDiffersFromTheFile)
{
    const std::string path = Directory.Write("f", "0123456789");
    FileCacheClass::Set_Verifying(true);
    FileCacheClass::Add(path, Bytes_Of("0123"));
    char text[16];
    FileClass file(path);
    ASSERT_TRUE(file.Open(FILE_OPEN_GENERIC_READ));
    EXPECT_EQ(file.Read(text, 2), 2);
    EXPECT_EQ(file.Read(text, 6), 2);
    EXPECT_TRUE(Reported.Has_Log("PARTIAL READ - FileCache->Read Requested 6 bytes, cache read 2, file read 6"));
}

TEST_F(FileOnDisk, ChecksumsAreThoseOfZlib)
{
    // "123456789" gives CBF43926, the check value that the CRC-32's definition comes with.
    const std::string path = Directory.Write("f", "123456789");
    EXPECT_EQ(Get_File_CRC(path, 0), 0xCBF43926u);
    EXPECT_TRUE(Reported.Has_Log("CRC: CBF43926 - " + path));
    EXPECT_EQ(Get_File_CRC(Directory.Write("empty", ""), 77), 0u);
    EXPECT_EQ(Get_File_CRC(Directory / "none", 0), 0u);
    EXPECT_TRUE(Reported.Has_Assert("file.Open() == false"));
    // The seed continues a checksum, here over one byte more than is read at a time.
    const std::string big(16 << 20, 'h');
    const uint32_t head = Get_File_CRC(Directory.Write("head", big), 0);
    const uint32_t whole = Get_File_CRC(Directory.Write("tail", "t"), head);
    EXPECT_EQ(Get_File_CRC(Directory.Write("whole", big + "t"), 0), whole);
}
