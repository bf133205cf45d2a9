#include "SampleMaker/PictureSheet.h"

#include "vro/ContactSheet.h"

#include "MKLib/File/File.h"
#include "vrGraphics/drivercommon/vrPicture.h"
#include "vrGraphics/drivercommon/vrPngWriter.h"

#include <cstdio>
#include <optional>
#include <string>

namespace
{

bool Load(const std::string &path, vrPicture &picture, std::string &error)
{
    FileClass file(path);
    error = "it can't be opened";
    return file.Open(MKPlatform::FILE_OPEN_GENERIC_READ) && picture.Load(file, error);
}

int Fail(const std::string &path, const std::string &error)
{
    std::fprintf(stderr, "SampleMaker: %s: %s\n", path.c_str(), error.c_str());
    return 1;
}

} // namespace

int Make_Sheet(const char *path, int columns, char **entries, int count)
{
    if (columns < 1) return Fail(path, "a sheet has at least one column");
    std::optional<vro::ContactSheet> sheet;
    vrPicture first;
    std::string error;
    for (int index = 0; index < count; ++index) {
        const std::string entry = entries[index];
        const size_t equals = entry.find('=');
        if (equals == std::string::npos) return Fail(entry, "expected NAME=PICTURE.png");
        vrPicture picture;
        if (!Load(entry.substr(equals + 1), picture, error)) return Fail(entry, error);
        if (!sheet) {
            sheet.emplace(columns, count, picture.Get_Width(), picture.Get_Height());
            first = picture;
        }
        if (picture.Get_Width() != first.Get_Width() || picture.Get_Height() != first.Get_Height())
            return Fail(entry, "the pictures have different sizes");
        sheet->Add(picture.Get_Pixels(), entry.substr(0, equals));
    }
    FileClass file(path);
    if (!file.Open(MKPlatform::FILE_OPEN_GENERIC_WRITE)) return Fail(path, "it can't be written");
    if (!Write_Png(file, sheet->Get_Width(), sheet->Get_Height(), sheet->Get_Pixels().data(), error))
        return Fail(path, error);
    return 0;
}
