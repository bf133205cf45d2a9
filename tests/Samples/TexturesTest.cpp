#include "common/TempFiles.h"

#include "vro/JsonReading.h"

#include "MKLib/File/File.h"
#include "vrGraphics/drivercommon/vrPicture2D.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <filesystem>
#include <set>

using testing::IsEmpty;
using vro::Json;

namespace
{

namespace fs = std::filesystem;

std::string Lower(std::string text)
{
    std::transform(text.begin(), text.end(), text.begin(), [](unsigned char letter) { return std::tolower(letter); });
    return text;
}

/// Names of the files below a directory, without extensions and in lower case.
std::set<std::string> Stems(const fs::path &directory)
{
    std::set<std::string> stems;
    for (const auto &entry : fs::recursive_directory_iterator(directory))
        stems.insert(Lower(entry.path().stem().string()));
    return stems;
}

/// The values of all parameters of a kind, in all effects.
std::set<std::string> Values_Of_Kind(const std::string &kind)
{
    std::set<std::string> values;
    const auto visit = [&](const Json &json, const auto &self) -> void {
        if (json.is_object() && json.contains("kind") && json.at("kind") == kind) values.insert(json.at("value"));
        if (json.is_structured())
            for (const Json &part : json) self(part, self);
    };
    for (const auto &entry : fs::directory_iterator(MK_SAMPLES "/Effects"))
        visit(vro::Parse_Json(MKTest::Read_Text_File(entry.path().string())), visit);
    return values;
}

struct Sheet
{
    explicit Sheet(const char *place)
    {
        FileClass file(std::string(MK_SAMPLES "/Art/Textures/") + place);
        vrPicture2D picture;
        std::string error;
        EXPECT_TRUE(file.Open(MKPlatform::FILE_OPEN_GENERIC_READ) && Load_Picture(file, picture, error)) << error;
        if (picture.Levels.empty()) return;
        Width = picture.Levels[0].Width;
        Height = picture.Levels[0].Height;
        Pixels = Decode_Picture(picture);
    }

    int Get(int x, int y, int channel) const { return Pixels[static_cast<size_t>((y * Width + x) * 4 + channel)]; }

    int Width = 0;
    int Height = 0;
    std::vector<uint8_t> Pixels;
};

} // namespace

TEST(SampleTextures, EveryTextureAndShaderThatAnEffectNamesIsThere)
{
    const struct
    {
        const char *kind;
        const char *directory;
    } rows[] = {{"Texture Name", MK_SAMPLES "/Art/Textures"}, {"Shader Name", MK_SAMPLES "/Run/Data/Art/Shaders"}};
    for (const auto &row : rows) {
        const std::set<std::string> stems = Stems(row.directory);
        std::set<std::string> missing;
        const std::set<std::string> named = Values_Of_Kind(row.kind);
        EXPECT_GE(named.size(), 5u) << row.kind;
        for (const std::string &name : named)
            if (!stems.contains(Lower(fs::path(name).stem().string()))) missing.insert(name);
        EXPECT_THAT(missing, IsEmpty()) << row.kind;
    }
}

/// A cell that reached its border would show in its neighbour, by filtering and in the smaller levels.
TEST(SampleTextures, CellsAreEmptyAlongTheirBorder)
{
    const struct
    {
        const char *place;
        int cells; ///< along each side
    } rows[] = {{"Game/p_particle_master.tga", 8}, {"Heat/p_particle_heat_master.tga", 2}};
    for (const auto &row : rows) {
        const Sheet sheet(row.place);
        ASSERT_GT(sheet.Width, 0);
        const int side = sheet.Width / row.cells;
        for (int cell = 0; cell < row.cells * row.cells; ++cell) {
            int border = 0;
            int inside = 0;
            for (int at = 0; at < side * side; ++at) {
                const int x = at % side;
                const int y = at / side;
                const bool isBorder = std::min({x, y, side - 1 - x, side - 1 - y}) < side / 64;
                int &most = isBorder ? border : inside;
                most = std::max(most, sheet.Get(cell % row.cells * side + x, cell / row.cells * side + y, 3));
            }
            EXPECT_EQ(border, 0) << row.place << " cell " << cell;
            EXPECT_GT(inside, 40) << row.place << " cell " << cell;
        }
    }
}

/// Where a ribbon's texture starts anew, no step may show.
TEST(SampleTextures, RibbonsRepeatAlongTheirLength)
{
    for (const char *place : {"Game/W_Clouds01.tga", "Game/w_trail.tga", "Game/w_beam.tga", "Game/w_glints.tga"}) {
        const Sheet sheet(place);
        ASSERT_GT(sheet.Width, 0);
        // The step over the seam is compared with the largest within.
        int seam = 0;
        int within = 0;
        for (int y = 0; y < sheet.Height; ++y)
            for (int x = 0; x < sheet.Width; ++x) {
                const int step = std::abs(sheet.Get(x, y, 3) - sheet.Get((x + 1) % sheet.Width, y, 3));
                int &most = x + 1 == sheet.Width ? seam : within;
                most = std::max(most, step);
            }
        EXPECT_LE(seam, within) << place;
    }
}

/// Red to the right and green up, as the lit shaders take them: a puff bulges toward the viewer.
TEST(SampleTextures, PuffsBulgeAndOtherCellsAreFlat)
{
    const Sheet sheet("Bump/smokenormals.tga");
    ASSERT_GT(sheet.Width, 0);
    const int side = sheet.Width / 8;
    for (int cell = 0; cell < 8; ++cell) {
        // Sums of red and green over what lies right of the middle and above it, less those over the other side.
        int red = 0;
        int green = 0;
        for (int y = 0; y < side; ++y)
            for (int x = 0; x < side; ++x) {
                red += (x >= side / 2 ? 1 : -1) * sheet.Get(cell * side + x, side + y, 0);
                green += (y < side / 2 ? 1 : -1) * sheet.Get(cell * side + x, side + y, 1);
                ASSERT_GT(sheet.Get(cell * side + x, side + y, 2), 127) << cell;
            }
        EXPECT_GT(red, side * side * 8) << cell;
        EXPECT_GT(green, side * side * 8) << cell;
        for (const int channel : {0, 1, 2})
            EXPECT_EQ(sheet.Get(cell * side + side / 2, side / 2, channel), channel == 2 ? 255 : 128) << cell;
    }
}
