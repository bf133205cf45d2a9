#pragma once

#include <string>

namespace TextureMaker
{

class Canvas;

/// A run-length encoded Targa file, rows from the top: 32 bits a pixel, or 24 for a picture that is opaque throughout.
/// Throws std::runtime_error when it can't be written.
void Write_Targa(const std::string &path, const Canvas &canvas);
/// A DirectDraw surface of BC3 blocks with all its smaller levels. Sides must be powers of two, 4 at the least.
void Write_Block_Compressed(const std::string &path, const Canvas &canvas);

} // namespace TextureMaker
