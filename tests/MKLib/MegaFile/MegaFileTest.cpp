#include "MKLib/MegaFile/MegaFile.h"

#include "common/ArchiveBuilder.h"
#include "common/Reports.h"

#include <gtest/gtest.h>

using namespace MKPlatform;
using namespace MKTest;

namespace
{

constexpr MegaFileClass::MegaFileAccess BOTH_OPEN_TYPES[] = {MegaFileClass::MEGAFILE_OPEN_FROM_DISK,
                                                             MegaFileClass::MEGAFILE_OPEN_AND_LOAD_IN_RAM};

ArchiveBuilder Small()
{
    return ArchiveBuilder().Add("DATA\\ONE.TXT", "first").Add("DATA\\EMPTY.TXT", "").Add("TWO.TXT", "0123456789");
}

std::string Content(MegaFileClass &archive, std::string_view name)
{
    const int index = archive.Find_Subfile(name);
    if (index == INVALID_SUBFILE_INDEX) return "none";
    std::string text(static_cast<size_t>(archive.Subfile_Get_Size(index)), '?');
    archive.Subfile_Seek(index, 0, FILE_SEEK_BEGIN);
    text.resize(static_cast<size_t>(archive.Subfile_Read(index, text.data(), 1000)));
    return text;
}

class MegaFile : public testing::Test
{
protected:
    bool Opens(const Bytes &bytes, MegaFileClass::MegaFileAccess openType = MegaFileClass::MEGAFILE_OPEN_FROM_DISK)
    {
        Path = Directory.Write("a.meg", bytes);
        Archive.Close();
        return Archive.Open(Path, openType);
    }

    TempDirectory Directory;
    Reports Reported;
    MegaFileClass Archive;
    std::string Path;
};

/// Walks all that an archive claims to hold.
void Read_Everything(MegaFileClass &archive, int64_t archiveSize)
{
    std::vector<uint8_t> buffer(256);
    for (int i = 0; i < archive.Get_Subfile_Count(); ++i) {
        EXPECT_LE(archive.Subfile_Get_Size(i), archiveSize);
        int64_t total = 0;
        while (const int64_t read = archive.Subfile_Read(i, buffer.data(), 256)) total += read;
        EXPECT_EQ(total, archive.Subfile_Get_Size(i));
        archive.Find_Subfile(archive.Subfile_Get_Name(i).empty() ? "x" : archive.Subfile_Get_Name(i));
    }
}

} // namespace

TEST_F(MegaFile, FindsAndReadsInBothOpenTypes)
{
    for (const auto openType : BOTH_OPEN_TYPES)
        for (const Bytes &bytes : {Small().Build(), Small().With_Prefix(1.0f).Build()}) {
            ASSERT_TRUE(Opens(bytes, openType)) << Reported.Get_Text();
            EXPECT_EQ(Archive.Get_Subfile_Count(), 3);
            EXPECT_EQ(Content(Archive, "data/one.txt"), "first");
            EXPECT_EQ(Content(Archive, "Data\\Empty.txt"), "");
            EXPECT_EQ(Content(Archive, "two.TXT"), "0123456789");
            EXPECT_EQ(Content(Archive, "THREE.TXT"), "none");
        }
    for (const auto openType : BOTH_OPEN_TYPES) {
        Directory.Write("a.megh", Small().Build_Header(0)); // a companion file
        ASSERT_TRUE(Opens(Small().Build_Data(), openType)) << Reported.Get_Text();
        EXPECT_EQ(Content(Archive, "TWO.TXT"), "0123456789");
    }
    EXPECT_TRUE(Reported.Get_Asserts().empty()) << Reported.Get_Text();
}

TEST_F(MegaFile, TheExampleOfTheFormatsPageReads)
{
    // docs/formats/archive.md explains these bytes. crc32("A\B.TXT") is 0x13537EC6.
    const Bytes example = {
        0x01, 0x00, 0x00, 0x00, 0x01, 0x00, 0x00, 0x00, 0x09, 0x00, 0x00, 0x00,                         // counts
        0x07, 0x00, 'A',  '\\', 'B',  '.',  'T',  'X',  'T',                                            // names
        0x00, 0x00, 0xC6, 0x7E, 0x53, 0x13, 0x00, 0x00, 0x00, 0x00, 0x02, 0x00, 0x00, 0x00, 0x29, 0x00, // table
        0x00, 0x00, 0x00, 0x00, 'h',  'i',                                                              // data
    };
    ASSERT_TRUE(Opens(example));
    EXPECT_EQ(Content(Archive, "a/b.txt"), "hi");
    EXPECT_EQ(ArchiveBuilder().Add("A\\B.TXT", "hi").Build(), example);
}

