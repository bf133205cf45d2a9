#include "vro/Commands.h"

#include "vro/ContactSheet.h"
#include "vro/OffscreenView.h"
#include "vro/OutputFile.h"
#include "vro/RenderOptions.h"
#include "vro/Stage.h"

#include "MKLib/File/RAMFile.h"
#include "vrGraphics/drivercommon/vrParticleScratch.h"
#include "vrGraphics/drivercommon/vrPngWriter.h"

#include <chrono>
#include <cstdio>
#include <filesystem>
#include <optional>

namespace vro
{

namespace
{

namespace fs = std::filesystem;

/// The nearest directory above the effect that holds Art; the current one when it does and the effect lies elsewhere.
std::string Find_Working_Directory(const RenderOptions &options)
{
    if (!options.WorkingDirectory.empty()) return options.WorkingDirectory;
    std::error_code ignored;
    const auto has_art = [&](const fs::path &directory) { return fs::is_directory(directory / "Art", ignored); };
    const fs::path file = fs::absolute(options.File, ignored);
    for (fs::path place = file.parent_path(); options.File != "-"; place = place.parent_path()) {
        if (has_art(place)) return place.string();
        if (place == place.parent_path()) break;
    }
    return has_art(".") ? "." : "";
}

bool Write_Picture(const std::string &path, int width, int height, const std::vector<uint8_t> &rgba, std::string &error)
{
    RAMFileClass file;
    file.Open(MKPlatform::FILE_OPEN_GENERIC_WRITE);
    if (!Write_Png(file, width, height, rgba.data(), error)) return false;
    const std::string_view bytes(reinterpret_cast<const char *>(file.Get_Buffer()),
                                 static_cast<size_t>(file.Get_Size()));
    return Write_Output(path, bytes, error);
}

/// A line now and then on standard error, for work that takes long.
class Progress
{
public:
    explicit Progress(int frames) : Frames(frames) {}

    void Tell(int frame)
    {
        constexpr std::chrono::seconds PAUSE(2);
        const auto now = std::chrono::steady_clock::now();
        if (now - Last < PAUSE) return;
        Last = now;
        std::fprintf(stderr, "vro: frame %d of %d\n", frame, Frames);
    }

private:
    int Frames;
    std::chrono::steady_clock::time_point Last = std::chrono::steady_clock::now();
};

/// Where the frames go: files of their own, a sheet, or one picture.
class Album
{
public:
    explicit Album(const RenderOptions &options) : Options(options)
    {
        if (options.SheetColumns > 0)
            Sheet.emplace(options.SheetColumns, options.Get_Drawn_Count(), options.Width, options.Height);
    }

    bool Add(int frame, float time, const std::vector<uint8_t> &rgba)
    {
        if (Sheet) {
            char label[48];
            std::snprintf(label, sizeof label, "%d  %.2f s", frame, static_cast<double>(time));
            Sheet->Add(rgba, label);
            return true;
        }
        return Write(Get_Path(frame), Options.Width, Options.Height, rgba);
    }
    bool Finish()
    {
        return !Sheet || Write(Options.Output, Sheet->Get_Width(), Sheet->Get_Height(), Sheet->Get_Pixels());
    }

private:
    std::string Get_Path(int frame) const
    {
        if (Options.Is_One_Picture()) return Options.Output;
        char number[24];
        std::snprintf(number, sizeof number, "_%04d.png", frame);
        const std::string name = Options.File == "-" ? "effect" : fs::path(Options.File).stem().string();
        return (fs::path(Options.Output) / (name + number)).string();
    }
    static bool Write(const std::string &path, int width, int height, const std::vector<uint8_t> &rgba)
    {
        std::string error;
        if (Write_Picture(path, width, height, rgba, error)) return true;
        Fail(path, error);
        return false;
    }

    const RenderOptions &Options;
    std::optional<ContactSheet> Sheet;
};

/// What a draw does to an effect: layers that go by the view and those that sort keep something of each. So the frames
/// between leave the same picture as if all were drawn.
void Look_On(Stage &stage)
{
    stage.Select_Visible();
    stage.Build_Vertices();
    ParticleScratch::Reset();
}

int Play(const RenderOptions &options, OffscreenView &view, Stage &stage)
{
    view.Furnish(stage.Get_Scene());
    Album album(options);
    Progress progress(options.Frames);
    std::vector<uint8_t> rgba;
    for (int frame = 1; frame <= options.Frames; ++frame) {
        stage.Run_Frame(frame);
        progress.Tell(frame);
        if (!options.Is_Drawn(frame)) {
            Look_On(stage);
            continue;
        }
        std::string error;
        if (!view.Draw(stage.Get_Scene(), rgba, error)) return Fail(options.File, error);
        if (!album.Add(frame, stage.Get_Time(frame), rgba)) return EXIT_BAD_DATA;
    }
    return album.Finish() ? EXIT_WELL : EXIT_BAD_DATA;
}

} // namespace

int Run_Render(const RenderOptions &options)
{
    const std::string directory = Find_Working_Directory(options);
    if (directory.empty())
        return Fail(options.File, "there is no Art directory above it; name one with --working-directory");
    std::string error;
    if (!options.Is_One_Picture()) {
        std::error_code failed;
        fs::create_directories(options.Output, failed);
        if (failed) return Fail(options.Output, failed.message());
    }
    const auto view = OffscreenView::Open(options, directory, error);
    if (!view) return Fail(options.File, error);
    const auto stage = Stage::Open(options);
    return stage ? Play(options, *view, *stage) : EXIT_BAD_DATA;
}

} // namespace vro
