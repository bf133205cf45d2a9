#include "MKLib/File/File.h"

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

class FileOnDisk : public testing::Test
{
protected:
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
