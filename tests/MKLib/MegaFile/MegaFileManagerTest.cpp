#include "MKLib/MegaFile/MegaFileManager.h"

#include "common/ArchiveBuilder.h"
#include "common/EmitterBuilder.h"
#include "common/Reports.h"

#include <atomic>
#include <filesystem>
#include <gtest/gtest.h>
#include <thread>

using namespace MKPlatform;
using namespace MKTest;

namespace
{

constexpr auto FROM_DISK = MegaFileClass::MEGAFILE_OPEN_FROM_DISK;
constexpr auto IN_RAM = MegaFileClass::MEGAFILE_OPEN_AND_LOAD_IN_RAM;
constexpr auto PRIVATE = MegaFileManagerClass::ACCESS_PRIVATE;

std::string Read_All(FileClass &file)
{
    std::string text(static_cast<size_t>(file.Get_Size()) + 1, '?');
    text.resize(static_cast<size_t>(file.Read(text.data(), static_cast<int64_t>(text.size()))));
    return text;
}

std::string Content(std::string_view name)
{
    FileClass file;
    return file.Open(name, FILE_OPEN_GENERIC_READ) ? Read_All(file) : "not opened";
}

/// The manager is in place, and the current directory is a fresh one.
class Archives : public testing::Test
{
protected:
    Archives() : Here(Directory.Get_Path()) { TheMegaFileManager = &Manager; }
    ~Archives() override
    {
        Manager.Close_All();
        TheMegaFileManager = nullptr;
    }

    int Add(const char *name, const ArchiveBuilder &builder, MegaFileClass::MegaFileAccess openType = FROM_DISK)
    {
        Directory.Write(name, builder.Build());
        return Manager.Megafile_Add(name, openType, MegaFileManagerClass::ACCESS_PUBLIC);
    }

    Reports Reported;
    TempDirectory Directory;
    CurrentDirectory Here;
    MegaFileManagerClass Manager;
};

} // namespace

TEST_F(Archives, DiskComesFirstAndTheArchiveSecond)
{
    Add("a.meg", ArchiveBuilder().Add("ART\\FIRE.VRO", "archived").Add("ART\\EMPTY.VRO", ""));
    EXPECT_EQ(Content("art/fire.VRO") + Content("Art/Empty.vro"), "archived");
    Directory.Write("Art/Fire.vro", "on disk");
    EXPECT_EQ(Content("Art\\Fire.vro"), "on disk");
}

TEST_F(Archives, SubFilesOfOneArchiveAreReadInTurns)
{
    for (const auto openType : {FROM_DISK, IN_RAM}) {
        Manager.Close_All();
        Add("a.meg", ArchiveBuilder().Add("ONE", "abcdef").Add("TWO", "123456"), openType);
        FileClass one("one"), two("two"), oneAgain("one");
        for (FileClass *file : {&one, &two, &oneAgain}) ASSERT_TRUE(file->Open(FILE_OPEN_GENERIC_READ));
        std::string read;
        for (int i = 0; i < 6; ++i)
            for (FileClass *file : {&one, &two, &oneAgain}) {
                read += '?';
                ASSERT_EQ(file->Read(&read.back(), 1), 1);
            }
        EXPECT_EQ(read, "a1ab2bc3cd4de5ef6f");
        EXPECT_EQ(two.Seek(-2, FILE_SEEK_END), 4);
        EXPECT_EQ(one.Tell(), 6);
    }
}

TEST_F(Archives, OneInMemoryServesAfterItsFileIsGone)
{
    Add("ram.meg", ArchiveBuilder().Add("X", "in memory"), IN_RAM);
    Add("disk.meg", ArchiveBuilder().Add("Y", "first").Add("Z", "second"));
    FileClass y("y"), z("z");
    ASSERT_TRUE(y.Open(FILE_OPEN_GENERIC_READ));
    std::filesystem::remove("ram.meg");
    std::filesystem::remove("disk.meg");
    EXPECT_EQ(Content("X"), "in memory");
    // The open archive still reads, and where a second file object on it can't be had the first one does.
    ASSERT_TRUE(z.Open(FILE_OPEN_GENERIC_READ));
    EXPECT_EQ(Read_All(z), "second");
    EXPECT_EQ(Read_All(y), "first");
}

