#pragma once

/// DDS files.

#include "vrGraphics/drivercommon/vrPicture2D.h"

#include <array>

/// Reads a picture with its smaller levels, of which a cube gives the first face, from where the file stands: BC1 to
/// BC3, and plain texels of 8 to 32 bits by their masks, which become RGBA8. Of levels that a picture of this size
/// can't have none is read. False with the reason in `error`, and the picture as it was.
bool Load_Dds(FileClass &file, vrPicture2D &picture, std::string &error);

/// The same for a file with the six faces of a cube: +x, -x, +y, -y, +z, -z.
bool Load_Dds_Cube(FileClass &file, std::array<vrPicture2D, 6> &faces, std::string &error);