TEST_F(MegaFile, ReadsAreClippedAndSeeksStayInside)
{
    for (const auto openType : BOTH_OPEN_TYPES) {
        ASSERT_TRUE(Opens(Small().Build(), openType));
        const int index = Archive.Find_Subfile("TWO.TXT");
        char text[32] = {};
        EXPECT_EQ(Archive.Subfile_Seek(index, -3, FILE_SEEK_END), 7);
        EXPECT_EQ(Archive.Subfile_Read(index, text, 32), 3);
        EXPECT_STREQ(text, "789");
        EXPECT_EQ(Archive.Subfile_Tell(index), 10);
        EXPECT_EQ(Archive.Subfile_Seek(index, 1000, FILE_SEEK_CURRENT), 10);
        EXPECT_EQ(Archive.Subfile_Seek(index, -1000, FILE_SEEK_CURRENT), 0);
        EXPECT_EQ(Archive.Subfile_Get_Size(3), -1);
        EXPECT_EQ(Archive.Subfile_Read(-1, text, 1), 0);
    }
}

TEST_F(MegaFile, DamageIsRefusedWithItsReason)
{
    // The small archive: counts at 0, 4 and 8, names from 12 on (14 + 16 + 9 bytes), table entries at 51, 71 and 91.
    const Bytes good = Small().Build();
    const auto with = [&good](size_t offset, uint32_t value) {
        Bytes bytes = good;
        Put_U32(bytes, offset, value);
        return bytes;
    };
    const auto prefixed = [](uint32_t headerSize) {
        Bytes bytes = Small().With_Prefix(1).Build();
        Put_U32(bytes, 8, headerSize);
        return bytes;
    };
    const std::pair<Bytes, const char *> cases[] = {
        {with(0, 0), "name no sub-file"},
        {with(0, 0x7fffffff), "claims 2147483647 sub-files"},
        {with(4, 0xffffffff), "claims 4294967295 names"},
        {with(8, 0xfffffff0), "in 4294967280 bytes"},
        {with(4, 4), "The 4 names of "},
        {with(12, 0xffffffff), "names of "},
        {with(53, 0xffffffff), "is not sorted at entry 1"},
        {with(67, 0x00030000 | (good[68] << 8) | good[67]), "has the name 3 of 3"},
        {with(61, 0xffffffff), "but the archive has"},
        {with(65, 0xfffffff0), "but the archive has"},
        {prefixed(11), "has a header size of 11"},
        {prefixed(100), "but 37 bytes remain"},
        {Small().With_Prefix(1, 0x8FFFFFFF).Build(), "is encrypted, which is not supported"},
    };
    for (const auto &[bytes, log] : cases)
        for (const auto openType : BOTH_OPEN_TYPES) {
            Reported.Clear();
            EXPECT_FALSE(Opens(bytes, openType)) << log;
            EXPECT_TRUE(Reported.Has_Log(log) && Reported.Has_Log(Path)) << log << "\n" << Reported.Get_Text();
        }
}

TEST_F(MegaFile, AnEncryptedSubFileIsRefusedAloneAndNamed)
{
    ASSERT_TRUE(Opens(Small().Add("SECRET.TXT", "xyz", 1).Build()));
    EXPECT_EQ(Archive.Find_Subfile("secret.txt"), INVALID_SUBFILE_INDEX);
    EXPECT_TRUE(Reported.Has_Log("secret.txt in " + Path + " is encrypted, which is not supported"));
    EXPECT_EQ(Content(Archive, "DATA\\ONE.TXT"), "first");
}

TEST_F(MegaFile, NamesBeyondAsciiKeepTheirBytes)
{
    ASSERT_TRUE(Opens(ArchiveBuilder().Add("\xc3\x84RGER\\\xff.VRO", "a").Build()));
    EXPECT_EQ(Content(Archive, "\xc3\x84rger/\xff.vro"), "a");
    EXPECT_EQ(Content(Archive, "\xc3\xa4rger/\xff.vro"), "none"); // only A to Z fold
}

TEST_F(MegaFile, AnyPrefixOfAnArchiveIsRefused)
{
    for (const Bytes &good : {Small().Build(), Small().With_Prefix(2.5f).Build()}) {
        for (size_t length = 0; length < good.size(); ++length)
            for (const auto openType : BOTH_OPEN_TYPES) {
                Reported.Clear();
                EXPECT_FALSE(Opens(Bytes(good.begin(), good.begin() + static_cast<std::ptrdiff_t>(length)), openType))
                    << length;
                EXPECT_TRUE(Reported.Has_Log(Path)) << length;
            }
    }
}

TEST_F(MegaFile, AnyFlippedBitIsRefusedOrReadsInsideOfTheFile)
{
    const Bytes good = Small().With_Prefix(1).Build();
    int opened = 0;
    for (size_t bit = 0; bit < good.size() * 8; ++bit) {
        Bytes bytes = good;
        bytes[bit / 8] ^= static_cast<uint8_t>(1 << bit % 8);
        for (const auto openType : BOTH_OPEN_TYPES) {
            SCOPED_TRACE(bit);
            if (!Opens(bytes, openType)) continue;
            ++opened;
            Read_Everything(Archive, static_cast<int64_t>(good.size()));
        }
    }
    EXPECT_GT(opened, 15 * 8 * 2); // at least all flips in the 15 bytes of data
}