TEST_F(Archives, ASubFileIsAFileUntilItsArchiveEnds)
{
    const int handle = Add("a.meg", ArchiveBuilder().Add("X", "0123456789"));
    FileClass file("x");
    EXPECT_FALSE(file.Open(FILE_OPEN_EXCLUSIVE_READ)); // archives serve plain reads alone
    ASSERT_TRUE(file.Open(FILE_OPEN_GENERIC_READ));
    EXPECT_EQ(file.Write("x", 1), -1);
    EXPECT_TRUE(Manager.Megafile_Remove(handle));
    char byte;
    EXPECT_EQ(file.Read(&byte, 1), 0);
    EXPECT_EQ(file.Get_Size() + file.Seek(0, FILE_SEEK_BEGIN), -2);
}

TEST_F(Archives, TheXmlListAddsInOrder)
{
    Directory.Write("Data/MegaFiles.xml", "<?xml version=\"1.0\"?><Mega_Files><File>Data\\Art.meg</File><File></File>"
                                          "<File>Data\\Gone.meg</File><File>Data/Text.meg</File></Mega_Files>");
    const Bytes inner = ArchiveBuilder().Add("DEEP", "deep").Build(); // isn't looked for inside of archives
    const std::string innerText(inner.begin(), inner.end());
    Directory.Write("Data/Art.meg", ArchiveBuilder().Add("X", "art").Add("DATA\\GONE.MEG", innerText).Build());
    Directory.Write("Data/Text.meg", ArchiveBuilder().Add("X", "text").Build());
    ASSERT_TRUE(Manager.Load_Default_Mega_Files(FROM_DISK));
    EXPECT_EQ(Content("X"), "art");
    EXPECT_EQ(Reported.Count_Logs("can't add"), 1) << Reported.Get_Text();
}

TEST_F(Archives, TheChunkListServesWhereTheXmlListFails)
{
    Directory.Write("Data/MegaFiles.xml", "<Mega_Files><File>Data\\A.meg</File>"); // never closed
    Directory.Write("Data/A.meg", ArchiveBuilder().Add("X", "from a").Build());
    Directory.Write("Data/B.meg", ArchiveBuilder().Add("X", "from b").Build());
    const Chunk list = Parent(0, {Leaf(1, "Data\\B.meg"), Leaf(1, ""), Leaf(1, "Data\\A.meg")});
    Directory.Write("Data/MegaFiles.chk", Build(list, 129));
    ASSERT_TRUE(Manager.Load_Default_Mega_Files(IN_RAM));
    EXPECT_EQ(Content("X"), "from b");
    EXPECT_TRUE(Reported.Has_Log("XMLDatabase - Data\\MegaFiles.xml is refused: "));
}

TEST_F(Archives, ThreadsShareTheManager)
{
    Add("a.meg", ArchiveBuilder().Add("ONE", std::string(3000, '1')).Add("TWO", std::string(3000, '2')));
    std::atomic<int> faults{0};
    const auto work = [&faults](const char *name, char expected) {
        for (int i = 0; i < 200; ++i)
            if (Content(name) != std::string(3000, expected)) ++faults;
    };
    // Adds take the manager's lock and then open a file, reads come through a file to the manager.
    std::thread other([&work] { work("one", '1'); });
    std::thread another([&work] { work("two", '2'); });
    for (int i = 0; i < 50; ++i) Manager.Megafile_Remove(Manager.Megafile_Add("a.meg", FROM_DISK, PRIVATE));
    other.join();
    another.join();
    EXPECT_EQ(faults, 0);
}
