#include "Tools/vro/VroProgram.h"
#include "common/TempFiles.h"

#include "MKLib/File/File.h"
#include "vrGraphics/drivercommon/vrPngWriter.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <regex>
#include <sstream>

/// Draws samples on the processor and compares them with stored pictures. After a change that is meant to change what
/// effects look like: MK_RENEW_PICTURES=1 SamplePicturesGLTest
namespace
{

constexpr const char *RENEW = "MK_RENEW_PICTURES";
/// Drawn larger and made small, so that where an edge falls between pixels doesn't matter.
constexpr int SHRINK = 4;
constexpr int WIDTH = 96;
constexpr int HEIGHT = 72;
// Of 255. Another version of the rasteriser rounds differently here and there; a layer that is missing, misplaced or of
// another colour changes far more.
constexpr double MEAN_TOLERANCE = 0.4;
constexpr int PIXEL_TOLERANCE = 16;
constexpr double FAR_PIXELS = 0.003; ///< the share of pixels that may be beyond that

using Pixels = std::vector<uint8_t>;

struct Moment
{
    int Frame = 0;
    std::vector<std::string> Options;
};

/// What `Samples/Moments.txt` says of a sample.
Moment Find_Moment(const std::string &name)
{
    std::istringstream text(MKTest::Read_Text_File(MK_SAMPLES "/Moments.txt"));
    for (std::string line; std::getline(text, line);) {
        std::istringstream words(line);
        std::string word;
        Moment moment;
        if (!(words >> word) || word != name || !(words >> word >> moment.Frame >> word)) continue;
        while (words >> word) moment.Options.push_back(word);
        return moment;
    }
    throw std::runtime_error("no moment for " + name);
}

/// Each pixel the mean of a square.
Pixels Shrink(const vrPicture &picture)
{
    Pixels small(static_cast<size_t>(WIDTH * HEIGHT) * 4);
    for (int at = 0; at < WIDTH * HEIGHT * 4; ++at) {
        const int x = at / 4 % WIDTH;
        const int y = at / 4 / WIDTH;
        int sum = SHRINK * SHRINK / 2;
        for (int part = 0; part < SHRINK * SHRINK; ++part) {
            const int column = x * SHRINK + part % SHRINK;
            const int row = y * SHRINK + part / SHRINK;
            sum += picture.Get_Pixels()[static_cast<size_t>((row * WIDTH * SHRINK + column) * 4 + at % 4)];
        }
        small[static_cast<size_t>(at)] = static_cast<uint8_t>(sum / (SHRINK * SHRINK));
    }
    return small;
}

void Write(const std::string &path, const Pixels &pixels)
{
    std::filesystem::create_directories(std::filesystem::path(path).parent_path());
    FileClass file(path);
    std::string error;
    ASSERT_TRUE(file.Open(MKPlatform::FILE_OPEN_GENERIC_WRITE)) << path;
    EXPECT_TRUE(Write_Png(file, WIDTH, HEIGHT, pixels.data(), error)) << path << ": " << error;
}

/// The mean difference of a channel, and the share of the pixels that are far off.
std::pair<double, double> Compare(const Pixels &expected, const Pixels &actual)
{
    int farPixels = 0;
    double sum = 0.0;
    for (size_t pixel = 0; pixel < expected.size(); pixel += 4) {
        int most = 0;
        for (size_t channel = pixel; channel < pixel + 3; ++channel) {
            const int apart = std::abs(expected[channel] - actual[channel]);
            sum += apart;
            most = std::max(most, apart);
        }
        farPixels += most > PIXEL_TOLERANCE ? 1 : 0;
    }
    const auto pixels = static_cast<double>(expected.size() / 4);
    return {sum / (pixels * 3.0), farPixels / pixels};
}

class SamplePicturesGLTest : public testing::TestWithParam<const char *>
{
protected:
    /// False when there is no device, with what was said about it.
    bool Draw(const std::string &name, Pixels &pixels, std::string &said)
    {
        const Moment moment = Find_Moment(name);
        const std::string path = Shop.Directory / "picture.png";
        std::vector<std::string> line = {"render", MK_SAMPLES "/Art/Models/" + name + ".vro", "-o", path};
        line.insert(line.end(), {"--frames", std::to_string(moment.Frame), "--size",
                                 std::to_string(WIDTH * SHRINK) + "x" + std::to_string(HEIGHT * SHRINK)});
        line.insert(line.end(), moment.Options.begin(), moment.Options.end());
        const vroTest::Outcome outcome = Shop.Vro(line, "", "LIBGL_ALWAYS_SOFTWARE=1 GALLIUM_DRIVER=llvmpipe");
        said = outcome.Err;
        if (outcome.Code != 0 && said.find("no OpenGL") != said.npos) return false;
        if (outcome.Code != 0 && said.find("without OpenGL") != said.npos) return false;
        EXPECT_EQ(outcome.Code, 0) << said;
        if (!HasFailure()) pixels = Shrink(vroTest::Load_Picture(path));
        return true;
    }

    vroTest::Workshop Shop;
};

INSTANTIATE_TEST_SUITE_P(Samples, SamplePicturesGLTest,
                         testing::Values("bump_smoke", "campfire", "explosion", "heat_shimmer", "magic_vortex",
                                         "portal", "shockwave", "underwater_bubbles", "waterfall"),
                         [](const auto &info) { return std::string(info.param); });

TEST_P(SamplePicturesGLTest, LookAsStored)
{
    const std::string name = GetParam();
    const std::string stored = std::string(MK_SAMPLE_TESTS "/Pictures/") + name + ".png";
    Pixels actual;
    std::string said;
    if (!Draw(name, actual, said)) GTEST_SKIP() << "nothing to draw with: " << said;
    ASSERT_FALSE(HasFailure());
    EXPECT_EQ(std::regex_replace(said, std::regex("vro: frame .*\n"), ""), "") << "drawing has something to tell";
    if (std::getenv(RENEW)) Write(stored, actual);

    const vrPicture expected = vroTest::Load_Picture(stored);
    ASSERT_EQ(expected.Get_Pixels().size(), actual.size());
    const auto [mean, farShare] = Compare(expected.Get_Pixels(), actual);
    if (mean <= MEAN_TOLERANCE && farShare <= FAR_PIXELS) return;
    const std::string left = std::filesystem::absolute("picture_failures/" + name + ".png").string();
    Write(left, actual);
    FAIL() << "differs by " << mean << " of 255 on average, and in " << farShare * 100.0
           << "% of the pixels by more than " << PIXEL_TOLERANCE << "; see " << left << ", " << RENEW << "=1 stores it";
}

} // namespace
