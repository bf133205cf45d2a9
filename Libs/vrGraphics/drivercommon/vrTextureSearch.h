#pragma once

#include "MKLib/File/File.h"

#include <string_view>
#include <vector>

/// A folder as the search joins names to it: with a separator at its end; an empty one stays empty.
MK::String With_Separator(std::string_view folder);

/// Where textures are looked for. The main thread's.
namespace TextureSearch
{

void Add_Path(std::string_view folder);
void Clear_Paths();
const std::vector<MK::String> &Get_Paths();
/// Grows with each change of the paths.
unsigned Get_Generation();

/// Opens the file of a texture: the name in each folder in turn, and then in the same way with the extension `.dds`,
/// `.tga` and `.png` in the place of its own. A name that leads out of the folders is nowhere.
bool Open(std::string_view name, FileClass &file);

} // namespace TextureSearch
