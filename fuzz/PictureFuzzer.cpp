#include "vrGraphics/drivercommon/vrDdsPicture.h"
#include "vrGraphics/drivercommon/vrTgaPicture.h"

#include "MKLib/File/RAMFile.h"

#include <cstdlib>

namespace
{

/// Whether the levels are what the picture says that they are.
bool Is_Whole(const vrPicture2D &picture)
{
    if (picture.Levels.empty()) return false;
    const vrPicture2D::LevelType &level = picture.Levels.front();
    return Decode_Picture(picture).size() == static_cast<size_t>(level.Width) * static_cast<size_t>(level.Height) * 4;
}

} // namespace

/// `FUZZED_READER` is one of the readers of picture files. A picture that it yields must be whole, and a failure must
/// have a reason and leave the picture alone.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const uint8_t none = 0;
    RAMFileClass file(size > 0 ? data : &none, static_cast<int64_t>(size));
    file.Open("fuzzed", MKPlatform::FILE_OPEN_GENERIC_READ);
    vrPicture2D picture;
    std::string error;
    const bool loaded = FUZZED_READER(file, picture, error);
    if (loaded ? !Is_Whole(picture) : error.empty() || !picture.Levels.empty()) std::abort();
    return 0;
}
