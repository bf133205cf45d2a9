#include "vrGraphics/drivercommon/vrGraphicsDriver.h"

#include "common/Reports.h"
#include "vrGraphics/drivercommon/PictureFiles.h"
#include "vrGraphics/drivercommon/vrGraphicsStats.h"
#include "vrGraphics/nulldriver/vrNullDriverMethods.h"

#include <gmock/gmock.h>

#include <cmath>

using namespace MKTest;
using testing::HasSubstr;

namespace
{

Bytes Grey_Tga(int width, int height)
{
    return Tga_Header(3, width, height, 8, 0x20) + Bytes(static_cast<size_t>(width * height), 9);
}

/// The null driver with two folders of textures.
class Driver : public testing::Test
{
protected:
    Driver()
    {
        Directory.Make_Directory("first");
        Directory.Make_Directory("second");
        vrGraphicsDriver::Clear_Texture_Path();
        vrGraphicsDriver::Add_Texture_Path(Directory / "first");
        vrGraphicsDriver::Add_Texture_Path((Directory / "second") + "\\");
        vrNullDriverMethods::Init(nullptr, 640, 480);
    }
    ~Driver() override
    {
        vrNullDriverMethods::Shutdown();
        vrGraphicsDriver::Clear_Texture_Path();
    }
    /// The width of what was loaded, which tells the files apart; 0 for nothing.
    static int Width_Of(std::string_view name)
    {
        const SmartPtr<vrTexture> texture = TheGraphicsDriver->Load_Texture(name);
        return texture ? texture->Get_Width() : 0;
    }

    TempDirectory Directory;
    Reports Told;
};

} // namespace

TEST_F(Driver, TexturesAreFoundInTheOrderOfTheFolders)
{
    Directory.Write("first/a.tga", Grey_Tga(1, 1));
    Directory.Write("second/a.tga", Grey_Tga(2, 1));
    Directory.Write("second/B.TGA", Grey_Tga(3, 1));
    Directory.Write("first/c.dds", Dds_Header(4, 4, 1, "DXT1") + Bytes(8));
    Directory.Write("second/c.tga", Grey_Tga(5, 1));
    Directory.Write("second/d.dds", Dds_Header(8, 4, 1, "DXT1") + Bytes(16));
    Directory.Write("second/e.png", Grey_Tga(9, 1)); // by what it holds, whatever its name
    Directory.Write("second/sub/f.tga", Grey_Tga(10, 1));
    const struct
    {
        const char *what;
        const char *name;
        int width;
    } rows[] = {
        {"the first folder wins", "a.tga", 1},
        {"letters match in either case", "b.tga", 3},
        {"the name in any folder goes before another extension", "c.tga", 5},
        {"a .dds stands for a .tga", "d.tga", 8},
        {"a .png stands for a .dds", "e.dds", 9},
        {"a name without an extension", "d", 8},
        {"a folder inside of the folders", "sub/f.tga", 10},
        {"out of the folders", "..\\second\\a.tga", 0},
        {"out of them from inside", "sub\\../..\\second\\a.tga", 0},
    };
    for (const auto &row : rows) EXPECT_EQ(Width_Of(row.name), row.width) << row.what;
    EXPECT_EQ(Width_Of(Directory / "first/a.tga"), 0) << "from the root";
}

TEST_F(Driver, AMissingTextureIsToldOnceUntilThePathsChange)
{
    EXPECT_EQ(Width_Of("gone.tga"), 0);
    EXPECT_EQ(Width_Of("GONE.tga"), 0);
    EXPECT_EQ(Told.Count_Logs("VorenMissingTexturesLog: Missing texture: gone.tga is in none of the 2 texture folders"),
              1);
    Directory.Write("third/gone.tga", Grey_Tga(6, 1));
    vrGraphicsDriver::Add_Texture_Path(Directory / "third");
    EXPECT_EQ(Width_Of("gone.tga"), 6);
}

TEST_F(Driver, ADamagedTextureIsMissingAndSaysWhy)
{
    Directory.Write("first/cut.dds", Dds_Header(4, 4, 1, "DXT1") + Bytes(7));
    EXPECT_EQ(Width_Of("cut.tga"), 0);
    ASSERT_EQ(Told.Count_Logs("VorenMissingTexturesLog"), 1) << Told.Get_Text();
    EXPECT_THAT(Told.Get_Text(), HasSubstr("cut.dds can't be used: the file ends early: 1 levels take 8 bytes, 7"));
}

TEST_F(Driver, OneNameIsOneTextureUntilItIsFreed)
{
    Directory.Write("first/a.tga", Grey_Tga(1, 1));
    SmartPtr<vrTexture> held = TheGraphicsDriver->Load_Texture("a.tga");
    EXPECT_EQ(TheGraphicsDriver->Load_Texture("A.TGA"), held);
    TheGraphicsDriver->Free_Unused_Textures();
    EXPECT_EQ(TheGraphicsDriver->Load_Texture("a.tga"), held);
    Directory.Write("first/a.tga", Grey_Tga(2, 1));
    held = nullptr;
    EXPECT_EQ(Width_Of("a.tga"), 1);
    TheGraphicsDriver->Free_Unused_Textures();
    EXPECT_EQ(Width_Of("a.tga"), 2);
}

TEST_F(Driver, StatisticsStandUntilSomethingNewWasCounted)
{
    vrGraphicsStats::Get_Stats(true);
    vrGraphicsStats::ParticlesSimulated += 7;
    vrGraphicsStats::Renders += 1;
    EXPECT_EQ(vrGraphicsStats::Get_Stats(true).ParticlesSimulated, 7);
    EXPECT_EQ(vrGraphicsStats::Get_Stats(true).ParticlesSimulated, 7) << "the second reading of a tick";
    vrGraphicsStats::Renders += 1;
    EXPECT_EQ(vrGraphicsStats::Get_Stats(true).ParticlesSimulated, 0);
}

TEST(DriverStatics, GammaMakesTheTablesOfBothWays)
{
    const Reports reports;
    vrGraphicsDriver::Set_Gamma(2.0f);
    const auto square = [](float channel) { return vrGraphicsDriver::Get_Gamma_Table(0).Convert(channel); };
    EXPECT_EQ(square(512.49f / 1024.0f), 0.25f); // the nearest of 1024 steps
    EXPECT_EQ(square(512.51f / 1024.0f), 513.0f * 513.0f / (1024.0f * 1024.0f));
    EXPECT_EQ(square(INFINITY), 1.0f);
    EXPECT_EQ(square(-0.5f), 0.0f);
    EXPECT_EQ(square(std::nanf("")), 0.0f);
    EXPECT_EQ(vrGraphicsDriver::Get_Gamma_Table(0).Convert({0.5f, 1.0f, 0.0f, 3.0f}),
              (RGBAClass{0.25f, 1.0f, 0.0f, 3.0f}));
    EXPECT_EQ(vrGraphicsDriver::Get_Gamma_Table(1).Convert(0.25f), 0.5f);
    for (const float exponent : {0.0f, -1.0f, std::nanf("")}) {
        vrGraphicsDriver::Set_Gamma(exponent);
        EXPECT_EQ(vrGraphicsDriver::Get_Gamma_Table(0).Convert(0.5f), 0.5f) << exponent;
    }
    EXPECT_EQ(reports.Count_Asserts("exponent > 0.0f"), 3);
}
